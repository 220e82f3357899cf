// SPDX-License-Identifier: MIT
#include "naive.h"

#include <cstdarg>
#include <cstdio>

#include "input/input.h"
#include "plot/plot.h"
#include "run/run.h"

using column_t = std::vector<double>;

// ---- Envelope ----------------------------------------------------------------------------------

static bool rises_strictly(const column_t& x) {
    for (std::size_t k = 1; k < x.size(); k++) {
        if (!(x[k - 1] < x[k]))
            return false;
    }
    return true;
}

void naive_buffer_t::add(const column_t& x, const column_t& y, double shift) {
    naive_curve_t curve = {x, y, rises_strictly(x), 0, x.empty() ? 0 : x.size() - 1};
    for (double& value : curve.y)
        value = value + shift;
    curves.push_back(curve);
}

// The first point of the interval that x falls into: the last point that is not right of x, or the
// last point but one.
static std::size_t interval_of(const column_t& xs, double x) {
    std::size_t k = 0;
    while (k + 2 < xs.size() && xs[k + 1] <= x)
        k++;
    return k;
}

static std::size_t searched_interval_of(naive_curve_t* curve, double x) {
    const column_t& xs = curve->x;
    const std::size_t klo = curve->klo, khi = curve->khi;
    if (x > xs[klo] && xs[khi] > x) {
        // keep both
    } else if (xs[klo] >= x) {
        curve->klo = 0;
        curve->khi = klo + 1;
    } else {
        curve->klo = khi - 1;
        curve->khi = xs.size() - 1;
    }
    while (curve->khi - curve->klo > 1) {
        const std::size_t k = (curve->khi + curve->klo) / 2;
        if (xs[k] > x)
            curve->khi = k;
        else
            curve->klo = k;
    }
    return curve->klo;
}

static double value_between(const naive_curve_t& curve, std::size_t k, double x) {
    const double h = curve.x[k + 1] - curve.x[k];
    if (h == 0.0)
        throw step_error_t();
    const double slope = (curve.y[k + 1] - curve.y[k]) / h;
    const double intercept = curve.y[k + 1] - curve.x[k + 1] * slope;
    return slope * x + intercept;
}

envelope_t naive_buffer_t::at(double x) {
    envelope_t envelope = {0, 1e99, -1e99};
    for (naive_curve_t& curve : curves) {
        if (curve.x.size() < 2 || !(curve.x.front() <= x) || !(curve.x.back() >= x))
            continue;
        const std::size_t k =
            curve.rises ? interval_of(curve.x, x) : searched_interval_of(&curve, x);
        const double y = value_between(curve, k, x);
        if (y > envelope.highest)
            envelope.highest = y;
        if (y < envelope.lowest)
            envelope.lowest = y;
        envelope.count++;
    }
    return envelope;
}

// ---- One shift ---------------------------------------------------------------------------------

naive_shift_t naive_buffer_t::shift_of(const column_t& x, const column_t& y, double direction) {
    naive_shift_t result = {0.0, 1e99, -1e99};
    for (const double value : y) {
        if (value < result.lowest)
            result.lowest = value;
        if (value > result.highest)
            result.highest = value;
    }
    if (curves.empty())
        return result;
    for (std::size_t i = 0; i < x.size(); i++) {
        const envelope_t envelope = at(x[i]);
        if (envelope.count == 0 || direction == 0)
            continue;
        const double up = envelope.highest - y[i];
        const double down = envelope.lowest - y[i];
        if (direction > 0 && (result.shift == 0.0 || up > result.shift))
            result.shift = up;
        if (direction < 0 && (result.shift == 0.0 || down < result.shift))
            result.shift = down;
    }
    return result;
}

// ---- The shift phase ---------------------------------------------------------------------------

static void tell(std::string* trace, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

static void tell(std::string* trace, const char* format, ...) {
    char line[1000];
    va_list args;
    va_start(args, format);
    std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    *trace += line;
}

// The stage in which a kind is placed, -1 for none.
static int stage_of(int kind) {
    switch (kind) {
        case P_GINT_BGL:
        case P_GINT_RBGL:
        case P_GINT_LBGL:
        case P_GINT_RINT:
        case P_GINT_INT:
        case P_GINT_LINT:
        case P_GINT_TINT:
            return 0;
        case P_GINT_DINT:
            return 1;
        case P_GINT_SMS:
        case P_GINT_TSMS:
            return 2;
        case P_GINT_DSMS:
            return 3;
        default:
            return -1;
    }
}

static double gap_of(int stage, double dmin, double dmax) {
    switch (stage) {
        case 0:
            return 0.2 * (dmax - dmin);
        case 1:
            return 0.5 * -(dmax - dmin);
        case 2:
            return 0.5 * (dmax - dmin);
        default:
            return -(dmax - dmin);
    }
}

static column_t values_of(int k, int l) {
    const double* column = Curve[k][l];
    return column == nullptr ? column_t() : column_t(column, column + Npts[k]);
}

static const char* short_name(int l) {
    for (const data_type_t& kind : Type) {
        if (kind.type == PlotColType[l])
            return kind.name_short;
    }
    return "?";
}

static double& shift_in(naive_stack_t* stack, int k, int l) {
    return stack->shift[static_cast<std::size_t>(k)][static_cast<std::size_t>(l)];
}

static bool is_in_plot(int k, int l, int i, int j) {
    return CurvePlotGroup[k] == i && ColPlotGroup[l] == j;
}

static void place_all(naive_stack_t* stack, int i, int j) {
    naive_buffer_t placed;
    for (int stage = 0; stage < 4; stage++) {
        bool has_gap = false;
        double gap = 0.0;
        for (int k = 0; k < Ncurves; k++) {
            bool has_shared = false;
            double shared = 0.0;
            for (int l = 1; l < NcolsToPlot; l++) {
                if (!is_in_plot(k, l, i, j) || stage_of(PlotColType[l]) != stage ||
                    Curve[k][l] == nullptr)
                    continue;
                const column_t x = values_of(k, 0), y = values_of(k, l);
                if (!has_shared) {
                    tell(&stack->trace, "bcs> n=%zu Nbuf=%zu\n", x.size(), placed.size());
                    const bool up = stage == 0 || stage == 2;
                    const naive_shift_t found = placed.shift_of(x, y, up ? +1.0 : -1.0);
                    if (!has_gap)
                        gap = gap_of(stage, found.lowest, found.highest);
                    has_gap = true;
                    shared = found.shift + gap;
                    has_shared = up;
                }
                shift_in(stack, k, l) = shared;
                tell(&stack->trace, "%s (%d-%d)> i=%d, j=%d, k=%d, l=%d (shift=%f)\n",
                     short_name(l), CurveNd[k], CurveNc[k], i, j, k, l, shared);
                placed.add(x, y, shared);
            }
        }
    }
}

static void multiply_all(naive_stack_t* stack, int i, int j) {
    const double factor = ShiftMult == 0.0 ? 1.0 : ShiftMult;
    tell(&stack->trace, "shiftMult=%f\n", factor);
    for (int k = 0; k < Ncurves; k++) {
        for (int l = 1; l < NcolsToPlot; l++) {
            if (!is_in_plot(k, l, i, j))
                continue;
            double& shift = shift_in(stack, k, l);
            if (PlotColType[l] == P_GINT_SMSS && deviations_shown())
                shift = 0.0;
            shift = shift * factor;
            tell(&stack->trace, "%s (%d-%d) AutoShift=%f\n", short_name(l), CurveNd[k], CurveNc[k],
                 shift);
        }
    }
}

naive_stack_t naive_stack(int curve_group, int column_group) {
    naive_stack_t stack = {{}, "", false};
    for (int k = 0; k < Ncurves; k++)
        stack.shift.emplace_back(CurveShift[k], CurveShift[k] + NcolsToPlot);
    try {
        place_all(&stack, curve_group, column_group);
    } catch (const step_error_t&) {
        stack.is_step = true;
        return stack;
    }
    multiply_all(&stack, curve_group, column_group);
    return stack;
}
