// SPDX-License-Identifier: MIT
//
// White space and integers once more, without the library's functions for them.
#pragma once

#include <string>

inline bool plain_is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// The digit's value, 99 for what is none in any base.
inline unsigned plain_digit(char c) {
    const std::string digits = "0123456789abcdef";
    const char lower = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    const std::size_t value = digits.find(lower);
    return value == std::string::npos ? 99 : static_cast<unsigned>(value);
}

// True if the whole text is an integer: blanks, a sign, and decimal, octal (0...) or hexadecimal
// (0x...) digits. Its value is limited to 64 bits, of which the low 32 are kept.
inline bool plain_integer(const std::string& text, int* value) {
    std::size_t at = 0;
    while (at < text.size() && plain_is_blank(text[at]))
        at++;
    const bool is_negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+'))
        at++;
    unsigned base = 10;
    if (at < text.size() && text[at] == '0') {
        const bool is_hex = at + 1 < text.size() && (text[at + 1] == 'x' || text[at + 1] == 'X');
        base = is_hex ? 16 : 8;
        at += is_hex ? 2 : 0;
    }
    if (at == text.size())
        return false;
    const unsigned __int128 limit = (static_cast<unsigned __int128>(1) << 63) - !is_negative;
    unsigned __int128 amount = 0;
    for (; at < text.size(); at++) {
        const unsigned digit = plain_digit(text[at]);
        if (digit >= base)
            return false;
        amount = amount * base + digit;
        if (amount > limit)
            amount = limit;
    }
    const auto low = static_cast<unsigned>(amount);
    *value = static_cast<int>(is_negative ? -low : low);
    return true;
}
