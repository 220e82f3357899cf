// SPDX-License-Identifier: MIT
#include <charconv>
#include <cstring>
#include <system_error>

#include "input/input.h"

// The rule: whatever scanf reads, in its own words.
static int scan_numbers(const char* line, double (&numbers)[MAX_NUMBERS]) {
    double* n = numbers;
    return std::sscanf(line,
                       "%lf %lf %lf %lf %lf %lf %lf %lf %lf %lf "
                       "%lf %lf %lf %lf %lf %lf %lf %lf %lf %lf \n",
                       n, n + 1, n + 2, n + 3, n + 4, n + 5, n + 6, n + 7, n + 8, n + 9, n + 10,
                       n + 11, n + 12, n + 13, n + 14, n + 15, n + 16, n + 17, n + 18, n + 19);
}

static bool is_blank(char c) {
    return c == ' ' || ('\t' <= c && c <= '\r');
}

static bool is_digit(char c) {
    return '0' <= c && c <= '9';
}

// Reads one plain number and steps behind it. False for anything that from_chars might read
// otherwise than scanf: a sign "+", hexadecimal digits, inf and nan, an unfinished exponent, a
// value out of range, text that touches the number. Of what is left both make the nearest double.
static bool read_plain(const char** text, const char* end, double* number) {
    const char* first = *text;
    if (!is_digit(first[*first == '-']))
        return false;
    const auto [rest, error] = std::from_chars(first, end, *number);
    *text = rest;
    return error == std::errc() && (*rest == '\0' || is_blank(*rest));
}

// Nearly every row is made of plain numbers; for the others scanf starts again at its beginning.
int read_numbers(const char* line, double (&numbers)[MAX_NUMBERS]) {
    const char* text = line;
    const char* end = line + std::strlen(line);
    for (int count = 0; count < MAX_NUMBERS; count++) {
        while (is_blank(*text))
            text++;
        if (*text == '\0')
            return count == 0 ? -1 : count;
        if (!read_plain(&text, end, &numbers[count]))
            return scan_numbers(line, numbers);
    }
    return MAX_NUMBERS;
}
