// SPDX-License-Identifier: MIT
//
// The classes of kinds, and what the cases of the topic shifts do not show.
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

TEST_F(Shifts, equal_intensities_are_stacked_by_a_fifth_of_their_extent) {
    set_plot_columns({P_GINT_S, P_GINT_INT});
    add_set(1, 1, {X, curve(0)});
    add_set(2, 1, {X, curve(0)});
    EXPECT_EQ(calculate(),
              "bcs> n=3 Nbuf=0\nTot.Exp.Int. (1-1)> i=1, j=1, k=0, l=1 (shift=2.000000)\n"
              "bcs> n=3 Nbuf=1\nTot.Exp.Int. (2-1)> i=1, j=1, k=1, l=1 (shift=4.000000)\n"
              "shiftMult=1.000000\nTot.Exp.Int. (1-1) AutoShift=2.000000\n"
              "Tot.Exp.Int. (2-1) AutoShift=4.000000\n");
    EXPECT_EQ(CurveShift[0][1], 2);
    EXPECT_EQ(CurveShift[1][1], 4);
    EXPECT_EQ(CurveShift[0][0], 0);
    EXPECT_EQ(AutoShiftsReady, 1);
    EXPECT_EQ(Nbuf, 0);
}

// With nothing else there, the shift is the gap, which is another one for each class.
TEST_F(Shifts, every_kind_has_its_class) {
    const struct {
        int kind;
        double shift;
    } kinds[] = {{P_GINT_BGL, 20}, {P_GINT_RBGL, 20}, {P_GINT_LBGL, 20},   {P_GINT_RINT, 20},
                 {P_GINT_INT, 20}, {P_GINT_LINT, 20}, {P_GINT_TINT, 20},   {P_GINT_DINT, -50},
                 {P_GINT_SMS, 50}, {P_GINT_TSMS, 50}, {P_GINT_DSMS, -100}, {P_GINT_SEC, 0},
                 {P_GINT_IAT, 0},  {P_GINT_INTS, 0},  {P_GINT_SMSS, 0},    {P_GINT_R, 0}};
    for (const auto& k : kinds) {
        SCOPED_TRACE(k.kind);
        reset_state();
        set_plot_columns({P_GINT_S, k.kind});
        add_set(1, 1, {X, curve(7, 100)});
        const std::string message = calculate();
        EXPECT_EQ(CurveShift[0][1], k.shift);
        EXPECT_EQ(message.find("bcs>") != std::string::npos, k.shift != 0);
        EXPECT_EQ(message.find("(shift=") != std::string::npos, k.shift != 0);
        EXPECT_TRUE(contains(message, "shiftMult=1.000000\n"));
        EXPECT_TRUE(contains(message, " (1-1) AutoShift="));
    }
}

TEST_F(Shifts, deltas_of_one_curve_do_not_share_a_shift) {
    set_plot_columns({P_GINT_S, P_GINT_DSMS, P_GINT_DSMS});
    add_set(1, 1, {X, {0, 2, 0}, {0, 2, 0}});
    calculate();
    EXPECT_EQ(CurveShift[0][1], -2);
    EXPECT_EQ(CurveShift[0][2], -4);
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

TEST_F(Shifts, a_column_that_a_set_lacks_is_not_placed) {
    set_plot_columns({P_GINT_S, P_GINT_BGL, P_GINT_INT});
    add_set(1, 1, {X, {}, curve(0)});
    add_set(2, 1, {X, curve(0, 5), curve(0)});
    calculate();
    EXPECT_EQ(CurveShift[0][1], 0);
    EXPECT_EQ(CurveShift[0][2], 2);
    EXPECT_EQ(CurveShift[1][1], 9);
    EXPECT_EQ(CurveShift[1][2], 9);
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
