// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <cstring>

#include "run/run.h"

// A kind list, an item of a pair list and each half of an item must fit into this.
static constexpr std::size_t WORD_SIZE = 100;

struct kind_word_t {
    const char* word;
    int kind;
};

// s and the R-values have no word: s is always read, R is never asked for.
static const kind_word_t KindWords[] = {
    {"sms", P_GINT_SMS},   {"tsms", P_GINT_TSMS}, {"int", P_GINT_INT},   {"rint", P_GINT_RINT},
    {"lint", P_GINT_LINT}, {"bgl", P_GINT_BGL},   {"rbgl", P_GINT_RBGL}, {"lbgl", P_GINT_LBGL},
    {"sec", P_GINT_SEC},   {"iat", P_GINT_IAT},   {"dsms", P_GINT_DSMS}, {"smss", P_GINT_SMSS},
    {"ints", P_GINT_INTS}, {"tint", P_GINT_TINT}, {"dint", P_GINT_DINT},
};

// Applies one word: a kind adds, !kind removes, "all" replaces. False if it is none of them.
static bool apply_word(const char* word, unsigned* Data) {
    if (std::strcmp(word, "all") == 0) {
        *Data = P_GINT_WORD_ALL;
        return true;
    }
    const bool removes = word[0] == '!';
    for (const kind_word_t& known : KindWords) {
        if (std::strcmp(word + removes, known.word) != 0)
            continue;
        const unsigned flag = static_cast<unsigned>(known.kind);
        *Data = removes ? *Data & ~flag : *Data | flag;
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
    for (char* word = std::strtok(list, ","); word != nullptr; word = std::strtok(nullptr, ",")) {
        if (!apply_word(word, Data)) {
            say("Unknown data type: %s\n", word);
            return 1;
        }
    }
    return 0;
}

int if_integer(const char* str) {
    if (*str == '\0')
        return 0;
    char* endptr;
    std::strtol(str, &endptr, 0);
    return *endptr == '\0';
}

int integer_value(const char* str) {
    return static_cast<int>(std::strtol(str, nullptr, 0));
}

int is_empty(const char* s) {
    return s[std::strspn(s, " \t\n\v\f\r")] == '\0';
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

// Parses the items of the list, which is cut into pieces on the way. 0, or 2 at a bad item.
static int parse_items(char* list, int* Npar, int** ParNum1, int** ParNum2) {
    for (char* item = std::strtok(list, ","); item != nullptr; item = std::strtok(nullptr, ",")) {
        int Num1, Num2;
        if (std::strlen(item) >= WORD_SIZE) {
            say("Incorrect indication of intensity set: '%s'\n", item);
            return 2;
        }
        if (parse_int_curve(item, &Num1, &Num2) != 0)
            return 2;
        const std::size_t last = static_cast<std::size_t>((*Npar)++);
        *ParNum1 = resized(*ParNum1, last + 1);
        *ParNum2 = resized(*ParNum2, last + 1);
        (*ParNum1)[last] = Num1;
        (*ParNum2)[last] = Num2;
    }
    return 0;
}

int parse_int_curve_number(const char* inpstr, int* Npar, int** ParNum1, int** ParNum2) {
    if (*inpstr == '\0')
        return 1;
    *Npar = 0;
    *ParNum1 = nullptr;
    *ParNum2 = nullptr;
    const std::size_t size = std::strlen(inpstr) + 1;
    char* list = resized<char>(nullptr, size);
    std::memcpy(list, inpstr, size);
    const int result = parse_items(list, Npar, ParNum1, ParNum2);
    std::free(list);
    return result;
}
