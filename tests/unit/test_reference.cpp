// SPDX-License-Identifier: MIT
//
// What a number is, in the reference. For rows it is what scanf says in the release of the C
// library that has the rule.
#include <cstring>
#include <string>

#include "common/scan.h"
#include "plain/plain.h"
#include "run/run.h"
#include "state.h"

using Reference = Fresh;
using plain::MAX_NUMBERS;

static void expect_as_scanned(const std::string& line) {
    double numbers[MAX_NUMBERS], expected[MAX_NUMBERS];
    const int count = scan_numbers(line.c_str(), expected, MAX_NUMBERS);
    ASSERT_EQ(plain::read_numbers(line.c_str(), numbers), count) << '"' << line << '"';
    for (int i = 0; i < count; i++)
        ASSERT_EQ(std::memcmp(&numbers[i], &expected[i], sizeof(double)), 0)
            << '"' << line << "\", number " << i;
}

// Every text of a few letters from the parts of numbers.
TEST_F(Reference, reads_all_short_rows_like_scanf) {
    if (!scan_has_the_rule())
        GTEST_SKIP() << "this release of the C library reads other numbers";
    const char* const parts[] = {"",  "0", "1", "0x",  ".",     "-",   "+", "e",
                                 "p", "a", " ", "inf", "inity", "nan", "("};
    std::string lines[6];
    const auto extend = [&](const auto& again, std::size_t depth) -> void {
        for (const char* part : parts) {
            lines[depth + 1] = lines[depth] + part;
            if (depth + 1 < 5)
                again(again, depth + 1);
            else
                expect_as_scanned(lines[depth + 1]);
            if (HasFatalFailure())
                return;
        }
    };
    extend(extend, 0);
}

TEST_F(Reference, reads_these_integers_as_we_do) {
    // clang-format off
    const struct {
        const char* text;
        int is_integer, value;
    } texts[] = {
        {"17", 1, 17}, {" \t+021", 1, 17}, {"-0x11", 1, -17}, {"0XaB", 1, 0xab}, {"0", 1, 0},
        {"4294967313", 1, 17}, {"9223372036854775807", 1, -1}, {"9223372036854775808", 1, -1},
        {"-9223372036854775808", 1, 0}, {"-99999999999999999999", 1, 0},
        {"0xfffffffffffffffffffff", 1, -1}, {"", 0, 5}, {" ", 0, 5}, {"-", 0, 5}, {"0x", 0, 5},
        {"08", 0, 5}, {"0b1", 0, 5}, {"0B11", 0, 5}, {"0o7", 0, 5}, {"1 ", 0, 5}, {"- 1", 0, 5},
        {"1.0", 0, 5}, {"a", 0, 5}, {"+5", 1, 5}, {"\n7", 1, 7}, {"-0xfffffffff", 1, 1},
        {"-9223372036854775807", 1, 1}, {"-9223372036854775809", 1, 0}, {"0x-1", 0, 5},
        {"1e3", 0, 5}, {"+-5", 0, 5}, {"5-", 0, 5},
    };
    // clang-format on
    for (const auto& t : texts) {
        int value = 5;
        EXPECT_EQ(plain::if_integer(t.text, &value), t.is_integer) << t.text;
        EXPECT_EQ(value, t.value) << t.text;
        EXPECT_EQ(if_integer(t.text), t.is_integer) << t.text;
        EXPECT_EQ(t.is_integer ? integer_value(t.text) : 5, t.value) << t.text;
    }
}
