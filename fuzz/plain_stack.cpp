// SPDX-License-Identifier: MIT
#include "plain_stack.h"

#include <cstdarg>
#include <cstdio>

#include "input/input.h"

// ---- Look-ups ----------------------------------------------------------------------------------

void plain_add(plain_buffer_t* buffer, const column_t& x, const column_t& y, double shift) {
    plain_curve_t curve = {x, y, 0, static_cast<int>(x.size()) - 1};
    for (double& value : curve.y)
        value = value + shift;
    buffer->curves.push_back(curve);
}

// In a curve that does not rise, the points found depend on those found before.
static void search(plain_curve_t* curve, double x) {
    const double* xs = curve->x.data();
    int from = curve->klo, to = curve->khi;
    if (!(x > xs[curve->klo] && xs[curve->khi] > x)) {
        const bool is_left = xs[curve->klo] >= x;
        from = is_left ? 0 : curve->khi - 1;
        to = is_left ? curve->klo + 1 : static_cast<int>(curve->x.size()) - 1;
    }
    while (to - from > 1) {
        const int middle = (from + to) / 2;
        if (xs[middle] > x)
            to = middle;
        else
            from = middle;
    }
    curve->klo = from;
    curve->khi = to;
}

int plain_min_max(plain_buffer_t* buffer, double x, double* lowest, double* highest) {
    *lowest = 1e99;
    *highest = -1e99;
    int count = 0;
    for (plain_curve_t& curve : buffer->curves) {
        if (curve.x.size() < 2 || !(curve.x.front() <= x && curve.x.back() >= x))
            continue;
        search(&curve, x);
        const auto lo = static_cast<std::size_t>(curve.klo);
        const auto hi = static_cast<std::size_t>(curve.khi);
        const double width = curve.x[hi] - curve.x[lo];
        if (width == 0.0)
            throw step_error_t();
        const double slope = (curve.y[hi] - curve.y[lo]) / width;
        const double y = slope * x + (curve.y[hi] - curve.x[hi] * slope);
        if (y > *highest)
            *highest = y;
        if (*lowest > y)
            *lowest = y;
        count++;
    }
    return count;
}

plain_shift_t plain_shift_of(plain_buffer_t* buffer, const column_t& x, const column_t& y,
                             double direction) {
    plain_shift_t result = {0.0, 1e99, -1e99};
    for (const double value : y) {
        result.lowest = result.lowest > value ? value : result.lowest;
        result.highest = value > result.highest ? value : result.highest;
    }
    for (std::size_t i = 0; i < x.size(); i++) {
        double lowest, highest;
        if (plain_min_max(buffer, x[i], &lowest, &highest) == 0)
            continue;
        const double up = highest - y[i];
        const double down = lowest - y[i];
        if (direction > 0 && (result.shift == 0.0 || up > result.shift))
            result.shift = up;
        if (direction < 0 && (result.shift == 0.0 || down < result.shift))
            result.shift = down;
    }
    return result;
}

// ---- The curves of a plot ----------------------------------------------------------------------

struct plain_class_t {
    std::vector<int> kinds;
    double direction;
    double gap;  // as a part of the extent
    bool is_shared;
};

static const plain_class_t Classes[] = {
    {{P_GINT_BGL, P_GINT_RBGL, P_GINT_LBGL, P_GINT_RINT, P_GINT_INT, P_GINT_LINT, P_GINT_TINT},
     1.0,
     0.2,
     true},
    {{P_GINT_DINT}, -1.0, -0.5, false},
    {{P_GINT_SMS, P_GINT_TSMS}, 1.0, 0.5, true},
    {{P_GINT_DSMS}, -1.0, -1.0, false},
};

static bool is_of(const plain_class_t& stage, int kind) {
    for (const int known : stage.kinds) {
        if (known == kind)
            return true;
    }
    return false;
}

static void tell(std::string* text, const char* format, ...) __attribute__((format(printf, 2, 3)));

static void tell(std::string* text, const char* format, ...) {
    char line[1000];
    va_list args;
    va_start(args, format);
    std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    *text += line;
}

static const char* short_name(int l) {
    for (const data_type_t& kind : Type) {
        if (kind.type == PlotColType[l])
            return kind.name_short;
    }
    return "?";
}

static column_t column_of(int k, int l) {
    return column_t(Curve[k][l], Curve[k][l] + Npts[k]);
}

// Places the curves of one class on those that stand already.
static void plain_stage(const plain_class_t& stage, int i, int j, plain_buffer_t* buffer,
                        std::vector<column_t>* shifts, std::string* said) {
    bool has_extent = false;
    double extent = 0.0;
    for (int k = 0; k < Ncurves; k++) {
        const double* shared = nullptr;
        for (int l = 1; l < NcolsToPlot; l++) {
            if (CurvePlotGroup[k] != i || ColPlotGroup[l] != j || !is_of(stage, PlotColType[l]) ||
                Curve[k][l] == nullptr)
                continue;
            double* shift = &(*shifts)[static_cast<std::size_t>(k)][static_cast<std::size_t>(l)];
            if (shared != nullptr) {
                *shift = *shared;
            } else {
                tell(said, "bcs> n=%d Nbuf=%zu\n", Npts[k], buffer->curves.size());
                const plain_shift_t found =
                    plain_shift_of(buffer, column_of(k, 0), column_of(k, l), stage.direction);
                if (!has_extent)
                    extent = found.highest - found.lowest;
                has_extent = true;
                *shift = found.shift + stage.gap * extent;
                shared = stage.is_shared ? shift : nullptr;
            }
            tell(said, "%s (%d-%d)> i=%d, j=%d, k=%d, l=%d (shift=%f)\n", short_name(l),
                 CurveNd[k], CurveNc[k], i, j, k, l, *shift);
            plain_add(buffer, column_of(k, 0), column_of(k, l), *shift);
        }
    }
}

std::vector<column_t> plain_stack(int curve_group, int column_group, std::string* said) {
    std::vector<column_t> shifts;
    for (int k = 0; k < Ncurves; k++)
        shifts.emplace_back(CurveShift[k], CurveShift[k] + NcolsToPlot);
    plain_buffer_t buffer;
    for (const plain_class_t& stage : Classes)
        plain_stage(stage, curve_group, column_group, &buffer, &shifts, said);
    const double factor = ShiftMult == 0.0 ? 1.0 : ShiftMult;
    tell(said, "shiftMult=%f\n", factor);
    for (int k = 0; k < Ncurves; k++) {
        for (int l = 1; l < NcolsToPlot; l++) {
            if (CurvePlotGroup[k] != curve_group || ColPlotGroup[l] != column_group)
                continue;
            double& shift = shifts[static_cast<std::size_t>(k)][static_cast<std::size_t>(l)];
            shift = shift * factor;
            tell(said, "%s (%d-%d) AutoShift=%f\n", short_name(l), CurveNd[k], CurveNc[k], shift);
        }
    }
    return shifts;
}
