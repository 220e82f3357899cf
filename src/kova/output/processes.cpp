// SPDX-License-Identifier: MIT
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "output/output.h"
#include "run/run.h"

int status_of_end(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

int read_in_child(const std::function<void()>& work) {
    const pid_t own = getpid();
    const pid_t child = fork();
    // GCOV_EXCL_START no process to be had
    if (child == -1)
        fail(stderr, "cannot start another process: %s\n", std::strerror(errno));
    // GCOV_EXCL_STOP
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() == own)  // GCOV_EXCL_BR_LINE it has ended already
            work();
        std::exit(EXIT_SUCCESS);
    }
    const int status = status_of_end(child);
    if (WIFSIGNALED(status))
        fail(stderr, "the process that reads was ended: %s\n", strsignal(WTERMSIG(status)));
    return WEXITSTATUS(status);
}

// ---- gnuplot -----------------------------------------------------------------------------------

// How a shell ends, too, that does not find what it is to start.
static constexpr int NO_GNUPLOT = 127;

// No settings of the user's. Without a UTF-8 locale gnuplot complains about the encoding.
void become_gnuplot(const char* script) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    setenv("LC_ALL", "C.UTF-8", 1);
    execlp("gnuplot", "gnuplot", "-d", script, static_cast<char*>(nullptr));
    _exit(NO_GNUPLOT);
}

void blame_gnuplot(int status, const std::string& complaint) {
    if (!complaint.empty())
        fail(stderr, "gnuplot says: %s\n", complaint.c_str());
    if (WEXITSTATUS(status) == NO_GNUPLOT)
        fail(stderr, "gnuplot not found: install it, or put it on the search path\n");
}

// Octal digits stand for whatever could mean something to gnuplot.
static void write_quoted(FILE* commands, const char* start, const char* text) {
    std::fprintf(commands, "\"%s", start);
    for (const char* c = text; *c != '\0'; c++) {
        const bool plain = std::strchr(" _./,=+-()", *c) != nullptr || std::isalnum(*c & 0xff);
        std::fprintf(commands, plain ? "%c" : "\\%03o", static_cast<unsigned char>(*c));
    }
    std::fprintf(commands, "\"");
}

void write_text(FILE* commands, const char* text) {
    write_quoted(commands, "", text);
}

const char* before_name(const char* name) {
    const bool plain_start = std::strchr("_./", *name) != nullptr || std::isalnum(*name & 0xff);
    return plain_start ? "" : "./";
}

void write_name(FILE* commands, const char* name) {
    write_quoted(commands, before_name(name), name);
}
