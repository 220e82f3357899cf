// SPDX-License-Identifier: MIT
//
// Stacking against the reference, over random curves: to the last bit.
#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "input/input.h"
#include "plain/plain.h"
#include "plot/plot.h"
#include "random.h"
#include "state.h"

using Stacking = Fresh;

// ---- Abscissae and ordinates -------------------------------------------------------------------

enum spacing_t { REGULAR, IRREGULAR, UNSORTED, FALLING, EXTREME, REPEATED };

// Rising, but from one end of the numbers to the other, and with both zeros.
static column_t extreme_abscissae(random_t* random, int n) {
    const double inf = std::numeric_limits<double>::infinity();
    column_t x;
    for (const double value : {-inf, -1e300, -1.0, -5e-324, random->below(2) == 0 ? 0.0 : -0.0,
                               5e-324, 0.5, 5.0, 1e300, inf}) {
        if (random->below(3) != 0 && static_cast<int>(x.size()) < n)
            x.push_back(value);
    }
    while (static_cast<int>(x.size()) < n)
        x.push_back(x.empty() ? 1.0 : std::nextafter(x.back(), inf) + 0.5);
    return x;
}

static column_t abscissae(random_t* random, spacing_t spacing, int n) {
    if (spacing == EXTREME)
        return extreme_abscissae(random, n);
    const double step = 0.05 + random->unit();
    column_t x;
    double value = 10.0 * random->unit();
    for (int k = 0; k < n; k++) {
        x.push_back(value);
        if (spacing == REGULAR)
            value += step;
        else if (spacing != REPEATED || random->below(5) != 0)
            value += step * (0.01 + random->unit());
    }
    if (spacing == FALLING)
        std::reverse(x.begin(), x.end());
    for (int swaps = spacing == UNSORTED ? 1 + n / 5 : 0; swaps > 0; swaps--)
        std::swap(x[static_cast<std::size_t>(random->below(n))],
                  x[static_cast<std::size_t>(random->below(n))]);
    return x;
}

using spacings_t = std::vector<spacing_t>;

// The abscissae of an experiment: all curves have the same, or there are a few, or many.
static std::vector<column_t> choices(random_t* random, const spacings_t& spacings) {
    static const int counts[] = {1, 1, 2, 3, 20};
    std::vector<column_t> xs;
    for (int count = counts[random->below(5)]; count > 0; count--) {
        const spacing_t spacing =
            spacings[static_cast<std::size_t>(random->below(static_cast<int>(spacings.size())))];
        xs.push_back(abscissae(random, spacing, 1 + random->below(random->below(9) ? 30 : 200)));
    }
    return xs;
}

static const column_t& choose(random_t* random, const std::vector<column_t>& xs) {
    return xs[static_cast<std::size_t>(random->below(static_cast<int>(xs.size())))];
}

// Smooth-looking or wild, now and then of few values, so that equal ones and zeros occur.
static column_t ordinates(random_t* random, int n) {
    const int manner = random->below(4);
    const double height = manner == 0 ? 1e6 * random->unit() : 3.0;
    column_t y;
    double value = 0.0;
    for (int k = 0; k < n; k++) {
        value += random->unit() - 0.5;
        if (manner == 1)
            y.push_back(random->below(3) - 1);
        else if (manner == 2)
            y.push_back(height * random->unit());
        else
            y.push_back(height * value);
    }
    return y;
}

static column_t hostile_ordinates(random_t* random, int n) {
    using limits = std::numeric_limits<double>;
    static const double values[10] = {0.0,
                                      -0.0,
                                      1.0,
                                      -1.0,
                                      1e300,
                                      -1e300,
                                      limits::denorm_min(),
                                      limits::infinity(),
                                      -limits::infinity(),
                                      limits::quiet_NaN()};
    column_t y;
    for (int k = 0; k < n; k++)
        y.push_back(values[random->below(random->below(3) == 0 ? 10 : 4)]);
    return y;
}

// ---- The buffer --------------------------------------------------------------------------------

// Both buffers, empty.
static void empty_buffers() {
    buf_initialize();
    plain::buf_initialize();
}

static void add_to_both(const column_t& x, const column_t& y, double shift) {
    const int n = static_cast<int>(x.size());
    buf_add(n, x.data(), y.data(), shift);
    plain::buf_add(n, x.data(), y.data(), shift);
}

static void expect_same_envelope(double x) {
    double lowest, highest, plain_lowest, plain_highest;
    ASSERT_EQ(buf_y_min_max(x, &lowest, &highest),
              plain::buf_y_min_max(x, &plain_lowest, &plain_highest))
        << "at " << x;
    ASSERT_EQ(bits(lowest), bits(plain_lowest)) << "at " << x;
    ASSERT_EQ(bits(highest), bits(plain_highest)) << "at " << x;
}

static void expect_same_shift(const column_t& x, const column_t& y, double direction) {
    double got[3] = {}, expected[3] = {};
    const auto shift_by = [&](auto calculate, double(&r)[3]) {
        return said([&] {
            r[0] =
                calculate(static_cast<int>(x.size()), x.data(), y.data(), &r[1], &r[2], direction);
        });
    };
    ASSERT_EQ(shift_by(buf_calc_shift, got), shift_by(plain::buf_calc_shift, expected));
    for (int i = 0; i < 3; i++)
        ASSERT_EQ(bits(got[i]), bits(expected[i])) << i;
}

// Adds some curves and after each of them looks up points, its own among them, and shifts.
static void compare_buffers(unsigned seed, const spacings_t& spacings, bool hostile) {
    SCOPED_TRACE(seed);
    random_t random(seed);
    empty_buffers();
    const std::vector<column_t> xs = choices(&random, spacings);
    for (int curve = 0; curve < 8; curve++) {
        const column_t& x = choose(&random, xs);
        const int n = static_cast<int>(x.size());
        const column_t y = hostile ? hostile_ordinates(&random, n) : ordinates(&random, n);
        expect_same_shift(x, y, random.below(2) == 0 ? +1.0 : -1.0);
        add_to_both(x, y, hostile ? -0.0 : 5.0 * random.unit());  // -0.0 keeps both zeros
        for (int i = 0; i < 40; i++) {
            const double own = x[static_cast<std::size_t>(random.below(n))];
            expect_same_envelope(random.below(2) == 0 ? own : 15.0 * random.unit());
        }
        if (testing::Test::HasFatalFailure())
            return;
    }
}

static void compare_many(unsigned seed, const spacings_t& spacings) {
    for (unsigned i = 0; i < 150; i++) {
        compare_buffers(seed + i, spacings, i % 3 == 0);
        if (testing::Test::HasFatalFailure())
            return;
    }
}

TEST_F(Stacking, rising_abscissae_have_the_plain_envelope) {
    compare_many(1000, {REGULAR});
    compare_many(2000, {IRREGULAR});
    compare_many(3000, {EXTREME});
}

TEST_F(Stacking, falling_abscissae_have_the_plain_envelope) {
    compare_many(4000, {FALLING});
}

TEST_F(Stacking, unsorted_abscissae_follow_the_plain_search) {
    compare_many(5000, {UNSORTED});
}

TEST_F(Stacking, rising_and_unsorted_abscissae_may_be_mixed) {
    compare_many(6000, {REGULAR, IRREGULAR, UNSORTED, FALLING, EXTREME});
    compare_many(7000, {REGULAR, REGULAR, REGULAR, UNSORTED});
}

// True if the reference ends the run at this look-up, which is not made then.
static bool meets_step(double x) {
    const std::vector<plain::buf_t> before = plain::buf;
    bool is_step = false;
    double lowest, highest;
    try {
        plain::buf_y_min_max(x, &lowest, &highest);
    } catch (const plain::run_ended_t&) {
        is_step = true;
    }
    plain::buf = before;
    return is_step;
}

// Where the reference meets a step the run ends, and nowhere else.
TEST_F(Stacking, repeated_abscissae_end_where_the_reference_ends) {
    int steps = 0;
    for (unsigned seed = 8000; seed < 8060; seed++) {
        SCOPED_TRACE(seed);
        random_t random(seed);
        empty_buffers();
        for (int curve = 0; curve < 3; curve++) {
            const int n = 2 + random.below(10);
            const column_t x = abscissae(&random, REPEATED, n);
            add_to_both(x, ordinates(&random, n), 0.0);
        }
        for (int i = 0; i < 60; i++) {
            const buf_t& curve = buf[random.below(Nbuf)];
            const double x =
                random.below(2) == 0 ? curve.x[random.below(curve.n)] : 15.0 * random.unit();
            if (!meets_step(x)) {
                expect_same_envelope(x);
                continue;
            }
            steps++;
            double lowest, highest;
            EXPECT_TRUE(ended_with(in_child([&] { buf_y_min_max(x, &lowest, &highest); }), 1, "",
                                   "linear interpolation: step error."));
            break;
        }
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_GT(steps, 5);  // both ways have been seen
    EXPECT_LT(steps, 55);
}

// ---- The whole phase ---------------------------------------------------------------------------

static const int DRAWN_KINDS[15] = {P_GINT_INT,  P_GINT_BGL,  P_GINT_SMS,  P_GINT_TSMS,
                                    P_GINT_DSMS, P_GINT_RINT, P_GINT_SEC,  P_GINT_IAT,
                                    P_GINT_RBGL, P_GINT_SMSS, P_GINT_INTS, P_GINT_LINT,
                                    P_GINT_LBGL, P_GINT_TINT, P_GINT_DINT};

static void make_store(random_t* random, const spacings_t& spacings, int sets) {
    std::vector<int> kinds = {P_GINT_S};
    for (int columns = 1 + random->below(6); columns > 0; columns--)
        kinds.push_back(DRAWN_KINDS[random->below(15)]);
    set_plot_columns(kinds);
    const std::vector<column_t> xs = choices(random, spacings);
    for (int c = 0; c < sets; c++) {
        std::vector<column_t> columns = {choose(random, xs)};
        const int n = static_cast<int>(columns[0].size());
        for (std::size_t j = 1; j < kinds.size(); j++)
            columns.push_back(random->below(20) == 0 ? column_t() : ordinates(random, n));
        add_set(c + 1, 1 + random->below(2), columns);
        CurvePlotGroup[c] = 1 + (random->below(6) == 0);
    }
    for (std::size_t j = 1; j < kinds.size(); j++)
        ColPlotGroup[j] = 1 + (random->below(6) == 0);
    ShiftMult = random->below(3) == 0 ? random->unit() * 2 : 0.0;
    smsErrBars = random->below(2);
}

static void compare_phases(unsigned seed, const spacings_t& spacings, int sets) {
    SCOPED_TRACE(seed);
    reset_state();
    random_t random(seed);
    make_store(&random, spacings, sets);
    share_curves();
    plain::Options.ShiftMult = ShiftMult;
    plain::Options.smsErrBars = smsErrBars;
    std::string error;
    const std::string trace = said([&] {
        try {
            plain::calc_shifts(1, 1);
        } catch (const plain::run_ended_t& ended) {
            error = ended.message;
        }
    });
    if (error != "") {
        ASSERT_TRUE(ended_with(in_child([] { calc_shifts({1, 1}); }), 1, trace, error));
        return;
    }
    ASSERT_EQ(said([] { calc_shifts({1, 1}); }), trace);
    for (int k = 0; k < Ncurves; k++) {
        const plain::curve_t& expected = plain::Table.curves[static_cast<std::size_t>(k)];
        for (int l = 0; l < NcolsToPlot; l++)
            ASSERT_EQ(bits(CurveShift[k][l]), bits(expected.Shift[l])) << k << ", " << l;
    }
    ASSERT_EQ(Nbuf, 0);
}

static void compare_many_phases(unsigned seed, const spacings_t& spacings) {
    for (unsigned i = 0; i < 120; i++) {
        compare_phases(seed + i, spacings, static_cast<int>(i % 12));
        if (testing::Test::HasFatalFailure())
            return;
    }
}

TEST_F(Stacking, phases_over_rising_abscissae_are_as_the_plain_one) {
    compare_many_phases(10000, {REGULAR});
    compare_many_phases(20000, {IRREGULAR, EXTREME});
}

TEST_F(Stacking, phases_over_unsorted_abscissae_are_as_the_plain_one) {
    compare_many_phases(30000, {UNSORTED});
    compare_many_phases(40000, {FALLING});
}

TEST_F(Stacking, phases_over_mixed_abscissae_are_as_the_plain_one) {
    compare_many_phases(50000, {REGULAR, IRREGULAR, UNSORTED, FALLING, EXTREME});
}

// Some of these end with a step, and the others must not.
TEST_F(Stacking, phases_over_repeated_abscissae_end_where_the_plain_one_ends) {
    compare_many_phases(60000, {REPEATED});
    compare_many_phases(70000, {REGULAR, REPEATED});
    compare_many_phases(80000, {UNSORTED, REPEATED});
}

TEST_F(Stacking, a_phase_of_many_sets_is_as_the_plain_one) {
    compare_phases(90000, {REGULAR}, 100);
    compare_phases(90001, {IRREGULAR}, 100);
    compare_phases(90002, {IRREGULAR, UNSORTED}, 100);
}
