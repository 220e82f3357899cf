// SPDX-License-Identifier: MIT
#include <cstring>

#include "input/input.h"

// Room for a word of the version line, and for a component of the version.
static constexpr std::size_t WORD_SIZE = 50;
static constexpr char BLANKS[] = " \t\n\v\f\r";

// The last version that wrote layout 1: 1.6.986.
static constexpr int LAST_VER1 = 1060986;

// Takes the second of the line's first four words, nothing if there is none. False if one of the
// four is too long.
static bool version_word(const char* line, char (&word)[WORD_SIZE]) {
    const char* start = line;
    for (int nrd = 0; nrd < 4; nrd++) {
        start += std::strspn(start, BLANKS);
        const std::size_t length = std::strcspn(start, BLANKS);
        if (length >= sizeof word)
            return false;
        if (nrd == 1) {
            std::memcpy(word, start, length);
            word[length] = '\0';
        }
        start += length;
    }
    return true;
}

// Splits "v1.6.987" or "1.6-987" at its first two separators; a third ends the last component.
static void split_version(const char* word, char (&component)[3][WORD_SIZE]) {
    int counter = 0;
    int length = 0;
    for (const char* c = word; *c != '\0' && counter < 3; c++) {
        if (*c == 'v')
            continue;
        if (*c == '.' || *c == '-') {
            counter++;
            length = 0;
        } else {
            component[counter][length++] = *c;
        }
    }
}

// The version of a first line as one number, 0 if there is none.
static int combined_version(const char* line) {
    char word[WORD_SIZE] = "";
    if (std::strstr(line, " KOVA ") == nullptr || !version_word(line, word))
        return 0;
    char component[3][WORD_SIZE] = {};
    split_version(word, component);
    if (!if_integer(component[0]) || !if_integer(component[1]) || !if_integer(component[2]))
        return 0;
    const unsigned ver1 = static_cast<unsigned>(integer_value(component[0]));
    const unsigned ver2 = static_cast<unsigned>(integer_value(component[1]));
    const unsigned ver3 = static_cast<unsigned>(integer_value(component[2]));
    const int combined_ver = static_cast<int>(ver1 * 1000000 + ver2 * 10000 + ver3);
    say("KOVA version: %d\n", combined_ver);
    return combined_ver;
}

int detect_int_table_version(const char* inpFname) {
    char inpstr[LINE_SIZE];
    open_input(inpFname);
    read_line(inpstr);
    leave_first_line();
    const int combined_ver = combined_version(inpstr);
    if (combined_ver == 0)
        return 0;
    return combined_ver <= LAST_VER1 ? 1 : 2;
}
