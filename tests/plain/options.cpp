// SPDX-License-Identifier: MIT
#include <popt.h>

#include <cstdlib>

#include "plain/plain.h"

namespace plain {

options_t Options;
static options_t& o = Options;

bool any_deviation() {
    return o.smsErrBars || o.dsmsErrBars || o.smsErrFill || o.dsmsErrFill || o.dsmslErrFill;
}

// ---- The table for popt ------------------------------------------------------------------------

constexpr unsigned NONE = POPT_ARG_NONE, STRING = POPT_ARG_STRING;
constexpr unsigned INT = POPT_ARG_INT, DOUBLE = POPT_ARG_DOUBLE;

static struct poptOption optionsTable[] = {
    {"version", 'v', NONE, nullptr, 118, "Print version", nullptr},
    {"png", 0, STRING, &o.ImgFname, 1001, "Create image 'filename' in PNG format", "filename"},
    {"eps", 0, STRING, &o.ImgFname, 1002, "Create image 'filename' in EPS format", "filename"},
    {"svg", 0, STRING, &o.ImgFname, 1018, "Create image 'filename' in SVG format", "filename"},
    {"imgw", 'w', INT, &o.wx, 0, "Width of image in pixels", "width"},
    {"imgl", 'l', INT, &o.wy, 0, "Length of image in pixels", "length"},
    {"grid", 0, NONE, nullptr, 1003, "Plot grid", nullptr},
    {"legend", 0, NONE, nullptr, 1004, "Plot legend", nullptr},
    {"no-xtics", 0, NONE, nullptr, 1005, "Do not plot xtics", nullptr},
    {"ytics", 0, NONE, nullptr, 1006, "Plot ytics", nullptr},
    {"x2tics", 0, NONE, nullptr, 1007, "Plot x2tics", nullptr},
    {"y2tics", 0, NONE, nullptr, 1008, "Plot y2tics", nullptr},
    {"ratio", 'r', DOUBLE, &o.PlotRatio, 0, "Set aspect ratio for the image", "ratio"},
    {"term", 0, STRING, &o.UserTerminalName, 1009, "Set terminal to 'tname'", "tname"},
    {"bglp1", 0, NONE, nullptr, 1011, "Add 1 to background data", nullptr},
    {"no-multiplot", 0, NONE, nullptr, 1012, "Plot curves in separate windows", nullptr},
    {"no-autoshifts", 0, NONE, nullptr, 1013, "No auto shifts for data in ccombine mode", nullptr},
    {"shiftmult", 0, DOUBLE, &o.ShiftMult, 0, "Shift multiplier", "shift"},
    {"lw", 0, DOUBLE, &o.LineWidthFactor, 0, "Factor for width of lines", "factor"},
    {"elw", 0, DOUBLE, &o.ErrLineWidthFactor, 0, "Factor for width of error bars", "factor"},
    {"psf", 0, DOUBLE, &o.PointSizeFactor, 0, "Factor for size of exp. data points", "factor"},
    {"smsef", 0, DOUBLE, &o.smsStdevFactor, 0, "Factor for standard deviations of sM(s)",
     "factor"},
    {"efa", 0, DOUBLE, &o.ErrFillAlpha, 0,
     "Transparency factor for filled areas of standard deviations", "factor"},
    {"dread", 'd', STRING, &o.dread, 1014,
     "Read only indicated data types "
     "(int,tint,dint,rint,lint,bgl,rbgl,lbgl,sms,tsms,dsms,sec,iat,smss,ints,all)",
     "types"},
    {"dcombine", 0, STRING, &o.dcombine, 1015, "Plot indicated data types on the same graph",
     "types"},
    {"data", 0, STRING, &o.data, 1024, "Combination of --dread and --dcombine", "types"},
    {"table", 't', INT, &o.TableN, 0, "Table number, from which data should be read", "integer"},
    {"cread", 'c', STRING, &o.cread, 1016, "Read only indicated data set(s) (e.g. 1-1,2-1)",
     "curves"},
    {"ccombine", 0, STRING, &o.ccombine, 1017, "Plot indicated data on the same graph", "curves"},
    {"curves", 0, STRING, &o.curves, 1025, "Combination of --cread and --ccombine", "curves"},
    {"smserrbars", 0, NONE, nullptr, 1019, "Plot sM(s) standard deviations as error bars",
     nullptr},
    {"dsmserrbars", 0, NONE, nullptr, 1020,
     "Plot sM(s) standard deviations as error bars for delta sM(s)", nullptr},
    {"smserrfill", 0, NONE, nullptr, 1021, "Plot sM(s) standard deviations as filled area",
     nullptr},
    {"dsmserrfill", 0, NONE, nullptr, 1022,
     "Plot sM(s) standard deviations as filled area for delta sM(s)", nullptr},
    {"dsmslerrfill", 0, NONE, nullptr, 1023,
     "Plot sM(s) standard deviations as filled area for levels of delta sM(s)", nullptr},
    {"style_sms", 0, INT, &o.style_sms, 1027, "Plot style for sM(s)", "style"},
    {"ptype_sms", 0, INT, &o.ptype_sms, 1028, "Point type for sM(s)", "type"},
    {"xmin", 0, DOUBLE, &o.Gxmin, 0, "Set minimal value on the x-scale", "value"},
    {"xmax", 0, DOUBLE, &o.Gxmax, 0, "Set maximal value on the x-scale", "value"},
    POPT_AUTOHELP POPT_TABLEEND};

// ---- Options as they are met -------------------------------------------------------------------

// True if the list is good.
static bool kind_list(const char* option, const char* list, unsigned* mask) {
    *mask = 0;
    if (parse_data_string(list, mask) == 0)
        return true;
    complain("%s: wrong data type description: '%s'\n", option, list);
    return false;
}

static bool pair_list(const char* option, const char* list, std::vector<pair_t>* pairs) {
    if (parse_int_curve_number(list, pairs) == 0)
        return true;
    complain("%s: wrong data description: '%s'\n", option, list);
    return false;
}

// The options with a list. True if it is good.
static bool handle_list(int code) {
    bool is_good = true;
    switch (code) {
        case 1014:
            is_good = kind_list("dread", o.dread, &o.DataToRead);
            o.DataToRead |= P_GINT_S;
            return is_good;
        case 1015:
            return kind_list("dcombine", o.dcombine, &o.DataToCombine);
        case 1016:
            return pair_list("cread", o.cread, &o.ParToRead);
        case 1017:
            return pair_list("ccombine", o.ccombine, &o.ParToCombine);
        case 1024:
            is_good = kind_list("data", o.data, &o.DataToRead);
            o.DataToRead |= P_GINT_S;
            o.DataToCombine = o.DataToRead;
            return is_good;
        case 1025:
            is_good = pair_list("curves", o.curves, &o.ParToRead);
            o.ParToCombine = o.ParToRead;
            return is_good;
        default:
            complain("Cannot process option %d\n", code);
            return false;
    }
}

// clang-format off
// True if the option is good.
static bool handle_option(int code) {
    switch (code) {
        case 118:
            std::printf("Gravlex version 1.7-55-gc5354fa\n");
            std::printf("Written by the Gravlex developers, 2026\n");
            break;
        case 1001: o.MakeImage = IMG_PNG; break;
        case 1002: o.MakeImage = IMG_EPS; break;
        case 1003: o.PlotGrid = 1; break;
        case 1004: o.PlotLegend = 1; break;
        case 1005: o.PlotXtics = 0; break;
        case 1006: o.PlotYtics = 1; break;
        case 1007: o.PlotX2tics = 1; break;
        case 1008: o.PlotY2tics = 1; break;
        case 1009: o.UserTerminal = 1; break;
        case 1011: o.PlotBglPlus1 = 1; break;
        case 1012: o.MultiPlot = 0; break;
        case 1013: o.AutoShifts = 0; break;
        case 1018: o.MakeImage = IMG_SVG; break;
        case 1019: o.smsErrBars = 1; break;
        case 1020: o.dsmsErrBars = 1; break;
        case 1021: o.smsErrFill = 1; break;
        case 1022: o.dsmsErrFill = 1; break;
        case 1023: o.dsmslErrFill = 1; break;
        case 1027: Type[d_idx(P_GINT_SMS)].style_type = o.style_sms; break;
        case 1028: Type[d_idx(P_GINT_SMS)].p_type = o.ptype_sms; break;
        default: return handle_list(code);
    }
    return true;
}
// clang-format on

std::string parse_command_line(int argc, char** argv) {
    poptContext con =
        poptGetContext(argv[0], argc, const_cast<const char**>(argv), optionsTable, 0);
    poptSetOtherOptionHelp(con, "[options...] inputfile");
    if (argc < 2) {
        poptPrintUsage(con, stdout, 0);
        poptFreeContext(con);
        throw run_ended_t{0};
    }
    bool is_good = true;
    int code;
    while ((code = poptGetNextOpt(con)) >= 0) {
        if (!handle_option(code))
            is_good = false;
    }
    if (code != -1) {
        complain("%s: %s (%d)\n", poptBadOption(con, POPT_BADOPTION_NOALIAS), poptStrerror(code),
                 code);
        is_good = false;
    }
    std::string name;
    if (is_good) {
        const char* argument = poptGetArg(con);
        is_good = argument != nullptr;
        if (is_good)
            name = argument;
        else
            complain("No input file defined.\n");
    }
    poptFreeContext(con);
    if (!is_good)
        throw run_ended_t{1};
    return name;
}

// ---- The settings on standard output -----------------------------------------------------------

static const char* yes_no(int flag) {
    return flag ? "yes" : "no";
}

static void echo_list(const char* option, const char* list) {
    if (list != nullptr)
        std::printf("%s='%s'\n", option, list);
}

void echo_settings() {
    static const char* const images[] = {"", "png", "eps", "svg"};
    std::printf("imgw=%d, imgl=%d\n", o.wx, o.wy);
    if (o.MakeImage != 0)
        echo_list(images[o.MakeImage], o.ImgFname);
    std::printf("grid=%s\nlegend=%s\n", yes_no(o.PlotGrid), yes_no(o.PlotLegend));
    std::printf("xtics=%s\nytics=%s\n", yes_no(o.PlotXtics), yes_no(o.PlotYtics));
    std::printf("x2tics=%s\ny2tics=%s\n", yes_no(o.PlotX2tics), yes_no(o.PlotY2tics));
    std::printf("ratio=%f\n", o.PlotRatio);
    if (o.UserTerminal)
        echo_list("term", o.UserTerminalName);
    std::printf("bglp1=%s\nmultiplot=%s\n", yes_no(o.PlotBglPlus1), yes_no(o.MultiPlot));
    std::printf("autoshifts=%s\nshiftmult=%f\n", yes_no(o.AutoShifts), o.ShiftMult);
    std::printf("lw=%f\npsf=%f\n", o.LineWidthFactor, o.PointSizeFactor);
    std::printf("smsf=%f\nefa=%f\n", o.smsStdevFactor, o.ErrFillAlpha);
    echo_list("dread", o.dread);
    echo_list("dcombine", o.dcombine);
    echo_list("data", o.data);
    echo_list("cread", o.cread);
    echo_list("ccombine", o.ccombine);
    echo_list("curves", o.curves);
    std::printf("table=%d\n", o.TableN);
}

}  // namespace plain
