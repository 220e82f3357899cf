// SPDX-License-Identifier: MIT
//
// What the comparison with the reference (test_stacking.cpp) does not show.
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
};

static shift_t shift_of(const column_t& x, const column_t& y, double direction) {
    shift_t found = {};
    said([&] {
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

TEST_F(CurveBuffer, without_memory_ends_the_run) {
    EXPECT_TRUE(ended_with(in_child([] {
                               limit_memory();
                               const double point = 0.0;
                               buf_add(1 << 30, &point, &point, 0.0);
                           }),
                           1, "", "Cannot allocate memory for buffer!\n"));
}

// ---- Looking up --------------------------------------------------------------------------------

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

// ---- The shift of a curve ----------------------------------------------------------------------

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
