// SPDX-License-Identifier: MIT
#include <initializer_list>

#include "plot/plot.h"

// How the deviations of an sM(s) column are shown, if they are.
namespace {
enum deviation_t {
    DEV_NONE,
    DEV_BARS,        // error bars
    DEV_BAND,        // a band around the curve
    DEV_LEVEL_BAND,  // a band around the zero line of the curve
    DEV_HIDDEN,      // the column of the deviations themselves: shown with the others
};
}  // namespace

static deviation_t deviation_of(int kind) {
    if (kind == P_GINT_SMS)
        return smsErrBars ? DEV_BARS : smsErrFill ? DEV_BAND : DEV_NONE;
    if (kind == P_GINT_DSMS)
        return dsmsErrBars    ? DEV_BARS
               : dsmsErrFill  ? DEV_BAND
               : dsmslErrFill ? DEV_LEVEL_BAND
                              : DEV_NONE;
    return kind == P_GINT_SMSS && deviations_shown() ? DEV_HIDDEN : DEV_NONE;
}

// Visits the columns of the plot in drawing order: curve by curve, but experimental sM(s) after
// all others, so that its points lie on top of the lines. Plot command and data blocks both walk
// this way; gnuplot matches them by their order alone.
template <class visitor_t>
static void walk(plot_t plot, visitor_t visit) {
    for (const bool experimental : {false, true}) {
        for_each_column(plot, [&](int c, int j) {
            if ((PlotColType[j] == P_GINT_SMS) == experimental)
                visit(c, j);
        });
    }
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

// The series that shows the deviations; it stands before the curve's own.
static void write_deviation_series(int r, deviation_t deviation, const widths_t& widths) {
    if (deviation == DEV_BARS)
        std::fprintf(f, "'-' using 1:2:3 notitle with errorbars pt 0 lw %4.1f lc rgb \"%s\", ",
                     widths.ewf, Type[r].style_color);
    else if (deviation != DEV_NONE)
        std::fprintf(f, "'-' using 1:2:3 notitle with filledcurves fillcolor \"%s\", ",
                     Type[r].style_color);
}

static void write_curve_series(int c, int r, const char* style, const widths_t& widths) {
    std::fprintf(f, "'-' using 1:2 ");
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
    const char* separator = " ";
    std::fprintf(f, "plot ");
    walk(plot, [&](int c, int j) {
        const int r = d_idx(PlotColType[j]);
        const char* style = style_word(r);
        const deviation_t deviation = deviation_of(PlotColType[j]);
        if (deviation == DEV_HIDDEN)
            return;
        std::fprintf(f, "%s", separator);
        separator = ", ";
        write_deviation_series(r, deviation, widths);
        write_curve_series(c, r, style, widths);
    });
    std::fprintf(f, "\n");
}

// ---- The data ----------------------------------------------------------------------------------

static void write_deviation_block(int c, int j, deviation_t deviation) {
    const double* y = Curve[c][j];
    const double* d = Curve[c][ColErrIdx[j]];
    const double shift = CurveShift[c][j];
    const int n = d == nullptr ? 0 : column_points(c, j);
    begin_rows(Curve[c][0], n);
    for (int k = 0; k < n; k++) {
        const double level = deviation == DEV_LEVEL_BAND ? shift : y[k] + shift;
        if (deviation == DEV_BARS)
            write_row(level, d[k]);
        else
            write_row(level - d[k], level + d[k]);
    }
    end_rows();
}

static void write_curve_block(int c, int j) {
    const double* y = Curve[c][j];
    const double shift = CurveShift[c][j];
    const int n = column_points(c, j);
    begin_rows(Curve[c][0], n);
    for (int k = 0; k < n; k++)
        write_row(y[k] + shift);
    end_rows();
}

void write_data_blocks(plot_t plot) {
    walk(plot, [](int c, int j) {
        const deviation_t deviation = deviation_of(PlotColType[j]);
        if (deviation == DEV_HIDDEN)
            return;
        if (deviation != DEV_NONE)
            write_deviation_block(c, j, deviation);
        write_curve_block(c, j);
    });
    flush_rows();
}
