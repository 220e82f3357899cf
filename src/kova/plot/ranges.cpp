// SPDX-License-Identifier: MIT
#include "plot/plot.h"

double YrangeMin = 0.0, YrangeMax = 0.0;

// Each range leaves this part of the data's extent free at both ends.
static constexpr double MARGIN = 0.05;

static void abscissa_extent(plot_t plot, double* xMin, double* xMax) {
    *xMin = 1e99;
    *xMax = -1e99;
    for (int c = 0; c < Ncurves; c++) {
        if (!curve_is_in(c, plot))
            continue;
        const double first = Curve[c][0][0];
        const double last = Curve[c][0][Npts[c] - 1];
        if (first < *xMin)
            *xMin = first;
        if (last > *xMax)
            *xMax = last;
    }
}

static void ordinate_extent(plot_t plot, double* ymin, double* ymax) {
    *ymin = 1e99;
    *ymax = -1e99;
    for_each_column(plot, [=](int c, int j) {
        for (int k = 0; k < column_points(c, j); k++) {
            const double y = Curve[c][j][k] + CurveShift[c][j];
            if (y > *ymax)
                *ymax = y;
            if (y < *ymin)
                *ymin = y;
        }
    });
}

ranges_t plot_ranges(plot_t plot) {
    double xMin, xMax, ymin, ymax;
    abscissa_extent(plot, &xMin, &xMax);
    ordinate_extent(plot, &ymin, &ymax);
    YrangeMin = ymin - MARGIN * (ymax - ymin);
    YrangeMax = ymax + MARGIN * (ymax - ymin);
    return {Gxmin > GX_NOT_GIVEN ? Gxmin : xMin - MARGIN * (xMax - xMin),
            Gxmax > GX_NOT_GIVEN ? Gxmax : xMax + MARGIN * (xMax - xMin), YrangeMin, YrangeMax};
}
