// SPDX-License-Identifier: MIT
//
// The life of a gnuplot process. A run has at most one at a time.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "run/run.h"

FILE* f = nullptr;
const char* StartTerminal = nullptr;

// The collected standard error of the running gnuplot; null when it has ours.
static FILE* Collected = nullptr;

// ---- Standard error ----------------------------------------------------------------------------

static void drop_collected() {
    std::fclose(Collected);
    Collected = nullptr;
}

// Passes on what gnuplot has said so far. False if it could not be read.
static bool pass_on_collected() {
    // GCOV_EXCL_START a file of messages that fails: faults/calls
    const bool good =
        std::fseek(Collected, 0, SEEK_SET) == 0 && pass_on_complaints(Collected, stderr);
    // GCOV_EXCL_STOP
    drop_collected();
    return good;
}

// For a run that ends without waiting for gnuplot.
static void pass_on_at_exit() {
    if (Collected != nullptr)
        pass_on_collected();
}

// A file that grows to the limit on the size of files ends the gnuplot that writes to it, in the
// middle of its image.
static bool files_are_limited() {
    struct rlimit limit = {RLIM_INFINITY, RLIM_INFINITY};
    getrlimit(RLIMIT_FSIZE, &limit);
    return limit.rlim_cur != RLIM_INFINITY;
}

// True if gnuplot will complain about what it is sent, as complaints.cpp explains.
static bool complains_about_us() {
    return image_is_drawn() || page_has_panels();
}

// Makes the file our standard error. An interruption passes: what we have to say must not stay
// among the collected complaints.
static void set_standard_error(int file) {
    // GCOV_EXCL_START an interruption: faults/calls
    while (dup2(file, STDERR_FILENO) == -1 && (errno == EINTR || errno == EBUSY))
        continue;
    // GCOV_EXCL_STOP
}

// True if the file is ready to collect: a gnuplot that goes on after us writes where it ends, even
// where we have read it.
static bool prepare_collecting(int file) {
    // GCOV_EXCL_START calls that fail, here and below: faults/calls
    return fcntl(file, F_SETFD, FD_CLOEXEC) != -1 && fcntl(file, F_SETFL, O_APPEND) != -1;
    // GCOV_EXCL_STOP
}

// ---- Start -------------------------------------------------------------------------------------

static FILE* start_process() {
    return popen("gnuplot -persist", "w");
}

// Starts the process with a file for its standard error. Null if it cannot be started so.
static FILE* start_collected() {
    Collected = std::tmpfile();
    if (Collected == nullptr)  // GCOV_EXCL_BR_LINE
        return nullptr;        // GCOV_EXCL_LINE
    const int own = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    FILE* pipe = nullptr;
    if (own != -1 && prepare_collecting(fileno(Collected))) {  // GCOV_EXCL_BR_LINE
        set_standard_error(fileno(Collected));
        pipe = start_process();
        set_standard_error(own);
    }
    if (own != -1)  // GCOV_EXCL_BR_LINE
        close(own);
    if (pipe == nullptr)   // GCOV_EXCL_BR_LINE
        drop_collected();  // GCOV_EXCL_LINE
    return pipe;
}

// Collecting takes descriptors that the process may need more: without them it has our standard
// error after all.
static FILE* start_either_way() {
    FILE* pipe = complains_about_us() && !files_are_limited() ? start_collected() : nullptr;
    return pipe != nullptr ? pipe : start_process();
}

static bool is_set(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

// gnuplot with a terminal for windows gives up at once where there is no display. It need not open
// one on the way to an image, nor where the user has named a terminal: a page of panels begins
// before the command that sets it. Null if gnuplot is to choose, as where more commands follow the
// name on lines of their own. On the way to an image it hears of the user's terminal in time; 5.4
// ends where it is started with one that it does not have, and the image would be lost.
static const char* start_terminal() {
    if (is_set("DISPLAY") || is_set("WAYLAND_DISPLAY") || is_set("GNUTERM"))
        return nullptr;
    if (image_is_drawn())
        return UserTerminal ? nullptr : "unknown";
    const bool is_named = UserTerminal && *UserTerminalName != '\0';
    return is_named && std::strchr(UserTerminalName, '\n') == nullptr ? UserTerminalName : nullptr;
}

// Starts the process with StartTerminal in its environment; ours is as before afterwards.
static FILE* start_with_terminal() {
    const bool was_empty = std::getenv("GNUTERM") != nullptr;
    // GCOV_EXCL_START no memory: faults/memory
    if (setenv("GNUTERM", StartTerminal, 1) != 0)
        fail(stderr, "Cannot allocate memory\n");
    // GCOV_EXCL_STOP
    FILE* pipe = start_either_way();
    if (was_empty)
        setenv("GNUTERM", "", 1);
    else
        unsetenv("GNUTERM");
    return pipe;
}

void gnuplot_start() {
    static bool registered = false;
    if (!registered)
        registered = std::atexit(pass_on_at_exit) == 0;
    flush_output();  // gnuplot may write to the same standard output
    StartTerminal = start_terminal();
    f = StartTerminal != nullptr ? start_with_terminal() : start_either_way();
    if (f == nullptr)
        fail(stdout, "Cannot connect to gnuplot pipe: %s\n", std::strerror(errno));
}

// ---- End ---------------------------------------------------------------------------------------

void gnuplot_close() {
    flush_output();
    // What gnuplot did not take before it went counts as well, whatever its own status. Which of
    // the two tells depends on the moment.
    const bool is_lost = std::fflush(f) != 0 || std::ferror(f) != 0;  // GCOV_EXCL_BR_LINE
    const int status = pclose(f);
    f = nullptr;
    // GCOV_EXCL_START a file of messages that fails: faults/calls
    if (Collected != nullptr && !pass_on_collected())
        fail(stderr, "Cannot read the messages of gnuplot: %s\n", std::strerror(errno));
    // GCOV_EXCL_STOP
    if (is_lost || status != 0)
        complain("Unable to close GnuPlot pipe.\n");
}
