// SPDX-License-Identifier: MIT
//
// The version line, against a second version written plainly from the rules.
#include "harness.h"
#include "input/input.h"
#include "plain_text.h"

static constexpr std::size_t LONGEST_LINE = 399;
static constexpr std::size_t LONGEST_WORD = 49;

static std::string first_line(const std::string& file) {
    std::string line;
    for (const char c : file) {
        if (line.size() < LONGEST_LINE)
            line += c;
        if (c == '\n')
            break;
    }
    return line.substr(0, line.find('\0'));
}

static std::vector<std::string> words_of(const std::string& line) {
    std::vector<std::string> words;
    bool inside = false;
    for (const char c : line) {
        if (plain_is_blank(c)) {
            inside = false;
            continue;
        }
        if (!inside)
            words.emplace_back();
        inside = true;
        words.back() += c;
    }
    return words;
}

// The components between "." and "-", without any "v". What follows the third does not count.
static std::vector<std::string> components_of(const std::string& word) {
    std::vector<std::string> components(1);
    for (const char c : word) {
        if (c == '.' || c == '-')
            components.emplace_back();
        else if (c != 'v')
            components.back() += c;
    }
    components.resize(3);
    return components;
}

// Gives the number of the version, and what is said about it.
static int plain_version(const std::string& file, std::string* out) {
    const std::string line = first_line(file);
    if (line.find(" KOVA ") == std::string::npos)
        return 0;
    const std::vector<std::string> words = words_of(line);
    if (words.size() < 2)
        return 0;
    for (std::size_t i = 0; i < words.size() && i < 4; i++) {
        if (words[i].size() > LONGEST_WORD)
            return 0;
    }
    int numbers[3];
    const std::vector<std::string> components = components_of(words[1]);
    for (std::size_t i = 0; i < 3; i++) {
        if (!plain_integer(components[i], &numbers[i]))
            return 0;
    }
    const std::int64_t sum =
        numbers[0] * std::int64_t{1000000} + numbers[1] * std::int64_t{10000} + numbers[2];
    const int version = static_cast<int>(sum);  // its low 32 bits
    *out = "KOVA version: " + std::to_string(version) + "\n";
    return version;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string file(reinterpret_cast<const char*>(data), size);
    std::string out;
    const int version = plain_version(file, &out);
    const int expected = version == 0 ? 0 : version <= 1060986 ? 1 : 2;
    const char* name = input_file(data, size);
    int got = -1;
    const ended_t& ended = run([&] { got = detect_int_table_version(name); });
    require(ended.status == RUN_RETURNED, "the run ended");
    require_same(ended.out, out, "another message");
    require_same(ended.err, "", "an error");
    require(got == expected, "another layout");
    return 0;
}
