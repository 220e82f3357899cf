// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <string>
#include <vector>

#include "input/input.h"
#include "run/run.h"
#include "state.h"

using Groups = Fresh;

static std::vector<int> column_groups() {
    group_columns();
    return std::vector<int>(ColPlotGroup + 1, ColPlotGroup + NcolsToPlot);
}

static std::vector<int> curve_groups() {
    group_curves();
    return std::vector<int>(CurvePlotGroup, CurvePlotGroup + Ncurves);
}

using numbers_t = std::vector<int>;

static void add_empty_set(int Nd, int Nc) {
    append_curve(Nd, Nc, 1.0);
}

TEST_F(Groups, start_at_nothing) {
    EXPECT_EQ(ColErrIdx[0], -1);
    for (int j = 1; j < MAX_COLS; j++)
        EXPECT_EQ(ColErrIdx[j], 0);
    for (int j = 0; j < MAX_COLS; j++)
        EXPECT_EQ(ColPlotGroup[j], 0);
    EXPECT_EQ(ColGroupsToPlot, 0);
    EXPECT_EQ(CurveGroupsToPlot, 0);
}

// ---- Columns -----------------------------------------------------------------------------------

TEST_F(Groups, each_column_is_its_own_without_a_mask) {
    set_plot_columns({P_GINT_S, P_GINT_INT, P_GINT_BGL, P_GINT_SMS});
    EXPECT_EQ(column_groups(), (numbers_t{1, 2, 3}));
    EXPECT_EQ(ColGroupsToPlot, 3);
    EXPECT_EQ(ColPlotGroup[0], 0);
}

TEST_F(Groups, combined_columns_share_the_first_group) {
    set_plot_columns({P_GINT_S, P_GINT_INT, P_GINT_SMS, P_GINT_BGL});
    DataToCombine = P_GINT_INT | P_GINT_BGL;
    EXPECT_EQ(column_groups(), (numbers_t{1, 2, 1}));
    EXPECT_EQ(ColGroupsToPlot, 2);
}

TEST_F(Groups, the_first_group_counts_even_if_it_is_empty) {
    set_plot_columns({P_GINT_S, P_GINT_INT, P_GINT_BGL});
    DataToCombine = P_GINT_SEC;
    EXPECT_EQ(column_groups(), (numbers_t{2, 3}));
    EXPECT_EQ(ColGroupsToPlot, 3);
}

TEST_F(Groups, the_abscissa_is_never_combined) {
    set_plot_columns({P_GINT_S, P_GINT_INT, P_GINT_BGL});
    DataToCombine = P_GINT_S | P_GINT_BGL;
    EXPECT_EQ(column_groups(), (numbers_t{2, 1}));
    EXPECT_EQ(ColPlotGroup[0], 0);
}

TEST_F(Groups, no_columns_make_no_group_without_a_mask) {
    EXPECT_EQ(NcolsToPlot, 0);
    group_columns();
    EXPECT_EQ(ColGroupsToPlot, 0);
    DataToCombine = P_GINT_INT;
    group_columns();
    EXPECT_EQ(ColGroupsToPlot, 1);
}

// ---- Curves ------------------------------------------------------------------------------------

TEST_F(Groups, each_curve_is_its_own_without_a_combine_list) {
    add_empty_set(1, 1);
    add_empty_set(2, 1);
    EXPECT_EQ(curve_groups(), (numbers_t{1, 2}));
    EXPECT_EQ(CurveGroupsToPlot, 2);
}

static void combine_list(int Num1, int Num2) {
    NparToCombine = 1;
    ParToCombineNum1 = resized<int>(nullptr, 1);
    ParToCombineNum2 = resized<int>(nullptr, 1);
    *ParToCombineNum1 = Num1;
    *ParToCombineNum2 = Num2;
}

TEST_F(Groups, any_combine_list_combines_all_curves) {
    add_empty_set(1, 1);
    add_empty_set(2, 1);
    add_empty_set(3, 1);
    combine_list(1, 1);
    EXPECT_EQ(curve_groups(), (numbers_t{1, 1, 1}));
    EXPECT_EQ(CurveGroupsToPlot, 1);
}

TEST_F(Groups, a_combine_list_of_unknown_sets_combines_all_curves_too) {
    add_empty_set(1, 1);
    add_empty_set(2, 1);
    combine_list(7, 7);
    EXPECT_EQ(curve_groups(), (numbers_t{1, 1}));
    EXPECT_EQ(CurveGroupsToPlot, 1);
}

TEST_F(Groups, without_curves_there_is_a_group_only_for_a_combine_list) {
    group_curves();
    EXPECT_EQ(CurveGroupsToPlot, 0);
    combine_list(1, 1);
    group_curves();
    EXPECT_EQ(CurveGroupsToPlot, 1);
}

// ---- Deviations --------------------------------------------------------------------------------

static numbers_t links(const std::vector<int>& kinds) {
    set_plot_columns(kinds);
    link_deviations();
    return numbers_t(ColErrIdx, ColErrIdx + kinds.size());
}

TEST_F(Groups, both_sms_columns_are_linked_to_their_deviations) {
    EXPECT_EQ(links({P_GINT_S, P_GINT_INT, P_GINT_BGL, P_GINT_SMS, P_GINT_SMSS, P_GINT_DSMS}),
              (numbers_t{-1, 0, 0, 4, 0, 4}));
}

TEST_F(Groups, without_deviations_no_column_is_linked) {
    EXPECT_EQ(links({P_GINT_S, P_GINT_INT, P_GINT_BGL, P_GINT_SMS, P_GINT_INTS, P_GINT_DSMS}),
              (numbers_t{-1, 0, 0, 0, 0, 0}));
}

TEST_F(Groups, only_experimental_and_delta_sms_are_linked) {
    EXPECT_EQ(links({P_GINT_S, P_GINT_SMSS, P_GINT_TSMS, P_GINT_DSMS, P_GINT_INT}),
              (numbers_t{-1, 0, 0, 1, 0}));
    reset_state();
    EXPECT_EQ(links({P_GINT_S, P_GINT_TSMS, P_GINT_SMS, P_GINT_SMSS}), (numbers_t{-1, 0, 3, 0}));
}

TEST_F(Groups, the_first_column_of_each_kind_is_linked) {
    EXPECT_EQ(links({P_GINT_S, P_GINT_SMS, P_GINT_SMS, P_GINT_SMSS, P_GINT_SMSS}),
              (numbers_t{-1, 3, 0, 0, 0}));
}

TEST_F(Groups, column_0_is_no_deviation_column) {
    EXPECT_EQ(links({P_GINT_SMSS, P_GINT_SMS, P_GINT_DSMS}), (numbers_t{-1, 0, 0}));
    EXPECT_EQ(links({P_GINT_SMS, P_GINT_SMSS}), (numbers_t{-1, 0}));
}

TEST_F(Groups, columns_behind_the_last_one_do_not_count) {
    set_plot_columns({P_GINT_S, P_GINT_SMS, P_GINT_SMSS});
    NcolsToPlot = 2;
    DataToCombine = P_GINT_SMSS;
    link_deviations();
    group_columns();
    EXPECT_EQ(ColErrIdx[1], 0);
    EXPECT_EQ(ColPlotGroup[1], 2);
    EXPECT_EQ(ColPlotGroup[2], 0);
}

// ---- Empty curves ------------------------------------------------------------------------------

TEST_F(Groups, a_curve_without_rows_ends_the_run) {
    set_plot_columns({P_GINT_S, P_GINT_INT});
    add_set(1, 1, {{1.0}, {2.0}});
    add_empty_set(2, 1);
    add_set(3, 1, {{1.0}, {2.0}});
    EXPECT_TRUE(
        ended_with(in_child(refuse_empty_curves), 1, "No data found in data set # 1\n", ""));
}

TEST_F(Groups, every_curve_without_rows_is_named) {
    add_empty_set(5, 1);
    add_empty_set(6, 1);
    EXPECT_TRUE(ended_with(in_child(refuse_empty_curves), 1,
                           "No data found in data set # 0\nNo data found in data set # 1\n", ""));
}

TEST_F(Groups, curves_with_rows_or_none_at_all_pass) {
    EXPECT_TRUE(ended_with(in_child(refuse_empty_curves), 0, "", ""));
    set_plot_columns({P_GINT_S, P_GINT_INT});
    add_set(1, 1, {{1.0}, {2.0}});
    EXPECT_TRUE(ended_with(in_child(refuse_empty_curves), 0, "", ""));
}
