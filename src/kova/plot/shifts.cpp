// SPDX-License-Identifier: MIT
//
// Stacking. The curves of the plot are placed one by one, each against all that stand already:
//
//                     /\      /\      .
//     set 2-1    ____/  \____/  \____     touches what is below it at its tightest point,
//                                         then moves on by the gap of its class
//                     /\      /\      .
//     set 1-1    ____/  \____/  \____     the first one moves by the gap too
//
//     delta      ~~~~~~~~~~~~~~~~~~~~     differences go below, with a gap downwards
//
// - The classes are placed in stages, and what an earlier stage placed stays in the way: delta
//   intensities go below the intensities, sM(s) above both, delta sM(s) below everything.
// - The gap is a fixed part of the extent of the first curve of its class.
// - The columns of one data set that belong together (intensities with their backgrounds;
//   experimental with theoretical sM(s)) share the shift of the first of them.
#include "input/input.h"
#include "plot/plot.h"

int AutoShiftsReady = 0;

// A class of kinds that are placed in the same stage.
struct shift_class_t {
    int kinds;         // mask
    double direction;  // of buf_calc_shift
    bool shared;       // the columns of one curve share a shift
    double (*gap)(double extent);
};

static const shift_class_t Classes[] = {
    {P_GINT_BGL | P_GINT_RBGL | P_GINT_LBGL | P_GINT_RINT | P_GINT_INT | P_GINT_LINT | P_GINT_TINT,
     +1.0, true, [](double extent) { return 0.2 * extent; }},
    {P_GINT_DINT, -1.0, false, [](double extent) { return 0.5 * -extent; }},
    {P_GINT_SMS | P_GINT_TSMS, +1.0, true, [](double extent) { return 0.5 * extent; }},
    {P_GINT_DSMS, -1.0, false, [](double extent) { return -extent; }},
};

// What one class has fixed so far: its gap for the whole plot, its shift for the current curve.
struct placement_t {
    bool has_gap;
    double gap;
    bool has_shift;
    double shift;
};

static double place(const shift_class_t& stage, placement_t* placed, int k, int l) {
    if (placed->has_shift)
        return placed->shift;
    double dmin, dmax;
    const double shift_temp =
        buf_calc_shift(Npts[k], Curve[k][0], Curve[k][l], &dmin, &dmax, stage.direction);
    if (!placed->has_gap) {
        placed->gap = stage.gap(dmax - dmin);
        placed->has_gap = true;
    }
    placed->shift = shift_temp + placed->gap;
    placed->has_shift = stage.shared;
    return placed->shift;
}

static void place_curve(const shift_class_t& stage, placement_t* placed, int i, int j, int k) {
    placed->has_shift = false;
    for (int l = 1; l < NcolsToPlot; l++) {
        if (!column_is_in(l, j) || !is_in(PlotColType[l], static_cast<unsigned>(stage.kinds)) ||
            column_points(k, l) == 0)
            continue;
        CurveShift[k][l] = place(stage, placed, k, l);
        say("%s (%d-%d)> i=%d, j=%d, k=%d, l=%d (shift=%f)\n",
            Type[d_idx(PlotColType[l])].name_short, CurveNd[k], CurveNc[k], i, j, k, l,
            CurveShift[k][l]);
        buf_add(Npts[k], Curve[k][0], Curve[k][l], CurveShift[k][l]);
    }
}

static void multiply_shifts(int i, int j) {
    const double shiftMult = ShiftMult != 0.0 ? ShiftMult : 1.0;
    say("shiftMult=%f\n", shiftMult);
    for (int k = 0; k < Ncurves; k++) {
        for (int l = 1; curve_is_in(k, i) && l < NcolsToPlot; l++) {
            if (!column_is_in(l, j))
                continue;
            CurveShift[k][l] = CurveShift[k][l] * shiftMult;
            say("%s (%d-%d) AutoShift=%f\n", Type[d_idx(PlotColType[l])].name_short, CurveNd[k],
                CurveNc[k], CurveShift[k][l]);
        }
    }
}

void calc_shifts(int curve_group, int column_group) {
    buf_initialize();
    for (const shift_class_t& stage : Classes) {
        placement_t placed = {};
        for (int k = 0; k < Ncurves; k++) {
            if (curve_is_in(k, curve_group))
                place_curve(stage, &placed, curve_group, column_group, k);
        }
    }
    multiply_shifts(curve_group, column_group);
    buf_initialize();
    AutoShiftsReady = 1;
}
