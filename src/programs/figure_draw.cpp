// SPDX-License-Identifier: MIT
//
// The gnuplot that draws a picture, and why it did not.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "figure.h"

// In the child. gnuplot reads the commands as a file, which it does in blocks.
[[noreturn]] static void draw_in_child(int commands, int picture, int messages) {
    setenv("GNUTERM", "unknown", 1);  // every picture has a terminal of its own
    dup2(picture, STDOUT_FILENO);
    dup2(messages, STDERR_FILENO);
    become_gnuplot(("/dev/fd/" + std::to_string(commands)).c_str());
}

static int run_gnuplot(FILE* commands, FILE* picture, FILE* messages) {
    const pid_t gnuplot = fork();
    if (gnuplot == 0)
        draw_in_child(fileno(commands), fileno(picture), fileno(messages));
    // GCOV_EXCL_START no process to be had
    if (gnuplot == -1)
        fail(stderr, "cannot start gnuplot: %s\n", std::strerror(errno));
    // GCOV_EXCL_STOP
    return status_of_end(gnuplot);
}

// gnuplot shows the command that is wrong before it says why, and in front of that the place in a
// file that nobody sees:
//
//     "/dev/fd/5" line 2: unknown or ambiguous terminal type
//
// What others have to say, like a loader of libraries, ends with what matters. Empty if there is
// nothing.
static std::string read_complaint(FILE* messages) {
    char line[1000];
    std::string last;
    rewind(messages);
    while (std::fgets(line, sizeof line, messages) != nullptr) {
        const char* place = std::strstr(line, "\" line ");
        const char* reason = place == nullptr ? nullptr : std::strstr(place, ": ");
        if (reason != nullptr)
            return reason + 2;
        if (line[std::strspn(line, " \n")] != '\0')
            last = line;
    }
    return last;
}

void draw(FILE* commands, FILE* picture) {
    complete(commands);
    FILE* messages = scratch_file();
    const int status = run_gnuplot(commands, picture, messages);
    struct stat drawn = {};
    fstat(fileno(picture), &drawn);
    if (status != 0 || drawn.st_size == 0) {
        blame_gnuplot(status, read_complaint(messages));
        fail(stderr, "gnuplot ended without a picture\n");
    }
    std::fclose(messages);
}
