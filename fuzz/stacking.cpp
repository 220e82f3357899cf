// SPDX-License-Identifier: MIT
//
// The curve buffer, by itself and under the shifts of a whole plot, against the plain way: results
// to the bit, messages, and the step error at the same point.
#include <algorithm>
#include <cstdlib>

#include "harness.h"
#include "input/input.h"
#include "plain_stack.h"
#include "plot/plot.h"

static constexpr int MAX_POINTS = 12;
static constexpr int MAX_STEPS = 60;

static const char STEP_ERROR[] = "linear interpolation: step error.";

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

// Compares the end of a run. True if it ended with the step error.
static bool has_failed(const ended_t& ended, bool should_fail) {
    require((ended.status == 1) == should_fail, "step error: not at the same point");
    require_same(ended.err, should_fail ? STEP_ERROR : "", "step error: another message");
    return should_fail;
}

// False after a step error.
static bool check_look_up(plain_buffer_t* plain, double x) {
    double lowest = 0.0, highest = 0.0;
    int count = 0;
    bool should_fail = false;
    try {
        count = plain_min_max(plain, x, &lowest, &highest);
    } catch (const step_error_t&) {
        should_fail = true;
    }
    double ymin = 5.0, ymax = 5.0;
    int rc = -1;
    const ended_t& ended = run([&] { rc = buf_y_min_max(x, &ymin, &ymax); });
    if (has_failed(ended, should_fail))
        return false;
    require(rc == count, "look-up: another count");
    require_same(ymin, lowest, "look-up: another minimum");
    require_same(ymax, highest, "look-up: another maximum");
    require_same(ended.out, "", "look-up: a message");
    return true;
}

static bool check_shift(plain_buffer_t* plain, const column_t& x, const column_t& y,
                        double direction, double* shift) {
    plain_shift_t expected = {};
    bool should_fail = false;
    try {
        expected = plain_shift_of(plain, x, y, direction);
    } catch (const step_error_t&) {
        should_fail = true;
    }
    double dmin = 5.0, dmax = 5.0;
    const ended_t& ended = run([&] {
        *shift = buf_calc_shift(points(x), data_of(x), data_of(y), &dmin, &dmax, direction);
    });
    require_same(ended.out,
                 "bcs> n=" + std::to_string(x.size()) +
                     " Nbuf=" + std::to_string(plain->curves.size()) + "\n",
                 "shift: another message");
    if (has_failed(ended, should_fail))
        return false;
    require_same(*shift, expected.shift, "shift: another");
    require_same(dmin, expected.lowest, "shift: another minimum");
    require_same(dmax, expected.highest, "shift: another maximum");
    return true;
}

static void check_buffer(bytes_t* bytes) {
    plain_buffer_t plain;
    std::vector<column_t> abscissae;
    run(buf_initialize);
    bool good = true;
    for (int step = 0; good && bytes->left > 0 && step < MAX_STEPS; step++) {
        const int choice = take_below(bytes, 16);
        if (choice == 0) {
            run(buf_initialize);
            plain.curves.clear();
        } else if (choice < 4) {
            good = check_look_up(&plain, take_number(bytes));
        } else {
            const column_t x = choose_abscissa(bytes, &abscissae);
            const column_t y = take_ordinates(bytes, x.size());
            const double direction = choice == 4 ? 0.0 : choice % 2 == 0 ? 1.0 : -1.0;
            double shift = 0.0;
            if (choice >= 14)
                shift = take_number(bytes);
            else
                good = check_shift(&plain, x, y, direction, &shift);
            if (good && choice > 7) {
                run([&] { buf_add(points(x), data_of(x), data_of(y), shift); });
                plain_add(&plain, x, y, shift);
            }
        }
    }
    run(buf_initialize);
}

// ---- A whole plot ------------------------------------------------------------------------------

// Any kinds in any order, in two groups.
static void take_columns(bytes_t* bytes) {
    clear_columns();
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
    std::vector<column_t> expected;
    std::string said;
    bool should_fail = false;
    try {
        expected = plain_stack(1, 1, &said);
    } catch (const step_error_t&) {
        should_fail = true;
    }
    const ended_t& ended = run([] { calc_shifts({1, 1}); });
    require_same(without_nan_signs(ended.out), without_nan_signs(said), "plot: another message");
    if (!has_failed(ended, should_fail)) {
        for (std::size_t k = 0; k < expected.size(); k++) {
            for (std::size_t l = 0; l < expected[k].size(); l++)
                require_same(CurveShift[k][l], expected[k][l], "plot: another shift");
        }
    }
    run(buf_initialize);
    release_curves();
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    bytes_t bytes = {data, size};
    if (take_below(&bytes, 2) == 0)
        check_buffer(&bytes);
    else
        check_plot(&bytes);
    return 0;
}
