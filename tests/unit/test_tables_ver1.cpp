// SPDX-License-Identifier: MIT
//
// Layout 1: what only its reader does.
#include <cerrno>
#include <cmath>
#include <string>
#include <vector>

#include "tables.h"

using TablesVer1 = Fresh;

static const std::string HEADER = std::string(L_S) + L_INT;
static const std::string START = "GED curves.\n(over)\n" + HEADER + "\n(over)\n";
static const char HEADER_MESSAGE[] =
    "2 types of data have been found:\n 0 S-values \n 1 Total experimental intensity \n"
    "2 types of data are subject to process:\n 0 S-values (column 0)\n"
    " 1 Total experimental intensity (column 1)\n";
static const char ROW_END[] = "===================\n";
static const char TABLE_END[] = "-------------------\n";

static std::string read(const std::string& text) {
    return read_text(Ver1, text);
}

// Reads a set with this opening line and one row.
static std::string opened(const std::string& line) {
    return read(START + line + "\n(over)\n1 2\n" + TABLE_END);
}

static ended_t wrongly_opened(const std::string& line) {
    return read_wrong_text(Ver1, START + line + "\n(over)\n1 2\n" + TABLE_END);
}

static void only_set(int Num1, int Num2) {
    NparToRead = 1;
    ParToReadNum1 = resized<int>(nullptr, 1);
    ParToReadNum2 = resized<int>(nullptr, 1);
    *ParToReadNum1 = Num1;
    *ParToReadNum2 = Num2;
}

TEST_F(TablesVer1, a_whole_table_is_told_line_by_line) {
    EXPECT_EQ(read("log\n" +
                   table_ver1(HEADER, {{"1-1", "2.5", "1 10\n2 20\n"}, {"2-1", "0.5", "3 30\n"}})),
              std::string(HEADER_MESSAGE) +
                  "Set # 0 has been read. Number of data points: 2 \n"
                  "Set # 1 has been read. Number of data points: 1 \nEnd of data table.\n");
    EXPECT_EQ(stored(0, 1), (column_t{10, 20}));
    EXPECT_EQ(stored(1, 0), (column_t{3}));
    EXPECT_EQ(CurveScaleFactor[0], 2.5);
    EXPECT_EQ(CurveScaleFactor[1], 0.5);
}

TEST_F(TablesVer1, the_header_row_is_the_line_at_its_place) {
    EXPECT_TRUE(ended_with(read_wrong_text(Ver1, "GED curves.\n" + HEADER + "\nwords\n"), 1,
                           "0 types of data have been found:\n"
                           "0 types of data are subject to process:\n"
                           "Not enough data for plotting.\n",
                           ""));
}

TEST_F(TablesVer1, reading_ends_at_the_rule_after_the_last_set) {
    read(table_ver1(HEADER, {{"1-1", "1", "1 2\n"}}) + " Curve: (2-1) =1 \n\n3 4\n" + ROW_END);
    EXPECT_EQ(Ncurves, 1);
}

TEST_F(TablesVer1, rules_of_18_characters_are_rows) {
    for (const char sign : {'=', '-'}) {
        const ended_t ended = read_wrong_text(
            Ver1, START + "Curve: (1-1) =1 \n\n1 2\n" + std::string(18, sign) + "\n");
        EXPECT_EQ(ended.status, 1);
        EXPECT_TRUE(contains(ended.out, "Invalid number of columns: expected 2, read 0 \n"));
    }
}

TEST_F(TablesVer1, rules_may_stand_anywhere_in_a_line) {
    EXPECT_EQ(read(START + "Curve: (1-1) =1 \n\n1 2\n3 4 ====================x\n" +
                   "Curve: (2-1) =1 \n\n5 6\nx-------------------\n"),
              std::string(HEADER_MESSAGE) +
                  "Set # 0 has been read. Number of data points: 1 \n"
                  "Set # 1 has been read. Number of data points: 1 \nEnd of data table.\n");
}

TEST_F(TablesVer1, a_line_with_both_rules_ends_the_set_only) {
    EXPECT_EQ(read(START + "Curve: (1-1) =1 \n\n1 2\n-------------------===================\n" +
                   "Curve: (2-1) =1 \n\n5 6\n" + TABLE_END),
              std::string(HEADER_MESSAGE) +
                  "Set # 0 has been read. Number of data points: 1 \n"
                  "Set # 1 has been read. Number of data points: 1 \nEnd of data table.\n");
}

TEST_F(TablesVer1, a_set_without_rows_has_no_points) {
    read(START + "Curve: (1-1) =1 \n\n" + TABLE_END);
    ASSERT_EQ(Ncurves, 1);
    EXPECT_EQ(Npts[0], 0);
    ASSERT_NE(Curve[0], nullptr);
    EXPECT_EQ(Curve[0][0], nullptr);
}

TEST_F(TablesVer1, blank_and_other_lines_between_sets_are_passed_over) {
    read(START + "words\n\nCurve: (1-1) =1 \n\n1 2\n" + ROW_END + "\n1 2 3\n\n" +
         "Curve: (2-1) =1 \n\n1 2\n" + TABLE_END);
    EXPECT_EQ(Ncurves, 2);
}

TEST_F(TablesVer1, new_sets_have_zero_shifts_and_no_group) {
    opened("Curve: (1-1) =1 ");
    EXPECT_EQ(CurveShift[0][0], 0.0);
    EXPECT_EQ(CurveShift[0][1], 0.0);
    EXPECT_EQ(CurvePlotGroup[0], 0);
}

// ---- Label -------------------------------------------------------------------------------------

static std::string label_of(const std::string& line) {
    opened(line);
    return Ncurves == 1 ? std::to_string(CurveNd[0]) + "-" + std::to_string(CurveNc[0]) : "none";
}

TEST_F(TablesVer1, the_label_stands_in_the_first_closed_parentheses) {
    EXPECT_EQ(label_of("Curve: (3-4) =1 "), "3-4");
    EXPECT_EQ(label_of("Curve: (3-4) (5-6) =1 "), "3-4");
    EXPECT_EQ(label_of("((x( Curve: (3-4) =1 "), "3-4");
    EXPECT_EQ(label_of("(3-4) Curve: =1 "), "3-4");
    EXPECT_EQ(label_of("Curve: (0x10-010)=1 "), "16-8");
    EXPECT_EQ(label_of("x3-4)Curve: =1 "), "3-4");  // no parenthesis before it: from character 2
}

TEST_F(TablesVer1, a_label_that_is_no_pair_ends_the_run) {
    for (const char* label : {"x", "1", "", "1-1-1", "08-1"})
        EXPECT_TRUE(ended_with(wrongly_opened("Curve: (" + std::string(label) + ") =1 "), 1,
                               std::string(HEADER_MESSAGE) +
                                   "Incorrect indication of intensity set: '" + label +
                                   "'\nIncorrect format of curve representation: " + label + " \n",
                               ""));
}

TEST_F(TablesVer1, a_line_that_begins_by_closing_takes_the_rest_of_it_for_the_label) {
    EXPECT_TRUE(ended_with(wrongly_opened(")Curve: (1-1) =1 "), 1,
                           std::string(HEADER_MESSAGE) +
                               "Incorrect indication of intensity set: 'Curve: (1-1) =1 \n'\n"
                               "Incorrect format of curve representation: Curve: (1-1) =1 \n \n",
                           ""));
}

TEST_F(TablesVer1, a_line_without_a_label_keeps_the_one_before) {
    read(START + "Curve: (3-4) =1 \n\n1 2\n" + ROW_END + "Curve: (5-6 =1 \n\n1 2\n" + TABLE_END);
    ASSERT_EQ(Ncurves, 2);
    EXPECT_EQ(CurveNd[1], 3);
    EXPECT_EQ(CurveNc[1], 4);
}

TEST_F(TablesVer1, the_first_label_that_is_missing_is_0_0) {
    EXPECT_EQ(label_of("Curve: =1 "), "0-0");
}

// ---- Factor ------------------------------------------------------------------------------------

static double factor_of(const std::string& line) {
    opened(line);
    const double factor = Ncurves == 1 ? CurveScaleFactor[0] : 0.0;
    return factor;
}

TEST_F(TablesVer1, an_error_from_before_does_not_spoil_a_factor) {
    errno = ERANGE;
    EXPECT_EQ(factor_of("Curve: (1-1) =2.5 "), 2.5);
}

TEST_F(TablesVer1, the_factor_stands_between_equals_sign_and_blank) {
    EXPECT_EQ(factor_of("Curve: (1-1) =2.5 "), 2.5);
    EXPECT_EQ(factor_of("Curve: (1-1) a=b=2.5 c=7 "), 2.5);
    EXPECT_EQ(factor_of("Curve: (1-1) scale=-2.5e1 "), -25.0);
    EXPECT_EQ(factor_of("Curve: (1-1) =2.5x "), 2.5);
    EXPECT_EQ(factor_of("Curve: (1-1) =\t2.5 "), 2.5);
    EXPECT_EQ(factor_of("= Curve: (1-1) =2.5 "), 2.5);  // not at the start of the line
    EXPECT_EQ(factor_of("Curve: (1-1) =0x10 "), 16.0);
    EXPECT_EQ(factor_of("Curve: (1-1) =inf "), HUGE_VAL);
}

TEST_F(TablesVer1, a_factor_that_no_blank_ends_keeps_the_one_before) {
    for (const char* end : {"=7", "=7\t", "", "7 "}) {
        read(START + "Curve: (1-1) =2.5 \n\n1 2\n" + ROW_END + "Curve: (2-1) " + end +
             "\n\n1 2\n" + TABLE_END);
        ASSERT_EQ(Ncurves, 2);
        EXPECT_EQ(CurveScaleFactor[1], 2.5) << end;
    }
}

TEST_F(TablesVer1, the_factor_before_may_be_that_of_a_set_that_is_not_read) {
    only_set(2, 1);
    read(START + "Curve: (1-1) =2.5 \n\n1 2\n" + ROW_END + "Curve: (2-1) =7\n\n1 2\n" + TABLE_END);
    ASSERT_EQ(Ncurves, 1);
    EXPECT_EQ(CurveScaleFactor[0], 2.5);
}

TEST_F(TablesVer1, the_first_factor_that_is_missing_is_1) {
    EXPECT_EQ(factor_of("Curve: (1-1)"), 1.0);
    EXPECT_EQ(factor_of("Curve: (1-1) =7"), 1.0);
    EXPECT_EQ(factor_of("=7 Curve: (1-1) "), 1.0);
}

TEST_F(TablesVer1, a_factor_without_digits_ends_the_run) {
    for (const char* factor : {"x", "", "-", "."})
        EXPECT_TRUE(ended_with(wrongly_opened("Curve: (1-2) =" + std::string(factor) + " 5 "), 1,
                               HEADER_MESSAGE,
                               "No digits were found for ScaleFactor of curve (1-2)!\n"));
}

TEST_F(TablesVer1, a_factor_out_of_range_ends_the_run) {
    for (const char* factor : {"1e400", "-1e400", "1e-400", "1e-310"})
        EXPECT_TRUE(ended_with(
            wrongly_opened("Curve: (1-2) =" + std::string(factor) + " "), 1, HEADER_MESSAGE,
            "Invalid scale factor (strtod failed) for curve (1-2): " + std::string(factor) +
                " \n"));
}

TEST_F(TablesVer1, a_factor_is_checked_even_if_nobody_asks_for_its_set) {
    only_set(2, 1);
    EXPECT_TRUE(ended_with(wrongly_opened("Curve: (1-2) =x "), 1, HEADER_MESSAGE,
                           "No digits were found for ScaleFactor of curve (1-2)!\n"));
}

// ---- The end of the file -----------------------------------------------------------------------

TEST_F(TablesVer1, an_open_set_needs_its_rule_if_the_file_ends_with_a_newline) {
    EXPECT_TRUE(ended_with(
        read_wrong_text(Ver1, START + "Curve: (1-1) =1 \n\n1 2\n3 4\n"), 1,
        std::string(HEADER_MESSAGE) + "Invalid number of columns: expected 2, read -1 \n", ""));
}

TEST_F(TablesVer1, an_open_set_ends_with_a_file_without_a_last_newline) {
    EXPECT_EQ(read(START + "Curve: (1-1) =1 \n\n1 2\n3 4"), HEADER_MESSAGE);
    ASSERT_EQ(Ncurves, 1);
    EXPECT_EQ(stored(0, 1), (column_t{2, 4}));
}

TEST_F(TablesVer1, a_line_that_is_passed_over_does_not_show_the_end) {
    EXPECT_TRUE(ended_with(
        read_wrong_text(Ver1, START + "Curve: (1-1) =1 \n(over)"), 1,
        std::string(HEADER_MESSAGE) + "Invalid number of columns: expected 2, read -1 \n", ""));
    EXPECT_TRUE(ended_with(read_wrong_text(Ver1, "GED curves.\n(over)"), 1,
                           "0 types of data have been found:\n"
                           "0 types of data are subject to process:\n"
                           "Not enough data for plotting.\n",
                           ""));
}

TEST_F(TablesVer1, a_table_that_ends_with_a_set_nobody_asks_for_stays_open) {
    only_set(1, 1);
    const std::string rest = table_ver1(std::string(L_S) + L_SMS, {{"1-1", "3", "5 6\n"}});
    const std::string message =
        read(table_ver1(HEADER, {{"1-1", "1", "1 2\n"}, {"2-1", "1", "3 4\n"}}) + "\n" + rest);
    EXPECT_EQ(message, std::string(HEADER_MESSAGE) +
                           "Set # 0 has been read. Number of data points: 1 \n"
                           "Set # 1 has been read. Number of data points: 1 \n"
                           "End of data table.\n");
    ASSERT_EQ(Ncurves, 2);
    EXPECT_EQ(stored(1, 1), (column_t{6}));  // under the first table's columns
    EXPECT_EQ(PlotColType[1], P_GINT_INT);
}

TEST_F(TablesVer1, every_mark_forgets_the_columns) {
    TableN = 2;
    Ncols = NcolsToPlot = 2;
    ColType[1] = TypePos[1] = PlotColType[1] = PlotTypePos[1] = 7;
    EXPECT_EQ(read("GED curves.\n\n"), "");
    EXPECT_EQ(Ncols, 0);
    EXPECT_EQ(NcolsToPlot, 0);
    for (int j = 0; j < MAX_COLS; j++)
        EXPECT_EQ(ColType[j] | TypePos[j] | PlotColType[j] | PlotTypePos[j], 0);
}

TEST_F(TablesVer1, a_file_without_a_mark_leaves_the_columns_alone) {
    Ncols = NcolsToPlot = 2;
    ColType[0] = PlotColType[0] = 7;
    read("no mark\n");
    EXPECT_EQ(Ncols, 2);
    EXPECT_EQ(NcolsToPlot, 2);
    EXPECT_EQ(ColType[0], 7);
    EXPECT_EQ(PlotColType[0], 7);
}
