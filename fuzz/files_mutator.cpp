// SPDX-License-Identifier: MIT
//
// Inputs for the target `files`: grown from the grammar of both layouts, then damaged where it
// hurts: lines, numbers, labels and rules rather than bytes.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "files.h"

// ---- Chance ------------------------------------------------------------------------------------

static std::size_t below(random_t* random, std::size_t limit) {
    std::uint64_t x = random->state += 0x9e3779b97f4a7c15;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9;
    x = (x ^ (x >> 27)) * 0x94d049bb133111eb;
    return static_cast<std::size_t>((x ^ (x >> 31)) % limit);
}

static bool one_in(random_t* random, std::size_t count) {
    return below(random, count) == 0;
}

template <class list_t>
static std::string any_of(random_t* random, const list_t& list) {
    return list[below(random, std::size(list))];
}

// ---- Words -------------------------------------------------------------------------------------

// clang-format off
static const char* const Labels[] = {
    "   Total Int.  |", "    Red. Int.  |", "    Lvl. Int.  |", "   Background  |",
    "   Exp. sM(s)  |", "   Thr. sM(s)  |", "  Delta sM(s)  |", "   Sec. Func.  |",
    "   At. Scat.   |", "       S      |", "    Red. Bgl   |", "    Lvl. Bgl   |",
    "  sM(s) St.dev |", "  Int. St.dev  |", "      R      |", " Thr. Tot. Int |",
    "   Delta Int.  |",
};

static const char* const Kinds[] = {
    "sms", "tsms", "int", "rint", "lint", "bgl", "rbgl", "lbgl", "sec", "iat", "dsms", "smss",
    "ints", "tint", "dint", "all", "!sms", "!int", "sms,tsms,dsms,smss", "int,bgl,rint,rbgl",
};

// Numbers that are none, or are read in a way of their own, or lead to others that are none.
static const char* const OddNumbers[] = {
    "nan", "-nan", "inf", "-inf", "nan(1)", "infinit", "0x1p-1070", "0x1.8p1", "1e308", "-1e308",
    "1e-400", "1e400", "1e99", "-1e99", "4.9e-324", "0.0000005", "-0", "0", "1e", "1.5-2.5",
    "1e 2", "+1", ".5", "5.", "0x", "-", "1,5", "1_", "e", "123456789012345678901234567890",
    "0.1234567890123456789012345678901234567890", "2147483648", "1e22", "",
};

static const char* const OddTexts[] = {
    "GED curves.", "Curve: ", "Set: ", "Set: 1-1 ", "Scale=", "Scale=1 ", "Curve: (1-1) =1 ",
    "===================", "-------------------", "----------------", "---------------", "\n",
    "\n\n", " ", "\t", "\r", "(", ")", "=", "()", ")(", "1-1", "010-0x1", "-", "e\n", "quit\n",
    "!touch x\n", "`touch x`", "system('x')\n", "set output \"x\"\n", "load 'x'\n", "\"", "'",
    "\\", "%s%n", "$(x)", "\xc5", "\x1b[0m", " KOVA ", "KOVA 1.6.987 ", "v2.0-0",
};
// clang-format on

static std::string odd_number(random_t* random) {
    return any_of(random, OddNumbers);
}

static std::string number(random_t* random) {
    if (one_in(random, 100))
        return odd_number(random);
    const double value = static_cast<double>(below(random, 40001)) / 100.0 - 200.0;
    char text[50];
    std::snprintf(text, sizeof text, one_in(random, 3) ? "%e" : "%.4g", value);
    return text;
}

static std::string pair(random_t* random) {
    return std::to_string(1 + below(random, 3)) + "-" + std::to_string(1 + below(random, 2));
}

// ---- Growth ------------------------------------------------------------------------------------

static std::string argument_of(random_t* random, const std::string& word) {
    if (word == "--dread" || word == "--dcombine")
        return any_of(random, Kinds) + (one_in(random, 2) ? "," + any_of(random, Kinds) : "");
    if (word == "--cread" || word == "--ccombine")
        return pair(random) + (one_in(random, 2) ? "," + pair(random) : "");
    if (word == "--table")
        return std::to_string(1 + below(random, 3));
    if (word == "--fill")  // a block, more or less
        return std::to_string(64000 + below(random, 2000));
    if (word == "--style_sms")
        return std::to_string(below(random, 6));
    return number(random);
}

static std::string one_setting(random_t* random) {
    if (one_in(random, 2))
        return any_of(random, settings_words(false));
    const std::string word = any_of(random, settings_words(true));
    return word + " " + argument_of(random, word);
}

// Different labels in any order, the abscissa mostly first.
static std::vector<std::string> some_labels(random_t* random) {
    std::vector<std::string> labels(std::begin(Labels), std::end(Labels));
    for (std::size_t i = 0; i + 1 < labels.size(); i++)
        std::swap(labels[i], labels[i + below(random, labels.size() - i)]);
    labels.resize(2 + below(random, one_in(random, 8) ? 16 : 4));
    std::erase(labels, Labels[9]);
    labels.insert(labels.begin() + (one_in(random, 16) ? 1 : 0), Labels[9]);
    return labels;
}

static std::string joined(const std::vector<std::string>& texts) {
    std::string result;
    for (const std::string& text : texts)
        result += text;
    return result + "\n";
}

// Abscissae start anew with every set, and rise; sets are likely to have the same.
static std::string some_rows(random_t* random, std::size_t columns) {
    std::string rows;
    const std::size_t count = one_in(random, 20) ? 0 : 1 + below(random, 8);
    const double step = one_in(random, 2) ? 0.25 : 0.3;
    for (std::size_t k = 0; k < count; k++) {
        rows += std::to_string(2.0 + step * static_cast<double>(k));
        for (std::size_t j = 1; j < columns; j++)
            rows += "  " + number(random);
        rows += "\n";
    }
    return rows;
}

static std::string table_ver1(random_t* random) {
    const std::vector<std::string> labels = some_labels(random);
    const std::string rule(20, '-'), end_of_set(20, '=');
    std::string table = " Table of the GED curves.\n\n" + joined(labels) + rule + "\n";
    for (std::size_t sets = 1 + below(random, 4); sets > 0; sets--) {
        table += " Curve: (" + pair(random) + ") Scale factor=" + number(random) + " \n" + rule;
        table += "\n" + some_rows(random, labels.size()) + (sets > 1 ? end_of_set : rule) + "\n";
    }
    return table;
}

static std::string table_ver2(random_t* random) {
    std::vector<std::string> labels = some_labels(random);
    const std::string rule(20, '-');
    std::string table = " Table of the GED curves.\n\n";
    for (std::size_t sets = 1 + below(random, 4); sets > 0; sets--) {
        if (one_in(random, 5))
            labels = some_labels(random);
        table += " Set: " + pair(random) + " \n Scale=" + number(random) + " \n" + rule + "\n";
        table += joined(labels) + rule + "\n" + some_rows(random, labels.size()) + rule + "\n";
    }
    return table + "\n";
}

std::string grow_input(random_t* random) {
    std::string input;
    for (std::size_t settings = below(random, 6); settings > 0; settings--)
        input += one_setting(random) + " ";
    const bool is_ver2 = one_in(random, 2);
    input += is_ver2 ? "\nProgram 1.7.55 of KOVA electron diffraction\n"
                     : "\nProgram 1.6.900 of KOVA electron diffraction\n";
    for (std::size_t tables = one_in(random, 4) ? 2 : 1; tables > 0; tables--)
        input += is_ver2 ? table_ver2(random) : table_ver1(random);
    return input + (one_in(random, 2) ? "Normal end.\n" : "");
}

// ---- Damage ------------------------------------------------------------------------------------

static std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        lines.push_back(text.substr(at, end - at));
        at = end;
    }
    return lines;
}

// Another number, or nothing, in place of one of the words of the line.
static void replace_word(random_t* random, std::string* line) {
    const std::size_t at = line->find_first_not_of(" \n", below(random, line->size()));
    if (at == std::string::npos)
        return;
    const std::size_t end = std::min(line->find_first_of(" \n-)", at), line->size());
    line->replace(at, end - at, one_in(random, 4) ? number(random) : odd_number(random));
}

static void damage_line(random_t* random, std::string* line) {
    switch (below(random, 8)) {
        case 0:
            line->insert(below(random, line->size()), any_of(random, OddTexts));
            break;
        case 1:
            line->insert(below(random, line->size()), any_of(random, Labels));
            break;
        case 2:
            (*line)[below(random, line->size())] = static_cast<char>(below(random, 256));
            break;
        case 3:
            line->erase(below(random, line->size()), 1 + below(random, 8));
            break;
        case 4:  // so long that it is read in pieces
            line->insert(below(random, line->size()), 380 + below(random, 60),
                         one_in(random, 2) ? ' ' : '1');
            break;
        default:
            replace_word(random, line);
    }
}

static void damage_lines(random_t* random, std::vector<std::string>* lines) {
    const std::size_t at = below(random, lines->size());
    const std::size_t other = below(random, lines->size());
    const auto place = lines->begin() + static_cast<std::ptrdiff_t>(at);
    switch (below(random, 10)) {
        case 0:
            lines->erase(place);
            break;
        case 1: {
            const std::string copy = (*lines)[other];
            lines->insert(place, copy);
            break;
        }
        case 2:
            std::swap((*lines)[at], (*lines)[other]);
            break;
        case 3:
            lines->insert(place, any_of(random, OddTexts));
            break;
        case 4:
            if (one_in(random, 4))
                lines->resize(at);
            break;
        default:
            if (!(*lines)[at].empty())
                damage_line(random, &(*lines)[at]);
    }
}

void damage_input(random_t* random, std::string* input) {
    if (one_in(random, 4)) {  // mostly the file is damaged, not the settings
        input->insert(0, one_setting(random) + " ");
        return;
    }
    std::vector<std::string> lines = lines_of(*input);
    for (std::size_t count = 1 + below(random, 4); count > 0 && !lines.empty(); count--)
        damage_lines(random, &lines);
    input->clear();
    for (const std::string& line : lines)
        *input += line;
}
