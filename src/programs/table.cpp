// SPDX-License-Identifier: MIT
//
// gravlex-table: the curves of a table as CSV, or a list of what a file holds.
#include "table.h"

#include <popt.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "input/input.h"

static const char* OutputName = nullptr;
static int Overwrite = 0;
static int ListTables = 0;

// ---- CSV ---------------------------------------------------------------------------------------
// Collected in a block: a call of stdio for each number would take as long as its digits.

static FILE* To = nullptr;
static char Block[1 << 16];
static char* End = Block;

// More than one field can need, and a row.
static constexpr std::size_t FIELD_SIZE = 64;
static constexpr std::size_t ROW_SIZE = (MAX_COLS + 1) * FIELD_SIZE;

static void flush_block() {
    std::fwrite(Block, 1, static_cast<std::size_t>(End - Block), To);
    End = Block;
}

static void put(char c) {
    *End++ = c;
}

static void put(const char* text) {
    const std::size_t length = std::strlen(text);
    std::memcpy(End, text, length);
    End += length;
}

// The shortest text that reads back to the same number. The sign of a NaN means nothing.
static void put(double number) {
    End = std::to_chars(End, End + FIELD_SIZE, std::isnan(number) ? NAN : number).ptr;
}

// The kinds of all sets, s first, then as they are met: the order of the first header, and behind
// it what only later ones have.
static std::vector<int> find_kinds() {
    std::vector<int> kinds = {P_GINT_S};
    unsigned found = P_GINT_S;
    for (int c = 0; c < Ncurves; c++) {
        const columns_t& columns = own_columns(c);
        for (int j = 0; j < columns.NcolsToPlot; j++) {
            if (is_in(columns.PlotColType[j], found))
                continue;
            found |= static_cast<unsigned>(columns.PlotColType[j]);
            kinds.push_back(columns.PlotColType[j]);
        }
    }
    return kinds;
}

static void write_set(int c, const std::vector<int>& kinds) {
    char label[FIELD_SIZE];
    std::snprintf(label, sizeof label, "%d-%d", CurveNd[c], CurveNc[c]);
    std::vector<const double*> columns;  // null for a kind that the set lacks
    columns.reserve(kinds.size());
    for (const int kind : kinds) {
        const int j = column_of(own_columns(c), kind);
        columns.push_back(j == -1 ? nullptr : Curve[c][j]);
    }
    for (int k = 0; k < Npts[c] && !std::ferror(To); k++) {
        if (End + ROW_SIZE > Block + sizeof Block)
            flush_block();
        put(label);
        for (const double* column : columns) {
            put(',');
            if (column != nullptr)
                put(column[k]);
        }
        put('\n');
    }
}

static void write_csv(FILE* file) {
    const std::vector<int> kinds = find_kinds();
    To = file;
    put("set");
    for (const int kind : kinds) {
        put(',');
        put(column_word(kind));
    }
    put('\n');
    for (int c = 0; c < Ncurves; c++)
        write_set(c, kinds);
    flush_block();
}

// ---- The program -------------------------------------------------------------------------------

// clang-format off
static const poptOption Options[] = {
    {"output", 'o', POPT_ARG_STRING, &OutputName, 0,
     "Write into FILE instead of standard output", "FILE"},
    {"force", 'f', POPT_ARG_NONE, &Overwrite, 0,
     "Replace a file that exists", nullptr},
    {"list", '\0', POPT_ARG_NONE, &ListTables, 0,
     "List the data sets of all tables, or of --table, instead", nullptr},
    POPT_TABLEEND
};
// clang-format on

int main(int argc, char** argv) {
    TableN = EVERY_TABLE;
    const program_t program = {"gravlex-table", "[options...] inputfile", Options, nullptr,
                               DrawingOptions};
    const char* name = only_input(start_program(argc, argv, program));
    if (ListTables) {
        if (OutputName != nullptr)
            fail(stderr, "--list prints on standard output: use > instead of -o\n");
        if (DataToRead != P_GINT_EVERY || NparToRead > 0)
            fail(stderr, "--list shows all kinds and data sets: choose none\n");
        return list_tables(name);
    }
    if (TableN == EVERY_TABLE)
        TableN = 1;
    read_input(name);
    write_csv(new_file(OutputName == nullptr ? "-" : OutputName, Overwrite));
    keep_files();
    return EXIT_SUCCESS;
}
