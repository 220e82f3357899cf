// SPDX-License-Identifier: MIT
//
// A row of numbers, against what scanf makes of it.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "harness.h"
#include "input/input.h"

static int scan(const char* line, double* n) {
    return std::sscanf(line,
                       "%lf %lf %lf %lf %lf %lf %lf %lf %lf %lf "
                       "%lf %lf %lf %lf %lf %lf %lf %lf %lf %lf \n",
                       n, n + 1, n + 2, n + 3, n + 4, n + 5, n + 6, n + 7, n + 8, n + 9, n + 10,
                       n + 11, n + 12, n + 13, n + 14, n + 15, n + 16, n + 17, n + 18, n + 19);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    char line[LINE_SIZE] = {};
    std::memcpy(line, data, std::min(size, sizeof line - 1));
    double got[MAX_NUMBERS], expected[MAX_NUMBERS];
    const int count = read_numbers(line, got);
    require(count == scan(line, expected), "another count of numbers");
    for (int i = 0; i < count; i++)
        require_same(got[i], expected[i], "another number");
    return 0;
}
