// SPDX-License-Identifier: MIT
//
// What the cases of the topic shifts and the comparison with the reference (test_stacking.cpp) do
// not show.
#include <string>
#include <vector>

#include "input/input.h"
#include "plot/plot.h"
#include "state.h"

using Shifts = Fresh;

// The rising abscissa and a curve from 0 to 10 on it, moved by some amount.
static const column_t X = {0, 1, 2};

static column_t curve(double moved, double extent = 10) {
    return {moved, moved + extent, moved};
}

static std::string calculate() {
    combine_all();
    return said([] { calc_shifts({1, 1}); });
}

TEST_F(Shifts, deviations_are_never_placed) {
    set_plot_columns({P_GINT_S, P_GINT_SMS, P_GINT_SMSS});
    add_set(1, 1, {X, {0, 2, 0}, {1, 1, 1}});
    for (int* flag : {&smsErrBars, &dsmsErrBars, &smsErrFill, &dsmsErrFill, &dsmslErrFill}) {
        *flag = 1;
        CurveShift[0][2] = 7;
        const std::string message = calculate();
        EXPECT_EQ(message.find("sMsS (1-1)>"), std::string::npos);
        EXPECT_TRUE(contains(message, "sMsS (1-1) AutoShift=0.000000\n"));
        EXPECT_EQ(CurveShift[0][2], 0);
        *flag = 0;
    }
}

TEST_F(Shifts, deviations_that_are_not_shown_are_left_as_they_were) {
    set_plot_columns({P_GINT_S, P_GINT_SMS, P_GINT_SMSS});
    add_set(1, 1, {X, {0, 2, 0}, {1, 1, 1}});
    CurveShift[0][2] = 7;
    EXPECT_TRUE(contains(calculate(), "sMsS (1-1) AutoShift=7.000000\n"));
}

TEST_F(Shifts, what_was_in_the_buffer_before_does_not_count) {
    const double x[] = {0, 2}, y[] = {1e6, 1e6};
    buf_add(2, x, y, 0.0);
    set_plot_columns({P_GINT_S, P_GINT_INT});
    add_set(1, 1, {X, curve(0)});
    calculate();
    EXPECT_EQ(CurveShift[0][1], 2);
    EXPECT_EQ(Nbuf, 0);
}
