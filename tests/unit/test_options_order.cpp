// SPDX-License-Identifier: MIT
//
// What the order of options makes of them, and what becomes of wrong ones.
#include <popt.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "command_line.h"
#include "run/run.h"
#include "state.h"

using OptionsOrder = Fresh;

static bool reads(const std::vector<std::pair<int, int>>& pairs) {
    return is_list(NparToRead, ParToReadNum1, ParToReadNum2, pairs);
}

static bool combines(const std::vector<std::pair<int, int>>& pairs) {
    return is_list(NparToCombine, ParToCombineNum1, ParToCombineNum2, pairs);
}

static void expect_holds(const std::vector<std::string>& args, bool (*holds)()) {
    SCOPED_TRACE(args[0] + " " + args[1]);
    EXPECT_TRUE(ended_with(parsed(args + "x", [holds] { EXPECT_TRUE(holds()); }), 0, "x\n", ""));
}

TEST_F(OptionsOrder, dread_after_data_keeps_the_combine_mask) {
    expect_holds({"--data", "int,bgl", "--dread", "sms"},
                 [] { return DataToRead == 0x104 && DataToCombine == 0x103; });
}

TEST_F(OptionsOrder, data_after_dread_and_dcombine_replaces_both) {
    expect_holds({"--dread", "sms", "--dcombine", "sec", "--data", "int"},
                 [] { return DataToRead == 0x101 && DataToCombine == 0x101; });
}

TEST_F(OptionsOrder, dcombine_after_data_replaces_the_combine_mask) {
    expect_holds({"--data", "int,bgl", "--dcombine", "sms"},
                 [] { return DataToRead == 0x103 && DataToCombine == 0x4; });
}

TEST_F(OptionsOrder, cread_after_curves_keeps_the_copied_combine_list) {
    expect_holds({"--curves", "1-1", "--cread", "3-1"}, [] {
        return reads({{3, 1}}) && combines({{1, 1}});
    });
}

TEST_F(OptionsOrder, ccombine_after_curves_keeps_the_read_list) {
    expect_holds({"--curves", "1-1", "--ccombine", "3-1,4-1"}, [] {
        return reads({{1, 1}}) && combines({{3, 1}, {4, 1}});
    });
}

TEST_F(OptionsOrder, curves_replaces_both_lists) {
    expect_holds({"--cread", "1-1", "--ccombine", "2-1", "--curves", "5-1,6-2"}, [] {
        return reads({{5, 1}, {6, 2}}) && combines({{5, 1}, {6, 2}});
    });
}

TEST_F(OptionsOrder, a_later_list_replaces_the_earlier_one) {
    expect_holds({"--cread", "1-1,2-1", "--cread", "3-1"}, [] { return reads({{3, 1}}); });
    expect_holds({"--ccombine", "1-1,2-1", "--ccombine", "3-1"}, [] {
        return combines({{3, 1}});
    });
    expect_holds({"--dread", "int,bgl", "--dread", "sms"}, [] { return DataToRead == 0x104; });
    expect_holds({"--dcombine", "int", "--dcombine", "sms"}, [] { return DataToCombine == 0x4; });
    expect_holds({"--dread", "all", "--dread", "!sms"}, [] { return DataToRead == 0x100; });
}

TEST_F(OptionsOrder, curves_of_commas_only_empty_both_lists) {
    expect_holds({"--ccombine", "1-1", "--curves", ","},
                 [] { return NparToRead == 0 && NparToCombine == 0; });
}

TEST_F(OptionsOrder, the_last_image_decides_format_and_name) {
    const ended_t ended = parsed({"--png", "a.png", "--svg", "b.svg", "x"}, [] {
        EXPECT_EQ(MakeImage, IMG_SVG);
        EXPECT_STREQ(ImgFname, "b.svg");
        const std::string echo = said(echo_settings);
        EXPECT_NE(echo.find("\nsvg='b.svg'\n"), std::string::npos);
        EXPECT_EQ(echo.find("png="), std::string::npos);
        EXPECT_EQ(echo.find("eps="), std::string::npos);
    });
    EXPECT_TRUE(ended_with(ended, 0, "x\n", ""));
    expect_holds({"--svg", "b", "--png", "a"},
                 [] { return MakeImage == IMG_PNG && std::strcmp(ImgFname, "a") == 0; });
}

TEST_F(OptionsOrder, the_last_number_counts) {
    expect_holds({"--imgw=1", "-w", "2", "--imgw=3"}, [] { return wx == 3; });
}

TEST_F(OptionsOrder, options_may_follow_the_input_file) {
    EXPECT_TRUE(
        ended_with(parsed({"a", "--grid", "b"}, [] { EXPECT_EQ(PlotGrid, 1); }), 0, "a\n", ""));
}

TEST_F(OptionsOrder, the_first_argument_is_the_input_file_and_others_are_ignored) {
    EXPECT_TRUE(ended_with(parsed({"first", "second", "third"}), 0, "first\n", ""));
    EXPECT_TRUE(ended_with(parsed({"--", "--grid", "second"}), 0, "--grid\n", ""));
}

// ---- Version -----------------------------------------------------------------------------------

TEST_F(OptionsOrder, version_prints_two_lines_and_goes_on) {
    for (const char* option : {"--version", "-v"}) {
        const ended_t ended = parsed({option, "--grid", "x"}, [] { EXPECT_EQ(PlotGrid, 1); });
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(ended.err, "");
        const std::string first = "Gravlex version 1.7-55-gc5354fa\n";
        ASSERT_EQ(ended.out.substr(0, first.size()), first);
        const std::size_t end = ended.out.find('\n', first.size());
        EXPECT_GT(end, first.size());  // the attribution, whatever its words
        EXPECT_EQ(ended.out.substr(end), "\nx\n");
    }
}

TEST_F(OptionsOrder, version_alone_lacks_an_input_file) {
    const ended_t ended = parsed({"--version"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.err, "No input file defined.\n");
    EXPECT_EQ(ended.out.substr(0, 32), "Gravlex version 1.7-55-gc5354fa\n");
    EXPECT_EQ(ended.out.find('\n', 32), ended.out.size() - 1);
}

// ---- Wrong options -----------------------------------------------------------------------------

// popt names the word that it took last, be it the option or its argument.
static std::string popt_message(const char* word, int code) {
    return std::string(word) + ": " + poptStrerror(code) + " (" + std::to_string(code) + ")\n";
}

TEST_F(OptionsOrder, what_popt_refuses_ends_the_run_in_its_words) {
    EXPECT_TRUE(
        ended_with(parsed({"--nosuch", "x"}), 1, "", popt_message("--nosuch", POPT_ERROR_BADOPT)));
    EXPECT_TRUE(ended_with(parsed({"-z", "x"}), 1, "", popt_message("-z", POPT_ERROR_BADOPT)));
    EXPECT_TRUE(
        ended_with(parsed({"x", "--png"}), 1, "", popt_message("--png", POPT_ERROR_NOARG)));
    EXPECT_TRUE(ended_with(parsed({"--imgw", "wide", "x"}), 1, "",
                           popt_message("wide", POPT_ERROR_BADNUMBER)));
    EXPECT_TRUE(ended_with(parsed({"--imgw=wide", "x"}), 1, "",
                           popt_message("--imgw=wide", POPT_ERROR_BADNUMBER)));
    EXPECT_TRUE(ended_with(parsed({"--lw", "1,5", "x"}), 1, "",
                           popt_message("1,5", POPT_ERROR_BADNUMBER)));
    EXPECT_TRUE(ended_with(parsed({"-t", "99999999999", "x"}), 1, "",
                           popt_message("99999999999", POPT_ERROR_OVERFLOW)));
}

TEST_F(OptionsOrder, nothing_after_a_refused_option_is_looked_at) {
    EXPECT_TRUE(ended_with(parsed({"--nosuch", "--dread", "foo", "--version"}), 1, "",
                           popt_message("--nosuch", POPT_ERROR_BADOPT)));
}

TEST_F(OptionsOrder, a_missing_input_file_ends_the_run) {
    EXPECT_TRUE(ended_with(parsed({"--grid"}), 1, "", "No input file defined.\n"));
}

TEST_F(OptionsOrder, a_bad_kind_list_ends_the_run_with_two_messages) {
    for (const char* option : {"dread", "dcombine", "data"}) {
        SCOPED_TRACE(option);
        EXPECT_TRUE(
            ended_with(parsed({"--" + std::string(option), "int,foo,bgl", "x"}), 1,
                       "Unknown data type: foo\n",
                       std::string(option) + ": wrong data type description: 'int,foo,bgl'\n"));
    }
}

TEST_F(OptionsOrder, a_bad_pair_list_ends_the_run_with_two_messages) {
    for (const char* option : {"cread", "ccombine", "curves"}) {
        SCOPED_TRACE(option);
        EXPECT_TRUE(ended_with(parsed({"--" + std::string(option), "1-1,2", "x"}), 1,
                               "Incorrect indication of intensity set: '2'\n",
                               std::string(option) + ": wrong data description: '1-1,2'\n"));
        EXPECT_TRUE(ended_with(parsed({"--" + std::string(option), "", "x"}), 1, "",
                               std::string(option) + ": wrong data description: ''\n"));
    }
}

TEST_F(OptionsOrder, all_wrong_lists_are_reported_before_the_run_ends) {
    EXPECT_TRUE(ended_with(parsed({"--dread", "foo", "--cread", "", "--data=x", "--ccombine", "q",
                                   "--grid", "--imgw", "?"}),
                           1,
                           "Unknown data type: foo\nUnknown data type: x\n"
                           "Incorrect indication of intensity set: 'q'\n",
                           "dread: wrong data type description: 'foo'\n"
                           "cread: wrong data description: ''\n"
                           "data: wrong data type description: 'x'\n"
                           "ccombine: wrong data description: 'q'\n" +
                               popt_message("?", POPT_ERROR_BADNUMBER)));
}

TEST_F(OptionsOrder, after_a_wrong_list_a_missing_input_file_is_not_missed) {
    EXPECT_TRUE(ended_with(parsed({"--dread", "foo"}), 1, "Unknown data type: foo\n",
                           "dread: wrong data type description: 'foo'\n"));
}

// The settings as they are when the run ends.
static ended_t parsed_to_the_end(const std::vector<std::string>& args, void (*at_end)()) {
    std::vector<std::string> words = {"gravlex"};
    words.insert(words.end(), args.begin(), args.end());
    return in_child([&] {
        std::vector<char*> argv;
        for (std::string& word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        std::atexit(at_end);
        parse_command_line(static_cast<int>(words.size()), argv.data());
    });
}

TEST_F(OptionsOrder, a_bad_kind_list_leaves_s_and_what_came_before_the_bad_word) {
    const auto masks = [] { std::printf("%#x %#x\n", DataToRead, DataToCombine); };
    EXPECT_EQ(parsed_to_the_end({"--dread", "foo", "x"}, masks).out,
              "Unknown data type: foo\n0x100 0\n");
    EXPECT_EQ(parsed_to_the_end({"--dcombine", "int,foo", "x"}, masks).out,
              "Unknown data type: foo\n0x1ffff 0x1\n");
    EXPECT_EQ(parsed_to_the_end({"--data", "int,foo,bgl", "x"}, masks).out,
              "Unknown data type: foo\n0x101 0x101\n");
}

TEST_F(OptionsOrder, a_bad_pair_list_leaves_what_came_before_the_bad_item) {
    const auto lists = [] {
        std::printf("%d %d\n", reads({{1, 1}, {2, 2}}), combines({{1, 1}, {2, 2}}));
    };
    const std::string message = "Incorrect indication of intensity set: 'x'\n";
    EXPECT_EQ(parsed_to_the_end({"--curves", "1-1,2-2,x,3-3", "x"}, lists).out, message + "1 1\n");
    EXPECT_EQ(parsed_to_the_end({"--cread", "1-1,2-2,x,3-3", "x"}, lists).out, message + "1 0\n");
    EXPECT_EQ(parsed_to_the_end({"--cread", "1-1,2-2", "--curves", "", "x"}, lists).out, "1 1\n");
}
