// SPDX-License-Identifier: MIT
//
// Rows of inline data, compared with what printf makes of them.
#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "plot/plot.h"
#include "random.h"
#include "state.h"

using RowsWritten = Fresh;

static std::string printed(double value) {
    char text[400];
    std::snprintf(text, sizeof text, "%f", value);
    return text;
}

static std::string written(double value) {
    char text[NUMBER_SIZE];
    return std::string(text, write_number(text, value));
}

static void expect_as_printed(double value) {
    ASSERT_EQ(written(value), printed(value)) << std::bit_cast<std::uint64_t>(value);
    ASSERT_EQ(written(-value), printed(-value)) << std::bit_cast<std::uint64_t>(-value);
}

TEST_F(RowsWritten, special_numbers_are_written_like_printf_writes_them) {
    using limits = std::numeric_limits<double>;
    // clang-format off
    const double values[] = {
        0.0, 1.0, 0.5, 1e-7, 4.9999999e-7, 5e-7, 5.0000001e-7, 1.5e-6, 0.1, 0.9999994, 0.9999995,
        0.9999996, 999999.9999999, 123456.789, 1e15, 1e16, 1e17, 1e22, 1e23, 1e300, limits::max(),
        limits::min(), limits::denorm_min(), limits::epsilon(), limits::infinity(),
        limits::quiet_NaN(), 9007199254740993.0, 1099511627776.0, 1099511627775.9999,
        549755813888.5, 9.313225746154785e-10,
    };
    // clang-format on
    for (const double value : values)
        expect_as_printed(value);
}

TEST_F(RowsWritten, numbers_take_no_more_room_than_they_have) {
    EXPECT_LT(written(-std::numeric_limits<double>::max()).size() + 1,
              static_cast<std::size_t>(NUMBER_SIZE));
}

TEST_F(RowsWritten, any_bits_are_written_like_printf_writes_them) {
    random_t random(1);
    for (int i = 0; i < 20000; i++) {
        const std::uint64_t high = random.next(), low = random.next();
        expect_as_printed(std::bit_cast<double>(high << 32 | low));
        if (HasFatalFailure())
            return;
    }
}

// All sizes that integers of 64 bits and their fractions can have.
TEST_F(RowsWritten, numbers_of_every_size_are_written_like_printf_writes_them) {
    random_t random(2);
    for (int exponent = -60; exponent <= 70; exponent++) {
        for (int i = 0; i < 300; i++)
            expect_as_printed(std::ldexp(1.0 + random.unit(), exponent));
        if (HasFatalFailure())
            return;
    }
}

// Numbers whose seventh decimal is an exact 5 and the last, which go to the even neighbour, and
// those that only seem to be.
TEST_F(RowsWritten, ties_at_the_last_decimal_are_rounded_like_printf_rounds_them) {
    EXPECT_EQ(written(1.0 / 128), "0.007812");
    EXPECT_EQ(written(3.0 / 128), "0.023438");
    random_t random(3);
    for (int i = 0; i < 20000; i++) {
        const double odd = 2.0 * random.below(1 << 30) + 1;
        for (const double tie : {odd / 128, odd / 2e6}) {
            expect_as_printed(tie);
            expect_as_printed(std::nextafter(tie, 0.0));
            expect_as_printed(std::nextafter(tie, 1e300));
        }
        if (HasFatalFailure())
            return;
    }
}

// ---- Blocks ------------------------------------------------------------------------------------

static void write_block(const column_t& x, double y) {
    begin_rows({}, x.data(), static_cast<int>(x.size()));
    for (std::size_t k = 0; k < x.size(); k++)
        write_row(y + static_cast<double>(k));
    end_rows();
}

static std::string printed_block(const column_t& x, double y) {
    std::string text;
    for (std::size_t k = 0; k < x.size(); k++)
        text += printed(x[k]) + " " + printed(y + static_cast<double>(k)) + "\n";
    return text + "e\n";
}

TEST_F(RowsWritten, rows_have_one_or_two_numbers_behind_their_abscissa) {
    EXPECT_EQ(sent([] {
                  const double x[] = {1, 2.5};
                  begin_rows({}, x, 2);
                  write_row(3);
                  write_row(-4, 5);
                  end_rows();
                  flush_rows();
              }),
              "1.000000 3.000000\n2.500000 -4.000000 5.000000\ne\n");
}

TEST_F(RowsWritten, empty_blocks_may_be_many) {
    std::string text;
    for (int i = 0; i < 100000; i++)
        text += "e\n";
    EXPECT_EQ(sent([] {
                  for (int i = 0; i < 100000; i++) {
                      begin_rows({}, nullptr, 0);
                      end_rows();
                  }
                  flush_rows();
              }),
              text);
}

TEST_F(RowsWritten, nothing_is_flushed_twice) {
    EXPECT_EQ(sent([] {
                  write_block({1}, 2);
                  flush_rows();
                  flush_rows();
                  release_rows();
                  write_block({1}, 3);
                  flush_rows();
              }),
              "1.000000 2.000000\ne\n1.000000 3.000000\ne\n");
}

TEST_F(RowsWritten, finished_rows_are_sent_where_memory_ends_the_run) {
    f = std::tmpfile();
    EXPECT_TRUE(ended_with(in_child([] {
                               limit_memory();
                               write_block({1}, 2);
                               const double x = 0.0;
                               const double* volatile hidden = &x;  // from the compiler
                               begin_rows({}, hidden, 1 << 30);
                           }),
                           1, "", "Cannot allocate memory\n"));
    char text[40] = "";
    EXPECT_EQ(pread(fileno(f), text, sizeof text - 1, 0), 20);
    EXPECT_STREQ(text, "1.000000 2.000000\ne\n");
    std::fclose(f);
}

// Abscissae that differ little, and come back after others.
TEST_F(RowsWritten, each_block_has_its_own_abscissae) {
    column_t many;
    for (int k = 0; k < 3000; k++)
        many.push_back(k * 0.1);
    column_t changed = many;
    changed.back() = 7;
    const column_t all[] = {{1, 2, 3}, {1, 2, 4},       {0.0},   {-0.0}, {1, 2},
                            many,      {1e300, -1e300}, changed, {}};
    std::string expected;
    random_t random(4);
    const std::string stream = sent([&] {
        for (int i = 0; i < 300; i++) {
            const column_t& x = all[random.below(9)];
            write_block(x, i);
            expected += printed_block(x, i);
        }
        flush_rows();
    });
    EXPECT_TRUE(stream == expected);
}

TEST_F(RowsWritten, a_block_may_end_anywhere_in_the_room_for_rows) {
    // One row more each time, over more than the room that is kept free for one row.
    column_t x(2900, 1.5);
    for (int more = 0; more < 400; more++) {
        x.push_back(1.5);
        const std::string text = sent([&] {
            write_block(x, 0.0);
            flush_rows();
        });
        ASSERT_EQ(text, printed_block(x, 0.0)) << x.size();
    }
}
