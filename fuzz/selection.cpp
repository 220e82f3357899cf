// SPDX-License-Identifier: MIT
//
// Kind lists, pair lists and their items, against the reference. The first byte chooses the
// function, the rest is its argument.
#include <cstdlib>

#include "harness.h"
#include "run/run.h"

static void check_kinds(const char* list, unsigned mask) {
    unsigned expected_mask = mask;
    int got = -1, expected = -2;
    end_the_same([&] { got = parse_data_string(list, &mask); },
                 [&] { expected = plain::parse_data_string(list, &expected_mask); }, "kind list");
    require(got == expected, "kind list: another result");
    require(mask == expected_mask, "kind list: another mask");
}

static void check_pair(const char* item) {
    plain::pair_t pair = {-77, -78}, expected_pair = pair;
    int got = -1, expected = -2;
    end_the_same([&] { got = parse_int_curve(item, &pair.N, &pair.M); },
                 [&] { expected = plain::parse_int_curve(item, &expected_pair); }, "pair");
    require(got == expected, "pair: another result");
    require(pair == expected_pair, "pair: other numbers");
}

static void check_pairs(const char* list) {
    std::vector<plain::pair_t> pairs;
    int got = -1, expected = -2, count = -1, untouched = 0;
    int *first = &untouched, *second = &untouched;
    end_the_same([&] { got = parse_int_curve_number(list, &count, &first, &second); },
                 [&] { expected = plain::parse_int_curve_number(list, &pairs); }, "pairs");
    require(got == expected, "pairs: another result");
    if (got == 1) {
        require(count == -1 && first == &untouched && second == &untouched, "pairs: touched");
        return;
    }
    require(count == static_cast<int>(pairs.size()), "pairs: another count");
    require((first == nullptr) == (count == 0), "pairs: no arrays");
    for (std::size_t i = 0; i < pairs.size(); i++)
        require(first[i] == pairs[i].N && second[i] == pairs[i].M, "pairs: other numbers");
    std::free(first);
    std::free(second);
}

static void check_text(const char* text) {
    int value = 0;
    const int is_integer = plain::if_integer(text, &value);
    require(if_integer(text) == is_integer, "integer: another result");
    require(!is_integer || integer_value(text) == value, "integer: another value");
    require(is_empty(text) == plain::is_empty(text), "blank: another result");
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string argument(reinterpret_cast<const char*>(data + 1), size - 1);
    const char* text = argument.c_str();  // up to the first NUL
    switch (data[0]) {
        case 'a':
            check_kinds(text, P_GINT_EVERY);
            break;
        case 'k':
            check_kinds(text, 0);
            break;
        case 'p':
            check_pair(text);
            break;
        case 'l':
            check_pairs(text);
            break;
        default:
            check_text(text);
    }
    return 0;
}
