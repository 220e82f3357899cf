// SPDX-License-Identifier: MIT
//
// The reference: the whole tool a second time, written plainly from what it has to do and without
// a single clever idea. Lines come from fgets, the values of numbers from strtod, every look-up
// asks every curve, and every number goes to gnuplot through fprintf.
//
// Unit tests, fuzz targets, tests/agree and bench/ compare the program with this one and with no
// other. It therefore shares nothing with the program, not even a table. Whoever changes what the
// program does changes it here as well, by hand and without looking at the other side.
//
// It takes memory to be enough and trusts its output to be read: what the program does about that
// is tested with broken machines.
#pragma once

#include <array>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace plain {

// ---- Kinds of data (kinds.cpp) -----------------------------------------------------------------

// clang-format off
enum {
    P_GINT_INT = 0x1, P_GINT_BGL = 0x2, P_GINT_SMS = 0x4, P_GINT_TSMS = 0x8, P_GINT_DSMS = 0x10,
    P_GINT_RINT = 0x20, P_GINT_SEC = 0x40, P_GINT_IAT = 0x80, P_GINT_S = 0x100,
    P_GINT_RBGL = 0x200, P_GINT_SMSS = 0x400, P_GINT_INTS = 0x800, P_GINT_R = 0x1000,
    P_GINT_LINT = 0x2000, P_GINT_LBGL = 0x4000, P_GINT_TINT = 0x8000, P_GINT_DINT = 0x10000
};
// clang-format on
enum { ST_LINES = 1, ST_POINTS = 2, ST_LPOINTS = 3, ST_SPECIAL = 4 };
constexpr int MAX_COLS = 17;

struct data_type_t {
    int type;
    const char *name, *name_short, *name_eps, *style_color;
    int style_type, p_type;
    double style_lw;
};

extern std::array<data_type_t, MAX_COLS> Type;
std::array<data_type_t, MAX_COLS> types_at_start();

// The row of Type for one flag. Anything else ends the run with "Unknown data type: %d\n".
int d_idx(int t);

// ---- Words and numbers in text (text.cpp) ------------------------------------------------------

constexpr char BLANKS[] = " \t\n\v\f\r";

// The pieces of the text between any of the separators; there are no empty ones.
std::vector<std::string> pieces_of(const std::string& text, const char* separators);

// 1 if there is nothing but white space, else 0.
int is_empty(const char* s);

// 1 if the whole text is one integer: white space, a sign, and decimal, octal (0...) or
// hexadecimal (0x...) digits; else 0, with nothing stored. The value is limited to 64 bits, of
// which the low 32 are stored.
int if_integer(const std::string& text, int* value);

constexpr int MAX_NUMBERS = 20;

// The numbers of a row up to the first text that is none, MAX_NUMBERS at most. Returns how many
// there are, -1 for a line of white space.
int read_numbers(const char* line, double (&numbers)[MAX_NUMBERS]);

// ---- Selection lists (selection.cpp) -----------------------------------------------------------

struct pair_t {
    int N, M;
    bool operator==(const pair_t&) const = default;
};

// Applies a kind list to a mask. 0, or 1 after a message about an unknown word.
int parse_data_string(const char* str, unsigned* Data);

// Parses one N-M item. 0, or 1 after a message, with nothing stored.
int parse_int_curve(const std::string& str, pair_t* pair);

// Parses a pair list. 0; 1 for an empty text, which changes nothing; 2 after a message about a bad
// item, with those before it kept.
int parse_int_curve_number(const char* inpstr, std::vector<pair_t>* pairs);

// ---- Command line (options.cpp) ----------------------------------------------------------------

enum { IMG_PNG = 1, IMG_EPS = 2, IMG_SVG = 3 };

struct options_t {
    char *ImgFname = nullptr, *UserTerminalName = nullptr;
    int MakeImage = 0, wx = 1200, wy = 800;
    int PlotGrid = 0, PlotLegend = 0;
    int PlotXtics = 1, PlotYtics = 0, PlotX2tics = 0, PlotY2tics = 0;
    int UserTerminal = 0, PlotBglPlus1 = 0, MultiPlot = 1, AutoShifts = 1, TableN = 1;
    double PlotRatio = 0.0, ShiftMult = 0.0;
    double LineWidthFactor = 1.0, ErrLineWidthFactor = 1.0, PointSizeFactor = 1.0;
    double smsStdevFactor = 1.0, ErrFillAlpha = 0.5;
    double Gxmin = -1e100, Gxmax = -1e100;
    unsigned DataToRead = 0x1ffff, DataToCombine = 0;
    std::vector<pair_t> ParToRead, ParToCombine;
    int smsErrBars = 0, dsmsErrBars = 0, smsErrFill = 0, dsmsErrFill = 0, dsmslErrFill = 0;
    int style_sms = 0, ptype_sms = 0;
    char *dread = nullptr, *dcombine = nullptr, *data = nullptr;
    char *cread = nullptr, *ccombine = nullptr, *curves = nullptr;
};

extern options_t Options;

// True if any of the five ways to show deviations is on.
bool any_deviation();

// Reads the command line into Options and returns the name of the input file. All errors are
// reported before the run ends.
std::string parse_command_line(int argc, char** argv);

void echo_settings();

// ---- Input file (lines.cpp, tables.cpp) --------------------------------------------------------

// The lines of a file, which is open as long as the object lives. One that cannot be opened or
// read ends the run.
struct lines_t {
    explicit lines_t(const char* file_name);
    lines_t(const lines_t&) = delete;
    lines_t& operator=(const lines_t&) = delete;
    ~lines_t() { std::fclose(in); }

    // The next line with its newline, 399 characters of it at most. At the end of the file there
    // may be one without newline, or nothing.
    std::string next();

    std::string name;
    std::FILE* in;
    bool is_at_end = false;  // the last line met the end of the file
};

// A data set.
struct curve_t {
    int Nd, Nc;
    double ScaleFactor;
    int PlotGroup = 0;
    double Shift[MAX_COLS] = {};
    std::vector<std::vector<double>> columns = {};  // [plot column][point]
};

// What has been read, and the groups that are made of it.
struct table_t {
    int Ncols = 0, ColType[MAX_COLS] = {};
    int NcolsToPlot = 0, PlotColType[MAX_COLS] = {}, PlotTypePos[MAX_COLS] = {};
    std::vector<curve_t> curves;
    int ColErrIdx[MAX_COLS] = {}, ColPlotGroup[MAX_COLS] = {};
    int ColGroupsToPlot = 0, CurveGroupsToPlot = 0;
    int CurCurvesGroupToPlot = 0, CurDataGroupToPlot = 0;
    bool AutoShiftsReady = false;
};

extern table_t Table;

// The layout by the version in the first line: 1, 2, or 0 if there is none.
int detect_int_table_version(const char* inpFname);

// Read the selected table of the file.
void parse_kova_int_tables_ver1(const char* inpFname);
void parse_kova_int_tables_ver2(const char* inpFname);

// The points of a plot column, none if the data set lacks it.
int points(const curve_t& curve, int column);

// True if the column of the data set is in the plot.
bool in_plot(const curve_t& curve, int column, int curve_group, int column_group);

// ---- Stacking (stacking.cpp) -------------------------------------------------------------------

struct buf_t {
    std::vector<double> x, y;
    int khi, klo;  // the points that bracketed the last look-up
};

extern std::vector<buf_t> buf;

void buf_initialize();
void buf_add(int n, const double* data_x, const double* data_y, double shift);

// The lowest and the highest value at x. Returns how many curves cover it. Two points of equal
// abscissa end the run.
int buf_y_min_max(double x, double* ymin, double* ymax);

// The shift that clears what is in the buffer, and the curve's own extent.
double buf_calc_shift(int n, const double* data_x, const double* data_y, double* data_min,
                      double* data_max, double direction);

// Stacks the curves of a plot.
void calc_shifts(int curve_group, int column_group);

// ---- Plots (plots.cpp) -------------------------------------------------------------------------

extern std::FILE* f;  // to gnuplot; null when none is running

// Sends the plots: settings, plot command and data of each, or the data only.
void data_plot(int give_commands);

// Sends the data of one plot.
void write_data_blocks(int curve_group, int column_group);

// ---- The run (run.cpp) -------------------------------------------------------------------------

// Thrown where a run ends early: its status, and the last thing that it has to say.
struct run_ended_t {
    int status;
    std::FILE* stream = nullptr;
    std::string message = {};
};

// Says it, and returns the status.
int finish(const run_ended_t& ended);

// Ends the run with status 1 and this message.
[[noreturn]] void fail(std::FILE* stream, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

// Prints to standard error, after all that was said before.
void complain(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Forgets everything, as if the program had just been started.
void start_again();

// The run after the command line: reads the file and draws it.
void draw(const char* inpFname);

}  // namespace plain
