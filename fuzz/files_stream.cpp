// SPDX-License-Identifier: MIT
//
// The grammar of the stream, line by line and token by token, and the series that must be in it.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "files.h"
#include "harness.h"
#include "input/input.h"
#include "plot/plot.h"

// ---- Tokens ------------------------------------------------------------------------------------

// The rest of a line; null once something did not fit.
using rest_t = const char*;

static rest_t literal(rest_t rest, const char* text) {
    const std::size_t length = std::strlen(text);
    return rest != nullptr && std::strncmp(rest, text, length) == 0 ? rest + length : nullptr;
}

static rest_t digits(rest_t rest, std::size_t at_least, std::size_t at_most) {
    const std::size_t length = rest == nullptr ? 0 : std::strspn(rest, "0123456789");
    return length >= at_least && length <= at_most ? rest + length : nullptr;
}

static rest_t sign(rest_t rest) {
    return rest != nullptr && *rest == '-' ? rest + 1 : rest;
}

static rest_t integer(rest_t rest) {
    return digits(sign(rest), 1, 10);
}

// A number with that many decimals.
static rest_t number(rest_t rest, std::size_t decimals) {
    rest = sign(rest);
    for (const char* word : {"inf", "nan"}) {
        if (literal(rest, word) != nullptr)
            return literal(rest, word);
    }
    return digits(literal(digits(rest, 1, 309), "."), decimals, decimals);
}

// A number with one decimal in four places or more.
static rest_t width(rest_t rest) {
    if (rest == nullptr)
        return nullptr;
    const std::size_t blanks = std::strspn(rest, " ");
    const rest_t end = number(rest + blanks, 1);
    const bool fits = end != nullptr && (blanks == 0 ? end - rest >= 4 : end - rest == 4);
    return fits ? end : nullptr;
}

// The longest of the texts that a kind has in some field.
template <class field_t>
static rest_t of_a_kind(rest_t rest, field_t field) {
    rest_t longest = nullptr;
    for (const data_type_t& kind : Type) {
        const rest_t end = literal(rest, kind.*field);
        if (end != nullptr && (longest == nullptr || end > longest))
            longest = end;
    }
    return longest;
}

static rest_t colour(rest_t rest) {
    rest = literal(rest, "\"");
    const rest_t end = literal(rest, "black");
    return literal(end != nullptr ? end : literal(rest, "#AA0000"), "\"");
}

static rest_t style(rest_t rest) {
    for (const char* word : {"linespoints", "lines", "points", " "}) {
        if (literal(rest, word) != nullptr)
            return literal(rest, word);
    }
    return nullptr;
}

// A line by its pattern: %f, %w (width), %d, %k (a kind's short name), %t (a kind's typeset
// name), %c (colour), %s (style); anything else stands for itself.
static rest_t pattern(rest_t rest, const char* text) {
    for (; *text != '\0' && rest != nullptr; text++) {
        const char one[] = {*text, '\0'};
        switch (*text == '%' ? *++text : '\0') {
            case 'f':
                rest = number(rest, 6);
                break;
            case 'w':
                rest = width(rest);
                break;
            case 'd':
                rest = integer(rest);
                break;
            case 'k':
                rest = of_a_kind(rest, &data_type_t::name_short);
                break;
            case 't':
                rest = of_a_kind(rest, &data_type_t::name_eps);
                break;
            case 'c':
                rest = colour(rest);
                break;
            case 's':
                rest = style(rest);
                break;
            default:
                rest = literal(rest, one);
        }
    }
    return rest;
}

// ---- Lines -------------------------------------------------------------------------------------

static std::string Text;       // the stream
static std::size_t Next;       // where its next line begins
static std::string Line;       // the current line, without its newline
static bool MayBeCut = false;  // the stream may end anywhere

struct cut_t {};  // thrown where a stream ends that may be cut

// Takes the next line. False if there is only a part of one.
static bool next_line() {
    if (Next == Text.size() && MayBeCut)
        throw cut_t();
    require(Next < Text.size(), "the stream ends too early");
    const std::size_t end = Text.find('\n', Next);
    Line = Text.substr(Next, end - Next);
    require(Line.find('\0') == std::string::npos, "a NUL in the stream");
    Next = end == std::string::npos ? Text.size() : end + 1;
    require(end != std::string::npos || MayBeCut, "a line without its end");
    return end != std::string::npos;
}

[[noreturn]] static void bad_line(const char* expected) {
    report("line: %s\nexpected: %s\n", Line.c_str(), expected);
    require(false, "a line that does not fit");
    __builtin_unreachable();
}

static bool is_all(rest_t rest) {
    return rest != nullptr && *rest == '\0';
}

static void expect(const char* text) {
    if (!next_line() || !is_all(pattern(Line.c_str(), text)))
        bad_line(text);
}

static void expect_if(bool is_there, const char* text) {
    if (is_there)
        expect(text);
}

// The line itself, printed.
static void expect_line(const char* format, ...) __attribute__((format(printf, 1, 2)));

static void expect_line(const char* format, ...) {
    char text[1000];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    if (!next_line() || Line != text)
        bad_line(text);
}

// ---- Series ------------------------------------------------------------------------------------

// A series with the rows that it must have.
struct series_t {
    const char* command;  // its pattern
    std::vector<std::string> rows;
};

static void add_row(series_t* series, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

static void add_row(series_t* series, const char* format, ...) {
    char row[1000];
    va_list args;
    va_start(args, format);
    std::vsnprintf(row, sizeof row, format, args);
    va_end(args);
    series->rows.push_back(without_nan_signs(row));
}

static const char BARS[] = "'-' using 1:2:3 notitle with errorbars pt 0 lw %w lc rgb %c";
static const char BAND[] = "'-' using 1:2:3 notitle with filledcurves fillcolor %c";

static bool has_deviations() {
    return smsErrBars || dsmsErrBars || smsErrFill || dsmsErrFill || dsmslErrFill;
}

// The column of the deviations; the abscissa if there is none.
static int deviation_column() {
    for (int j = 1; j < NcolsToPlot; j++) {
        if (PlotColType[j] == P_GINT_SMSS)
            return j;
    }
    return 0;
}

// The series of the deviations of column j, if it has one.
static void add_deviations(std::vector<series_t>* all, int i, int j) {
    const int kind = PlotColType[j];
    const bool bars = kind == P_GINT_SMS ? smsErrBars : kind == P_GINT_DSMS && dsmsErrBars;
    const bool band = kind == P_GINT_SMS ? smsErrFill : kind == P_GINT_DSMS && dsmsErrFill;
    const bool level = kind == P_GINT_DSMS && dsmslErrFill && !band;
    if (!bars && !band && !level)
        return;
    all->push_back({bars ? BARS : BAND, {}});
    const double* d = Curve[i][deviation_column()];
    for (int k = 0; Curve[i][j] != nullptr && d != nullptr && k < Npts[i]; k++) {
        const double x = Curve[i][0][k];
        const double y = Curve[i][j][k] + CurveShift[i][j];
        const double middle = level ? CurveShift[i][j] : y;
        if (bars)
            add_row(&all->back(), "%f %f %f", x, y, d[k]);
        else
            add_row(&all->back(), "%f %f %f", x, middle - d[k], middle + d[k]);
    }
}

static const char* curve_pattern(int j) {
    const int style_type = Type[d_idx(PlotColType[j])].style_type;
    const bool has_points = style_type == ST_POINTS || style_type == ST_LPOINTS;
    if (PlotLegend)
        return has_points ? "'-' using 1:2 title '%k (%d-%d)' with %s pt %d ps %w lw %w lc rgb %c"
                          : "'-' using 1:2 title '%k (%d-%d)' with %s   lw %w lc rgb %c";
    return has_points ? "'-' using 1:2 notitle with %s pt %d ps %w lw %w lc rgb %c"
                      : "'-' using 1:2 notitle with %s   lw %w lc rgb %c";
}

// The series of a plot: the experimental sM(s) last, otherwise set by set, column by column.
static std::vector<series_t> series_of(int g, int h) {
    std::vector<series_t> all;
    for (int stage = 0; stage < 2; stage++) {
        for (int i = 0; i < Ncurves; i++) {
            for (int j = 1; j < NcolsToPlot; j++) {
                if (CurvePlotGroup[i] != g || ColPlotGroup[j] != h ||
                    (PlotColType[j] == P_GINT_SMS) != (stage == 1) ||
                    (PlotColType[j] == P_GINT_SMSS && has_deviations()))
                    continue;
                add_deviations(&all, i, j);
                all.push_back({curve_pattern(j), {}});
                for (int k = 0; Curve[i][j] != nullptr && k < Npts[i]; k++)
                    add_row(&all.back(), "%f %f", Curve[i][0][k],
                            Curve[i][j][k] + CurveShift[i][j]);
            }
        }
    }
    return all;
}

// ---- Plots -------------------------------------------------------------------------------------

static bool typesets() {
    return MakeImage != 0;
}

// The y label has names of kinds, each once. A run that ends here may leave any part of it.
static void check_ylabel() {
    const bool is_whole = next_line();
    rest_t rest = literal(Line.c_str(), "set ylabel \"");
    const char* name = typesets() ? "%t" : "%k";
    for (int names = 0; rest != nullptr && names < MAX_COLS && *rest != '"'; names++) {
        if (!is_whole && *rest == '\0')
            throw cut_t();
        rest = pattern(names == 0 ? rest : literal(rest, ", "), name);
    }
    if (!is_whole || !is_all(pattern(rest, typesets() ? "\" font \"Arial, %d\"" : "\" ")))
        bad_line("the y label");
}

static void check_settings() {
    expect("set encoding iso_8859_1");
    if (UserTerminal)
        expect_line("set terminal %s", UserTerminalName);
    expect_if(typesets(), "set tics font \"Arial, %d\"");
    expect(typesets() ? "set xlabel \"{/Arial-Italic s}, {/Arial {\305}^{-1}}\" "
                        "offset char 0, char -1 font \", %d\""
                      : "set xlabel \"s, A^{-1}\"");
    expect("set format y \"\"");
    expect("set pointsize 0.5");
    expect_if(!PlotX2tics, "set xtics border nomirror");
    expect_if(!PlotY2tics, "set ytics border nomirror");
    expect_if(!PlotXtics, "set xtics scale 0");
    expect_if(!PlotYtics, "set ytics scale 0");
    expect_if(PlotRatio != 0.0, "set size ratio %f");
    expect_if(PlotGrid, "set grid");
    expect("set xrange [%f : %f]");
    expect("set yrange [%f : %f]");
    expect("set style fill transparent solid %w noborder");
    expect("set bars 0.5");
    check_ylabel();
}

// The plot command. A run that ends here leaves whole series.
static void check_command(const std::vector<series_t>& all) {
    const bool is_whole = next_line();
    rest_t rest = literal(Line.c_str(), "plot ");
    for (std::size_t s = 0; s < all.size() && rest != nullptr; s++) {
        if (!is_whole && *rest == '\0')
            throw cut_t();
        rest = pattern(literal(rest, s == 0 ? " " : ", "), all[s].command);
    }
    if (!is_whole || !is_all(rest))
        bad_line("the plot command");
}

static void check_data(const std::vector<series_t>& all) {
    for (const series_t& series : all) {
        const bool has_three = std::strstr(series.command, "1:2:3") != nullptr;
        for (const std::string& row : series.rows) {
            expect(has_three ? "%f %f %f" : "%f %f");
            require_same(without_nan_signs(Line), row, "another row");
        }
        expect("e");
    }
}

static void check_plots(int number, bool has_commands) {
    for (int g = 1; g <= CurveGroupsToPlot; g++) {
        for (int h = 1; h <= ColGroupsToPlot; h++) {
            if (!MultiPlot && (g - 1) * ColGroupsToPlot + h - 1 != number)
                continue;
            if (has_commands)
                check_settings();
            const std::vector<series_t> all = series_of(g, h);
            if (has_commands)
                check_command(all);
            check_data(all);
        }
    }
}

static void check_image(int number) {
    if (MakeImage == IMG_EPS)
        expect("set terminal postscript eps enhanced color solid clip");
    else if (MakeImage == IMG_SVG)
        expect("set terminal svg size %d,%d dynamic enhanced");
    else
        expect("set term pngcairo size %d,%d");
    if (MultiPlot)
        expect_line("set output \"%s\"", ImgFname);
    else
        expect_line("set output \"%d_%s\"", number + 1, ImgFname);
    expect("replot");
    check_plots(number, false);
}

static void check_lines(int number) {
    const bool has_panels = MultiPlot && (CurveGroupsToPlot > 1 || ColGroupsToPlot > 1);
    if (has_panels)
        expect_line("set multiplot layout %d, %d title \"KOVA GED curves\"", CurveGroupsToPlot,
                    ColGroupsToPlot);
    check_plots(number, true);
    if (MakeImage != 0 && !has_panels)
        check_image(number);
    expect_if(has_panels, "unset multiplot");
    require(Next == Text.size(), "something after the end");
}

void check_stream(const std::string& stream, int number, bool is_cut) {
    Text = stream;
    Next = 0;
    MayBeCut = is_cut;
    try {
        check_lines(number);
        require(!is_cut, "a run that ended after its last plot");
    } catch (const cut_t&) {
        // Up to here all was well.
    }
}
