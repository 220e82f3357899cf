// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "plot/plot.h"

buf_t* buf = nullptr;
std::int32_t Nbuf = 0;

void buf_initialize() {
    for (std::int32_t i = 0; i < Nbuf; i++) {
        std::free(buf[i].x);
        std::free(buf[i].y);
    }
    std::free(buf);
    buf = nullptr;
    Nbuf = 0;
}

// The block, resized like resize_block, but with the buffer's own message.
template <class element_t>
static element_t* buffer_array(element_t* array, int n) {
    const std::size_t count = n > 0 ? static_cast<std::size_t>(n) : 1;
    void* resized = reallocarray(array, count, sizeof(element_t));
    if (resized == nullptr)
        fail(stderr, "Cannot allocate memory for buffer!\n");
    return static_cast<element_t*>(resized);
}

void buf_add(int n, const double* data_x, const double* data_y, double shift) {
    buf = buffer_array(buf, Nbuf + 1);
    buf_t* added = &buf[Nbuf++];
    added->n = n;
    added->x = buffer_array<double>(nullptr, n);
    added->y = buffer_array<double>(nullptr, n);
    for (int i = 0; i < n; i++) {
        added->x[i] = data_x[i];
        added->y[i] = data_y[i] + shift;
    }
    added->klo = 0;  // the first look-up bisects the whole curve
    added->khi = n - 1;
}

static bool covers(const buf_t& curve, double x) {
    return curve.n >= 2 && curve.x[0] <= x && curve.x[curve.n - 1] >= x;
}

// Moves klo and khi to the points around x. They start from where the last look-up left them: the
// next abscissa asked for is mostly in the same interval or just to the right of it.
static void find_bracket(buf_t* curve, double x) {
    const double* xs = curve->x;
    std::int32_t klo = curve->klo;
    std::int32_t khi = curve->khi;
    if (!(x > xs[klo] && xs[khi] > x)) {
        if (xs[klo] >= x) {
            khi = klo + 1;
            klo = 0;
        } else {
            klo = khi - 1;
            khi = curve->n - 1;
        }
    }
    while (khi - klo > 1) {
        const std::int32_t k = (khi + klo) >> 1;
        (xs[k] > x ? khi : klo) = k;
    }
    curve->klo = klo;
    curve->khi = khi;
}

static double interpolate(const buf_t& curve, double x) {
    const double* xs = curve.x;
    const double* ys = curve.y;
    const double h = xs[curve.khi] - xs[curve.klo];
    if (h == 0.0)
        fail(stderr, "linear interpolation: step error.");
    const double a = (ys[curve.khi] - ys[curve.klo]) / h;
    const double b = ys[curve.khi] - xs[curve.khi] * a;
    return a * x + b;
}

int buf_y_min_max(double x, double* ymin, double* ymax) {
    *ymin = 1e99;
    *ymax = -1e99;
    int rc = 0;
    for (std::int32_t i = 0; i < Nbuf; i++) {
        if (!covers(buf[i], x))
            continue;
        find_bracket(&buf[i], x);
        const double y = interpolate(buf[i], x);
        if (y > *ymax)
            *ymax = y;
        if (*ymin > y)
            *ymin = y;
        rc++;
    }
    return rc;
}

static void extent(int n, const double* data, double* data_min, double* data_max) {
    double vmin = 1e99;
    double vmax = -1e99;
    for (int i = 0; i < n; i++) {
        if (data[i] > vmax)
            vmax = data[i];
        if (vmin > data[i])
            vmin = data[i];
    }
    *data_min = vmin;
    *data_max = vmax;
}

double buf_calc_shift(int n, const double* data_x, const double* data_y, double* data_min,
                      double* data_max, double direction) {
    say("bcs> n=%d Nbuf=%d\n", n, Nbuf);
    extent(n, data_y, data_min, data_max);
    double shift = 0.0;
    if (Nbuf == 0)
        return shift;
    for (int i = 0; i < n; i++) {
        double dmin, dmax;
        if (buf_y_min_max(data_x[i], &dmin, &dmax) == 0)
            continue;
        // A shift of exactly 0 counts as none found yet, so that the next candidate replaces it.
        if (direction > 0) {
            const double shift_tmp = dmax - data_y[i];
            if (shift == 0.0 || shift_tmp > shift)
                shift = shift_tmp;
        } else if (direction < 0) {
            const double shift_tmp = dmin - data_y[i];
            if (shift == 0.0 || shift_tmp < shift)
                shift = shift_tmp;
        }
    }
    return shift;
}
