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

struct kind_list_t {
    const char* list;
    unsigned before, after;
};

TEST_F(Selection, kind_lists_apply_from_left_to_right) {
    const kind_list_t cases[] = {
        {"", 0x42, 0x42},
        {",", 0x42, 0x42},
        {",,,", 0, 0},
        {"int,,bgl", 0, 0x3},
        {",int,", 0, 0x1},
        {"sms,sms", 0, 0x4},
        {"all", 0, 0x19eff},
        {"all", 0x1ffff, 0x19eff},
        {"all,!sms", 0, 0x19efb},
        {"!sms,all", 0, 0x19eff},
        {"all,lint,lbgl", 0, 0x1feff},
        {"lint,lbgl,all", 0, 0x19eff},
        {"int,!int", 0, 0},
        {"!int,int", 0, 0x1},
        {"!sec", 0x1ffff, 0x1ffbf},
        {"!sec", 0, 0},
    };
    for (const kind_list_t& c : cases) {
        SCOPED_TRACE(c.list);
        unsigned mask = c.before;
        int result = -1;
        EXPECT_EQ(apply(c.list, &mask, &result), "");
        EXPECT_EQ(result, 0);
        EXPECT_EQ(mask, c.after);
    }
}

TEST_F(Selection, every_word_adds_its_kind_and_removes_it_after_a_mark) {
    const struct {
        const char* word;
        unsigned flag;
    } words[] = {{"sms", 0x4},     {"tsms", 0x8},    {"int", 0x1},     {"rint", 0x20},
                 {"lint", 0x2000}, {"bgl", 0x2},     {"rbgl", 0x200},  {"lbgl", 0x4000},
                 {"sec", 0x40},    {"iat", 0x80},    {"dsms", 0x10},   {"smss", 0x400},
                 {"ints", 0x800},  {"tint", 0x8000}, {"dint", 0x10000}};
    for (const auto& w : words) {
        SCOPED_TRACE(w.word);
        unsigned mask = 0x100;
        EXPECT_EQ(parse_data_string(w.word, &mask), 0);
        EXPECT_EQ(mask, 0x100 | w.flag);
        mask = 0x1ffff;
        EXPECT_EQ(parse_data_string(("!" + std::string(w.word)).c_str(), &mask), 0);
        EXPECT_EQ(mask, 0x1ffff & ~w.flag);
    }
}

TEST_F(Selection, an_unknown_word_is_reported_and_keeps_what_came_before) {
    const struct {
        const char *list, *word;
        unsigned mask;
    } cases[] = {{"Int", "Int", 0},
                 {"int,foo,bgl", "foo", 0x1},
                 {"int, bgl", " bgl", 0x1},
                 {"int ", "int ", 0},
                 {"!all", "!all", 0},
                 {"!", "!", 0},
                 {"!!sms", "!!sms", 0},
                 {"s", "s", 0},
                 {"r", "r", 0},
                 {"R", "R", 0},
                 {"intx", "intx", 0},
                 {"in", "in", 0},
                 {"all,ALL", "ALL", 0x19eff}};
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

TEST_F(Selection, a_pair_is_two_integers_of_any_base) {
    const struct {
        const char* item;
        int Nd, Nc;
    } cases[] = {
        {"1-1", 1, 1},     {"12-345", 12, 345}, {"010-1", 8, 1},
        {"0x10-2", 16, 2}, {"0X1f-07", 31, 7},  {" 3-1", 3, 1},
        {"\t3-1", 3, 1},   {"3- 1", 3, 1},      {"+3-+1", 3, 1},
        {"1--2", 1, -2},   {"0-0", 0, 0},       {"4294967297-2147483648", 1, -2147483647 - 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.item);
        int Nd = -77, Nc = -77;
        EXPECT_EQ(parse_int_curve(c.item, &Nd, &Nc), 0);
        EXPECT_EQ(Nd, c.Nd);
        EXPECT_EQ(Nc, c.Nc);
    }
}

TEST_F(Selection, a_bad_pair_is_reported_whole_and_touches_nothing) {
    const std::string long_half(100, '1');
    for (const std::string& item :
         {std::string("08-1"), std::string("3"), std::string("1-"), std::string("-1-1"),
          std::string("1-2-3"), std::string("1 -1"), std::string("1-1 "), std::string(""),
          std::string("-"), std::string("--"), std::string("a-1"), std::string("1-a"),
          std::string("1-08"), std::string("0x-1"), std::string("1.0-1"), std::string(" - "),
          std::string("1\n-1"), long_half + "-1", "1-" + long_half}) {
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

TEST_F(Selection, pair_lists_keep_their_order) {
    EXPECT_EQ(parse_pairs("1-1,2-1").pairs, (pairs_t{{1, 1}, {2, 1}}));
    EXPECT_EQ(parse_pairs("9-1,,2-8,").pairs, (pairs_t{{9, 1}, {2, 8}}));
    EXPECT_EQ(parse_pairs("1-1, 2-1").pairs, (pairs_t{{1, 1}, {2, 1}}));
    EXPECT_EQ(parse_pairs("3-1,3-1").pairs, (pairs_t{{3, 1}, {3, 1}}));
    EXPECT_EQ(parse_pairs("010-1,0x10-2").pairs, (pairs_t{{8, 1}, {16, 2}}));
    EXPECT_EQ(parse_pairs("1-1,2-1").result, 0);
    EXPECT_EQ(parse_pairs("1-1,2-1").message, "");
}

TEST_F(Selection, pair_lists_may_be_long) {
    std::string list;
    pairs_t pairs;
    for (int i = 1; i <= 1000; i++) {
        list += std::to_string(i) + "-" + std::to_string(2 * i) + ",";
        pairs.emplace_back(i, 2 * i);
    }
    EXPECT_EQ(parse_pairs(list).pairs, pairs);
}

TEST_F(Selection, a_list_of_commas_is_an_empty_list) {
    const pair_list_t parsed = parse_pairs(",,");
    EXPECT_EQ(parsed.result, 0);
    EXPECT_EQ(parsed.pairs, pairs_t{});
    EXPECT_EQ(parsed.message, "");
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

TEST_F(Selection, an_item_of_99_characters_is_taken_and_a_longer_one_refused) {
    const std::string longest = std::string(96, '0') + "7-5";
    ASSERT_EQ(longest.size(), 99U);
    EXPECT_EQ(parse_pairs("1-1," + longest).pairs, (pairs_t{{1, 1}, {7, 5}}));
    for (const std::string& item : {"0" + longest, std::string(5000, '1') + "-1"}) {
        const pair_list_t parsed = parse_pairs("1-1," + item + ",2-1");
        EXPECT_EQ(parsed.result, 2);
        EXPECT_EQ(parsed.pairs, (pairs_t{{1, 1}}));
        EXPECT_EQ(parsed.message, "Incorrect indication of intensity set: '" + item + "'\n");
    }
}

// ---- Tests of strings --------------------------------------------------------------------------

TEST_F(Selection, if_integer_wants_the_whole_string) {
    for (const char* text : {"0", "7", "-5", "+5", "  7", "\n7", "010", "0x1F", "0XaB", "-0x10",
                             "99999999999999999999"})
        EXPECT_EQ(if_integer(text), 1) << text;
    for (const char* text : {"", " ", "-", "7 ", "08", "0x", "0x-1", "0b1", "0B1", "0o7", "1.5",
                             "1e3", "a", "- 5", "+-5", "5-"})
        EXPECT_EQ(if_integer(text), 0) << text;
}

TEST_F(Selection, integers_keep_their_low_32_bits) {
    EXPECT_EQ(integer_value("17"), 17);
    EXPECT_EQ(integer_value("-0x11"), -17);
    EXPECT_EQ(integer_value("021"), 17);
    EXPECT_EQ(integer_value("4294967313"), 17);
    EXPECT_EQ(integer_value("-0xfffffffff"), 1);
}

TEST_F(Selection, integers_stop_at_the_limits_of_64_bits) {
    for (const char* text : {"9223372036854775807", "9223372036854775808", "0xfffffffffffffffff"})
        EXPECT_EQ(integer_value(text), -1) << text;
    for (const char* text :
         {"-9223372036854775808", "-9223372036854775809", "-99999999999999999999"})
        EXPECT_EQ(integer_value(text), 0) << text;
    EXPECT_EQ(integer_value("-9223372036854775807"), 1);
}

TEST_F(Selection, is_empty_takes_all_white_space_of_c) {
    for (const char* text : {"", "   ", "\t\n", " \t\n\v\f\r", "\r\n"})
        EXPECT_EQ(is_empty(text), 1) << text;
    for (const char* text : {" a", "a", "\n.\n", "\xA0", "\b", "   0"})
        EXPECT_EQ(is_empty(text), 0) << text;
}
