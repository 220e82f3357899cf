// SPDX-License-Identifier: MIT
//
// The input file: its lines, and the version in the first of them.
#include "plain/plain.h"

namespace plain {

lines_t::lines_t(const char* file_name) : name(file_name), in(std::fopen(file_name, "r")) {
    if (in == nullptr)
        fail(stderr, "Cannot open file '%s'\n", name.c_str());
}

// What can be opened but not read, a folder, shows it only here. A NUL ends the text.
std::string lines_t::next() {
    char line[400] = "";
    if (std::fgets(line, sizeof line, in) == nullptr && std::ferror(in))
        fail(stderr, "Cannot open file '%s'\n", name.c_str());
    is_at_end = std::feof(in) != 0;
    return line;
}

// Puts the three components of "v1.6.987" or "1.6-987" together. 0 if there are not three.
static int combined_version(const std::string& word) {
    std::vector<std::string> components(1);
    for (const char c : word) {
        if (c == '.' || c == '-')
            components.emplace_back();
        else if (c != 'v')
            components.back() += c;
    }
    int ver1, ver2, ver3;
    if (components.size() < 3 || !if_integer(components[0], &ver1) ||
        !if_integer(components[1], &ver2) || !if_integer(components[2], &ver3))
        return 0;
    // A nonsense version may overflow: only the low 32 bits count.
    const int combined = static_cast<int>(ver1 * 1000000LL + ver2 * 10000LL + ver3);
    std::printf("KOVA version: %d\n", combined);
    return combined;
}

int detect_int_table_version(const char* inpFname) {
    const std::string line = lines_t(inpFname).next();
    const std::vector<std::string> words = pieces_of(line, BLANKS);
    if (line.find(" KOVA ") == std::string::npos || words.size() < 2)
        return 0;
    for (std::size_t i = 0; i < words.size() && i < 4; i++) {
        if (words[i].size() > 49)
            return 0;
    }
    const int combined = combined_version(words[1]);
    if (combined == 0)
        return 0;
    return combined <= 1060986 ? 1 : 2;
}

}  // namespace plain
