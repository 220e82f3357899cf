// SPDX-License-Identifier: MIT
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "plot/plot.h"
#include "state.h"

using CurveBuffer = Fresh;

static void add(const column_t& x, const column_t& y, double shift = 0.0) {
    buf_add(static_cast<int>(x.size()), x.data(), y.data(), shift);
}

struct look_up_t {
    int count;
    double lowest, highest;
    bool operator==(const look_up_t&) const = default;
};

static std::ostream& operator<<(std::ostream& out, const look_up_t& found) {
    return out << found.count << " from " << found.lowest << " to " << found.highest;
}

static look_up_t at(double x) {
    look_up_t found = {-1, 0.0, 0.0};
    found.count = buf_y_min_max(x, &found.lowest, &found.highest);
    return found;
}

static const look_up_t NOTHING = {0, 1e99, -1e99};

static look_up_t one(double y) {
    return {1, y, y};
}

struct shift_t {
    double shift, lowest, highest;
    std::string message;
};

static shift_t shift_of(const column_t& x, const column_t& y, double direction) {
    shift_t found = {};
    found.message = said([&] {
        found.shift = buf_calc_shift(static_cast<int>(x.size()), x.data(), y.data(), &found.lowest,
                                     &found.highest, direction);
    });
    return found;
}

// ---- Adding and emptying -----------------------------------------------------------------------

TEST_F(CurveBuffer, holds_copies_with_the_shift_added) {
    column_t x = {1, 2, 4}, y = {10, 20, 30};
    add(x, y, 0.5);
    add({5, 6}, {7, 8}, -7);
    x[0] = y[0] = 99;
    ASSERT_EQ(Nbuf, 2);
    EXPECT_EQ(buf[0].n, 3);
    EXPECT_EQ(column_t(buf[0].x, buf[0].x + 3), (column_t{1, 2, 4}));
    EXPECT_EQ(column_t(buf[0].y, buf[0].y + 3), (column_t{10.5, 20.5, 30.5}));
    EXPECT_EQ(buf[0].klo, 0);
    EXPECT_EQ(buf[0].khi, 2);
    EXPECT_EQ(buf[1].n, 2);
    EXPECT_EQ(column_t(buf[1].y, buf[1].y + 2), (column_t{0, 1}));
    EXPECT_EQ(buf[1].khi, 1);
}

TEST_F(CurveBuffer, initialize_empties_it_and_may_be_called_again) {
    buf_initialize();
    buf_initialize();
    add({1, 2}, {3, 4});
    buf_initialize();
    EXPECT_EQ(buf, nullptr);
    EXPECT_EQ(Nbuf, 0);
    EXPECT_EQ(at(1.5), NOTHING);
    buf_initialize();
    add({1, 2}, {3, 5});
    EXPECT_EQ(at(1.5), one(4));
}

TEST_F(CurveBuffer, a_curve_without_points_covers_nothing) {
    add({}, {});
    EXPECT_EQ(Nbuf, 1);
    EXPECT_EQ(at(0.0), NOTHING);
}

TEST_F(CurveBuffer, takes_many_curves) {
    for (int i = 0; i < 300; i++)
        add({0, 1}, {0, 1}, i);
    EXPECT_EQ(Nbuf, 300);
    EXPECT_EQ(at(0.5), (look_up_t{300, 0.5, 299.5}));
}

TEST_F(CurveBuffer, without_memory_ends_the_run) {
    EXPECT_TRUE(ended_with(in_child([] {
                               limit_memory();
                               const double point = 0.0;
                               buf_add(1 << 30, &point, &point, 0.0);
                           }),
                           1, "", "Cannot allocate memory for buffer!\n"));
}

// ---- Looking up --------------------------------------------------------------------------------

TEST_F(CurveBuffer, an_empty_one_covers_nothing) {
    EXPECT_EQ(at(0.0), NOTHING);
}

TEST_F(CurveBuffer, both_ends_of_a_curve_are_covered) {
    add({1, 2, 4}, {10, 20, 40});
    EXPECT_EQ(at(1.0), one(10));
    EXPECT_EQ(at(4.0), one(40));
    EXPECT_EQ(at(std::nextafter(1.0, 0.0)), NOTHING);
    EXPECT_EQ(at(std::nextafter(4.0, 5.0)), NOTHING);
}

TEST_F(CurveBuffer, nothing_covers_nan) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    add({1, 2}, {3, 4});
    EXPECT_EQ(at(nan), NOTHING);
    buf_initialize();
    add({nan, 2}, {3, 4});
    add({1, nan}, {3, 4});
    EXPECT_EQ(at(1.5), NOTHING);
}

TEST_F(CurveBuffer, descending_curves_cover_nothing) {
    add({4, 2, 1}, {1, 2, 3});
    EXPECT_EQ(at(1.0), NOTHING);
    EXPECT_EQ(at(2.0), NOTHING);
    EXPECT_EQ(at(4.0), NOTHING);
    add({1, 4}, {7, 7});
    EXPECT_EQ(at(2.0), one(7));
}

TEST_F(CurveBuffer, values_between_points_are_interpolated) {
    add({0, 2, 6}, {10, 20, 60});
    EXPECT_EQ(at(0.5), one(12.5));
    EXPECT_EQ(at(5.0), one(50));
}

TEST_F(CurveBuffer, points_have_their_own_value_in_the_interval_that_starts_there) {
    add({1, 2, 3, 4}, {1, 5, 2, 9});
    for (const double x : {1.0, 2.0, 3.0, 4.0, 3.0, 2.0, 1.0, 4.0, 1.0})
        EXPECT_EQ(at(x), one(x == 1 ? 1 : x == 2 ? 5 : x == 3 ? 2 : 9)) << x;
    at(2.0);
    EXPECT_EQ(buf[0].klo, 1);
    EXPECT_EQ(buf[0].khi, 2);
    at(4.0);
    EXPECT_EQ(buf[0].klo, 2);
    EXPECT_EQ(buf[0].khi, 3);
}

// The slope first, the intercept from the upper point, in this order to the last bit.
TEST_F(CurveBuffer, interpolation_is_exact_in_its_order_of_operations) {
    const double x1 = 0.1, x2 = 0.7, y1 = 1.3, y2 = -2.9, x = 0.33;
    add({x1, x2}, {y1, y2});
    const double a = (y2 - y1) / (x2 - x1);
    const double b = y2 - x2 * a;
    EXPECT_EQ(bits(at(x).lowest), bits(a * x + b));
    EXPECT_NE(bits(a * x + b), bits(y1 + (x - x1) * a));  // else this would show nothing
}

TEST_F(CurveBuffer, two_curves_make_an_envelope) {
    add({0, 4}, {10, 10});
    add({2, 6}, {-3, -3});
    EXPECT_EQ(at(1.0), one(10));
    EXPECT_EQ(at(3.0), (look_up_t{2, -3, 10}));
    EXPECT_EQ(at(5.0), one(-3));
    EXPECT_EQ(at(2.0), (look_up_t{2, -3, 10}));
}

// A later value replaces an equal one neither at the top nor at the bottom, not even the other
// zero.
TEST_F(CurveBuffer, of_equal_values_the_first_one_stays) {
    for (const double first : {0.0, -0.0}) {
        buf_initialize();
        add({-1, 1}, {first, first}, -0.0);  // which changes neither zero
        add({-1, 1}, {-first, -first}, -0.0);
        const look_up_t found = at(-0.5);
        EXPECT_EQ(found.count, 2);
        EXPECT_EQ(bits(found.lowest), bits(first));
        EXPECT_EQ(bits(found.highest), bits(first));
        EXPECT_EQ(bits(shift_of({-0.5}, {0.0}, +1.0).shift), bits(first));
        EXPECT_EQ(bits(shift_of({-0.5}, {0.0}, -1.0).shift), bits(first));
    }
}

TEST_F(CurveBuffer, the_bracket_follows_and_never_changes_a_result) {
    column_t x, y;
    for (int k = 0; k < 50; k++) {
        x.push_back(k * k);
        y.push_back(k % 7);
    }
    add(x, y);
    unsigned random = 1;
    for (int i = 0; i < 2000; i++) {
        random = random * 1664525U + 1013904223U;
        const double wanted = (random >> 16) % 4900 * 0.5;
        const look_up_t found = at(wanted);
        if (found.count == 0)
            continue;
        ASSERT_EQ(buf[0].khi - buf[0].klo, 1);
        const auto k = static_cast<std::size_t>(buf[0].klo);
        ASSERT_LE(x[k], wanted);
        ASSERT_GE(x[k + 1], wanted);
        buf[0].klo = 0;  // as if it were the first look-up
        buf[0].khi = buf[0].n - 1;
        ASSERT_EQ(at(wanted), found);
    }
}

TEST_F(CurveBuffer, a_curve_of_one_point_covers_nothing_and_harms_nobody) {
    add({1}, {5});
    EXPECT_EQ(Nbuf, 1);
    EXPECT_EQ(at(1.0), NOTHING);
    add({0, 2}, {3, 3});
    EXPECT_EQ(at(1.0), one(3));
}

TEST_F(CurveBuffer, equal_abscissae_end_the_run_only_if_a_look_up_falls_there) {
    add({1, 2, 2, 3}, {0, 1, 5, 6});
    EXPECT_EQ(at(1.5), one(0.5));
    EXPECT_EQ(at(2.5), one(5.5));
    add({7, 7}, {1, 2});
    EXPECT_TRUE(ended_with(in_child([] { at(7.0); }), 1, "", "linear interpolation: step error."));
}

// Of the two points at 2 the search takes the upper one, so that even 2 itself has a value.
TEST_F(CurveBuffer, a_step_at_a_point_takes_its_upper_side) {
    add({1, 2, 2, 3}, {0, 1, 5, 6});
    EXPECT_EQ(at(2.0), one(5));
}

TEST_F(CurveBuffer, a_step_at_the_end_of_a_curve_ends_the_run) {
    add({1, 2, 2}, {0, 1, 5});
    EXPECT_EQ(at(1.5), one(0.5));
    EXPECT_TRUE(ended_with(in_child([] { at(2.0); }), 1, "", "linear interpolation: step error."));
}

// ---- The shift of a curve ----------------------------------------------------------------------

TEST_F(CurveBuffer, nothing_needs_to_be_cleared_in_an_empty_buffer) {
    const shift_t found = shift_of({1, 2, 3}, {5, -2, 7}, +1.0);
    EXPECT_EQ(bits(found.shift), bits(0.0));
    EXPECT_EQ(found.lowest, -2);
    EXPECT_EQ(found.highest, 7);
    EXPECT_EQ(found.message, "bcs> n=3 Nbuf=0\n");
}

TEST_F(CurveBuffer, a_curve_is_moved_up_or_down_to_its_tightest_point) {
    add({0, 1, 2}, {1, 4, 1});
    add({0, 1, 2}, {0, 2, 0});
    const shift_t up = shift_of({0, 1, 2}, {0, 0, 2}, +1.0);
    EXPECT_EQ(up.shift, 4);
    EXPECT_EQ(up.message, "bcs> n=3 Nbuf=2\n");
    EXPECT_EQ(shift_of({0, 1, 2}, {0, 0, 2}, -1.0).shift, -2);
    EXPECT_EQ(shift_of({0, 1, 2}, {0, 3, 0}, -0.1).shift, -1);
    EXPECT_EQ(shift_of({0, 1, 2}, {0, 3, 0}, +0.1).shift, 1);
}

TEST_F(CurveBuffer, a_curve_that_is_clear_already_is_moved_back_to_the_envelope) {
    add({0, 1, 2}, {1, 4, 1});
    EXPECT_EQ(shift_of({0, 1, 2}, {100, 100, 100}, +1.0).shift, -96);
    EXPECT_EQ(shift_of({0, 1, 2}, {-100, -100, -100}, -1.0).shift, 101);
}

TEST_F(CurveBuffer, only_points_that_are_covered_count) {
    add({1, 2}, {10, 10});
    EXPECT_EQ(shift_of({0, 1.5, 3}, {-50, 0, -50}, +1.0).shift, 10);
    const shift_t apart = shift_of({3, 4}, {-50, 60}, +1.0);
    EXPECT_EQ(bits(apart.shift), bits(0.0));
    EXPECT_EQ(apart.lowest, -50);
    EXPECT_EQ(apart.highest, 60);
}

TEST_F(CurveBuffer, only_the_curve_s_own_abscissae_count) {
    add({0, 1, 2}, {0, 100, 0});
    EXPECT_EQ(shift_of({0, 2}, {0, -1}, +1.0).shift, 1);
}

TEST_F(CurveBuffer, a_distance_of_exactly_zero_does_not_hold) {
    add({0, 3}, {0, 0});
    EXPECT_EQ(shift_of({0, 1, 2}, {2, 0, 1}, +1.0).shift, -1);
    EXPECT_EQ(shift_of({0, 1, 2}, {-2, 0, -1}, -1.0).shift, 1);
    EXPECT_EQ(shift_of({0, 1}, {2, 0}, +1.0).shift, 0);
    EXPECT_EQ(shift_of({0, 1, 2}, {2, 1, 3}, +1.0).shift, -1);
}

TEST_F(CurveBuffer, without_a_direction_nothing_moves) {
    add({0, 1}, {5, 5});
    EXPECT_EQ(bits(shift_of({0, 1}, {0, 0}, 0.0).shift), bits(0.0));
}

TEST_F(CurveBuffer, an_extent_without_points_is_that_of_nothing) {
    const shift_t found = shift_of({}, {}, +1.0);
    EXPECT_EQ(found.shift, 0);
    EXPECT_EQ(found.lowest, 1e99);
    EXPECT_EQ(found.highest, -1e99);
}

TEST_F(CurveBuffer, a_shift_onto_a_step_ends_the_run) {
    add({1, 1}, {0, 5});
    EXPECT_TRUE(ended_with(in_child([] {
                               const double point = 1.0;
                               double lowest, highest;
                               buf_calc_shift(1, &point, &point, &lowest, &highest, +1.0);
                           }),
                           1, "bcs> n=1 Nbuf=1\n", "linear interpolation: step error."));
}
