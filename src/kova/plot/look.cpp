// SPDX-License-Identifier: MIT
//
// gravlex's own look: on the screen, and in an image of so many pixels.
#include <cstring>

#include "plot/plot.h"

// ---- Settings ----------------------------------------------------------------------------------

// Font size of an image: SVG viewers scale the picture down, so it needs larger letters.
static int font_size() {
    return MakeImage == IMG_SVG ? wx / 30 : wx / 50;
}

static void write_fonts_and_xlabel() {
    if (!image_is_asked_for()) {
        std::fprintf(f, "set xlabel \"s, A^{-1}\"\n");
        return;
    }
    const int size = font_size();
    std::fprintf(f, "set tics font \"Arial, %d\"\n", size);
    // The byte \305 is the Angstrom sign in the encoding set above. People edit their scripts in
    // another one.
    std::fprintf(f,
                 "set xlabel \"{/Arial-Italic s}, {/Arial {%s}^{-1}}\" "
                 "offset char 0, char -1 font \", %d\"\n",
                 NamedBlocks ? "\\305" : "\305", size);
}

static void write_tics() {
    std::fprintf(f, "set format y \"\"\n");
    std::fprintf(f, "set pointsize 0.5\n");
    if (!PlotX2tics)
        std::fprintf(f, "set xtics border nomirror\n");
    if (!PlotY2tics)
        std::fprintf(f, "set ytics border nomirror\n");
    if (!PlotXtics)
        std::fprintf(f, "set xtics scale 0\n");
    if (!PlotYtics)
        std::fprintf(f, "set ytics scale 0\n");
}

static void write_ranges(const ranges_t& ranges) {
    say("xmin=%f\nxmax=%f\n", ranges.xmin, ranges.xmax);
    std::fprintf(f, "set xrange [%f : %f]\n", ranges.xmin, ranges.xmax);
    std::fprintf(f, "set yrange [%f : %f]\n", ranges.ymin, ranges.ymax);
}

// True if another kind with the same typeset label is named already.
static bool label_is_used(int r) {
    for (int m = 0; m < MAX_COLS; m++) {
        if (m != r && Type[m].user > 0 && std::strcmp(Type[r].name_eps, Type[m].name_eps) == 0)
            return true;
    }
    return false;
}

// True if row r of Type, the kind of plot column j, is to be named in the y label.
static bool needs_label(int j, int r, plot_t plot) {
    if (PlotColType[j] == P_GINT_SMSS && deviations_shown())
        return false;  // shown as part of the sM(s) series
    if (!column_is_in(j, plot) || Type[r].user)
        return false;
    return !image_is_asked_for() || !label_is_used(r);
}

static void write_ylabel(plot_t plot) {
    for (data_type_t& kind : Type)
        kind.user = 0;
    std::fprintf(f, "set ylabel \"");
    const char* separator = "";
    for (int j = 1; j < NcolsToPlot; j++) {
        const int r = d_idx(PlotColType[j]);
        if (!needs_label(j, r, plot))
            continue;
        std::fprintf(f, "%s%s", separator,
                     image_is_asked_for() ? Type[r].name_eps : Type[r].name_short);
        separator = ", ";
        Type[r].user = 1;
    }
    std::fprintf(f, "\" ");
    if (image_is_asked_for())
        std::fprintf(f, "font \"Arial, %d\"", font_size());
    std::fprintf(f, "\n");
}

static void write_settings(plot_t plot, const ranges_t& ranges) {
    std::fprintf(f, "set encoding iso_8859_1\n");
    if (UserTerminal)
        std::fprintf(f, "set terminal %s\n", UserTerminalName);
    write_fonts_and_xlabel();
    write_tics();
    if (PlotRatio != 0.0)
        std::fprintf(f, "set size ratio %f\n", PlotRatio);
    if (PlotGrid)
        std::fprintf(f, "set grid\n");
    write_ranges(ranges);
    std::fprintf(f, "set style fill transparent solid %4.1f noborder\n", ErrFillAlpha);
    std::fprintf(f, "set bars 0.5\n");
    write_ylabel(plot);
}

// ---- Series ------------------------------------------------------------------------------------

// A width or size in gnuplot's units. That of an image is made for a width of so many pixels and
// shrinks as it grows, so that the picture looks the same at any size.
static double scaled(double on_screen, double pixels) {
    return image_is_asked_for() ? pixels / wx : on_screen;
}

static void write_deviations(int c, int j) {
    const data_type_t& kind = Type[d_idx(PlotColType[j])];
    std::fprintf(f, "%s using 1:2:3 notitle with ", block_name(c, j, true).text);
    if (has_band(j))
        std::fprintf(f, "filledcurves fillcolor \"%s\"", kind.style_color);
    else
        std::fprintf(f, "errorbars pt 0 lw %4.1f lc rgb \"%s\"",
                     scaled(1.0, 1800.0) * ErrLineWidthFactor, kind.style_color);
}

static void write_curve(int c, int j) {
    static const char* const WORDS[] = {"", "lines", "points", "linespoints", " "};
    const data_type_t& kind = Type[d_idx(PlotColType[j])];
    std::fprintf(f, "%s using 1:2 ", block_name(c, j, false).text);
    if (PlotLegend)
        std::fprintf(f, "title '%s (%d-%d)'", kind.name_short, CurveNd[c], CurveNc[c]);
    else
        std::fprintf(f, "notitle");
    std::fprintf(f, " with %s ", WORDS[kind.style_type]);
    if (kind.style_type == ST_POINTS || kind.style_type == ST_LPOINTS)
        std::fprintf(f, "pt %d ps %4.1f", kind.p_type, scaled(0.7, 1200.0) * PointSizeFactor);
    else
        std::fprintf(f, " ");
    std::fprintf(f, " lw %4.1f lc rgb \"%s\"",
                 kind.style_lw * (scaled(1.0, 2000.0) * LineWidthFactor), kind.style_color);
}

const look_t GravlexLook = {write_settings, write_deviations, write_curve, false};
const look_t* Look = &GravlexLook;
