// SPDX-License-Identifier: MIT
//
// The envelope of the curves placed so far.
//
// A plain look-up asks every curve for its value at x. Data sets of one instrument share their
// abscissae, so the same x are asked about again and again while curves are added: for every set
// of abscissae the envelope over it is kept, and each curve is folded into it once. The result is
// the same to the bit, because
// - in a curve whose abscissae rise strictly, the points around x depend on x alone, not on the
//   bracket that the last look-up left behind;
// - curves are folded in the order of adding, with the comparisons of the plain look-up.
// As soon as one curve does not rise strictly, every look-up is a plain one, for all curves.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "plot/plot.h"

buf_t* buf = nullptr;
std::int32_t Nbuf = 0;

namespace {

// The envelope over one set of abscissae.
struct envelope_t {
    int n;
    double* x;
    double* ymin;  // as buf_y_min_max gives them, over the first `folded` curves
    double* ymax;
    std::int32_t* count;  // curves that cover x
    std::int32_t folded;
};

}  // namespace

static envelope_t* Envelopes = nullptr;
static int Nenvelopes = 0;
static bool AllRise;  // every buffered curve's abscissae rise strictly

static void release_envelopes() {
    for (int i = 0; i < Nenvelopes; i++) {
        std::free(Envelopes[i].x);
        std::free(Envelopes[i].ymin);
        std::free(Envelopes[i].ymax);
        std::free(Envelopes[i].count);
    }
    std::free(Envelopes);
    Envelopes = nullptr;
    Nenvelopes = 0;
}

void buf_initialize() {
    release_envelopes();
    AllRise = true;
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
    const std::size_t count = static_cast<std::size_t>(std::max(n, 1));
    void* resized = reallocarray(array, count, sizeof(element_t));
    if (resized == nullptr)
        fail(stderr, "Cannot allocate memory for buffer!\n");
    return static_cast<element_t*>(resized);
}

static bool rises(int n, const double* x) {
    for (int i = 1; i < n; i++) {
        if (!(x[i - 1] < x[i]))
            return false;
    }
    return true;
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
    AllRise = AllRise && rises(n, data_x);
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
        if (xs[k] > x)
            khi = k;
        else
            klo = k;
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

// Widens the extent to the curve's value at x. False if the curve does not cover x.
static bool widen(buf_t* curve, double x, double* ymin, double* ymax) {
    if (!covers(*curve, x))
        return false;
    find_bracket(curve, x);
    const double y = interpolate(*curve, x);
    if (y > *ymax)
        *ymax = y;
    if (*ymin > y)
        *ymin = y;
    return true;
}

int buf_y_min_max(double x, double* ymin, double* ymax) {
    *ymin = 1e99;
    *ymax = -1e99;
    int rc = 0;
    for (std::int32_t i = 0; i < Nbuf; i++)
        rc += widen(&buf[i], x, ymin, ymax);
    return rc;
}

static bool is_over(const envelope_t& envelope, int n, const double* x) {
    return envelope.n == n &&
           std::memcmp(envelope.x, x, sizeof *x * static_cast<std::size_t>(n)) == 0;
}

static envelope_t* new_envelope(int n, const double* x) {
    Envelopes = buffer_array(Envelopes, Nenvelopes + 1);
    envelope_t* added = &Envelopes[Nenvelopes];
    *added = {n, nullptr, nullptr, nullptr, nullptr, 0};
    Nenvelopes++;
    added->x = buffer_array<double>(nullptr, n);
    added->ymin = buffer_array<double>(nullptr, n);
    added->ymax = buffer_array<double>(nullptr, n);
    added->count = buffer_array<std::int32_t>(nullptr, n);
    for (int i = 0; i < n; i++) {
        added->x[i] = x[i];
        added->ymin[i] = 1e99;
        added->ymax[i] = -1e99;
        added->count[i] = 0;
    }
    return added;
}

// The envelope of all buffered curves over these abscissae. Only for curves that all rise.
static const envelope_t* envelope_over(int n, const double* x) {
    envelope_t* envelope = nullptr;
    for (int i = 0; i < Nenvelopes && envelope == nullptr; i++) {
        if (is_over(Envelopes[i], n, x))
            envelope = &Envelopes[i];
    }
    if (envelope == nullptr)
        envelope = new_envelope(n, x);
    for (; envelope->folded < Nbuf; envelope->folded++) {
        for (int i = 0; i < n; i++)
            envelope->count[i] +=
                widen(&buf[envelope->folded], x[i], &envelope->ymin[i], &envelope->ymax[i]);
    }
    return envelope;
}

// buf_y_min_max for point i of the abscissae that the envelope is over; plainly if there is none.
static int look_up(const envelope_t* envelope, int i, double x, double* ymin, double* ymax) {
    if (envelope == nullptr)
        return buf_y_min_max(x, ymin, ymax);
    *ymin = envelope->ymin[i];
    *ymax = envelope->ymax[i];
    return envelope->count[i];
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
    const envelope_t* envelope = AllRise ? envelope_over(n, data_x) : nullptr;
    for (int i = 0; i < n; i++) {
        double dmin, dmax;
        if (look_up(envelope, i, data_x[i], &dmin, &dmax) == 0)
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
