// SPDX-License-Identifier: MIT
//
// The functions that work on every number, each beside the plain way, in pairs "WHAT/gravlex" and
// "WHAT/plain". Both of a pair do the same work on the same data.
#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "common/start.h"
#include "input/input.h"
#include "plain/plain.h"
#include "plot/plot.h"

// ---- Data --------------------------------------------------------------------------------------

constexpr int ROWS = 500;  // of a data set

static const int Kinds[] = {P_GINT_S, P_GINT_SMS, P_GINT_TSMS, P_GINT_DSMS};
constexpr int KINDS = 4;

// A table of two instruments whose sets come in turn, like those of make_inputs.cpp.
static double value(int set, int j, int k) {
    const double u = static_cast<double>(k) / ROWS;
    const double s = set % 2 == 0 ? 1.5 + 20.0 * u : 6.0 + 30.0 * u;
    const double noise = 0.05 * std::sin(97.0 * (k + 31.0 * set));
    const double wave = 2.5 * std::sin(2.89 * s) * std::exp(-0.002 * s * s);
    const double values[] = {s, wave + noise, wave, noise};
    return values[j];
}

static std::string make_row(int k) {
    std::string row;
    for (int i = 0; i < 16; i++) {
        char number[32];
        std::snprintf(number, sizeof number, "%16.8f", value(i / KINDS, i % KINDS, k));
        row += number;
    }
    return row + "\n";
}

// In the program and in the reference.
static void fill_store(int sets) {
    release_curves();
    NcolsToPlot = KINDS;
    for (int set = 0; set < sets; set++) {
        append_curve(set % 2 + 1, set / 2 + 1, 1.0);
        create_curve_columns();
        CurvePlotGroup[set] = 1;
        for (int k = 0; k < ROWS; k++) {
            append_point();
            for (int j = 0; j < KINDS; j++)
                Curve[set][j][k] = value(set, j, k);
        }
    }
    for (int j = 0; j < KINDS; j++) {
        PlotColType[j] = Kinds[j];
        ColPlotGroup[j] = 1;
    }
    share_curves();
}

// ---- A line ------------------------------------------------------------------------------------

constexpr int LINES = 20000;

// A file in memory.
static const char* lines_file() {
    static char name[64];
    if (*name == '\0') {
        const int file = memfd_create("lines", 0);
        for (int k = 0; k < LINES; k++) {
            const std::string row = make_row(k % ROWS);
            if (write(file, row.data(), row.size()) != static_cast<ssize_t>(row.size()))
                std::abort();
        }
        std::snprintf(name, sizeof name, "/proc/self/fd/%d", file);
    }
    return name;
}

static void line_gravlex(benchmark::State& state) {
    const char* name = lines_file();
    char line[LINE_SIZE];
    for (auto _ : state) {
        open_input(name);
        while (!read_line(line))
            benchmark::DoNotOptimize(line);
        close_input();
    }
    state.SetItemsProcessed(state.iterations() * LINES);
}
BENCHMARK(line_gravlex)->Name("line read/gravlex");

static void line_plain(benchmark::State& state) {
    const char* name = lines_file();
    char line[LINE_SIZE];
    for (auto _ : state) {
        std::FILE* in = std::fopen(name, "r");
        while (std::fgets(line, sizeof line, in) != nullptr)
            benchmark::DoNotOptimize(line);
        std::fclose(in);
    }
    state.SetItemsProcessed(state.iterations() * LINES);
}
BENCHMARK(line_plain)->Name("line read/plain");

// ---- A row read --------------------------------------------------------------------------------

static std::vector<std::string> make_rows() {
    std::vector<std::string> rows(ROWS);
    for (int k = 0; k < ROWS; k++)
        rows[static_cast<std::size_t>(k)] = make_row(k);
    return rows;
}

// The plain way, which the reference cannot take: what is a number for it depends on the release
// of the C library.
static int scan_numbers(const char* line, double (&d)[MAX_NUMBERS]) {
    return std::sscanf(line,
                       "%lf %lf %lf %lf %lf %lf %lf %lf %lf %lf "
                       "%lf %lf %lf %lf %lf %lf %lf %lf %lf %lf \n",
                       &d[0], &d[1], &d[2], &d[3], &d[4], &d[5], &d[6], &d[7], &d[8], &d[9],
                       &d[10], &d[11], &d[12], &d[13], &d[14], &d[15], &d[16], &d[17], &d[18],
                       &d[19]);
}

static void row_read(benchmark::State& state, int (*read)(const char*, double (&)[MAX_NUMBERS])) {
    const std::vector<std::string> rows = make_rows();
    double numbers[MAX_NUMBERS];
    for (auto _ : state) {
        for (const std::string& row : rows)
            benchmark::DoNotOptimize(read(row.c_str(), numbers));
    }
    state.SetItemsProcessed(state.iterations() * ROWS);
}
BENCHMARK_CAPTURE(row_read, gravlex, read_numbers)->Name("row read/gravlex");
BENCHMARK_CAPTURE(row_read, plain, scan_numbers)->Name("row read/plain");

// ---- A row written -----------------------------------------------------------------------------

constexpr int SETS_WRITTEN = 20;

// All series of a plot, as they are sent; what takes them costs nothing.
static void rows_written(benchmark::State& state, std::FILE** pipe, void (*write)(int, int)) {
    fill_store(SETS_WRITTEN);
    *pipe = std::fopen("/dev/null", "w");
    for (auto _ : state)
        write(1, 1);
    std::fclose(*pipe);
    state.SetItemsProcessed(state.iterations() * SETS_WRITTEN * (KINDS - 1) * ROWS);
}
BENCHMARK_CAPTURE(rows_written, gravlex, &f, [](int g, int h) {
    write_data_blocks({g, h});
})->Name("row written/gravlex");
BENCHMARK_CAPTURE(rows_written, plain, &plain::f, plain::write_data_blocks)
    ->Name("row written/plain");

// ---- A look-up ---------------------------------------------------------------------------------

// At the abscissae of a set, as when it is placed.
static void look_up(benchmark::State& state, void (*empty)(),
                    void (*add)(int, const double*, const double*, double),
                    int (*min_max)(double, double*, double*)) {
    const int curves = static_cast<int>(state.range(0));
    fill_store(curves);
    empty();
    for (int set = 0; set < curves; set++)
        add(ROWS, Curve[set][0], Curve[set][1], set);
    double ymin, ymax;
    for (auto _ : state) {
        for (int k = 0; k < ROWS; k++)
            benchmark::DoNotOptimize(min_max(Curve[0][0][k], &ymin, &ymax));
    }
    empty();
    state.SetItemsProcessed(state.iterations() * ROWS);
}
BENCHMARK_CAPTURE(look_up, gravlex, buf_initialize, buf_add, buf_y_min_max)
    ->Name("look-up/gravlex")
    ->ArgsProduct({{10, 100}});
BENCHMARK_CAPTURE(look_up, plain, plain::buf_initialize, plain::buf_add, plain::buf_y_min_max)
    ->Name("look-up/plain")
    ->ArgsProduct({{10, 100}});

// ---- A shift phase -----------------------------------------------------------------------------

static bool shifts_agree(int sets) {
    calc_shifts({1, 1});
    plain::calc_shifts(1, 1);
    for (int set = 0; set < sets; set++) {
        const plain::curve_t& expected = plain::Table.curves[static_cast<std::size_t>(set)];
        if (std::memcmp(CurveShift[set], expected.Shift, KINDS * sizeof(double)) != 0)
            return false;
    }
    return true;
}

static void shift_phase(benchmark::State& state, void (*calculate)(int, int)) {
    const int sets = static_cast<int>(state.range(0));
    fill_store(sets);
    if (!shifts_agree(sets)) {
        state.SkipWithError("the shifts differ");
        return;
    }
    for (auto _ : state)
        calculate(1, 1);
    state.SetItemsProcessed(state.iterations() * sets);
}
BENCHMARK_CAPTURE(shift_phase, gravlex,
                  [](int g, int h) {
                      calc_shifts({g, h});
                  })
    ->Name("shift phase/gravlex")
    ->ArgsProduct({{25, 50, 100}});
BENCHMARK_CAPTURE(shift_phase, plain, plain::calc_shifts)
    ->Name("shift phase/plain")
    ->ArgsProduct({{25, 50, 100}});

// ------------------------------------------------------------------------------------------------

// The functions talk on standard output: that goes nowhere, and the results to standard error.
int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    if (std::freopen("/dev/null", "w", stdout) == nullptr)
        return EXIT_FAILURE;
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_None);
    reporter.SetOutputStream(&std::cerr);
    reporter.SetErrorStream(&std::cerr);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return EXIT_SUCCESS;
}
