// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <initializer_list>

#include "input/input.h"
#include "run/run.h"

int ColErrIdx[MAX_COLS] = {-1};  // column 0, the abscissa, is never asked for its deviations
int ColPlotGroup[MAX_COLS] = {};
int ColGroupsToPlot = 0;
int CurveGroupsToPlot = 0;
int CurCurvesGroupToPlot = 0, CurDataGroupToPlot = 0;

// The first plot column of the kind after the abscissa, 0 if there is none.
static int plot_column(int kind) {
    for (int j = 1; j < NcolsToPlot; j++) {
        if (PlotColType[j] == kind)
            return j;
    }
    return 0;
}

void link_deviations() {
    const int deviations = plot_column(P_GINT_SMSS);
    if (deviations == 0)
        return;
    for (const int kind : {P_GINT_SMS, P_GINT_DSMS}) {
        const int j = plot_column(kind);
        if (j != 0)
            ColErrIdx[j] = deviations;
    }
}

void group_columns() {
    if (DataToCombine != 0) {
        ColGroupsToPlot = 1;  // there even if no column is of a kind to combine
        for (int j = 1; j < NcolsToPlot; j++) {
            if (is_in(PlotColType[j], DataToCombine))
                ColPlotGroup[j] = 1;
        }
    }
    for (int j = 1; j < NcolsToPlot; j++) {
        if (ColPlotGroup[j] == 0)
            ColPlotGroup[j] = ++ColGroupsToPlot;
    }
}

// A combine list puts every set that was read into one group, whether it names the set or not:
// which sets are shown is decided by the read list.
void group_curves() {
    if (NparToCombine != 0)
        CurveGroupsToPlot = 1;
    for (int c = 0; c < Ncurves; c++)
        CurvePlotGroup[c] = NparToCombine != 0 ? 1 : ++CurveGroupsToPlot;
}

void refuse_empty_curves() {
    bool empty = false;
    for (int c = 0; c < Ncurves; c++) {
        if (Npts[c] != 0)
            continue;
        say("No data found in data set # %d\n", c);
        empty = true;
    }
    if (empty)
        std::exit(EXIT_FAILURE);
}
