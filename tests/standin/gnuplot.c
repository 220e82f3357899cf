// SPDX-License-Identifier: MIT
//
// Stands in for gnuplot, and needs nothing that could be short: no memory, few descriptors. The
// N-th start notes its arguments, one a line, in $RECORD/gnuplot-N.args and every byte of its
// standard input in $RECORD/gnuplot-N.in. By default it reads all and ends with status 0.
//
//     STANDIN_TAKE=SIZE   reads so many bytes, no more
//     STANDIN_SAY=TEXT    says so on standard error, STANDIN_TIMES=N times
//     STANDIN_HANG=1      waits for a signal before it ends
//     STANDIN_STATUS=N    ends with this status
//     STANDIN_SIGNAL=N    ends by this signal
#include <fcntl.h>
#include <limits.h>
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

static int number_in(const char* variable, int otherwise) {
    const char* text = getenv(variable);
    return text != NULL ? atoi(text) : otherwise;
}

int main(int argc, char** argv) {
    (void)argc;
    int number = 1;
    const char* text = getenv("STANDIN_SAY");
    note_arguments(argv, &number);
    note_input(&number, (size_t)number_in("STANDIN_TAKE", INT_MAX));
    for (int i = number_in("STANDIN_TIMES", 1); text != NULL && i > 0; i--)
        put(STDERR_FILENO, text, strlen(text));
    if (number_in("STANDIN_HANG", 0))
        pause();
    if (number_in("STANDIN_SIGNAL", 0))
        raise(number_in("STANDIN_SIGNAL", 0));
    return number_in("STANDIN_STATUS", 0);
}
