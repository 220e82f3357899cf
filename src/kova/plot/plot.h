// SPDX-License-Identifier: MIT
//
// Plotting: what gnuplot is sent for each plot, and how the curves of the first one are stacked.
//
// Indices as everywhere: c is a data set, j a plot column, k a point; g and h are the groups of a
// plot.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "input/input.h"
#include "run/run.h"

// ---- What belongs to a plot (members.cpp) ------------------------------------------------------

// A plot is one pair of a curve group and a column group, both from 1.
struct plot_t {
    int g;  // its curves are the data sets c with CurvePlotGroup[c] equal to g
    int h;  // its columns are the plot columns j >= 1 with ColPlotGroup[j] equal to h
};

// Visits every plot, in the order in which they are drawn: visit(plot).
template <class visitor_t>
void for_each_plot(visitor_t visit) {
    for (int g = 1; g <= CurveGroupsToPlot; g++) {
        for (int h = 1; h <= ColGroupsToPlot; h++)
            visit(plot_t{g, h});
    }
}

// Column 0, the abscissa, is in no plot.
bool curve_is_in(int c, plot_t plot);
bool column_is_in(int j, plot_t plot);

// Points of a plot column of a curve: Npts, or 0 for a column that the data set does not have.
int column_points(int c, int j);

// Visits every column of every curve of the plot, curve by curve: visit(c, j).
template <class visitor_t>
void for_each_column(plot_t plot, visitor_t visit) {
    for (int c = 0; c < Ncurves; c++) {
        if (!curve_is_in(c, plot))
            continue;
        for (int j = 1; j < NcolsToPlot; j++) {
            if (column_is_in(j, plot))
                visit(c, j);
        }
    }
}

// ---- The frame (data_plot.cpp) -----------------------------------------------------------------

// Writes the plots to gnuplot: with give_commands their settings, plot command and data, without
// it the data only, as gnuplot expects it after "replot". When MultiPlot is 0, only the plot
// CurCurvesGroupToPlot, CurDataGroupToPlot. Returns 0.
int data_plot(int give_commands);

// ---- The curve buffer (curve_buffer.cpp) -------------------------------------------------------
// The curves placed so far, each with its shift. Emptied before and after the stacking of a plot.

struct buf_t {
    std::int32_t n;    // points
    std::int32_t khi;  // the points that bracketed the abscissa looked up last:
    std::int32_t klo;  // khi is klo + 1 after the first look-up
    double* x;         // abscissae, assumed to rise
    double* y;         // ordinates, shift included
};

extern buf_t* buf;  // in the order of adding; null when empty
extern std::int32_t Nbuf;

void buf_initialize();  // empties the buffer

// Adds a copy of the curve, moved by shift. No memory ends the run with status 1 and
// "Cannot allocate memory for buffer!\n" on standard error.
void buf_add(int n, const double* data_x, const double* data_y, double shift);

// The lowest and the highest value of the buffered curves at x, by linear interpolation. Returns
// how many curves cover x; with none, ymin is 1e99 and ymax -1e99. A look-up between two points
// of equal abscissa ends the run with status 1 and "linear interpolation: step error." on
// standard error.
int buf_y_min_max(double x, double* ymin, double* ymax);

// The shift that makes the curve touch the upper (direction > 0) or lower (< 0) envelope of the
// buffer from outside, judged at the curve's own points; 0 if the two do not meet. Also gives the
// curve's own extent. Prints a trace line.
double buf_calc_shift(int n, const double* data_x, const double* data_y, double* data_min,
                      double* data_max, double direction);

// ---- Shifts (shifts.cpp) -----------------------------------------------------------------------

extern int AutoShiftsReady;  // flag: the shifts of this run are final; set by calc_shifts

// Computes CurveShift for the curves of a plot and tells about it on standard output.
void calc_shifts(plot_t plot);

// ---- Ranges (ranges.cpp) -----------------------------------------------------------------------

// The axes of a plot: from what data and options ask for, in data units.
struct ranges_t {
    double xmin, xmax;
    double ymin, ymax;
};

// The range of y in the plot looked at last; set by plot_ranges.
extern double YrangeMin, YrangeMax;

ranges_t plot_ranges(plot_t plot);

// ---- Series (series.cpp) -----------------------------------------------------------------------

// How the deviations of an sM(s) column are shown, if they are.
enum deviation_t {
    DEV_NONE,
    DEV_BARS,        // error bars
    DEV_BAND,        // a band around the curve
    DEV_LEVEL_BAND,  // a band around the zero line of the curve
    DEV_HIDDEN,      // the column of the deviations themselves: shown with the others
};

deviation_t deviation_of(int kind);

// True if the series of the plot column has bars, or a band of either sort.
bool has_bars(int j);
bool has_band(int j);

// Visits the series of the plot, each a column of a curve, in drawing order: curve by curve, but
// experimental sM(s) after all others, so that its points lie on top of the lines. Whoever writes
// a part of a plot walks this way: gnuplot matches inline data and series by their order alone.
template <class visitor_t>
void for_each_series(plot_t plot, visitor_t visit) {
    for (const bool experimental : {false, true}) {
        for_each_column(plot, [&](int c, int j) {
            if ((PlotColType[j] == P_GINT_SMS) == experimental &&
                deviation_of(PlotColType[j]) != DEV_HIDDEN)
                visit(c, j);
        });
    }
}

// False for a plot of nothing but deviations that are shown with other curves.
bool has_series(plot_t plot);

// Flag: the data of a series are a block with a name, $sms_1_1, that is written before the plot
// command. Off in gravlex: they follow it, and '-' stands for them.
extern int NamedBlocks;

// The name of the block of a series, or of its deviations (of less than 100 characters); "'-'"
// where blocks have none.
struct block_name_t {
    char text[100];
};
block_name_t block_name(int c, int j, bool deviations);

// Sends the plot command. A kind with a drawing style that is none ends the run with status 1 and
// "Invalid plotting style %d for data type %d\n" on standard error.
void write_plot_command(plot_t plot);

// Sends the data of every series of that command, in the same order.
void write_data_blocks(plot_t plot);

// The data of one of them; its deviations stand before the curve. What is written waits for
// flush_rows.
void write_deviation_block(int c, int j, deviation_t deviation);
void write_curve_block(int c, int j);

// ---- The look (look.cpp) -----------------------------------------------------------------------

// How a plot looks, in gnuplot's words. Each function writes to f.
struct look_t {
    // The commands in front of the plot command: encoding, fonts, labels, tics, axes, margins.
    void (*settings)(plot_t plot, const ranges_t& ranges);
    // A series in the plot command: the bars or the band of a curve, and the curve itself; their
    // names, styles, widths and colours.
    void (*deviations)(int c, int j);
    void (*curve)(int c, int j);
    bool bands_first;  // all bands stand before, and so behind, all curves; else before their own
};

// gravlex's own, which tells the range of x on standard output.
extern const look_t GravlexLook;

// The one in use: gravlex's own unless a further program brings another.
extern const look_t* Look;

// ---- Rows of data (rows.cpp) -------------------------------------------------------------------

// The longest text of a number, and a blank or newline behind it: sign, 309 digits, point and six
// decimals.
constexpr std::size_t NUMBER_SIZE = 320;

// Writes the text that "%f" stands for, without a NUL. Returns where it ends.
char* write_number(char* to, double value);

// One block of data: begin_rows with its name and the n abscissae, write_row for each of them in
// order with one or two more numbers, end_rows. flush_rows sends what waits to be sent.
void begin_rows(const block_name_t& name, const double* x, int n);
void write_row(double y);
void write_row(double y1, double y2);
void end_rows();
void flush_rows();

// Releases what is kept between blocks.
void release_rows();
