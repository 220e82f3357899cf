// SPDX-License-Identifier: MIT
//
// Kind lists, pair lists and their items, against a second version written plainly from the rules.
// The first byte chooses the function, the rest is its argument.
#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "harness.h"
#include "plain_text.h"
#include "run/run.h"

// The longest text that the functions take as an item.
static constexpr std::size_t LONGEST = 99;

// The items of a list: what stands between commas, if anything.
static std::vector<std::string> items_of(const std::string& list) {
    std::vector<std::string> items(1);
    for (const char c : list) {
        if (c == ',')
            items.emplace_back();
        else
            items.back() += c;
    }
    std::erase(items, "");
    return items;
}

// ---- Kind lists --------------------------------------------------------------------------------

static unsigned flag_of(const std::string& word) {
    static const char* const words[] = {"int", "bgl",  "sms",  "tsms", "dsms", "rint",
                                        "sec", "iat",  "",     "rbgl", "smss", "ints",
                                        "",    "lint", "lbgl", "tint", "dint"};
    unsigned flag = 1;
    for (const char* known : words) {
        if (word == known && word != "")
            return flag;
        flag <<= 1;
    }
    return 0;
}

// Gives the result and what is said.
static int plain_data_string(const std::string& list, unsigned* mask, std::string* out) {
    std::vector<std::string> words = items_of(list);
    if (list.size() > LONGEST)
        words = {list};
    for (const std::string& word : words) {
        const unsigned added = flag_of(word);
        const unsigned removed = word[0] == '!' ? flag_of(word.substr(1)) : 0;
        if (word == "all")
            *mask = 0x19eff;
        else if (added != 0 && list.size() <= LONGEST)
            *mask |= added;
        else if (removed != 0 && list.size() <= LONGEST)
            *mask &= ~removed;
        else {
            *out = "Unknown data type: " + word + "\n";
            return 1;
        }
    }
    return 0;
}

static void check_kinds(const char* list, unsigned mask) {
    unsigned expected_mask = mask;
    std::string out;
    const int expected = plain_data_string(list, &expected_mask, &out);
    int got = -1;
    const ended_t& ended = run([&] { got = parse_data_string(list, &mask); });
    require(ended.status == RUN_RETURNED && got == expected, "kind list: another result");
    require(mask == expected_mask, "kind list: another mask");
    require_same(ended.out, out, "kind list: another message");
    require_same(ended.err, "", "kind list: an error");
}

// ---- Pairs -------------------------------------------------------------------------------------

struct pair_t {
    int first, second;
};

static bool plain_pair(const std::string& item, pair_t* pair) {
    const std::size_t dash = item.find('-');
    if (dash == std::string::npos || dash > LONGEST || item.size() - dash - 1 > LONGEST)
        return false;
    return plain_integer(item.substr(0, dash), &pair->first) &&
           plain_integer(item.substr(dash + 1), &pair->second);
}

static std::string pair_message(const std::string& item) {
    return "Incorrect indication of intensity set: '" + item + "'\n";
}

static void check_pair(const char* item) {
    pair_t expected = {-77, -78}, got = {-77, -78}, parsed;
    const bool is_good = plain_pair(item, &parsed);
    if (is_good)
        expected = parsed;
    int result = -1;
    const ended_t& ended = run([&] { result = parse_int_curve(item, &got.first, &got.second); });
    require(ended.status == RUN_RETURNED && result == !is_good, "pair: another result");
    require(got.first == expected.first && got.second == expected.second, "pair: other numbers");
    require_same(ended.out, is_good ? "" : pair_message(item), "pair: another message");
    require_same(ended.err, "", "pair: an error");
}

static int plain_pairs(const std::string& list, std::vector<pair_t>* pairs, std::string* out) {
    if (list.empty())
        return 1;
    for (const std::string& item : items_of(list)) {
        pair_t pair;
        if (item.size() > LONGEST || !plain_pair(item, &pair)) {
            *out = pair_message(item);
            return 2;
        }
        pairs->push_back(pair);
    }
    return 0;
}

static void check_pairs(const char* list) {
    std::vector<pair_t> expected;
    std::string out;
    const int expected_result = plain_pairs(list, &expected, &out);
    int result = -1, count = -1, untouched = 0;
    int *first = &untouched, *second = &untouched;
    const ended_t& ended =
        run([&] { result = parse_int_curve_number(list, &count, &first, &second); });
    require(ended.status == RUN_RETURNED && result == expected_result, "pairs: another result");
    require_same(ended.out, out, "pairs: another message");
    require_same(ended.err, "", "pairs: an error");
    if (result == 1) {
        require(count == -1 && first == &untouched && second == &untouched, "pairs: touched");
        return;
    }
    require(count == static_cast<int>(expected.size()), "pairs: another count");
    require((first == nullptr) == (count == 0), "pairs: no arrays");
    for (int i = 0; i < count; i++) {
        const pair_t& pair = expected[static_cast<std::size_t>(i)];
        require(first[i] == pair.first && second[i] == pair.second, "pairs: other numbers");
    }
    std::free(first);
    std::free(second);
}

// ---- Small tests -------------------------------------------------------------------------------

static void check_integer(const char* text) {
    int value = 0;
    const bool is_good = plain_integer(text, &value);
    require(if_integer(text) == is_good, "integer: another result");
    require(!is_good || integer_value(text) == value, "integer: another value");
}

static void check_empty(const char* text) {
    bool empty = true;
    for (const char* c = text; *c != '\0'; c++)
        empty = empty && plain_is_blank(*c);
    require(is_empty(text) == empty, "blank: another result");
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
            check_integer(text);
            check_empty(text);
    }
    return 0;
}
