// SPDX-License-Identifier: MIT
//
// What gnuplot has to load: the data as named blocks, which replace those of before, and then the
// plot. gnuplot is asked whether its axes are still those that it was given: if not, somebody has
// zoomed, and the same curves are only drawn again, with their new data and the axes as they are.
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "watch.h"

// All that is written is ASCII. Where a font for another encoding is missing, the x11 terminal
// takes that for a closed window.
static void write_settings(plot_t plot, const ranges_t& ranges) {
    GravlexLook.settings(plot, ranges);
    std::fprintf(f, "set encoding default\n");
}

static void write_plot(plot_t plot, const ranges_t& ranges) {
    Look->settings(plot, ranges);
    write_plot_command(plot);
}

// The names of its blocks tell a plot from one with other curves; the ends of the axes have the
// same text as in the settings, so that they are the same numbers.
static void write_single_plot(plot_t plot) {
    ranges_t ranges = {};
    find_ranges(plot, &ranges);
    std::fprintf(f, "w_new = '");
    for_each_series(plot,
                    [](int c, int j) { std::fprintf(f, "%s ", block_name(c, j, false).text); });
    std::fprintf(f,
                 "'\nif (exists('w_series') && w_series eq w_new && "
                 "(GPVAL_X_MIN != w_x0 || GPVAL_X_MAX != w_x1 || "
                 "GPVAL_Y_MIN != w_y0 || GPVAL_Y_MAX != w_y1)) {\nreplot\n} else {\n");
    write_plot(plot, ranges);
    std::fprintf(f,
                 "w_x0 = %f; w_x1 = %f; w_y0 = %f; w_y1 = %f\n"
                 "w_series = w_new\n}\n",
                 ranges.xmin, ranges.xmax, ranges.ymin, ranges.ymax);
}

// Sent whole: gnuplot 5.4 draws the last panel alone when it draws again. It may still be in the
// page before, if an error has ended that.
static void write_page() {
    std::fprintf(f,
                 "undefine w_series\nunset multiplot\n"
                 "set multiplot layout %d, %d title \"KOVA GED curves\"\n",
                 CurveGroupsToPlot, ColGroupsToPlot);
    for_each_plot([](plot_t plot) {
        ranges_t ranges = {};
        if (find_ranges(plot, &ranges))
            write_plot(plot, ranges);
        else
            std::fprintf(f, "set multiplot next\n");
    });
    std::fprintf(f, "unset multiplot\n");
}

static void write_all_data() {
    for_each_plot([&](plot_t plot) {
        ranges_t ranges = {};
        if (find_ranges(plot, &ranges))
            write_data_blocks(plot);
    });
}

void write_picture(const char* name, FILE* commands, int number) {
    f = commands;
    NamedBlocks = 1;
    static look_t look;
    look = GravlexLook;
    look.settings = write_settings;
    Look = &look;
    UserTerminal = 0;  // set once, at the start
    read_input(name);
    prepare_plots();
    require_ranges();
    // gnuplot has loaded what was there before.
    const int uncut = ftruncate(fileno(f), 0);
    lseek(fileno(f), 0, SEEK_SET);
    write_all_data();
    if (page_has_panels())
        write_page();
    else
        write_single_plot({1, 1});
    std::fprintf(f, "w_drawn = %d\n", number);
    std::fflush(f);
    if ((uncut | std::ferror(f)) != 0)
        fail(stderr, "cannot write a temporary file: %s\n", std::strerror(errno));
}
