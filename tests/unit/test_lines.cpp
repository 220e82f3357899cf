// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <algorithm>
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

// However the file is read, the places where one read ends and the next begins do not show.
TEST_F(Lines, may_end_anywhere_in_a_large_file) {
    for (const std::size_t size : {65534U, 65535U, 65536U, 65537U, 131072U, 131073U}) {
        std::string text;
        pieces_t pieces;
        while (text.size() < size) {
            const std::string line(std::min<std::size_t>(97, size - text.size() - 1), 'a');
            pieces.push_back({line + "\n", false});
            text += line + "\n";
        }
        pieces.push_back({"", true});
        EXPECT_TRUE(pieces_of(text) == pieces) << size;
    }
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

// ---- What can be read only once ----------------------------------------------------------------

// The name of a pipe that holds the text.
static std::string pipe_with(const std::string& text, int (&ends)[2]) {
    EXPECT_EQ(pipe(ends), 0);
    EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    return "/dev/fd/" + std::to_string(ends[0]);
}

static std::string next_line() {
    char line[LINE_SIZE];
    read_line(line);
    return line;
}

TEST_F(Lines, the_first_one_of_a_pipe_can_be_read_again) {
    int ends[2];
    const std::string name = pipe_with("one\ntwo\n", ends);
    open_input(name.c_str());
    EXPECT_EQ(next_line(), "one\n");
    leave_first_line();
    EXPECT_EQ(write(ends[1], "three\n", 6), 6);
    close(ends[1]);
    open_input(name.c_str());
    for (const char* line : {"one\n", "two\n", "three\n", ""})
        EXPECT_EQ(next_line(), line);
    close_input();
    close(ends[0]);
}

TEST_F(Lines, a_long_first_one_of_a_pipe_can_be_read_again) {
    const std::string full(399, 'a');
    int ends[2];
    const std::string name = pipe_with(full + full + "b\n", ends);
    close(ends[1]);
    open_input(name.c_str());
    EXPECT_EQ(next_line(), full);
    leave_first_line();
    open_input(name.c_str());
    for (const std::string& line : {full, full, std::string("b\n"), std::string()})
        EXPECT_EQ(next_line(), line);
    close_input();
    close(ends[0]);
}

// The next descriptor that would be given.
static int free_descriptor() {
    const int next = dup(STDIN_FILENO);
    close(next);
    return next;
}

TEST_F(Lines, another_file_can_be_opened_after_a_first_line) {
    const text_file_t one("one\n"), two("two\n");
    const int before = free_descriptor();
    open_input(one.name());
    next_line();
    leave_first_line();
    open_input(two.name());
    EXPECT_EQ(next_line(), "two\n");
    close_input();
    EXPECT_EQ(free_descriptor(), before);
}
