// SPDX-License-Identifier: MIT
//
// What a number is does not depend on the C library, whose releases differ in what scanf takes for
// one and in the bases of strtol. Only the value of a text that is known to be a number is left to
// strtod.
#include <strings.h>

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "plain/plain.h"

namespace plain {

std::vector<std::string> pieces_of(const std::string& text, const char* separators) {
    std::vector<std::string> pieces(1);
    for (const char c : text) {
        if (std::strchr(separators, c) != nullptr)
            pieces.emplace_back();
        else
            pieces.back() += c;
    }
    std::erase(pieces, "");
    return pieces;
}

int is_empty(const char* s) {
    return s[std::strspn(s, BLANKS)] == '\0';
}

int if_integer(const std::string& text, int* value) {
    const char* c = text.c_str() + std::strspn(text.c_str(), BLANKS);
    const bool is_negative = *c == '-';
    if (*c == '-' || *c == '+')
        c++;
    unsigned base = *c == '0' ? 8 : 10;
    if (strncasecmp(c, "0x", 2) == 0) {
        base = 16;
        c += 2;
    }
    if (*c == '\0')
        return 0;
    const unsigned long long limit = (1ULL << 63) - (is_negative ? 0 : 1);
    unsigned long long amount = 0;
    for (; *c != '\0'; c++) {
        const char lower = static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
        const std::size_t digit = std::string("0123456789abcdef").find(lower);
        if (digit >= base)  // none at all, too
            return 0;
        amount = amount > (limit - digit) / base ? limit : amount * base + digit;
    }
    const unsigned low = static_cast<unsigned>(amount);
    *value = static_cast<int>(is_negative ? 0 - low : low);
    return 1;
}

static bool begins_with(const char* text, const char* word) {
    return strncasecmp(text, word, std::strlen(word)) == 0;
}

// Letters instead of digits. Who has begun "infinity" has to end it, but a parenthesis behind
// "nan" is no part of it.
static std::size_t letters_length(const char* text) {
    if (begins_with(text, "infinity"))
        return 8;
    if (begins_with(text, "infi"))
        return 0;
    return begins_with(text, "inf") || begins_with(text, "nan") ? 3 : 0;
}

// Digits, a point among them, and an exponent behind them, whose letter and sign are taken even if
// it has no digits. A point without digits is a number behind 0x only: that zero.
static std::size_t digits_length(const char* text) {
    const bool is_hexadecimal = begins_with(text, "0x");
    const char* digits = is_hexadecimal ? "0123456789abcdefABCDEF" : "0123456789";
    std::size_t end = is_hexadecimal ? 2 : 0;
    std::size_t count = std::strspn(text + end, digits);
    end += count;
    const bool has_point = text[end] == '.';
    if (has_point) {
        const std::size_t fraction = std::strspn(text + end + 1, digits);
        count += fraction;
        end += 1 + fraction;
    }
    if (count == 0)
        return is_hexadecimal && has_point ? end : 0;
    if (begins_with(text + end, is_hexadecimal ? "p" : "e")) {
        end++;
        if (text[end] == '+' || text[end] == '-')
            end++;
        end += std::strspn(text + end, "0123456789");
    }
    return end;
}

// How many characters are taken as one number, 0 if they are none. What follows belongs to the
// next number, whatever it is.
static std::size_t number_length(const char* text) {
    const std::size_t sign = *text == '+' || *text == '-' ? 1 : 0;
    const std::size_t letters = letters_length(text + sign);
    const std::size_t length = letters > 0 ? letters : digits_length(text + sign);
    return length > 0 ? sign + length : 0;
}

int read_numbers(const char* line, double (&numbers)[MAX_NUMBERS]) {
    for (int count = 0; count < MAX_NUMBERS; count++) {
        line += std::strspn(line, BLANKS);
        if (*line == '\0')
            return count == 0 ? -1 : count;
        const std::size_t length = number_length(line);
        if (length == 0)
            return count;
        numbers[count] = std::strtod(std::string(line, length).c_str(), nullptr);
        line += length;
    }
    return MAX_NUMBERS;
}

}  // namespace plain
