// SPDX-License-Identifier: MIT
//
// gravlex-join: the data sets of several files in one, as text, to be drawn in one plot.
#include <popt.h>

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "input/input.h"
#include "program.h"

static const char* OutputName = nullptr;
static int Overwrite = 0;

namespace {
struct copied_set_t {
    const char* file;  // its name
    int number;        // that file's, from 1
    int Nd, Nc;
    columns_t columns;
    std::string factor;
    std::string rows;  // each a line
};
}  // namespace

static std::vector<copied_set_t> Copies;

// ---- Reading -----------------------------------------------------------------------------------
// The core reads once in a process: each file has one of its own, which leaves the sets that it
// has copied in a file.

static std::string CurrentFactor = "1";

// In layout 1 more than the number may stand there, and blanks before it.
static void keep_factor(const char* text) {
    static constexpr char BLANKS[] = " \t\n\v\f\r";
    text += std::strspn(text, BLANKS);
    CurrentFactor.assign(text, std::strcspn(text, BLANKS));
}

static void keep_row(const char* line) {
    const std::size_t c = static_cast<std::size_t>(Ncurves) - 1;
    if (c >= Copies.size()) {  // a set without rows, which will be refused, may stand between
        Copies.resize(c + 1);
        Copies[c].factor = CurrentFactor;
    }
    Copies[c].rows.append(line, std::strcspn(line, "\n"));
    Copies[c].rows += '\n';
}

namespace {
// What stands in front of the two texts of a set.
struct head_t {
    int Nd, Nc;
    columns_t columns;
    std::size_t factor_size, rows_size;
};
}  // namespace

static void leave_sets(const char* name, FILE* to) {
    Copies.clear();
    MetFactor = keep_factor;
    MetRow = keep_row;
    read_input(name);  // from here on, every set has rows
    for (int c = 0; c < Ncurves; c++) {
        const copied_set_t& copy = Copies[static_cast<std::size_t>(c)];
        const head_t head = {CurveNd[c], CurveNc[c], own_columns(c), copy.factor.size(),
                             copy.rows.size()};
        std::fwrite(&head, sizeof head, 1, to);
        std::fwrite(copy.factor.data(), 1, head.factor_size, to);
        std::fwrite(copy.rows.data(), 1, head.rows_size, to);
    }
    complete(to);
}

static void take_text(FILE* from, std::size_t size, std::string* text) {
    text->resize(size);
    text->resize(std::fread(text->data(), 1, size, from));
}

static void take_sets(FILE* from, const char* name, int number) {
    std::rewind(from);
    for (head_t head; std::fread(&head, sizeof head, 1, from) == 1;) {
        copied_set_t& copy = Copies.emplace_back();
        copy.file = name;
        copy.number = number;
        copy.Nd = head.Nd;
        copy.Nc = head.Nc;
        copy.columns = head.columns;
        take_text(from, head.factor_size, &copy.factor);
        take_text(from, head.rows_size, &copy.rows);
    }
    // GCOV_EXCL_START no disk fails for a test
    if (std::ferror(from))
        fail(stderr, "cannot read a temporary file: %s\n", std::strerror(errno));
    // GCOV_EXCL_STOP
}

static void read_file(const char* name, int number) {
    FILE* copied = scratch_file();
    if (read_in_child([=] { leave_sets(name, copied); }) != EXIT_SUCCESS)
        std::exit(EXIT_FAILURE);
    take_sets(copied, name, number);
    std::fclose(copied);
}

// ---- Columns -----------------------------------------------------------------------------------

static unsigned kinds_of(const copied_set_t& copy) {
    unsigned mask = 0;
    for (int j = 0; j < copy.columns.NcolsToPlot; j++)
        mask |= static_cast<unsigned>(copy.columns.PlotColType[j]);
    return mask;
}

// The kinds that all sets have, in the order of the first one.
static std::vector<int> common_kinds() {
    unsigned common = P_GINT_EVERY, any = 0;
    for (const copied_set_t& copy : Copies) {
        const unsigned kinds = kinds_of(copy);
        if (!is_in(P_GINT_S, kinds))
            fail(stderr, "data set %d-%d of %s has no s\n", copy.Nd, copy.Nc, copy.file);
        common &= kinds;
        any |= kinds;
    }
    if (common == P_GINT_S)
        fail(stderr, "the data sets have no kind in common\n");
    if (any != common)
        complain("left out, because not every data set has them: %s\n",
                 kind_words(any & ~common).c_str());
    std::vector<int> kinds;
    for (int j = 0; j < Copies[0].columns.NcolsToPlot; j++) {
        if (is_in(Copies[0].columns.PlotColType[j], common))
            kinds.push_back(Copies[0].columns.PlotColType[j]);
    }
    return kinds;
}

// ---- Labels ------------------------------------------------------------------------------------

// The power of ten above every N: with the number of the file in front of so many digits, no label
// of one file is one of another's.
static long long power_above_labels() {
    long long power = 10;
    for (const copied_set_t& copy : Copies) {
        while (copy.Nd >= power)
            power *= 10;
    }
    return power;
}

// That of the first file stays: if it is negative, as the low 32 bits, which are what is read.
static unsigned joined_number(const copied_set_t& copy, long long power) {
    if (copy.number == 1)
        return static_cast<unsigned>(copy.Nd);
    const long long joined = copy.number * power + copy.Nd;
    if (copy.Nd < 0 || joined > INT_MAX)
        fail(stderr, "data set %d-%d of %s cannot be given a label of its own\n", copy.Nd, copy.Nc,
             copy.file);
    return static_cast<unsigned>(joined);
}

static std::vector<unsigned> joined_numbers() {
    const long long power = power_above_labels();
    std::vector<unsigned> numbers;
    numbers.reserve(Copies.size());
    for (const copied_set_t& copy : Copies)
        numbers.push_back(joined_number(copy, power));
    return numbers;
}

// ---- Writing -----------------------------------------------------------------------------------

// The numbers of a row as they stand there. The row was read: there are as many as columns.
static std::vector<std::string> split_row(const char* text) {
    std::vector<std::string> numbers;
    while (true) {
        while (std::isspace(static_cast<unsigned char>(*text)))
            text++;
        const char* end = *text == '\0' ? nullptr : after_number(text);
        if (end == nullptr)
            return numbers;
        numbers.emplace_back(text, end);
        text = end;
    }
}

// Each number ends below the end of its label.
static std::string in_columns(const copied_set_t& copy, const std::string& row,
                              const std::vector<int>& kinds) {
    const std::vector<std::string> numbers = split_row(row.c_str());
    std::string line;
    for (const int kind : kinds) {
        const int place = copy.columns.PlotTypePos[column_of(copy.columns, kind)];
        const std::string& number = numbers[static_cast<std::size_t>(place)];
        const std::size_t width = std::strlen(column_label(kind));
        line.append(number.size() < width ? width - number.size() : 1, ' ').append(number);
    }
    line += '\n';
    if (line.size() >= LINE_SIZE)
        fail(stderr, "a row of data set %d-%d of %s is too long\n", copy.Nd, copy.Nc, copy.file);
    return line;
}

static void arrange_rows(copied_set_t* copy, const std::vector<int>& kinds) {
    std::string arranged;
    for (std::size_t start = 0, end; start < copy->rows.size(); start = end + 1) {
        end = copy->rows.find('\n', start);
        arranged += in_columns(*copy, copy->rows.substr(start, end - start), kinds);
    }
    copy->rows.swap(arranged);
}

// A name that cannot be taken for anything else in the line, or go on in another one.
static std::string plain_name(const char* name) {
    std::string plain(name, strnlen(name, 200));
    for (char& c : plain) {
        if (c == ' ' || std::iscntrl(static_cast<unsigned char>(c)))
            c = '_';
    }
    return plain;
}

static void write_set(FILE* file, const copied_set_t& copy, const std::vector<int>& kinds,
                      unsigned number) {
    std::string header;
    for (const int kind : kinds)
        header += column_label(kind);
    const std::string rule(header.size(), '-');
    std::fprintf(file, "Set: %u-%d  %d-%d of %s\nScale=%s\n%s\n%s\n%s\n", number, copy.Nc, copy.Nd,
                 copy.Nc, plain_name(copy.file).c_str(), copy.factor.c_str(), rule.c_str(),
                 header.c_str(), rule.c_str());
    std::fprintf(file, "%s%s\n", copy.rows.c_str(), rule.c_str());
}

// 1.6.987 is the first version that wrote this layout.
static void write_table(FILE* file) {
    const std::vector<unsigned> numbers = joined_numbers();
    const std::vector<int> kinds = common_kinds();
    for (copied_set_t& copy : Copies)
        arrange_rows(&copy, kinds);
    std::fprintf(file, " KOVA 1.6.987  data sets of %d files, joined by %s\n\n",
                 Copies.back().number, ProgramName);
    std::fprintf(file, " Table 1. GED curves.\n====================\n");
    for (std::size_t i = 0; i < Copies.size(); i++)
        write_set(file, Copies[i], kinds, numbers[i]);
    std::fprintf(file, "\n");
}

// ---- The program -------------------------------------------------------------------------------

// clang-format off
static const poptOption Options[] = {
    {"output", 'o', POPT_ARG_STRING, &OutputName, 0,
     "Write into FILE instead of standard output", "FILE"},
    {"force", 'f', POPT_ARG_NONE, &Overwrite, 0,
     "Replace a file that exists", nullptr},
    POPT_TABLEEND
};
// clang-format on

int main(int argc, char** argv) {
    const program_t program = {"gravlex-join", "[options...] inputfile...", Options, nullptr,
                               ChangingOptions};
    char** names = start_program(argc, argv, program);
    SeveralInputs = true;
    for (int i = 0; names[i] != nullptr; i++)
        read_file(names[i], i + 1);
    write_table(new_file(OutputName == nullptr ? "-" : OutputName, Overwrite));
    keep_files();
    return EXIT_SUCCESS;
}
