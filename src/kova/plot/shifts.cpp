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
#include "plot/plot.h"

int AutoShiftsReady = 0;

namespace {

// A class of kinds that are placed in the same stage.
struct shift_class_t {
    int kinds;         // mask
    double direction;  // of buf_calc_shift
    bool shared;       // the columns of one curve share a shift
    double (*gap)(double extent);
};

// What one class has fixed so far: its gap for the whole plot, its shift for the current curve.
struct placement_t {
    bool has_gap;
    double gap;
    int curve;
    bool has_shift;
    double shift;
};

}  // namespace

static const shift_class_t Classes[] = {
    {P_GINT_BGL | P_GINT_RBGL | P_GINT_LBGL | P_GINT_RINT | P_GINT_INT | P_GINT_LINT | P_GINT_TINT,
     +1.0, true, [](double extent) { return 0.2 * extent; }},
    {P_GINT_DINT, -1.0, false, [](double extent) { return 0.5 * -extent; }},
    {P_GINT_SMS | P_GINT_TSMS, +1.0, true, [](double extent) { return 0.5 * extent; }},
    {P_GINT_DSMS, -1.0, false, [](double extent) { return -extent; }},
};

static double place(const shift_class_t& stage, placement_t* placed, int c, int j) {
    if (placed->has_shift && placed->curve == c)
        return placed->shift;
    double dmin, dmax;
    const double shift_temp =
        buf_calc_shift(Npts[c], Curve[c][0], Curve[c][j], &dmin, &dmax, stage.direction);
    if (!placed->has_gap) {
        placed->gap = stage.gap(dmax - dmin);
        placed->has_gap = true;
    }
    placed->curve = c;
    placed->has_shift = stage.shared;
    placed->shift = shift_temp + placed->gap;
    return placed->shift;
}

static void place_class(const shift_class_t& stage, plot_t plot) {
    placement_t placed = {};
    for_each_column(plot, [&](int c, int j) {
        if (!is_in(PlotColType[j], static_cast<unsigned>(stage.kinds)) || column_points(c, j) == 0)
            return;
        CurveShift[c][j] = place(stage, &placed, c, j);
        say("%s (%d-%d)> i=%d, j=%d, k=%d, l=%d (shift=%f)\n",
            Type[d_idx(PlotColType[j])].name_short, CurveNd[c], CurveNc[c], plot.g, plot.h, c, j,
            CurveShift[c][j]);
        buf_add(Npts[c], Curve[c][0], Curve[c][j], CurveShift[c][j]);
    });
}

// Deviations that are shown with their curves have no place of their own.
static void reset_deviations(plot_t plot) {
    for_each_column(plot, [](int c, int j) {
        if (PlotColType[j] == P_GINT_SMSS && deviations_shown())
            CurveShift[c][j] = 0.0;
    });
}

static void multiply_shifts(plot_t plot) {
    const double shiftMult = ShiftMult != 0.0 ? ShiftMult : 1.0;
    say("shiftMult=%f\n", shiftMult);
    for_each_column(plot, [shiftMult](int c, int j) {
        CurveShift[c][j] = CurveShift[c][j] * shiftMult;
        say("%s (%d-%d) AutoShift=%f\n", Type[d_idx(PlotColType[j])].name_short, CurveNd[c],
            CurveNc[c], CurveShift[c][j]);
    });
}

void calc_shifts(plot_t plot) {
    buf_initialize();
    for (const shift_class_t& stage : Classes)
        place_class(stage, plot);
    reset_deviations(plot);
    multiply_shifts(plot);
    buf_initialize();
    AutoShiftsReady = 1;
}
