// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdlib>

#include "input/input.h"
#include "state.h"

using Store = Fresh;

TEST_F(Store, clear_columns_forgets_all_of_them) {
    Ncols = NcolsToPlot = MAX_COLS;
    for (int* array : {ColType, TypePos, PlotColType, PlotTypePos})
        std::fill(array, array + MAX_COLS, 7);
    clear_columns();
    EXPECT_EQ(Ncols, 0);
    EXPECT_EQ(NcolsToPlot, 0);
    for (const int* array : {ColType, TypePos, PlotColType, PlotTypePos})
        EXPECT_EQ(std::count(array, array + MAX_COLS, 0), MAX_COLS);
}

TEST_F(Store, a_new_set_has_a_label_a_factor_zero_shifts_and_nothing_else) {
    NcolsToPlot = 2;
    append_curve(3, 4, 0.75);
    ASSERT_EQ(Ncurves, 1);
    EXPECT_EQ(CurveNd[0], 3);
    EXPECT_EQ(CurveNc[0], 4);
    EXPECT_EQ(CurveScaleFactor[0], 0.75);
    EXPECT_EQ(Npts[0], 0);
    EXPECT_EQ(CurvePlotGroup[0], 0);
    EXPECT_EQ(Curve[0], nullptr);
    for (int j = 0; j < MAX_COLS; j++)
        EXPECT_EQ(bits(CurveShift[0][j]), bits(0.0));
}

TEST_F(Store, new_columns_are_null) {
    NcolsToPlot = 3;
    append_curve(1, 1, 1.0);
    create_curve_columns();
    for (int j = 0; j < MAX_COLS; j++)
        EXPECT_EQ(Curve[0][j], nullptr);
}

TEST_F(Store, grows_and_keeps_every_value) {
    const int sets = 70, points = 1000;
    NcolsToPlot = MAX_COLS;
    for (int c = 0; c < sets; c++) {
        append_curve(c, 2 * c, 3.0 * c);
        CurveShift[c][1] = c;
        CurvePlotGroup[c] = c;
        create_curve_columns();
        for (int k = 0; k < (c == 5 ? points : c); k++) {
            append_point();
            ASSERT_EQ(Npts[c], k + 1);
            for (int j = 0; j < NcolsToPlot; j++)
                Curve[c][j][k] = 1e6 * c + 1e4 * j + k;
        }
    }
    ASSERT_EQ(Ncurves, sets);
    for (int c = 0; c < sets; c++) {
        EXPECT_EQ(CurveNd[c], c);
        EXPECT_EQ(CurveNc[c], 2 * c);
        EXPECT_EQ(CurveScaleFactor[c], 3.0 * c);
        EXPECT_EQ(CurveShift[c][1], c);
        EXPECT_EQ(CurvePlotGroup[c], c);
        ASSERT_EQ(Npts[c], c == 5 ? points : c);
        for (int j = 0; j < NcolsToPlot; j++) {
            for (int k = 0; k < Npts[c]; k++)
                ASSERT_EQ(Curve[c][j][k], 1e6 * c + 1e4 * j + k);
        }
    }
}

TEST_F(Store, a_point_grows_the_plot_columns_only) {
    NcolsToPlot = 2;
    append_curve(1, 1, 1.0);
    create_curve_columns();
    append_point();
    EXPECT_NE(Curve[0][0], nullptr);
    EXPECT_NE(Curve[0][1], nullptr);
    EXPECT_EQ(Curve[0][2], nullptr);
}

TEST_F(Store, release_takes_sets_at_every_stage) {
    NcolsToPlot = 3;
    append_curve(1, 1, 1.0);  // without columns
    append_curve(2, 1, 1.0);
    create_curve_columns();  // without points
    append_curve(3, 1, 1.0);
    create_curve_columns();
    append_point();
    release_curves();
    EXPECT_EQ(Ncurves, 0);
    for (const void* array :
         {static_cast<void*>(Curve), static_cast<void*>(Npts), static_cast<void*>(CurveNd),
          static_cast<void*>(CurveNc), static_cast<void*>(CurveScaleFactor),
          static_cast<void*>(CurveShift), static_cast<void*>(CurvePlotGroup)})
        EXPECT_EQ(array, nullptr);
    release_curves();  // nothing left, no harm
    append_curve(4, 1, 2.0);
    EXPECT_EQ(CurveNd[0], 4);
}
