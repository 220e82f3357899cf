// SPDX-License-Identifier: MIT
#include <string>

#include "run/run.h"
#include "state.h"

using Pages = Fresh;

TEST_F(Pages, a_page_has_panels_if_it_shows_several_plots) {
    const struct {
        int page, curves, columns;
        bool panels;
    } cases[] = {{1, 1, 1, false}, {1, 2, 1, true},  {1, 1, 2, true}, {1, 3, 3, true},
                 {0, 2, 2, false}, {1, 0, 0, false}, {1, 0, 2, true}};
    for (const auto& c : cases) {
        MultiPlot = c.page;
        CurveGroupsToPlot = c.curves;
        ColGroupsToPlot = c.columns;
        EXPECT_EQ(page_has_panels(), c.panels);
        MakeImage = 0;
        EXPECT_FALSE(image_is_drawn());
        MakeImage = IMG_EPS;
        EXPECT_EQ(image_is_drawn(), !c.panels);
    }
}

TEST_F(Pages, an_image_is_one_of_three_formats) {
    for (const int format : {-1, 0, 4})
        EXPECT_FALSE((MakeImage = format, image_is_asked_for()));
    for (const int format : {IMG_PNG, IMG_EPS, IMG_SVG})
        EXPECT_TRUE((MakeImage = format, image_is_asked_for()));
}

// ---- Image commands ----------------------------------------------------------------------------

static std::string image_commands(int format, int number) {
    MakeImage = format;
    wx = 640;
    wy = 480;
    char name[] = "out file";
    ImgFname = name;
    return sent([number] { write_image_commands(number); });
}

TEST_F(Pages, an_image_is_a_terminal_a_file_and_a_replot) {
    const std::string rest = "set output \"out file\"\nreplot\n";
    EXPECT_EQ(image_commands(IMG_PNG, 0), "set term pngcairo size 640,480\n" + rest);
    EXPECT_EQ(image_commands(IMG_EPS, 0),
              "set terminal postscript eps enhanced color solid clip\n" + rest);
    EXPECT_EQ(image_commands(IMG_SVG, 0),
              "set terminal svg size 640,480 dynamic enhanced\n" + rest);
}

TEST_F(Pages, an_unknown_format_is_drawn_as_png) {
    EXPECT_EQ(image_commands(4, 0),
              "set term pngcairo size 640,480\nset output \"out file\"\nreplot\n");
}

TEST_F(Pages, numbered_images_have_their_number_in_front) {
    EXPECT_EQ(image_commands(IMG_PNG, 1),
              "set term pngcairo size 640,480\nset output \"1_out file\"\nreplot\n");
    EXPECT_EQ(image_commands(IMG_PNG, 12),
              "set term pngcairo size 640,480\nset output \"12_out file\"\nreplot\n");
}
