// SPDX-License-Identifier: MIT
//
// The reference reads the settings, option by option, and the program gets what came of it.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "common/start.h"
#include "files.h"
#include "harness.h"

static constexpr int MAX_FILL = 200000;

static const std::vector<std::string> Flags = {
    "--grid",        "--legend",     "--no-xtics",     "--ytics",         "--x2tics",
    "--y2tics",      "--bglp1",      "--no-multiplot", "--no-autoshifts", "--smserrbars",
    "--dsmserrbars", "--smserrfill", "--dsmserrfill",  "--dsmslerrfill",  "--pipe",
    "--png",         "--eps",        "--svg"};

static const std::vector<std::string> WordsWithArgument = {
    "--ratio",    "--shiftmult", "--lw",       "--elw",       "--psf",       "--smsef", "--efa",
    "--xmin",     "--xmax",      "--imgw",     "--imgl",      "--table",     "--term",  "--dread",
    "--dcombine", "--cread",     "--ccombine", "--style_sms", "--ptype_sms", "--fill"};

static bool has(const std::vector<std::string>& words, const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// The words of the line, without any NUL, and an empty one that the last option may take.
static std::vector<std::string> words_of(const std::string& line) {
    std::vector<std::string> words(1);
    for (const char c : line) {
        if (c == ' ')
            words.emplace_back();
        else if (c != '\0')
            words.back() += c;
    }
    words.emplace_back();
    return words;
}

// A wrong option ends nothing here.
static void handle_option(std::string option) {
    char program[] = "gravlex", name[] = "file";
    char* argv[] = {program, option.data(), name, nullptr};
    run_plain([&] { plain::parse_command_line(3, argv); });
}

static void release(char** text) {
    std::free(*text);
    *text = nullptr;
}

file_settings_t apply_settings(const std::string& line) {
    file_settings_t file = {false, 0};
    const std::vector<std::string> words = words_of(line);
    for (std::size_t i = 0; i + 1 < words.size(); i++) {
        const std::string &word = words[i], &argument = words[i + 1];
        if (word == "--pipe")
            file.through_pipe = true;
        else if (word == "--fill")
            file.fill = std::strtoul(argument.c_str(), nullptr, 10) % MAX_FILL;
        else if (word == "--png" || word == "--eps" || word == "--svg")
            handle_option(word + "=picture.png");
        else if (has(WordsWithArgument, word))
            handle_option(word + "=" + argument);
        else if (has(Flags, word))
            handle_option(word);
    }
    // The program would not print them: it has not read them itself.
    plain::options_t& o = plain::Options;
    for (char** list : {&o.dread, &o.dcombine, &o.data, &o.cread, &o.ccombine, &o.curves})
        release(list);
    share_settings();
    return file;
}

void release_settings() {
    release(&plain::Options.ImgFname);
    release(&plain::Options.UserTerminalName);
}
