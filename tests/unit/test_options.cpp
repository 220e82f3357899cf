// SPDX-License-Identifier: MIT
//
// Help and usage: popt words them, so only what is ours in them is looked at.
#include <cstdio>
#include <cstring>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "run/run.h"
#include "state.h"

using Options = Fresh;

static ended_t parsed(
    std::vector<std::string> words, const std::function<void()>& afterwards = [] {}) {
    words.insert(words.begin(), "gravlex");
    return in_child([&] {
        std::vector<char*> argv;
        for (std::string& word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        parse_command_line(static_cast<int>(words.size()), argv.data());
        afterwards();
    });
}

TEST_F(Options, help_and_usage_end_well) {
    for (const char* option : {"--help", "-?", "--usage"}) {
        SCOPED_TRACE(option);
        const ended_t ended = parsed({option, "--nosuch"});
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(ended.err, "");
        EXPECT_EQ(ended.out.substr(0, 15), "Usage: gravlex ");
        EXPECT_NE(ended.out.find("inputfile"), std::string::npos);
    }
}

static void print_switches() {
    for (const int value : {PlotXtics, MultiPlot, AutoShifts, UserTerminal, PlotGrid, PlotLegend,
                            PlotYtics, PlotX2tics, PlotY2tics, PlotBglPlus1, smsErrBars,
                            dsmsErrBars, smsErrFill, dsmsErrFill, dsmslErrFill})
        std::printf("%d", value);
}

TEST_F(Options, switches_are_0_or_1) {
    EXPECT_EQ(parsed({"x.out"}, print_switches).out, "111000000000000");
    std::vector<std::string> words = {"--term=x", "--no-xtics", "--no-multiplot",
                                      "--no-autoshifts", "x.out"};
    for (const char* name : {"grid", "legend", "ytics", "x2tics", "y2tics", "bglp1", "smserrbars",
                             "dsmserrbars", "smserrfill", "dsmserrfill", "dsmslerrfill"})
        words.push_back(std::string("--") + name);
    EXPECT_EQ(parsed(words, print_switches).out, "000111111111111");
}

// What help says about each option, in the order of the table, white space aside.
static const char HELP[] =
    "Usage: gravlex [options...] inputfile "
    "-v, --version Print version "
    "--png=filename Create image 'filename' in PNG format "
    "--eps=filename Create image 'filename' in EPS format "
    "--svg=filename Create image 'filename' in SVG format "
    "-w, --imgw=width Width of image in pixels "
    "-l, --imgl=length Length of image in pixels "
    "--grid Plot grid --legend Plot legend --no-xtics Do not plot xtics --ytics Plot ytics "
    "--x2tics Plot x2tics --y2tics Plot y2tics "
    "-r, --ratio=ratio Set aspect ratio for the image "
    "--term=tname Set terminal to 'tname' "
    "--bglp1 Add 1 to background data "
    "--no-multiplot Plot curves in separate windows "
    "--no-autoshifts No auto shifts for data in ccombine mode "
    "--shiftmult=shift Shift multiplier "
    "--lw=factor Factor for width of lines "
    "--elw=factor Factor for width of error bars "
    "--psf=factor Factor for size of exp. data points "
    "--smsef=factor Factor for standard deviations of sM(s) "
    "--efa=factor Transparency factor for filled areas of standard deviations "
    "-d, --dread=types Read only indicated data types "
    "(int,tint,dint,rint,lint,bgl,rbgl,lbgl,sms,tsms,dsms,sec,iat,smss,ints,all) "
    "--dcombine=types Plot indicated data types on the same graph "
    "--data=types Combination of --dread and --dcombine "
    "-t, --table=integer Table number, from which data should be read "
    "-c, --cread=curves Read only indicated data set(s) (e.g. 1-1,2-1) "
    "--ccombine=curves Plot indicated data on the same graph "
    "--curves=curves Combination of --cread and --ccombine "
    "--smserrbars Plot sM(s) standard deviations as error bars "
    "--dsmserrbars Plot sM(s) standard deviations as error bars for delta sM(s) "
    "--smserrfill Plot sM(s) standard deviations as filled area "
    "--dsmserrfill Plot sM(s) standard deviations as filled area for delta sM(s) "
    "--dsmslerrfill Plot sM(s) standard deviations as filled area for levels of delta sM(s) "
    "--style_sms=style Plot style for sM(s) "
    "--ptype_sms=type Point type for sM(s) "
    "--xmin=value Set minimal value on the x-scale "
    "--xmax=value Set maximal value on the x-scale "
    "Help options: -?, --help ";

static std::string words_of(const ended_t& ended) {
    std::string words;
    for (const char c : ended.out) {
        const bool blank = c == ' ' || c == '\n';
        if (!blank || (!words.empty() && words.back() != ' '))
            words += blank ? ' ' : c;
    }
    return words;
}

TEST_F(Options, help_lists_every_option_in_the_order_of_the_table) {
    const std::string words = words_of(parsed({"--help"}));
    EXPECT_EQ(words.substr(0, std::strlen(HELP)), HELP);
    EXPECT_EQ(words.find("(default"), std::string::npos);  // no option carries extra popt flags
}

TEST_F(Options, a_call_without_arguments_prints_the_usage_with_every_option) {
    const ended_t ended = parsed({});
    EXPECT_TRUE(ended_with(ended, 0, parsed({"--usage"}).out, ""));
    const std::string usage = words_of(ended), end = " [options...] inputfile ";
    EXPECT_EQ(usage.substr(usage.size() - end.size()), end);
    std::istringstream help(HELP);
    for (std::string word; help >> word;) {
        // The texts name options without their arguments.
        const bool listed = contains(usage, word + "]") || contains(usage, word + "=");
        EXPECT_TRUE(listed || word.substr(0, 2) != "--") << word;
    }
}
