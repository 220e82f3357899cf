// SPDX-License-Identifier: MIT
#include "plot/plot.h"

static bool is_drawn(plot_t plot) {
    if (MultiPlot == 0)
        return plot.g == CurCurvesGroupToPlot && plot.h == CurDataGroupToPlot;
    return MultiPlot > 0;
}

static void draw(plot_t plot, int give_commands) {
    double xMin, xMax;
    abscissa_extent(plot, &xMin, &xMax);
    if (AutoShifts && !AutoShiftsReady)
        calc_shifts(plot);
    if (give_commands) {
        write_settings(plot, plot_ranges(plot, xMin, xMax));
        write_plot_command(plot);
    }
    write_data_blocks(plot);
}

int data_plot(int give_commands) {
    say("%d Curve groups to plot.\n", CurveGroupsToPlot);
    say("%d Data  groups to plot.\n", ColGroupsToPlot);
    for (int g = 1; g <= CurveGroupsToPlot; g++) {
        for (int h = 1; h <= ColGroupsToPlot; h++) {
            if (is_drawn({g, h}))
                draw({g, h}, give_commands);
        }
    }
    return 0;
}
