// SPDX-License-Identifier: MIT
//
// Command lines for the tests of the options.
#pragma once

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "run/run.h"
#include "state.h"

inline std::vector<std::string> operator+(std::vector<std::string> args, const char* last) {
    args.emplace_back(last);
    return args;
}

// Parses the arguments in a process of its own. If that returns, the name of the input file is
// printed and the check is made.
inline ended_t parsed(
    const std::vector<std::string>& args, const act_t& check = [] {}) {
    return in_child([&] {
        std::vector<std::string> words = {"gravlex"};
        words.insert(words.end(), args.begin(), args.end());
        std::vector<char*> argv;
        for (std::string& word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        std::printf("%s\n", parse_command_line(static_cast<int>(words.size()), argv.data()));
        check();
    });
}

// True if the pair list is exactly this.
inline bool is_list(int Npar, const int* Num1, const int* Num2,
                    const std::vector<std::pair<int, int>>& pairs) {
    if (Npar != static_cast<int>(pairs.size()))
        return false;
    for (std::size_t i = 0; i < pairs.size(); i++) {
        if (Num1[i] != pairs[i].first || Num2[i] != pairs[i].second)
            return false;
    }
    return true;
}
