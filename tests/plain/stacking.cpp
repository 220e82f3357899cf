// SPDX-License-Identifier: MIT
#include "plain/plain.h"

namespace plain {

// ---- The curve buffer --------------------------------------------------------------------------

std::vector<buf_t> buf;

void buf_initialize() {
    buf.clear();
}

void buf_add(int n, const double* data_x, const double* data_y, double shift) {
    buf_t b = {{}, {}, n - 1, 0};
    for (int i = 0; i < n; i++) {
        b.x.push_back(data_x[i]);
        b.y.push_back(data_y[i] + shift);
    }
    buf.push_back(b);
}

// Finds the two points around x, from those of the last look-up. In a curve whose abscissae do not
// rise they depend on them.
static void bracket(buf_t* b, double x) {
    const int n = static_cast<int>(b->x.size());
    if (x > b->x[b->klo] && b->x[b->khi] > x) {
        // still between the same two points
    } else if (b->x[b->klo] >= x) {
        b->khi = b->klo + 1;
        b->klo = 0;
    } else {
        b->klo = b->khi - 1;
        b->khi = n - 1;
    }
    while (b->khi - b->klo > 1) {
        const int k = (b->khi + b->klo) / 2;
        if (b->x[k] > x)
            b->khi = k;
        else
            b->klo = k;
    }
}

int buf_y_min_max(double x, double* ymin, double* ymax) {
    int rc = 0;
    *ymin = 1e99;
    *ymax = -1e99;
    for (buf_t& b : buf) {
        // One point has no interval to interpolate in.
        if (b.x.size() < 2 || !(b.x.front() <= x) || !(b.x.back() >= x))
            continue;
        bracket(&b, x);
        const double h = b.x[b.khi] - b.x[b.klo];
        if (h == 0.0)
            fail(stderr, "linear interpolation: step error.");
        const double slope = (b.y[b.khi] - b.y[b.klo]) / h;
        const double intercept = b.y[b.khi] - b.x[b.khi] * slope;
        const double y = slope * x + intercept;
        if (y > *ymax)
            *ymax = y;
        if (*ymin > y)
            *ymin = y;
        rc++;
    }
    return rc;
}

double buf_calc_shift(int n, const double* data_x, const double* data_y, double* data_min,
                      double* data_max, double direction) {
    std::printf("bcs> n=%d Nbuf=%zu\n", n, buf.size());
    *data_max = -1e99;
    *data_min = 1e99;
    for (int i = 0; i < n; i++) {
        if (data_y[i] > *data_max)
            *data_max = data_y[i];
        if (*data_min > data_y[i])
            *data_min = data_y[i];
    }
    double shift = 0.0;
    for (int i = 0; i < n; i++) {
        double lowest, highest;
        if (buf_y_min_max(data_x[i], &lowest, &highest) == 0)
            continue;
        const double up = highest - data_y[i], down = lowest - data_y[i];
        if (direction > 0 && (shift == 0.0 || up > shift))
            shift = up;
        if (direction < 0 && (shift == 0.0 || down < shift))
            shift = down;
    }
    return shift;
}

// ---- The shifts of a plot ----------------------------------------------------------------------

// The stages, one after another: what is placed in them, above or below all that is there, whether
// the columns of a data set share a shift, and the gap, as a part of the extent of the first
// curve.
static const struct {
    unsigned types;
    double direction;
    bool is_shared;
    double gap;
} Stages[] = {
    {P_GINT_BGL | P_GINT_RBGL | P_GINT_LBGL | P_GINT_RINT | P_GINT_INT | P_GINT_LINT | P_GINT_TINT,
     +1.0, true, 0.2},
    {P_GINT_DINT, -1.0, false, -0.5},
    {P_GINT_SMS | P_GINT_TSMS, +1.0, true, 0.5},
    {P_GINT_DSMS, -1.0, false, -1.0},
};

static void place_stage(int stage, int i, int j) {
    bool has_gap = false;
    double gap = 0.0;
    for (std::size_t k = 0; k < Table.curves.size(); k++) {
        curve_t& curve = Table.curves[k];
        bool has_shared = false;
        double shared = 0.0;
        for (int l = 1; l < Table.NcolsToPlot; l++) {
            const int type = Table.PlotColType[l];
            if (!in_plot(curve, l, i, j) || (type & Stages[stage].types) == 0 ||
                points(curve, l) == 0)
                continue;
            const double* x = curve.columns[0].data();
            const double* y = curve.columns[l].data();
            if (!has_shared) {
                double dmin, dmax;
                const double touch =
                    buf_calc_shift(points(curve, l), x, y, &dmin, &dmax, Stages[stage].direction);
                if (!has_gap)
                    gap = Stages[stage].gap * (dmax - dmin);
                has_gap = true;
                shared = touch + gap;
                has_shared = Stages[stage].is_shared;
            }
            curve.Shift[l] = shared;
            std::printf("%s (%d-%d)> i=%d, j=%d, k=%zu, l=%d (shift=%f)\n",
                        Type[d_idx(type)].name_short, curve.Nd, curve.Nc, i, j, k, l, shared);
            buf_add(points(curve, l), x, y, shared);
        }
    }
}

void calc_shifts(int curve_group, int column_group) {
    buf_initialize();
    for (int stage = 0; stage < 4; stage++)
        place_stage(stage, curve_group, column_group);
    const double mult = Options.ShiftMult != 0.0 ? Options.ShiftMult : 1.0;
    std::printf("shiftMult=%f\n", mult);
    for (curve_t& curve : Table.curves) {
        for (int l = 1; l < Table.NcolsToPlot; l++) {
            if (!in_plot(curve, l, curve_group, column_group))
                continue;
            const int type = Table.PlotColType[l];
            if (type == P_GINT_SMSS && any_deviation())
                curve.Shift[l] = 0.0;
            curve.Shift[l] = curve.Shift[l] * mult;
            std::printf("%s (%d-%d) AutoShift=%f\n", Type[d_idx(type)].name_short, curve.Nd,
                        curve.Nc, curve.Shift[l]);
        }
    }
    buf_initialize();
    Table.AutoShiftsReady = true;
}

}  // namespace plain
