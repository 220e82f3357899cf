// SPDX-License-Identifier: MIT
#include <cstring>
#include <string>
#include <vector>

#include "input/input.h"
#include "state.h"

using Lines = Fresh;

struct piece_t {
    std::string text;
    bool at_end;
    bool operator==(const piece_t&) const = default;
};

static std::ostream& operator<<(std::ostream& out, const piece_t& piece) {
    return out << '"' << piece.text << (piece.at_end ? "\" at the end" : "\"");
}

using pieces_t = std::vector<piece_t>;

// Reads all lines, up to the one that meets the end.
static pieces_t pieces_of(const std::string& text) {
    const text_file_t file(text);
    pieces_t pieces;
    char line[LINE_SIZE];
    open_input(file.name());
    do {
        std::memset(line, 'x', sizeof line);
        const bool at_end = read_line(line);
        pieces.push_back({line, at_end});
    } while (!pieces.back().at_end);
    close_input();
    return pieces;
}

TEST_F(Lines, keep_their_newline) {
    EXPECT_EQ(pieces_of("one\n\ntwo\n"),
              (pieces_t{{"one\n", false}, {"\n", false}, {"two\n", false}, {"", true}}));
}

TEST_F(Lines, the_last_one_without_newline_meets_the_end) {
    EXPECT_EQ(pieces_of("one\ntwo"), (pieces_t{{"one\n", false}, {"two", true}}));
    EXPECT_EQ(pieces_of(" "), (pieces_t{{" ", true}}));
}

TEST_F(Lines, an_empty_file_is_one_empty_line_at_the_end) {
    EXPECT_EQ(pieces_of(""), (pieces_t{{"", true}}));
}

TEST_F(Lines, are_cut_after_399_characters) {
    const std::string full(399, 'a');
    EXPECT_EQ(pieces_of(full.substr(1) + "\n"),
              (pieces_t{{full.substr(1) + "\n", false}, {"", true}}));
    EXPECT_EQ(pieces_of(full + "\n"), (pieces_t{{full, false}, {"\n", false}, {"", true}}));
    EXPECT_EQ(pieces_of(full + full + "b\nc"),
              (pieces_t{{full, false}, {full, false}, {"b\n", false}, {"c", true}}));
}

TEST_F(Lines, a_last_one_of_399_characters_does_not_meet_the_end) {
    const std::string full(399, 'a');
    EXPECT_EQ(pieces_of(full), (pieces_t{{full, false}, {"", true}}));
    EXPECT_EQ(pieces_of(full + full), (pieces_t{{full, false}, {full, false}, {"", true}}));
    EXPECT_EQ(pieces_of(full.substr(1)), (pieces_t{{full.substr(1), true}}));
}

TEST_F(Lines, a_nul_byte_hides_the_rest_of_its_line) {
    EXPECT_EQ(pieces_of(std::string("one\0two\nthree\n", 14)),
              (pieces_t{{"one", false}, {"three\n", false}, {"", true}}));
}

TEST_F(Lines, of_large_files_are_all_there) {
    std::string text;
    pieces_t pieces;
    for (int i = 0; i < 20000; i++) {
        const std::string line(static_cast<std::size_t>(i) % 97, 'a');
        pieces.push_back({line + "\n", false});
        text += line + "\n";
    }
    pieces.push_back({"", true});
    EXPECT_TRUE(pieces_of(text) == pieces);
}

TEST_F(Lines, a_file_can_be_opened_again_from_its_start) {
    const text_file_t file("one\ntwo\n");
    for (int pass = 0; pass < 3; pass++) {
        char line[LINE_SIZE];
        open_input(file.name());
        EXPECT_FALSE(read_line(line));
        EXPECT_STREQ(line, "one\n");
        close_input();
    }
}

TEST_F(Lines, a_file_that_cannot_be_read_ends_the_run) {
    for (const char* name : {"/no/such/file", "/", ""})
        EXPECT_TRUE(ended_with(in_child([name] { open_input(name); }), 1, "",
                               "Cannot open file '" + std::string(name) + "'\n"));
}
