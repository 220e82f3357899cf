// SPDX-License-Identifier: MIT
//
// The life of a gnuplot process. A run has at most one at a time.
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
// to say. So where such complaints are to be expected, its standard error is collected while it
// runs and passed on without them once it has ended.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "run/run.h"

FILE* f = nullptr;

// The collected standard error of the running gnuplot; null when it has ours.
static FILE* Complaints = nullptr;

// The terminal that the running gnuplot was started with; null when it had the choice.
static const char* StartTerminal = nullptr;

// ---- Start -------------------------------------------------------------------------------------

static bool is_set(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

// gnuplot with a terminal for windows gives up at once where there is no display. It need not open
// one on the way to an image, nor where the user has named a terminal: a page of panels begins
// before the command that sets it. Null if gnuplot is to choose.
static const char* start_terminal() {
    if (is_set("DISPLAY") || is_set("WAYLAND_DISPLAY") || is_set("GNUTERM"))
        return nullptr;
    if (UserTerminal)
        return *UserTerminalName != '\0' ? UserTerminalName : nullptr;
    return image_is_written() ? "unknown" : nullptr;
}

static FILE* start_process() {
    return popen("gnuplot -persist", "w");
}

// Starts the process with that terminal in its environment; ours is as before afterwards.
static FILE* start_with_terminal(FILE* (*start)()) {
    const bool was_empty = std::getenv("GNUTERM") != nullptr;
    if (setenv("GNUTERM", StartTerminal, 1) != 0)
        fail(stderr, "Cannot allocate memory\n");
    FILE* pipe = start();
    if (was_empty)
        setenv("GNUTERM", "", 1);
    else
        unsetenv("GNUTERM");
    return pipe;
}

// Makes the file our standard error. An interruption passes: what we have to say must not stay
// among the collected complaints.
static void set_standard_error(int file) {
    while (dup2(file, STDERR_FILENO) == -1 && (errno == EINTR || errno == EBUSY))
        continue;
}

// Starts the process with a file for its standard error. Where there is none to be had, it has
// ours after all.
static FILE* start_collected() {
    Complaints = std::tmpfile();
    if (Complaints == nullptr)
        return start_process();
    const int file = fileno(Complaints);
    const int own = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (own == -1 || fcntl(file, F_SETFD, FD_CLOEXEC) == -1) {
        std::fclose(Complaints);
        Complaints = nullptr;
        return start_process();
    }
    set_standard_error(file);
    FILE* pipe = start_process();
    const int error = errno;
    set_standard_error(own);
    close(own);
    errno = error;
    return pipe;
}

// A file that grows to the limit on the size of files ends the gnuplot that writes to it, in the
// middle of its image.
static bool files_are_limited() {
    struct rlimit limit = {RLIM_INFINITY, RLIM_INFINITY};
    getrlimit(RLIMIT_FSIZE, &limit);
    return limit.rlim_cur != RLIM_INFINITY;
}

void gnuplot_start() {
    flush_output();  // gnuplot may write to the same standard output
    const bool collected = (image_is_written() || page_has_panels()) && !files_are_limited();
    FILE* (*start)() = collected ? start_collected : start_process;
    StartTerminal = start_terminal();
    f = StartTerminal != nullptr ? start_with_terminal(start) : start();
    if (f == nullptr)
        fail(stdout, "Cannot connect to gnuplot pipe: %s\n", std::strerror(errno));
}

// ---- Image -------------------------------------------------------------------------------------

static void set_image_terminal() {
    switch (MakeImage) {
        case IMG_EPS:
            std::fprintf(f, "set terminal postscript eps enhanced color solid clip\n");
            break;
        case IMG_SVG:
            std::fprintf(f, "set terminal svg size %d,%d dynamic enhanced\n", wx, wy);
            break;
        default:
            std::fprintf(f, "set term pngcairo size %d,%d\n", wx, wy);
    }
}

void gnuplot_image_commands(int number) {
    set_image_terminal();
    if (number != 0)
        std::fprintf(f, "set output \"%d_%s\"\n", number, ImgFname);
    else
        std::fprintf(f, "set output \"%s\"\n", ImgFname);
    std::fprintf(f, "replot\n");
}

// ---- Complaints --------------------------------------------------------------------------------

static constexpr int BLOCK_LINES = 5;

// A line of the collected text, or a piece of one that is longer than any line of a block.
struct text_line_t {
    char text[1024];  // NUL-terminated, without its newline
    std::size_t length;
    bool is_piece;     // not the beginning of its line
    bool has_newline;  // which the last line may lack
};

// Steps over one number as "%f" writes it. Null if there is none.
static const char* after_number(const char* text) {
    text += *text == '-';
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

// Steps over the beginning of a text. Null if it begins otherwise.
static const char* after(const char* beginning, const char* text) {
    const std::size_t length = std::strlen(beginning);
    return std::strncmp(text, beginning, length) == 0 ? text + length : nullptr;
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

[[noreturn]] static void fail_to_read() {
    fail(stderr, "Cannot read the messages of gnuplot: %s\n", std::strerror(errno));
}

// Reads the line after the one read last. False at the end of the text.
static bool next_line(text_line_t* line, bool is_piece) {
    std::size_t length = 0;
    int c = 0;
    while (length < sizeof line->text - 1 && c != '\n' && (c = std::getc(Complaints)) != EOF) {
        if (c != '\n')
            line->text[length++] = static_cast<char>(c);
    }
    line->text[length] = '\0';
    line->length = length;
    line->is_piece = is_piece;
    line->has_newline = c == '\n';
    if (std::ferror(Complaints))
        fail_to_read();
    return length > 0 || line->has_newline;
}

static void pass_on(const text_line_t& line) {
    std::fwrite(line.text, 1, line.length, stderr);
    if (line.has_newline)
        std::fputc('\n', stderr);
}

// True if nothing but the text makes up the line: no NUL byte hides a part of it.
static bool is_whole(const text_line_t& line) {
    return !line.is_piece && std::strlen(line.text) == line.length;
}

// Passes on what is left of the collected text. Lines wait until it is clear whether they are a
// block of a complaint. One that is cut short before its message is no complaint, as far as it
// goes; one that lacks only its closing line is.
static void pass_on_collected() {
    static text_line_t waiting[BLOCK_LINES];
    int count = 0;
    bool is_piece = false;
    while (next_line(&waiting[count], is_piece)) {
        const text_line_t& line = waiting[count];
        is_piece = !line.has_newline;
        if (is_whole(line) && fits_block(waiting, count)) {
            count = (count + 1) % BLOCK_LINES;
            continue;
        }
        for (int i = 0; i < count; i++)
            pass_on(waiting[i]);
        if (is_whole(line) && line.length == 0) {
            count = 1;  // waiting[0] is such an empty line already
        } else {
            if (!is_whole(line) || !is_warning(line.text))
                pass_on(line);
            count = 0;
        }
    }
    const bool is_complaint = count == BLOCK_LINES - 1;
    for (int i = 0; i < count && !is_complaint; i++)
        pass_on(waiting[i]);
}

// ---- End ---------------------------------------------------------------------------------------

void gnuplot_close() {
    flush_output();
    // What gnuplot did not take before it went counts as well, whatever its own status.
    const bool is_lost = std::fflush(f) != 0 || std::ferror(f) != 0;
    const int status = pclose(f);
    f = nullptr;
    if (Complaints != nullptr) {
        if (std::fseek(Complaints, 0, SEEK_SET) != 0)
            fail_to_read();
        pass_on_collected();
        std::fclose(Complaints);
        Complaints = nullptr;
    }
    if (is_lost || status != 0)
        complain("Unable to close GnuPlot pipe.\n");
}
