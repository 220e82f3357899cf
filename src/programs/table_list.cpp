// SPDX-License-Identifier: MIT
//
// What is in a file, a line a data set. Each table is read by a process of its own, so that the
// list goes on behind a damaged one.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "input/input.h"
#include "table.h"

// How a process ends that did not find its table: the file has no more, or cannot be listed.
static constexpr int NO_SUCH_TABLE = 2;
static constexpr int NO_LIST = 3;

static const char* OwnName = nullptr;    // of the program
static const char* InputName = nullptr;  // as the user calls it
static bool IsFirst = false;             // the table is the first one of the list
static bool MayGoOn = false;             // what ends this process leaves others something to do
static int TablesMet = 0;
static int SetsListed = 0;

static void meet_table() {
    static char prefix[1000];
    if (++TablesMet != TableN)
        return;
    MayGoOn = true;
    std::snprintf(prefix, sizeof prefix, "%s: table %d of %s", ProgramName, TableN, InputName);
    ProgramName = prefix;
    if (IsFirst)
        std::printf("table  set      points     s-min     s-max  scale     kinds\n");
}

// ---- A data set --------------------------------------------------------------------------------

namespace {
struct text_t {
    char text[32];
};
}  // namespace

static text_t shortest(double number) {
    text_t result = {};
    std::to_chars(result.text, result.text + sizeof result.text - 1, number);
    return result;
}

// "-" in place of an end of the range where there is none.
static text_t end_of_range(double end) {
    return std::isfinite(end) ? shortest(end) : text_t{"-"};
}

static void print_kinds() {
    const char* comma = "";
    for (int j = 0; j < NcolsToPlot; j++) {
        if (PlotColType[j] == P_GINT_S)
            continue;
        std::printf("%s%s", comma, column_word(PlotColType[j]));
        comma = ",";
    }
    std::printf("\n");
}

// The columns are those of its header row as long as no other set has begun.
static void list_set() {
    const int c = Ncurves - 1;
    double s_min = INFINITY, s_max = -INFINITY;
    for (int j = 0; j < NcolsToPlot; j++) {
        for (int k = 0; PlotColType[j] == P_GINT_S && k < Npts[c]; k++) {
            s_min = std::fmin(s_min, Curve[c][j][k]);
            s_max = std::fmax(s_max, Curve[c][j][k]);
        }
    }
    char label[32];
    std::snprintf(label, sizeof label, "%d-%d", CurveNd[c], CurveNc[c]);
    std::printf("%5d  %-8s %6d  %8s  %8s  %-8s  ", TableN, label, Npts[c],
                end_of_range(s_min).text, end_of_range(s_max).text,
                shortest(CurveScaleFactor[c]).text);
    print_kinds();
    SetsListed++;
}

// ---- A table -----------------------------------------------------------------------------------

static void refuse_table() {
    if (!IsFirst)
        _exit(NO_SUCH_TABLE);
    if (TablesMet == 0)
        fail(stderr, "%s is no output of KOVA: there is no table in it\n", InputName);
    fail(stderr, "no table %d in %s (it has %d)\n", TableN, InputName, TablesMet);
}

static void end_the_list() {
    if (!MayGoOn)
        _exit(NO_LIST);
}

static void list_table(const char* inpFname) {
    MetTable = meet_table;
    MetSetEnd = list_set;
    std::atexit(end_the_list);
    if (detect_int_table_version(inpFname) == 2)
        parse_kova_int_tables_ver2(inpFname);
    else
        parse_kova_int_tables_ver1(inpFname);
    if (!MayGoOn)
        refuse_table();
    if (SetsListed < Ncurves)
        fail(stderr, "the file ends in the middle of data set %d-%d\n", CurveNd[Ncurves - 1],
             CurveNc[Ncurves - 1]);
    if (Ncurves == 0)
        std::printf("%5d  %-8s %6d  %8s  %8s  %-8s  -\n", TableN, "-", 0, "-", "-", "-");
    ProgramName = OwnName;
    // What cannot be written now cannot be written for the next table either. A reader that has
    // seen enough needs no further one.
    std::fflush(stdout);
    if (!std::ferror(stdout))
        return;
    if (errno == EPIPE)
        _exit(NO_SUCH_TABLE);
    complain("Cannot write to standard output: %s\n", std::strerror(errno));
    _exit(NO_LIST);
}

// ---- The file ----------------------------------------------------------------------------------

// A file that can be read again and again: a pipe is copied into one.
static std::string rereadable(const char* name) {
    struct stat status;
    const bool is_other =
        stat(name, &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
    FILE* from = is_other ? std::fopen(name, "r") : nullptr;
    if (from == nullptr)
        return name;
    FILE* copy = scratch_file();
    char block[1 << 14];
    for (std::size_t size; (size = std::fread(block, 1, sizeof block, from)) > 0;)
        std::fwrite(block, 1, size, copy);
    std::fclose(from);
    complete(copy);
    return "/dev/fd/" + std::to_string(fileno(copy));
}

int list_tables(const char* inpFname) {
    OwnName = ProgramName;
    InputName = inpFname;
    const bool every = TableN == EVERY_TABLE;
    const std::string readable = rereadable(inpFname);
    int worst = EXIT_SUCCESS;
    TableN = every ? 1 : TableN;
    IsFirst = true;
    for (int status;
         (status = read_in_child([&] { list_table(readable.c_str()); })) != NO_SUCH_TABLE;
         TableN++) {
        worst = status == EXIT_SUCCESS ? worst : EXIT_FAILURE;
        if (!every || status == NO_LIST)
            break;
        IsFirst = false;
    }
    return worst;
}
