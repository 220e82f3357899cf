// SPDX-License-Identifier: MIT
#include "input/input.h"
#include "plot/plot.h"

int CurCurvesGroupToPlot = 0, CurDataGroupToPlot = 0;

bool curve_is_in(int curve, int curve_group) {
    return CurvePlotGroup[curve] == curve_group;
}

bool column_is_in(int column, int column_group) {
    return column >= 1 && ColPlotGroup[column] == column_group;
}

int column_points(int curve, int column) {
    return Curve[curve][column] == nullptr ? 0 : Npts[curve];
}

static bool is_drawn(int curve_group, int column_group) {
    if (MultiPlot == 0)
        return curve_group == CurCurvesGroupToPlot && column_group == CurDataGroupToPlot;
    return MultiPlot > 0;
}

static void draw(int curve_group, int column_group, int give_commands) {
    double xMin, xMax;
    abscissa_extent(curve_group, &xMin, &xMax);
    if (AutoShifts && !AutoShiftsReady)
        calc_shifts(curve_group, column_group);
    if (give_commands) {
        write_settings(curve_group, column_group, xMin, xMax);
        write_plot_command(curve_group, column_group);
    }
    write_data_blocks(curve_group, column_group);
}

int data_plot(int give_commands) {
    say("%d Curve groups to plot.\n", CurveGroupsToPlot);
    say("%d Data  groups to plot.\n", ColGroupsToPlot);
    for (int i = 1; i <= CurveGroupsToPlot; i++) {
        for (int j = 1; j <= ColGroupsToPlot; j++) {
            if (is_drawn(i, j))
                draw(i, j, give_commands);
        }
    }
    return 0;
}
