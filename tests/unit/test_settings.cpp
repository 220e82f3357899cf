// SPDX-License-Identifier: MIT
//
// The settings of a plot: the commands before its plot command.
#include <cmath>
#include <string>
#include <vector>

#include "input/input.h"
#include "plot/plot.h"
#include "state.h"

using PlotSettings = Fresh;

static const column_t X = {2, 3, 4};

// One set with both sM(s), from -1 to 3, in one plot.
static void make_store() {
    set_plot_columns({P_GINT_S, P_GINT_SMS, P_GINT_TSMS});
    add_set(1, 1, {X, {-1, 0, 1}, {0, 3, 0}});
    combine_all();
}

static std::string settings() {
    return sent([] { write_settings({1, 1}, plot_ranges({1, 1}, 2.0, 4.0)); });
}

// The line of the settings that begins so, without its newline; "none" if there is none.
static std::string line(const std::string& start) {
    const std::string text = "\n" + settings();
    const std::size_t begin = text.find("\n" + start);
    if (begin == std::string::npos)
        return "none";
    return text.substr(begin + 1, text.find('\n', begin + 1) - begin - 1);
}

TEST_F(PlotSettings, by_default_are_these) {
    make_store();
    EXPECT_EQ(settings(),
              "set encoding iso_8859_1\n"
              "set xlabel \"s, A^{-1}\"\n"
              "set format y \"\"\n"
              "set pointsize 0.5\n"
              "set xtics border nomirror\n"
              "set ytics border nomirror\n"
              "set ytics scale 0\n"
              "set xrange [1.900000 : 4.100000]\n"
              "set yrange [-1.200000 : 3.200000]\n"
              "set style fill transparent solid  0.5 noborder\n"
              "set bars 0.5\n"
              "set ylabel \"Exp.sM(s), Thr.sM(s)\" \n");
}

TEST_F(PlotSettings, all_at_once_are_these) {
    make_store();
    char terminal[] = "qt size 300,200";
    UserTerminal = 1;
    UserTerminalName = terminal;
    MakeImage = IMG_PNG;
    PlotX2tics = PlotY2tics = PlotYtics = PlotGrid = 1;
    PlotXtics = 0;
    PlotRatio = 0.75;
    Gxmin = 1;
    Gxmax = 30;
    ErrFillAlpha = 0.26;
    EXPECT_EQ(settings(),
              "set encoding iso_8859_1\n"
              "set terminal qt size 300,200\n"
              "set tics font \"Arial, 24\"\n"
              "set xlabel \"{/Arial-Italic s}, {/Arial {\xC5}^{-1}}\" offset char 0, char -1 "
              "font \", 24\"\n"
              "set format y \"\"\n"
              "set pointsize 0.5\n"
              "set xtics scale 0\n"
              "set size ratio 0.750000\n"
              "set grid\n"
              "set xrange [1.000000 : 30.000000]\n"
              "set yrange [-1.200000 : 3.200000]\n"
              "set style fill transparent solid  0.3 noborder\n"
              "set bars 0.5\n"
              "set ylabel \"{/Arial-Italic sM}({/Arial-Italic s})\" font \"Arial, 24\"\n");
}

// ---- Fonts -------------------------------------------------------------------------------------

TEST_F(PlotSettings, fonts_follow_the_width_of_the_image) {
    make_store();
    const struct {
        int format, width;
        const char* size;
    } cases[] = {{IMG_PNG, 1200, "24"}, {IMG_EPS, 1200, "24"}, {IMG_SVG, 1200, "40"},
                 {IMG_SVG, 1234, "41"}, {IMG_EPS, 1234, "24"}, {IMG_PNG, 1249, "24"},
                 {IMG_PNG, 1250, "25"}, {IMG_PNG, 49, "0"}};
    for (const auto& c : cases) {
        MakeImage = c.format;
        wx = c.width;
        const std::string size = c.size;
        EXPECT_EQ(line("set tics font"), "set tics font \"Arial, " + size + "\"");
        EXPECT_EQ(line("set xlabel"),
                  "set xlabel \"{/Arial-Italic s}, {/Arial {\xC5}^{-1}}\" offset char 0, char -1 "
                  "font \", " +
                      size + "\"");
        EXPECT_EQ(
            line("set ylabel"),
            "set ylabel \"{/Arial-Italic sM}({/Arial-Italic s})\" font \"Arial, " + size + "\"");
    }
}

// ---- Tics, ratio and grid ----------------------------------------------------------------------

TEST_F(PlotSettings, each_kind_of_tics_has_its_line) {
    make_store();
    EXPECT_EQ(line("set xtics"), "set xtics border nomirror");
    PlotX2tics = 1;
    EXPECT_EQ(line("set xtics"), "none");
    EXPECT_EQ(line("set ytics border"), "set ytics border nomirror");
    PlotY2tics = 1;
    EXPECT_EQ(line("set ytics border"), "none");
    EXPECT_EQ(line("set ytics"), "set ytics scale 0");
    PlotYtics = 1;
    EXPECT_EQ(line("set ytics"), "none");
    PlotXtics = 0;
    EXPECT_EQ(line("set xtics"), "set xtics scale 0");
}

TEST_F(PlotSettings, a_ratio_of_zero_is_none) {
    make_store();
    EXPECT_EQ(line("set size"), "none");
    PlotRatio = -0.0;
    EXPECT_EQ(line("set size"), "none");
    PlotRatio = -1.5;
    EXPECT_EQ(line("set size"), "set size ratio -1.500000");
    PlotRatio = std::nan("");
    EXPECT_EQ(line("set size"), "set size ratio nan");
}

// ---- Ranges ------------------------------------------------------------------------------------

static void expect_xrange(const std::string& xmin, const std::string& xmax) {
    EXPECT_EQ(line("set xrange"), "set xrange [" + xmin + " : " + xmax + "]");
    f = std::tmpfile();
    EXPECT_EQ(said([] {
                  write_settings({1, 1}, plot_ranges({1, 1}, 2.0, 4.0));
              }),
              "xmin=" + xmin + "\nxmax=" + xmax + "\n");
    std::fclose(f);
    f = nullptr;
}

TEST_F(PlotSettings, each_end_of_x_can_be_given_alone) {
    make_store();
    expect_xrange("1.900000", "4.100000");
    Gxmin = 2;
    expect_xrange("2.000000", "4.100000");
    Gxmax = 10;
    expect_xrange("2.000000", "10.000000");
    Gxmin = GX_NOT_GIVEN;
    expect_xrange("1.900000", "10.000000");
}

TEST_F(PlotSettings, the_mark_of_an_end_not_given_is_not_given) {
    make_store();
    Gxmin = Gxmax = -1e100;
    expect_xrange("1.900000", "4.100000");
    Gxmin = -1e200;
    Gxmax = std::nan("");
    expect_xrange("1.900000", "4.100000");
    Gxmin = Gxmax = 0;
    expect_xrange("0.000000", "0.000000");
}

TEST_F(PlotSettings, the_extent_of_s_is_that_of_first_and_last_points) {
    set_plot_columns({P_GINT_S, P_GINT_INT});
    add_set(1, 1, {{3, -50, 50, 4}, {0, 0, 0, 0}});
    add_set(2, 1, {{2, 3}, {0, 0}});
    add_set(3, 1, {{-9, 99}, {0, 0}});
    add_set(4, 1, {{7}, {0}});
    const int groups[] = {1, 1, 2, 3};
    std::copy(groups, groups + 4, CurvePlotGroup);
    double xMin, xMax;
    abscissa_extent({1, 1}, &xMin, &xMax);
    EXPECT_EQ(xMin, 2);
    EXPECT_EQ(xMax, 4);
    abscissa_extent({3, 1}, &xMin, &xMax);
    EXPECT_EQ(xMin, 7);
    EXPECT_EQ(xMax, 7);
    abscissa_extent({4, 1}, &xMin, &xMax);
    EXPECT_EQ(xMin, 1e99);
    EXPECT_EQ(xMax, -1e99);
}

TEST_F(PlotSettings, the_range_of_y_counts_every_shifted_point_of_the_plot) {
    set_plot_columns({P_GINT_S, P_GINT_SMS, P_GINT_SMSS, P_GINT_INT});
    add_set(1, 1, {{1, 9, 3}, {0, 5, 1}, {1, 1, 1}, {-100, 0, 100}});
    add_set(2, 1, {X, {0, 0, 0}, {1, 1, -3}, {0, 0, 0}});
    add_set(3, 1, {X, {1e6, 0, 0}, {0, 0, 0}, {0, 0, 0}});
    combine_all();
    ColPlotGroup[3] = 2;
    CurvePlotGroup[2] = 2;
    CurveShift[0][1] = 10;  // 10 to 15
    smsErrBars = 1;         // the deviations, -3 to 1, count all the same
    EXPECT_EQ(line("set yrange"), "set yrange [-3.900000 : 15.900000]");
    EXPECT_EQ(bits(YrangeMin), bits(-3 - 0.05 * 18));
    EXPECT_EQ(bits(YrangeMax), bits(15 + 0.05 * 18));
}

TEST_F(PlotSettings, a_column_that_a_set_lacks_has_no_range) {
    set_plot_columns({P_GINT_S, P_GINT_SMS});
    add_set(1, 1, {X, {}});
    add_set(2, 1, {X, {0, 1, 0}});
    combine_all();
    EXPECT_EQ(line("set yrange"), "set yrange [-0.050000 : 1.050000]");
}

TEST_F(PlotSettings, the_range_of_nothing_is_that_of_the_marks) {
    char expected[1000];
    std::snprintf(expected, sizeof expected, "set yrange [%f : %f]", 1e99 - 0.05 * (-1e99 - 1e99),
                  -1e99 + 0.05 * (-1e99 - 1e99));
    EXPECT_EQ(line("set yrange"), expected);
}

TEST_F(PlotSettings, opacity_is_written_in_four_characters) {
    make_store();
    ErrFillAlpha = 1;
    EXPECT_EQ(line("set style"), "set style fill transparent solid  1.0 noborder");
    ErrFillAlpha = 123.45;
    EXPECT_EQ(line("set style"), "set style fill transparent solid 123.5 noborder");
}

// ---- The y label -------------------------------------------------------------------------------

static std::string label(const std::vector<int>& kinds) {
    set_plot_columns(kinds);
    combine_all();
    return line("set ylabel");
}

TEST_F(PlotSettings, on_screen_every_kind_is_named) {
    EXPECT_EQ(label({P_GINT_S, P_GINT_INT, P_GINT_BGL, P_GINT_TINT, P_GINT_DINT}),
              "set ylabel \"Tot.Exp.Int., Bgl., Tot.Thr.I, Delta.I\" ");
    EXPECT_EQ(label({P_GINT_S}), "set ylabel \"\" ");
    EXPECT_EQ(label({P_GINT_S, P_GINT_SEC, P_GINT_SEC, P_GINT_IAT}), "set ylabel \"Sec., Iat.\" ");
}

TEST_F(PlotSettings, in_an_image_shared_labels_are_named_once) {
    MakeImage = IMG_EPS;
    EXPECT_EQ(label({P_GINT_S, P_GINT_DSMS, P_GINT_SMS, P_GINT_BGL, P_GINT_TSMS, P_GINT_RBGL}),
              "set ylabel \"{/Arial-Italic sM}({/Arial-Italic s}), "
              "{/Arial-Italic B}({/Arial-Italic s})\" font \"Arial, 24\"");
    EXPECT_EQ(label({P_GINT_S, P_GINT_IAT, P_GINT_SMS}),
              "set ylabel \"{/Arial-Italic sM}({/Arial-Italic s})_{at}, "
              "{/Arial-Italic sM}({/Arial-Italic s})\" font \"Arial, 24\"");
}

TEST_F(PlotSettings, only_columns_of_the_plot_are_named) {
    set_plot_columns({P_GINT_S, P_GINT_INT, P_GINT_BGL, P_GINT_SEC});
    combine_all();
    ColPlotGroup[2] = 2;
    EXPECT_EQ(line("set ylabel"), "set ylabel \"Tot.Exp.Int., Sec.\" ");
    MakeImage = IMG_PNG;
    EXPECT_EQ(line("set ylabel"),
              "set ylabel \"{/Arial-Italic I}({/Arial-Italic s}), "
              "{/Arial-Italic K}({/Arial-Italic s})\" font \"Arial, 24\"");
}

TEST_F(PlotSettings, marks_of_the_label_before_are_cleared) {
    for (data_type_t& kind : Type)
        kind.user = 1;
    EXPECT_EQ(label({P_GINT_S, P_GINT_INT}), "set ylabel \"Tot.Exp.Int.\" ");
    for (int r = 0; r < MAX_COLS; r++)
        EXPECT_EQ(Type[r].user, r == 1 ? 1 : 0);
    EXPECT_EQ(label({P_GINT_S, P_GINT_BGL}), "set ylabel \"Bgl.\" ");
    EXPECT_EQ(Type[1].user, 0);
    EXPECT_EQ(Type[3].user, 1);
}

TEST_F(PlotSettings, deviations_are_named_unless_they_are_shown_with_others) {
    EXPECT_EQ(label({P_GINT_S, P_GINT_SMS, P_GINT_SMSS}), "set ylabel \"Exp.sM(s), sMsS\" ");
    for (int* flag : {&smsErrBars, &dsmsErrBars, &smsErrFill, &dsmsErrFill, &dsmslErrFill}) {
        *flag = 1;
        EXPECT_EQ(label({P_GINT_S, P_GINT_SMSS, P_GINT_SMS}), "set ylabel \"Exp.sM(s)\" ");
        *flag = 0;
    }
}

TEST_F(PlotSettings, a_column_of_no_kind_ends_the_run_inside_the_label) {
    set_plot_columns({P_GINT_S, P_GINT_INT, 0});
    ColPlotGroup[1] = 1;  // the other column is in no plot, and is looked up all the same
    f = std::tmpfile();
    const ended_t ended = in_child([] { write_settings({1, 1}, plot_ranges({1, 1}, 2.0, 4.0)); });
    EXPECT_TRUE(ended_with(ended, 1, "xmin=1.900000\nxmax=4.100000\nUnknown data type: 0\n", ""));
    std::string text(5000, '\0');
    text.resize(static_cast<std::size_t>(pread(fileno(f), text.data(), text.size(), 0)));
    EXPECT_TRUE(contains(text, "\nset bars 0.5\nset ylabel \"Tot.Exp.Int."));
    EXPECT_NE(text.back(), '\n');
    std::fclose(f);
}
