// SPDX-License-Identifier: MIT
//
// Whole files, against the reference. The program itself, with its own main(), reads the file and
// draws it; it must say what the reference says, send what it sends, and end as it ends.
//
// What is led elsewhere by the linker, besides exit and atexit:
// - popen and pclose, for both: gnuplot is a string;
// - tmpfile: there is none, so that nobody collects the complaints of that gnuplot;
// - parse_command_line: the command line is trusted, and popt keeps what it allocates. The
//   settings are set without it.
#include "files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "common/start.h"
#include "harness.h"
#include "input/input.h"
#include "plot/plot.h"

int gravlex_main(int argc, char** argv);  // main() of the program

extern "C" {
FILE* __wrap_popen(const char* command, const char* mode);
int __wrap_pclose(FILE* stream);
FILE* __wrap_tmpfile();
const char* __wrap__Z18parse_command_lineiPPc(int argc, char** argv);
}

// ---- The gnuplots of a run ---------------------------------------------------------------------

static char* Stream = nullptr;  // what the running gnuplot was sent
static std::size_t StreamSize = 0;
static std::string Streams;  // what all of them were sent, one after another

FILE* __wrap_popen(const char* command, const char* mode) {
    require(std::strcmp(command, "gnuplot -persist") == 0, "another command");
    require(std::strcmp(mode, "w") == 0, "another mode");
    return open_memstream(&Stream, &StreamSize);
}

int __wrap_pclose(FILE* stream) {
    std::fclose(stream);
    Streams += "---- gnuplot:\n" + std::string(Stream, StreamSize);
    std::free(Stream);
    return 0;
}

FILE* __wrap_tmpfile() {
    return nullptr;
}

// What the gnuplots of the run were sent. A run that ends early leaves the last one running.
static std::string take_streams(FILE** running) {
    if (*running != nullptr)
        __wrap_pclose(*running);
    *running = nullptr;
    return std::exchange(Streams, "");
}

// ---- The run -----------------------------------------------------------------------------------

const char* __wrap__Z18parse_command_lineiPPc(int, char** argv) {
    return argv[1];
}

// What a pipe can take before it has a reader.
static constexpr int PIPE_SIZE = 1 << 18;

// A pipe with that content; the caller's to close.
static int pipe_with(const std::string& content) {
    int ends[2];
    require(pipe(ends) == 0 && fcntl(ends[1], F_SETPIPE_SZ, PIPE_SIZE) >= PIPE_SIZE, "no pipe");
    const ssize_t written = write(ends[1], content.data(), content.size());
    require(written == static_cast<ssize_t>(content.size()), "no room in the pipe");
    close(ends[1]);
    return ends[0];
}

static std::string file_of(const std::string& input, std::size_t settings_end, std::size_t fill) {
    std::string file = input.substr(std::min(settings_end + 1, input.size()));
    return file.insert(std::min(file.find('\n'), file.size()), fill, '.');
}

// The run releases its pair lists, unless it ends early.
static void draw(char* name) {
    char program[] = "gravlex";
    char* argv[] = {program, name, nullptr};
    require(gravlex_main(2, argv) == 0, "another status");
    require(f == nullptr, "a gnuplot that was left running");
    ParToReadNum1 = ParToReadNum2 = ParToCombineNum1 = ParToCombineNum2 = nullptr;
}

static void check(const std::string& file, bool through_pipe) {
    char* name = input_file(file.data(), file.size());
    const ended_t expected = run_plain([&] { plain::draw(name); });
    const std::string expected_streams = take_streams(&plain::f);
    const int pipe_end = through_pipe ? pipe_with(file) : -1;
    char pipe_name[50];
    std::snprintf(pipe_name, sizeof pipe_name, "/proc/self/fd/%d", pipe_end);
    require_same(run([&] { draw(through_pipe ? pipe_name : name); }), expected, "another run");
    require_same(without_nan_signs(take_streams(&f)), without_nan_signs(expected_streams),
                 "gnuplot was sent something else");
    close_input();
    if (through_pipe)
        close(pipe_end);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), size);
    const file_settings_t settings = apply_settings(input.substr(0, end));
    check(file_of(input, end, settings.fill), settings.through_pipe);
    release_settings();
    reset_state();
    return 0;
}
