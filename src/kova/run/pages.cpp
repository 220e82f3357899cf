// SPDX-License-Identifier: MIT
//
// Which plots share a page, and which pages become images.
#include "plot/plot.h"
#include "run/run.h"

bool page_has_panels() {
    return MultiPlot && (CurveGroupsToPlot > 1 || ColGroupsToPlot > 1);
}

bool image_is_asked_for() {
    return MakeImage == IMG_PNG || MakeImage == IMG_EPS || MakeImage == IMG_SVG;
}

bool image_is_drawn() {
    return MakeImage && !page_has_panels();
}

void write_image_terminal() {
    switch (MakeImage) {
        case IMG_EPS:
            std::fprintf(f, "set terminal postscript eps enhanced color solid clip\n");
            break;
        case IMG_SVG:
            std::fprintf(f, "set terminal svg size %d,%d dynamic enhanced\n", wx, wy);
            break;
        default:
            std::fprintf(f, "set term pngcairo size %d,%d\n", wx, wy);
    }
}

void write_image_commands(int number) {
    write_image_terminal();
    if (number != 0)
        std::fprintf(f, "set output \"%d_%s\"\n", number, ImgFname);
    else
        std::fprintf(f, "set output \"%s\"\n", ImgFname);
    std::fprintf(f, "replot\n");
}

// One gnuplot with the whole page, or with a single plot whose image has a number from 1.
static void plot_page(int number) {
    gnuplot_start();
    if (page_has_panels())
        std::fprintf(f, "set multiplot layout %d, %d title \"KOVA GED curves\"\n",
                     CurveGroupsToPlot, ColGroupsToPlot);
    data_plot(1);
    if (image_is_drawn()) {
        write_image_commands(number);
        data_plot(0);
    }
    if (page_has_panels())
        std::fprintf(f, "unset multiplot\n");
    gnuplot_close();
}

void plot_all() {
    int number = 0;
    for (int g = 1; g <= CurveGroupsToPlot; g++) {
        for (int h = 1; h <= ColGroupsToPlot; h++) {
            if (MultiPlot) {
                plot_page(0);
                return;  // all plots are on the one page
            }
            CurCurvesGroupToPlot = g;
            CurDataGroupToPlot = h;
            plot_page(++number);
        }
    }
}
