// SPDX-License-Identifier: MIT
//
// Layout 2: what only its reader does.
#include <cerrno>
#include <string>
#include <vector>

#include "tables.h"

using TablesVer2 = Fresh;

static const std::string HEADER = std::string(L_S) + L_INT;
static const char START[] = "GED curves.\n(over)\n";
static const char HEADER_MESSAGE[] =
    "2 types of data have been found:\n 0 S-values \n 1 Total experimental intensity \n"
    "2 types of data are subject to process:\n 0 S-values (column 0)\n"
    " 1 Total experimental intensity (column 1)\n";
static const char RULE[] = "----------------\n";

static std::string read(const std::string& text) {
    return read_text(Ver2, text);
}

static ended_t read_wrong(const std::string& text) {
    return read_wrong_text(Ver2, text);
}

static void only_set(int Num1, int Num2) {
    NparToRead = 1;
    ParToReadNum1 = resized<int>(nullptr, 1);
    ParToReadNum2 = resized<int>(nullptr, 1);
    *ParToReadNum1 = Num1;
    *ParToReadNum2 = Num2;
}

TEST_F(TablesVer2, a_whole_table_is_told_line_by_line) {
    EXPECT_EQ(read("log\n" +
                   table_ver2(HEADER, {{"1-1", "2.5", "1 10\n2 20\n"}, {"2-1", "0.5", "3 30\n"}})),
              "Scale(1-1)=2.500000e+00\n" + std::string(HEADER_MESSAGE) +
                  "Set # 0 has been read. Number of data points: 2 \n"
                  "Scale(2-1)=5.000000e-01\n" +
                  HEADER_MESSAGE + "Set # 1 has been read. Number of data points: 1 \n");
    EXPECT_EQ(stored(0, 1), (column_t{10, 20}));
    EXPECT_EQ(stored(1, 0), (column_t{3}));
    EXPECT_EQ(CurveScaleFactor[0], 2.5);
    EXPECT_EQ(CurveScaleFactor[1], 0.5);
}

TEST_F(TablesVer2, a_blank_line_between_sets_ends_the_table) {
    for (const char* blank : {"\n", "  \t\n", "\r\n"}) {
        const std::string more = set_ver2(HEADER, {"2-1", "1", "3 4\n"});
        read(START + set_ver2(HEADER, {"1-1", "1", "1 2\n"}) + blank + more);
        EXPECT_EQ(Ncurves, 1);
        EXPECT_EQ(read(std::string(START) + blank + more), "");
        EXPECT_EQ(Ncurves, 0);
    }
}

TEST_F(TablesVer2, other_lines_between_sets_are_passed_over) {
    read(std::string(START) + "words\n1 2\nScale=x \n" + set_ver2(HEADER, {"1-1", "1", "1 2\n"}) +
         RULE + "words\n" + set_ver2(HEADER, {"2-1", "1", "3 4\n"}) + "\n");
    EXPECT_EQ(Ncurves, 2);
}

TEST_F(TablesVer2, blank_lines_inside_a_set_end_nothing) {
    read(std::string(START) + "Set: 1-1 \n\n\nScale=2 \n\n \n" + RULE + HEADER + "\n\n1 2\n" +
         RULE + set_ver2(HEADER, {"2-1", "1", "3 4\n"}) + "\n");
    ASSERT_EQ(Ncurves, 2);
    EXPECT_EQ(CurveScaleFactor[0], 2.0);
}

TEST_F(TablesVer2, a_blank_line_in_a_set_nobody_asks_for_ends_the_table) {
    only_set(2, 1);
    read(std::string(START) + "Set: 1-1 \n\nScale=2 \n" + RULE + HEADER + "\n\n1 2\n" + RULE +
         set_ver2(HEADER, {"2-1", "1", "3 4\n"}) + "\n");
    EXPECT_EQ(Ncurves, 0);
}

TEST_F(TablesVer2, a_set_nobody_asks_for_may_hold_anything_but_a_bad_label) {
    only_set(2, 1);
    EXPECT_EQ(read(std::string(START) + "Set: 1-1 \nScale=x \n" + RULE + "no label\nx\nx\n" +
                   RULE + set_ver2(HEADER, {"2-1", "1", "3 4\n"}) + "\n"),
              "Scale(2-1)=1.000000e+00\n" + std::string(HEADER_MESSAGE) +
                  "Set # 0 has been read. Number of data points: 1 \n");
}

TEST_F(TablesVer2, rules_have_16_hyphens_anywhere_in_a_line) {
    const ended_t ended = read_wrong(std::string(START) + "Set: 1-1 \nScale=1 \n" + RULE + HEADER +
                                     "\n\n1 2\n---------------\n");
    EXPECT_EQ(ended.status, 1);
    EXPECT_TRUE(contains(ended.out, "Invalid number of columns: expected 2, read 0 \n"));
    read(std::string(START) + "Set: 1-1 \nScale=1 \n---------------\nx----------------x\n" +
         HEADER + "\n\n1 2\n 3 4 -------------------\n\n");
    ASSERT_EQ(Ncurves, 1);
    EXPECT_EQ(Npts[0], 1);
}

TEST_F(TablesVer2, the_header_row_is_the_line_after_the_rule) {
    EXPECT_TRUE(
        ended_with(read_wrong(std::string(START) + "Set: 1-1 \n" + HEADER + "\nScale=1 \n" +
                              HEADER + "\n" + RULE + "words\n" + HEADER + "\n"),
                   1,
                   "Scale(1-1)=1.000000e+00\n0 types of data have been found:\n"
                   "0 types of data are subject to process:\nNot enough data for plotting.\n",
                   ""));
}

TEST_F(TablesVer2, the_last_header_row_rules) {
    const std::string longer = HEADER + L_BGL;
    read(START + set_ver2(longer, {"1-1", "1", "1 2 3\n"}) +
         set_ver2(HEADER, {"2-1", "1", "4 5\n"}) + set_ver2(longer, {"3-1", "1", "6 7 8\n"}) +
         "\n");
    ASSERT_EQ(Ncurves, 3);
    EXPECT_EQ(NcolsToPlot, 3);
    EXPECT_EQ(stored(0, 2), (column_t{3}));
    EXPECT_EQ(Curve[1][2], nullptr);  // not one of its columns
    EXPECT_EQ(stored(2, 2), (column_t{8}));
    for (int c = 0; c < 3; c++) {
        for (int j = 0; j < NcolsToPlot; j++)
            EXPECT_EQ(CurveShift[c][j], 0.0);
    }
}

TEST_F(TablesVer2, a_set_without_rows_has_no_points) {
    read(START + set_ver2(HEADER, {"1-1", "1", ""}) + "\n");
    ASSERT_EQ(Ncurves, 1);
    EXPECT_EQ(Npts[0], 0);
    ASSERT_NE(Curve[0], nullptr);
    EXPECT_EQ(Curve[0][0], nullptr);
}

// ---- Label -------------------------------------------------------------------------------------

TEST_F(TablesVer2, the_label_follows_its_mark_up_to_white_space) {
    for (const char* end : {" ", "\t", "\n", " more words", "\r"}) {
        read(START + set_ver2(HEADER, {"3-4" + std::string(end), "1", "1 2\n"}) + "\n");
        ASSERT_EQ(Ncurves, 1);
        EXPECT_EQ(CurveNd[0], 3);
        EXPECT_EQ(CurveNc[0], 4);
    }
    read(std::string(START) + "x " + set_ver2(HEADER, {"3-4", "1", "1 2\n"}) + "\n");
    EXPECT_EQ(Ncurves, 1);
}

TEST_F(TablesVer2, a_label_that_is_no_pair_ends_the_run) {
    for (const char* label : {"x", "1", "", "1-1-1", "08-1"})
        EXPECT_TRUE(ended_with(read_wrong(std::string(START) + "Set: " + label + " 1-1\n"), 1,
                               "Incorrect indication of intensity set: '" + std::string(label) +
                                   "'\nIncorrect format of curve representation: '" + label +
                                   "'\n",
                               ""));
}

TEST_F(TablesVer2, a_label_at_the_end_of_the_file_is_not_read) {
    read(START + set_ver2(HEADER, {"3-4", "1", "1 2\n"}) + "Set: 5-6");
    ASSERT_EQ(Ncurves, 2);
    EXPECT_EQ(CurveNd[1], 3);
    EXPECT_EQ(CurveNc[1], 4);
    EXPECT_EQ(Curve[1], nullptr);
    read(std::string(START) + "Set: 5-6");
    ASSERT_EQ(Ncurves, 1);
    EXPECT_EQ(CurveNd[0], 0);
    EXPECT_EQ(CurveNc[0], 0);
}

// ---- Factor ------------------------------------------------------------------------------------

static double factor_of(const std::string& line) {
    read(std::string(START) + "Set: 1-1 \n" + line + "\n" + RULE + HEADER + "\n\n1 2\n" + RULE +
         "\n");
    const double factor = Ncurves == 1 ? CurveScaleFactor[0] : 0.0;
    return factor;
}

TEST_F(TablesVer2, the_factor_follows_its_mark_up_to_white_space) {
    EXPECT_EQ(factor_of("Scale=2.5 "), 2.5);
    EXPECT_EQ(factor_of("Scale=2.5"), 2.5);  // the newline is white space
    EXPECT_EQ(factor_of("x Scale=2.5\tScale=3 "), 2.5);
    EXPECT_EQ(factor_of("Scale=-2.5e1x "), -25.0);
    EXPECT_EQ(factor_of("Scale=0x10 "), 16.0);
}

TEST_F(TablesVer2, the_factor_is_looked_for_until_its_mark_comes) {
    EXPECT_EQ(factor_of("scale=3 \nScale =4 \n----------------\nScale=2 "), 2.0);
}

TEST_F(TablesVer2, a_factor_that_nothing_ends_is_1) {
    const std::string filler(LINE_SIZE - 1 - 7, 'x');  // so that the line is cut after the factor
    EXPECT_EQ(factor_of(filler + "Scale=7"), 1.0);
}

TEST_F(TablesVer2, an_error_from_before_does_not_spoil_a_factor) {
    errno = ERANGE;
    EXPECT_EQ(factor_of("Scale=2.5 "), 2.5);
}

TEST_F(TablesVer2, a_factor_without_digits_ends_the_run) {
    for (const char* factor : {" 2.5", "x", "", "-", "\t1"})
        EXPECT_TRUE(
            ended_with(read_wrong(std::string(START) + "Set: 1-2 \nScale=" + factor + " \n"), 1,
                       "", "No digits were found for ScaleFactor of curve 1-2\n"));
}

TEST_F(TablesVer2, a_factor_out_of_range_ends_the_run) {
    for (const char* factor : {"1e400", "-1e400", "1e-400", "1e-310"})
        EXPECT_TRUE(
            ended_with(read_wrong(std::string(START) + "Set: 1-2 \nScale=" + factor + " \n"), 1,
                       "", "Invalid scale factor for curve 1-2: '" + std::string(factor) + "'\n"));
}

// ---- The end of the file -----------------------------------------------------------------------

static const std::string OPEN_SET =
    std::string(START) + "Set: 1-1 \nScale=1 \n" + RULE + HEADER + "\n(over)\n1 2\n3 4";
static const std::string OPEN_MESSAGE = "Scale(1-1)=1.000000e+00\n" + std::string(HEADER_MESSAGE);

TEST_F(TablesVer2, an_open_set_needs_its_rule_if_the_file_ends_with_a_newline) {
    EXPECT_TRUE(ended_with(read_wrong(OPEN_SET + "\n"), 1,
                           OPEN_MESSAGE + "Invalid number of columns: expected 2, read -1 \n",
                           ""));
}

TEST_F(TablesVer2, an_open_set_ends_with_a_file_without_a_last_newline) {
    EXPECT_EQ(read(OPEN_SET), OPEN_MESSAGE);
    ASSERT_EQ(Ncurves, 1);
    EXPECT_EQ(stored(0, 1), (column_t{2, 4}));
}

TEST_F(TablesVer2, a_file_may_end_right_after_a_set) {
    const std::string message =
        OPEN_MESSAGE + "Set # 0 has been read. Number of data points: 2 \n";
    EXPECT_EQ(read(OPEN_SET + "\n" + RULE), message);
    EXPECT_EQ(read(OPEN_SET + "\n----------------"), message);
}

TEST_F(TablesVer2, a_file_that_ends_before_the_header_row_lacks_data) {
    EXPECT_TRUE(ended_with(read_wrong(std::string(START) + "Set: 1-1 \nScale=1 \n" + RULE), 1,
                           "Scale(1-1)=1.000000e+00\n0 types of data have been found:\n"
                           "0 types of data are subject to process:\n"
                           "Not enough data for plotting.\n",
                           ""));
}

TEST_F(TablesVer2, a_set_that_never_reaches_its_header_row_has_no_columns) {
    for (const char* text : {"Set: 1-1 \n", "Set: 1-1 \nScale=1 \n", "Set: 1-1 \nScale=1 \nx\n"}) {
        read(std::string(START) + text);
        ASSERT_EQ(Ncurves, 1);
        EXPECT_EQ(Npts[0], 0);
        EXPECT_EQ(Curve[0], nullptr);
    }
}

TEST_F(TablesVer2, without_a_header_row_there_are_17_columns_of_no_kind) {
    for (const char* text : {"", "no mark\n", "GED curves.\n\n\n"}) {
        reset_state();
        EXPECT_EQ(read(text), "");
        EXPECT_EQ(NcolsToPlot, 17);
        EXPECT_EQ(Ncols, 0);
        for (int j = 0; j < MAX_COLS; j++)
            EXPECT_EQ(PlotColType[j], 0);
    }
}

TEST_F(TablesVer2, a_row_longer_than_a_line_is_two_rows) {
    const std::string row = "1" + std::string(398, ' ') + "2\n";  // cut before its last number
    const ended_t ended = read_wrong(START + set_ver2(HEADER, {"1-1", "1", row}) + "\n");
    EXPECT_EQ(ended.status, 1);
    EXPECT_TRUE(contains(ended.out, "Invalid number of columns: expected 2, read 1 \n"));
    read(START + set_ver2(HEADER, {"1-1", "1", "1" + std::string(396, ' ') + "2\n"}) + "\n");
    EXPECT_EQ(Npts[0], 1);
}
