// SPDX-License-Identifier: MIT
//
// Coverage builds only: a run that ends by _exit or by a signal would take its counts with it, and
// a limit that a test sets is none for them.
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
int __real_raise(int signal);
int __wrap_raise(int signal);

void __wrap__exit(int status) {
    lift_limits();
    __gcov_dump();
    __real__exit(status);
}

int __wrap_raise(int signal) {
    lift_limits();
    __gcov_dump();
    return __real_raise(signal);
}
}

// What goes on until somebody ends it has no handler of its own.
static void end_counted(int signal) {
    std::signal(signal, SIG_DFL);
    __wrap_raise(signal);
}

[[gnu::constructor]] static void await_end() {
    std::signal(SIGTERM, end_counted);
}
