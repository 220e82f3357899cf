// SPDX-License-Identifier: MIT
//
// The options one by one, the echo and the help. What the options do together stands in
// test_options_order.cpp. Lists are remembered for the echo in variables that no test can reset,
// so every command line is parsed in a process of its own.
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "command_line.h"
#include "run/run.h"
#include "state.h"

using Options = Fresh;

TEST_F(Options, settings_start_with_their_defaults) {
    EXPECT_EQ(ImgFname, nullptr);
    EXPECT_EQ(MakeImage, 0);
    EXPECT_EQ(wx, 1200);
    EXPECT_EQ(wy, 800);
    EXPECT_EQ(PlotXtics, 1);
    for (const int flag : {PlotGrid, PlotLegend, PlotYtics, PlotX2tics, PlotY2tics, UserTerminal,
                           PlotBglPlus1, smsErrBars, dsmsErrBars, smsErrFill, dsmsErrFill,
                           dsmslErrFill, NparToRead, NparToCombine})
        EXPECT_EQ(flag, 0);
    EXPECT_EQ(PlotRatio, 0.0);
    EXPECT_EQ(UserTerminalName, nullptr);
    EXPECT_EQ(MultiPlot, 1);
    EXPECT_EQ(AutoShifts, 1);
    EXPECT_EQ(ShiftMult, 0.0);
    for (const double factor :
         {LineWidthFactor, ErrLineWidthFactor, PointSizeFactor, smsStdevFactor})
        EXPECT_EQ(factor, 1.0);
    EXPECT_EQ(ErrFillAlpha, 0.5);
    EXPECT_EQ(Gxmin, -1e100);
    EXPECT_EQ(Gxmax, -1e100);
    EXPECT_EQ(TableN, 1);
    EXPECT_EQ(DataToRead, 0x1ffffU);
    EXPECT_EQ(DataToCombine, 0U);
    for (const int* list : {ParToReadNum1, ParToReadNum2, ParToCombineNum1, ParToCombineNum2})
        EXPECT_EQ(list, nullptr);
}

struct option_case_t {
    std::vector<std::string> args;
    int changed;  // settings that it changes
    bool (*holds)();
};

static const option_case_t OptionCases[] = {
    {{}, 0, [] { return true; }},
    {{"--imgw", "640"}, 1, [] { return wx == 640; }},
    {{"-w", "641"}, 1, [] { return wx == 641; }},
    {{"--imgl=480"}, 1, [] { return wy == 480; }},
    {{"-l481"}, 1, [] { return wy == 481; }},
    {{"--grid"}, 1, [] { return PlotGrid == 1; }},
    {{"--legend"}, 1, [] { return PlotLegend == 1; }},
    {{"--no-xtics"}, 1, [] { return PlotXtics == 0; }},
    {{"--ytics"}, 1, [] { return PlotYtics == 1; }},
    {{"--x2tics"}, 1, [] { return PlotX2tics == 1; }},
    {{"--y2tics"}, 1, [] { return PlotY2tics == 1; }},
    {{"--ratio", "0.75"}, 1, [] { return PlotRatio == 0.75; }},
    {{"-r", "-2"}, 1, [] { return PlotRatio == -2.0; }},
    {{"--term", "qt size 1,2"},
     2,
     [] { return UserTerminal == 1 && std::strcmp(UserTerminalName, "qt size 1,2") == 0; }},
    {{"--png", "a.png"}, 2, [] { return MakeImage == 1 && std::strcmp(ImgFname, "a.png") == 0; }},
    {{"--eps", "a.eps"}, 2, [] { return MakeImage == 2 && std::strcmp(ImgFname, "a.eps") == 0; }},
    {{"--svg", "a.svg"}, 2, [] { return MakeImage == 3 && std::strcmp(ImgFname, "a.svg") == 0; }},
    {{"--bglp1"}, 1, [] { return PlotBglPlus1 == 1; }},
    {{"--no-multiplot"}, 1, [] { return MultiPlot == 0; }},
    {{"--no-autoshifts"}, 1, [] { return AutoShifts == 0; }},
    {{"--shiftmult", "1.5"}, 1, [] { return ShiftMult == 1.5; }},
    {{"--lw", "2.5"}, 1, [] { return LineWidthFactor == 2.5; }},
    {{"--elw", "3.5"}, 1, [] { return ErrLineWidthFactor == 3.5; }},
    {{"--psf", "4.5"}, 1, [] { return PointSizeFactor == 4.5; }},
    {{"--smsef", "5.5"}, 1, [] { return smsStdevFactor == 5.5; }},
    {{"--efa", "0.25"}, 1, [] { return ErrFillAlpha == 0.25; }},
    {{"--table", "3"}, 1, [] { return TableN == 3; }},
    {{"-t", "-4"}, 1, [] { return TableN == -4; }},
    {{"--smserrbars"}, 1, [] { return smsErrBars == 1; }},
    {{"--dsmserrbars"}, 1, [] { return dsmsErrBars == 1; }},
    {{"--smserrfill"}, 1, [] { return smsErrFill == 1; }},
    {{"--dsmserrfill"}, 1, [] { return dsmsErrFill == 1; }},
    {{"--dsmslerrfill"}, 1, [] { return dsmslErrFill == 1; }},
    {{"--xmin", "2.5"}, 1, [] { return Gxmin == 2.5; }},
    {{"--xmax", "3e1"}, 1, [] { return Gxmax == 30.0; }},
    {{"--xmin", "-1e100"}, 0, [] { return Gxmin == -1e100; }},
    {{"--dread", "int"}, 1, [] { return DataToRead == 0x101; }},
    {{"-d", "bgl,rint"}, 1, [] { return DataToRead == 0x122; }},
    {{"--dread", "all"}, 1, [] { return DataToRead == 0x19fff; }},
    {{"--dread", ","}, 1, [] { return DataToRead == 0x100; }},
    {{"--dcombine", "int,bgl"}, 1, [] { return DataToCombine == 0x3; }},
    {{"--data", "int,bgl"}, 2, [] { return DataToRead == 0x103 && DataToCombine == 0x103; }},
    {{"--cread", "2-1,1-3"},
     3,
     [] {
         return is_list(NparToRead, ParToReadNum1, ParToReadNum2, {{2, 1}, {1, 3}});
     }},
    {{"-c", "010-1"},
     3,
     [] {
         return is_list(NparToRead, ParToReadNum1, ParToReadNum2, {{8, 1}});
     }},
    {{"--ccombine", "2-1,1-3"},
     3,
     [] {
         return is_list(NparToCombine, ParToCombineNum1, ParToCombineNum2, {{2, 1}, {1, 3}});
     }},
    {{"--curves", "1-1,2-1"},
     6,
     [] {
         return is_list(NparToRead, ParToReadNum1, ParToReadNum2, {{1, 1}, {2, 1}}) &&
                is_list(NparToCombine, ParToCombineNum1, ParToCombineNum2, {{1, 1}, {2, 1}}) &&
                ParToCombineNum1 != ParToReadNum1 && ParToCombineNum2 != ParToReadNum2;
     }},
};

TEST_F(Options, each_changes_its_own_settings_only) {
    for (const option_case_t& option : OptionCases) {
        SCOPED_TRACE(option.args.empty() ? "no option" : option.args[0]);
        const ended_t ended = parsed(option.args + "in.out", [&option] {
            EXPECT_TRUE(option.holds());
            EXPECT_EQ(changed_settings(), option.changed);
        });
        EXPECT_TRUE(ended_with(ended, 0, "in.out\n", ""));
    }
}

TEST_F(Options, style_and_point_type_change_the_row_of_experimental_sms_only) {
    const ended_t ended = parsed({"--style_sms", "3", "--ptype_sms", "7", "x"}, [] {
        EXPECT_EQ(changed_settings(), 0);
        for (int r = 0; r < MAX_COLS; r++) {
            const int style = r == 0 || r == 12 ? 0 : 1;
            EXPECT_EQ(Type[r].style_type, r == 4 ? 3 : style);
            EXPECT_EQ(Type[r].p_type, r == 4 ? 7 : 6 * style);
        }
    });
    EXPECT_TRUE(ended_with(ended, 0, "x\n", ""));
    EXPECT_TRUE(ended_with(parsed({"--style_sms", "3", "x"},
                                  [] {
                                      EXPECT_EQ(Type[4].style_type, 3);
                                      EXPECT_EQ(Type[4].p_type, 6);
                                  }),
                           0, "x\n", ""));
    EXPECT_TRUE(ended_with(parsed({"--ptype_sms=0", "x"},
                                  [] {
                                      EXPECT_EQ(Type[4].style_type, ST_POINTS);
                                      EXPECT_EQ(Type[4].p_type, 0);
                                  }),
                           0, "x\n", ""));
}

TEST_F(Options, deviations_are_shown_if_any_of_the_five_is_on) {
    EXPECT_FALSE(deviations_shown());
    for (int* flag : {&smsErrBars, &dsmsErrBars, &smsErrFill, &dsmsErrFill, &dsmslErrFill}) {
        *flag = 1;
        EXPECT_TRUE(deviations_shown());
        *flag = 0;
    }
}

// ---- The echo ----------------------------------------------------------------------------------

static const char NO_OPTIONS[] =
    "imgw=1200, imgl=800\ngrid=no\nlegend=no\nxtics=yes\nytics=no\nx2tics=no\ny2tics=no\n"
    "ratio=0.000000\nbglp1=no\nmultiplot=yes\nautoshifts=yes\nshiftmult=0.000000\nlw=1.000000\n"
    "psf=1.000000\nsmsf=1.000000\nefa=0.500000\ntable=1\n";

static std::string echoed(const std::vector<std::string>& args) {
    const ended_t ended = parsed(args + "x", echo_settings);
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.err, "");
    EXPECT_EQ(ended.out.substr(0, 2), "x\n");
    return ended.out.substr(2);
}

TEST_F(Options, echo_without_options_has_17_lines) {
    EXPECT_EQ(echoed({}), NO_OPTIONS);
}

TEST_F(Options, echo_leaves_out_what_is_not_echoed) {
    EXPECT_EQ(echoed({"--elw=2", "--xmin=1", "--xmax=2", "--style_sms=1", "--ptype_sms=1",
                      "--smserrbars", "--dsmserrbars", "--smserrfill", "--dsmserrfill",
                      "--dsmslerrfill"}),
              NO_OPTIONS);
}

TEST_F(Options, echo_has_every_line_in_its_order) {
    EXPECT_EQ(echoed({"-w",
                      "10",
                      "-l",
                      "20",
                      "--curves",
                      "3-1",
                      "--ccombine",
                      "2-1",
                      "--cread",
                      "1-1",
                      "--data",
                      "sec",
                      "--dcombine",
                      "bgl,,int",
                      "--dread",
                      "all,!sms",
                      "--table=2",
                      "--efa=0.125",
                      "--smsef=4",
                      "--psf=3",
                      "--lw=2",
                      "--shiftmult",
                      "-1.5",
                      "--no-autoshifts",
                      "--no-multiplot",
                      "--bglp1",
                      "--term",
                      "dumb 'x'",
                      "--ratio=0.5",
                      "--y2tics",
                      "--x2tics",
                      "--ytics",
                      "--no-xtics",
                      "--legend",
                      "--grid",
                      "--eps",
                      "a b.eps"}),
              "imgw=10, imgl=20\neps='a b.eps'\ngrid=yes\nlegend=yes\nxtics=no\nytics=yes\n"
              "x2tics=yes\ny2tics=yes\nratio=0.500000\nterm='dumb 'x''\nbglp1=yes\nmultiplot=no\n"
              "autoshifts=no\nshiftmult=-1.500000\nlw=2.000000\npsf=3.000000\nsmsf=4.000000\n"
              "efa=0.125000\ndread='all,!sms'\ndcombine='bgl,,int'\ndata='sec'\ncread='1-1'\n"
              "ccombine='2-1'\ncurves='3-1'\ntable=2\n");
}

TEST_F(Options, echo_names_the_image_by_its_format) {
    EXPECT_NE(echoed({"--png", "p"}).find("imgl=800\npng='p'\ngrid=no\n"), std::string::npos);
    EXPECT_NE(echoed({"--svg", "s"}).find("imgl=800\nsvg='s'\ngrid=no\n"), std::string::npos);
}

// ---- Help and usage ----------------------------------------------------------------------------

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
