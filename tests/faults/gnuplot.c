// SPDX-License-Identifier: MIT
//
// Stands in for gnuplot, and needs nothing that could be short: no memory, few descriptors. The
// N-th start notes its arguments, one a line, in $RECORD/gnuplot-N.args and every byte of its
// standard input in $RECORD/gnuplot-N.in. By default it reads all and ends with status 0.
//
//     STANDIN_TAKE=SIZE   reads so many bytes, no more
//     STANDIN_SAY=TEXT    says so on standard error
//     STANDIN_STATUS=N    ends with this status
//     STANDIN_SIGNAL=N    ends by this signal
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static void put(int out, const char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t n = write(out, bytes, size);
        if (n <= 0)
            exit(99);
        bytes += n;
        size -= (size_t)n;
    }
}

// Creates the file of this name and of the smallest number >= *number that is free.
static int create(int* number, const char* ending) {
    char name[4096];
    for (;; ++*number) {
        snprintf(name, sizeof name, "%s/gnuplot-%d.%s", getenv("RECORD"), *number, ending);
        const int out = open(name, O_WRONLY | O_CREAT | O_EXCL, 0666);
        if (out != -1)
            return out;
        if (*number > 1000)
            exit(99);
    }
}

static void note_arguments(char** argv, int* number) {
    const int out = create(number, "args");
    for (char** argument = argv + 1; *argument != NULL; argument++) {
        put(out, *argument, strlen(*argument));
        put(out, "\n", 1);
    }
    close(out);
}

static void note_input(int* number, size_t left) {
    static char bytes[1 << 12];
    const int out = create(number, "in");
    while (left > 0) {
        const ssize_t n = read(STDIN_FILENO, bytes, left < sizeof bytes ? left : sizeof bytes);
        if (n <= 0)
            break;
        put(out, bytes, (size_t)n);
        left -= (size_t)n;
    }
    close(out);
}

int main(int argc, char** argv) {
    int number = argc > 0 ? 1 : 0;
    const char* take = getenv("STANDIN_TAKE");
    const char* text = getenv("STANDIN_SAY");
    const char* ending = getenv("STANDIN_SIGNAL");
    note_arguments(argv, &number);
    note_input(&number, take != NULL ? (size_t)atol(take) : (size_t)-1);
    if (text != NULL)
        put(STDERR_FILENO, text, strlen(text));
    if (ending != NULL)
        raise(atoi(ending));
    ending = getenv("STANDIN_STATUS");
    return ending != NULL ? atoi(ending) : 0;
}
