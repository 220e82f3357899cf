// SPDX-License-Identifier: MIT
#include "plot/plot.h"

bool curve_is_in(int c, plot_t plot) {
    return CurvePlotGroup[c] == plot.g;
}

bool column_is_in(int j, plot_t plot) {
    return j >= 1 && ColPlotGroup[j] == plot.h;
}

int column_points(int c, int j) {
    return Curve[c][j] == nullptr ? 0 : Npts[c];
}
