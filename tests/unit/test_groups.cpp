// SPDX-License-Identifier: MIT
//
// What the cases of the topic grouping do not show.
#include <vector>

#include "input/input.h"
#include "run/run.h"
#include "state.h"

using Groups = Fresh;
using numbers_t = std::vector<int>;

TEST_F(Groups, start_at_nothing) {
    EXPECT_EQ(ColErrIdx[0], -1);
    for (int j = 1; j < MAX_COLS; j++)
        EXPECT_EQ(ColErrIdx[j], 0);
    for (int j = 0; j < MAX_COLS; j++)
        EXPECT_EQ(ColPlotGroup[j], 0);
    EXPECT_EQ(ColGroupsToPlot, 0);
    EXPECT_EQ(CurveGroupsToPlot, 0);
}

static numbers_t links(const std::vector<int>& kinds) {
    set_plot_columns(kinds);
    link_deviations();
    return numbers_t(ColErrIdx, ColErrIdx + kinds.size());
}

TEST_F(Groups, column_0_is_no_deviation_column) {
    EXPECT_EQ(links({P_GINT_SMSS, P_GINT_SMS, P_GINT_DSMS}), (numbers_t{-1, 0, 0}));
    EXPECT_EQ(links({P_GINT_SMS, P_GINT_SMSS}), (numbers_t{-1, 0}));
}
