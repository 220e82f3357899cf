// SPDX-License-Identifier: MIT
#include <cstring>

#include "plain/plain.h"

namespace plain {

std::FILE* f = nullptr;

static bool is_image() {
    const int image = Options.MakeImage;
    return image == IMG_PNG || image == IMG_EPS || image == IMG_SVG;
}

// ---- Settings ----------------------------------------------------------------------------------

static int font_size() {
    return Options.MakeImage == IMG_SVG ? Options.wx / 30 : Options.wx / 50;
}

static void write_labels_and_tics() {
    if (is_image()) {
        std::fprintf(f, "set tics font \"Arial, %d\"\n", font_size());
        std::fprintf(f,
                     "set xlabel \"{/Arial-Italic s}, {/Arial {\305}^{-1}}\" "
                     "offset char 0, char -1 font \", %d\"\n",
                     font_size());
    } else {
        std::fprintf(f, "set xlabel \"s, A^{-1}\"\n");
    }
    std::fprintf(f, "set format y \"\"\nset pointsize 0.5\n");
    if (!Options.PlotX2tics)
        std::fprintf(f, "set xtics border nomirror\n");
    if (!Options.PlotY2tics)
        std::fprintf(f, "set ytics border nomirror\n");
    if (!Options.PlotXtics)
        std::fprintf(f, "set xtics scale 0\n");
    if (!Options.PlotYtics)
        std::fprintf(f, "set ytics scale 0\n");
    if (Options.PlotRatio != 0.0)
        std::fprintf(f, "set size ratio %f\n", Options.PlotRatio);
    if (Options.PlotGrid)
        std::fprintf(f, "set grid\n");
}

static void write_xrange(int i) {
    double xMin = 1e99, xMax = -1e99;
    for (const curve_t& curve : Table.curves) {
        if (curve.PlotGroup != i)
            continue;
        const std::vector<double>& x = curve.columns[0];
        if (x.front() < xMin)
            xMin = x.front();
        if (x.back() > xMax)
            xMax = x.back();
    }
    double lxmin = xMin - 0.05 * (xMax - xMin), lxmax = xMax + 0.05 * (xMax - xMin);
    if (Options.Gxmin > -1e100)
        lxmin = Options.Gxmin;
    if (Options.Gxmax > -1e100)
        lxmax = Options.Gxmax;
    std::printf("xmin=%f\nxmax=%f\n", lxmin, lxmax);
    std::fprintf(f, "set xrange [%f : %f]\n", lxmin, lxmax);
}

static void write_yrange(int i, int j) {
    double ymin = 1e99, ymax = -1e99;
    for (const curve_t& curve : Table.curves) {
        for (int l = 1; l < Table.NcolsToPlot; l++) {
            if (!in_plot(curve, l, i, j))
                continue;
            for (int p = 0; p < points(curve, l); p++) {
                const double y = curve.columns[l][p] + curve.Shift[l];
                if (y > ymax)
                    ymax = y;
                if (y < ymin)
                    ymin = y;
            }
        }
    }
    std::fprintf(f, "set yrange [%f : %f]\n", ymin - 0.05 * (ymax - ymin),
                 ymax + 0.05 * (ymax - ymin));
}

static void write_ylabel(int j) {
    bool is_named[MAX_COLS] = {};
    const char* before = "";
    std::fprintf(f, "set ylabel \"");
    for (int l = 1; l < Table.NcolsToPlot; l++) {
        const int r = d_idx(Table.PlotColType[l]);
        if (Table.PlotColType[l] == P_GINT_SMSS && any_deviation())
            continue;
        if (Table.ColPlotGroup[l] != j || is_named[r])
            continue;
        bool label_is_used = false;
        for (int m = 0; m < MAX_COLS; m++) {
            if (is_image() && is_named[m] && std::strcmp(Type[r].name_eps, Type[m].name_eps) == 0)
                label_is_used = true;
        }
        if (label_is_used)
            continue;
        std::fprintf(f, "%s%s", before, is_image() ? Type[r].name_eps : Type[r].name_short);
        before = ", ";
        is_named[r] = true;
    }
    std::fprintf(f, "\" ");
    if (is_image())
        std::fprintf(f, "font \"Arial, %d\"", font_size());
    std::fprintf(f, "\n");
}

static void write_settings(int i, int j) {
    std::fprintf(f, "set encoding iso_8859_1\n");
    if (Options.UserTerminal)
        std::fprintf(f, "set terminal %s\n", Options.UserTerminalName);
    write_labels_and_tics();
    write_xrange(i);
    write_yrange(i, j);
    std::fprintf(f, "set style fill transparent solid %4.1f noborder\nset bars 0.5\n",
                 Options.ErrFillAlpha);
    write_ylabel(j);
}

// ---- Series ------------------------------------------------------------------------------------

struct series_t {
    const curve_t* curve;
    int column;
};

// The series of a plot in the order of drawing: experimental sM(s) last, so that its points lie on
// top.
static std::vector<series_t> series_of(int i, int j) {
    std::vector<series_t> all;
    for (int stage = 0; stage < 2; stage++) {
        for (const curve_t& curve : Table.curves) {
            for (int l = 1; l < Table.NcolsToPlot; l++) {
                const bool is_experiment = Table.PlotColType[l] == P_GINT_SMS;
                if (in_plot(curve, l, i, j) && is_experiment == (stage == 1))
                    all.push_back({&curve, l});
            }
        }
    }
    return all;
}

enum deviation_t { NONE, BARS, BAND, LEVEL_BAND, HIDDEN };

// How the deviations of a column are shown, in the order of what goes first.
static deviation_t deviation_of(int type) {
    if (type == P_GINT_SMS && Options.smsErrBars)
        return BARS;
    if (type == P_GINT_SMS && Options.smsErrFill)
        return BAND;
    if (type == P_GINT_DSMS && Options.dsmsErrBars)
        return BARS;
    if (type == P_GINT_DSMS && Options.dsmsErrFill)
        return BAND;
    if (type == P_GINT_DSMS && Options.dsmslErrFill)
        return LEVEL_BAND;
    if (type == P_GINT_SMSS && any_deviation())
        return HIDDEN;
    return NONE;
}

static void write_plot_command(int i, int j) {
    double ewf = 1.0, wf = 1.0, ps = 0.7;
    if (is_image()) {
        ewf = 1800.0 / Options.wx;
        wf = 2000.0 / Options.wx;
        ps = 1200.0 / Options.wx;
    }
    ewf *= Options.ErrLineWidthFactor;
    wf *= Options.LineWidthFactor;
    ps *= Options.PointSizeFactor;
    static const char* const styles[] = {"", "lines", "points", "linespoints", " "};
    const char* before = " ";
    std::fprintf(f, "plot ");
    for (const series_t& series : series_of(i, j)) {
        const int r = d_idx(Table.PlotColType[series.column]);
        const data_type_t& type = Type[r];
        if (type.style_type < ST_LINES || type.style_type > ST_SPECIAL)
            fail(stderr, "Invalid plotting style %d for data type %d\n", type.style_type, r);
        const deviation_t deviation = deviation_of(type.type);
        if (deviation == HIDDEN)
            continue;
        std::fprintf(f, "%s", before);
        before = ", ";
        if (deviation == BARS)
            std::fprintf(f, "'-' using 1:2:3 notitle with errorbars pt 0 lw %4.1f lc rgb \"%s\", ",
                         ewf, type.style_color);
        if (deviation == BAND || deviation == LEVEL_BAND)
            std::fprintf(f, "'-' using 1:2:3 notitle with filledcurves fillcolor \"%s\", ",
                         type.style_color);
        std::fprintf(f, "'-' using 1:2 ");
        if (Options.PlotLegend)
            std::fprintf(f, "title '%s (%d-%d)'", type.name_short, series.curve->Nd,
                         series.curve->Nc);
        else
            std::fprintf(f, "notitle");
        std::fprintf(f, " with %s ", styles[type.style_type]);
        if (type.style_type == ST_POINTS || type.style_type == ST_LPOINTS)
            std::fprintf(f, "pt %d ps %4.1f", type.p_type, ps);
        else
            std::fprintf(f, " ");
        std::fprintf(f, " lw %4.1f lc rgb \"%s\"", type.style_lw * wf, type.style_color);
    }
    std::fprintf(f, "\n");
}

static void write_deviations(const curve_t& curve, int l, deviation_t deviation) {
    const int e = Table.ColErrIdx[l];
    const double shift = curve.Shift[l];
    for (int p = 0; p < points(curve, l) && p < points(curve, e); p++) {
        const double x = curve.columns[0][p];
        const double y = curve.columns[l][p] + shift;
        const double d = curve.columns[e][p];
        if (deviation == BARS)
            std::fprintf(f, "%f %f %f\n", x, y, d);
        if (deviation == BAND)
            std::fprintf(f, "%f %f %f\n", x, y - d, y + d);
        if (deviation == LEVEL_BAND)
            std::fprintf(f, "%f %f %f\n", x, shift - d, shift + d);
    }
    std::fprintf(f, "e\n");
}

void write_data_blocks(int curve_group, int column_group) {
    for (const series_t& series : series_of(curve_group, column_group)) {
        const curve_t& curve = *series.curve;
        const int l = series.column;
        const deviation_t deviation = deviation_of(Table.PlotColType[l]);
        if (deviation == HIDDEN)
            continue;
        if (deviation != NONE)
            write_deviations(curve, l, deviation);
        for (int p = 0; p < points(curve, l); p++)
            std::fprintf(f, "%f %f\n", curve.columns[0][p], curve.columns[l][p] + curve.Shift[l]);
        std::fprintf(f, "e\n");
    }
}

// ---- All plots ---------------------------------------------------------------------------------

void data_plot(int give_commands) {
    std::printf("%d Curve groups to plot.\n%d Data  groups to plot.\n", Table.CurveGroupsToPlot,
                Table.ColGroupsToPlot);
    for (int i = 1; i <= Table.CurveGroupsToPlot; i++) {
        for (int j = 1; j <= Table.ColGroupsToPlot; j++) {
            if (!Options.MultiPlot &&
                (i != Table.CurCurvesGroupToPlot || j != Table.CurDataGroupToPlot))
                continue;
            if (Options.AutoShifts && !Table.AutoShiftsReady)
                calc_shifts(i, j);
            if (give_commands) {
                write_settings(i, j);
                write_plot_command(i, j);
            }
            write_data_blocks(i, j);
        }
    }
}

}  // namespace plain
