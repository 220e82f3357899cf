// SPDX-License-Identifier: MIT
//
// What both readers have in common. Each test runs for both layouts.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "tables.h"

class Tables : public Fresh, public testing::WithParamInterface<layout_t> {
  protected:
    std::string table(const std::string& header, const std::vector<table_set_t>& sets) const {
        return GetParam().table(header, sets);
    }
    std::string read(const std::string& text) const { return read_text(GetParam(), text); }
    // Reads a text that is to end the run with this as the last words on standard output.
    void expect_end(const std::string& text, const std::string& last) const {
        const ended_t ended = read_wrong_text(GetParam(), text);
        EXPECT_EQ(ended.status, 1);
        EXPECT_EQ(ended.err, "");
        EXPECT_EQ(ended.out.substr(ended.out.size() - std::min(ended.out.size(), last.size())),
                  last);
    }
};

INSTANTIATE_TEST_SUITE_P(Layout, Tables, testing::ValuesIn(Layouts), [](const auto& layout) {
    return "ver" + std::to_string(layout.index + 1);
});

using numbers_t = std::vector<int>;

static numbers_t kinds() {
    return numbers_t(ColType, ColType + Ncols);
}

static numbers_t plot_kinds() {
    return numbers_t(PlotColType, PlotColType + NcolsToPlot);
}

// ---- Header row --------------------------------------------------------------------------------

TEST_P(Tables, every_label_is_known) {
    const struct {
        const char* label;
        int kind;
    } labels[] = {
        {"   Total Int.  |", 0x1},    {"    Red. Int.  |", 0x20},   {"    Lvl. Int.  |", 0x2000},
        {"   Background  |", 0x2},    {"   Exp. sM(s)  |", 0x4},    {"   Thr. sM(s)  |", 0x8},
        {"  Delta sM(s)  |", 0x10},   {"   Sec. Func.  |", 0x40},   {"   At. Scat.   |", 0x80},
        {"    Red. Bgl   |", 0x200},  {"    Lvl. Bgl   |", 0x4000}, {"  sM(s) St.dev |", 0x400},
        {"  Int. St.dev  |", 0x800},  {"      R      |", 0x1000},   {" Thr. Tot. Int |", 0x8000},
        {"   Delta Int.  |", 0x10000}};
    for (const auto& l : labels) {
        SCOPED_TRACE(l.label);
        reset_state();
        read(table(std::string(L_S) + l.label, {{"1-1", "1", "1 2\n"}}));
        EXPECT_EQ(kinds(), (numbers_t{0x100, l.kind}));
        EXPECT_EQ(TypePos[0], 0);
        EXPECT_EQ(TypePos[1], 15);
    }
}

TEST_P(Tables, every_kind_can_stand_in_one_table) {
    const std::string header =
        "      R      |   Total Int.  |    Red. Int.  |    Lvl. Int.  |   Background  |"
        "   Exp. sM(s)  |   Thr. sM(s)  |  Delta sM(s)  |   Sec. Func.  |   At. Scat.   |"
        "       S      |    Red. Bgl   |    Lvl. Bgl   |  sM(s) St.dev |  Int. St.dev  |"
        " Thr. Tot. Int |   Delta Int.  |";
    const std::string message =
        read(table(header, {{"1-1", "1", "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17\n"}}));
    EXPECT_EQ(kinds(), (numbers_t{0x1000, 0x1, 0x20, 0x2000, 0x2, 0x4, 0x8, 0x10, 0x40, 0x80,
                                  0x100, 0x200, 0x4000, 0x400, 0x800, 0x8000, 0x10000}));
    EXPECT_EQ(plot_kinds(), kinds());
    for (int j = 0; j < MAX_COLS; j++) {
        EXPECT_EQ(PlotTypePos[j], j);
        EXPECT_EQ(TypePos[j], j == 0 ? 0 : j < 11 ? 16 * j - 2 : 16 * j - 3);
        EXPECT_EQ(Curve[0][j][0], j + 1);
    }
    EXPECT_TRUE(contains(message, "17 types of data have been found:\n 0 R-values \n"));
    EXPECT_TRUE(contains(message, "17 types of data are subject to process:\n"));
}

TEST_P(Tables, columns_stand_in_the_order_of_the_line) {
    const std::string message =
        read(table("  " + std::string(L_S) + L_TSMS + "  " + L_BGL + L_SMS + L_INT,
                   {{"1-1", "1", "1 2 3 4 5\n"}}));
    EXPECT_EQ(kinds(), (numbers_t{P_GINT_S, P_GINT_TSMS, P_GINT_BGL, P_GINT_SMS, P_GINT_INT}));
    EXPECT_EQ(numbers_t(TypePos, TypePos + 5), (numbers_t{2, 17, 35, 51, 67}));
    EXPECT_TRUE(contains(
        message,
        "5 types of data have been found:\n 0 S-values \n 1 Theoretical sM(s) \n"
        " 2 Background \n 3 Experimental sM(s) \n 4 Total experimental intensity \n"
        "5 types of data are subject to process:\n 0 S-values (column 0)\n"
        " 1 Theoretical sM(s) (column 1)\n 2 Background (column 2)\n"
        " 3 Experimental sM(s) (column 3)\n 4 Total experimental intensity (column 4)\n"));
}

TEST_P(Tables, the_mask_keeps_columns_and_their_places) {
    DataToRead = P_GINT_S | P_GINT_BGL | P_GINT_INT;
    const std::string message = read(table(std::string(L_S) + L_SMS + L_BGL + L_TSMS + L_INT,
                                           {{"1-1", "1", "1 2 3 4 5\n6 7 8 9 10\n"}}));
    EXPECT_EQ(Ncols, 5);
    EXPECT_EQ(plot_kinds(), (numbers_t{P_GINT_S, P_GINT_BGL, P_GINT_INT}));
    EXPECT_EQ(numbers_t(PlotTypePos, PlotTypePos + 3), (numbers_t{0, 2, 4}));
    EXPECT_EQ(stored(0, 0), (column_t{1, 6}));
    EXPECT_EQ(stored(0, 1), (column_t{3, 8}));
    EXPECT_EQ(stored(0, 2), (column_t{5, 10}));
    EXPECT_TRUE(
        contains(message,
                 "3 types of data are subject to process:\n 0 S-values (column 0)\n"
                 " 1 Background (column 2)\n 2 Total experimental intensity (column 4)\n"));
}

TEST_P(Tables, a_label_counts_wherever_it_stands_and_only_once) {
    read(table(std::string(L_S) + "xx" + L_INT + L_INT, {{"1-1", "1", "1 2\n"}}));
    EXPECT_EQ(kinds(), (numbers_t{P_GINT_S, P_GINT_INT}));
    EXPECT_EQ(TypePos[1], 17);
}

TEST_P(Tables, a_label_that_is_not_exact_is_no_label) {
    expect_end(table(std::string(L_S) + "  Total Int.  |" + "   Background |" + "   Exp. sm(s)  |",
                     {{"1-1", "1", "1 2\n"}}),
               "1 types of data have been found:\n 0 S-values \n"
               "1 types of data are subject to process:\n 0 S-values (column 0)\n"
               "Not enough data for plotting.\n");
}

TEST_P(Tables, a_column_without_a_known_label_fails_every_row) {
    expect_end(table(std::string(L_S) + "    New kind   |" + L_INT, {{"1-1", "1", "1 2 3\n"}}),
               "Invalid number of columns: expected 2, read 3 \n");
}

TEST_P(Tables, fewer_than_two_selected_kinds_end_the_run) {
    DataToRead = P_GINT_S;
    expect_end(table(std::string(L_S) + L_INT, {{"1-1", "1", "1 2\n"}}),
               "1 types of data are subject to process:\n 0 S-values (column 0)\n"
               "Not enough data for plotting.\n");
}

// ---- Data rows ---------------------------------------------------------------------------------

static const std::string FOUR_COLUMNS = std::string(L_S) + L_INT + L_BGL + L_SMS;

TEST_P(Tables, a_row_has_as_many_numbers_as_there_are_labels) {
    for (const auto& [row, count] : {std::pair<const char*, const char*>{"1 2 3\n", "3"},
                                     {"1 2 3 4 5\n", "5"},
                                     {"\n", "-1"},
                                     {"words\n", "0"},
                                     {"1 2 x 3 4\n", "2"},
                                     {"==================\n", "0"}}) {
        SCOPED_TRACE(row);
        expect_end(table(FOUR_COLUMNS, {{"1-1", "1", "1 2 3 4\n" + std::string(row)}}),
                   "Invalid number of columns: expected 4, read " + std::string(count) + " \n");
    }
}

TEST_P(Tables, words_after_the_numbers_of_a_row_are_ignored) {
    read(table(FOUR_COLUMNS, {{"1-1", "1", "1 2 3 4 words 5\n 5\t6 7 8x\n"}}));
    EXPECT_EQ(stored(0, 3), (column_t{4, 8}));
}

TEST_P(Tables, a_mask_does_not_change_what_a_row_must_have) {
    DataToRead = P_GINT_S | P_GINT_INT;
    expect_end(table(FOUR_COLUMNS, {{"1-1", "1", "1 2\n"}}),
               "Invalid number of columns: expected 4, read 2 \n");
}

TEST_P(Tables, many_rows_are_all_kept) {
    std::string rows;
    for (int k = 0; k < 5000; k++)
        rows += std::to_string(k) + " " + std::to_string(2 * k) + " 3 4\n";
    const std::string message = read(table(FOUR_COLUMNS, {{"1-1", "1", rows}}));
    EXPECT_TRUE(contains(message, "Set # 0 has been read. Number of data points: 5000 \n"));
    ASSERT_EQ(Npts[0], 5000);
    for (int k = 0; k < 5000; k++) {
        ASSERT_EQ(Curve[0][0][k], k);
        ASSERT_EQ(Curve[0][1][k], 2 * k);
    }
}

// ---- Corrections -------------------------------------------------------------------------------

// The value 8 of one kind as it is stored, with a scale factor of 2 and a deviation factor of 3.
static double stored_eight(const layout_t& layout, const char* label) {
    smsStdevFactor = 3.0;
    read_text(layout, layout.table(std::string(L_S) + label, {{"1-1", "2", "8 8\n"}}));
    EXPECT_EQ(Curve[0][0][0], 8.0);  // never corrected
    const double value = Curve[0][1][0];
    return value;
}

TEST_P(Tables, sms_kinds_are_divided_by_the_scale_factor) {
    for (const char* label : {L_SMS, L_TSMS, L_DSMS})
        EXPECT_EQ(stored_eight(GetParam(), label), 4.0) << label;
}

TEST_P(Tables, sms_deviations_are_multiplied_and_divided) {
    EXPECT_EQ(stored_eight(GetParam(), L_SMSS), 12.0);
}

TEST_P(Tables, backgrounds_gain_one_if_asked_for) {
    for (const char* label : {L_BGL, "    Red. Bgl   |", "    Lvl. Bgl   |"}) {
        PlotBglPlus1 = 0;
        EXPECT_EQ(stored_eight(GetParam(), label), 8.0) << label;
        PlotBglPlus1 = 1;
        EXPECT_EQ(stored_eight(GetParam(), label), 9.0) << label;
    }
}

TEST_P(Tables, other_kinds_are_stored_as_they_are) {
    PlotBglPlus1 = 1;
    for (const char* label :
         {L_INT, "    Red. Int.  |", "    Lvl. Int.  |", "   Sec. Func.  |", "   At. Scat.   |",
          "  Int. St.dev  |", "      R      |", " Thr. Tot. Int |", "   Delta Int.  |"})
        EXPECT_EQ(stored_eight(GetParam(), label), 8.0) << label;
}

TEST_P(Tables, deviations_are_multiplied_before_they_are_divided) {
    smsStdevFactor = 0.1;
    read(table(std::string(L_S) + L_SMSS, {{"1-1", "0.3", "1 0.7\n"}}));
    EXPECT_EQ(bits(Curve[0][1][0]), bits((0.7 * 0.1) / 0.3));
}

TEST_P(Tables, a_factor_of_zero_is_not_rejected) {
    read(table(std::string(L_S) + L_SMS + L_TSMS, {{"1-1", "0", "1 2 0\n"}}));
    EXPECT_TRUE(std::isinf(Curve[0][1][0]));
    EXPECT_TRUE(std::isnan(Curve[0][2][0]));
}

// ---- Sets and tables ---------------------------------------------------------------------------

static const std::string TWO_COLUMNS = std::string(L_S) + L_SMS;
static const std::vector<table_set_t> THREE_SETS = {
    {"1-1", "1", "1 10\n"}, {"2-1", "2", "2 20\n3 30\n"}, {"2-2", "4", "4 40\n5 52\n6 60\n"}};

static void select_sets(std::vector<int> Num1, std::vector<int> Num2) {
    NparToRead = static_cast<int>(Num1.size());
    ParToReadNum1 = resized<int>(nullptr, Num1.size());
    ParToReadNum2 = resized<int>(nullptr, Num2.size());
    std::copy(Num1.begin(), Num1.end(), ParToReadNum1);
    std::copy(Num2.begin(), Num2.end(), ParToReadNum2);
}

TEST_P(Tables, all_sets_are_read_without_a_list) {
    const std::string message = read(table(TWO_COLUMNS, THREE_SETS));
    ASSERT_EQ(Ncurves, 3);
    EXPECT_EQ(numbers_t(CurveNd, CurveNd + 3), (numbers_t{1, 2, 2}));
    EXPECT_EQ(numbers_t(CurveNc, CurveNc + 3), (numbers_t{1, 1, 2}));
    EXPECT_EQ(numbers_t(Npts, Npts + 3), (numbers_t{1, 2, 3}));
    EXPECT_EQ(column_t(CurveScaleFactor, CurveScaleFactor + 3), (column_t{1, 2, 4}));
    EXPECT_EQ(stored(1, 0), (column_t{2, 3}));
    EXPECT_EQ(stored(1, 1), (column_t{10, 15}));
    EXPECT_EQ(stored(2, 1), (column_t{10, 13, 15}));
    EXPECT_TRUE(contains(message, "Set # 1 has been read. Number of data points: 2 \n"));
}

TEST_P(Tables, a_list_selects_sets_by_both_numbers) {
    select_sets({2, 1, 9}, {2, 2, 9});
    const std::string message = read(table(TWO_COLUMNS, THREE_SETS));
    ASSERT_EQ(Ncurves, 1);
    EXPECT_EQ(CurveNd[0], 2);
    EXPECT_EQ(CurveNc[0], 2);
    EXPECT_EQ(stored(0, 1), (column_t{10, 13, 15}));
    EXPECT_TRUE(contains(message, "Set # 0 has been read. Number of data points: 3 \n"));
    EXPECT_EQ(message.find("Set # 1"), std::string::npos);
}

TEST_P(Tables, sets_come_in_the_order_of_the_file) {
    select_sets({2, 1}, {2, 1});
    read(table(TWO_COLUMNS, THREE_SETS));
    ASSERT_EQ(Ncurves, 2);
    EXPECT_EQ(numbers_t(CurveNd, CurveNd + 2), (numbers_t{1, 2}));
}

TEST_P(Tables, a_label_is_checked_even_if_nobody_asks_for_its_set) {
    select_sets({1}, {1});
    const ended_t ended = read_wrong_text(
        GetParam(), table(TWO_COLUMNS, {{"x-1", "1", "1 2\n"}, {"1-1", "1", "1 2\n"}}));
    EXPECT_EQ(ended.status, 1);
    EXPECT_TRUE(contains(ended.out, "Incorrect indication of intensity set: 'x-1'\n"));
}

TEST_P(Tables, the_table_is_chosen_by_its_number) {
    const std::string text = "log\n\n" + table(TWO_COLUMNS, {{"1-1", "1", "1 2\n"}}) + "log\n\n" +
                             table(TWO_COLUMNS, {{"2-1", "1", "3 4\n"}}) +
                             table(TWO_COLUMNS, {{"3-1", "1", "5 6\n"}});
    for (TableN = 1; TableN <= 3; TableN++) {
        read(text);
        ASSERT_EQ(Ncurves, 1);
        EXPECT_EQ(CurveNd[0], TableN);
        EXPECT_EQ(stored(0, 1), (column_t{2.0 * TableN}));
    }
}

TEST_P(Tables, a_table_that_is_not_there_reads_nothing) {
    const std::string text = table(TWO_COLUMNS, THREE_SETS) + table(TWO_COLUMNS, THREE_SETS);
    for (const int number : {3, 0, -1}) {
        TableN = number;
        EXPECT_EQ(read(text), "");
        EXPECT_EQ(Ncurves, 0);
        EXPECT_EQ(Curve, nullptr);
        EXPECT_EQ(CurveShift, nullptr);
        EXPECT_EQ(Npts, nullptr);
    }
}

TEST_P(Tables, the_line_after_the_mark_is_no_mark) {
    TableN = 2;
    EXPECT_EQ(read("GED curves.\nGED curves.\n" + TWO_COLUMNS + "\n\n"), "");
    EXPECT_EQ(Ncurves, 0);
}

TEST_P(Tables, nothing_in_a_file_reads_nothing) {
    for (const char* text : {"", "\n", "words", "GED Curves.\n", "GED curves\n\n"}) {
        EXPECT_EQ(read(text), "");
        EXPECT_EQ(Ncurves, 0);
    }
}

TEST_P(Tables, a_missing_file_ends_the_run) {
    EXPECT_TRUE(ended_with(in_child([] { GetParam().read("/no/such/file"); }), 1, "",
                           "Cannot open file '/no/such/file'\n"));
}
