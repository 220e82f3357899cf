// SPDX-License-Identifier: MIT
//
// gravlex-watch: shows the plot in one window, and draws it again whenever the file changes.
//
// The core reads one table in one process, so each reading has a process of its own, which ends
// with it. One that fails leaves its sentence, and the picture as it was. gnuplot ends with us,
// however that happens: a signal needs no handling.
#include "watch.h"

#include <fcntl.h>
#include <poll.h>
#include <popt.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

// ---- Command line ------------------------------------------------------------------------------

static const poptOption NoOptions[] = {POPT_TABLEEND};

static const refused_options_t Refused[] = {
    {{"png"}, "gravlex --png writes an image"},
    {{"eps"}, "gravlex --eps writes an image"},
    {{"svg"}, "gravlex --svg writes an image"},
    {{"imgw", "imgl"}, "resize the window, or use --term 'wxt size 900,600'"},
    {{"no-multiplot"}, "there is one window; choose one plot with --data and --curves"},
    {},
};

static const program_t Watch = {"gravlex-watch", "[options...] inputfile", NoOptions, nullptr,
                                Refused};

static bool is_set(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

static void require_display() {
    if (UserTerminal)
        return;
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "GNUTERM"}) {
        if (is_set(variable))
            return;
    }
    fail(stderr, "no display for a window: --term dumb draws with letters\n");
}

// ---- News --------------------------------------------------------------------------------------

static std::string Said;

bool is_news(const std::string& sentence) {
    const bool news = sentence != Said;
    Said = sentence;
    return news;
}

void forget_news() {
    Said.clear();
}

// ---- Reading -----------------------------------------------------------------------------------

// The process that reads. What it says goes to the one that waits for it.
[[noreturn]] static void read_once(const char* name, FILE* commands, int number, int messages) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    dup2(messages, STDERR_FILENO);
    require_rereadable(name);
    write_picture(name, commands, number);
    std::exit(EXIT_SUCCESS);
}

// Its sentence, without the name of the program in front.
static std::string take_sentence(int messages) {
    std::string text;
    char bytes[4096];
    ssize_t size;
    while ((size = read(messages, bytes, sizeof bytes)) > 0)
        text.append(bytes, static_cast<std::size_t>(size));
    close(messages);
    text.erase(0, std::strlen(ProgramName) + std::strlen(": "));
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

static void read_again(const char* name, FILE* commands) {
    static int number = 0;
    int messages[2];
    file_is_taken();
    number++;
    const pid_t reader = pipe2(messages, O_CLOEXEC) == 0 ? fork() : -1;  // GCOV_EXCL_BR_LINE
    if (reader == -1)                                                    // GCOV_EXCL_BR_LINE
        // GCOV_EXCL_START no process to be had
        fail(stderr, "cannot read %s: %s\n", name, std::strerror(errno));
    // GCOV_EXCL_STOP
    if (reader == 0)
        read_once(name, commands, number, messages[1]);
    close(messages[1]);
    const std::string sentence = take_sentence(messages[0]);
    if (status_of_end(reader) == 0)
        draw_picture(number);
    else if (is_news(sentence))
        complain("%s (waiting for a change)\n", sentence.c_str());
}

int main(int argc, char** argv) {
    const char* name = only_input(start_program(argc, argv, Watch));
    require_display();
    const int events = watch_file(name);
    FILE* commands = scratch_file();
    const window_t window = open_window(name, commands);
    for (;;) {
        struct pollfd waiting[] = {
            {events, POLLIN, 0}, {window.messages, POLLIN, 0}, {window.input, 0, 0}};
        poll(waiting, 3, window_is_busy() ? -1 : time_to_next_look());
        take_events();
        take_messages();
        if (waiting[2].revents != 0)
            end_with_gnuplot();
        if (!window_is_busy() && file_is_due())
            read_again(name, commands);
    }
}
