// SPDX-License-Identifier: MIT
//
// The plain way: the whole tool a second time, in one file and without a single clever idea. Lines
// come from fgets, numbers from sscanf, arrays grow by one element at a time, every number goes to
// gnuplot through fprintf.
//
// It has two uses. The benchmark measures the real program against it, and tests/agree/agree.py
// runs both on the same random inputs: they must agree in every byte. It therefore shares nothing
// with the program, not even a table. Whoever changes what the program does changes it here as
// well, by hand and without looking at the other side.

#include <popt.h>

#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// ---------------------------------------------------------------------------- kinds of data

// clang-format off
enum {
    P_GINT_INT = 0x1, P_GINT_BGL = 0x2, P_GINT_SMS = 0x4, P_GINT_TSMS = 0x8, P_GINT_DSMS = 0x10,
    P_GINT_RINT = 0x20, P_GINT_SEC = 0x40, P_GINT_IAT = 0x80, P_GINT_S = 0x100,
    P_GINT_RBGL = 0x200, P_GINT_SMSS = 0x400, P_GINT_INTS = 0x800, P_GINT_R = 0x1000,
    P_GINT_LINT = 0x2000, P_GINT_LBGL = 0x4000, P_GINT_TINT = 0x8000, P_GINT_DINT = 0x10000
};
enum { MAX_COLS = 17 };
enum { ST_LINES = 1, ST_POINTS = 2, ST_LPOINTS = 3, ST_SPECIAL = 4 };
enum { IMG_PNG = 1, IMG_EPS = 2, IMG_SVG = 3 };
enum { LINE_SIZE = 400, ITEM_SIZE = 100, WORD_SIZE = 50 };
// clang-format on

struct data_type_t {
    int type;
    char name[100];
    char name_short[30];
    char name_eps[100];
    char style_color[20];
    int style_type;
    int p_type;
    double style_lw;
    double style_crad;
    int user;
};

#define EPS_I "{/Arial-Italic I}({/Arial-Italic s})"
#define EPS_B "{/Arial-Italic B}({/Arial-Italic s})"
#define EPS_M "{/Arial-Italic sM}({/Arial-Italic s})"
#define EPS_K "{/Arial-Italic K}({/Arial-Italic s})"
#define EPS_D "{/Arial-Italic S}({/Arial-Italic s})"

static data_type_t Type[MAX_COLS] = {
    {0x100, "S-values", "S", "S", "black", 0, 0, 1.5, 0.0, 0},
    {0x1, "Total experimental intensity", "Tot.Exp.Int.", EPS_I, "black", 1, 6, 2.0, 0.0, 0},
    {0x20, "Reduced experimental intensity", "Red.Exp.Int.", EPS_I, "black", 1, 6, 2.0, 0.0, 0},
    {0x2, "Background", "Bgl.", EPS_B, "black", 1, 6, 2.0, 0.0, 0},
    {0x4, "Experimental sM(s)", "Exp.sM(s)", EPS_M, "black", 2, 6, 1.0, 0.0, 0},
    {0x8, "Theoretical sM(s)", "Thr.sM(s)", EPS_M, "#AA0000", 1, 6, 2.0, 0.0, 0},
    {0x10, "Delta sM(s)", "D.sM(s)", EPS_M, "black", 1, 6, 2.0, 0.0, 0},
    {0x40, "Sector function", "Sec.", EPS_K, "black", 1, 6, 2.0, 0.0, 0},
    {0x80, "Atomic scattering intensity", "Iat.", EPS_M "_{at}", "black", 1, 6, 2.0, 0.0, 0},
    {0x200, "Reduced background", "Rbgl", EPS_B, "black", 1, 6, 2.0, 0.0, 0},
    {0x400, "sM(s) Std. dev", "sMsS", EPS_D, "black", 1, 6, 2.0, 0.0, 0},
    {0x800, "Int Std. dev", "IntS", EPS_D, "black", 1, 6, 2.0, 0.0, 0},
    {0x1000, "R-values", "R", "R", "black", 0, 0, 1.5, 0.0, 0},
    {0x2000, "Levelled experimental intensity", "Lvl.Exp.Int.", EPS_I, "black", 1, 6, 2.0, 0.0, 0},
    {0x4000, "Levelled background", "Lbgl", EPS_B, "black", 1, 6, 2.0, 0.0, 0},
    {0x8000, "Theoretical intensity", "Tot.Thr.I", EPS_I, "#AA0000", 1, 6, 2.0, 0.0, 0},
    {0x10000, "Delta intensity", "Delta.I", EPS_I, "black", 1, 6, 2.0, 0.0, 0},
};

// ---------------------------------------------------------------------------- settings

static char *ImgFname, *UserTerminalName;
static int MakeImage, wx = 1200, wy = 800;
static int PlotGrid, PlotLegend, PlotXtics = 1, PlotYtics, PlotX2tics, PlotY2tics;
static int UserTerminal, PlotBglPlus1, MultiPlot = 1, AutoShifts = 1, TableN = 1;
static double PlotRatio, ShiftMult, LineWidthFactor = 1.0, ErrLineWidthFactor = 1.0;
static double PointSizeFactor = 1.0, smsStdevFactor = 1.0, ErrFillAlpha = 0.5;
static double Gxmin = -1e100, Gxmax = -1e100;
static unsigned int DataToRead = 0x1ffff, DataToCombine;
static int NparToRead, *ParToReadNum1, *ParToReadNum2;
static int NparToCombine, *ParToCombineNum1, *ParToCombineNum2;
static int smsErrBars, dsmsErrBars, smsErrFill, dsmsErrFill, dsmslErrFill;
static int style_sms, ptype_sms;
static char *dread, *dcombine, *data, *cread, *ccombine, *curves;

// ---------------------------------------------------------------------------- curves and groups

static int Ncols, ColType[MAX_COLS], TypePos[MAX_COLS];
static int NcolsToPlot, PlotColType[MAX_COLS], PlotTypePos[MAX_COLS];
static int ColErrIdx[MAX_COLS] = {-1};
static int Ncurves, *Npts, *CurveNd, *CurveNc, *CurvePlotGroup;
static int* CurveCols;  // columns that the set's own header row selected
static double ***Curve, *CurveScaleFactor, **CurveShift;
static int ColPlotGroup[MAX_COLS], ColGroupsToPlot, CurveGroupsToPlot;
static int CurCurvesGroupToPlot, CurDataGroupToPlot, AutoShiftsReady;
static double YrangeMin, YrangeMax;
static FILE* f;

// ---------------------------------------------------------------------------- ways to end

// Both leave the closing of the streams to exit(), which hands gnuplot what was written so far.
[[noreturn, gnu::format(printf, 1, 2)]] static void die_out(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    vprintf(fmt, ap);
    va_end(ap);
    exit(1);
}

// Standard output goes first, so that a log of both streams shows them in order.
[[gnu::format(printf, 1, 2)]] static void complain(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    fflush(stdout);
    vfprintf(stderr, fmt, ap);
    va_end(ap);
}

static void* grow(void* old, int count, size_t size) {
    void* grown = realloc(old, (size_t)count * size);
    if (grown == nullptr) {
        complain("Cannot allocate memory\n");
        exit(1);
    }
    return grown;
}

static int d_idx(int t) {
    for (int i = 0; i < MAX_COLS; i++)
        if (Type[i].type == t)
            return i;
    die_out("Unknown data type: %d\n", t);
}

// ---------------------------------------------------------------------------- selection lists

static int if_integer(const char* str) {
    char* end;
    if (str[0] == 0)
        return 0;
    strtol(str, &end, 0);
    return *end == 0;
}

static int is_empty(const char* s) {
    while (isspace((unsigned char)*s))
        s++;
    return *s == 0;
}

static int parse_data_string(const char* str, unsigned int* Data) {
    static const struct {
        const char* word;
        unsigned int flag;
    } words[] = {{"sms", P_GINT_SMS},   {"tsms", P_GINT_TSMS}, {"int", P_GINT_INT},
                 {"rint", P_GINT_RINT}, {"lint", P_GINT_LINT}, {"bgl", P_GINT_BGL},
                 {"rbgl", P_GINT_RBGL}, {"lbgl", P_GINT_LBGL}, {"sec", P_GINT_SEC},
                 {"iat", P_GINT_IAT},   {"dsms", P_GINT_DSMS}, {"smss", P_GINT_SMSS},
                 {"ints", P_GINT_INTS}, {"tint", P_GINT_TINT}, {"dint", P_GINT_DINT}};
    char buffer[ITEM_SIZE] = {0};
    if (strlen(str) >= ITEM_SIZE) {
        printf("Unknown data type: %s\n", str);
        return 1;
    }
    strcpy(buffer, str);
    for (char* word = strtok(buffer, ","); word != nullptr; word = strtok(nullptr, ",")) {
        int known = 0;
        for (const auto& w : words) {
            if (strcmp(word, w.word) == 0) {
                *Data |= w.flag;
                known = 1;
            } else if (word[0] == '!' && strcmp(word + 1, w.word) == 0) {
                *Data &= ~w.flag;
                known = 1;
            }
        }
        if (strcmp(word, "all") == 0) {
            *Data = 0x19eff;
            known = 1;
        }
        if (!known) {
            printf("Unknown data type: %s\n", word);
            return 1;
        }
    }
    return 0;
}

static int parse_int_curve(const char* str, int* ParNum1, int* ParNum2) {
    char half1[ITEM_SIZE] = {0}, half2[ITEM_SIZE] = {0};
    size_t n1 = strcspn(str, "-");
    const char* rest = str[n1] == '-' ? str + n1 + 1 : str + n1;
    if (n1 < ITEM_SIZE && strlen(rest) < ITEM_SIZE) {
        memcpy(half1, str, n1);
        strcpy(half2, rest);
        if (if_integer(half1) && if_integer(half2)) {
            *ParNum1 = (int)strtol(half1, nullptr, 0);
            *ParNum2 = (int)strtol(half2, nullptr, 0);
            return 0;
        }
    }
    printf("Incorrect indication of intensity set: '%s'\n", str);
    return 1;
}

static int parse_int_curve_number(const char* inpstr, int* Npar, int** ParNum1, int** ParNum2) {
    if (inpstr[0] == 0)
        return 1;
    char* copy = (char*)grow(nullptr, 1, strlen(inpstr) + 1);
    strcpy(copy, inpstr);
    *Npar = 0;
    *ParNum1 = *ParNum2 = nullptr;
    for (char* item = strtok(copy, ","); item != nullptr; item = strtok(nullptr, ",")) {
        int num1 = 0, num2 = 0;
        if (strlen(item) >= ITEM_SIZE) {
            printf("Incorrect indication of intensity set: '%s'\n", item);
            return 2;
        }
        if (parse_int_curve(item, &num1, &num2) != 0)
            return 2;
        *Npar += 1;
        *ParNum1 = (int*)grow(*ParNum1, *Npar, sizeof(int));
        *ParNum2 = (int*)grow(*ParNum2, *Npar, sizeof(int));
        (*ParNum1)[*Npar - 1] = num1;
        (*ParNum2)[*Npar - 1] = num2;
    }
    free(copy);
    return 0;
}

// ---------------------------------------------------------------------------- command line

#define A_NONE POPT_ARG_NONE
#define A_STR POPT_ARG_STRING
#define A_INT POPT_ARG_INT
#define A_DBL POPT_ARG_DOUBLE

static struct poptOption optionsTable[] = {
    {"version", 'v', A_NONE, nullptr, 118, "Print version", nullptr},
    {"png", 0, A_STR, &ImgFname, 1001, "Create image 'filename' in PNG format", "filename"},
    {"eps", 0, A_STR, &ImgFname, 1002, "Create image 'filename' in EPS format", "filename"},
    {"svg", 0, A_STR, &ImgFname, 1018, "Create image 'filename' in SVG format", "filename"},
    {"imgw", 'w', A_INT, &wx, 0, "Width of image in pixels", "width"},
    {"imgl", 'l', A_INT, &wy, 0, "Length of image in pixels", "length"},
    {"grid", 0, A_NONE, nullptr, 1003, "Plot grid", nullptr},
    {"legend", 0, A_NONE, nullptr, 1004, "Plot legend", nullptr},
    {"no-xtics", 0, A_NONE, nullptr, 1005, "Do not plot xtics", nullptr},
    {"ytics", 0, A_NONE, nullptr, 1006, "Plot ytics", nullptr},
    {"x2tics", 0, A_NONE, nullptr, 1007, "Plot x2tics", nullptr},
    {"y2tics", 0, A_NONE, nullptr, 1008, "Plot y2tics", nullptr},
    {"ratio", 'r', A_DBL, &PlotRatio, 0, "Set aspect ratio for the image", "ratio"},
    {"term", 0, A_STR, &UserTerminalName, 1009, "Set terminal to 'tname'", "tname"},
    {"bglp1", 0, A_NONE, nullptr, 1011, "Add 1 to background data", nullptr},
    {"no-multiplot", 0, A_NONE, nullptr, 1012, "Plot curves in separate windows", nullptr},
    {"no-autoshifts", 0, A_NONE, nullptr, 1013, "No auto shifts for data in ccombine mode",
     nullptr},
    {"shiftmult", 0, A_DBL, &ShiftMult, 0, "Shift multiplier", "shift"},
    {"lw", 0, A_DBL, &LineWidthFactor, 0, "Factor for width of lines", "factor"},
    {"elw", 0, A_DBL, &ErrLineWidthFactor, 0, "Factor for width of error bars", "factor"},
    {"psf", 0, A_DBL, &PointSizeFactor, 0, "Factor for size of exp. data points", "factor"},
    {"smsef", 0, A_DBL, &smsStdevFactor, 0, "Factor for standard deviations of sM(s)", "factor"},
    {"efa", 0, A_DBL, &ErrFillAlpha, 0,
     "Transparency factor for filled areas of standard deviations", "factor"},
    {"dread", 'd', A_STR, &dread, 1014,
     "Read only indicated data types "
     "(int,tint,dint,rint,lint,bgl,rbgl,lbgl,sms,tsms,dsms,sec,iat,smss,ints,all)",
     "types"},
    {"dcombine", 0, A_STR, &dcombine, 1015, "Plot indicated data types on the same graph",
     "types"},
    {"data", 0, A_STR, &data, 1024, "Combination of --dread and --dcombine", "types"},
    {"table", 't', A_INT, &TableN, 0, "Table number, from which data should be read", "integer"},
    {"cread", 'c', A_STR, &cread, 1016, "Read only indicated data set(s) (e.g. 1-1,2-1)",
     "curves"},
    {"ccombine", 0, A_STR, &ccombine, 1017, "Plot indicated data on the same graph", "curves"},
    {"curves", 0, A_STR, &curves, 1025, "Combination of --cread and --ccombine", "curves"},
    {"smserrbars", 0, A_NONE, nullptr, 1019, "Plot sM(s) standard deviations as error bars",
     nullptr},
    {"dsmserrbars", 0, A_NONE, nullptr, 1020,
     "Plot sM(s) standard deviations as error bars for delta sM(s)", nullptr},
    {"smserrfill", 0, A_NONE, nullptr, 1021, "Plot sM(s) standard deviations as filled area",
     nullptr},
    {"dsmserrfill", 0, A_NONE, nullptr, 1022,
     "Plot sM(s) standard deviations as filled area for delta sM(s)", nullptr},
    {"dsmslerrfill", 0, A_NONE, nullptr, 1023,
     "Plot sM(s) standard deviations as filled area for levels of delta sM(s)", nullptr},
    {"style_sms", 0, A_INT, &style_sms, 1027, "Plot style for sM(s)", "style"},
    {"ptype_sms", 0, A_INT, &ptype_sms, 1028, "Point type for sM(s)", "type"},
    {"xmin", 0, A_DBL, &Gxmin, 0, "Set minimal value on the x-scale", "value"},
    {"xmax", 0, A_DBL, &Gxmax, 0, "Set maximal value on the x-scale", "value"},
    POPT_AUTOHELP POPT_TABLEEND};

// Returns 1 when the list was wrong.
static int kind_list(const char* option, const char* list, unsigned int* mask) {
    *mask = 0;
    if (parse_data_string(list, mask) == 0)
        return 0;
    complain("%s: wrong data type description: '%s'\n", option, list);
    return 1;
}

static int pair_list(const char* option, const char* list, int* n, int** num1, int** num2) {
    if (parse_int_curve_number(list, n, num1, num2) == 0)
        return 0;
    complain("%s: wrong data description: '%s'\n", option, list);
    return 1;
}

static int copy_read_list_to_combine_list() {
    NparToCombine = NparToRead;
    ParToCombineNum1 = (int*)calloc((size_t)NparToCombine, sizeof(int));
    ParToCombineNum2 = (int*)calloc((size_t)NparToCombine, sizeof(int));
    if (ParToCombineNum1 == nullptr || ParToCombineNum2 == nullptr) {
        complain("Cannot allocate memory\n");
        return 1;
    }
    for (int i = 0; i < NparToCombine; i++) {
        ParToCombineNum1[i] = ParToReadNum1[i];
        ParToCombineNum2[i] = ParToReadNum2[i];
    }
    return 0;
}

// clang-format off
// Returns 1 when the option was wrong.
static int handle_option(int code) {
    int failed = 0;
    switch (code) {
    case 118:
        printf("Gravlex version %s\n", "1.7-55-gc5354fa");
        printf("Written by the Gravlex developers, 2026\n");
        break;
    case 1001: MakeImage = IMG_PNG; break;
    case 1002: MakeImage = IMG_EPS; break;
    case 1018: MakeImage = IMG_SVG; break;
    case 1003: PlotGrid = 1; break;
    case 1004: PlotLegend = 1; break;
    case 1005: PlotXtics = 0; break;
    case 1006: PlotYtics = 1; break;
    case 1007: PlotX2tics = 1; break;
    case 1008: PlotY2tics = 1; break;
    case 1009: UserTerminal = 1; break;
    case 1011: PlotBglPlus1 = 1; break;
    case 1012: MultiPlot = 0; break;
    case 1013: AutoShifts = 0; break;
    case 1014:
        failed = kind_list("dread", dread, &DataToRead);
        DataToRead |= P_GINT_S;
        break;
    case 1015: failed = kind_list("dcombine", dcombine, &DataToCombine); break;
    case 1024:
        failed = kind_list("data", data, &DataToRead);
        DataToRead |= P_GINT_S;
        DataToCombine = DataToRead;
        break;
    case 1016:
        failed = pair_list("cread", cread, &NparToRead, &ParToReadNum1, &ParToReadNum2);
        break;
    case 1017:
        failed = pair_list("ccombine", ccombine, &NparToCombine, &ParToCombineNum1,
                           &ParToCombineNum2);
        break;
    case 1025:
        failed = pair_list("curves", curves, &NparToRead, &ParToReadNum1, &ParToReadNum2);
        failed |= copy_read_list_to_combine_list();
        break;
    case 1019: smsErrBars = 1; break;
    case 1020: dsmsErrBars = 1; break;
    case 1021: smsErrFill = 1; break;
    case 1022: dsmsErrFill = 1; break;
    case 1023: dsmslErrFill = 1; break;
    case 1027: Type[d_idx(P_GINT_SMS)].style_type = style_sms; break;
    case 1028: Type[d_idx(P_GINT_SMS)].p_type = ptype_sms; break;
    default:
        complain("Cannot process option %d\n", code);
        failed = 1;
    }
    return failed;
}
// clang-format on

// Returns the name of the input file, which stays valid to the end of the run.
static char* read_command_line(int argc, char** argv) {
    int code, failed = 0;
    char* name = nullptr;
    poptContext con = poptGetContext(argv[0], argc, (const char**)argv, optionsTable, 0);
    poptSetOtherOptionHelp(con, "[options...] inputfile");
    if (argc < 2) {
        poptPrintUsage(con, stdout, 0);
        poptFreeContext(con);
        exit(0);
    }
    while ((code = poptGetNextOpt(con)) >= 0)
        if (handle_option(code) != 0)
            failed = 1;
    if (code != -1) {
        complain("%s: %s (%d)\n", poptBadOption(con, POPT_BADOPTION_NOALIAS), poptStrerror(code),
                 code);
        failed = 1;
    }
    if (!failed) {
        const char* arg = poptGetArg(con);
        if (arg == nullptr) {
            complain("No input file defined.\n");
            failed = 1;
        } else {
            name = (char*)grow(nullptr, 1, strlen(arg) + 1);
            strcpy(name, arg);
        }
    }
    poptFreeContext(con);
    if (failed)
        exit(1);
    return name;
}

static const char* yes_no(int flag) {
    return flag ? "yes" : "no";
}

static void echo_list(const char* option, const char* list) {
    if (list != nullptr)
        printf("%s='%s'\n", option, list);
}

static void echo_settings() {
    printf("imgw=%d, imgl=%d\n", wx, wy);
    if (MakeImage == IMG_PNG)
        printf("png='%s'\n", ImgFname);
    if (MakeImage == IMG_EPS)
        printf("eps='%s'\n", ImgFname);
    if (MakeImage == IMG_SVG)
        printf("svg='%s'\n", ImgFname);
    printf("grid=%s\n", yes_no(PlotGrid));
    printf("legend=%s\n", yes_no(PlotLegend));
    printf("xtics=%s\n", yes_no(PlotXtics));
    printf("ytics=%s\n", yes_no(PlotYtics));
    printf("x2tics=%s\n", yes_no(PlotX2tics));
    printf("y2tics=%s\n", yes_no(PlotY2tics));
    printf("ratio=%f\n", PlotRatio);
    if (UserTerminal)
        printf("term='%s'\n", UserTerminalName);
    printf("bglp1=%s\n", yes_no(PlotBglPlus1));
    printf("multiplot=%s\n", yes_no(MultiPlot));
    printf("autoshifts=%s\n", yes_no(AutoShifts));
    printf("shiftmult=%f\n", ShiftMult);
    printf("lw=%f\n", LineWidthFactor);
    printf("psf=%f\n", PointSizeFactor);
    printf("smsf=%f\n", smsStdevFactor);
    printf("efa=%f\n", ErrFillAlpha);
    echo_list("dread", dread);
    echo_list("dcombine", dcombine);
    echo_list("data", data);
    echo_list("cread", cread);
    echo_list("ccombine", ccombine);
    echo_list("curves", curves);
    printf("table=%d\n", TableN);
}

// ---------------------------------------------------------------------------- input file

static const char* InpFname;
static char Line[LINE_SIZE];
static int LinesRead;

static FILE* open_input() {
    FILE* in = fopen(InpFname, "r");
    if (in == nullptr) {
        complain("Cannot open file '%s'\n", InpFname);
        exit(1);
    }
    LinesRead = 0;
    return in;
}

// Reads into the cleared line buffer and returns 1 when this read met the end of the file. What
// can be opened but not read (a folder) shows it only at the first read.
static int read_line(FILE* in) {
    memset(Line, 0, sizeof Line);
    if (fgets(Line, LINE_SIZE, in) == nullptr && ferror(in)) {
        complain("Cannot %s file '%s'\n", LinesRead == 0 ? "open" : "read", InpFname);
        exit(1);
    }
    LinesRead++;
    return feof(in) != 0;
}

static int detect_int_table_version() {
    char word[4][LINE_SIZE], part[3][LINE_SIZE];
    int ver[3], combined = 0, nrd = 0, count = 0, pos = 0, usable;
    FILE* in = open_input();
    read_line(in);
    fclose(in);
    if (strstr(Line, " KOVA ") == nullptr)
        return 0;
    memset(word, 0, sizeof word);
    memset(part, 0, sizeof part);
    nrd = sscanf(Line, "%399s %399s %399s %399s \n", word[0], word[1], word[2], word[3]);
    usable = nrd >= 2;
    for (int i = 0; i < nrd; i++)
        if (strlen(word[i]) >= WORD_SIZE)
            usable = 0;
    if (!usable)
        return 0;
    for (const char* c = word[1]; *c != 0 && count < 3; c++) {
        if (*c == 'v')
            continue;
        if (*c == '.' || *c == '-') {
            count++;
            pos = 0;
        } else
            part[count][pos++] = *c;
    }
    for (int i = 0; i < 3; i++) {
        if (!if_integer(part[i]))
            return 0;
        ver[i] = (int)strtol(part[i], nullptr, 0);
    }
    // Unsigned, because a nonsense version may overflow.
    combined = (int)((unsigned)ver[0] * 1000000u + (unsigned)ver[1] * 10000u + (unsigned)ver[2]);
    printf("KOVA version: %d\n", combined);
    if (combined == 0)
        return 0;
    return combined <= 1060986 ? 1 : 2;
}

static void clear_column_map() {
    Ncols = NcolsToPlot = 0;
    memset(ColType, 0, sizeof ColType);
    memset(TypePos, 0, sizeof TypePos);
    memset(PlotColType, 0, sizeof PlotColType);
    memset(PlotTypePos, 0, sizeof PlotTypePos);
}

static void handle_header_row() {
    static const struct {
        const char* label;
        int type;
    } labels[MAX_COLS] = {{"   Total Int.  |", P_GINT_INT},  {"    Red. Int.  |", P_GINT_RINT},
                          {"    Lvl. Int.  |", P_GINT_LINT}, {"   Background  |", P_GINT_BGL},
                          {"   Exp. sM(s)  |", P_GINT_SMS},  {"   Thr. sM(s)  |", P_GINT_TSMS},
                          {"  Delta sM(s)  |", P_GINT_DSMS}, {"   Sec. Func.  |", P_GINT_SEC},
                          {"   At. Scat.   |", P_GINT_IAT},  {"       S      |", P_GINT_S},
                          {"    Red. Bgl   |", P_GINT_RBGL}, {"    Lvl. Bgl   |", P_GINT_LBGL},
                          {"  sM(s) St.dev |", P_GINT_SMSS}, {"  Int. St.dev  |", P_GINT_INTS},
                          {"      R      |", P_GINT_R},      {" Thr. Tot. Int |", P_GINT_TINT},
                          {"   Delta Int.  |", P_GINT_DINT}};
    clear_column_map();
    for (const auto& l : labels) {
        const char* found = strstr(Line, l.label);
        if (found == nullptr)
            continue;
        TypePos[Ncols] = (int)(found - Line);
        ColType[Ncols] = l.type;
        Ncols++;
    }
    for (int i = 0; i < Ncols; i++)
        for (int j = i + 1; j < Ncols; j++)
            if (TypePos[i] > TypePos[j]) {
                int swap = TypePos[i];
                TypePos[i] = TypePos[j];
                TypePos[j] = swap;
                swap = ColType[i];
                ColType[i] = ColType[j];
                ColType[j] = swap;
            }
    printf("%d types of data have been found:\n", Ncols);
    for (int i = 0; i < Ncols; i++) {
        printf(" %d %s \n", i, Type[d_idx(ColType[i])].name);
        if (((unsigned)ColType[i] & DataToRead) == 0)
            continue;
        PlotColType[NcolsToPlot] = ColType[i];
        PlotTypePos[NcolsToPlot] = i;
        NcolsToPlot++;
    }
    printf("%d types of data are subject to process:\n", NcolsToPlot);
    for (int j = 0; j < NcolsToPlot; j++)
        printf(" %d %s (column %d)\n", j, Type[d_idx(PlotColType[j])].name, PlotTypePos[j]);
    if (NcolsToPlot < 2)
        die_out("Not enough data for plotting.\n");
}

static int set_is_selected(int nd, int nc) {
    if (NparToRead == 0)
        return 1;
    for (int i = 0; i < NparToRead; i++)
        if (ParToReadNum1[i] == nd && ParToReadNum2[i] == nc)
            return 1;
    return 0;
}

static void reset_sets() {
    Ncurves = 0;
    Curve = nullptr;
    Npts = CurveNd = CurveNc = CurvePlotGroup = CurveCols = nullptr;
    CurveShift = nullptr;
}

static void append_set(int nd, int nc, double scale_factor) {
    int c = Ncurves++;
    Curve = (double***)grow(Curve, Ncurves, sizeof(double**));
    Npts = (int*)grow(Npts, Ncurves, sizeof(int));
    CurveNd = (int*)grow(CurveNd, Ncurves, sizeof(int));
    CurveNc = (int*)grow(CurveNc, Ncurves, sizeof(int));
    CurveCols = (int*)grow(CurveCols, Ncurves, sizeof(int));
    CurvePlotGroup = (int*)grow(CurvePlotGroup, Ncurves, sizeof(int));
    CurveScaleFactor = (double*)grow(CurveScaleFactor, Ncurves, sizeof(double));
    CurveShift = (double**)grow(CurveShift, Ncurves, sizeof(double*));
    Curve[c] = nullptr;
    Npts[c] = CurveCols[c] = CurvePlotGroup[c] = 0;
    CurveNd[c] = nd;
    CurveNc[c] = nc;
    CurveScaleFactor[c] = scale_factor;
    // Room for every kind: the header row that rules the plots may come with a later set.
    CurveShift[c] = (double*)grow(nullptr, MAX_COLS, sizeof(double));
    for (int j = 0; j < MAX_COLS; j++)
        CurveShift[c][j] = 0.0;
}

static void create_columns() {
    int c = Ncurves - 1;
    CurveCols[c] = NcolsToPlot;
    Curve[c] = (double**)grow(nullptr, NcolsToPlot, sizeof(double*));
    for (int j = 0; j < NcolsToPlot; j++)
        Curve[c][j] = nullptr;
}

static void handle_data_row() {
    int c = Ncurves - 1;
    double d[20];
    Npts[c]++;
    for (int j = 0; j < NcolsToPlot; j++)
        Curve[c][j] = (double*)grow(Curve[c][j], Npts[c], sizeof(double));
    int nrd = sscanf(Line,
                     "%lf %lf %lf %lf %lf %lf %lf %lf %lf %lf "
                     "%lf %lf %lf %lf %lf %lf %lf %lf %lf %lf \n",
                     &d[0], &d[1], &d[2], &d[3], &d[4], &d[5], &d[6], &d[7], &d[8], &d[9], &d[10],
                     &d[11], &d[12], &d[13], &d[14], &d[15], &d[16], &d[17], &d[18], &d[19]);
    if (nrd != Ncols)
        die_out("Invalid number of columns: expected %d, read %d \n", Ncols, nrd);
    for (int j = 0; j < NcolsToPlot; j++) {
        int t = PlotColType[j];
        double v = d[PlotTypePos[j]];
        if (PlotBglPlus1 && (t == P_GINT_BGL || t == P_GINT_RBGL || t == P_GINT_LBGL))
            v = v + 1.0;
        if (t == P_GINT_SMSS)
            v = v * smsStdevFactor;
        if (t == P_GINT_SMS || t == P_GINT_TSMS || t == P_GINT_DSMS || t == P_GINT_SMSS)
            v = v / CurveScaleFactor[c];
        Curve[c][j][Npts[c] - 1] = v;
    }
}

static void end_of_set() {
    printf("Set # %d has been read. Number of data points: %d \n", Ncurves - 1, Npts[Ncurves - 1]);
}

// Version 1: the label stands between the last '(' and the first ')'.
static void read_ver1_label(int* nd, int* nc) {
    char work[LINE_SIZE];
    int open = 0;
    memcpy(work, Line, sizeof work);
    for (int i = 0; work[i] != 0; i++) {
        if (work[i] == '(')
            open = i;
        if (work[i] != ')')
            continue;
        work[i] = 0;
        if (parse_int_curve(work + open + 1, nd, nc) != 0)
            die_out("Incorrect format of curve representation: %s \n", work + open + 1);
        return;
    }
}

// Version 1: the factor stands between the last '=' and the blank after it.
static void read_ver1_factor(int nd, int nc, double* factor) {
    char work[LINE_SIZE], *end;
    int equals = 0;
    memcpy(work, Line, sizeof work);
    for (int i = 0; work[i] != 0; i++) {
        if (work[i] == '=')
            equals = i;
        if (work[i] != ' ' || equals == 0)
            continue;
        const char* text = work + equals + 1;
        work[i] = 0;
        errno = 0;
        *factor = strtod(text, &end);
        if (errno != 0) {
            complain("Invalid scale factor (strtod failed) for curve (%d-%d): %s \n", nd, nc,
                     text);
            exit(1);
        }
        if (end == text) {
            complain("No digits were found for ScaleFactor of curve (%d-%d)!\n", nd, nc);
            exit(1);
        }
        return;
    }
}

static void parse_kova_int_tables_ver1() {
    int last, tableN = 0, Stage = 0, CurNd = 0, CurNc = 0;
    double ScaleFactor = 1.0;
    FILE* in = open_input();
    do {
        last = read_line(in);
        if (Stage == 0) {
            if (strstr(Line, "GED curves.") == nullptr)
                continue;
            tableN++;
            read_line(in);
            clear_column_map();
            reset_sets();
            if (tableN == TableN)
                Stage = 1;
        } else if (Stage == 1) {
            handle_header_row();
            read_line(in);
            Stage = 2;
        } else if (Stage == 2) {
            if (strstr(Line, "Curve: ") == nullptr)
                continue;
            read_ver1_label(&CurNd, &CurNc);
            read_ver1_factor(CurNd, CurNc, &ScaleFactor);
            if (!set_is_selected(CurNd, CurNc))
                continue;
            append_set(CurNd, CurNc, ScaleFactor);
            create_columns();
            read_line(in);
            Stage = 3;
        } else if (strstr(Line, "===================") != nullptr) {
            end_of_set();
            Stage = 2;
        } else if (strstr(Line, "-------------------") != nullptr) {
            end_of_set();
            printf("End of data table.\n");
            break;
        } else
            handle_data_row();
    } while (!last);
    fclose(in);
}

// Cuts the text at its first white space and returns 0 if there is none.
static int cut_at_space(char* text) {
    while (*text != 0 && !isspace((unsigned char)*text))
        text++;
    if (*text == 0)
        return 0;
    *text = 0;
    return 1;
}

static double read_ver2_factor(char* text, int nd, int nc) {
    char* end;
    double factor = 1.0;
    if (cut_at_space(text)) {
        errno = 0;
        factor = strtod(text, &end);
        if (errno != 0) {
            complain("Invalid scale factor for curve %d-%d: '%s'\n", nd, nc, text);
            exit(1);
        }
        if (end == text) {
            complain("No digits were found for ScaleFactor of curve %d-%d\n", nd, nc);
            exit(1);
        }
    }
    printf("Scale(%d-%d)=%e\n", nd, nc, factor);
    return factor;
}

static void parse_kova_int_tables_ver2() {
    int last, tableN = 0, Stage = 0, CurNd = 0, CurNc = 0;
    FILE* in = open_input();
    NcolsToPlot = MAX_COLS;
    do {
        char* found;
        last = read_line(in);
        if (Stage == 0) {
            if (strstr(Line, "GED curves.") == nullptr)
                continue;
            tableN++;
            read_line(in);
            reset_sets();
            if (tableN == TableN)
                Stage = 1;
        } else if (Stage == 1) {
            if ((found = strstr(Line, "Set: ")) != nullptr) {
                char* label = found + strlen("Set: ");
                if (cut_at_space(label) && parse_int_curve(label, &CurNd, &CurNc) != 0)
                    die_out("Incorrect format of curve representation: '%s'\n", label);
                if (!set_is_selected(CurNd, CurNc))
                    continue;
                append_set(CurNd, CurNc, 1.0);
                Stage = 2;
            } else if (is_empty(Line))
                break;
        } else if (Stage == 2) {
            if ((found = strstr(Line, "Scale=")) == nullptr)
                continue;
            CurveScaleFactor[Ncurves - 1] =
                read_ver2_factor(found + strlen("Scale="), CurNd, CurNc);
            Stage = 3;
        } else if (Stage == 3) {
            if (strstr(Line, "----------------") != nullptr)
                Stage = 4;
        } else if (Stage == 4) {
            handle_header_row();
            create_columns();
            read_line(in);
            Stage = 5;
        } else if (strstr(Line, "----------------") != nullptr) {
            end_of_set();
            Stage = 1;
        } else
            handle_data_row();
    } while (!last);
    fclose(in);
}

// ---------------------------------------------------------------------------- curve buffer

struct buf_t {
    int n, khi, klo;
    double *x, *y;
};

static buf_t* buf;
static int Nbuf;

static void buf_initialize() {
    for (int i = 0; i < Nbuf; i++) {
        free(buf[i].x);
        free(buf[i].y);
    }
    free(buf);
    buf = nullptr;
    Nbuf = 0;
}

static void buf_add(int n, const double* data_x, const double* data_y, double shift) {
    Nbuf++;
    buf_t* grown = (buf_t*)realloc(buf, (size_t)Nbuf * sizeof(buf_t));
    double* x = (double*)malloc((size_t)n * sizeof(double));
    double* y = (double*)malloc((size_t)n * sizeof(double));
    if (grown == nullptr || x == nullptr || y == nullptr) {
        complain("Cannot allocate memory for buffer!\n");
        exit(1);
    }
    buf = grown;
    for (int i = 0; i < n; i++) {
        x[i] = data_x[i];
        y[i] = data_y[i] + shift;
    }
    buf[Nbuf - 1] = {n, n - 1, 0, x, y};
}

static int buf_y_min_max(double x, double* ymin, double* ymax) {
    int rc = 0;
    *ymin = 1e99;
    *ymax = -1e99;
    for (int i = 0; i < Nbuf; i++) {
        buf_t* b = &buf[i];
        if (b->n < 2)
            continue;
        if (!(b->x[0] <= x && b->x[b->n - 1] >= x))
            continue;
        int klo = b->klo, khi = b->khi;
        if (x > b->x[klo] && b->x[khi] > x) {
            // still between the same two points
        } else if (b->x[klo] >= x) {
            khi = klo + 1;
            klo = 0;
        } else {
            klo = khi - 1;
            khi = b->n - 1;
        }
        while (khi - klo > 1) {
            int k = (khi + klo) >> 1;
            if (b->x[k] > x)
                khi = k;
            else
                klo = k;
        }
        b->klo = klo;
        b->khi = khi;
        double h = b->x[khi] - b->x[klo];
        if (h == 0.0) {
            complain("linear interpolation: step error.");
            exit(1);
        }
        double slope = (b->y[khi] - b->y[klo]) / h;
        double intercept = b->y[khi] - b->x[khi] * slope;
        double y = slope * x + intercept;
        if (y > *ymax)
            *ymax = y;
        if (*ymin > y)
            *ymin = y;
        rc++;
    }
    return rc;
}

static double buf_calc_shift(int n, const double* data_x, const double* data_y, double* data_min,
                             double* data_max, double direction) {
    double shift = 0.0, dmin, dmax;
    printf("bcs> n=%d Nbuf=%d\n", n, Nbuf);
    *data_max = -1e99;
    *data_min = 1e99;
    for (int i = 0; i < n; i++) {
        if (data_y[i] > *data_max)
            *data_max = data_y[i];
        if (*data_min > data_y[i])
            *data_min = data_y[i];
    }
    if (Nbuf == 0)
        return 0.0;
    for (int i = 0; i < n; i++) {
        if (buf_y_min_max(data_x[i], &dmin, &dmax) == 0)
            continue;
        if (direction > 0) {
            double shift_tmp = dmax - data_y[i];
            if (shift == 0.0 || shift_tmp > shift)
                shift = shift_tmp;
        } else if (direction < 0) {
            double shift_tmp = dmin - data_y[i];
            if (shift == 0.0 || shift_tmp < shift)
                shift = shift_tmp;
        }
    }
    return shift;
}

// ---------------------------------------------------------------------------- plots

static int in_pair(int k, int l, int i, int j) {
    return CurvePlotGroup[k] == i && ColPlotGroup[l] == j;
}

// A set may come from a header row with fewer columns than the last one.
static int has_column(int k, int l) {
    return l < CurveCols[k];
}

static int any_deviation() {
    return smsErrBars || dsmsErrBars || smsErrFill || dsmsErrFill || dsmslErrFill;
}

static int is_intensity(int t) {
    return t == P_GINT_BGL || t == P_GINT_RBGL || t == P_GINT_LBGL || t == P_GINT_RINT ||
           t == P_GINT_INT || t == P_GINT_LINT || t == P_GINT_TINT;
}

// Where column l of curve k goes in this stage: 1 above, -1 below what is placed, 0 nowhere.
static int placed_in_stage(int stage, int t) {
    if (stage == 0 && is_intensity(t))
        return 1;
    if (stage == 1 && t == P_GINT_DINT)
        return -1;
    if (stage == 2 && (t == P_GINT_SMS || t == P_GINT_TSMS))
        return 1;
    if (stage == 3 && t == P_GINT_DSMS)
        return -1;
    return 0;
}

static double gap_of_stage(int stage, double dmin, double dmax) {
    if (stage == 0)
        return 0.2 * (dmax - dmin);
    if (stage == 1)
        return 0.5 * -(dmax - dmin);
    if (stage == 2)
        return 0.5 * (dmax - dmin);
    return -(dmax - dmin);
}

static void compute_shifts(int i, int j) {
    buf_initialize();
    for (int stage = 0; stage < 5; stage++) {
        double gap = 0.0;
        int gap_known = 0;
        for (int k = 0; k < Ncurves; k++) {
            // Only the stages that place curves upwards share one shift within a data set.
            double shared = 0.0;
            int shared_known = 0;
            for (int l = 1; l < NcolsToPlot; l++) {
                if (!in_pair(k, l, i, j) || !has_column(k, l))
                    continue;
                if (stage == 4 && PlotColType[l] == P_GINT_SMSS && any_deviation())
                    CurveShift[k][l] = 0.0;
                int direction = placed_in_stage(stage, PlotColType[l]);
                if (direction == 0)
                    continue;
                if (shared_known) {
                    CurveShift[k][l] = shared;
                } else {
                    double dmin, dmax;
                    double touch = buf_calc_shift(Npts[k], Curve[k][0], Curve[k][l], &dmin, &dmax,
                                                  (double)direction);
                    if (!gap_known)
                        gap = gap_of_stage(stage, dmin, dmax);
                    gap_known = 1;
                    CurveShift[k][l] = touch + gap;
                    shared = CurveShift[k][l];
                    shared_known = direction > 0;
                }
                printf("%s (%d-%d)> i=%d, j=%d, k=%d, l=%d (shift=%f)\n",
                       Type[d_idx(PlotColType[l])].name_short, CurveNd[k], CurveNc[k], i, j, k, l,
                       CurveShift[k][l]);
                buf_add(Npts[k], Curve[k][0], Curve[k][l], CurveShift[k][l]);
            }
        }
    }
    double mult = ShiftMult != 0.0 ? ShiftMult : 1.0;
    printf("shiftMult=%f\n", mult);
    for (int k = 0; k < Ncurves; k++)
        for (int l = 1; l < NcolsToPlot; l++) {
            if (!in_pair(k, l, i, j))
                continue;
            CurveShift[k][l] = CurveShift[k][l] * mult;
            printf("%s (%d-%d) AutoShift=%f\n", Type[d_idx(PlotColType[l])].name_short, CurveNd[k],
                   CurveNc[k], CurveShift[k][l]);
        }
    buf_initialize();
    AutoShiftsReady = 1;
}

static int font_size() {
    return MakeImage == IMG_SVG ? wx / 30 : wx / 50;
}

static void write_y_label(int j) {
    int any = 0;
    for (auto& row : Type)
        row.user = 0;
    fprintf(f, "set ylabel \"");
    for (int l = 1; l < NcolsToPlot; l++) {
        int r = d_idx(PlotColType[l]), used_eps_label = 0;
        if (PlotColType[l] == P_GINT_SMSS && any_deviation())
            continue;
        if (ColPlotGroup[l] != j || Type[r].user != 0)
            continue;
        for (int m = 0; m < MAX_COLS; m++)
            if (MakeImage && m != r && Type[m].user > 0 &&
                strcmp(Type[r].name_eps, Type[m].name_eps) == 0)
                used_eps_label = 1;
        if (used_eps_label)
            continue;
        if (any)
            fprintf(f, ", ");
        any = 1;
        fprintf(f, "%s", MakeImage ? Type[r].name_eps : Type[r].name_short);
        Type[r].user = 1;
    }
    fprintf(f, "\" ");
    if (MakeImage)
        fprintf(f, "font \"Arial, %d\"", font_size());
    fprintf(f, "\n");
}

static void write_settings(int i, int j, double xMin, double xMax) {
    double ymin = 1e99, ymax = -1e99, lxmin, lxmax;
    for (int k = 0; k < Ncurves; k++)
        for (int l = 1; l < NcolsToPlot; l++) {
            if (!in_pair(k, l, i, j) || !has_column(k, l))
                continue;
            for (int p = 0; p < Npts[k]; p++) {
                double y = Curve[k][l][p] + CurveShift[k][l];
                if (y > ymax)
                    ymax = y;
                if (y < ymin)
                    ymin = y;
            }
        }
    fprintf(f, "set encoding iso_8859_1\n");
    if (UserTerminal)
        fprintf(f, "set terminal %s\n", UserTerminalName);
    if (MakeImage) {
        fprintf(f, "set tics font \"Arial, %d\"\n", font_size());
        fprintf(f,
                "set xlabel \"{/Arial-Italic s}, {/Arial {\305}^{-1}}\" "
                "offset char 0, char -1 font \", %d\"\n",
                font_size());
    } else
        fprintf(f, "set xlabel \"s, A^{-1}\"\n");
    fprintf(f, "set format y \"\"\n");
    fprintf(f, "set pointsize 0.5\n");
    if (!PlotX2tics)
        fprintf(f, "set xtics border nomirror\n");
    if (!PlotY2tics)
        fprintf(f, "set ytics border nomirror\n");
    if (!PlotXtics)
        fprintf(f, "set xtics scale 0\n");
    if (!PlotYtics)
        fprintf(f, "set ytics scale 0\n");
    if (PlotRatio != 0.0)
        fprintf(f, "set size ratio %f\n", PlotRatio);
    if (PlotGrid)
        fprintf(f, "set grid\n");
    lxmin = Gxmin > -1e100 ? Gxmin : xMin - 0.05 * (xMax - xMin);
    lxmax = Gxmax > -1e100 ? Gxmax : xMax + 0.05 * (xMax - xMin);
    printf("xmin=%f\nxmax=%f\n", lxmin, lxmax);
    fprintf(f, "set xrange [%f : %f]\n", lxmin, lxmax);
    YrangeMin = ymin - 0.05 * (ymax - ymin);
    YrangeMax = ymax + 0.05 * (ymax - ymin);
    fprintf(f, "set yrange [%f : %f]\n", YrangeMin, YrangeMax);
    fprintf(f, "set style fill transparent solid %4.1f noborder\n", ErrFillAlpha);
    fprintf(f, "set bars 0.5\n");
    write_y_label(j);
}

static void write_series(int k, int l, double wf, double ps) {
    const data_type_t* t = &Type[d_idx(PlotColType[l])];
    fprintf(f, "'-' using 1:2 ");
    if (PlotLegend)
        fprintf(f, "title '%s (%d-%d)'", t->name_short, CurveNd[k], CurveNc[k]);
    else
        fprintf(f, "notitle");
    if (t->style_type == ST_LINES)
        fprintf(f, " with lines  ");
    else if (t->style_type == ST_POINTS)
        fprintf(f, " with points pt %d ps %4.1f", t->p_type, ps);
    else if (t->style_type == ST_LPOINTS)
        fprintf(f, " with linespoints pt %d ps %4.1f", t->p_type, ps);
    else
        fprintf(f, " with    ");
    fprintf(f, " lw %4.1f lc rgb \"%s\"", t->style_lw * wf, t->style_color);
}

// Experimental sM(s) comes in the second stage, so that its points lie on top.
static int in_walk(int stage, int k, int l, int i, int j) {
    return in_pair(k, l, i, j) && (stage == 1) == (PlotColType[l] == P_GINT_SMS);
}

static void write_plot_command(int i, int j) {
    double ewf = 1.0, wf = 1.0, ps = 0.7;
    const char* before = " ";
    if (MakeImage) {
        ewf = 1800.0 / wx;
        wf = 2000.0 / wx;
        ps = 1200.0 / wx;
    }
    ewf *= ErrLineWidthFactor;
    wf *= LineWidthFactor;
    ps *= PointSizeFactor;
    fprintf(f, "plot ");
    for (int stage = 0; stage < 2; stage++)
        for (int k = 0; k < Ncurves; k++)
            for (int l = 1; l < NcolsToPlot; l++) {
                if (!in_walk(stage, k, l, i, j))
                    continue;
                int t = PlotColType[l], r = d_idx(t), style = Type[r].style_type;
                if (style < ST_LINES || style > ST_SPECIAL) {
                    complain("Invalid plotting style %d for data type %d\n", style, r);
                    exit(1);
                }
                if (t == P_GINT_SMSS && any_deviation())
                    continue;
                fprintf(f, "%s", before);
                if ((t == P_GINT_SMS && smsErrBars) || (t == P_GINT_DSMS && dsmsErrBars))
                    fprintf(f,
                            "'-' using 1:2:3 notitle with errorbars pt 0 lw %4.1f lc rgb \"%s\", ",
                            ewf, Type[r].style_color);
                else if ((t == P_GINT_SMS && smsErrFill) ||
                         (t == P_GINT_DSMS && (dsmsErrFill || dsmslErrFill)))
                    fprintf(f, "'-' using 1:2:3 notitle with filledcurves fillcolor \"%s\", ",
                            Type[r].style_color);
                write_series(k, l, wf, ps);
                before = ", ";
            }
    fprintf(f, "\n");
}

// The deviations of one series: kind 'b' bars, 'f' a band around the curve, 'l' around its base.
static void write_deviations(int k, int l, int kind) {
    int e = ColErrIdx[l];
    int n = has_column(k, l) && has_column(k, e) ? Npts[k] : 0;
    for (int p = 0; p < n; p++) {
        double x = Curve[k][0][p], shift = CurveShift[k][l], y = Curve[k][l][p] + shift;
        double d = Curve[k][e][p];
        if (kind == 'b')
            fprintf(f, "%f %f %f\n", x, y, d);
        if (kind == 'f')
            fprintf(f, "%f %f %f\n", x, y - d, y + d);
        if (kind == 'l')
            fprintf(f, "%f %f %f\n", x, shift - d, shift + d);
    }
    fprintf(f, "e\n");
}

static void write_data(int i, int j) {
    for (int stage = 0; stage < 2; stage++)
        for (int k = 0; k < Ncurves; k++)
            for (int l = 1; l < NcolsToPlot; l++) {
                if (!in_walk(stage, k, l, i, j))
                    continue;
                int t = PlotColType[l];
                if (t == P_GINT_SMSS && any_deviation())
                    continue;
                if (t == P_GINT_SMS && smsErrBars)
                    write_deviations(k, l, 'b');
                else if (t == P_GINT_SMS && smsErrFill)
                    write_deviations(k, l, 'f');
                else if (t == P_GINT_DSMS && dsmsErrBars)
                    write_deviations(k, l, 'b');
                else if (t == P_GINT_DSMS && dsmsErrFill)
                    write_deviations(k, l, 'f');
                else if (t == P_GINT_DSMS && dsmslErrFill)
                    write_deviations(k, l, 'l');
                int n = has_column(k, l) ? Npts[k] : 0;
                for (int p = 0; p < n; p++)
                    fprintf(f, "%f %f\n", Curve[k][0][p], Curve[k][l][p] + CurveShift[k][l]);
                fprintf(f, "e\n");
            }
}

static void data_plot(int give_commands) {
    printf("%d Curve groups to plot.\n", CurveGroupsToPlot);
    printf("%d Data  groups to plot.\n", ColGroupsToPlot);
    for (int i = 1; i <= CurveGroupsToPlot; i++)
        for (int j = 1; j <= ColGroupsToPlot; j++) {
            double xMin = 1e99, xMax = -1e99;
            if (!MultiPlot && (i != CurCurvesGroupToPlot || j != CurDataGroupToPlot))
                continue;
            for (int k = 0; k < Ncurves; k++) {
                if (CurvePlotGroup[k] != i)
                    continue;
                if (Curve[k][0][0] < xMin)
                    xMin = Curve[k][0][0];
                if (Curve[k][0][Npts[k] - 1] > xMax)
                    xMax = Curve[k][0][Npts[k] - 1];
            }
            if (AutoShifts && !AutoShiftsReady)
                compute_shifts(i, j);
            if (give_commands) {
                write_settings(i, j, xMin, xMax);
                write_plot_command(i, j);
            }
            write_data(i, j);
        }
}

// ---------------------------------------------------------------------------- the run

static int first_column(int type) {
    for (int j = 1; j < NcolsToPlot; j++)
        if (PlotColType[j] == type)
            return j;
    return 0;
}

static void form_groups() {
    int sms = first_column(P_GINT_SMS), dsms = first_column(P_GINT_DSMS);
    int smss = first_column(P_GINT_SMSS);
    if (smss && sms)
        ColErrIdx[sms] = smss;
    if (smss && dsms)
        ColErrIdx[dsms] = smss;
    if (DataToCombine != 0) {
        ColGroupsToPlot = 1;
        for (int j = 1; j < NcolsToPlot; j++)
            if ((unsigned)PlotColType[j] & DataToCombine)
                ColPlotGroup[j] = 1;
    }
    for (int j = 1; j < NcolsToPlot; j++)
        if (ColPlotGroup[j] == 0)
            ColPlotGroup[j] = ++ColGroupsToPlot;
    // Any list puts every set that was read into the first group, listed or not.
    if (NparToCombine != 0) {
        CurveGroupsToPlot = 1;
        for (int i = 0; i < Ncurves; i++)
            CurvePlotGroup[i] = 1;
    }
    for (int i = 0; i < Ncurves; i++)
        if (CurvePlotGroup[i] == 0)
            CurvePlotGroup[i] = ++CurveGroupsToPlot;
}

static void refuse_empty_sets() {
    int empty = 0;
    for (int i = 0; i < Ncurves; i++)
        if (Npts[i] == 0) {
            printf("No data found in data set # %d\n", i);
            empty = 1;
        }
    if (empty)
        exit(1);
}

static void write_image(int counter) {
    if (MakeImage == IMG_EPS)
        fprintf(f, "set terminal postscript eps enhanced color solid clip\n");
    else if (MakeImage == IMG_SVG)
        fprintf(f, "set terminal svg size %d,%d dynamic enhanced\n", wx, wy);
    else
        fprintf(f, "set term pngcairo size %d,%d\n", wx, wy);
    if (MultiPlot)
        fprintf(f, "set output \"%s\"\n", ImgFname);
    else
        fprintf(f, "set output \"%d_%s\"\n", counter, ImgFname);
    fprintf(f, "replot\n");
    data_plot(0);
}

static void run_gnuplot(int g, int h) {
    static int counter = 0;
    int page = MultiPlot && (CurveGroupsToPlot > 1 || ColGroupsToPlot > 1);
    fflush(stdout);
    f = popen("gnuplot -persist", "w");
    if (f == nullptr)
        die_out("Cannot connect to gnuplot pipe: %s\n", strerror(errno));
    if (page)
        fprintf(f, "set multiplot layout %d, %d title \"KOVA GED curves\"\n", CurveGroupsToPlot,
                ColGroupsToPlot);
    if (!MultiPlot) {
        CurCurvesGroupToPlot = g;
        CurDataGroupToPlot = h;
    }
    data_plot(1);
    if (MakeImage && !page)
        write_image(++counter);
    if (page)
        fprintf(f, "unset multiplot\n");
    if (pclose(f) != 0)
        complain("Unable to close GnuPlot pipe.\n");
}

static void plot_everything() {
    for (int g = 1; g <= CurveGroupsToPlot; g++)
        for (int h = 1; h <= ColGroupsToPlot; h++) {
            run_gnuplot(g, h);
            if (MultiPlot)
                return;
        }
}

static void release() {
    for (int i = 0; i < Ncurves; i++) {
        for (int j = 0; j < CurveCols[i]; j++)
            free(Curve[i][j]);
        free(Curve[i]);
        free(CurveShift[i]);
    }
    void* arrays[] = {ParToReadNum1, ParToReadNum2,  ParToCombineNum1, ParToCombineNum2,
                      Curve,         Npts,           CurveNd,          CurveNc,
                      CurveCols,     CurvePlotGroup, CurveScaleFactor, CurveShift};
    for (void* array : arrays)
        free(array);
}

// A gnuplot that has gone must not take the program with it. A handler, because an ignored signal
// would stay ignored in gnuplot.
static void on_sigpipe(int) {}

int main(int argc, char** argv) {
    signal(SIGPIPE, on_sigpipe);
    char* name = read_command_line(argc, argv);
    echo_settings();
    InpFname = name;
    if (detect_int_table_version() == 2)
        parse_kova_int_tables_ver2();
    else
        parse_kova_int_tables_ver1();
    form_groups();
    refuse_empty_sets();
    plot_everything();
    release();
    free(name);
    return 0;
}
