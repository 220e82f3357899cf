// SPDX-License-Identifier: MIT
//
// What the programs beside gravlex share: they read the same input with the same options, and say
// in one sentence what is wrong with either.
#pragma once

#include <cstdio>
#include <string>

#include "output/output.h"
#include "plot/plot.h"

// ---- The input ---------------------------------------------------------------------------------

struct refused_options_t {
    const char* names[30];  // long names, up to a null
    const char* instead;    // what to use, for the message: "use -o FILE"
};

struct program_t {
    const char* name;
    const char* arguments;             // for the help: "[options...] inputfile"
    const struct poptOption* options;  // its own, up to POPT_TABLEEND; those to handle have codes
    bool (*handle)(int code);          // from 2000 to 2999. False after a message
    const refused_options_t* refused;  // those of gravlex that make no sense, up to an empty row
};

// Reads the command line of the program, which has gravlex's options and its own, and returns the
// names of its input files, up to a null. To be called first.
char** start_program(int argc, char** argv, const program_t& program);

// Ends the run with a sentence if the value of the option is not between these, or no number.
void require_number(const char* option, double value, double least, double most);

// Refuses more than one of them.
const char* only_input(char** names);

// For a program that reads several, one after the other: what is wrong with a row or a header says
// in which of them.
extern bool SeveralInputs;

// The plot columns of one data set, as its own header row has them.
struct columns_t {
    int NcolsToPlot;
    int PlotColType[MAX_COLS];
    int PlotTypePos[MAX_COLS];
};

// Those of Curve[c]. After read_input.
const columns_t& own_columns(int c);

// Reads the selected table and forms the plot groups, once in a process. Ends the run with a
// sentence where gravlex goes on without a word: no table of that number, none at all, a kind or a
// set that is named and not there, deviations that are to be shown and are not read, a set without
// rows, a file that ends in the middle of a set.
void read_input(const char* inpFname);

// Ends the run with a sentence if the table has no such set. After read_input.
void require_set(int Nd, int Nc);

// Stacks the curves. Before that ends the run with a sentence if the sets have different columns,
// so that one column map could not be right for all of them, if the first one is not s, if no plot
// has anything to draw, or one has what has no style.
void prepare_plots();

// The axes of a plot as gnuplot can draw them, where gravlex's own may have equal ends. False for
// a plot without series, or without values that have a place. After prepare_plots.
bool find_ranges(plot_t plot, ranges_t* ranges);

// Ends the run with a sentence if there are none for any plot.
void require_ranges();

// ---- Numbers -----------------------------------------------------------------------------------
// For programs that write these instead of drawing them.

// Options of gravlex that only matter to a drawing, up to an empty row. From ChangingOptions on,
// the same behind those that change numbers.
extern const refused_options_t ChangingOptions[];
extern const refused_options_t* const DrawingOptions;

// The word of a kind in a list, s and r for those that have none there.
const char* column_word(int kind);

// The words of the kinds of the mask, with commas; "none" if it is empty.
std::string kind_words(unsigned mask);

// The plot column of the kind; -1 if it is not among them.
int column_of(const columns_t& columns, int kind);
