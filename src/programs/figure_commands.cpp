// SPDX-License-Identifier: MIT
//
// The commands that draw a page. gnuplot's terminals agree neither on the width of "lw 1" nor on
// the size of "ps 1", nor on how long a tic mark is and how far below it its number stands. All
// the measures below were taken from what they draw.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "figure.h"

// Widths and sizes on paper, in points: circles of 0.7 mm.
static constexpr double RADIUS = 0.82, CIRCLE = 0.35;
static constexpr double CURVE = 0.8, BAR = 0.5, FRAME = 0.5, GRID = 0.25;

// In em.
static constexpr double TIC = 0.3;            // length of a tic mark
static constexpr double CAP = 0.2235;         // width of the ends of a bar
static constexpr double NUMBER_DEPTH = 1.17;  // from the axis down to the baseline of its numbers

static bool is(const char* ending) {
    return is_format(ending);
}

// ---- The terminal ------------------------------------------------------------------------------

// The unit of an SVG in points. In HTML it is a pixel of a page 1000 pixels wide. In a file it is
// as large as makes letters of 6.25 units: gnuplot draws a circle of radius 0.375 * letters * ps
// with a line of ps, whatever its width should be; only then are both right.
static double svg_unit(const page_t& page) {
    if (is(".html"))
        return page.columns * page.panel_width / 1000;
    return Look.letters / 6.25;
}

static double point_size(const page_t& page) {
    if (is(".html"))
        return RADIUS / (0.375 * Look.letters);
    return is(".svg") ? CIRCLE / svg_unit(page) : 1.0;
}

static void write_cairo_terminal() {
    // A quarter of a point more than whole points: gnuplot cuts the size to these.
    const double width = std::floor(Look.width / 2.54 * 72 + 0.5) + 0.25;
    const double height = std::floor(Look.height / 2.54 * 72 + 0.5) + 0.25;
    std::fprintf(f, "set terminal %scairo enhanced color font 'Arial,%g' ",
                 Look.format->ending + 1, Look.letters);
    std::fprintf(f, "fontscale 0.75 linewidth %d pointscale %.6f size %.4fin,%.4fin\n",
                 is(".pdf") ? 2 : 4, RADIUS / 3, width / 72, height / 72);
}

static void write_png_terminal() {
    const double scale = Look.dpi / 72.0;
    std::fprintf(f, "set terminal pngcairo enhanced color font 'Arial,%g' ", Look.letters);
    std::fprintf(f, "fontscale %.6f linewidth %.6f pointscale %.6f size %.0f,%.0f\n",
                 Look.dpi / 96.0, scale, scale * RADIUS / 3,
                 std::floor(Look.width / 2.54 * Look.dpi + 0.5),
                 std::floor(Look.height / 2.54 * Look.dpi + 0.5));
}

static void write_svg_terminal(const page_t& page, int panel) {
    const double unit = svg_unit(page);
    double width = page.panel_width, height = page.panel_height;
    std::fprintf(f, "set terminal svg ");
    if (is(".html")) {
        std::fprintf(f, "mouse standalone name 'p%d' ", panel);
    } else {
        width *= page.columns;
        height *= page.rows;
    }
    std::fprintf(f,
                 "enhanced background 'white' font 'Arial,%.5g' linewidth %.5f size %.0f,%.0f\n",
                 Look.letters / unit, 1 / unit, std::floor(width / unit + 0.5),
                 std::floor(height / unit + 0.5));
}

static void write_terminal(const page_t& page, int panel) {
    if (is(".pdf") || is(".eps"))
        write_cairo_terminal();
    else if (is(".png"))
        write_png_terminal();
    else
        write_svg_terminal(page, panel);
}

// ---- The data ----------------------------------------------------------------------------------

// Visits the curves of the plot that are shown, in drawing order.
template <class visitor_t>
static void for_each_curve(plot_t plot, visitor_t visit) {
    for_each_series(plot, [&](int c, int j) {
        if (deviation_of(PlotColType[j]) != DEV_HIDDEN)
            visit(c, j);
    });
}

static bool has_band(int j) {
    const deviation_t deviation = deviation_of(PlotColType[j]);
    return deviation == DEV_BAND || deviation == DEV_LEVEL_BAND;
}

static bool has_bars(int j) {
    return deviation_of(PlotColType[j]) == DEV_BARS;
}

// The rows of [first, last) that a line through one column of pixels needs: where it comes in and
// goes out, and how far up and down it gets in between.
static void keep_extremes(const double* y, int first, int last, std::vector<int>* kept) {
    const auto [low, high] = std::minmax_element(y + first, y + last);
    const int one = static_cast<int>(low - y), other = static_cast<int>(high - y);
    int rows[] = {first, std::min(one, other), std::max(one, other), last - 1};
    kept->insert(kept->end(), rows, std::unique(rows, rows + 4));
}

// Which rows of a curve to draw as a line, so that the picture looks the same: the time is spent
// on strokes, and a noisy line of 20,000 of them passes each column of pixels many times. One
// pixel in a hundred gets another shade by this, and three in ten thousand one that is a third
// lighter or darker, which cannot be seen. What has no number stays, as a gap.
static std::vector<int> rows_to_draw(const panel_t& panel, int c, int j) {
    const double* x = Curve[c][0];
    const double* y = Curve[c][j];
    const double pixels = (panel.x1 - panel.x0) / 72 * Look.dpi;
    const double scale = pixels / (panel.ranges.xmax - panel.ranges.xmin);
    std::vector<int> kept;
    for (int first = 0, last; first < Npts[c]; first = last) {
        const double column = std::floor(x[first] * scale);
        bool numbers = true;
        for (last = first;
             last < Npts[c] && (last == first || std::floor(x[last] * scale) == column); last++)
            numbers = numbers && std::isfinite(y[last]);
        if (numbers && last - first > 4) {
            keep_extremes(y, first, last, &kept);
            continue;
        }
        for (int k = first; k < last; k++)
            kept.push_back(k);
    }
    return kept;
}

static void write_thin_block(const panel_t& panel, int c, int j) {
    const std::vector<int> rows = rows_to_draw(panel, c, j);
    std::vector<double> x;
    x.reserve(rows.size());
    for (const int k : rows)
        x.push_back(Curve[c][0][k]);
    begin_rows(block_name(c, j, false), x.data(), static_cast<int>(x.size()));
    for (const int k : rows)
        write_row(Curve[c][j][k] + CurveShift[c][j]);
    end_rows();
}

static void write_data(const panel_t& panel) {
    for_each_curve(panel.plot, [&](int c, int j) {
        const deviation_t deviation = deviation_of(PlotColType[j]);
        if (deviation != DEV_NONE)
            write_deviation_block(c, j, deviation);
        if (is(".png") && Type[d_idx(PlotColType[j])].style_type == ST_LINES)
            write_thin_block(panel, c, j);
        else
            write_curve_block(c, j);
    });
    flush_rows();
}

// ---- Settings ----------------------------------------------------------------------------------

namespace {

// The lower left corner of a panel in its picture, and the size of that, for gnuplot's "screen".
struct place_t {
    double x, y, width, height;
};

}  // namespace

static place_t place_of(const page_t& page, int panel) {
    if (is(".html"))
        return {0.0, 0.0, page.panel_width, page.panel_height};
    const int row = (panel - 1) / page.columns, column = (panel - 1) % page.columns;
    return {column * page.panel_width, (page.rows - 1 - row) * page.panel_height,
            page.columns * page.panel_width, page.rows * page.panel_height};
}

static double screen_x(const place_t& place, double x) {
    return (place.x + x) / place.width;
}

static double screen_y(const place_t& place, double y) {
    return (place.y + y) / place.height;
}

static void write_frame(const panel_t& panel, const place_t& place) {
    std::fprintf(f, "set border 15 linewidth %g\n", FRAME);
    std::fprintf(f, "set lmargin at screen %.5f\nset rmargin at screen %.5f\n",
                 screen_x(place, panel.x0), screen_x(place, panel.x1));
    std::fprintf(f, "set bmargin at screen %.5f\nset tmargin at screen %.5f\n",
                 screen_y(place, panel.y0), screen_y(place, panel.y1));
    std::fprintf(f, "set xrange [%.9g : %.9g]\nset yrange [%.9g : %.9g]\n", panel.ranges.xmin,
                 panel.ranges.xmax, panel.ranges.ymin, panel.ranges.ymax);
    if (PlotGrid)
        std::fprintf(f,
                     "set grid back linetype 1 linewidth %g linecolor rgb '#BBBBBB' "
                     "dashtype solid\n",
                     GRID);
}

// "%g" because gnuplot's own format has a blank in front, which moves the number to the right.
static void write_tics(const panel_t& panel, const place_t& place, bool numbers) {
    const double scale = TIC / Look.format->tic;
    std::fprintf(f, "set format x '%%g'\n");
    std::fprintf(f, "set xtics %s %g scale %.4f offset 0, screen %.5f\n",
                 PlotX2tics ? "mirror" : "nomirror", panel.xstep, PlotXtics ? scale : 0.0,
                 (Look.format->number_depth - NUMBER_DEPTH) * Look.letters / place.height);
    const char* mirror = PlotY2tics ? "mirror" : "nomirror";
    if (numbers)
        std::fprintf(f, "set format y '%%g'\nset ytics %s %g scale %.4f\n", mirror, panel.ystep,
                     scale);
    else
        std::fprintf(f, "set format y ''\nset ytics %s autofreq scale %.4f\n", mirror,
                     PlotYtics ? scale : 0.0);
}

// A text of the table of kinds, in the italics of whatever the letters are.
static std::string typeset(std::string text) {
    static constexpr char NAMED[] = "/Arial-Italic";
    for (std::size_t at = 0; (at = text.find(NAMED, at)) != std::string::npos;)
        text.replace(at, std::strlen(NAMED), "/:Italic");
    return text;
}

static void write_labels(const panel_t& panel, const place_t& place) {
    const double em = Look.letters;
    std::fprintf(f, "unset label\n");
    std::fprintf(f, "set label '{/:Italic s}, Å^{-1}' at screen %.5f, screen %.5f center\n",
                 screen_x(place, (panel.x0 + panel.x1) / 2),
                 screen_y(place, panel.y0 - panel.bottom + 0.7 * em));
    for (std::size_t line = 0; line < panel.labels.size(); line++)
        std::fprintf(
            f, "set label '%s' at screen %.5f, screen %.5f center rotate\n",
            typeset(panel.labels[line]).c_str(),
            screen_x(place, panel.x0 - panel.left + (0.95 + 1.2 * static_cast<double>(line)) * em),
            screen_y(place, (panel.y0 + panel.y1) / 2));
}

// ---- The plot command --------------------------------------------------------------------------

static unsigned paler(unsigned byte, double part) {
    return static_cast<unsigned>(std::lround(255 * (1 - part) + byte * part));
}

// The colour of a kind, mixed with white to that part of it: nothing is transparent, because EPS
// knows no such thing, and other formats would show the bands in other colours.
static void print_color(char (&to)[8], int r, double part) {
    unsigned rgb = 0;
    if (std::sscanf(Type[r].style_color, "#%6x", &rgb) == 1 && Look.grey)
        rgb = 0x707070;
    std::snprintf(to, sizeof to, "#%02X%02X%02X", paler(rgb >> 16 & 255, part),
                  paler(rgb >> 8 & 255, part), paler(rgb & 255, part));
}

// Bands are drawn before all curves, lest they cover any. In shades of grey they are paler, so
// that a grey line is seen on them.
static void write_band(int c, int j) {
    char color[8];
    print_color(color, d_idx(PlotColType[j]), Look.grey ? ErrFillAlpha / 2 : ErrFillAlpha);
    std::fprintf(f,
                 "%s using 1:2:3 notitle with filledcurves fillstyle solid 1 noborder "
                 "fillcolor rgb '%s'",
                 block_name(c, j, true).text, color);
}

// Type -1 is no point: the dot of type 0 fills the circle in an SVG. gnuplot clears a disk for a
// point all the same, which `pointintervalbox` makes too small to be seen.
static void write_bars(int c, int j) {
    char color[8];
    print_color(color, d_idx(PlotColType[j]), 1.0);
    std::fprintf(f, "%s using 1:2:3 notitle with errorbars pt -1 lw %g lc rgb '%s'",
                 block_name(c, j, true).text, BAR * ErrLineWidthFactor, color);
}

// The name of a curve in the legend, where the layout has room for it.
static void write_title(const panel_t& panel, const place_t& place, int c, int j) {
    for (const entry_t& entry : panel.entries) {
        if (entry.c != c || entry.j != j)
            continue;
        std::fprintf(f, "title ");
        write_text(f, entry.text.c_str());
        std::fprintf(f, " at screen %.5f, screen %.5f ", screen_x(place, entry.x),
                     screen_y(place, panel.y1 + panel.top - entry.depth));
        return;
    }
    std::fprintf(f, "notitle ");
}

static void write_curve(const panel_t& panel, const page_t& page, const place_t& place, int c,
                        int j) {
    const data_type_t& kind = Type[d_idx(PlotColType[j])];
    char color[8];
    print_color(color, d_idx(PlotColType[j]), 1.0);
    std::fprintf(f, "%s using 1:2 ", block_name(c, j, false).text);
    write_title(panel, place, c, j);
    if (kind.style_type == ST_LINES)
        std::fprintf(f, "with lines lw %g", CURVE * kind.style_lw / 2 * LineWidthFactor);
    else
        std::fprintf(f, "with %s pt %d ps %.4g lw %g",
                     kind.style_type == ST_POINTS ? "points" : "linespoints", kind.p_type,
                     point_size(page) * PointSizeFactor, CIRCLE * LineWidthFactor);
    std::fprintf(f, " lc rgb '%s'", color);
}

// Bands, then curves, each behind its bars. Returns the positions of what belongs together.
static std::vector<part_t> write_plot(const page_t& page, const panel_t& panel, int number) {
    const place_t place = place_of(page, number);
    std::vector<part_t> parts;
    std::size_t bands = 0;
    int position = 0;
    const auto begin_series = [&position]() {
        std::fprintf(f, position++ == 0 ? "plot " : ", \\\n     ");
    };
    for_each_curve(panel.plot, [&](int c, int j) {
        if (!has_band(j))
            return;
        begin_series();
        write_band(c, j);
        parts.push_back({number, 0, position});
    });
    for_each_curve(panel.plot, [&](int c, int j) {
        if (has_bars(j)) {
            begin_series();
            write_bars(c, j);
            parts.push_back({number, position + 1, position});
        }
        begin_series();
        write_curve(panel, page, place, c, j);
        if (has_band(j))
            parts[bands++].curve = position;
    });
    std::fprintf(f, "\n");
    return parts;
}

std::vector<part_t> write_commands(const page_t& page) {
    const bool multiplot = page.panels.size() > 1 && !is(".html");
    std::vector<part_t> parts;
    std::fprintf(f, "set encoding utf8\n");
    int number = 0;
    for (const panel_t& panel : page.panels) {
        write_data(panel);
        if (number++ == 0 || is(".html"))
            write_terminal(page, number);
        if (number == 1 && multiplot)
            std::fprintf(f, "set multiplot\n");
        const place_t place = place_of(page, number);
        write_frame(panel, place);
        write_tics(panel, place, page.numbers);
        write_labels(panel, place);
        std::fprintf(f,
                     "set key Left reverse samplen %g noenhanced\n"
                     "set bars %.4g\nset pointintervalbox 0.01\n",
                     Look.format->sample, CAP / Look.format->tic);
        const std::vector<part_t> added = write_plot(page, panel, number);
        parts.insert(parts.end(), added.begin(), added.end());
    }
    if (multiplot)
        std::fprintf(f, "unset multiplot\n");
    return parts;
}
