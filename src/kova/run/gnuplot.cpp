// SPDX-License-Identifier: MIT
//
// The life of a gnuplot process. A run has at most one at a time.
#include <cerrno>
#include <cstring>

#include "run/run.h"

FILE* f = nullptr;

void gnuplot_start() {
    flush_output();  // gnuplot may write to the same standard output
    f = popen("gnuplot -persist", "w");
    if (f == nullptr)
        fail(stdout, "Cannot connect to gnuplot pipe: %s\n", std::strerror(errno));
}

static void set_image_terminal() {
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

void gnuplot_image_commands(int number) {
    set_image_terminal();
    if (number != 0)
        std::fprintf(f, "set output \"%d_%s\"\n", number, ImgFname);
    else
        std::fprintf(f, "set output \"%s\"\n", ImgFname);
    std::fprintf(f, "replot\n");
}

void gnuplot_close() {
    flush_output();
    if (pclose(f) != 0)
        complain("Unable to close GnuPlot pipe.\n");
    f = nullptr;
}
