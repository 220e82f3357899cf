// SPDX-License-Identifier: MIT
//
// A row of numbers, against the reference; and the reference against scanf, where that has its
// rule.
#include <algorithm>
#include <cstring>

#include "common/scan.h"
#include "harness.h"
#include "input/input.h"

static void require_same(const double* got, const double* expected, int count) {
    for (int i = 0; i < count; i++)
        require_same(got[i], expected[i], "another number");
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    char line[LINE_SIZE] = {};
    std::memcpy(line, data, std::min(size, sizeof line - 1));
    double got[MAX_NUMBERS], expected[MAX_NUMBERS], scanned[MAX_NUMBERS];
    const int count = plain::read_numbers(line, expected);
    require(read_numbers(line, got) == count, "another count of numbers");
    require_same(got, expected, count);
    if (scan_has_the_rule()) {
        require(scan_numbers(line, scanned, MAX_NUMBERS) == count, "scanf reads another count");
        require_same(expected, scanned, count);
    }
    return 0;
}
