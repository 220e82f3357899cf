// SPDX-License-Identifier: MIT
//
// What is found in the first line, as far as the cases of the topic version do not show it.
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
    expect_word("1.6.986", 1, "KOVA version: 1060986\n");
    expect_word("1.6.987", 2, "KOVA version: 1060987\n");
    expect_word("4294967295.0.0", 1, "KOVA version: -1000000\n");
}

// 0 and 1 choose the same reader.
TEST_F(Version, is_zero_where_there_is_none) {
    expect_word("0.0.0", 0, "KOVA version: 0\n");
    for (const char* word : {"1.6", "1.06.0987", "1.6.x", "v"})
        expect_word(word, 0, "");
    for (const char* text : {"", "\n", " KOVA \n", "Program KOVA 1.6.987 x\n", " kova 1.6.987 x\n",
                             "other 1.6.987 line\n KOVA 1.6.987 x\n"})
        expect_version(text, 0, "");
}

TEST_F(Version, of_a_missing_file_ends_the_run) {
    EXPECT_TRUE(ended_with(in_child([] { detect_int_table_version("/no/such/file"); }), 1, "",
                           "Cannot open file '/no/such/file'\n"));
}
