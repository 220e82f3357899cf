// SPDX-License-Identifier: MIT
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <system_error>

#include "run/run.h"

// A kind list, an item of a pair list and each half of an item must fit into this.
static constexpr std::size_t WORD_SIZE = 100;

static constexpr char WHITE_SPACE[] = " \t\n\v\f\r";

namespace {
struct kind_word_t {
    const char* word;
    int kind;
};
}  // namespace

// s and the R-values have no word: s is always read, R is never asked for.
static const kind_word_t KindWords[] = {
    {"sms", P_GINT_SMS},   {"tsms", P_GINT_TSMS}, {"int", P_GINT_INT},   {"rint", P_GINT_RINT},
    {"lint", P_GINT_LINT}, {"bgl", P_GINT_BGL},   {"rbgl", P_GINT_RBGL}, {"lbgl", P_GINT_LBGL},
    {"sec", P_GINT_SEC},   {"iat", P_GINT_IAT},   {"dsms", P_GINT_DSMS}, {"smss", P_GINT_SMSS},
    {"ints", P_GINT_INTS}, {"tint", P_GINT_TINT}, {"dint", P_GINT_DINT},
};

unsigned KindsNamed = 0, KindsNamedToRead = 0, KindsNamedToCombine = 0;

const char* kind_word(int kind) {
    for (const kind_word_t& known : KindWords) {
        if (known.kind == kind)
            return known.word;
    }
    return nullptr;
}

// Applies one word: a kind adds, !kind removes, "all" replaces. False if it is none of them.
static bool apply_word(const char* word, unsigned* Data) {
    if (std::strcmp(word, "all") == 0) {
        *Data = P_GINT_WORD_ALL;
        KindsNamed = 0;
        return true;
    }
    const bool removes = word[0] == '!';
    const char* name = removes ? word + 1 : word;
    for (const kind_word_t& known : KindWords) {
        if (std::strcmp(name, known.word) != 0)
            continue;
        const unsigned flag = static_cast<unsigned>(known.kind);
        *Data = removes ? *Data & ~flag : *Data | flag;
        KindsNamed = removes ? KindsNamed & ~flag : KindsNamed | flag;
        return true;
    }
    return false;
}

int parse_data_string(const char* str, unsigned int* Data) {
    char list[WORD_SIZE];
    if (std::strlen(str) >= sizeof list) {
        say("Unknown data type: %s\n", str);
        return 1;
    }
    std::strcpy(list, str);
    KindsNamed = 0;
    for (char* word = std::strtok(list, ","); word != nullptr; word = std::strtok(nullptr, ",")) {
        if (!apply_word(word, Data)) {
            say("Unknown data type: %s\n", word);
            return 1;
        }
    }
    return 0;
}

static std::int64_t with_sign(std::uint64_t size, bool negative) {
    constexpr std::int64_t LEAST = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t MOST = std::numeric_limits<std::int64_t>::max();
    if (size > static_cast<std::uint64_t>(MOST))
        return negative ? LEAST : MOST;
    const std::int64_t value = static_cast<std::int64_t>(size);
    return negative ? -value : value;
}

// Reads the one integer that the string is. False if it is none. strtol in base 0 would do, but
// for binary numbers, which newer releases of the C library take and older ones do not.
static bool read_integer(const char* str, std::int64_t* value) {
    const char* digits = str + std::strspn(str, WHITE_SPACE);
    const bool negative = *digits == '-';
    if (*digits == '-' || *digits == '+')
        digits++;
    int base = 10;
    if (*digits == '0')
        base = digits[1] == 'x' || digits[1] == 'X' ? 16 : 8;
    if (base == 16)
        digits += 2;
    const char* end = digits + std::strlen(digits);
    std::uint64_t size = 0;
    const auto [rest, error] = std::from_chars(digits, end, size, base);
    if (error == std::errc::result_out_of_range)
        size = std::numeric_limits<std::uint64_t>::max();
    *value = with_sign(size, negative);
    return rest != digits && rest == end;
}

int if_integer(const char* str) {
    std::int64_t value;
    return read_integer(str, &value);
}

int integer_value(const char* str) {
    std::int64_t value;
    read_integer(str, &value);
    return static_cast<int>(static_cast<std::uint32_t>(value));
}

int is_empty(const char* s) {
    return s[std::strspn(s, WHITE_SPACE)] == '\0';
}

int parse_int_curve(const char* str, int* ParNum1, int* ParNum2) {
    char first[WORD_SIZE] = "";
    char second[WORD_SIZE] = "";
    const std::size_t length = std::strcspn(str, "-");
    const char* rest = str[length] == '-' ? str + length + 1 : "";
    if (length < sizeof first && std::strlen(rest) < sizeof second) {
        std::memcpy(first, str, length);
        std::strcpy(second, rest);
    }
    if (!if_integer(first) || !if_integer(second)) {
        say("Incorrect indication of intensity set: '%s'\n", str);
        return 1;
    }
    *ParNum1 = integer_value(first);
    *ParNum2 = integer_value(second);
    return 0;
}

// Appends one number to the array. False if there is no memory, with the array as it was.
static bool append(int** numbers, int count, int number) {
    void* grown = reallocarray(*numbers, static_cast<std::size_t>(count) + 1, sizeof number);
    if (grown == nullptr)  // GCOV_EXCL_BR_LINE no memory, here and below: faults/memory
        return false;      // GCOV_EXCL_LINE
    *numbers = static_cast<int*>(grown);
    (*numbers)[count] = number;
    return true;
}

// Parses the items of the list, which is cut into pieces on the way. False at a bad item, or
// without memory.
static bool parse_items(char* list, int* Npar, int** ParNum1, int** ParNum2) {
    for (char* item = std::strtok(list, ","); item != nullptr; item = std::strtok(nullptr, ",")) {
        int Num1, Num2;
        if (std::strlen(item) >= WORD_SIZE) {
            say("Incorrect indication of intensity set: '%s'\n", item);
            return false;
        }
        if (parse_int_curve(item, &Num1, &Num2) != 0)
            return false;
        // GCOV_EXCL_START
        if (!append(ParNum1, *Npar, Num1) || !append(ParNum2, *Npar, Num2))
            return false;
        // GCOV_EXCL_STOP
        ++*Npar;
    }
    return true;
}

int parse_int_curve_number(const char* inpstr, int* Npar, int** ParNum1, int** ParNum2) {
    if (*inpstr == '\0')
        return 1;
    *Npar = 0;
    *ParNum1 = nullptr;
    *ParNum2 = nullptr;
    char* list = strdup(inpstr);
    const bool good = list != nullptr &&  // GCOV_EXCL_BR_LINE
                      parse_items(list, Npar, ParNum1, ParNum2);
    std::free(list);
    return good ? 0 : 2;
}
