// SPDX-License-Identifier: MIT
//
// cost FILE COMMAND [ARGUMENTS...]: runs the command, appends a line "NANOSECONDS BYTES" to the
// file, its processor time (user and system) and its peak memory, and ends with its exit status.
//
// - The time is that of the process itself: what wait4 tells includes the processes that it waited
//   for, and gravlex waits for gnuplot. The clock of a process is still there after its end.
// - A program that starts another one hands its own peak memory on to it, until that has more. So
//   measured programs are started by this small one, linked statically, and not by a script.
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

[[noreturn]] static void give_up(const char* what) {
    std::perror(what);
    std::exit(126);
}

static long long processor_time(pid_t process) {
    siginfo_t info;
    if (waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOWAIT) != 0)
        give_up("waitid");
    clockid_t clock;
    timespec time;
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0)
        give_up("clock");
    return time.tv_sec * 1000000000LL + time.tv_nsec;
}

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s FILE COMMAND [ARGUMENTS...]\n", argv[0]);
        return 2;
    }
    pid_t process;
    if (posix_spawnp(&process, argv[2], nullptr, nullptr, argv + 2, environ) != 0)
        give_up(argv[2]);
    const long long nanoseconds = processor_time(process);
    int status;
    rusage usage;
    if (wait4(process, &status, 0, &usage) != process)
        give_up("wait4");
    std::FILE* out = std::fopen(argv[1], "a");
    if (out == nullptr ||
        std::fprintf(out, "%lld %ld\n", nanoseconds, usage.ru_maxrss * 1024) < 0 ||
        std::fclose(out) != 0)
        give_up(argv[1]);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
