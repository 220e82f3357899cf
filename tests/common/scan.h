// SPDX-License-Identifier: MIT
//
// A row of numbers by scanf. What a number is does not follow it, but what it says in this release
// of the library.
#pragma once

#include <gnu/libc-version.h>

#include <cstdio>
#include <string>

inline bool scan_has_the_rule() {
    return std::string(gnu_get_libc_version()) == "2.36";
}

// The numbers of the line, at most so many: how many there are, -1 if it is blank.
inline int scan_numbers(const char* line, double* numbers, int most) {
    for (int count = 0; count < most; count++) {
        int length = 0;
        const int read = std::sscanf(line, "%lf%n", &numbers[count], &length);
        if (read != 1)
            return count == 0 ? read : count;
        line += length;
    }
    return most;
}
