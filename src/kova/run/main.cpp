// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "input/input.h"
#include "plot/plot.h"
#include "run/run.h"

static void read_tables(const char* inpFname) {
    if (detect_int_table_version(inpFname) == 2)
        parse_kova_int_tables_ver2(inpFname);
    else
        parse_kova_int_tables_ver1(inpFname);
}

// One gnuplot with the whole page, or with a single plot whose image has a number from 1.
static void plot_session(int number) {
    gnuplot_start();
    if (page_has_panels())
        std::fprintf(f, "set multiplot layout %d, %d title \"KOVA GED curves\"\n",
                     CurveGroupsToPlot, ColGroupsToPlot);
    data_plot(1);
    if (image_is_written()) {
        gnuplot_image_commands(number);
        data_plot(0);
    }
    if (page_has_panels())
        std::fprintf(f, "unset multiplot\n");
    gnuplot_close();
}

static void plot_all() {
    int number = 0;
    for (int g = 1; g <= CurveGroupsToPlot; g++) {
        for (int h = 1; h <= ColGroupsToPlot; h++) {
            if (MultiPlot) {
                plot_session(0);
                return;  // all plots are on the one page
            }
            CurCurvesGroupToPlot = g;
            CurDataGroupToPlot = h;
            plot_session(++number);
        }
    }
}

static void release_all() {
    std::free(ParToReadNum1);
    std::free(ParToReadNum2);
    std::free(ParToCombineNum1);
    std::free(ParToCombineNum2);
    release_curves();
    release_rows();
}

int main(int argc, char** argv) {
    prepare_process();
    const char* inpFname = parse_command_line(argc, argv);
    echo_settings();
    read_tables(inpFname);
    link_deviations();
    group_columns();
    group_curves();
    refuse_empty_curves();
    plot_all();
    release_all();
    return EXIT_SUCCESS;
}
