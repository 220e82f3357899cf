// SPDX-License-Identifier: MIT
//
// A number as text, against what printf writes.
#include <cmath>
#include <cstdio>

#include "harness.h"
#include "plot/plot.h"

static void check(double value) {
    char got[NUMBER_SIZE + 1], expected[NUMBER_SIZE + 1];
    char* end = write_number(got, value);
    *end = '\0';
    std::snprintf(expected, sizeof expected, "%f", value);
    require_same(got, expected, "another text");
}

// The numbers around a place that is half way between two millionths. Most such places are no
// number, so the nearest decides; one over a small power of two is, and goes to the even side.
static void check_around(double tie) {
    double above = tie, below = tie;
    for (int i = 0; i < 3; i++) {
        check(above);
        check(below);
        above = std::nextafter(above, INFINITY);
        below = std::nextafter(below, -INFINITY);
    }
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    bytes_t bytes = {data, size};
    while (bytes.left > 0) {
        const int choice = take_below(&bytes, 4);
        if (choice == 0) {
            check(take_double(&bytes));
            continue;
        }
        std::int64_t whole = 0;
        for (int count = take_below(&bytes, 8); count > 0; count--)
            whole = whole << 8 | take_byte(&bytes);
        const double odd = 2.0 * static_cast<double>(whole) + 1.0;
        if (choice == 1)
            check_around(odd / 2e6);
        else if (choice == 2)
            check_around(odd / 128);  // a tie times 5^6
        else
            check_around(std::ldexp(odd, -take_below(&bytes, 64)));
    }
    return 0;
}
