// SPDX-License-Identifier: MIT
#include "state.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "input/input.h"

// There in programs that are built with the leak sanitizer.
extern "C" void __lsan_disable() __attribute__((weak));

// ---- Output ------------------------------------------------------------------------------------

static void flush_all() {
    flush_output();
    std::fflush(nullptr);
}

static int new_memory_file() {
    const int file = memfd_create("output", MFD_CLOEXEC);
    if (file == -1)
        std::abort();
    return file;
}

// Closes the file.
static std::string contents_of(int file) {
    std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    if (pread(file, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()))
        std::abort();
    close(file);
    return text;
}

std::string said(const act_t& act) {
    flush_all();
    const int file = new_memory_file();
    const int own = dup(STDOUT_FILENO);
    dup2(file, STDOUT_FILENO);
    act();
    flush_all();
    dup2(own, STDOUT_FILENO);
    close(own);
    return contents_of(file);
}

std::string sent(const act_t& act) {
    char* text = nullptr;
    std::size_t size = 0;
    f = open_memstream(&text, &size);
    said(act);
    std::fclose(f);
    f = nullptr;
    const std::string result(text, size);
    std::free(text);
    return result;
}

static std::string without_sanitizer(std::string text) {
    const std::size_t word = text.find("==WARNING: AddressSanitizer failed to allocate ");
    if (word != std::string::npos) {
        const std::size_t first = text.rfind('\n', word) + 1;
        text.erase(first, text.find('\n', word) + 1 - first);
    }
    return text;
}

ended_t in_child(const act_t& act) {
    flush_all();
    const int out = new_memory_file();
    const int err = new_memory_file();
    const pid_t child = fork();
    if (child == 0) {
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        if (__lsan_disable != nullptr)
            __lsan_disable();  // a run that ends at once releases nothing
        act();
        flush_all();
        std::exit(testing::Test::HasFailure() ? FAILED_INSIDE : EXIT_SUCCESS);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child)
        std::abort();
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), contents_of(out),
            without_sanitizer(contents_of(err))};
}

testing::AssertionResult ended_with(const ended_t& ended, int status, const std::string& out,
                                    const std::string& err) {
    if (ended.status == status && ended.out == out && ended.err == err)
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "status " << ended.status << " instead of " << status << "\nstandard output:\n"
           << ended.out << "instead of:\n"
           << out << "\nstandard error:\n"
           << ended.err << "instead of:\n"
           << err;
}

testing::AssertionResult contains(const std::string& text, const std::string& part) {
    if (text.find(part) != std::string::npos)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "no\n" << part << "\nin\n" << text;
}

// The address sanitizer, where it is used, has a limit of its own and ends the process at it,
// unless it is told otherwise. Its word on it is not the program's.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=1024";
}

void limit_memory() {
    if (__lsan_disable != nullptr)
        return;
    const rlimit limit = {1UL << 30, 1UL << 30};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
}

// ---- Input -------------------------------------------------------------------------------------

text_file_t::text_file_t(const std::string& text) : path(testing::TempDir() + "kova-XXXXXX") {
    const int file = mkstemp(path.data());
    if (file == -1 || write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        std::abort();
    close(file);
}

text_file_t::~text_file_t() {
    unlink(name());
}

// ---- The store ---------------------------------------------------------------------------------

void set_plot_columns(const std::vector<int>& kinds) {
    clear_columns();
    Ncols = NcolsToPlot = static_cast<int>(kinds.size());
    for (std::size_t j = 0; j < kinds.size(); j++) {
        ColType[j] = PlotColType[j] = kinds[j];
        TypePos[j] = PlotTypePos[j] = static_cast<int>(j);
    }
}

void add_set(int Nd, int Nc, const std::vector<column_t>& columns) {
    append_curve(Nd, Nc, 1.0);
    create_curve_columns();
    const int c = Ncurves - 1;
    for (std::size_t k = 0; k < columns[0].size(); k++) {
        append_point();
        for (std::size_t j = 0; j < columns.size(); j++)
            Curve[c][j][k] = columns[j].empty() ? 0.0 : columns[j][k];
    }
    for (std::size_t j = 0; j < columns.size(); j++) {
        if (!columns[j].empty())
            continue;
        std::free(Curve[c][j]);
        Curve[c][j] = nullptr;
    }
}

void combine_all() {
    CurveGroupsToPlot = ColGroupsToPlot = 1;
    for (int c = 0; c < Ncurves; c++)
        CurvePlotGroup[c] = 1;
    for (int j = 1; j < NcolsToPlot; j++)
        ColPlotGroup[j] = 1;
}

std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(std::isnan(value) ? std::nan("") : value);
}
