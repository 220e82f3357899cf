// SPDX-License-Identifier: MIT
//
// What the readers of both layouts leave in the store, as far as no plot shows it: the cases of
// the topics layouts, reader-v1 and reader-v2 have the rest.
#include <cerrno>
#include <string>

#include "input/input.h"
#include "state.h"

using Tables = Fresh;

struct layout_t {
    void (*read)(const char* inpFname);
    const char* text;  // one set, 2-1, of two rows
};

static const layout_t Layouts[] = {{parse_kova_int_tables_ver1,
                                    "GED curves.\n(over)\n"
                                    "       S      |  sM(s) St.dev |\n(over)\n"
                                    " Curve: (2-1) =0.3 \n(over)\n1 0.7\n2 0.9\n"
                                    "-------------------\n"},
                                   {parse_kova_int_tables_ver2,
                                    "GED curves.\n(over)\n"
                                    "Set: 2-1 \nScale=0.3 \n----------------\n"
                                    "       S      |  sM(s) St.dev |\n(over)\n1 0.7\n2 0.9\n"
                                    "----------------\n"}};

TEST_F(Tables, fill_the_store_to_the_last_bit) {
    for (const layout_t& layout : Layouts) {
        reset_state();
        smsStdevFactor = 0.1;
        errno = ERANGE;  // from before: it does not spoil the factor
        const text_file_t file(layout.text);
        said([&] { layout.read(file.name()); });
        ASSERT_EQ(Ncurves, 1);
        EXPECT_EQ(CurveNd[0], 2);
        EXPECT_EQ(CurveNc[0], 1);
        EXPECT_EQ(CurveScaleFactor[0], 0.3);
        ASSERT_EQ(Npts[0], 2);
        EXPECT_EQ(column_t(Curve[0][0], Curve[0][0] + 2), (column_t{1, 2}));
        // Multiplied before they are divided.
        EXPECT_EQ(bits(Curve[0][1][0]), bits((0.7 * 0.1) / 0.3));
        EXPECT_EQ(bits(Curve[0][1][1]), bits((0.9 * 0.1) / 0.3));
    }
}

TEST_F(Tables, of_layout_2_may_end_before_a_factor_is_there) {
    const text_file_t file("GED curves.\n(over)\nSet: 2-1 \n");
    said([&] { parse_kova_int_tables_ver2(file.name()); });
    ASSERT_EQ(Ncurves, 1);
    EXPECT_EQ(CurveScaleFactor[0], 1.0);
}

TEST_F(Tables, of_layout_1_that_are_not_there_leave_the_columns_alone) {
    Ncols = NcolsToPlot = 2;
    ColType[0] = PlotColType[0] = 7;
    const text_file_t file("no mark\n");
    EXPECT_EQ(said([&] { parse_kova_int_tables_ver1(file.name()); }), "");
    EXPECT_EQ(Ncols, 2);
    EXPECT_EQ(NcolsToPlot, 2);
    EXPECT_EQ(ColType[0], 7);
    EXPECT_EQ(PlotColType[0], 7);
}

TEST_F(Tables, of_layout_1_are_forgotten_at_every_mark) {
    TableN = 2;
    Ncols = NcolsToPlot = 2;
    ColType[1] = TypePos[1] = PlotColType[1] = PlotTypePos[1] = 7;
    const text_file_t file("GED curves.\n\n");
    EXPECT_EQ(said([&] { parse_kova_int_tables_ver1(file.name()); }), "");
    EXPECT_EQ(Ncols, 0);
    EXPECT_EQ(NcolsToPlot, 0);
    for (int j = 0; j < MAX_COLS; j++)
        EXPECT_EQ(ColType[j] | TypePos[j] | PlotColType[j] | PlotTypePos[j], 0);
}
