// SPDX-License-Identifier: MIT
//
// Coverage builds only: a run that ends by _exit, or goes on until SIGTERM ends it, would take its
// counts with it, and a limit that a test sets is none for them.
#include <sys/resource.h>

#include <csignal>
#include <initializer_list>

[[gnu::destructor]] static void lift_limits() {
    for (const auto resource : {RLIMIT_FSIZE, RLIMIT_NOFILE}) {
        struct rlimit limit = {};
        getrlimit(resource, &limit);
        limit.rlim_cur = limit.rlim_max;
        setrlimit(resource, &limit);
    }
}

extern "C" {
void __gcov_dump();
[[noreturn]] void __real__exit(int status);
[[noreturn]] void __wrap__exit(int status);
}

static void write_counts() {
    lift_limits();
    __gcov_dump();
}

void __wrap__exit(int status) {
    write_counts();
    __real__exit(status);
}

// What goes on until somebody ends it waits meanwhile: the counts can be written then.
static void end_counted(int signal) {
    write_counts();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

[[gnu::constructor]] static void await_end() {
    std::signal(SIGTERM, end_counted);
}
