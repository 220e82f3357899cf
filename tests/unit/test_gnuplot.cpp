// SPDX-License-Identifier: MIT
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "run/run.h"
#include "state.h"

using Gnuplot = Fresh;

// Runs a call with a script as the only gnuplot on the path.
static ended_t with_gnuplot(const std::string& script, const act_t& act) {
    std::string folder = testing::TempDir() + "gnuplot-XXXXXX";
    EXPECT_NE(mkdtemp(folder.data()), nullptr);
    const std::string program = folder + "/gnuplot";
    FILE* file = std::fopen(program.c_str(), "w");
    std::fprintf(file, "#!/bin/sh\n%s", script.c_str());
    std::fclose(file);
    chmod(program.c_str(), 0755);
    const ended_t ended = in_child([&] {
        prepare_process();
        setenv("PATH", (folder + ":/usr/bin:/bin").c_str(), 1);
        act();
    });
    unlink(program.c_str());
    rmdir(folder.c_str());
    return ended;
}

// Sends so much that gnuplot must have taken some of it.
static void send_much_data() {
    for (int i = 0; i < 30000; i++)
        std::fprintf(f, "0123456789\n");
    std::fflush(f);
}

TEST_F(Gnuplot, speaks_behind_what_was_said_before_it) {
    const ended_t ended = with_gnuplot("echo gnuplot\ncat >/dev/null\n", [] {
        say("before\n");
        gnuplot_start();
        send_much_data();
        say("after\n");
        gnuplot_close();
    });
    EXPECT_TRUE(ended_with(ended, 0, "before\ngnuplot\nafter\n", ""));
}

static void fail_after_much_data() {
    gnuplot_start();
    send_much_data();
    fail(stderr, "ours\n");
}

TEST_F(Gnuplot, that_is_not_waited_for_has_its_say_all_the_same) {
    MakeImage = IMG_PNG;
    const char* script = "echo early >&2\ncat >/dev/null\nsleep 0.1\necho late >&2\n";
    EXPECT_TRUE(ended_with(with_gnuplot(script, fail_after_much_data), 1, "", "ours\nearly\n"));
}

// What a gnuplot is started with without a display, and what its variable is for us afterwards.
static ended_t with_terminal(char* name, const char* before) {
    return with_gnuplot("cat\nprintenv GNUTERM || echo none\n", [=] {
        for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "GNUTERM"})
            unsetenv(variable);
        if (before != nullptr)
            setenv("GNUTERM", before, 1);
        UserTerminal = 1;
        UserTerminalName = name;
        gnuplot_start();
        const char* after = std::getenv("GNUTERM");
        say("'%s' for us\n", after != nullptr ? after : "none");
        gnuplot_close();
    });
}

TEST_F(Gnuplot, has_the_terminal_to_itself) {
    char name[] = "dumb size 120,40";
    EXPECT_TRUE(
        ended_with(with_terminal(name, nullptr), 0, "'none' for us\ndumb size 120,40\n", ""));
    EXPECT_TRUE(ended_with(with_terminal(name, ""), 0, "'' for us\ndumb size 120,40\n", ""));
    EXPECT_TRUE(ended_with(with_terminal(name, "x11"), 0, "'x11' for us\nx11\n", ""));
}
