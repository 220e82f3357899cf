// SPDX-License-Identifier: MIT
#include <string>

#include "input/input.h"
#include "state.h"

using Version = Fresh;

static void expect_version(const std::string& text, int layout, const std::string& message) {
    SCOPED_TRACE(text.substr(0, 60));
    const text_file_t file(text);
    int result = -1;
    EXPECT_EQ(said([&] { result = detect_int_table_version(file.name()); }), message);
    EXPECT_EQ(result, layout);
    close_input();  // the next file may have the same name
}

static void expect_word(const std::string& word, int layout, const std::string& message) {
    expect_version(" KOVA " + word + " of today\n", layout, message);
}

TEST_F(Version, decides_the_layout) {
    expect_word("v1.6.986", 1, "KOVA version: 1060986\n");
    expect_word("v1.6.987", 2, "KOVA version: 1060987\n");
    expect_word("1.6.987", 2, "KOVA version: 1060987\n");
    expect_word("1.6-987", 2, "KOVA version: 1060987\n");
    expect_word("1-6-986", 1, "KOVA version: 1060986\n");
    expect_word("2.0.0", 2, "KOVA version: 2000000\n");
    expect_word("0.0.1", 1, "KOVA version: 1\n");
    expect_word("1.5.99999", 2, "KOVA version: 1149999\n");  // components may overflow their place
}

TEST_F(Version, of_zero_counts_as_absent_but_is_printed) {
    expect_word("0.0.0", 0, "KOVA version: 0\n");
}

TEST_F(Version, ignores_a_fourth_component) {
    expect_word("1.6.987.5", 2, "KOVA version: 1060987\n");
    expect_word("1.6.987-rc1.2", 2, "KOVA version: 1060987\n");
}

TEST_F(Version, reads_octal_and_hexadecimal) {
    expect_word("1.06.0987", 0, "");  // no octal number
    expect_word("1.010.0", 2, "KOVA version: 1080000\n");
    expect_word("0x1.0x6.0x3da", 1, "KOVA version: 1060986\n");
}

TEST_F(Version, passes_over_every_v) {
    expect_word("vv1v.v6.9v87v", 2, "KOVA version: 1060987\n");
}

TEST_F(Version, may_be_negative) {
    expect_word("0.0.+5", 1, "KOVA version: 5\n");
    expect_word("4294967295.0.0", 1, "KOVA version: -1000000\n");
}

TEST_F(Version, is_computed_in_32_bits) {
    expect_word("4295.0.0", 1, "KOVA version: 32704\n");
    expect_word("2148.0.0", 1, "KOVA version: -2146967296\n");
}

TEST_F(Version, needs_three_integers) {
    for (const char* word : {"1.6", "1", "1.6.", "..", "1..987", ".6.987", "a.6.987", "1.6.987b",
                             "1,6,987", "V1.6.987", "v", "1.6.x"})
        expect_word(word, 0, "");
}

TEST_F(Version, needs_the_product_word_between_blanks) {
    expect_version("", 0, "");
    expect_version("\n", 0, "");
    expect_version("KOVA 1.6.987 x\n", 0, "");    // no blank before it
    expect_version("\tKOVA 1.6.987 x\n", 0, "");  // a tab is no blank
    expect_version(" KOVA\t1.6.987 x\n", 0, "");
    expect_version(" kova 1.6.987 x\n", 0, "");
    expect_version(" KOVAX 1.6.987 x\n", 0, "");
    expect_version("other 1.6.987 line\n KOVA 1.6.987 x\n", 0, "");  // only the first line counts
}

TEST_F(Version, is_the_second_word_whatever_the_first_is) {
    expect_version("Program KOVA 1.6.987 x\n", 0, "");
    expect_version("x 1.6.987 KOVA y\n", 2, "KOVA version: 1060987\n");
    expect_version(" KOVA \t 1.6.987\n", 2, "KOVA version: 1060987\n");
    expect_version(" KOVA 1.6.987", 2, "KOVA version: 1060987\n");
    expect_version("x 1.6.986 y z a b KOVA c\n", 1, "KOVA version: 1060986\n");
}

TEST_F(Version, needs_two_words) {
    expect_version(" KOVA \n", 0, "");
    expect_version(" KOVA ", 0, "");
}

TEST_F(Version, words_that_are_too_long_make_it_unknown) {
    const std::string zeros(49 - 7, '0');
    expect_word("1.6." + zeros + "777", 1, "KOVA version: 1060511\n");
    expect_word("1.6." + zeros + "7777", 0, "");
    expect_version(" KOVA 1.6.987 " + std::string(50, 'x') + " y\n", 0, "");
    expect_version(" KOVA 1.6.987 x " + std::string(50, 'y') + "\n", 0, "");
    expect_version(" KOVA 1.6.987 x y " + std::string(50, 'z') + "\n", 2,
                   "KOVA version: 1060987\n");
    expect_version(std::string(50, 'x') + " 1.6.987 KOVA y\n", 0, "");
}

TEST_F(Version, is_looked_for_in_399_characters) {
    const std::string start = "x 1.6.987";
    expect_version(start + std::string(399 - 9 - 6, ' ') + " KOVA \n", 2,
                   "KOVA version: 1060987\n");
    expect_version(start + std::string(399 - 9 - 5, ' ') + " KOVA \n", 0, "");
}

TEST_F(Version, of_a_missing_file_ends_the_run) {
    EXPECT_TRUE(ended_with(in_child([] { detect_int_table_version("/no/such/file"); }), 1, "",
                           "Cannot open file '/no/such/file'\n"));
}
