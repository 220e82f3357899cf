// SPDX-License-Identifier: MIT
//
// What the programs beside gravlex share: they read the same input with the same options, say what
// is wrong in one sentence, and leave either the files that were asked for or none.
#pragma once

#include <cstdio>
#include <functional>
#include <string>

#include "plot/plot.h"

// ---- The input ---------------------------------------------------------------------------------

struct refused_option_t {
    const char* name;     // long name
    const char* instead;  // what to use, for the message: "use -o FILE"
};

struct program_t {
    const char* name;
    const char* arguments;             // for the help: "[options...] inputfile"
    const struct poptOption* options;  // its own, up to POPT_TABLEEND; those to handle have codes
    bool (*handle)(int code);          // from 2000 to 2999. False after a message
    const refused_option_t* refused;   // options of gravlex that make no sense, up to a null name
};

// Reads the command line of the program, which has gravlex's options and its own, and returns the
// names of its input files, up to a null. To be called first.
char** start_program(int argc, char** argv, const program_t& program);

// Refuses more than one of them.
const char* only_input(char** names);

// For a program that reads several, one after the other: what is wrong with a row or a header says
// in which of them.
extern bool SeveralInputs;

// A data set, as its own header row has it.
struct set_t {
    int Nd, Nc;
    int NcolsToPlot;
    int PlotColType[MAX_COLS];
    int PlotTypePos[MAX_COLS];
};

// The same of Curve[c].
const set_t& own_columns(int c);

// Reads the selected table and forms the plot groups, once in a process. Ends the run with a
// sentence where gravlex goes on without a word: no table of that number, none at all, a kind or a
// set that is named and not there, deviations that are to be shown and are not read, a set without
// rows, a file that ends in the middle of a set.
void read_input(const char* inpFname);

// Does the work in a process of its own, as the core reads once in a process. Returns its exit
// status; one that is killed ends the run with a sentence. It ends with the process that waits.
int in_child(const std::function<void()>& work);

// Ends the run with a sentence if the table has no such set. After read_input.
void require_set(int Nd, int Nc);

// Ends the run with a sentence if the sets that were read have different columns: one column map
// could not be right for all of them.
void require_equal_columns(const char* inpFname);

// Stacks the curves. Before that ends the run with a sentence if no plot has anything to draw, or
// one has what has no style.
void prepare_plots(const char* inpFname);

// ---- Numbers -----------------------------------------------------------------------------------
// For programs that write these instead of drawing them.

// Options of gravlex that only matter to a drawing, up to a null name. From ChangingOptions on,
// the same behind those that change numbers.
extern const refused_option_t ChangingOptions[];
extern const refused_option_t* const DrawingOptions;

// The word of a kind in a list, s and r for those that have none there.
const char* column_word(int kind);

// The words of the kinds of the mask, with commas.
std::string kind_words(unsigned mask);

// The plot column of the kind; -1 if the set has none.
int column_of(const set_t& set, int kind);

// ---- Files that are written --------------------------------------------------------------------

// Opens a file beside the one of this name, to be written, and closes the one before. The name is
// refused, with a sentence, if there is something already that may not be replaced. "-" is
// standard output.
FILE* new_file(const char* name, bool overwrite);

// Gives all new files their names. A file that could not be written ends the run with a sentence;
// whatever ends the run before leaves none of them.
void keep_files();

// A file that nobody sees.
FILE* scratch_file();

// Sees to it that all of it is in the file. A disk that is full ends the run with a sentence.
void complete(FILE* scratch);

// FILE and a number: fit.gp is fit-2.gp.
std::string numbered_name(const char* name, int number);

// ---- gnuplot -----------------------------------------------------------------------------------

// For a child: becomes gnuplot, which reads the script, or its standard input where that is null.
// It ends with the process that waits for it.
[[noreturn]] void become_gnuplot(const char* script);

// Ends the run if gnuplot has said why it failed, or was not found. status is that of its end.
void blame_gnuplot(int status, const std::string& complaint);

// Writes a text as a string of gnuplot that no byte of it can end: between single quotes gnuplot
// 5.4 ends it behind two of them.
void write_text(FILE* commands, const char* text);

// The same for a file name, which gnuplot takes for a file of that name and nothing else.
void write_name(FILE* commands, const char* name);
