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

// One gnuplot with all plots on one page.
static void plot_page() {
    gnuplot_start();
    if (page_has_panels())
        std::fprintf(f, "set multiplot layout %d, %d title \"KOVA GED curves\"\n",
                     CurveGroupsToPlot, ColGroupsToPlot);
    data_plot(1);
    if (image_is_written()) {
        gnuplot_image_commands(0);
        data_plot(0);
    }
    if (page_has_panels())
        std::fprintf(f, "unset multiplot\n");
    gnuplot_close();
}

// A gnuplot of its own for one plot; its images are numbered.
static void plot_single(int curve_group, int column_group, int number) {
    gnuplot_start();
    CurCurvesGroupToPlot = curve_group;
    CurDataGroupToPlot = column_group;
    data_plot(1);
    if (image_is_written()) {
        gnuplot_image_commands(number);
        data_plot(0);
    }
    gnuplot_close();
}

static void plot_all() {
    if (MultiPlot) {
        if (CurveGroupsToPlot > 0 && ColGroupsToPlot > 0)
            plot_page();
        return;
    }
    int number = 0;
    for (int g = 1; g <= CurveGroupsToPlot; g++) {
        for (int h = 1; h <= ColGroupsToPlot; h++)
            plot_single(g, h, ++number);
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
