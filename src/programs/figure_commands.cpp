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

// ---- The terminal ------------------------------------------------------------------------------

// The unit of an SVG in points. In HTML it is a pixel of a page 1000 pixels wide. In a file it is
// as large as makes letters of 6.25 units: gnuplot draws a circle of radius 0.375 * letters * ps
// with a line of ps, whatever its width should be; only then are both right.
static double svg_unit(const page_t& page) {
    if (is_format(".html"))
        return page.columns * page.panel_width / 1000;
    return Figure.letters / 6.25;
}

static double point_size(const page_t& page) {
    if (is_format(".html"))
        return RADIUS / (0.375 * Figure.letters);
    return is_format(".svg") ? CIRCLE / svg_unit(page) : 1.0;
}

static void write_cairo_terminal() {
    // A quarter of a point more than whole points: gnuplot cuts the size to these.
    const double width = std::floor(Figure.width / 2.54 * 72 + 0.5) + 0.25;
    const double height = std::floor(Figure.height / 2.54 * 72 + 0.5) + 0.25;
    std::fprintf(f, "set terminal %scairo enhanced color font 'Arial,%g' ",
                 Figure.format->ending + 1, Figure.letters);
    std::fprintf(f, "fontscale 0.75 linewidth %d pointscale %.6f size %.4fin,%.4fin\n",
                 is_format(".pdf") ? 2 : 4, RADIUS / 3, width / 72, height / 72);
}

static void write_png_terminal() {
    const double scale = Figure.dpi / 72.0;
    std::fprintf(f, "set terminal pngcairo enhanced color font 'Arial,%g' ", Figure.letters);
    std::fprintf(f, "fontscale %.6f linewidth %.6f pointscale %.6f size %.0f,%.0f\n",
                 Figure.dpi / 96.0, scale, scale * RADIUS / 3,
                 std::floor(Figure.width / 2.54 * Figure.dpi + 0.5),
                 std::floor(Figure.height / 2.54 * Figure.dpi + 0.5));
}

static void write_svg_terminal(const page_t& page, int panel) {
    const double unit = svg_unit(page);
    double width = page.panel_width, height = page.panel_height;
    std::fprintf(f, "set terminal svg ");
    if (is_format(".html")) {
        std::fprintf(f, "mouse standalone name 'p%d' ", panel);
    } else {
        width *= page.columns;
        height *= page.rows;
    }
    std::fprintf(f,
                 "enhanced background 'white' font 'Arial,%.5g' linewidth %.5f size %.0f,%.0f\n",
                 Figure.letters / unit, 1 / unit, std::floor(width / unit + 0.5),
                 std::floor(height / unit + 0.5));
}

static void write_terminal(const page_t& page, int panel) {
    if (is_format(".pdf") || is_format(".eps"))
        write_cairo_terminal();
    else if (is_format(".png"))
        write_png_terminal();
    else
        write_svg_terminal(page, panel);
}

// ---- The data ----------------------------------------------------------------------------------

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
    const double pixels = (panel.x1 - panel.x0) / 72 * Figure.dpi;
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
    for_each_series(panel.plot, [&](int c, int j) {
        const deviation_t deviation = deviation_of(PlotColType[j]);
        if (deviation != DEV_NONE)
            write_deviation_block(c, j, deviation);
        if (is_format(".png") && Type[d_idx(PlotColType[j])].style_type == ST_LINES)
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
    if (is_format(".html"))
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

static void write_frame(const panel_t& panel, const ranges_t& ranges, const place_t& place) {
    std::fprintf(f, "set border 15 linewidth %g\n", FRAME);
    std::fprintf(f, "set lmargin at screen %.5f\nset rmargin at screen %.5f\n",
                 screen_x(place, panel.x0), screen_x(place, panel.x1));
    std::fprintf(f, "set bmargin at screen %.5f\nset tmargin at screen %.5f\n",
                 screen_y(place, panel.y0), screen_y(place, panel.y1));
    std::fprintf(f, "set xrange [%.9g : %.9g]\nset yrange [%.9g : %.9g]\n", ranges.xmin,
                 ranges.xmax, ranges.ymin, ranges.ymax);
    if (PlotGrid)
        std::fprintf(f,
                     "set grid back linetype 1 linewidth %g linecolor rgb '#BBBBBB' "
                     "dashtype solid\n",
                     GRID);
}

// gnuplot's own format has a blank in front, which moves the number to the right.
static void write_tics(const panel_t& panel, const place_t& place, bool numbers) {
    const double scale = TIC / Figure.format->tic;
    std::fprintf(f, "set format x '%s'\n", NUMBER);
    std::fprintf(f, "set xtics %s %g scale %.4f offset 0, screen %.5f\n",
                 PlotX2tics ? "mirror" : "nomirror", panel.xstep, PlotXtics ? scale : 0.0,
                 (Figure.format->number_depth - NUMBER_DEPTH) * Figure.letters / place.height);
    const char* mirror = PlotY2tics ? "mirror" : "nomirror";
    if (numbers)
        std::fprintf(f, "set format y '%s'\nset ytics %s %g scale %.4f\n", NUMBER, mirror,
                     panel.ystep, scale);
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
    const double em = Figure.letters;
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
    if (std::sscanf(Type[r].style_color, "#%6x", &rgb) == 1 && Figure.grey)
        rgb = 0x707070;
    std::snprintf(to, sizeof to, "#%02X%02X%02X", paler(rgb >> 16 & 255, part),
                  paler(rgb >> 8 & 255, part), paler(rgb & 255, part));
}

// In shades of grey bands are paler, so that a grey line is seen on them.
static void write_band(int c, int j) {
    char color[8];
    print_color(color, d_idx(PlotColType[j]), Figure.grey ? ErrFillAlpha / 2 : ErrFillAlpha);
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

// ---- The look ----------------------------------------------------------------------------------

// What is being written: a panel, and the position of a series in its plot command. Of the parts,
// those from Waiting on are bands that wait for their curves.
static const page_t* Page;
static const panel_t* Panel;
static int PanelNumber, Position;
static std::vector<part_t> Parts;
static std::size_t Waiting;

static void write_panel_settings(plot_t, const ranges_t& ranges) {
    const place_t place = place_of(*Page, PanelNumber);
    write_frame(*Panel, ranges, place);
    write_tics(*Panel, place, Page->numbers);
    write_labels(*Panel, place);
    std::fprintf(f,
                 "set key Left reverse samplen %g noenhanced\n"
                 "set bars %.4g\nset pointintervalbox 0.01\n",
                 Figure.format->sample, CAP / Figure.format->tic);
}

static void write_panel_deviations(int c, int j) {
    Position++;
    if (has_band(j)) {
        write_band(c, j);
        Parts.push_back({PanelNumber, 0, Position});
    } else {
        write_bars(c, j);
        Parts.push_back({PanelNumber, Position + 1, Position});
    }
}

static void write_panel_curve(int c, int j) {
    Position++;
    write_curve(*Panel, *Page, place_of(*Page, PanelNumber), c, j);
    if (has_band(j))
        Parts[Waiting++].curve = Position;
}

// All bands are drawn before all curves, lest they cover any.
static const look_t FigureLook = {write_panel_settings, write_panel_deviations, write_panel_curve,
                                  true};

// ---- All of it ---------------------------------------------------------------------------------

std::vector<part_t> write_commands(const page_t& page) {
    const bool multiplot = page.panels.size() > 1 && !is_format(".html");
    Look = &FigureLook;
    Page = &page;
    PanelNumber = 0;
    Parts.clear();
    std::fprintf(f, "set encoding utf8\n");
    for (const panel_t& panel : page.panels) {
        Panel = &panel;
        Position = 0;
        Waiting = Parts.size();
        write_data(panel);
        if (PanelNumber++ == 0 || is_format(".html"))
            write_terminal(page, PanelNumber);
        if (PanelNumber == 1 && multiplot)
            std::fprintf(f, "set multiplot\n");
        Look->settings(panel.plot, panel.ranges);
        write_plot_command(panel.plot);
    }
    if (multiplot)
        std::fprintf(f, "unset multiplot\n");
    return Parts;
}
