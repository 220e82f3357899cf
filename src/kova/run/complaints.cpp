// SPDX-License-Identifier: MIT
//
// What gnuplot says, less what it was expected to say.
//
// gnuplot keeps inline data since version 4.4, so the second copy that follows "replot" for older
// versions is taken for commands. For every row of it, and for every "e", gnuplot complains:
//
//     (empty line)
//     gnuplot> 1.000000 2.000000
//              ^
//              line 8: invalid command
//     (empty line)
//
// On a page of several panels gnuplot 6 warns about every row that it reads, and draws it; and no
// version changes its terminal there, which each panel asks for, whether or not it is the one that
// draws already. In the C locale, as in a container, gnuplot warns about the encoding that the
// Angstrom sign needs. Nobody wants to see these, but everybody wants to see what else gnuplot has
// to say.
#include <cstdio>
#include <cstring>

#include "run/run.h"

static constexpr int BLOCK_LINES = 5;

namespace {
// A line of the collected text, or a piece of one that is longer than any line of a block.
struct text_line_t {
    char text[1024];  // NUL-terminated, without its newline
    std::size_t length;
    bool is_piece;     // not the beginning of its line
    bool has_newline;  // which the last line may lack
};
}  // namespace

// Steps over the beginning of a text. Null if it begins otherwise.
static const char* after(const char* beginning, const char* text) {
    const std::size_t length = std::strlen(beginning);
    return std::strncmp(text, beginning, length) == 0 ? text + length : nullptr;
}

// Steps over one number as "%f" writes it. Null if there is none.
static const char* after_number(const char* text) {
    if (*text == '-')
        text++;
    if (std::strncmp(text, "inf", 3) == 0 || std::strncmp(text, "nan", 3) == 0)
        return text + 3;
    const std::size_t whole = std::strspn(text, "0123456789");
    if (whole == 0 || text[whole] != '.')
        return nullptr;
    text += whole + 1;
    return std::strspn(text, "0123456789") == 6 ? text + 6 : nullptr;
}

// True for a row of two or three numbers, and for the end of a block of them.
static bool is_data_line(const char* text) {
    if (std::strcmp(text, "e") == 0)
        return true;
    for (int numbers = 1; (text = after_number(text)) != nullptr; numbers++) {
        if (*text == '\0')
            return numbers == 2 || numbers == 3;
        if (*text++ != ' ')
            return false;
    }
    return false;
}

// Steps over the place that gnuplot names below its prompt, "         line 8: ". Null if there is
// none.
static const char* after_place(const char* text) {
    text += std::strspn(text, " ");
    if (std::strncmp(text, "line ", 5) != 0)
        return nullptr;
    text += 5;
    const std::size_t digits = std::strspn(text, "0123456789");
    text += digits;
    return digits > 0 && std::strncmp(text, ": ", 2) == 0 ? text + 2 : nullptr;
}

static bool says(const char* text, const char* message) {
    return text != nullptr && std::strcmp(text, message) == 0;
}

// True if the line asks for the terminal of the user's that gnuplot was started with.
static bool asks_for_start_terminal(const char* line) {
    return UserTerminal && StartTerminal != nullptr &&
           says(after("multiplot> set terminal ", line), StartTerminal);
}

// What gnuplot says below a line of ours that it shows behind its prompt; null for all but those
// that it was expected to refuse.
static const char* refusal(const char* line) {
    const char* command = after("gnuplot> ", line);
    if (command != nullptr && is_data_line(command))
        return "invalid command";
    if (asks_for_start_terminal(line))
        return "You can't change the terminal in multiplot mode";
    return nullptr;
}

// True if the last of the lines can stand in its place, from 0, in the block of a complaint.
static bool fits_block(const text_line_t* block, int rank) {
    const char* text = block[rank].text;
    switch (rank) {
        case 1:
            return refusal(text) != nullptr;
        case 2:
            return says(text + std::strspn(text, " "), "^");
        case 3:
            return says(after_place(text), refusal(block[1].text));
        default:
            return *text == '\0';
    }
}

static bool is_warning(const char* text) {
    if (StartTerminal != nullptr && !UserTerminal &&
        (says(text, "WARNING: Plotting with an 'unknown' terminal.") ||
         says(text, "WARNING: Plotting with 'unknown' terminal.") ||
         says(text, "No output will be generated. Please select a terminal with 'set terminal'.")))
        return true;
    const char* message = after_place(text);
    return says(message, "warning: iconv failed to convert degree sign") ||
           says(message,
                "warning: Reading from '-' inside a multiplot not supported; "
                "use a datablock instead");
}

// Reads the line after the one read last. False at the end of the text.
static bool next_line(FILE* from, text_line_t* line, bool is_piece) {
    std::size_t length = 0;
    int c = 0;
    while (length < sizeof line->text - 1 && c != '\n' && (c = std::getc(from)) != EOF) {
        if (c != '\n')
            line->text[length++] = static_cast<char>(c);
    }
    line->text[length] = '\0';
    line->length = length;
    line->is_piece = is_piece;
    line->has_newline = c == '\n';
    return length > 0 || line->has_newline;
}

static void pass_on(const text_line_t& line, FILE* to) {
    std::fwrite(line.text, 1, line.length, to);
    if (line.has_newline)
        std::fputc('\n', to);
}

// True if nothing but the text makes up the line: no NUL byte hides a part of it.
static bool is_whole(const text_line_t& line) {
    return !line.is_piece && std::strlen(line.text) == line.length;
}

// Lines wait until it is clear whether they are a block of a complaint. One that is cut short
// before its message is no complaint, as far as it goes; one that lacks only its closing line is.
bool pass_on_complaints(FILE* from, FILE* to) {
    static text_line_t waiting[BLOCK_LINES];
    int count = 0;
    bool is_piece = false;
    while (next_line(from, &waiting[count], is_piece)) {
        const text_line_t& line = waiting[count];
        is_piece = !line.has_newline;
        if (is_whole(line) && fits_block(waiting, count)) {
            count = (count + 1) % BLOCK_LINES;
            continue;
        }
        for (int i = 0; i < count; i++)
            pass_on(waiting[i], to);
        if (is_whole(line) && line.length == 0) {
            count = 1;  // waiting[0] is such an empty line already
        } else {
            if (!is_whole(line) || !is_warning(line.text))
                pass_on(line, to);
            count = 0;
        }
    }
    const bool is_complaint = count == BLOCK_LINES - 1;
    for (int i = 0; i < count && !is_complaint; i++)
        pass_on(waiting[i], to);
    return !std::ferror(from);
}
