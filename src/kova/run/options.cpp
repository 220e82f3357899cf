// SPDX-License-Identifier: MIT
#include <popt.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "run/run.h"

const char VERSION[] = "1.7-55-gc5354fa";
const char ATTRIBUTION[] = "Written by the Gravlex developers, 2026";

char* ImgFname = nullptr;
int MakeImage = 0;
int wx = 1200, wy = 800;
int PlotGrid = 0;
int PlotLegend = 0;
int PlotXtics = 1;
int PlotYtics = 0;
int PlotX2tics = 0;
int PlotY2tics = 0;
double PlotRatio = 0.0;
int UserTerminal = 0;
char* UserTerminalName = nullptr;
int PlotBglPlus1 = 0;
int MultiPlot = 1;
int AutoShifts = 1;
double ShiftMult = 0.0;
double LineWidthFactor = 1.0;
double ErrLineWidthFactor = 1.0;
double PointSizeFactor = 1.0;
double smsStdevFactor = 1.0;
double ErrFillAlpha = 0.5;
double Gxmin = GX_NOT_GIVEN, Gxmax = GX_NOT_GIVEN;
int TableN = 1;
unsigned DataToRead = P_GINT_EVERY;
unsigned DataToCombine = 0;
int NparToRead = 0, *ParToReadNum1 = nullptr, *ParToReadNum2 = nullptr;
int NparToCombine = 0, *ParToCombineNum1 = nullptr, *ParToCombineNum2 = nullptr;
int smsErrBars = 0;
int dsmsErrBars = 0;
int smsErrFill = 0;
int dsmsErrFill = 0;
int dsmslErrFill = 0;

// Arguments as popt stores them, until their option is handled.
static int style_sms, ptype_sms;
static char *dread, *dcombine, *data, *cread, *ccombine, *curves;

// What popt returns for an option that needs handling beyond storing its argument.
namespace {
enum option_code {
    OPT_VERSION = 118,
    OPT_PNG = 1001,
    OPT_EPS = 1002,
    OPT_GRID = 1003,
    OPT_LEGEND = 1004,
    OPT_NO_XTICS = 1005,
    OPT_YTICS = 1006,
    OPT_X2TICS = 1007,
    OPT_Y2TICS = 1008,
    OPT_TERM = 1009,
    OPT_BGLP1 = 1011,
    OPT_NO_MULTIPLOT = 1012,
    OPT_NO_AUTOSHIFTS = 1013,
    OPT_DREAD = 1014,
    OPT_DCOMBINE = 1015,
    OPT_CREAD = 1016,
    OPT_CCOMBINE = 1017,
    OPT_SVG = 1018,
    OPT_SMSERRBARS = 1019,
    OPT_DSMSERRBARS = 1020,
    OPT_SMSERRFILL = 1021,
    OPT_DSMSERRFILL = 1022,
    OPT_DSMSLERRFILL = 1023,
    OPT_DATA = 1024,
    OPT_CURVES = 1025,
    OPT_STYLE_SMS = 1027,
    OPT_PTYPE_SMS = 1028,
};
}  // namespace

// clang-format off
const poptOption optionsTable[] = {
    {"version", 'v', POPT_ARG_NONE, nullptr, OPT_VERSION,
     "Print version", nullptr},
    {"png", '\0', POPT_ARG_STRING, &ImgFname, OPT_PNG,
     "Create image 'filename' in PNG format", "filename"},
    {"eps", '\0', POPT_ARG_STRING, &ImgFname, OPT_EPS,
     "Create image 'filename' in EPS format", "filename"},
    {"svg", '\0', POPT_ARG_STRING, &ImgFname, OPT_SVG,
     "Create image 'filename' in SVG format", "filename"},
    {"imgw", 'w', POPT_ARG_INT, &wx, 0,
     "Width of image in pixels", "width"},
    {"imgl", 'l', POPT_ARG_INT, &wy, 0,
     "Length of image in pixels", "length"},
    {"grid", '\0', POPT_ARG_NONE, nullptr, OPT_GRID,
     "Plot grid", nullptr},
    {"legend", '\0', POPT_ARG_NONE, nullptr, OPT_LEGEND,
     "Plot legend", nullptr},
    {"no-xtics", '\0', POPT_ARG_NONE, nullptr, OPT_NO_XTICS,
     "Do not plot xtics", nullptr},
    {"ytics", '\0', POPT_ARG_NONE, nullptr, OPT_YTICS,
     "Plot ytics", nullptr},
    {"x2tics", '\0', POPT_ARG_NONE, nullptr, OPT_X2TICS,
     "Plot x2tics", nullptr},
    {"y2tics", '\0', POPT_ARG_NONE, nullptr, OPT_Y2TICS,
     "Plot y2tics", nullptr},
    {"ratio", 'r', POPT_ARG_DOUBLE, &PlotRatio, 0,
     "Set aspect ratio for the image", "ratio"},
    {"term", '\0', POPT_ARG_STRING, &UserTerminalName, OPT_TERM,
     "Set terminal to 'tname'", "tname"},
    {"bglp1", '\0', POPT_ARG_NONE, nullptr, OPT_BGLP1,
     "Add 1 to background data", nullptr},
    {"no-multiplot", '\0', POPT_ARG_NONE, nullptr, OPT_NO_MULTIPLOT,
     "Plot curves in separate windows", nullptr},
    {"no-autoshifts", '\0', POPT_ARG_NONE, nullptr, OPT_NO_AUTOSHIFTS,
     "No auto shifts for data in ccombine mode", nullptr},
    {"shiftmult", '\0', POPT_ARG_DOUBLE, &ShiftMult, 0,
     "Shift multiplier", "shift"},
    {"lw", '\0', POPT_ARG_DOUBLE, &LineWidthFactor, 0,
     "Factor for width of lines", "factor"},
    {"elw", '\0', POPT_ARG_DOUBLE, &ErrLineWidthFactor, 0,
     "Factor for width of error bars", "factor"},
    {"psf", '\0', POPT_ARG_DOUBLE, &PointSizeFactor, 0,
     "Factor for size of exp. data points", "factor"},
    {"smsef", '\0', POPT_ARG_DOUBLE, &smsStdevFactor, 0,
     "Factor for standard deviations of sM(s)", "factor"},
    {"efa", '\0', POPT_ARG_DOUBLE, &ErrFillAlpha, 0,
     "Transparency factor for filled areas of standard deviations", "factor"},
    {"dread", 'd', POPT_ARG_STRING, &dread, OPT_DREAD,
     "Read only indicated data types (int,tint,dint,rint,lint,bgl,rbgl,lbgl,sms,tsms,dsms,sec,"
     "iat,smss,ints,all)", "types"},
    {"dcombine", '\0', POPT_ARG_STRING, &dcombine, OPT_DCOMBINE,
     "Plot indicated data types on the same graph", "types"},
    {"data", '\0', POPT_ARG_STRING, &data, OPT_DATA,
     "Combination of --dread and --dcombine", "types"},
    {"table", 't', POPT_ARG_INT, &TableN, 0,
     "Table number, from which data should be read", "integer"},
    {"cread", 'c', POPT_ARG_STRING, &cread, OPT_CREAD,
     "Read only indicated data set(s) (e.g. 1-1,2-1)", "curves"},
    {"ccombine", '\0', POPT_ARG_STRING, &ccombine, OPT_CCOMBINE,
     "Plot indicated data on the same graph", "curves"},
    {"curves", '\0', POPT_ARG_STRING, &curves, OPT_CURVES,
     "Combination of --cread and --ccombine", "curves"},
    {"smserrbars", '\0', POPT_ARG_NONE, nullptr, OPT_SMSERRBARS,
     "Plot sM(s) standard deviations as error bars", nullptr},
    {"dsmserrbars", '\0', POPT_ARG_NONE, nullptr, OPT_DSMSERRBARS,
     "Plot sM(s) standard deviations as error bars for delta sM(s)", nullptr},
    {"smserrfill", '\0', POPT_ARG_NONE, nullptr, OPT_SMSERRFILL,
     "Plot sM(s) standard deviations as filled area", nullptr},
    {"dsmserrfill", '\0', POPT_ARG_NONE, nullptr, OPT_DSMSERRFILL,
     "Plot sM(s) standard deviations as filled area for delta sM(s)", nullptr},
    {"dsmslerrfill", '\0', POPT_ARG_NONE, nullptr, OPT_DSMSLERRFILL,
     "Plot sM(s) standard deviations as filled area for levels of delta sM(s)", nullptr},
    {"style_sms", '\0', POPT_ARG_INT, &style_sms, OPT_STYLE_SMS,
     "Plot style for sM(s)", "style"},
    {"ptype_sms", '\0', POPT_ARG_INT, &ptype_sms, OPT_PTYPE_SMS,
     "Point type for sM(s)", "type"},
    {"xmin", '\0', POPT_ARG_DOUBLE, &Gxmin, 0,
     "Set minimal value on the x-scale", "value"},
    {"xmax", '\0', POPT_ARG_DOUBLE, &Gxmax, 0,
     "Set maximal value on the x-scale", "value"},
    POPT_AUTOHELP
    POPT_TABLEEND
};
// clang-format on

// Options that set one variable to one value.
namespace {
struct switch_t {
    int code;
    int* variable;
    int value;
};
}  // namespace

static const switch_t Switches[] = {
    {OPT_PNG, &MakeImage, IMG_PNG},      {OPT_EPS, &MakeImage, IMG_EPS},
    {OPT_SVG, &MakeImage, IMG_SVG},      {OPT_GRID, &PlotGrid, 1},
    {OPT_LEGEND, &PlotLegend, 1},        {OPT_NO_XTICS, &PlotXtics, 0},
    {OPT_YTICS, &PlotYtics, 1},          {OPT_X2TICS, &PlotX2tics, 1},
    {OPT_Y2TICS, &PlotY2tics, 1},        {OPT_TERM, &UserTerminal, 1},
    {OPT_BGLP1, &PlotBglPlus1, 1},       {OPT_NO_MULTIPLOT, &MultiPlot, 0},
    {OPT_NO_AUTOSHIFTS, &AutoShifts, 0}, {OPT_SMSERRBARS, &smsErrBars, 1},
    {OPT_DSMSERRBARS, &dsmsErrBars, 1},  {OPT_SMSERRFILL, &smsErrFill, 1},
    {OPT_DSMSERRFILL, &dsmsErrFill, 1},  {OPT_DSMSLERRFILL, &dsmslErrFill, 1},
};

bool deviations_shown() {
    return smsErrBars || dsmsErrBars || smsErrFill || dsmsErrFill || dsmslErrFill;
}

// Sets the masks to what the kind list says, and names. False after a message if it is wrong.
static bool read_kinds(const char* option, const char* list, unsigned* mask, unsigned* named) {
    *mask = 0;
    const bool good = parse_data_string(list, mask) == 0;
    *named = KindsNamed;
    if (!good)
        complain("%s: wrong data type description: '%s'\n", option, list);
    return good;
}

static bool read_kinds_with_s(const char* option, const char* list) {
    const bool good = read_kinds(option, list, &DataToRead, &KindsNamedToRead);
    DataToRead |= P_GINT_S;
    return good;
}

// Sets the pair list to what the option says. False after a message if it is wrong.
static bool read_pairs(const char* option, const char* list, int* Npar, int** Num1, int** Num2) {
    errno = 0;
    if (parse_int_curve_number(list, Npar, Num1, Num2) == 0)
        return true;
    if (errno == ENOMEM)                       // GCOV_EXCL_BR_LINE no memory, here and below:
        complain("Cannot allocate memory\n");  // GCOV_EXCL_LINE faults/memory
    complain("%s: wrong data description: '%s'\n", option, list);
    return false;
}

// Null after a message if there is no memory.
static int* copy_of(const int* numbers, int count) {
    int* copy = static_cast<int*>(std::calloc(static_cast<std::size_t>(count), sizeof *numbers));
    // GCOV_EXCL_START
    if (copy == nullptr) {
        complain("Cannot allocate memory\n");
        return nullptr;
    }
    // GCOV_EXCL_STOP
    std::copy_n(numbers, count, copy);
    return copy;
}

static bool read_curves() {
    const bool good = read_pairs("curves", curves, &NparToRead, &ParToReadNum1, &ParToReadNum2);
    NparToCombine = NparToRead;
    ParToCombineNum1 = copy_of(ParToReadNum1, NparToRead);
    // GCOV_EXCL_START
    ParToCombineNum2 = ParToCombineNum1 == nullptr ? nullptr : copy_of(ParToReadNum2, NparToRead);
    return good && ParToCombineNum2 != nullptr;
    // GCOV_EXCL_STOP
}

static bool read_data() {
    const bool good = read_kinds_with_s("data", data);
    DataToCombine = DataToRead;
    KindsNamedToCombine = KindsNamedToRead;
    return good;
}

static void print_version() {
    say("Gravlex version %s\n%s\n", VERSION, ATTRIBUTION);
}

bool handle_option(int code) {
    for (const switch_t& known : Switches) {
        if (known.code == code) {
            *known.variable = known.value;
            return true;
        }
    }
    switch (code) {  // GCOV_EXCL_BR_LINE the last case
        case OPT_VERSION:
            print_version();
            return true;
        case OPT_DREAD:
            return read_kinds_with_s("dread", dread);
        case OPT_DCOMBINE:
            return read_kinds("dcombine", dcombine, &DataToCombine, &KindsNamedToCombine);
        case OPT_DATA:
            return read_data();
        case OPT_CREAD:
            return read_pairs("cread", cread, &NparToRead, &ParToReadNum1, &ParToReadNum2);
        case OPT_CCOMBINE:
            return read_pairs("ccombine", ccombine, &NparToCombine, &ParToCombineNum1,
                              &ParToCombineNum2);
        case OPT_CURVES:
            return read_curves();
        case OPT_STYLE_SMS:
            Type[d_idx(P_GINT_SMS)].style_type = style_sms;
            return true;
        case OPT_PTYPE_SMS:
            Type[d_idx(P_GINT_SMS)].p_type = ptype_sms;
            return true;
        // GCOV_EXCL_START a popt that returns what is not in its table: faults/machine
        default:
            complain("Cannot process option %d\n", code);
            return false;
            // GCOV_EXCL_STOP
    }
}

// ---- Echo --------------------------------------------------------------------------------------

static const char* yes_no(int flag) {
    return flag ? "yes" : "no";
}

static void echo_list(const char* option, const char* list) {
    if (list != nullptr)
        say("%s='%s'\n", option, list);
}

static void echo_image() {
    if (MakeImage == IMG_PNG)
        say("png='%s'\n", ImgFname);
    else if (MakeImage == IMG_EPS)
        say("eps='%s'\n", ImgFname);
    else if (MakeImage == IMG_SVG)
        say("svg='%s'\n", ImgFname);
}

void echo_settings() {
    say("imgw=%d, imgl=%d\n", wx, wy);
    echo_image();
    say("grid=%s\n", yes_no(PlotGrid));
    say("legend=%s\n", yes_no(PlotLegend));
    say("xtics=%s\n", yes_no(PlotXtics));
    say("ytics=%s\n", yes_no(PlotYtics));
    say("x2tics=%s\n", yes_no(PlotX2tics));
    say("y2tics=%s\n", yes_no(PlotY2tics));
    say("ratio=%f\n", PlotRatio);
    if (UserTerminal)
        say("term='%s'\n", UserTerminalName);
    say("bglp1=%s\n", yes_no(PlotBglPlus1));
    say("multiplot=%s\n", yes_no(MultiPlot));
    say("autoshifts=%s\n", yes_no(AutoShifts));
    say("shiftmult=%f\n", ShiftMult);
    say("lw=%f\n", LineWidthFactor);
    say("psf=%f\n", PointSizeFactor);
    say("smsf=%f\n", smsStdevFactor);  // the echo's own word for --smsef
    say("efa=%f\n", ErrFillAlpha);
    echo_list("dread", dread);
    echo_list("dcombine", dcombine);
    echo_list("data", data);
    echo_list("cread", cread);
    echo_list("ccombine", ccombine);
    echo_list("curves", curves);
    say("table=%d\n", TableN);
}
