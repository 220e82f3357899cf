// SPDX-License-Identifier: MIT
//
// What gnuplot says: what comes out is what went in, less whole complaints.
#include <algorithm>
#include <cstdlib>
#include <regex>
#include <vector>

#include "harness.h"
#include "run/run.h"

// A line with its newline, which the last one may lack.
using lines_t = std::vector<std::string>;

static lines_t split(const std::string& text) {
    lines_t lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
        lines.push_back(text.substr(start, end - start));
        start = end;
    }
    return lines;
}

// True if the line is there and looks so. A line that is longer than any complaint is none.
static bool looks(const lines_t& lines, std::size_t i, const std::regex& look) {
    if (i >= lines.size() || lines[i].size() > 1000)
        return false;
    const std::string line = lines[i].substr(0, lines[i].find('\n'));
    return std::regex_match(line, look);
}

// How many lines from here on are one complaint.
static std::size_t complaint_at(const lines_t& lines, std::size_t i) {
    static const std::regex empty(""), caret(" *\\^"), refused(" *line \\d+: invalid command");
    static const std::regex data(
        "gnuplot> (e|(-?(inf|nan|\\d+\\.\\d{6}) ){1,2}-?(inf|nan|\\d+\\.\\d{6}))");
    static const std::regex warning(
        " *line \\d+: warning: (iconv failed to convert degree sign|Reading from '-' inside a "
        "multiplot not supported; use a datablock instead)");
    static const std::regex unknown(
        "WARNING: Plotting with (an )?'unknown' terminal\\.|No output will be generated\\. "
        "Please select a terminal with 'set terminal'\\.");
    if (looks(lines, i, warning) || (StartTerminal != nullptr && looks(lines, i, unknown)))
        return 1;
    const bool begins = looks(lines, i, empty) && looks(lines, i + 1, data) &&
                        looks(lines, i + 2, caret) && looks(lines, i + 3, refused);
    if (begins && i + 4 == lines.size())
        return 4;
    return begins && looks(lines, i + 4, empty) ? 5 : 0;
}

static std::string without_complaints(const std::string& text) {
    const lines_t lines = split(text);
    std::string rest;
    for (std::size_t i = 0; i < lines.size();) {
        const std::size_t size = complaint_at(lines, i);
        if (size == 0)
            rest += lines[i];
        i += std::max<std::size_t>(size, 1);
    }
    return rest;
}

// The first byte says whether gnuplot was kept from choosing its terminal.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2)
        return 0;
    StartTerminal = data[0] % 2 == 0 ? "unknown" : nullptr;
    std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    FILE* from = fmemopen(text.data(), text.size(), "r");
    char* passed = nullptr;
    std::size_t length = 0;
    FILE* to = open_memstream(&passed, &length);
    require(pass_on_complaints(from, to), "the messages could not be read");
    std::fclose(from);
    std::fclose(to);
    const std::string got(passed, length);
    std::free(passed);
    require(got == without_complaints(text), "another rest");
    return 0;
}
