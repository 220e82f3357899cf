// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "run/run.h"
#include "state.h"

using Console = Fresh;

TEST_F(Console, say_formats_on_standard_output) {
    EXPECT_TRUE(
        ended_with(in_child([] { say("%d %s %4.1f\n", 7, "x", 0.5); }), 0, "7 x  0.5\n", ""));
}

TEST_F(Console, complain_formats_on_standard_error_and_goes_on) {
    EXPECT_TRUE(ended_with(in_child([] {
                               complain("%d\n", 7);
                               say("on\n");
                           }),
                           0, "on\n", "7\n"));
}

TEST_F(Console, a_complaint_comes_after_what_was_said_before) {
    EXPECT_TRUE(ended_with(in_child([] {
                               dup2(STDOUT_FILENO, STDERR_FILENO);
                               say("one\n");
                               complain("two\n");
                               say("three\n");
                               fail(stderr, "four\n");
                           }),
                           1, "one\ntwo\nthree\nfour\n", ""));
}

TEST_F(Console, flushed_output_comes_before_another_writer) {
    EXPECT_TRUE(ended_with(in_child([] {
                               say("one ");
                               flush_output();
                               EXPECT_EQ(write(STDOUT_FILENO, "two ", 4), 4);
                               say("three");
                           }),
                           0, "one two three", ""));
}

TEST_F(Console, fail_ends_the_run_on_either_stream) {
    EXPECT_TRUE(ended_with(in_child([] { fail(stdout, "no %s\n", "way"); }), 1, "no way\n", ""));
    EXPECT_TRUE(ended_with(in_child([] { fail(stderr, "no %d\n", 7); }), 1, "", "no 7\n"));
}

TEST_F(Console, fail_sends_gnuplot_what_was_written_so_far) {
    f = std::tmpfile();
    EXPECT_EQ(in_child([] {
                  std::fprintf(f, "set grid\n");
                  fail(stderr, "x");
              }).status,
              1);
    char text[20] = "";
    EXPECT_EQ(pread(fileno(f), text, sizeof text, 0), 9);
    EXPECT_STREQ(text, "set grid\n");
    std::fclose(f);
}

TEST_F(Console, output_that_cannot_be_written_is_an_error_at_the_end) {
    EXPECT_TRUE(ended_with(in_child([] {
                               prepare_process();
                               dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
                               say("x\n");
                           }),
                           1, "", "Cannot write to standard output: No space left on device\n"));
}

TEST_F(Console, a_reader_that_has_gone_is_no_error) {
    EXPECT_TRUE(ended_with(in_child([] {
                               prepare_process();
                               int ends[2];
                               ASSERT_EQ(pipe(ends), 0);
                               close(ends[0]);
                               dup2(ends[1], STDOUT_FILENO);
                               say("x\n");
                           }),
                           0, "", ""));
}

TEST_F(Console, closed_standard_streams_are_not_given_to_others) {
    EXPECT_TRUE(ended_with(in_child([] {
                               close(STDIN_FILENO);
                               close(STDOUT_FILENO);
                               prepare_process();
                               EXPECT_GT(open("/dev/null", O_RDONLY), STDERR_FILENO);
                               say("nowhere\n");
                           }),
                           0, "", ""));
}

TEST_F(Console, resized_blocks_keep_their_content) {
    int* array = resized<int>(nullptr, 1);
    array[0] = 7;
    array = resized(array, 100000);
    EXPECT_EQ(array[0], 7);
    array[99999] = 8;
    array = resized(array, 1);
    EXPECT_EQ(array[0], 7);
    std::free(array);
    void* nothing = resize_block(nullptr, 0, 8);
    EXPECT_NE(nothing, nullptr);
    std::free(nothing);
}

TEST_F(Console, a_block_that_is_not_to_be_had_ends_the_run) {
    EXPECT_TRUE(ended_with(in_child([] { resize_block(nullptr, SIZE_MAX / 2, 8); }), 1, "",
                           "Cannot allocate memory\n"));
}
