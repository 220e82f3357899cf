// SPDX-License-Identifier: MIT
//
// The rule for numbers is that of "%lf" in scanf of glibc 2.36, written out here: other releases
// of the C library draw the end of an odd number elsewhere ("1e 2", "nan(1)").
#include <strings.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "input/input.h"

static bool is_blank(char c) {
    return c == ' ' || ('\t' <= c && c <= '\r');
}

static bool is_digit(char c) {
    return '0' <= c && c <= '9';
}

// ---- Any number --------------------------------------------------------------------------------

static const char* after_sign(const char* text) {
    return *text == '+' || *text == '-' ? text + 1 : text;
}

static const char* after_digits(const char* text, bool hexadecimal) {
    return text + std::strspn(text, hexadecimal ? "0123456789abcdefABCDEF" : "0123456789");
}

static bool begins_with(const char* text, const char* word) {
    return strncasecmp(text, word, std::strlen(word)) == 0;
}

// Steps over inf, infinity or nan. Null if there is none; "infinit" is none. What may follow nan
// in parentheses is left.
static const char* after_name(const char* text) {
    if (begins_with(text, "nan"))
        return text + 3;
    if (begins_with(text, "infi"))
        return begins_with(text, "infinity") ? text + 8 : nullptr;
    return begins_with(text, "inf") ? text + 3 : nullptr;
}

// With an exponent that may lack its digits.
const char* after_number(const char* text) {
    text = after_sign(text);
    if (const char* end = after_name(text))
        return end;
    const bool hexadecimal = begins_with(text, "0x");
    const char* start = hexadecimal ? text + 2 : text;
    const char* end = after_digits(start, hexadecimal);
    bool has_digits = end != start;
    if (*end == '.') {
        const char* fraction = end + 1;
        end = after_digits(fraction, hexadecimal);
        has_digits = has_digits || end != fraction;
    }
    if (has_digits && begins_with(end, hexadecimal ? "p" : "e"))
        return after_digits(after_sign(end + 1), false);
    // "0x." is a number, "." is not.
    return has_digits || (hexadecimal && end != start) ? end : nullptr;
}

// Reads one number of any kind and steps behind it. False if there is none.
static bool read_any(const char** text, double* number) {
    const char* end = after_number(*text);
    if (end == nullptr)
        return false;
    const std::size_t length = static_cast<std::size_t>(end - *text);
    char exact[LINE_SIZE];
    std::memcpy(exact, *text, length);
    exact[length] = '\0';
    *number = std::strtod(exact, nullptr);
    *text = end;
    return true;
}

// ---- Plain numbers -----------------------------------------------------------------------------

// Reads one plain number and steps behind it. False for anything that from_chars might read
// otherwise: a sign "+", hexadecimal digits, inf and nan, an unfinished exponent, a value out of
// range, text that touches the number. Of what is left both ways make the nearest double.
static bool read_plain(const char** text, const char* end, double* number) {
    const char* first = *text;
    if (!is_digit(*first == '-' ? first[1] : first[0]))
        return false;
    const auto [rest, error] = std::from_chars(first, end, *number);
    if (error != std::errc() || (*rest != '\0' && !is_blank(*rest)))
        return false;
    *text = rest;
    return true;
}

int read_numbers(const char* line, double (&numbers)[MAX_NUMBERS]) {
    const char* text = line;
    const char* end = line + std::strlen(line);
    for (int count = 0; count < MAX_NUMBERS; count++) {
        while (is_blank(*text))
            text++;
        if (*text == '\0')
            return count == 0 ? -1 : count;
        // Nearly every number is a plain one.
        if (!read_plain(&text, end, &numbers[count]) && !read_any(&text, &numbers[count]))
            return count;
    }
    return MAX_NUMBERS;
}
