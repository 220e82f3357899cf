// SPDX-License-Identifier: MIT
//
// Both layouts of an intensity table, as the readers walk through them. Lines marked "|" are
// passed over unread; "..." stands for any number of lines of any kind.
//
//   Layout 1: one header row a table         Layout 2: one header row a set
//
//     ...GED curves....                        ...GED curves....
//   | (any line)                             | (any line)
//     Label   |  Label   |  Label   |          Set: 1-1 ...               <----------+
//   | (any line)                               ...                                   |
//     ... Curve: (1-1) ... =0.95 ...  <--+     Scale=0.95 ...                        |
//   | (any line)                         |     ...                                   |
//     numbers                            |     ----------------                      |
//     numbers                            |     Label   |  Label   |  Label   |       |
//     =================== ---------------+   | (any line)                            |
//     or, after the last set,                  numbers                               |
//     -------------------                      numbers                               |
//                                              ---------------- ---------------------+
//                                              (a blank line ends the table)
//
// What surprises people:
// - The header row is not recognised by its look: it is the line at its place. A number belongs to
//   the label that stands at the same rank, so a column without a known label spoils every row.
// - A line that ends the file does not end a set: without its rule, an empty line is the next row.
// - In layout 1 only the rule after a set that was read ends the table. If the last set is not
//   selected, the search for sets goes on to the end of the file. Programs that want to know of
//   tables are told the truth: there the next table ends this one.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "input/input.h"

static constexpr char TABLE_MARK[] = "GED curves.";
static constexpr char SET_MARK_VER1[] = "Curve: ";
static constexpr char SET_MARK_VER2[] = "Set: ";
static constexpr char SCALE_MARK[] = "Scale=";
static constexpr char SET_END_VER1[] = "===================";
static constexpr char TABLE_END_VER1[] = "-------------------";
static constexpr char RULE_VER2[] = "----------------";

namespace {

struct label_t {
    const char* text;
    int kind;
};

// What the line that comes next is to the reader. Each layout passes its own in order.
enum stage_t {
    STAGE_TABLE,   // looking for the table
    STAGE_SET,     // looking for a set
    STAGE_SCALE,   // layout 2: looking for the set's scale factor
    STAGE_RULE,    // layout 2: looking for the rule above the header row
    STAGE_HEADER,  // the header row
    STAGE_ROWS,    // rows of numbers
    STAGE_END,     // nothing: the table has been read
};

}  // namespace

static const label_t Labels[MAX_COLS] = {
    {"   Total Int.  |", P_GINT_INT},  {"    Red. Int.  |", P_GINT_RINT},
    {"    Lvl. Int.  |", P_GINT_LINT}, {"   Background  |", P_GINT_BGL},
    {"   Exp. sM(s)  |", P_GINT_SMS},  {"   Thr. sM(s)  |", P_GINT_TSMS},
    {"  Delta sM(s)  |", P_GINT_DSMS}, {"   Sec. Func.  |", P_GINT_SEC},
    {"   At. Scat.   |", P_GINT_IAT},  {"       S      |", P_GINT_S},
    {"    Red. Bgl   |", P_GINT_RBGL}, {"    Lvl. Bgl   |", P_GINT_LBGL},
    {"  sM(s) St.dev |", P_GINT_SMSS}, {"  Int. St.dev  |", P_GINT_INTS},
    {"      R      |", P_GINT_R},      {" Thr. Tot. Int |", P_GINT_TINT},
    {"   Delta Int.  |", P_GINT_DINT},
};

// How many tables were met. Label and factor of a set stand until the next one has its own.
static int tableN;
static int CurNd, CurNc;
static double ScaleFactor;

void (*MetTable)() = nullptr;
void (*MetSet)(int Nd, int Nc) = nullptr;
void (*MetHeader)() = nullptr;
void (*MetSetEnd)() = nullptr;
void (*MetFactor)(const char* text) = nullptr;
void (*MetRow)(const char* line) = nullptr;
void (*MetWrongRow)() = nullptr;

static bool has(const char* line, const char* mark) {
    return std::strstr(line, mark) != nullptr;
}

const char* column_label(int kind) {
    return std::find_if(Labels, Labels + MAX_COLS,
                        [kind](const label_t& label) { return label.kind == kind; })
        ->text;
}

static void pass_over_line() {
    char line[LINE_SIZE];
    read_line(line);
}

// ---- Both layouts ------------------------------------------------------------------------------

// To be called at the mark of a table: counts it, and passes over the line below the mark. True if
// it is the one to be read.
static bool enter_table() {
    tableN++;
    if (MetTable != nullptr)
        MetTable();
    pass_over_line();
    return tableN == TableN;
}

// Enters each label that is in the row before those that stand to the right of it.
static void find_columns(const char* inpstr) {
    clear_columns();
    for (const label_t& label : Labels) {
        const char* ssbeg = std::strstr(inpstr, label.text);
        if (ssbeg == nullptr)
            continue;
        const int position = static_cast<int>(ssbeg - inpstr);
        int i = Ncols++;
        for (; i > 0 && TypePos[i - 1] > position; i--) {
            TypePos[i] = TypePos[i - 1];
            ColType[i] = ColType[i - 1];
        }
        TypePos[i] = position;
        ColType[i] = label.kind;
    }
}

static void select_columns() {
    say("%d types of data have been found:\n", Ncols);
    for (int i = 0; i < Ncols; i++) {
        say(" %d %s \n", i, Type[d_idx(ColType[i])].name);
        if (!is_in(ColType[i], DataToRead))
            continue;
        PlotColType[NcolsToPlot] = ColType[i];
        PlotTypePos[NcolsToPlot] = i;
        NcolsToPlot++;
    }
    say("%d types of data are subject to process:\n", NcolsToPlot);
    for (int j = 0; j < NcolsToPlot; j++)
        say(" %d %s (column %d)\n", j, Type[d_idx(PlotColType[j])].name, PlotTypePos[j]);
}

static void read_header_row(const char* inpstr) {
    find_columns(inpstr);
    select_columns();
    if (MetHeader != nullptr)
        MetHeader();
    if (NcolsToPlot < 2)
        fail(stdout, "Not enough data for plotting.\n");
    pass_over_line();
}

// To be called when a set is met. True if CurNd-CurNc is to be read.
static bool is_selected() {
    if (MetSet != nullptr)
        MetSet(CurNd, CurNc);
    for (int i = 0; i < NparToRead; i++) {
        if (ParToReadNum1[i] == CurNd && ParToReadNum2[i] == CurNc)
            return true;
    }
    return NparToRead == 0;
}

// Reading makes the corrections that depend on the column, so that nothing after it needs to.
static double corrected(double v, int kind, double factor) {
    if (PlotBglPlus1 && is_in(kind, P_GINT_BGL | P_GINT_RBGL | P_GINT_LBGL))
        v = v + 1.0;
    if (kind == P_GINT_SMSS)
        v = v * smsStdevFactor;
    if (is_in(kind, P_GINT_SMS | P_GINT_TSMS | P_GINT_DSMS | P_GINT_SMSS))
        v = v / factor;
    return v;
}

static void read_data_row(const char* inpstr) {
    const int c = Ncurves - 1;
    append_point();
    double dtmp[MAX_NUMBERS];
    const int nrd = read_numbers(inpstr, dtmp);
    if (nrd != Ncols && MetWrongRow != nullptr)
        MetWrongRow();  // GCOV_EXCL_BR_LINE it does not come back
    if (nrd != Ncols)
        fail(stdout, "Invalid number of columns: expected %d, read %d \n", Ncols, nrd);
    for (int j = 0; j < NcolsToPlot; j++)
        Curve[c][j][Npts[c] - 1] =
            corrected(dtmp[PlotTypePos[j]], PlotColType[j], CurveScaleFactor[c]);
    if (MetRow != nullptr)
        MetRow(inpstr);
}

static void report_factor(const char* text) {
    if (MetFactor != nullptr)
        MetFactor(text);
}

static void report_set() {
    const int c = Ncurves - 1;
    say("Set # %d has been read. Number of data points: %d \n", c, Npts[c]);
    if (MetSetEnd != nullptr)
        MetSetEnd();
}

// Runs one layout's stages over the lines of the file. The line that meets the end of the file is
// the last one handled; a line that is passed over does not count.
static void read_table(const char* inpFname,
                       stage_t (*handle)(stage_t stage, char (&line)[LINE_SIZE])) {
    char inpstr[LINE_SIZE];
    bool at_end = false;
    open_input(inpFname);
    tableN = 0;
    CurNd = CurNc = 0;
    ScaleFactor = 1.0;
    for (stage_t stage = STAGE_TABLE; stage != STAGE_END && !at_end;) {
        at_end = read_line(inpstr);
        stage = handle(stage, inpstr);
    }
    close_input();
}

// ---- Layout 1 ----------------------------------------------------------------------------------

// The label stands in the first parentheses that close, from the last "(" before them. A line
// without ")" keeps the label of the set before.
static void read_label_ver1(const char* inpstr) {
    char inpstrwork[LINE_SIZE];
    std::strcpy(inpstrwork, inpstr);
    char* end = std::strchr(inpstrwork, ')');
    if (end == nullptr)
        return;
    *end = '\0';
    const char* bracket = std::strrchr(inpstrwork, '(');
    const char* label = (bracket == nullptr ? inpstrwork : bracket) + 1;
    if (parse_int_curve(label, &CurNd, &CurNc) != 0)
        fail(stdout, "Incorrect format of curve representation: %s \n", label);
}

// The factor stands between the last "=" (not at the start of the line) and the first blank that
// follows an "=". A line without such a blank keeps the factor of the set before.
static void read_factor_ver1(const char* inpstr) {
    char inpstrwork[LINE_SIZE];
    std::strcpy(inpstrwork, inpstr);
    char* equals = std::strchr(inpstrwork + 1, '=');
    char* blank = equals == nullptr ? nullptr : std::strchr(equals, ' ');
    if (blank == nullptr)
        return;
    *blank = '\0';
    const char* text = std::strrchr(equals, '=') + 1;
    char* endptr;
    errno = 0;
    ScaleFactor = std::strtod(text, &endptr);
    if (errno != 0)
        fail(stderr, "Invalid scale factor (strtod failed) for curve (%d-%d): %s \n", CurNd, CurNc,
             text);
    if (endptr == text)
        fail(stderr, "No digits were found for ScaleFactor of curve (%d-%d)!\n", CurNd, CurNc);
    report_factor(text);
}

static stage_t open_set_ver1(const char* inpstr) {
    read_label_ver1(inpstr);
    read_factor_ver1(inpstr);
    if (!is_selected())
        return STAGE_SET;
    append_curve(CurNd, CurNc, ScaleFactor);
    create_curve_columns();
    pass_over_line();
    return STAGE_ROWS;
}

static stage_t read_row_ver1(const char* inpstr) {
    if (has(inpstr, SET_END_VER1)) {
        report_set();
        return STAGE_SET;
    }
    if (has(inpstr, TABLE_END_VER1)) {
        report_set();
        say("End of data table.\n");
        return STAGE_END;
    }
    read_data_row(inpstr);
    return STAGE_ROWS;
}

static stage_t look_for_table_ver1(const char* inpstr) {
    if (!has(inpstr, TABLE_MARK))
        return STAGE_TABLE;
    clear_columns();
    return enter_table() ? STAGE_HEADER : STAGE_TABLE;
}

// See above: for gravlex the search goes on behind the mark of the next table.
static stage_t look_for_set_ver1(const char* inpstr) {
    if (MetTable != nullptr && has(inpstr, TABLE_MARK))
        return STAGE_END;
    return has(inpstr, SET_MARK_VER1) ? open_set_ver1(inpstr) : STAGE_SET;
}

static stage_t handle_ver1(stage_t stage, char (&inpstr)[LINE_SIZE]) {
    switch (stage) {  // GCOV_EXCL_BR_LINE
        case STAGE_TABLE:
            return look_for_table_ver1(inpstr);
        case STAGE_HEADER:
            read_header_row(inpstr);
            return STAGE_SET;
        case STAGE_SET:
            return look_for_set_ver1(inpstr);
        case STAGE_ROWS:
            return read_row_ver1(inpstr);
        // GCOV_EXCL_START what this layout does not have, or does not come to
        case STAGE_SCALE:
        case STAGE_RULE:
        case STAGE_END:
            break;
    }
    return STAGE_END;
    // GCOV_EXCL_STOP
}

void parse_kova_int_tables_ver1(const char* inpFname) {
    read_table(inpFname, handle_ver1);
}

// ---- Layout 2 ----------------------------------------------------------------------------------

// Cuts the line after the word that follows the mark. Null if no white space ends that word.
static char* word_after(char* inpstr, const char* mark) {
    char* word = std::strstr(inpstr, mark) + std::strlen(mark);
    char* end = word + std::strcspn(word, " \t\n\v\f\r");
    if (*end == '\0')
        return nullptr;
    *end = '\0';
    return word;
}

// A label that no white space ends keeps that of the set before.
static stage_t open_set_ver2(char* inpstr) {
    const char* setstr = word_after(inpstr, SET_MARK_VER2);
    if (setstr != nullptr && parse_int_curve(setstr, &CurNd, &CurNc) != 0)
        fail(stdout, "Incorrect format of curve representation: '%s'\n", setstr);
    if (!is_selected())
        return STAGE_SET;
    append_curve(CurNd, CurNc, 1.0);
    return STAGE_SCALE;
}

static void read_factor_ver2(char* inpstr) {
    ScaleFactor = 1.0;
    const char* scstr = word_after(inpstr, SCALE_MARK);
    if (scstr != nullptr) {
        char* endptr;
        errno = 0;
        ScaleFactor = std::strtod(scstr, &endptr);
        if (errno != 0)
            fail(stderr, "Invalid scale factor for curve %d-%d: '%s'\n", CurNd, CurNc, scstr);
        if (endptr == scstr)
            fail(stderr, "No digits were found for ScaleFactor of curve %d-%d\n", CurNd, CurNc);
    }
    say("Scale(%d-%d)=%e\n", CurNd, CurNc, ScaleFactor);
    CurveScaleFactor[Ncurves - 1] = ScaleFactor;
    report_factor(scstr == nullptr ? "1" : scstr);
}

static stage_t look_for_table_ver2(const char* inpstr) {
    return has(inpstr, TABLE_MARK) && enter_table() ? STAGE_SET : STAGE_TABLE;
}

static stage_t look_for_set_ver2(char* inpstr) {
    if (has(inpstr, SET_MARK_VER2))
        return open_set_ver2(inpstr);
    return is_empty(inpstr) ? STAGE_END : STAGE_SET;
}

static stage_t read_row_ver2(const char* inpstr) {
    if (has(inpstr, RULE_VER2)) {
        report_set();
        return STAGE_SET;
    }
    read_data_row(inpstr);
    return STAGE_ROWS;
}

static stage_t handle_ver2(stage_t stage, char (&inpstr)[LINE_SIZE]) {
    switch (stage) {  // GCOV_EXCL_BR_LINE
        case STAGE_TABLE:
            return look_for_table_ver2(inpstr);
        case STAGE_SET:
            return look_for_set_ver2(inpstr);
        case STAGE_SCALE:
            if (!has(inpstr, SCALE_MARK))
                return STAGE_SCALE;
            read_factor_ver2(inpstr);
            return STAGE_RULE;
        case STAGE_RULE:
            return has(inpstr, RULE_VER2) ? STAGE_HEADER : STAGE_RULE;
        case STAGE_HEADER:
            read_header_row(inpstr);
            create_curve_columns();
            return STAGE_ROWS;
        case STAGE_ROWS:
            return read_row_ver2(inpstr);
        // GCOV_EXCL_START
        case STAGE_END:
            break;
    }
    return STAGE_END;
    // GCOV_EXCL_STOP
}

void parse_kova_int_tables_ver2(const char* inpFname) {
    NcolsToPlot = MAX_COLS;
    read_table(inpFname, handle_ver2);
}
