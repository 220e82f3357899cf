// SPDX-License-Identifier: MIT
#include "program.h"

#include <popt.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "input/input.h"

bool SeveralInputs = false;

static int Ntables = 0;                    // of the file, up to the selected one
static std::vector<set_t> Sets;            // of the table, whether they are read or not
static std::vector<std::size_t> ReadSets;  // index in Sets of each set that was read
static int SetsEnded = 0;                  // sets that were read to their end
static set_t FirstHeader = {};             // layout 1 has one for all sets
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
    Sets.push_back(FirstHeader);
    Sets.back().Nd = Nd;
    Sets.back().Nc = Nc;
}

static void require_named_kinds() {
    unsigned found = 0;
    for (int i = 0; i < Ncols; i++)
        found |= static_cast<unsigned>(ColType[i]);
    const unsigned missing = KindsNamed & ~found;
    if (missing == 0)
        return;
    ProgramName = OwnName;
    fail(stderr, "no kind %s in %s (table %d has %s)\n", kind_words(missing).c_str(), InputName,
         TableN, kind_words(found & ~unsigned{P_GINT_S | P_GINT_R}).c_str());
}

static void meet_header() {
    require_named_kinds();
    set_t& header = Sets.empty() ? FirstHeader : Sets.back();
    header.NcolsToPlot = NcolsToPlot;
    std::memcpy(header.PlotColType, PlotColType, sizeof PlotColType);
    std::memcpy(header.PlotTypePos, PlotTypePos, sizeof PlotTypePos);
}

static void meet_set_end() {
    SetsEnded++;
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

// The place of an option among the refused ones, -1 if it is none of them.
static int refused_place(const char* name) {
    for (int i = 0; Program->refused[i].name != nullptr; i++) {
        if (name != nullptr && std::strcmp(name, Program->refused[i].name) == 0)
            return i;
    }
    return -1;
}

// The program's own options, then those of gravlex. A refused one is known, but not in the help.
static const poptOption* program_table() {
    static poptOption table[100];
    poptOption* to = table;
    for (const poptOption* own = Program->options; own->longName != nullptr; own++)
        *to++ = *own;
    const poptOption* from = optionsTable;
    for (; from->longName != nullptr || from->arg != nullptr; from++) {
        *to = *from;
        const int place = refused_place(from->longName);
        if (place != -1) {
            to->argInfo = (from->argInfo == POPT_ARG_NONE ? POPT_ARG_NONE : POPT_ARG_STRING) |
                          POPT_ARGFLAG_DOC_HIDDEN;
            to->arg = nullptr;
            to->val = OPT_REFUSED + place;
        }
        to++;
    }
    *to = *from;
    return table;
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
    const refused_option_t& refused = Program->refused[code - OPT_REFUSED];
    complain("--%s makes no sense here: %s\n", refused.name, refused.instead);
    return false;
}

// ---- The input ---------------------------------------------------------------------------------

// GCOV_EXCL_START faults/memory
static void end_without_memory() {
    fail(stderr, "Cannot allocate memory\n");
}
// GCOV_EXCL_STOP

char** start_program(int argc, char** argv, const program_t& program) {
    std::set_new_handler(end_without_memory);
    ProgramName = program.name;
    Program = &program;
    prepare_process();
    return parse_options(argc, argv, program_table(), program.arguments, handle_program_option);
}

const char* only_input(char** names) {
    if (names[1] != nullptr)
        fail(stderr, "one input file at a time, not %s as well\n", names[1]);
    return names[0];
}

static bool is_set(const set_t& set, int Nd, int Nc) {
    return set.Nd == Nd && set.Nc == Nc;
}

static void read_tables() {
    MetTable = meet_table;
    MetSet = meet_set;
    MetHeader = meet_header;
    MetSetEnd = meet_set_end;
    OwnName = ProgramName;
    MetWrongRow = meet_wrong_row;
    if (detect_int_table_version(InputName) == 2)
        parse_kova_int_tables_ver2(InputName);
    else
        parse_kova_int_tables_ver1(InputName);
    ProgramName = OwnName;
    // Each set that was read, in the order of the file.
    for (std::size_t i = 0; i < Sets.size(); i++) {
        const int c = static_cast<int>(ReadSets.size());
        if (c < Ncurves && is_set(Sets[i], CurveNd[c], CurveNc[c]))
            ReadSets.push_back(i);
    }
}

const set_t& own_columns(int c) {
    return Sets[ReadSets[static_cast<std::size_t>(c)]];
}

// The labels of the table, as many as a sentence can hold.
static std::string labels() {
    std::string text;
    for (const set_t& set : Sets) {
        if (text.size() > 360)
            return text + ", ...";
        text += text.empty() ? "" : ", ";
        text += std::to_string(set.Nd) + "-" + std::to_string(set.Nc);
    }
    return text;
}

static void require_table() {
    if (Ntables == 0)
        fail(stderr, "%s is no output of KOVA: there is no table in it\n", InputName);
    if (TableN < 1 || TableN > Ntables)
        fail(stderr, "no table %d in %s (it has %d)\n", TableN, InputName, Ntables);
    if (Sets.empty())
        fail(stderr, "no data sets in table %d of %s\n", TableN, InputName);
}

void require_set(int Nd, int Nc) {
    for (const set_t& set : Sets) {
        if (is_set(set, Nd, Nc))
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
    if (SetsEnded < Ncurves)
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

int in_child(const std::function<void()>& work) {
    const pid_t own = getpid();
    const pid_t child = fork();
    // GCOV_EXCL_START no process to be had
    if (child == -1)
        fail(stderr, "cannot start another process: %s\n", std::strerror(errno));
    // GCOV_EXCL_STOP
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() == own)  // GCOV_EXCL_BR_LINE it has ended already
            work();
        std::exit(EXIT_SUCCESS);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status))
        fail(stderr, "the process that reads was ended: %s\n", strsignal(WTERMSIG(status)));
    return WEXITSTATUS(status);
}

void require_equal_columns(const char* inpFname) {
    const set_t& first = own_columns(0);
    for (int c = 1; c < Ncurves; c++) {
        const set_t& set = own_columns(c);
        if (set.NcolsToPlot == first.NcolsToPlot &&
            std::memcmp(set.PlotColType, first.PlotColType, sizeof first.PlotColType) == 0)
            continue;
        fail(stderr,
             "data sets %d-%d and %d-%d of %s have different columns: choose with --curves\n",
             CurveNd[0], CurveNc[0], CurveNd[c], CurveNc[c], inpFname);
    }
}

void prepare_plots(const char* inpFname) {
    bool found = false;
    for_each_plot([&found](plot_t plot) { found = found || has_series(plot); });
    for (int j = 1; j < NcolsToPlot; j++) {
        if (PlotColType[j] == P_GINT_R)
            fail(stderr, "R-values cannot be drawn: name the kinds of %s with --data\n", inpFname);
    }
    if (!found)
        fail(stderr, "nothing to draw in table %d of %s\n", TableN, inpFname);
    if (AutoShifts)
        calc_shifts({1, 1});
}

// ---- Numbers -----------------------------------------------------------------------------------

static constexpr char DRAW[] = "gravlex and gravlex-figure draw, this program writes numbers";
static constexpr char WHOLE[] = "whole curves are written";
static constexpr char UNSHIFTED[] = "curves are written without shifts";
static constexpr char COPIED[] = "numbers are copied; give it to gravlex with the joined file";

const refused_option_t ChangingOptions[] = {
    {"bglp1", COPIED},
    {"smsef", COPIED},
    {"png", DRAW},
    {"eps", DRAW},
    {"svg", DRAW},
    {"imgw", DRAW},
    {"imgl", DRAW},
    {"grid", DRAW},
    {"legend", DRAW},
    {"no-xtics", DRAW},
    {"ytics", DRAW},
    {"x2tics", DRAW},
    {"y2tics", DRAW},
    {"ratio", DRAW},
    {"term", DRAW},
    {"no-multiplot", DRAW},
    {"no-autoshifts", UNSHIFTED},
    {"shiftmult", UNSHIFTED},
    {"lw", DRAW},
    {"elw", DRAW},
    {"psf", DRAW},
    {"efa", DRAW},
    {"dcombine", "use --dread"},
    {"ccombine", "use --cread"},
    {"smserrbars", "use --dread with smss"},
    {"dsmserrbars", "use --dread with smss"},
    {"smserrfill", "use --dread with smss"},
    {"dsmserrfill", "use --dread with smss"},
    {"dsmslerrfill", "use --dread with smss"},
    {"style_sms", DRAW},
    {"ptype_sms", DRAW},
    {"xmin", WHOLE},
    {"xmax", WHOLE},
    {nullptr, nullptr},
};
const refused_option_t* const DrawingOptions = ChangingOptions + 2;

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
    return words;
}

int column_of(const set_t& set, int kind) {
    for (int j = 0; j < set.NcolsToPlot; j++) {
        if (set.PlotColType[j] == kind)
            return j;
    }
    return -1;
}
