// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "plot/plot.h"

deviation_t deviation_of(int kind) {
    if (kind == P_GINT_SMS)
        return smsErrBars ? DEV_BARS : smsErrFill ? DEV_BAND : DEV_NONE;
    if (kind == P_GINT_DSMS)
        return dsmsErrBars    ? DEV_BARS
               : dsmsErrFill  ? DEV_BAND
               : dsmslErrFill ? DEV_LEVEL_BAND
                              : DEV_NONE;
    return kind == P_GINT_SMSS && deviations_shown() ? DEV_HIDDEN : DEV_NONE;
}

int NamedBlocks = 0;

// A number as a part of a name, in which there is no minus.
static int print_number(char* to, std::size_t room, int number) {
    return std::snprintf(to, room, "_%s%lld", number < 0 ? "m" : "",
                         std::llabs(static_cast<long long>(number)));
}

// How many sets have this label, up to this one: names must differ.
static int repeats_of_label(int c) {
    int count = 0;
    for (int other = 0; other <= c; other++)
        count += CurveNd[other] == CurveNd[c] && CurveNc[other] == CurveNc[c];
    return count;
}

block_name_t block_name(int c, int j, bool deviations) {
    block_name_t name = {"'-'"};
    if (!NamedBlocks)
        return name;
    char* to = name.text;
    char* end = to + sizeof name.text;
    const std::size_t room = sizeof name.text;
    to += std::snprintf(to, room, "$%s", kind_word(PlotColType[j]));
    to += print_number(to, static_cast<std::size_t>(end - to), CurveNd[c]);
    to += print_number(to, static_cast<std::size_t>(end - to), CurveNc[c]);
    if (repeats_of_label(c) > 1)
        to += print_number(to, static_cast<std::size_t>(end - to), repeats_of_label(c));
    std::snprintf(to, static_cast<std::size_t>(end - to), "%s", deviations ? "_dev" : "");
    return name;
}

// ---- The plot command --------------------------------------------------------------------------

// Widths and point size in gnuplot's units. Those of an image are made for a width of 2000, 1800
// and 1200 pixels and shrink as it grows, so that the picture looks the same at any size.
namespace {
struct widths_t {
    double ewf;  // error bars
    double wf;   // factor of the lines
    double ps;   // points
};
}  // namespace

static widths_t plot_widths() {
    widths_t widths = {1.0, 1.0, 0.7};
    if (image_is_asked_for())
        widths = {1800.0 / wx, 2000.0 / wx, 1200.0 / wx};
    widths.ewf *= ErrLineWidthFactor;
    widths.wf *= LineWidthFactor;
    widths.ps *= PointSizeFactor;
    return widths;
}

static const char* style_word(int r) {
    switch (Type[r].style_type) {
        case ST_LINES:
            return "lines";
        case ST_POINTS:
            return "points";
        case ST_LPOINTS:
            return "linespoints";
        case ST_SPECIAL:
            return " ";
        default:
            fail(stderr, "Invalid plotting style %d for data type %d\n", Type[r].style_type, r);
    }
}

static bool has_points(int r) {
    return Type[r].style_type == ST_POINTS || Type[r].style_type == ST_LPOINTS;
}

// A plot with named blocks is for people to edit: one series a line.
static const char* series_separator() {
    return NamedBlocks ? ", \\\n     " : ", ";
}

// The series that shows the deviations; it stands before the curve's own.
static void write_deviation_series(const block_name_t& name, int r, deviation_t deviation,
                                   const widths_t& widths) {
    if (deviation == DEV_BARS)
        std::fprintf(f, "%s using 1:2:3 notitle with errorbars pt 0 lw %4.1f lc rgb \"%s\"%s",
                     name.text, widths.ewf, Type[r].style_color, series_separator());
    else if (deviation != DEV_NONE)
        std::fprintf(f, "%s using 1:2:3 notitle with filledcurves fillcolor \"%s\"%s", name.text,
                     Type[r].style_color, series_separator());
}

static void write_curve_series(const block_name_t& name, int c, int r, const char* style,
                               const widths_t& widths) {
    std::fprintf(f, "%s using 1:2 ", name.text);
    if (PlotLegend)
        std::fprintf(f, "title '%s (%d-%d)'", Type[r].name_short, CurveNd[c], CurveNc[c]);
    else
        std::fprintf(f, "notitle");
    std::fprintf(f, " with %s ", style);
    if (has_points(r))
        std::fprintf(f, "pt %d ps %4.1f", Type[r].p_type, widths.ps);
    else
        std::fprintf(f, " ");
    std::fprintf(f, " lw %4.1f lc rgb \"%s\"", Type[r].style_lw * widths.wf, Type[r].style_color);
}

void write_plot_command(plot_t plot) {
    const widths_t widths = plot_widths();
    const char* const behind = series_separator();
    const char* separator = " ";
    std::fprintf(f, "plot ");
    for_each_series(plot, [&](int c, int j) {
        const int r = d_idx(PlotColType[j]);
        const char* style = style_word(r);
        const deviation_t deviation = deviation_of(PlotColType[j]);
        if (deviation == DEV_HIDDEN)
            return;
        std::fprintf(f, "%s", separator);
        separator = behind;
        write_deviation_series(block_name(c, j, true), r, deviation, widths);
        write_curve_series(block_name(c, j, false), c, r, style, widths);
    });
    std::fprintf(f, "\n");
}

// ---- The data ----------------------------------------------------------------------------------

void write_deviation_block(int c, int j, deviation_t deviation) {
    const double* y = Curve[c][j];
    const double* d = Curve[c][ColErrIdx[j]];
    const double shift = CurveShift[c][j];
    const int n = d == nullptr ? 0 : column_points(c, j);
    begin_rows(block_name(c, j, true), Curve[c][0], n);
    for (int k = 0; k < n; k++) {
        const double level = deviation == DEV_LEVEL_BAND ? shift : y[k] + shift;
        if (deviation == DEV_BARS)
            write_row(level, d[k]);
        else
            write_row(level - d[k], level + d[k]);
    }
    end_rows();
}

void write_curve_block(int c, int j) {
    const double* y = Curve[c][j];
    const double shift = CurveShift[c][j];
    const int n = column_points(c, j);
    begin_rows(block_name(c, j, false), Curve[c][0], n);
    for (int k = 0; k < n; k++)
        write_row(y[k] + shift);
    end_rows();
}

void write_data_blocks(plot_t plot) {
    for_each_series(plot, [](int c, int j) {
        const deviation_t deviation = deviation_of(PlotColType[j]);
        if (deviation == DEV_HIDDEN)
            return;
        if (deviation != DEV_NONE)
            write_deviation_block(c, j, deviation);
        write_curve_block(c, j);
    });
    flush_rows();
}
