// SPDX-License-Identifier: MIT
#include "plain/plain.h"

namespace plain {

// The longest list of kinds, item of a pair list and half of an item that is taken.
static constexpr std::size_t LONGEST = 99;

// ---- Kind lists --------------------------------------------------------------------------------

// 0 for a word that is none.
static unsigned flag_of(const std::string& word) {
    static const struct {
        const char* word;
        unsigned flag;
    } words[] = {{"sms", P_GINT_SMS},   {"tsms", P_GINT_TSMS}, {"int", P_GINT_INT},
                 {"rint", P_GINT_RINT}, {"lint", P_GINT_LINT}, {"bgl", P_GINT_BGL},
                 {"rbgl", P_GINT_RBGL}, {"lbgl", P_GINT_LBGL}, {"sec", P_GINT_SEC},
                 {"iat", P_GINT_IAT},   {"dsms", P_GINT_DSMS}, {"smss", P_GINT_SMSS},
                 {"ints", P_GINT_INTS}, {"tint", P_GINT_TINT}, {"dint", P_GINT_DINT}};
    for (const auto& known : words) {
        if (word == known.word)
            return known.flag;
    }
    return 0;
}

static int unknown_word(const std::string& word) {
    std::printf("Unknown data type: %s\n", word.c_str());
    return 1;
}

int parse_data_string(const char* str, unsigned* Data) {
    const std::string list = str;
    if (list.size() > LONGEST)
        return unknown_word(list);
    for (const std::string& word : pieces_of(list, ",")) {
        if (word == "all")
            *Data = 0x19eff;
        else if (flag_of(word) != 0)
            *Data |= flag_of(word);
        else if (word[0] == '!' && flag_of(word.substr(1)) != 0)
            *Data &= ~flag_of(word.substr(1));
        else
            return unknown_word(word);
    }
    return 0;
}

// ---- Pair lists --------------------------------------------------------------------------------

static int bad_item(const std::string& item) {
    std::printf("Incorrect indication of intensity set: '%s'\n", item.c_str());
    return 1;
}

int parse_int_curve(const std::string& str, pair_t* pair) {
    const std::size_t dash = str.find('-');
    if (dash == std::string::npos)
        return bad_item(str);
    const std::string first = str.substr(0, dash), second = str.substr(dash + 1);
    pair_t read;
    if (first.size() > LONGEST || second.size() > LONGEST || !if_integer(first, &read.N) ||
        !if_integer(second, &read.M))
        return bad_item(str);
    *pair = read;
    return 0;
}

int parse_int_curve_number(const char* inpstr, std::vector<pair_t>* pairs) {
    const std::string list = inpstr;
    if (list.empty())
        return 1;
    pairs->clear();
    for (const std::string& item : pieces_of(list, ",")) {
        pair_t pair;
        if (item.size() > LONGEST) {
            bad_item(item);
            return 2;
        }
        if (parse_int_curve(item, &pair) != 0)
            return 2;
        pairs->push_back(pair);
    }
    return 0;
}

}  // namespace plain
