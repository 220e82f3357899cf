// SPDX-License-Identifier: MIT
#include <cstring>

#include "plot/plot.h"

double YrangeMin = 0.0, YrangeMax = 0.0;

// Each range leaves this part of the data's extent free at both ends.
static constexpr double MARGIN = 0.05;

void abscissa_extent(plot_t plot, double* xMin, double* xMax) {
    *xMin = 1e99;
    *xMax = -1e99;
    for (int c = 0; c < Ncurves; c++) {
        if (!curve_is_in(c, plot))
            continue;
        const double first = Curve[c][0][0];
        const double last = Curve[c][0][Npts[c] - 1];
        if (first < *xMin)
            *xMin = first;
        if (last > *xMax)
            *xMax = last;
    }
}

static void ordinate_extent(plot_t plot, double* ymin, double* ymax) {
    *ymin = 1e99;
    *ymax = -1e99;
    for_each_column(plot, [=](int c, int j) {
        for (int k = 0; k < column_points(c, j); k++) {
            const double y = Curve[c][j][k] + CurveShift[c][j];
            if (y > *ymax)
                *ymax = y;
            if (y < *ymin)
                *ymin = y;
        }
    });
}

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

ranges_t plot_ranges(plot_t plot, double xMin, double xMax) {
    double ymin, ymax;
    ordinate_extent(plot, &ymin, &ymax);
    YrangeMin = ymin - MARGIN * (ymax - ymin);
    YrangeMax = ymax + MARGIN * (ymax - ymin);
    return {Gxmin > GX_NOT_GIVEN ? Gxmin : xMin - MARGIN * (xMax - xMin),
            Gxmax > GX_NOT_GIVEN ? Gxmax : xMax + MARGIN * (xMax - xMin), YrangeMin, YrangeMax};
}

void write_ranges(const ranges_t& ranges) {
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

void write_settings(plot_t plot, const ranges_t& ranges) {
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
