// SPDX-License-Identifier: MIT
#include "plot/plot.h"

static bool is_drawn(plot_t plot) {
    if (MultiPlot == 0)
        return plot.g == CurCurvesGroupToPlot && plot.h == CurDataGroupToPlot;
    return MultiPlot > 0;
}

static void draw(plot_t plot, int give_commands) {
    if (AutoShifts && !AutoShiftsReady)
        calc_shifts(plot);
    if (give_commands) {
        Look->settings(plot, plot_ranges(plot));
        write_plot_command(plot);
    }
    write_data_blocks(plot);
}

int data_plot(int give_commands) {
    say("%d Curve groups to plot.\n", CurveGroupsToPlot);
    say("%d Data  groups to plot.\n", ColGroupsToPlot);
    for_each_plot([give_commands](plot_t plot) {
        if (is_drawn(plot))
            draw(plot, give_commands);
    });
    return 0;
}
