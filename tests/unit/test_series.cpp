// SPDX-License-Identifier: MIT
//
// The plot command and the data of its series.
#include <limits>
#include <string>
#include <vector>

#include "input/input.h"
#include "plot/plot.h"
#include "state.h"

using Series = Fresh;

static std::string command(int curve_group = 1, int column_group = 1) {
    return sent([=] { write_plot_command({curve_group, column_group}); });
}

static std::string data(int curve_group = 1, int column_group = 1) {
    return sent([=] { write_data_blocks({curve_group, column_group}); });
}

// Sets of two points each, so that every value tells where it comes from: set c has s = c and
// c + 0.5, column j has 10 * c + j and 0, the shift is 100 * c.
static void make_store(const std::vector<int>& kinds, int sets = 1) {
    set_plot_columns(kinds);
    for (int c = 1; c <= sets; c++) {
        std::vector<column_t> columns = {{1.0 * c, c + 0.5}};
        for (std::size_t j = 1; j < kinds.size(); j++)
            columns.push_back({10.0 * c + static_cast<double>(j), 0.0});
        add_set(c, 1, columns);
        for (std::size_t j = 1; j < kinds.size(); j++)
            CurveShift[c - 1][j] = 100.0 * c;
    }
    combine_all();
}

// ---- The plot command --------------------------------------------------------------------------

static const char TSMS[] = "'-' using 1:2 notitle with lines   lw  2.0 lc rgb \"#AA0000\"";
static const char LINES[] = "'-' using 1:2 notitle with lines   lw  2.0 lc rgb \"black\"";
static const char SMS[] =
    "'-' using 1:2 notitle with points pt 6 ps  0.7 lw  1.0 lc rgb \"black\"";
static const char BARS[] =
    "'-' using 1:2:3 notitle with errorbars pt 0 lw  1.0 lc rgb \"black\", ";
static const char BAND[] = "'-' using 1:2:3 notitle with filledcurves fillcolor \"black\", ";

static std::string text(std::initializer_list<const char*> parts) {
    std::string whole;
    for (const char* part : parts)
        whole += part;
    return whole;
}

TEST_F(Series, a_line_series_is_written_so) {
    make_store({P_GINT_S, P_GINT_TSMS});
    EXPECT_EQ(command(), text({"plot  ", TSMS, "\n"}));
}

TEST_F(Series, experimental_sms_are_points_drawn_last) {
    make_store({P_GINT_S, P_GINT_SMS, P_GINT_TSMS, P_GINT_INT});
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", LINES, ", ", SMS, "\n"}));
}

TEST_F(Series, stand_curve_by_curve_and_column_by_column) {
    make_store({P_GINT_S, P_GINT_SMS, P_GINT_TSMS, P_GINT_INT}, 2);
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", LINES, ", ", TSMS, ", ", LINES, ", ", SMS,
                               ", ", SMS, "\n"}));
}

TEST_F(Series, only_curves_and_columns_of_the_plot_are_drawn) {
    make_store({P_GINT_S, P_GINT_TSMS, P_GINT_INT}, 2);
    CurvePlotGroup[1] = 2;
    ColPlotGroup[2] = 2;
    EXPECT_EQ(command(1, 1), text({"plot  ", TSMS, "\n"}));
    EXPECT_EQ(command(2, 2), text({"plot  ", LINES, "\n"}));
    EXPECT_EQ(data(2, 1), "2.000000 221.000000\n2.500000 200.000000\ne\n");
}

TEST_F(Series, legends_name_kind_and_set) {
    make_store({P_GINT_S, P_GINT_TSMS, P_GINT_INT}, 1);
    CurveNd[0] = 12;
    CurveNc[0] = 34;
    PlotLegend = 1;
    EXPECT_EQ(command(),
              "plot  '-' using 1:2 title 'Thr.sM(s) (12-34)' with lines   lw  2.0 lc rgb "
              "\"#AA0000\", '-' using 1:2 title 'Tot.Exp.Int. (12-34)' with lines   lw  2.0 lc "
              "rgb \"black\"\n");
}

TEST_F(Series, every_style_has_its_words) {
    make_store({P_GINT_S, P_GINT_SMS});
    const struct {
        int style;
        const char* words;
    } styles[] = {{ST_LINES, "lines  "},
                  {ST_POINTS, "points pt 7 ps  0.7"},
                  {ST_LPOINTS, "linespoints pt 7 ps  0.7"},
                  {ST_SPECIAL, "   "}};
    Type[4].p_type = 7;
    for (const auto& s : styles) {
        Type[4].style_type = s.style;
        EXPECT_EQ(command(), text({"plot  '-' using 1:2 notitle with ", s.words,
                                   " lw  1.0 lc rgb \"black\"\n"}));
    }
}

TEST_F(Series, a_style_that_is_none_ends_the_run) {
    for (const int style : {0, 5, -1}) {
        reset_state();
        make_store({P_GINT_S, P_GINT_SMS});
        Type[4].style_type = style;
        f = std::tmpfile();
        EXPECT_TRUE(ended_with(
            in_child([] {
                write_plot_command({1, 1});
            }),
            1, "", "Invalid plotting style " + std::to_string(style) + " for data type 4\n"));
        char start[20] = "";
        EXPECT_EQ(pread(fileno(f), start, sizeof start, 0), 5);
        EXPECT_STREQ(start, "plot ");
        std::fclose(f);
    }
}

TEST_F(Series, s_and_r_columns_have_no_style) {
    for (const auto& [kind, row] :
         {std::pair<int, const char*>{P_GINT_S, "0"}, {P_GINT_R, "12"}}) {
        reset_state();
        make_store({P_GINT_S, kind});
        f = std::tmpfile();
        EXPECT_TRUE(ended_with(
            in_child([] {
                write_plot_command({1, 1});
            }),
            1, "", "Invalid plotting style 0 for data type " + std::string(row) + "\n"));
        std::fclose(f);
    }
}

// It would be left out, but its style is looked at first.
TEST_F(Series, a_hidden_column_needs_a_style_too) {
    make_store({P_GINT_S, P_GINT_SMSS});
    smsErrBars = 1;
    Type[10].style_type = 9;
    f = std::tmpfile();
    EXPECT_TRUE(ended_with(in_child([] {
                               write_plot_command({1, 1});
                           }),
                           1, "", "Invalid plotting style 9 for data type 10\n"));
    std::fclose(f);
}

TEST_F(Series, a_plot_of_nothing_has_no_series) {
    make_store({P_GINT_S, P_GINT_SMSS});
    smsErrBars = 1;
    EXPECT_EQ(command(), "plot \n");
    EXPECT_EQ(data(), "");
    EXPECT_EQ(command(7, 7), "plot \n");
    EXPECT_EQ(data(7, 7), "");
}

// ---- Widths ------------------------------------------------------------------------------------

TEST_F(Series, widths_have_their_factors) {
    make_store({P_GINT_S, P_GINT_SMS});
    smsErrBars = 1;
    LineWidthFactor = 2;
    ErrLineWidthFactor = 3;
    PointSizeFactor = 10;
    EXPECT_EQ(command(),
              "plot  '-' using 1:2:3 notitle with errorbars pt 0 lw  3.0 lc rgb \"black\", "
              "'-' using 1:2 notitle with points pt 6 ps  7.0 lw  2.0 lc rgb \"black\"\n");
}

TEST_F(Series, widths_of_an_image_follow_its_width) {
    make_store({P_GINT_S, P_GINT_SMS, P_GINT_TSMS});
    smsErrBars = 1;
    for (const int format : {IMG_PNG, IMG_EPS, IMG_SVG}) {
        MakeImage = format;
        wx = 1200;
        EXPECT_EQ(command(),
                  "plot  '-' using 1:2 notitle with lines   lw  3.3 lc rgb \"#AA0000\", "
                  "'-' using 1:2:3 notitle with errorbars pt 0 lw  1.5 lc rgb \"black\", "
                  "'-' using 1:2 notitle with points pt 6 ps  1.0 lw  1.7 lc rgb \"black\"\n");
        wx = 700;
        LineWidthFactor = 0.5;
        EXPECT_EQ(command(),
                  "plot  '-' using 1:2 notitle with lines   lw  2.9 lc rgb \"#AA0000\", "
                  "'-' using 1:2:3 notitle with errorbars pt 0 lw  2.6 lc rgb \"black\", "
                  "'-' using 1:2 notitle with points pt 6 ps  1.7 lw  1.4 lc rgb \"black\"\n");
        LineWidthFactor = 1;
    }
    MakeImage = 4;
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", BARS, SMS, "\n"}));
}

TEST_F(Series, widths_are_exact) {
    make_store({P_GINT_S, P_GINT_SMS});
    smsErrBars = 1;
    LineWidthFactor = ErrLineWidthFactor = PointSizeFactor = 1e6;
    EXPECT_TRUE(contains(command(), " lw 1000000.0 lc"));
    EXPECT_TRUE(contains(command(), " pt 6 ps 700000.0 lw 1000000.0 lc"));
    MakeImage = IMG_PNG;
    wx = 1000;
    EXPECT_TRUE(contains(command(), " pt 0 lw 1800000.0 lc"));
    EXPECT_TRUE(contains(command(), " pt 6 ps 1200000.0 lw 2000000.0 lc"));
}

// ---- Deviations --------------------------------------------------------------------------------

// Columns 1 to 4: theory, experiment, delta, deviations.
static void make_deviation_store() {
    make_store({P_GINT_S, P_GINT_TSMS, P_GINT_SMS, P_GINT_DSMS, P_GINT_SMSS});
    ColErrIdx[2] = ColErrIdx[3] = 4;
    // s: 1 1.5; theory 111 100; experiment 112 100; delta 113 100; deviations 14 0, not shifted.
}

static const char THEORY_DATA[] = "1.000000 111.000000\n1.500000 100.000000\ne\n";
static const char SMS_DATA[] = "1.000000 112.000000\n1.500000 100.000000\ne\n";
static const char DELTA_DATA[] = "1.000000 113.000000\n1.500000 100.000000\ne\n";
static const char DEVIATION_DATA[] = "1.000000 114.000000\n1.500000 100.000000\ne\n";
static const char SMS_BARS[] = "1.000000 112.000000 14.000000\n1.500000 100.000000 0.000000\ne\n";
static const char SMS_BAND[] =
    "1.000000 98.000000 126.000000\n1.500000 100.000000 100.000000\ne\n";
static const char DELTA_BARS[] =
    "1.000000 113.000000 14.000000\n1.500000 100.000000 0.000000\ne\n";
static const char DELTA_BAND[] =
    "1.000000 99.000000 127.000000\n1.500000 100.000000 100.000000\ne\n";
static const char LEVEL_BAND[] =
    "1.000000 86.000000 114.000000\n1.500000 100.000000 100.000000\ne\n";

TEST_F(Series, deviations_that_are_not_shown_are_a_series) {
    make_deviation_store();
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", LINES, ", ", LINES, ", ", SMS, "\n"}));
    EXPECT_EQ(data(), text({THEORY_DATA, DELTA_DATA, DEVIATION_DATA, SMS_DATA}));
}

TEST_F(Series, bars_of_experimental_sms) {
    make_deviation_store();
    smsErrBars = 1;
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", LINES, ", ", BARS, SMS, "\n"}));
    EXPECT_EQ(data(), text({THEORY_DATA, DELTA_DATA, SMS_BARS, SMS_DATA}));
}

TEST_F(Series, band_of_experimental_sms) {
    make_deviation_store();
    smsErrFill = 1;
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", LINES, ", ", BAND, SMS, "\n"}));
    EXPECT_EQ(data(), text({THEORY_DATA, DELTA_DATA, SMS_BAND, SMS_DATA}));
}

TEST_F(Series, bars_of_delta_sms) {
    make_deviation_store();
    dsmsErrBars = 1;
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", BARS, LINES, ", ", SMS, "\n"}));
    EXPECT_EQ(data(), text({THEORY_DATA, DELTA_BARS, DELTA_DATA, SMS_DATA}));
}

TEST_F(Series, band_of_delta_sms) {
    make_deviation_store();
    dsmsErrFill = 1;
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", BAND, LINES, ", ", SMS, "\n"}));
    EXPECT_EQ(data(), text({THEORY_DATA, DELTA_BAND, DELTA_DATA, SMS_DATA}));
}

TEST_F(Series, band_of_the_zero_line_of_delta_sms) {
    make_deviation_store();
    dsmslErrFill = 1;
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", BAND, LINES, ", ", SMS, "\n"}));
    EXPECT_EQ(data(), text({THEORY_DATA, LEVEL_BAND, DELTA_DATA, SMS_DATA}));
}

TEST_F(Series, bars_come_before_bands_and_bands_before_level_bands) {
    make_deviation_store();
    dsmsErrFill = dsmslErrFill = 1;
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", BAND, LINES, ", ", SMS, "\n"}));
    EXPECT_EQ(data(), text({THEORY_DATA, DELTA_BAND, DELTA_DATA, SMS_DATA}));
    smsErrBars = smsErrFill = dsmsErrBars = 1;
    EXPECT_EQ(command(), text({"plot  ", TSMS, ", ", BARS, LINES, ", ", BARS, SMS, "\n"}));
    EXPECT_EQ(data(), text({THEORY_DATA, DELTA_BARS, DELTA_DATA, SMS_BARS, SMS_DATA}));
}

TEST_F(Series, a_deviation_series_takes_the_colour_of_its_curve_and_no_legend) {
    make_store({P_GINT_S, P_GINT_SMS});
    std::snprintf(Type[4].style_color, sizeof Type[4].style_color, "#00FF00");
    smsErrFill = PlotLegend = 1;
    EXPECT_EQ(command(),
              "plot  '-' using 1:2:3 notitle with filledcurves fillcolor \"#00FF00\", "
              "'-' using 1:2 title 'Exp.sM(s) (1-1)' with points pt 6 ps  0.7 lw  1.0 lc rgb "
              "\"#00FF00\"\n");
}

TEST_F(Series, without_a_deviation_column_s_stands_for_the_deviations) {
    make_store({P_GINT_S, P_GINT_SMS});
    smsErrBars = 1;
    EXPECT_EQ(data(),
              "1.000000 111.000000 1.000000\n1.500000 100.000000 1.500000\ne\n"
              "1.000000 111.000000\n1.500000 100.000000\ne\n");
}

TEST_F(Series, two_sets_with_theory_legend_and_bars) {
    make_store({P_GINT_S, P_GINT_TSMS, P_GINT_SMS, P_GINT_SMSS}, 2);
    ColErrIdx[2] = 3;
    smsErrBars = PlotLegend = 1;
    EXPECT_EQ(
        command(),
        "plot  '-' using 1:2 title 'Thr.sM(s) (1-1)' with lines   lw  2.0 lc rgb \"#AA0000\", "
        "'-' using 1:2 title 'Thr.sM(s) (2-1)' with lines   lw  2.0 lc rgb \"#AA0000\", "
        "'-' using 1:2:3 notitle with errorbars pt 0 lw  1.0 lc rgb \"black\", "
        "'-' using 1:2 title 'Exp.sM(s) (1-1)' with points pt 6 ps  0.7 lw  1.0 lc rgb "
        "\"black\", '-' using 1:2:3 notitle with errorbars pt 0 lw  1.0 lc rgb \"black\", "
        "'-' using 1:2 title 'Exp.sM(s) (2-1)' with points pt 6 ps  0.7 lw  1.0 lc rgb "
        "\"black\"\n");
    EXPECT_EQ(data(),
              "1.000000 111.000000\n1.500000 100.000000\ne\n"
              "2.000000 221.000000\n2.500000 200.000000\ne\n"
              "1.000000 112.000000 13.000000\n1.500000 100.000000 0.000000\ne\n"
              "1.000000 112.000000\n1.500000 100.000000\ne\n"
              "2.000000 222.000000 23.000000\n2.500000 200.000000 0.000000\ne\n"
              "2.000000 222.000000\n2.500000 200.000000\ne\n");
}

// ---- Numbers -----------------------------------------------------------------------------------

TEST_F(Series, a_column_that_a_set_lacks_is_an_empty_series) {
    set_plot_columns({P_GINT_S, P_GINT_INT, P_GINT_BGL});
    add_set(1, 1, {{1}, {}, {2}});
    combine_all();
    EXPECT_EQ(command(), text({"plot  ", LINES, ", ", LINES, "\n"}));
    EXPECT_EQ(data(), "e\n1.000000 2.000000\ne\n");
}

TEST_F(Series, numbers_are_written_as_printf_writes_them) {
    const double inf = std::numeric_limits<double>::infinity();
    const column_t values = {0.0,       -0.0, 1e300,      -1e-300,   inf,
                             -inf,      5e-7, 4.9999e-7,  2.5e-6,    1234567.8901235,
                             0.0000005, 1e22, 123.456789, -0.000001, -0.0000001,
                             0.1234565, 1e15, 1e17 / 3,   -inf,      0.5000005};
    set_plot_columns({P_GINT_S, P_GINT_INT});
    add_set(1, 1, {values, values});
    combine_all();
    CurveShift[0][1] = -0.0;
    std::string expected;
    for (const double value : values) {
        char row[1000];
        std::snprintf(row, sizeof row, "%f %f\n", value, value + -0.0);
        expected += row;
    }
    EXPECT_EQ(data(), expected + "e\n");
}

TEST_F(Series, a_nan_is_written_with_its_sign) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    set_plot_columns({P_GINT_S, P_GINT_INT});
    add_set(1, 1, {{1, 2}, {nan, -nan}});
    combine_all();
    EXPECT_EQ(data(), "1.000000 nan\n2.000000 -nan\ne\n");
}

TEST_F(Series, every_point_of_a_long_curve_is_sent) {
    column_t x, y;
    std::string expected;
    for (int k = 0; k < 30000; k++) {
        x.push_back(k / 7.0);
        y.push_back(k * -1.1);
        char row[100];
        std::snprintf(row, sizeof row, "%f %f\n", k / 7.0, k * -1.1 + 0.3);
        expected += row;
    }
    set_plot_columns({P_GINT_S, P_GINT_INT});
    add_set(1, 1, {x, y});
    combine_all();
    CurveShift[0][1] = 0.3;
    EXPECT_TRUE(data() == expected + "e\n");
}
