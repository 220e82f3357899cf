// SPDX-License-Identifier: MIT
#include "program.h"

#include <popt.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "input/input.h"

bool SeveralInputs = false;

namespace {

struct label_t {
    int Nd, Nc;
};

}  // namespace

static int Ntables = 0;                   // of the file, up to the selected one
static std::vector<label_t> Labels;       // of its sets, whether they are read or not
static std::vector<columns_t> SetsEnded;  // of each set that was read to its end
static const char* InputName = nullptr;
static const char* OwnName = nullptr;  // of the program
static char Prefix[1000];              // the same with the table that is being read

// ---- What is met -------------------------------------------------------------------------------

static void meet_table() {
    Ntables++;
    if (SeveralInputs && Ntables == TableN) {
        std::snprintf(Prefix, sizeof Prefix, "%s: table %d of %s", OwnName, TableN, InputName);
        ProgramName = Prefix;
    }
}

static void meet_set(int Nd, int Nc) {
    Labels.push_back({Nd, Nc});
}

static void meet_header() {
    unsigned found = 0;
    for (int i = 0; i < Ncols; i++)
        found |= static_cast<unsigned>(ColType[i]);
    const unsigned missing = (KindsNamedToRead | KindsNamedToCombine) & ~found;
    if (missing == 0 && NcolsToPlot >= 2)
        return;
    ProgramName = OwnName;
    if (missing == 0)
        fail(stderr, "nothing to read in table %d of %s: is the file complete?\n", TableN,
             InputName);
    fail(stderr, "no kind %s in %s (table %d has %s)\n", kind_words(missing).c_str(), InputName,
         TableN, kind_words(found & ~unsigned{P_GINT_S | P_GINT_R}).c_str());
}

// The columns are those of its header row as long as no other set has begun.
static void meet_set_end() {
    columns_t columns = {NcolsToPlot, {}, {}};
    std::memcpy(columns.PlotColType, PlotColType, sizeof PlotColType);
    std::memcpy(columns.PlotTypePos, PlotTypePos, sizeof PlotTypePos);
    SetsEnded.push_back(columns);
}

// Such a row is most often the last one of a file that is being written.
static void meet_wrong_row() {
    fail(stderr, "a row of data set %d-%d does not have %d numbers: is the file complete?\n",
         CurveNd[Ncurves - 1], CurveNc[Ncurves - 1], Ncols);
}

// ---- The command line --------------------------------------------------------------------------

static const program_t* Program = nullptr;

static constexpr int OPT_VERSION = 118;
static constexpr int OPT_OWN = 2000;      // codes of a program's own options
static constexpr int OPT_REFUSED = 3000;  // and of those of gravlex that it refuses

static poptOption Table[100];

// What to use instead of an option of gravlex; null if it is not refused.
static const char* instead_of(const char* name) {
    for (const refused_options_t* row = Program->refused; row->instead != nullptr; row++) {
        for (const char* const* refused = row->names; *refused != nullptr; refused++) {
            if (std::strcmp(name, *refused) == 0)
                return row->instead;
        }
    }
    return nullptr;
}

// A refused option is known, but not in the help.
static void refuse_option(poptOption* option) {
    option->argInfo = (option->argInfo == POPT_ARG_NONE ? POPT_ARG_NONE : POPT_ARG_STRING) |
                      POPT_ARGFLAG_DOC_HIDDEN;
    option->arg = nullptr;
    option->val = OPT_REFUSED + static_cast<int>(option - Table);
}

// The program's own options, then those of gravlex.
static const poptOption* program_table() {
    poptOption* to = Table;
    for (const poptOption* own = Program->options; own->longName != nullptr; own++)
        *to++ = *own;
    for (const poptOption* common = optionsTable;
         common->longName != nullptr || common->arg != nullptr; common++) {
        *to = *common;
        if (common->longName != nullptr && instead_of(common->longName) != nullptr)
            refuse_option(to);
        to++;
    }
    return Table;
}

static bool handle_program_option(int code) {
    if (code == OPT_VERSION) {
        std::printf("%s of Gravlex version %s\n%s\n", ProgramName, VERSION, ATTRIBUTION);
        std::exit(EXIT_SUCCESS);
    }
    if (code < OPT_OWN)
        return handle_option(code);
    if (code < OPT_REFUSED)
        return Program->handle(code);
    const char* name = Table[code - OPT_REFUSED].longName;
    complain("--%s makes no sense here: %s\n", name, instead_of(name));
    return false;
}

// ---- The input ---------------------------------------------------------------------------------

// GCOV_EXCL_START faults/memory
static void end_without_memory() {
    fail(stderr, "Cannot allocate memory\n");
}
// GCOV_EXCL_STOP

void require_number(const char* option, double value, double least, double most) {
    if (!(least <= value && value <= most))
        fail(stderr, "--%s is a number from %g to %g\n", option, least, most);
}

// gnuplot would take others and draw something else, or nothing.
static void require_numbers() {
    require_number("lw", LineWidthFactor, 0, 1000);
    require_number("elw", ErrLineWidthFactor, 0, 1000);
    require_number("psf", PointSizeFactor, 0, 1000);
    require_number("efa", ErrFillAlpha, 0, 1);
    require_number("ratio", PlotRatio, -1e6, 1e6);
    require_number("smsef", smsStdevFactor, 0, 1000);
    require_number("style_sms", Type[d_idx(P_GINT_SMS)].style_type, ST_LINES, ST_LPOINTS);
    if (Gxmin != GX_NOT_GIVEN)
        require_number("xmin", Gxmin, -1e15, 1e15);
    if (Gxmax != GX_NOT_GIVEN)
        require_number("xmax", Gxmax, -1e15, 1e15);
}

char** start_program(int argc, char** argv, const program_t& program) {
    std::set_new_handler(end_without_memory);
    ProgramName = program.name;
    Program = &program;
    prepare_process();
    char** names =
        parse_options(argc, argv, program_table(), program.arguments, handle_program_option);
    require_numbers();
    return names;
}

const char* only_input(char** names) {
    if (names[1] != nullptr)
        fail(stderr, "one input file at a time, not %s as well\n", names[1]);
    return names[0];
}

static void read_tables() {
    MetTable = meet_table;
    MetSet = meet_set;
    MetHeader = meet_header;
    MetSetEnd = meet_set_end;
    MetWrongRow = meet_wrong_row;
    OwnName = ProgramName;
    if (detect_int_table_version(InputName) == 2)
        parse_kova_int_tables_ver2(InputName);
    else
        parse_kova_int_tables_ver1(InputName);
    ProgramName = OwnName;
}

const columns_t& own_columns(int c) {
    return SetsEnded[static_cast<std::size_t>(c)];
}

// The labels of the table, as many as a sentence can hold.
static std::string labels() {
    std::string text;
    for (const label_t& label : Labels) {
        if (text.size() > 360)
            return text + ", ...";
        text += text.empty() ? "" : ", ";
        text += std::to_string(label.Nd) + "-" + std::to_string(label.Nc);
    }
    return text;
}

static void require_table() {
    if (Ntables == 0)
        fail(stderr, "%s is no output of KOVA: there is no table in it\n", InputName);
    if (TableN < 1 || TableN > Ntables)
        fail(stderr, "no table %d in %s (it has %d)\n", TableN, InputName, Ntables);
    if (Labels.empty())
        fail(stderr, "no data sets in table %d of %s\n", TableN, InputName);
}

void require_set(int Nd, int Nc) {
    for (const label_t& label : Labels) {
        if (label.Nd == Nd && label.Nc == Nc)
            return;
    }
    fail(stderr, "no data set %d-%d in %s (table %d has %s)\n", Nd, Nc, InputName, TableN,
         labels().c_str());
}

static void require_sets() {
    for (int i = 0; i < NparToRead; i++)
        require_set(ParToReadNum1[i], ParToReadNum2[i]);
    for (int i = 0; i < NparToCombine; i++)
        require_set(ParToCombineNum1[i], ParToCombineNum2[i]);
    if (static_cast<int>(SetsEnded.size()) < Ncurves)
        fail(stderr, "%s ends in the middle of data set %d-%d\n", InputName, CurveNd[Ncurves - 1],
             CurveNc[Ncurves - 1]);
    for (int c = 0; c < Ncurves; c++) {
        if (Npts[c] == 0)
            fail(stderr, "data set %d-%d of %s has no rows\n", CurveNd[c], CurveNc[c], InputName);
    }
}

// Where they are missing, gravlex takes the s-values for them.
static void require_deviations() {
    for (int j = 1; j < NcolsToPlot; j++) {
        const deviation_t deviation = deviation_of(PlotColType[j]);
        if (deviation != DEV_NONE && deviation != DEV_HIDDEN && ColErrIdx[j] == 0)
            fail(stderr, "no deviations to show in %s: read smss as well\n", InputName);
    }
}

void read_input(const char* inpFname) {
    InputName = inpFname;
    read_tables();
    require_table();
    require_sets();
    link_deviations();
    require_deviations();
    group_columns();
    group_curves();
}

static void require_equal_columns() {
    const columns_t& first = own_columns(0);
    for (int c = 1; c < Ncurves; c++) {
        const columns_t& own = own_columns(c);
        if (own.NcolsToPlot == first.NcolsToPlot &&
            std::memcmp(own.PlotColType, first.PlotColType, sizeof first.PlotColType) == 0)
            continue;
        fail(stderr,
             "data sets %d-%d and %d-%d of %s have different columns: choose with --curves\n",
             CurveNd[0], CurveNc[0], CurveNd[c], CurveNc[c], InputName);
    }
}

void prepare_plots() {
    require_equal_columns();
    if (own_columns(0).PlotColType[0] != P_GINT_S)
        fail(stderr, "the first column of the data sets in %s is not s\n", InputName);
    if (column_of(own_columns(0), P_GINT_R) > 0)
        fail(stderr, "R-values cannot be drawn: name the kinds of %s with --data\n", InputName);
    bool found = false;
    for_each_plot([&found](plot_t plot) { found = found || has_series(plot); });
    if (!found)
        fail(stderr, "nothing to draw in table %d of %s\n", TableN, InputName);
    if (AutoShifts)
        calc_shifts({1, 1});
}

// gnuplot is sent six decimals: ends that have the same are equal to it. What has no place is
// infinite, no number, or 1e99 where nothing was found.
static bool widen(double* from, double* to) {
    if (std::rint(*from * 1e6) == std::rint(*to * 1e6)) {
        const double room = std::max(1.0, 0.05 * std::fabs(*from));
        *from -= room;
        *to += room;
    }
    return std::isfinite(*to - *from) && *from < 1e98;
}

bool find_ranges(plot_t plot, ranges_t* ranges) {
    if (!has_series(plot))
        return false;
    *ranges = plot_ranges(plot);
    return widen(&ranges->xmin, &ranges->xmax) && widen(&ranges->ymin, &ranges->ymax);
}

void require_ranges() {
    bool found = false;
    for_each_plot([&found](plot_t plot) {
        ranges_t ranges = {};
        found = found || find_ranges(plot, &ranges);
    });
    if (!found)
        fail(stderr, "no numbers to draw in %s\n", InputName);
}

// ---- Numbers -----------------------------------------------------------------------------------

const refused_options_t ChangingOptions[] = {
    {{"bglp1", "smsef"}, "numbers are copied; give it to gravlex with the joined file"},
    {{"png",      "eps",   "svg",    "imgw",   "imgl",      "grid",     "legend",
      "no-xtics", "ytics", "x2tics", "y2tics", "ratio",     "term",     "no-multiplot",
      "lw",       "elw",   "psf",    "efa",    "style_sms", "ptype_sms"},
     "gravlex and gravlex-figure draw, this program writes numbers"},
    {{"no-autoshifts", "shiftmult"}, "curves are written without shifts"},
    {{"dcombine"}, "use --dread"},
    {{"ccombine"}, "use --cread"},
    {{"smserrbars", "dsmserrbars", "smserrfill", "dsmserrfill", "dsmslerrfill"},
     "use --dread with smss"},
    {{"xmin", "xmax"}, "whole curves are written"},
    {},
};
const refused_options_t* const DrawingOptions = ChangingOptions + 1;

const char* column_word(int kind) {
    const char* word = kind_word(kind);
    if (word != nullptr)
        return word;
    return kind == P_GINT_S ? "s" : "r";
}

std::string kind_words(unsigned mask) {
    std::string words;
    for (const data_type_t& kind : Type) {
        if (is_in(kind.type, mask))
            words.append(words.empty() ? "" : ", ").append(column_word(kind.type));
    }
    if (words.empty())
        words = "none";
    return words;
}

int column_of(const columns_t& columns, int kind) {
    for (int j = 0; j < columns.NcolsToPlot; j++) {
        if (columns.PlotColType[j] == kind)
            return j;
    }
    return -1;
}
