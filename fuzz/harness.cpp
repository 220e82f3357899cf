// SPDX-License-Identifier: MIT
#include "harness.h"

#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <cmath>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

// ---- Runs --------------------------------------------------------------------------------------

static bool IsRunning = false;
static std::jmp_buf End;
static void (*AtExit)() = nullptr;  // what the run wants to be called at its end
static ended_t Ended;

extern "C" {
[[noreturn]] void __real_exit(int status);
int __real_atexit(void (*handler)());

[[noreturn]] void __wrap_exit(int status) {
    if (!IsRunning)
        __real_exit(status);
    Ended.status = status;
    std::longjmp(End, 1);
}

int __wrap_atexit(void (*handler)()) {
    if (!IsRunning)
        return __real_atexit(handler);
    AtExit = handler;
    return 0;
}
}

static ssize_t append_to_string(void* text, const char* data, std::size_t size) {
    static_cast<std::string*>(text)->append(data, size);
    return static_cast<ssize_t>(size);
}

static FILE* stream_into(std::string* text) {
    FILE* stream = fopencookie(text, "w", {nullptr, append_to_string, nullptr, nullptr});
    require(stream != nullptr, "no stream");
    return stream;
}

const ended_t& run_in_process(void (*act)(void*), void* argument) {
    static FILE* const out = stream_into(&Ended.out);
    static FILE* const err = stream_into(&Ended.err);
    static FILE* const own_out = stdout;
    static FILE* const own_err = stderr;
    Ended.out.clear();
    Ended.err.clear();
    Ended.status = RUN_RETURNED;
    AtExit = nullptr;
    stdout = out;
    stderr = err;
    IsRunning = true;
    if (setjmp(End) == 0)
        act(argument);
    IsRunning = false;
    if (AtExit != nullptr)
        AtExit();
    std::fflush(out);
    std::fflush(err);
    stdout = own_out;
    stderr = own_err;
    return Ended;
}

// ---- Bytes -------------------------------------------------------------------------------------

std::uint8_t take_byte(bytes_t* bytes) {
    if (bytes->left == 0)
        return 0;
    bytes->left--;
    return *bytes->next++;
}

int take_below(bytes_t* bytes, int limit) {
    return take_byte(bytes) % limit;
}

// All 64 bits: anything.
static double take_double(bytes_t* bytes) {
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; i++)
        bits = bits << 8 | take_byte(bytes);
    return std::bit_cast<double>(bits);
}

double take_number(bytes_t* bytes) {
    using limits_t = std::numeric_limits<double>;
    // clang-format off
    static const double specials[] = {
        0.0, -0.0, limits_t::infinity(), -limits_t::infinity(), limits_t::quiet_NaN(), 1e99,
        -1e99, limits_t::max(), -limits_t::max(), limits_t::denorm_min(), 1e-310, 0.1, 1e-7, 1e15,
        0.0000005, -0.0000005,
    };
    // clang-format on
    const int choice = take_byte(bytes);
    if (choice < 16)
        return specials[choice];
    if (choice < 48)
        return choice % 2 == 0 ? 0.0 : -0.0;
    if (choice < 224)
        return 0.25 * (take_below(bytes, 64) - 32);
    return take_double(bytes);
}

// ---- Input file --------------------------------------------------------------------------------

char* input_file(const void* content, std::size_t size) {
    static char name[50];
    static int file = -1;
    if (file == -1) {
        file = memfd_create("input", MFD_CLOEXEC);
        std::snprintf(name, sizeof name, "/proc/self/fd/%d", file);
    }
    const bool written =
        ftruncate(file, 0) == 0 && pwrite(file, content, size, 0) == static_cast<ssize_t>(size);
    require(written, "no input file");
    return name;
}

// ---- Findings ----------------------------------------------------------------------------------

std::string without_nan_signs(const std::string& text) {
    std::string result = text;
    for (std::size_t at = 0; (at = result.find("-nan", at)) != std::string::npos;)
        result.erase(at, 1);
    return result;
}

bool is_same(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) ||
           std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

void report(const char* format, ...) {
    va_list args;
    va_start(args, format);
    vdprintf(STDERR_FILENO, format, args);
    va_end(args);
}

void require(bool good, const char* what) {
    if (good)
        return;
    report("FINDING: %s\n", what);
    std::abort();
}

void require_same(double got, double expected, const char* what) {
    if (!is_same(got, expected))
        report("%a (%.17g) instead of %a (%.17g)\n", got, got, expected, expected);
    require(is_same(got, expected), what);
}

void require_same(const std::string& got, const std::string& expected, const char* what) {
    if (got != expected)
        report("---- got:\n%s\n---- instead of:\n%s\n----\n", got.c_str(), expected.c_str());
    require(got == expected, what);
}

void require_same(const ended_t& got, const ended_t& expected, const char* what) {
    require_same(without_nan_signs(got.out), without_nan_signs(expected.out), what);
    require_same(got.err, expected.err, what);
    if (got.status != expected.status)
        report("status %d instead of %d\n", got.status, expected.status);
    require(got.status == expected.status, what);
}
