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

TEST_F(Pages, an_unknown_format_is_drawn_as_png) {
    EXPECT_EQ(image_commands(4, 0),
              "set term pngcairo size 640,480\nset output \"out file\"\nreplot\n");
}
