// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <string>

#include "run/run.h"
#include "state.h"

using Selection = Fresh;

// ---- Kind lists --------------------------------------------------------------------------------

// Applies a list to a mask and returns the message.
static std::string apply(const std::string& list, unsigned* mask, int* result) {
    return said([&] { *result = parse_data_string(list.c_str(), mask); });
}

TEST_F(Selection, an_unknown_word_is_reported_and_keeps_what_came_before) {
    const struct {
        const char *list, *word;
        unsigned mask;
    } cases[] = {{"Int", "Int", 0}, {"int,foo,bgl", "foo", 0x1}, {"all,ALL", "ALL", 0x19eff}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.list);
        unsigned mask = 0;
        int result = -1;
        EXPECT_EQ(apply(c.list, &mask, &result),
                  "Unknown data type: " + std::string(c.word) + "\n");
        EXPECT_EQ(result, 1);
        EXPECT_EQ(mask, c.mask);
    }
}

TEST_F(Selection, a_kind_list_of_99_characters_is_taken_and_a_longer_one_refused_whole) {
    std::string list = "bgl";
    while (list.size() < 99)
        list += ",int";
    ASSERT_EQ(list.size(), 99U);
    unsigned mask = 0;
    int result = -1;
    EXPECT_EQ(apply(list, &mask, &result), "");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(mask, 0x3U);
    for (const std::string& longer : {list + ",", list + ",int", list + std::string(5000, ',')}) {
        mask = 0x40;
        EXPECT_EQ(apply(longer, &mask, &result), "Unknown data type: " + longer + "\n");
        EXPECT_EQ(result, 1);
        EXPECT_EQ(mask, 0x40U);
    }
}

// ---- Pair items --------------------------------------------------------------------------------

TEST_F(Selection, a_bad_pair_is_reported_whole_and_touches_nothing) {
    // No list has items as long as the last two.
    const std::string digits(100, '1');
    for (const std::string& item : {std::string("08-1"), std::string("3"), std::string("1-2-3"),
                                    digits + "-1", "1-" + digits}) {
        SCOPED_TRACE(item);
        int Nd = -77, Nc = -77, result = -1;
        EXPECT_EQ(said([&] { result = parse_int_curve(item.c_str(), &Nd, &Nc); }),
                  "Incorrect indication of intensity set: '" + item + "'\n");
        EXPECT_EQ(result, 1);
        EXPECT_EQ(Nd, -77);
        EXPECT_EQ(Nc, -77);
    }
}

// ---- Pair lists --------------------------------------------------------------------------------

using pairs_t = std::vector<std::pair<int, int>>;

struct pair_list_t {
    int result;
    pairs_t pairs;
    std::string message;
};

static pair_list_t parse_pairs(const std::string& list) {
    pair_list_t parsed = {-1, {}, ""};
    int Npar = -1, *Num1 = nullptr, *Num2 = nullptr;
    parsed.message =
        said([&] { parsed.result = parse_int_curve_number(list.c_str(), &Npar, &Num1, &Num2); });
    for (int i = 0; i < Npar; i++)
        parsed.pairs.emplace_back(Num1[i], Num2[i]);
    EXPECT_TRUE(Npar != 0 || (Num1 == nullptr && Num2 == nullptr));
    std::free(Num1);
    std::free(Num2);
    return parsed;
}

TEST_F(Selection, an_empty_pair_list_fails_without_touching_anything) {
    int Npar = 5, number = 0;
    int *Num1 = &number, *Num2 = &number;
    int result = -1;
    EXPECT_EQ(said([&] { result = parse_int_curve_number("", &Npar, &Num1, &Num2); }), "");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(Npar, 5);
    EXPECT_EQ(Num1, &number);
    EXPECT_EQ(Num2, &number);
}

TEST_F(Selection, a_bad_item_keeps_those_before_it) {
    const pair_list_t parsed = parse_pairs("1-1,2-1,x,3-1");
    EXPECT_EQ(parsed.result, 2);
    EXPECT_EQ(parsed.pairs, (pairs_t{{1, 1}, {2, 1}}));
    EXPECT_EQ(parsed.message, "Incorrect indication of intensity set: 'x'\n");
    EXPECT_EQ(parse_pairs("x,1-1").result, 2);
    EXPECT_EQ(parse_pairs("x,1-1").pairs, pairs_t{});
}

TEST_F(Selection, the_arrays_of_an_earlier_list_are_let_go) {
    int Npar = 1, number = 7;
    int *Num1 = &number, *Num2 = &number;
    EXPECT_EQ(parse_int_curve_number("2-3", &Npar, &Num1, &Num2), 0);
    EXPECT_EQ(Npar, 1);
    EXPECT_NE(Num1, &number);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(*Num1, 2);
    EXPECT_EQ(*Num2, 3);
    std::free(Num1);
    std::free(Num2);
}

// ---- Tests of strings --------------------------------------------------------------------------

TEST_F(Selection, is_empty_takes_all_white_space_of_c) {
    for (const char* text : {"", "   ", "\t\n", " \t\n\v\f\r", "\r\n"})
        EXPECT_EQ(is_empty(text), 1) << text;
    for (const char* text : {" a", "a", "\n.\n", "\xA0", "\b", "   0"})
        EXPECT_EQ(is_empty(text), 0) << text;
}
