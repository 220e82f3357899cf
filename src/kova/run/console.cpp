// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include "run/run.h"

// The error of the first write to standard output that failed, 0 for none. A reader that has
// seen enough (EPIPE) is no error: `gravlex ... | head` still draws its picture.
static int OutputError = 0;

static void note_output(bool failed) {
    if (failed && OutputError == 0)
        OutputError = errno;
}

void flush_output() {
    note_output(std::fflush(stdout) != 0);
}

// GCOV_EXCL_START an output that failed while popt wrote to it: faults/machine
// True if standard output is a pipe that nobody reads any more.
static bool is_unread() {
    struct pollfd output = {STDOUT_FILENO, POLLOUT, 0};
    poll(&output, 1, 0);
    return (output.revents & POLLERR) != 0;
}
// GCOV_EXCL_STOP

static void close_output() {
    flush_output();
    // GCOV_EXCL_START popt prints the help, and keeps to itself why it could not: faults/machine
    if (OutputError == 0 && std::ferror(stdout) && !is_unread())
        OutputError = EIO;
    // GCOV_EXCL_STOP
    if (OutputError == 0 || OutputError == EPIPE)
        return;
    complain("Cannot write to standard output: %s\n", std::strerror(OutputError));
    std::fflush(nullptr);  // gnuplot still gets what is on its way
    _exit(EXIT_FAILURE);
}

// A descriptor below 3 that is closed at the start would be given to the input file or to the
// pipe to gnuplot, and our own text would end there.
static void open_closed_streams() {
    for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; fd++) {
        if (fcntl(fd, F_GETFD) != -1)
            continue;
        // Standard input must stay unreadable, lest /dev/stdin pass for an empty file.
        const int opened = fd == STDIN_FILENO ? open("/", O_PATH) : open("/dev/null", O_WRONLY);
        // GCOV_EXCL_START no descriptor to be had: faults/machine
        if (opened != fd) {
            dprintf(STDERR_FILENO, "Cannot replace a closed stream: %s\n", std::strerror(errno));
            _exit(EXIT_FAILURE);
        }
        // GCOV_EXCL_STOP
    }
}

static void ignore_signal(int) {}

void prepare_process() {
    open_closed_streams();
    // A handler rather than SIG_IGN: gnuplot starts with the defaults again.
    std::signal(SIGPIPE, ignore_signal);
    std::signal(SIGXFSZ, ignore_signal);
    // Ignored children, as some programs leave them to theirs, could not be waited for.
    std::signal(SIGCHLD, SIG_DFL);
    std::atexit(close_output);
}

const char* ProgramName = nullptr;

// One sentence behind the program's name, without the blanks and line ends of the message.
__attribute__((format(printf, 1, 0))) static void blame(const char* format, va_list args) {
    char text[8192];
    std::vsnprintf(text, sizeof text, format, args);
    std::size_t length = std::strlen(text);
    // No message is empty.
    while (length > 0 && std::strchr(" \n", text[length - 1]) != nullptr)  // GCOV_EXCL_BR_LINE
        text[--length] = '\0';
    std::fprintf(stderr, "%s: %s\n", ProgramName, text);
}

void say(const char* format, ...) {
    if (ProgramName != nullptr)
        return;
    va_list args;
    va_start(args, format);
    note_output(std::vprintf(format, args) < 0);
    va_end(args);
}

void complain(const char* format, ...) {
    flush_output();
    va_list args;
    va_start(args, format);
    if (ProgramName != nullptr)
        blame(format, args);
    else
        std::vfprintf(stderr, format, args);
    va_end(args);
}

void fail(FILE* stream, const char* format, ...) {
    flush_output();
    va_list args;
    va_start(args, format);
    if (ProgramName != nullptr)
        blame(format, args);
    else
        std::vfprintf(stream, format, args);
    va_end(args);
    std::exit(EXIT_FAILURE);
}

void* resize_block(void* block, std::size_t count, std::size_t size) {
    void* resized = reallocarray(block, count == 0 ? 1 : count, size);
    if (resized == nullptr)
        fail(stderr, "Cannot allocate memory\n");
    return resized;
}
