// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <cstdlib>
#include <tuple>
#include <vector>

#include "files.h"
#include "harness.h"
#include "input/input.h"
#include "plot/plot.h"

// ---- The start of the program ------------------------------------------------------------------

static auto settings() {
    return std::tie(ImgFname, MakeImage, wx, wy, PlotGrid, PlotLegend, PlotXtics, PlotYtics,
                    PlotX2tics, PlotY2tics, PlotRatio, UserTerminal, UserTerminalName,
                    PlotBglPlus1, MultiPlot, AutoShifts, ShiftMult, LineWidthFactor,
                    ErrLineWidthFactor, PointSizeFactor, smsStdevFactor, ErrFillAlpha, Gxmin,
                    Gxmax, TableN, DataToRead, DataToCombine, NparToRead, ParToReadNum1,
                    ParToReadNum2, NparToCombine, ParToCombineNum1, ParToCombineNum2, smsErrBars,
                    dsmsErrBars, smsErrFill, dsmsErrFill, dsmslErrFill);
}

// What later stages write. The store is released by the run, or after it.
static auto later_state() {
    return std::tie(ColGroupsToPlot, CurveGroupsToPlot, CurCurvesGroupToPlot, CurDataGroupToPlot,
                    AutoShiftsReady, YrangeMin, YrangeMax, f);
}

template <class... variable_t>
static std::tuple<variable_t...> values_of(const std::tuple<variable_t&...>& variables) {
    return variables;
}

void reset_everything() {
    static const auto settings_at_start = values_of(settings());
    static const auto later_at_start = values_of(later_state());
    static const auto type_at_start = std::to_array(Type);
    static const auto error_columns_at_start = std::to_array(ColErrIdx);
    static const auto groups_at_start = std::to_array(ColPlotGroup);
    settings() = settings_at_start;
    later_state() = later_at_start;
    std::copy(type_at_start.begin(), type_at_start.end(), Type);
    std::copy(error_columns_at_start.begin(), error_columns_at_start.end(), ColErrIdx);
    std::copy(groups_at_start.begin(), groups_at_start.end(), ColPlotGroup);
    clear_columns();
    run(buf_initialize);
}

// ---- The settings line -------------------------------------------------------------------------

enum setting_t { FLAG, IMAGE, NUMBER, INTEGER, TERMINAL, KINDS, PAIRS, STYLE, PIPE, FILL };

struct setting_word_t {
    const char* word;
    setting_t setting;
    void* variable;
    int value;
};

static const setting_word_t Words[] = {
    {"--png", IMAGE, nullptr, IMG_PNG},
    {"--eps", IMAGE, nullptr, IMG_EPS},
    {"--svg", IMAGE, nullptr, IMG_SVG},
    {"--grid", FLAG, &PlotGrid, 1},
    {"--legend", FLAG, &PlotLegend, 1},
    {"--no-xtics", FLAG, &PlotXtics, 0},
    {"--ytics", FLAG, &PlotYtics, 1},
    {"--x2tics", FLAG, &PlotX2tics, 1},
    {"--y2tics", FLAG, &PlotY2tics, 1},
    {"--bglp1", FLAG, &PlotBglPlus1, 1},
    {"--no-multiplot", FLAG, &MultiPlot, 0},
    {"--no-autoshifts", FLAG, &AutoShifts, 0},
    {"--smserrbars", FLAG, &smsErrBars, 1},
    {"--dsmserrbars", FLAG, &dsmsErrBars, 1},
    {"--smserrfill", FLAG, &smsErrFill, 1},
    {"--dsmserrfill", FLAG, &dsmsErrFill, 1},
    {"--dsmslerrfill", FLAG, &dsmslErrFill, 1},
    {"--ratio", NUMBER, &PlotRatio, 0},
    {"--shiftmult", NUMBER, &ShiftMult, 0},
    {"--lw", NUMBER, &LineWidthFactor, 0},
    {"--elw", NUMBER, &ErrLineWidthFactor, 0},
    {"--psf", NUMBER, &PointSizeFactor, 0},
    {"--smsef", NUMBER, &smsStdevFactor, 0},
    {"--efa", NUMBER, &ErrFillAlpha, 0},
    {"--xmin", NUMBER, &Gxmin, 0},
    {"--xmax", NUMBER, &Gxmax, 0},
    {"--imgw", INTEGER, &wx, 0},
    {"--imgl", INTEGER, &wy, 0},
    {"--table", INTEGER, &TableN, 0},
    {"--term", TERMINAL, nullptr, 0},
    {"--dread", KINDS, &DataToRead, 0},
    {"--dcombine", KINDS, &DataToCombine, 0},
    {"--cread", PAIRS, nullptr, 0},
    {"--ccombine", PAIRS, nullptr, 1},
    {"--style_sms", STYLE, nullptr, 0},
    {"--ptype_sms", STYLE, nullptr, 1},
    {"--pipe", PIPE, nullptr, 0},
    {"--fill", FILL, nullptr, 0},
};

std::vector<std::string> settings_words(bool with_argument) {
    std::vector<std::string> result;
    for (const setting_word_t& known : Words) {
        const bool has_argument =
            known.setting != FLAG && known.setting != IMAGE && known.setting != PIPE;
        if (has_argument == with_argument)
            result.emplace_back(known.word);
    }
    return result;
}

static void set_image(int format) {
    static char name[] = "picture.png";
    MakeImage = format;
    ImgFname = name;
}

static void set_terminal() {
    static char name[] = "x11 noenhanced";
    UserTerminal = 1;
    UserTerminalName = name;
}

// As the command line does it, but that a wrong list ends nothing.
static void set_kinds(const char* list, unsigned* mask) {
    *mask = 0;
    run([&] { parse_data_string(list, mask); });
    if (mask == &DataToRead)
        *mask |= P_GINT_S;
}

static void set_pairs(const char* list, bool to_combine) {
    int* count = to_combine ? &NparToCombine : &NparToRead;
    int** first = to_combine ? &ParToCombineNum1 : &ParToReadNum1;
    int** second = to_combine ? &ParToCombineNum2 : &ParToReadNum2;
    std::free(*first);
    std::free(*second);
    *first = *second = nullptr;
    *count = 0;
    run([&] { parse_int_curve_number(list, count, first, second); });
}

static constexpr int MAX_FILL = 200000;

// How the experimental sM(s) is drawn.
static void set_experiment(bool point_type, int value) {
    data_type_t* experiment = &Type[d_idx(P_GINT_SMS)];
    (point_type ? experiment->p_type : experiment->style_type) = value;
}

static std::size_t fill_of(const char* argument) {
    return static_cast<std::size_t>(std::abs(integer_value(argument) % MAX_FILL));
}

static void set(const setting_word_t& known, const char* argument, file_settings_t* file) {
    switch (known.setting) {
        case FLAG:
            *static_cast<int*>(known.variable) = known.value;
            break;
        case IMAGE:
            set_image(known.value);
            break;
        case NUMBER:
            *static_cast<double*>(known.variable) = std::strtod(argument, nullptr);
            break;
        case INTEGER:
            *static_cast<int*>(known.variable) = integer_value(argument);
            break;
        case TERMINAL:
            set_terminal();
            break;
        case KINDS:
            set_kinds(argument, static_cast<unsigned*>(known.variable));
            break;
        case PAIRS:
            set_pairs(argument, known.value == 1);
            break;
        case STYLE:
            set_experiment(known.value == 1, integer_value(argument));
            break;
        case PIPE:
            file->through_pipe = true;
            break;
        case FILL:
            file->fill = fill_of(argument);
            break;
    }
}

static std::vector<std::string> words_of(const std::string& line) {
    std::vector<std::string> words(1);
    for (const char c : line) {
        if (c == ' ')
            words.emplace_back();
        else if (c != '\0')
            words.back() += c;
    }
    words.emplace_back();  // the argument that the last word may lack
    return words;
}

file_settings_t apply_settings(const std::string& line) {
    const std::vector<std::string> words = words_of(line);
    file_settings_t file = {false, 0};
    for (std::size_t i = 0; i + 1 < words.size(); i++) {
        for (const setting_word_t& known : Words) {
            if (words[i] == known.word)
                set(known, words[i + 1].c_str(), &file);
        }
    }
    return file;
}
