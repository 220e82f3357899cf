// SPDX-License-Identifier: MIT
//
// The gnuplot that owns the window. Its commands come through a pipe, and it ends where the pipe
// does, so that it never outlives us. Among its messages are lines that we have asked for, and
// they say how far it is. Each is written at once, behind the end of a line, lest what a library
// says at the same time comes in between:
//
//     ready TERMINAL  it can draw, and on what
//     drawn N         it has done what it could, and N is the last picture that was drawn to its
//                     end
//     closed          somebody has closed the window
#include <fcntl.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "watch.h"

static pid_t Gnuplot;
static FILE* ToGnuplot;
static int FromGnuplot;
static int CommandsFile;
static int Asked;  // number of the picture that it was asked for last
static bool Busy = true, Closed = false;
static std::string Line;     // of its messages, the one that is coming in
static std::string Own;      // its first complaint since the last picture ...
static std::string Foreign;  // ... and the first that may be from a library for windows

// ---- Start -------------------------------------------------------------------------------------

[[noreturn]] static void show_in_child(int input, int messages) {
    dup2(input, STDIN_FILENO);
    dup2(messages, STDERR_FILENO);
    fcntl(CommandsFile, F_SETFD, 0);
    become_gnuplot(nullptr);
}

static void start_gnuplot() {
    int input[2], messages[2];
    // GCOV_EXCL_START no process to be had
    const bool has_pipes = pipe2(input, O_CLOEXEC) == 0 && pipe2(messages, O_CLOEXEC) == 0;
    Gnuplot = has_pipes ? fork() : -1;
    if (Gnuplot == 0)
        show_in_child(input[0], messages[1]);
    ToGnuplot = Gnuplot == -1 ? nullptr : fdopen(input[1], "w");
    if (ToGnuplot == nullptr)
        fail(stderr, "cannot start gnuplot: %s\n", std::strerror(errno));
    // GCOV_EXCL_STOP
    close(input[0]);
    close(messages[1]);
    FromGnuplot = messages[0];
    fcntl(FromGnuplot, F_SETFL, O_NONBLOCK);
}

// Nothing in the name can end the string, or a line of what gnuplot tells its window. A title has
// no room for folders.
static void write_title(const std::string& name) {
    std::string title = name.substr(name.rfind('/') + 1);
    for (char& c : title)
        c = std::iscntrl(c & 0xff) ? '?' : c;
    std::fprintf(ToGnuplot, "w_title = 'gravlex-watch: '.");
    write_text(ToGnuplot, title.c_str());
    std::fprintf(ToGnuplot, "\n");
}

// A redraw must not raise the window over the one that somebody works in.
window_t open_window(const char* name, FILE* commands) {
    CommandsFile = fileno(commands);
    start_gnuplot();
    if (UserTerminal) {
        std::fprintf(ToGnuplot, "set terminal %s\n", UserTerminalName);
    } else {
        write_title(name);
        std::fprintf(ToGnuplot,
                     "if (strstrt('|wxt|qt|x11|', '|'.GPVAL_TERM.'|')) "
                     "eval 'set terminal '.GPVAL_TERM.' noraise title w_title'\n");
    }
    // Built without windows, gnuplot does not know the command.
    std::fprintf(ToGnuplot,
                 "w_drawn = 0\n"
                 "if (strstrt(GPVAL_COMPILE_OPTIONS, '+USE_MOUSE')) "
                 "eval \"bind 'Close' 'print \\\"\\\\nclosed\\\"; exit gnuplot'\"\n"
                 "print \"\\nready \".GPVAL_TERM\n");
    std::fflush(ToGnuplot);  // a gnuplot that is gone will be noticed elsewhere
    return {FromGnuplot, fileno(ToGnuplot)};
}

void draw_picture(int number) {
    Asked = number;
    Busy = true;
    std::fprintf(ToGnuplot, "load '/dev/fd/%d'\nprint \"\\ndrawn \".w_drawn\n", CommandsFile);
    std::fflush(ToGnuplot);
}

bool window_is_busy() {
    return Busy;
}

// ---- Messages ----------------------------------------------------------------------------------

static void be_ready(const std::string& terminal) {
    if (!Own.empty())
        fail(stderr, "gnuplot says: %s\n", Own.c_str());
    if (terminal == "unknown")
        fail(stderr,
             "gnuplot has no windows: install gnuplot-x11 or gnuplot-qt, or use --term dumb\n");
    Busy = false;
}

// Complaints of libraries are none of ours as long as there is a picture.
static void be_drawn(int number) {
    const bool good = number == Asked;
    const std::string& complaint = Own.empty() && !good ? Foreign : Own;
    if (complaint.empty())
        forget_news();
    else if (is_news(complaint))
        complain("gnuplot says: %s\n", complaint.c_str());
    Busy = false;
    Own.clear();
    Foreign.clear();
}

// A complaint of gnuplot's own stands behind the number of the line that it is about.
static void keep_complaint(const std::string& line) {
    const std::size_t number = line.find("line ");
    const std::size_t end = line.find(": ", number);
    const bool is_own = end != std::string::npos;
    std::string& complaint = is_own ? Own : Foreign;
    if (complaint.empty())
        complaint = is_own ? line.substr(end + 2) : line;
}

static void take_line(std::string line) {
    line.erase(0, line.find_first_not_of('\a'));  // for a key without a meaning
    if (line.starts_with("ready "))
        be_ready(line.substr(6));
    else if (line.starts_with("drawn "))
        be_drawn(std::atoi(line.c_str() + 6));
    else if (line.starts_with("closed"))
        Closed = true;
    else
        keep_complaint(line);
    // Its terminal x11 or qt has no display. gnuplot goes on, but no longer reads all that is
    // sent.
    if (line.ends_with("X11 aborted.") || line.starts_with("qt.qpa.xcb: could not connect "))
        fail(stderr, "gnuplot says: %s\n", Foreign.c_str());
}

void take_messages() {
    char bytes[4096];
    ssize_t size;
    while ((size = read(FromGnuplot, bytes, sizeof bytes)) > 0) {
        for (const char* c = bytes; c < bytes + size; c++) {
            if (*c != '\n') {
                Line += *c;
                continue;
            }
            take_line(Line);
            Line.clear();
        }
    }
}

// ---- End ---------------------------------------------------------------------------------------

void end_with_gnuplot() {
    const int status = status_of_end(Gnuplot);
    take_messages();
    if (Closed)
        std::exit(EXIT_SUCCESS);
    blame_gnuplot(status, Own.empty() ? Foreign : Own);
    fail(stderr, "gnuplot has ended\n");
}
