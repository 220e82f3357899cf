// SPDX-License-Identifier: MIT
//
// The program as a whole, with a stand-in for gnuplot: how many there are and what each is told
// around its plots.
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tables.h"

using Driver = Fresh;

struct run_t {
    ended_t ended;
    std::vector<std::string> arguments, streams;  // of each gnuplot
};

static std::string content_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Takes the records of the stand-in out of the folder.
static void collect(const std::string& folder, run_t* run) {
    for (int n = 1;; n++) {
        const std::string record = folder + "/gnuplot-" + std::to_string(n);
        if (access((record + ".in").c_str(), F_OK) != 0)
            return;
        run->arguments.push_back(content_of(record + ".args"));
        run->streams.push_back(content_of(record + ".in"));
        unlink((record + ".args").c_str());
        unlink((record + ".in").c_str());
    }
}

static run_t run_program(const std::string& input, std::vector<std::string> args) {
    const text_file_t file(input);
    std::string folder = testing::TempDir() + "record-XXXXXX";
    EXPECT_NE(mkdtemp(folder.data()), nullptr);
    const std::string standin = folder + "/gnuplot";
    EXPECT_EQ(symlink(STANDIN, standin.c_str()), 0);
    args.insert(args.begin(), "gravlex");
    args.push_back(file.path);
    std::vector<char*> argv;
    for (std::string& arg : args)
        argv.push_back(arg.data());
    argv.push_back(nullptr);
    run_t run;
    run.ended = in_child([&] {
        setenv("PATH", (folder + ":/usr/bin:/bin").c_str(), 1);
        setenv("RECORD", folder.c_str(), 1);
        execv(GRAVLEX, argv.data());
        std::abort();
    });
    collect(folder, &run);
    unlink(standin.c_str());
    rmdir(folder.c_str());
    return run;
}

static const std::string VERSION_1 = " KOVA 1.6.986 x\n", VERSION_2 = " KOVA 1.6.987 x\n";
static const std::string HEADER = std::string(L_S) + L_INT + L_BGL;

static std::string input_of_sets(int sets) {
    std::vector<table_set_t> list;
    for (int i = 1; i <= sets; i++)
        list.push_back({std::to_string(i) + "-1", "1", "1 10 5\n2 20 5\n"});
    return VERSION_2 + table_ver2(HEADER, list);
}

static int count(const std::string& text, const std::string& part) {
    int n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        n++;
    return n;
}

static bool starts_with(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

static bool ends_with(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// ---- Layouts -----------------------------------------------------------------------------------

TEST_F(Driver, the_version_chooses_the_reader) {
    const std::vector<table_set_t> sets = {{"1-1", "1", "1 2 3\n"}};
    for (const std::string& version : {VERSION_1, std::string("no version\n")}) {
        const run_t run = run_program(version + table_ver1(HEADER, sets), {});
        EXPECT_EQ(run.ended.status, 0);
        EXPECT_EQ(run.streams.size(), 1U);
        EXPECT_TRUE(contains(run.ended.out, "End of data table.\n"));
    }
    const run_t run = run_program(VERSION_2 + table_ver2(HEADER, sets), {});
    EXPECT_EQ(run.ended.status, 0);
    EXPECT_EQ(run.streams.size(), 1U);
    EXPECT_TRUE(contains(run.ended.out, "KOVA version: 1060987\nScale(1-1)="));
}

// ---- Pages -------------------------------------------------------------------------------------

TEST_F(Driver, a_page_of_several_plots_is_one_gnuplot) {
    const run_t run = run_program(input_of_sets(3), {});
    EXPECT_EQ(run.ended.status, 0);
    EXPECT_EQ(run.ended.err, "");
    ASSERT_EQ(run.streams.size(), 1U);
    EXPECT_EQ(run.arguments[0], "-persist\n");
    EXPECT_TRUE(starts_with(run.streams[0],
                            "set multiplot layout 3, 2 title \"KOVA GED curves\"\n"
                            "set encoding iso_8859_1\n"));
    EXPECT_TRUE(ends_with(run.streams[0], "\ne\nunset multiplot\n"));
    EXPECT_EQ(count(run.streams[0], "\nplot "), 6);
}

TEST_F(Driver, a_single_plot_needs_no_page_and_gets_its_image) {
    const run_t run = run_program(input_of_sets(1), {"--data", "int,bgl", "--png", "x.png"});
    EXPECT_EQ(run.ended.status, 0);
    ASSERT_EQ(run.streams.size(), 1U);
    const std::string data =
        "1.000000 12.000000\n2.000000 22.000000\ne\n"
        "1.000000 7.000000\n2.000000 7.000000\ne\n";
    EXPECT_EQ(run.streams[0].find("multiplot"), std::string::npos);
    EXPECT_TRUE(starts_with(run.streams[0], "set encoding iso_8859_1\n"));
    EXPECT_TRUE(ends_with(run.streams[0], "\n" + data +
                                              "set term pngcairo size 1200,800\n"
                                              "set output \"x.png\"\nreplot\n" +
                                              data));
    EXPECT_EQ(count(run.ended.out, "1 Curve groups to plot.\n"), 2);
}

TEST_F(Driver, a_single_plot_without_a_page_has_a_numbered_image) {
    const run_t run =
        run_program(input_of_sets(1), {"--data", "int,bgl", "--png", "x.png", "--no-multiplot"});
    ASSERT_EQ(run.streams.size(), 1U);
    EXPECT_TRUE(contains(run.streams[0], "\nset output \"1_x.png\"\nreplot\n"));
}

TEST_F(Driver, a_page_of_several_plots_has_no_image) {
    const run_t run = run_program(input_of_sets(2), {"--data", "int,bgl", "--png", "x.png"});
    EXPECT_EQ(run.ended.status, 0);
    EXPECT_EQ(run.ended.err, "");
    ASSERT_EQ(run.streams.size(), 1U);
    EXPECT_TRUE(starts_with(run.streams[0], "set multiplot layout 2, 1 title"));
    EXPECT_TRUE(ends_with(run.streams[0], "unset multiplot\n"));
    EXPECT_EQ(run.streams[0].find("set output"), std::string::npos);
    EXPECT_EQ(run.streams[0].find("replot"), std::string::npos);
}

TEST_F(Driver, without_a_page_each_plot_has_its_gnuplot_and_image) {
    const run_t run =
        run_program(input_of_sets(2), {"--eps", "x", "--no-multiplot", "--dread", "int,bgl"});
    EXPECT_EQ(run.ended.status, 0);
    ASSERT_EQ(run.streams.size(), 4U);
    const char* labels[] = {"Tot.Exp.Int. (1-1)", "Bgl. (1-1)", "Tot.Exp.Int. (2-1)",
                            "Bgl. (2-1)"};
    for (int n = 0; n < 4; n++) {
        const std::string& stream = run.streams[static_cast<std::size_t>(n)];
        EXPECT_EQ(run.arguments[static_cast<std::size_t>(n)], "-persist\n");
        EXPECT_EQ(count(stream, "multiplot"), 0);
        EXPECT_EQ(count(stream, "set encoding"), 1);
        EXPECT_EQ(count(stream, "e\n1.000000"), 0);
        EXPECT_TRUE(contains(stream,
                             "\nset terminal postscript eps enhanced color solid clip\n"
                             "set output \"" +
                                 std::to_string(n + 1) + "_x\"\nreplot\n1.000000 "));
    }
    const run_t named = run_program(input_of_sets(2), {"--no-multiplot", "--legend"});
    ASSERT_EQ(named.streams.size(), 4U);
    for (std::size_t n = 0; n < 4; n++)
        EXPECT_TRUE(contains(named.streams[n], "title '" + std::string(labels[n]) + "'"));
}

TEST_F(Driver, combined_sets_share_a_plot) {
    const run_t run =
        run_program(input_of_sets(3), {"--ccombine", "1-1", "--dcombine", "int,bgl"});
    ASSERT_EQ(run.streams.size(), 1U);
    EXPECT_EQ(run.streams[0].find("multiplot"), std::string::npos);
    EXPECT_EQ(count(run.streams[0], "\nplot "), 1);
    EXPECT_EQ(count(run.streams[0], "\ne\n"), 6);
}

TEST_F(Driver, a_combine_mask_that_matches_nothing_leaves_an_empty_panel) {
    const run_t run = run_program(input_of_sets(1), {"--dcombine", "sec"});
    ASSERT_EQ(run.streams.size(), 1U);
    EXPECT_TRUE(starts_with(run.streams[0], "set multiplot layout 1, 3 title"));
    EXPECT_EQ(count(run.streams[0], "\nplot \n"), 1);
}

// ---- Without data ------------------------------------------------------------------------------

TEST_F(Driver, without_sets_gnuplot_is_not_started) {
    for (const std::string& version : {VERSION_1, VERSION_2}) {
        const run_t run = run_program(version + "no table\n", {});
        EXPECT_EQ(run.ended.status, 0);
        EXPECT_EQ(run.ended.err, "");
        EXPECT_EQ(run.streams.size(), 0U);
    }
}

TEST_F(Driver, without_sets_a_combine_list_starts_a_gnuplot_all_the_same) {
    const run_t run = run_program(VERSION_1 + table_ver1(HEADER, {{"1-1", "1", "1 2 3\n"}}),
                                  {"--curves", "9-9"});
    EXPECT_EQ(run.ended.status, 0);
    ASSERT_EQ(run.streams.size(), 1U);
    EXPECT_EQ(count(run.streams[0], "\nplot \n"), 2);
}

TEST_F(Driver, without_columns_gnuplot_is_not_started) {
    for (const char* page : {"--legend", "--no-multiplot"}) {
        const run_t run = run_program(VERSION_1 + "no table\n", {"--curves", "9-9", page});
        EXPECT_EQ(run.ended.status, 0);
        EXPECT_EQ(run.streams.size(), 0U);
    }
}

// Without a header row, layout 2 leaves columns of no kind.
TEST_F(Driver, columns_of_no_kind_end_the_run_inside_the_plot) {
    const run_t run = run_program(VERSION_2 + "no table\n", {"--curves", "9-9"});
    EXPECT_EQ(run.ended.status, 1);
    EXPECT_TRUE(ends_with(run.ended.out, "\nUnknown data type: 0\n"));
    EXPECT_EQ(run.ended.err, "");
}

TEST_F(Driver, a_set_without_rows_ends_the_run_before_gnuplot) {
    const run_t run = run_program(VERSION_2 + table_ver2(HEADER, {{"1-1", "1", "1 2 3\n"},
                                                                  {"2-1", "1", ""},
                                                                  {"3-1", "1", "1 2 3\n"}}),
                                  {});
    EXPECT_EQ(run.ended.status, 1);
    EXPECT_EQ(run.ended.err, "");
    EXPECT_TRUE(ends_with(run.ended.out, "\nNo data found in data set # 1\n"));
    EXPECT_EQ(count(run.ended.out, "No data found"), 1);
    EXPECT_EQ(run.streams.size(), 0U);
}

TEST_F(Driver, an_error_of_the_input_starts_no_gnuplot) {
    const run_t run = run_program(VERSION_2 + table_ver2(HEADER, {{"1-1", "1", "1 2\n"}}), {});
    EXPECT_EQ(run.ended.status, 1);
    EXPECT_EQ(run.streams.size(), 0U);
}
