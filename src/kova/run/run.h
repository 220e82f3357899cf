// SPDX-License-Identifier: MIT
//
// Run control: the table of data kinds, the settings of the command line, the selection lists,
// the plot groups, the gnuplot process, and the way a run talks and ends.
#pragma once

#include <cstddef>
#include <cstdio>

// ---- Data kinds (kinds.cpp) --------------------------------------------------------------------

// One flag per kind of column; a set of kinds is an unsigned mask of them.
constexpr int P_GINT_INT = 0x00000001;   // total experimental intensity
constexpr int P_GINT_BGL = 0x00000002;   // background
constexpr int P_GINT_SMS = 0x00000004;   // experimental sM(s)
constexpr int P_GINT_TSMS = 0x00000008;  // theoretical sM(s)
constexpr int P_GINT_DSMS = 0x00000010;  // delta sM(s)
constexpr int P_GINT_RINT = 0x00000020;  // reduced experimental intensity
constexpr int P_GINT_SEC = 0x00000040;   // sector function
constexpr int P_GINT_IAT = 0x00000080;   // atomic scattering intensity
constexpr int P_GINT_S = 0x00000100;     // s-values, the abscissa
constexpr int P_GINT_RBGL = 0x00000200;  // reduced background
constexpr int P_GINT_SMSS = 0x00000400;  // standard deviation of sM(s)
constexpr int P_GINT_INTS = 0x00000800;  // standard deviation of the intensity
constexpr int P_GINT_R = 0x00001000;     // R-values
constexpr int P_GINT_LINT = 0x00002000;  // levelled experimental intensity
constexpr int P_GINT_LBGL = 0x00004000;  // levelled background
constexpr int P_GINT_TINT = 0x00008000;  // theoretical intensity
constexpr int P_GINT_DINT = 0x00010000;  // delta intensity

// What the list word "all" stands for: not s, which is always read, and not the levelled kinds,
// which repeat the reduced ones and would crowd them out of the picture.
constexpr unsigned P_GINT_WORD_ALL = 0x19eff;

// The number of kinds, and so the most columns that a table can have.
constexpr int MAX_COLS = 17;
constexpr unsigned P_GINT_EVERY = (1U << MAX_COLS) - 1;

// How a kind is drawn. 0 marks the abscissa kinds, which are never drawn as a series.
constexpr int ST_LINES = 1, ST_POINTS = 2, ST_LPOINTS = 3, ST_SPECIAL = 4;

struct data_type_t {
    int type;              // P_GINT_* flag
    char name[100];        // for the console
    char name_short[30];   // legend, and y label on screen
    char name_eps[100];    // y label in an image, as gnuplot enhanced text
    char style_color[20];  // gnuplot colour
    int style_type;        // ST_*; --style_sms writes the row of experimental sM(s)
    int p_type;            // gnuplot point type; --ptype_sms writes the same row
    double style_lw;       // line width before the user's factor
    double style_crad;     // unused radius, 0
    int user;              // mark of the y label: this kind is already named in it
};

// The row order is part of the picture: the y label looks for shared labels in it.
extern data_type_t Type[MAX_COLS];

// The row of Type for one flag. Anything but a single known flag ends the run with
// "Unknown data type: %d\n" on standard output.
int d_idx(int t);

// True if the kind is in the mask.
constexpr bool is_in(int kind, unsigned mask) {
    return (static_cast<unsigned>(kind) & mask) != 0;
}

// ---- Settings (options.cpp, command_line.cpp) --------------------------------------------------
// gravlex writes them in parse_command_line only; their initial values are the defaults of the
// options. A further program may set what its own options imply, before it reads.

constexpr int IMG_PNG = 1, IMG_EPS = 2, IMG_SVG = 3;

extern char* ImgFname;          // null when no image is asked for
extern int MakeImage;           // IMG_*, 0 for no image
extern int wx, wy;              // size of the image in pixels
extern double PlotRatio;        // height to width, 0 leaves it to gnuplot
extern char* UserTerminalName;  // gnuplot terminal, with its options
extern double ShiftMult;        // factor of all shifts, 0 stands for 1
extern double LineWidthFactor, ErrLineWidthFactor, PointSizeFactor;
extern double smsStdevFactor;   // factor of the sM(s) deviations when they are read
extern double ErrFillAlpha;     // opacity of deviation bands, 0 to 1
extern double Gxmin, Gxmax;     // x range in 1/Angstrom, GX_NOT_GIVEN leaves an end to the data
extern int TableN;              // which table of the file, from 1
extern unsigned DataToRead;     // mask of the kinds to read
extern unsigned DataToCombine;  // mask of the kinds drawn in one plot, 0 for none
constexpr double GX_NOT_GIVEN = -1e100;

// Flags.
extern int PlotGrid, PlotLegend, PlotXtics, PlotYtics, PlotX2tics, PlotY2tics;
extern int UserTerminal;  // UserTerminalName is to be set
extern int PlotBglPlus1;  // 1 is added to the backgrounds when they are read
extern int MultiPlot;     // one page for all plots
extern int AutoShifts;    // stack the curves of the first plot

// Pair lists: set numbers and curve numbers at equal indices. A count of 0 is no list.
extern int NparToRead, *ParToReadNum1, *ParToReadNum2;
extern int NparToCombine, *ParToCombineNum1, *ParToCombineNum2;

// Flags: bars or a band on experimental or delta sM(s), a band around the latter's zero line.
extern int smsErrBars, dsmsErrBars, smsErrFill, dsmsErrFill, dsmslErrFill;

// True if any of these is on: the deviation column is then no series of its own.
bool deviations_shown();

// Reads the command line into the settings and returns the name of the input file, which is the
// caller's for the rest of the run. All errors are reported, then the run ends with status 1;
// no argument at all prints the usage line and ends it with status 0.
const char* parse_command_line(int argc, char** argv);

// Prints the settings on standard output.
void echo_settings();

// Kinds that a list named by their own words, and that stand: of the list parsed last, and of
// those behind DataToRead and DataToCombine.
extern unsigned KindsNamed, KindsNamedToRead, KindsNamedToCombine;

// The parts of the command line, for a further program with options of its own: popt's table of
// gravlex's options, up to POPT_TABLEEND, and what is done for each that popt returns (false after
// a message).
extern const struct poptOption optionsTable[];
bool handle_option(int code);

// Reads a command line with that table and returns the names of the input files, one at least, up
// to a null; they are the caller's for the rest of the run. `arguments` is for the help. Ends the
// run like parse_command_line.
char** parse_options(int argc, char** argv, const struct poptOption* table, const char* arguments,
                     bool (*handle)(int code));

extern const char VERSION[];
extern const char ATTRIBUTION[];

// ---- Selection lists (selection.cpp) -----------------------------------------------------------

// The word of a kind in these lists; null for s and R-values, which have none.
const char* kind_word(int kind);

// Applies a comma-separated list of kind words to a mask, from left to right. 0, or 1 after
// "Unknown data type: %s\n" on standard output; words before the unknown one stay applied.
int parse_data_string(const char* str, unsigned int* Data);

// Parses a comma-separated list of N-M items into a count and two new arrays, the caller's.
// 0; 1 for an empty string, which touches nothing; 2 for a bad item, or with errno ENOMEM without
// memory, with the items before it kept. What the outputs pointed to before is not released.
int parse_int_curve_number(const char* inpstr, int* Npar, int** ParNum1, int** ParNum2);

// Parses one N-M item. 0, or 1 after "Incorrect indication of intensity set: '%s'\n" on standard
// output with the outputs untouched.
int parse_int_curve(const char* str, int* ParNum1, int* ParNum2);

// 1 if the whole string is one integer, decimal, octal (0...) or hexadecimal (0x...), else 0.
// White space and a sign may stand before it. Its value: the low 32 of its 64 bits, which stop at
// their limits.
int if_integer(const char* str);
int integer_value(const char* str);

// 1 if the string is white space only or nothing, else 0.
int is_empty(const char* s);

// ---- Plot groups (groups.cpp) ------------------------------------------------------------------
// Written once, between reading and plotting. Group numbers count from 1; 0 is in no group.

extern int ColErrIdx[MAX_COLS];     // plot column of the deviations of an sM(s) plot column, or 0
extern int ColPlotGroup[MAX_COLS];  // column group of plot columns 1 .. NcolsToPlot-1
extern int ColGroupsToPlot;
extern int CurveGroupsToPlot;

// The single plot that is drawn next when MultiPlot is 0; set before each.
extern int CurCurvesGroupToPlot, CurDataGroupToPlot;

void link_deviations();
void group_columns();
void group_curves();

// Ends the run with status 1 if a data set has no rows, after a line for each of them on standard
// output.
void refuse_empty_curves();

// ---- Pages and images (pages.cpp) --------------------------------------------------------------

// True if several plots share one page.
bool page_has_panels();

// True if the command line names an image: labels and widths are those of images then, on screen
// too. It need not be drawn: a page with panels cannot, because gnuplot cannot replot it.
bool image_is_asked_for();
bool image_is_drawn();

// Sends the command that sets the terminal of the image.
void write_image_terminal();

// Sends the commands that repeat the plot into the image file; number is put in front of the
// file's name ("1_") unless it is 0. The inline data must follow.
void write_image_commands(int number);

// Runs gnuplot for the page, or for each plot, one after the other.
void plot_all();

// ---- The gnuplot process (gnuplot.cpp, complaints.cpp) -----------------------------------------
// In this order: start, then whatever is written to f, close.

extern FILE* f;  // the pipe to gnuplot; null when none is running

// The terminal that gnuplot was started with: --term or "unknown"; null when it had the choice.
extern const char* StartTerminal;

// Starts "gnuplot -persist". If that fails the run ends with status 1 and
// "Cannot connect to gnuplot pipe: %s\n" on standard output.
void gnuplot_start();

// Waits for gnuplot to end and passes on what it had to say, but for complaints that were to be
// expected. A status other than 0 is reported on standard error, no more.
void gnuplot_close();

// Copies gnuplot's messages without those complaints. False if they could not be read.
bool pass_on_complaints(FILE* from, FILE* to);

// ---- What a run says and how it ends (console.cpp) ---------------------------------------------

// To be called first: gives closed standard streams a harmless file, keeps a broken pipe or a file
// size limit from killing the run, and sees to it that standard output is complete at the end.
void prepare_process();

// Null in gravlex, which tells its work. A program that sets its name is silent but for failures:
// then say is still, and complain and fail write one sentence behind the name on standard error.
extern const char* ProgramName;

// Standard output, formatted. A write that fails is reported when the run ends.
void say(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Flushes standard output.
void flush_output();

// Standard error, formatted, after all that was said before.
void complain(const char* format, ...) __attribute__((format(printf, 1, 2)));

// One message on standard output or standard error, then the end of the run with status 1. What
// was written to gnuplot so far is sent, and what it has said by then is passed on; it is not
// waited for.
[[noreturn]] void fail(FILE* stream, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

// The block, resized; ends the run with "Cannot allocate memory\n" if there is no memory.
void* resize_block(void* block, std::size_t count, std::size_t size);

// The array, grown or shrunk to count elements; new ones are not initialised.
template <class element_t>
element_t* resized(element_t* array, std::size_t count) {
    return static_cast<element_t*>(resize_block(array, count, sizeof(element_t)));
}
