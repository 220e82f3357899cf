// SPDX-License-Identifier: MIT
//
// Rows of numbers, compared with what the reference makes of them.
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "input/input.h"
#include "plain/plain.h"
#include "random.h"
#include "state.h"

using Rows = Fresh;

static void expect_as_plain(const std::string& line) {
    double expected[MAX_NUMBERS] = {}, numbers[MAX_NUMBERS] = {};
    const int count = plain::read_numbers(line.c_str(), expected);
    ASSERT_EQ(read_numbers(line.c_str(), numbers), count) << '"' << line << '"';
    for (int i = 0; i < count; i++)
        ASSERT_EQ(bits(numbers[i]), bits(expected[i])) << '"' << line << "\", number " << i;
}

static int count_of(const std::string& line) {
    double numbers[MAX_NUMBERS];
    return read_numbers(line.c_str(), numbers);
}

TEST_F(Rows, are_converted_in_order) {
    double numbers[MAX_NUMBERS];
    ASSERT_EQ(read_numbers("   2.00   -0.61862\t1e3\n", numbers), 3);
    EXPECT_EQ(numbers[0], 2.0);
    EXPECT_EQ(numbers[1], -0.61862);
    EXPECT_EQ(numbers[2], 1000.0);
}

TEST_F(Rows, blank_ones_have_minus_one) {
    for (const char* line : {"", "\n", "   ", " \t\r\n"})
        EXPECT_EQ(count_of(line), -1) << line;
}

TEST_F(Rows, end_at_the_first_text) {
    EXPECT_EQ(count_of("x"), 0);
    EXPECT_EQ(count_of("1 2 x 3"), 2);
    EXPECT_EQ(count_of("1 2x 3"), 2);
    EXPECT_EQ(count_of("1,5 2"), 1);
    EXPECT_EQ(count_of("--5"), 0);
}

TEST_F(Rows, have_twenty_numbers_at_most) {
    std::string line;
    for (int count = 1; count <= 30; count++) {
        line += " " + std::to_string(count);
        EXPECT_EQ(count_of(line), count < 20 ? count : 20);
    }
}

// What is no plain number, as scanf of glibc 2.36 reads it.
struct odd_line_t {
    const char* text;
    std::vector<double> numbers;
};

// clang-format off
static const odd_line_t OddLines[] = {
    {"1e 2", {1, 2}}, {"1e+ 2", {1, 2}}, {"1e-", {1}}, {"1e5 2e-5", {100000, 2e-05}},
    {"0x 1", {}}, {"0x1p3 2", {8, 2}}, {"0x.8", {0.5}}, {"0x1p 2", {1, 2}}, {"0x1.8p-1", {0.75}},
    {"inf", {INFINITY}}, {"infinit", {}}, {"infinity 2", {INFINITY, 2}},
    {"-INF +Inf", {-INFINITY, INFINITY}}, {"nan", {NAN}}, {"nan(1) 2", {NAN}}, {"nan(x", {NAN}},
    {"-nan", {-NAN}}, {"1.5-2.5", {1.5, -2.5}}, {"1.5+2.5", {1.5, 2.5}}, {"1.5.2", {1.5, 0.2}},
    {".5", {0.5}}, {"5.", {5}}, {".", {}}, {"-.5", {-0.5}}, {"+.e5", {}}, {"1e400", {INFINITY}},
    {"-1e400", {-INFINITY}}, {"1e-400", {0}}, {"1e-310", {1e-310}}, {"4.9e-324", {5e-324}},
    {"2e-324", {0}}, {"-0", {-0.0}}, {"-0.0", {-0.0}}, {"+0", {0}}, {"00012", {12}},
    {"0.1e1e1", {1}}, {"1d5", {1}}, {"1E5", {100000}}, {"1e5.5", {100000, 0.5}},
    {"\v1\f2\r3", {1, 2, 3}}, {"1_000", {1}}, {"1'000", {1}}, {"0b1", {0}},
    {"1e99999999999999999999", {INFINITY}}, {"1e-99999999999999999999", {0}},
    {"179769313486231580793728971405301e277", {INFINITY}},
    {"2.2250738585072011e-308", {2.225073858507201e-308}},
    {"9007199254740993", {9007199254740992.0}}, {"0.1000000000000000055511151231257827", {0.1}},
    {"123456789012345678901234567890123456789012345678901234567890 1",
     {1.2345678901234567e+59, 1}},
    {"1\xA0", {1}}, {"i", {}}, {"in", {}}, {"n", {}}, {"na", {}}, {"in f", {}}, {"0x", {}},
    {"0xg", {}}, {"-0x1", {-1}}, {"1 -", {1}}, {"1 + 2", {1}}, {"1e+5", {100000}},
    {"1e +5", {1, 5}}, {"0x1p+ 2", {1, 2}}, {"0x. 2", {0, 2}}, {"1e+-5 2", {1, -5, 2}},
    {"nan() 2", {NAN}}, {"NAN(ab) 2", {NAN}}, {"nan( 2", {NAN}}, {"0x1p-", {1}}, {"0xp1", {}},
    {"0x.p1", {0}}, {"infi", {}}, {"INFINITY-infinity", {INFINITY, -INFINITY}},
    {"nannan", {NAN, NAN}}, {"0x1.8.2", {1.5, 0.2}}, {"1e5e5", {100000}}, {"0x1P+2x", {4}},
    {"-0x.8p1 3", {-1, 3}}, {"1..2", {1, 0.2}}, {"+-1", {}}, {"0X1p 2", {1, 2}},
    {"infinit 2", {}},
};
// clang-format on

TEST_F(Rows, odd_ones_are_the_same_numbers_everywhere) {
    for (const odd_line_t& line : OddLines) {
        double numbers[MAX_NUMBERS];
        const int count = static_cast<int>(line.numbers.size());
        ASSERT_EQ(read_numbers(line.text, numbers), count) << line.text;
        for (int i = 0; i < count; i++)
            EXPECT_EQ(bits(numbers[i]), bits(line.numbers[static_cast<std::size_t>(i)]))
                << line.text << ", number " << i;
        expect_as_plain(line.text);
    }
}

TEST_F(Rows, random_ones_are_read_like_the_reference_reads_them) {
    const std::string letters = "0123456789012345678901234567890   \t..--+eExXpPinfaN(),";
    random_t random(1);
    for (int i = 0; i < 100000; i++) {
        std::string line;
        for (int length = random.below(40); length > 0; length--)
            line += letters[random.next() % letters.size()];
        expect_as_plain(line);
        if (HasFatalFailure())
            return;
    }
}

TEST_F(Rows, numbers_as_tables_have_them_are_read_to_the_bit) {
    random_t random(2);
    for (int i = 0; i < 20000; i++) {
        std::string line;
        for (int n = 0; n < 7; n++) {
            const double value = (random.unit() - 0.5) * std::pow(10.0, random.below(12));
            char text[80];
            std::snprintf(text, sizeof text, n % 2 ? "%16.*f" : "%16.*e", random.below(18), value);
            line += text;
        }
        expect_as_plain(line + "\n");
        if (HasFatalFailure())
            return;
    }
}
