// SPDX-License-Identifier: MIT
//
// The curve buffer, by itself and under the shifts of a whole plot, against the reference: results
// to the bit, messages, and the step error at the same point.
#include <algorithm>
#include <cstdlib>

#include "common/start.h"
#include "harness.h"
#include "input/input.h"
#include "plot/plot.h"

using column_t = std::vector<double>;

static constexpr int MAX_POINTS = 12;
static constexpr int MAX_STEPS = 60;

// ---- Curves ------------------------------------------------------------------------------------

// Abscissae that rise by equal or by any steps, or are equal or unsorted.
static column_t take_abscissa(bytes_t* bytes) {
    column_t x(static_cast<std::size_t>(take_below(bytes, MAX_POINTS)));
    const int style = take_below(bytes, 8);
    double next = 0.25 * (take_byte(bytes) - 128);
    for (double& value : x) {
        value = style >= 6 ? take_number(bytes) : next;
        next += style < 2 ? 0.25 : 0.25 * take_below(bytes, 8);
    }
    if (style == 5)
        std::sort(x.begin(), x.end(), [](double a, double b) { return a > b; });
    if (style == 4 && !x.empty())
        x[static_cast<std::size_t>(take_byte(bytes)) % x.size()] = take_number(bytes);
    return x;
}

// Most curves share their abscissae with others.
static const column_t& choose_abscissa(bytes_t* bytes, std::vector<column_t>* known) {
    const std::size_t which = static_cast<std::size_t>(take_below(bytes, 16));
    if (which < known->size())
        return (*known)[which];
    known->push_back(take_abscissa(bytes));
    return known->back();
}

static column_t take_ordinates(bytes_t* bytes, std::size_t count) {
    column_t y(count);
    for (double& value : y)
        value = take_number(bytes);
    return y;
}

static int points(const column_t& x) {
    return static_cast<int>(x.size());
}

// Never null, as in the program, whose curves all have points.
static const double* data_of(const column_t& x) {
    static const double none = 0.0;
    return x.empty() ? &none : x.data();
}

// ---- The buffer by itself ----------------------------------------------------------------------

// False after a step error.
static bool check_look_up(double x) {
    double lowest, highest, expected_lowest, expected_highest;
    int count = -1, expected = -2;
    if (!end_the_same(
            [&] { count = buf_y_min_max(x, &lowest, &highest); },
            [&] { expected = plain::buf_y_min_max(x, &expected_lowest, &expected_highest); },
            "look-up"))
        return false;
    require(count == expected, "look-up: another count");
    require_same(lowest, expected_lowest, "look-up: another minimum");
    require_same(highest, expected_highest, "look-up: another maximum");
    return true;
}

// Also gives the shift.
static bool check_shift(const column_t& x, const column_t& y, double direction, double* shift) {
    double dmin, dmax, expected_dmin, expected_dmax, expected = 0.0;
    const int n = points(x);
    const double *xs = data_of(x), *ys = data_of(y);
    if (!end_the_same([&] { *shift = buf_calc_shift(n, xs, ys, &dmin, &dmax, direction); },
                      [&] {
                          expected = plain::buf_calc_shift(n, xs, ys, &expected_dmin,
                                                           &expected_dmax, direction);
                      },
                      "shift"))
        return false;
    require_same(*shift, expected, "shift: another");
    require_same(dmin, expected_dmin, "shift: another minimum");
    require_same(dmax, expected_dmax, "shift: another maximum");
    return true;
}

static void add(const column_t& x, const column_t& y, double shift) {
    run([&] { buf_add(points(x), data_of(x), data_of(y), shift); });
    plain::buf_add(points(x), data_of(x), data_of(y), shift);
}

static void empty_buffers() {
    run(buf_initialize);
    plain::buf_initialize();
}

static void check_buffer(bytes_t* bytes) {
    std::vector<column_t> abscissae;
    bool good = true;
    for (int step = 0; good && bytes->left > 0 && step < MAX_STEPS; step++) {
        const int choice = take_below(bytes, 16);
        if (choice == 0) {
            empty_buffers();
        } else if (choice < 4) {
            good = check_look_up(take_number(bytes));
        } else {
            const column_t x = choose_abscissa(bytes, &abscissae);
            const column_t y = take_ordinates(bytes, x.size());
            const double direction = choice == 4 ? 0.0 : choice % 2 == 0 ? 1.0 : -1.0;
            double shift = 0.0;
            if (choice >= 14)
                shift = take_number(bytes);
            else
                good = check_shift(x, y, direction, &shift);
            if (good && choice > 7)
                add(x, y, shift);
        }
    }
}

// ---- A whole plot ------------------------------------------------------------------------------

// Any kinds in any order, in two groups.
static void take_columns(bytes_t* bytes) {
    NcolsToPlot = 2 + take_below(bytes, 6);
    for (int j = 0; j < NcolsToPlot; j++) {
        PlotColType[j] = Type[take_below(bytes, MAX_COLS)].type;
        ColPlotGroup[j] = 1 + (take_below(bytes, 8) == 7);
    }
}

// A data set, which may lack a column.
static void take_set(bytes_t* bytes, std::vector<column_t>* abscissae) {
    append_curve(take_byte(bytes), Ncurves, 1.0);
    create_curve_columns();
    const int c = Ncurves - 1;
    CurvePlotGroup[c] = 1 + (take_below(bytes, 8) == 7);
    const column_t x = choose_abscissa(bytes, abscissae);
    for (std::size_t k = 0; k < x.size(); k++) {
        append_point();
        Curve[c][0][k] = x[k];
        for (int j = 1; j < NcolsToPlot; j++)
            Curve[c][j][k] = take_number(bytes);
    }
    const int lacking = take_below(bytes, 32);
    if (lacking > 0 && lacking < NcolsToPlot) {
        std::free(Curve[c][lacking]);
        Curve[c][lacking] = nullptr;
    }
}

static void check_plot(bytes_t* bytes) {
    take_columns(bytes);
    ShiftMult = take_number(bytes);
    std::vector<column_t> abscissae;
    for (int count = 1 + take_below(bytes, 6); count > 0; count--)
        take_set(bytes, &abscissae);
    share_curves();
    plain::Options.ShiftMult = ShiftMult;
    if (!end_the_same([] { calc_shifts({1, 1}); }, [] { plain::calc_shifts(1, 1); }, "plot"))
        return;
    for (int k = 0; k < Ncurves; k++) {
        const plain::curve_t& expected = plain::Table.curves[static_cast<std::size_t>(k)];
        for (int l = 0; l < NcolsToPlot; l++)
            require_same(CurveShift[k][l], expected.Shift[l], "plot: another shift");
    }
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    bytes_t bytes = {data, size};
    reset_state();
    if (take_below(&bytes, 2) == 0)
        check_buffer(&bytes);
    else
        check_plot(&bytes);
    return 0;
}
