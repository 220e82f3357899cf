// SPDX-License-Identifier: MIT
//
// The frame around the plots: which are drawn in a call, and what each call sends.
#include <string>
#include <vector>

#include "input/input.h"
#include "plot/plot.h"
#include "state.h"

using DataPlot = Fresh;

static const column_t X = {0, 1, 2};

// Two curve groups of one set and two column groups of one intensity each.
static void make_four_plots() {
    set_plot_columns({P_GINT_S, P_GINT_INT, P_GINT_RINT});
    for (int Nd = 1; Nd <= 2; Nd++) {
        add_set(Nd, 1, {X, {0, 10, 0}, {0, 20, 0}});
        CurvePlotGroup[Nd - 1] = Nd;
        ColPlotGroup[Nd] = Nd;
    }
    CurveGroupsToPlot = ColGroupsToPlot = 2;
    PlotLegend = 1;
}

struct plotted_t {
    std::string stream, message;
};

static plotted_t plotted(int give_commands) {
    plotted_t result;
    result.stream =
        sent([&] { result.message = said([&] { EXPECT_EQ(data_plot(give_commands), 0); }); });
    return result;
}

static int count(const std::string& text, const std::string& part) {
    int n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        n++;
    return n;
}

static const char GROUPS[] = "2 Curve groups to plot.\n2 Data  groups to plot.\n";

TEST_F(DataPlot, starts_with_nothing_chosen_and_nothing_shifted) {
    EXPECT_EQ(CurCurvesGroupToPlot, 0);
    EXPECT_EQ(CurDataGroupToPlot, 0);
    EXPECT_EQ(AutoShiftsReady, 0);
    EXPECT_EQ(YrangeMin, 0.0);
    EXPECT_EQ(YrangeMax, 0.0);
    EXPECT_EQ(f, nullptr);
}

TEST_F(DataPlot, a_negative_page_flag_draws_nothing) {
    make_four_plots();
    MultiPlot = -1;
    CurCurvesGroupToPlot = CurDataGroupToPlot = 1;
    EXPECT_EQ(plotted(1).stream, "");
    EXPECT_EQ(plotted(1).message, GROUPS);
    EXPECT_EQ(AutoShiftsReady, 0);
}

TEST_F(DataPlot, data_alone_tell_no_range_and_change_no_range) {
    make_four_plots();
    AutoShifts = 0;
    YrangeMin = 7;
    EXPECT_EQ(plotted(0).message, GROUPS);
    EXPECT_EQ(YrangeMin, 7);
}

// ---- Shifts ------------------------------------------------------------------------------------

TEST_F(DataPlot, shifts_are_made_for_data_alone_too) {
    make_four_plots();
    EXPECT_EQ(count(plotted(0).message, "shiftMult="), 1);
    EXPECT_EQ(CurveShift[0][1], 2);
}

// No file has a column twice.
TEST_F(DataPlot, a_kind_that_stands_twice_is_named_once) {
    set_plot_columns({P_GINT_S, P_GINT_SEC, P_GINT_SEC, P_GINT_IAT});
    combine_all();
    EXPECT_TRUE(contains(sent([] {
                             Look->settings({1, 1}, plot_ranges({1, 1}));
                         }),
                         "\nset ylabel \"Sec., Iat.\" \n"));
}

// ---- What is in a plot -------------------------------------------------------------------------

TEST_F(DataPlot, column_0_is_in_no_plot) {
    make_four_plots();
    EXPECT_TRUE(column_is_in(1, {1, 1}));
    EXPECT_FALSE(column_is_in(1, {1, 2}));
    EXPECT_FALSE(column_is_in(0, {1, 0}));
    EXPECT_TRUE(curve_is_in(1, {2, 1}));
    EXPECT_FALSE(curve_is_in(1, {1, 1}));
}

TEST_F(DataPlot, a_column_that_a_set_lacks_has_no_points) {
    set_plot_columns({P_GINT_S, P_GINT_INT, P_GINT_BGL});
    add_set(1, 1, {X, {0, 1, 0}, {}});
    EXPECT_EQ(column_points(0, 0), 3);
    EXPECT_EQ(column_points(0, 1), 3);
    EXPECT_EQ(column_points(0, 2), 0);
}
