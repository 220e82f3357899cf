// SPDX-License-Identifier: MIT
//
// Input reading: the curve store, the lines of the input file, its version, and the readers of
// the intensity tables in both layouts.
#pragma once

#include "run/run.h"

// ---- The store (store.cpp) ---------------------------------------------------------------------
// Written by the readers, once a run; read by everything after them. Counts are 0 and pointers
// null at the start.

// Columns of the header row read last. Index i counts the table's columns from left to right.
extern int Ncols;
extern int ColType[MAX_COLS];  // P_GINT_* flag of column i
extern int TypePos[MAX_COLS];  // offset of its label in the header row, ascending

// The plot columns, index j: those whose kind is to be read. Column 0 is the abscissa.
extern int NcolsToPlot;
extern int PlotColType[MAX_COLS];  // P_GINT_* flag of plot column j
extern int PlotTypePos[MAX_COLS];  // its index i: the ordinal of its number in a row

// Data sets, index c. Every array is the store's own.
extern int Ncurves;
// Curve[c][j][k]: plot column j, point k of set c, k < Npts[c], with the corrections of reading
// made. Curve[c] is null until the set's columns are created, then it has MAX_COLS columns; a
// column that the set does not have, or that has no points yet, is null.
extern double*** Curve;
extern int* Npts;                 // points
extern int* CurveNd;              // N of the label N-M
extern int* CurveNc;              // M of the label
extern double* CurveScaleFactor;  // divisor of the sM(s) kinds, applied already
extern double** CurveShift;       // [c][j < MAX_COLS]: vertical shift; 0 until plotting sets it
extern int* CurvePlotGroup;       // group from 1; 0 until the driver sets it

// Forgets all columns.
void clear_columns();

// Appends a data set without points and without columns.
void append_curve(int Nd, int Nc, double factor);

// Gives the newest data set its columns, NcolsToPlot of them, without points.
void create_curve_columns();

// Makes room for one more point in the NcolsToPlot columns of the newest data set; the values
// are the caller's to write.
void append_point();

// Releases all data sets.
void release_curves();

// ---- Lines (lines.cpp) -------------------------------------------------------------------------

// A line is handled in pieces of at most LINE_SIZE - 1 characters, newline included.
constexpr int LINE_SIZE = 400;

// Opens the input file. One that cannot be opened or read ends the run with status 1 and
// "Cannot open file '%s'\n" on standard error.
void open_input(const char* inpFname);

// Reads the next line, or the next piece of a long one, NUL-terminated. True if the end of the
// file was met on the way: there may be a last line without newline, or nothing. A read error ends
// the run with status 1 and a message on standard error.
bool read_line(char (&line)[LINE_SIZE]);

void close_input();

// For use instead of close_input after the first line alone has been read: the file stays open,
// and the next open_input of that name begins with the first line again. So even what can be read
// only once, such as a pipe, is opened twice.
void leave_first_line();

// ---- Version (version.cpp) ---------------------------------------------------------------------

// The table layout by the version in the file's first line: 1 or 2, or 0 if there is none. Prints
// "KOVA version: %d\n" if there is one.
int detect_int_table_version(const char* inpFname);

// ---- Rows of numbers (numbers.cpp) -------------------------------------------------------------

// The most numbers that are read from one row; more than MAX_COLS, so that too many are noticed.
constexpr int MAX_NUMBERS = 20;

// Converts a line of less than LINE_SIZE characters to numbers, up to the first text that is none.
// Returns how many there are, or -1 if the line is blank. Numbers may be decimal, hexadecimal
// (0x1.8p3), inf, infinity or nan; they may touch ("1.5-2.5" is two), and the digits of an
// exponent may be missing ("1e 2" is two). What is too large is infinite.
int read_numbers(const char* line, double (&numbers)[MAX_NUMBERS]);

// Steps over one of these numbers, before which no blank may stand. Null if there is none.
const char* after_number(const char* text);

// ---- Tables (tables.cpp) -----------------------------------------------------------------------

// Read table number TableN of the file into the store. Every error ends the run with status 1; a
// table that is not there leaves the store without data sets.
void parse_kova_int_tables_ver1(const char* inpFname);
void parse_kova_int_tables_ver2(const char* inpFname);

// What the readers tell as they meet it, for a program that wants to know; gravlex does not, so
// all are null at the start.
extern void (*MetTable)();              // the mark of a table, up to the selected one
extern void (*MetSet)(int Nd, int Nc);  // a set of the selected table, whether it is read or not
extern void (*MetHeader)();             // a header row: the columns above are those of it
extern void (*MetSetEnd)();             // the rule below a set that was read
extern void (*MetWrongRow)();           // a row that does not have as many numbers as columns
extern void (*MetFactor)(const char* text);  // the text of a factor, which stands until the next
extern void (*MetRow)(const char* line);     // a row of a set that is read

// The label of a kind's column in the header row.
const char* column_label(int kind);
