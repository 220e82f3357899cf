// SPDX-License-Identifier: MIT
//
// What all fuzz targets share: runs inside this process, bytes to build arguments from, an input
// file in memory, and ways to report a finding.
//
// No source file of the program is replaced. The linker is told (--wrap) to lead calls of exit and
// atexit into harness.cpp, where a run that ends comes back to its target; in `files` also those
// that start gnuplot and read the command line, see there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "plain/plain.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// ---- Runs --------------------------------------------------------------------------------------

struct ended_t {
    int status;       // that the run gave to exit, or RUN_RETURNED
    std::string out;  // standard output
    std::string err;  // standard error
};

constexpr int RUN_RETURNED = -1;

const ended_t& run_in_process(void (*act)(void*), void* argument);

// Calls the act. What it calls may end the run, which leaves the act in the middle: nothing in it
// may need a destructor. The result stands until the next run.
template <class act_t>
const ended_t& run(act_t act) {
    return run_in_process([](void* argument) { (*static_cast<act_t*>(argument))(); }, &act);
}

// The same for the reference, which throws where it ends a run.
template <class act_t>
ended_t run_plain(act_t act) {
    int status = RUN_RETURNED;
    ended_t ended = run([&] {
        try {
            act();
        } catch (const plain::run_ended_t& end) {
            status = plain::finish(end);
        }
    });
    ended.status = status;
    return ended;
}

// ---- Bytes -------------------------------------------------------------------------------------

// The fuzz bytes that are left. What is taken beyond their end is 0.
struct bytes_t {
    const std::uint8_t* next;
    std::size_t left;
};

std::uint8_t take_byte(bytes_t* bytes);
int take_below(bytes_t* bytes, int limit);  // 0 .. limit-1, limit at most 256
double take_number(bytes_t* bytes);         // often small, often a special value

// ---- Input file --------------------------------------------------------------------------------

// The name of a file with that content. There is one at a time.
char* input_file(const void* content, std::size_t size);

// ---- Findings ----------------------------------------------------------------------------------

// The text with every "-nan" made "nan": the sign of a NaN depends on the compiler.
std::string without_nan_signs(const std::string& text);

// Equal to the bit, NaN apart.
bool is_same(double a, double b);

// Tells about a finding on the process's own standard error, also within a run.
void report(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Each ends the process with a message unless all is well.
void require(bool good, const char* what);
void require_same(double got, double expected, const char* what);
void require_same(const std::string& got, const std::string& expected, const char* what);
void require_same(const ended_t& got, const ended_t& expected, const char* what);

// Runs the program and the reference, which must end in the same way and say the same, the signs
// of NaN apart.
template <class act_t, class plain_act_t>
void end_the_same(act_t act, plain_act_t plain_act, const char* what) {
    const ended_t expected = run_plain(plain_act);
    require_same(run(act), expected, what);
}
