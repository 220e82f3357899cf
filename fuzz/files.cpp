// SPDX-License-Identifier: MIT
//
// Whole files. The program itself, with its own main(), reads the file and draws it; the run must
// end by itself with status 0 or 1, and gnuplot must be sent nothing but commands of our own.
//
// What is led elsewhere by the linker, besides exit and atexit:
// - popen and pclose: gnuplot is a string that is checked when it is closed;
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

#include "harness.h"
#include "input/input.h"
#include "plot/plot.h"

int gravlex_main(int argc, char** argv);  // main() of the program

extern "C" {
std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);
std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                    unsigned seed);

FILE* __wrap_popen(const char* command, const char* mode);
int __wrap_pclose(FILE* stream);
FILE* __wrap_tmpfile();
const char* __wrap__Z18parse_command_lineiPPc(int argc, char** argv);
}

// ---- The gnuplot of a run ----------------------------------------------------------------------

static char* Stream = nullptr;  // what the running gnuplot was sent
static std::size_t StreamSize = 0;
static int Streams = 0;  // gnuplots that were closed in this run

FILE* __wrap_popen(const char* command, const char* mode) {
    require(std::strcmp(command, "gnuplot -persist") == 0, "another command");
    require(std::strcmp(mode, "w") == 0, "another mode");
    return open_memstream(&Stream, &StreamSize);
}

static void close_stream(FILE* stream, bool is_cut) {
    std::fclose(stream);
    check_stream(std::string(Stream, StreamSize), Streams, is_cut);
    Streams++;
    std::free(Stream);
}

int __wrap_pclose(FILE* stream) {
    close_stream(stream, false);
    return 0;
}

FILE* __wrap_tmpfile() {
    return nullptr;
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

// True if an error of the file was said, in a line of its own. It need not be the last: a wrong
// label is part of the message, and may have a newline.
static bool has_error(const std::string& out) {
    for (const char* error :
         {"\nNot enough data for plotting.\n",
          "\nIncorrect format of curve representation: ", "\nInvalid number of columns: expected ",
          "\nNo data found in data set # ", "\nUnknown data type: 0\n"}) {
        if (out.find(error) != std::string::npos)
            return true;
    }
    return false;
}

static int plots() {
    if (MultiPlot)
        return CurveGroupsToPlot > 0 && ColGroupsToPlot > 0;
    return CurveGroupsToPlot * ColGroupsToPlot;
}

static void check_end(const ended_t& ended) {
    require(ended.status == 0 || ended.status == 1, "another status");
    if (ended.status == 0) {
        require_same(ended.err, "", "an error message, but status 0");
        require(f == nullptr, "a gnuplot that was left running");
        require(Streams == plots(), "another number of plots");
    } else {
        require(ended.err != "" || has_error(ended.out), "an error without a message");
    }
}

static std::string file_of(const std::string& input, std::size_t settings_end, std::size_t fill) {
    std::string file = input.substr(std::min(settings_end + 1, input.size()));
    return file.insert(std::min(file.find('\n'), file.size()), fill, '.');
}

// Returns the status.
static int draw(const std::string& file, bool through_pipe) {
    const int pipe_end = through_pipe ? pipe_with(file) : -1;
    char pipe_name[50];
    std::snprintf(pipe_name, sizeof pipe_name, "/proc/self/fd/%d", pipe_end);
    char program[] = "gravlex";
    char* name = through_pipe ? pipe_name : input_file(file.data(), file.size());
    char* argv[] = {program, name, nullptr};
    Streams = 0;
    const ended_t& ended = run([&] { std::exit(gravlex_main(2, argv)); });
    check_end(ended);
    if (pipe_end != -1)
        close(pipe_end);
    return ended.status;
}

// What a run that ended with an error has left. Otherwise the program releases what it had.
static void clear_up() {
    if (f != nullptr)
        close_stream(f, true);
    release_rows();
    release_curves();
    for (int* list : {ParToReadNum1, ParToReadNum2, ParToCombineNum1, ParToCombineNum2})
        std::free(list);
    close_input();
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), size);
    reset_everything();
    const file_settings_t settings = apply_settings(input.substr(0, end));
    if (draw(file_of(input, end, settings.fill), settings.through_pipe) == 1)
        clear_up();
    return 0;
}

// ---- The inputs --------------------------------------------------------------------------------

std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                    unsigned seed) {
    if (seed % 4 == 0)
        return LLVMFuzzerMutate(data, size, max_size);
    random_t random = {seed};
    std::string input(reinterpret_cast<const char*>(data), size);
    if (seed % 64 == 1 || size < 100)
        input = grow_input(&random);
    else
        damage_input(&random, &input);
    const std::size_t result = std::min(input.size(), max_size);
    std::memcpy(data, input.data(), result);
    return result;
}
