// SPDX-License-Identifier: MIT
//
// gravlex-figure: the figure of a paper, or a page for a browser.
#include "figure.h"

#include <popt.h>
#include <strings.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

// A tic mark at "scale 1" and the depth of the numbers are those of gnuplot's cairo and svg
// terminals.
static const format_t Formats[] = {
    {".pdf", "%%EOF", 0.447, 1.49, 2.0},
    {".eps", "%%EOF", 0.447, 1.49, 2.0},
    {".png", "IEND\xae\x42\x60\x82", 0.447, 1.49, 2.0},
    {".svg", "</svg>", 0.75, 1.826, 1.45},
    {".html", "</svg>", 0.75, 1.826, 1.45},
};

figure_t Figure = {nullptr, 17.0, 11.0, 8.0, 600, 0, {}};

static char* Output = nullptr;
static int Force = 0;
static char *Size, *Name;  // as popt stores them

bool is_format(const char* ending) {
    return std::strcmp(Figure.format->ending, ending) == 0;
}

// ---- The command line --------------------------------------------------------------------------

namespace {
enum own_code_t { OPT_SIZE = 2000, OPT_NAME };
}  // namespace

// clang-format off
static const poptOption Options[] = {
    {"output", 'o', POPT_ARG_STRING, &Output, 0,
     "Write the figure into this file: .pdf, .eps, .svg, .png or .html", "FILE"},
    {"force", 'f', POPT_ARG_NONE, &Force, 0,
     "Replace files that exist", nullptr},
    {"size", 's', POPT_ARG_STRING, &Size, OPT_SIZE,
     "Width and height of the figure in cm", "WIDTHxHEIGHT"},
    {"points", 'p', POPT_ARG_DOUBLE, &Figure.letters, 0,
     "Size of the letters in points", "POINTS"},
    {"dpi", '\0', POPT_ARG_INT, &Figure.dpi, 0,
     "Resolution of a PNG in pixels an inch", "DPI"},
    {"grey", 'g', POPT_ARG_NONE, &Figure.grey, 0,
     "Use shades of grey instead of colours", nullptr},
    {"name", 'n', POPT_ARG_STRING, &Name, OPT_NAME,
     "Name of a data set in the legend", "N-M=TEXT"},
    POPT_TABLEEND
};
// clang-format on

static const refused_options_t Refused[] = {
    {{"png"}, "use -o FILE.png"},
    {{"eps"}, "use -o FILE.eps"},
    {{"svg"}, "use -o FILE.svg"},
    {{"imgw", "imgl"}, "use -s WIDTHxHEIGHT, in cm"},
    {{"term"}, "the ending of -o FILE decides"},
    {},
};

static bool read_size() {
    int length = 0;
    if (std::sscanf(Size, "%lfx%lf%n", &Figure.width, &Figure.height, &length) == 2 &&
        Size[length] == '\0' && Figure.width >= 1 && Figure.width <= 200 && Figure.height >= 1 &&
        Figure.height <= 200)
        return true;
    complain("the size is WIDTHxHEIGHT in cm, each from 1 to 200, as in 17x11; not '%s'\n", Size);
    return false;
}

// The bytes of the character that begins here; 0 if it is no UTF-8 or controls something. There
// are none between the halves of those of UTF-16, and no SVG may have the last two of its 65536.
static int character_length(const char* text) {
    static constexpr unsigned LEAST[] = {' ', 0xa0, 0x800, 0x10000};  // of 1, 2, 3, 4 bytes
    static constexpr unsigned LINE_SEPARATOR = 0x2028;  // and, behind it, of paragraphs
    const unsigned first = static_cast<unsigned char>(*text);
    if ((first >= 0x80 && first < 0xc0) || first >= 0xf8)
        return 0;
    const int length = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    unsigned code = length == 1 ? first : first & (0x7fU >> length);
    for (int i = 1; i < length; i++) {
        const unsigned next = static_cast<unsigned char>(text[i]);
        if (next < 0x80 || next >= 0xc0)
            return 0;
        code = code << 6 | (next - 0x80);
    }
    const bool is_half = code >= 0xd800 && code < 0xe000;
    if (code < LEAST[length - 1] || code > 0x10ffff || code == 0x7f || is_half ||
        (code & 0xfffe) == 0xfffe || (code & ~1U) == LINE_SEPARATOR)
        return 0;
    return length;
}

static bool is_text(const char* text) {
    while (*text != '\0') {
        const int length = character_length(text);
        if (length == 0)
            return false;
        text += length;
    }
    return true;
}

static bool read_name() {
    PlotLegend = 1;
    const std::string given = Name;
    const std::size_t equals = given.find('=');
    const std::string set = given.substr(0, equals);
    set_name_t name = {};
    if (equals == std::string::npos || parse_int_curve(set.c_str(), &name.Nd, &name.Nc) != 0) {
        complain("a name is N-M=TEXT, as in 1-1='500 mm'; not '%s'\n", Name);
        return false;
    }
    name.text = given.substr(equals + 1);
    if (!is_text(name.text.c_str())) {
        complain("the name of %s is no text in UTF-8 on one line\n", set.c_str());
        return false;
    }
    Figure.names.push_back(name);
    return true;
}

static bool handle_own_option(int code) {
    return code == OPT_SIZE ? read_size() : read_name();
}

static const program_t Program = {"gravlex-figure", "[options...] inputfile", Options,
                                  handle_own_option, Refused};

static void find_format() {
    if (Output == nullptr || *Output == '\0')
        fail(stderr, "into which file? -o FILE.pdf, .eps, .svg, .png or .html says it\n");
    const std::size_t length = std::strlen(Output);
    for (const format_t& format : Formats) {
        const std::size_t ending = std::strlen(format.ending);
        if (length > ending && strcasecmp(Output + length - ending, format.ending) == 0)
            Figure.format = &format;
    }
    if (Figure.format == nullptr)
        fail(stderr, "%s has none of the endings .pdf, .eps, .svg, .png and .html\n", Output);
}

static void check_numbers() {
    require_number("points", Figure.letters, 1, 200);
    require_number("dpi", Figure.dpi, 10, 10000);
    const double most = 32767;  // of the library that draws for gnuplot
    const double pixels = std::max(Figure.width, Figure.height) / 2.54 * Figure.dpi;
    if (is_format(".png") && pixels > most)
        fail(stderr, "a PNG has at most %g pixels a side: use a lower --dpi\n", most);
}

// ---- Pages -------------------------------------------------------------------------------------

static bool is_named(const set_name_t& name, int c) {
    return name.Nd == CurveNd[c] && name.Nc == CurveNc[c];
}

static entry_t entry_of(int c, int j) {
    std::string set = std::to_string(CurveNd[c]) + "-" + std::to_string(CurveNc[c]);
    for (const set_name_t& name : Figure.names) {
        if (is_named(name, c))
            set = name.text;
    }
    return {c, j, Type[d_idx(PlotColType[j])].name_short + (" (" + set + ")")};
}

// An axis needs two ends, in this order, that the numbers on it can tell from each other.
static void widen(const char* axis, double* low, double* high) {
    const double size = std::fabs(*low) + std::fabs(*high);
    if (!(size < 1e15))
        fail(stderr, "the values of %s are no numbers that can be drawn\n", axis);
    if (*high < *low)
        fail(stderr, "the axis of %s cannot run from %g to %g\n", axis, *low, *high);
    if (*high - *low > 1e-6 * size && *high - *low > 1e-5)
        return;
    const double room = std::max(1.0, 0.05 * size);
    *low -= room;
    *high += room;
}

// That of gravlex would leave no room for bars and bands, but some for the column that they show.
static void set_y_range(plot_t plot, ranges_t* ranges) {
    double low = HUGE_VAL, high = -HUGE_VAL;    // of the curves
    double least = HUGE_VAL, most = -HUGE_VAL;  // of bars and bands
    for_each_column(plot, [&](int c, int j) {
        const deviation_t deviation = deviation_of(PlotColType[j]);
        if (deviation == DEV_HIDDEN)
            return;
        const double* d = deviation == DEV_NONE ? nullptr : Curve[c][ColErrIdx[j]];
        const double shift = CurveShift[c][j];
        for (int k = 0; k < column_points(c, j); k++) {
            const double y = Curve[c][j][k] + shift;
            low = std::fmin(low, y);
            high = std::fmax(high, y);
            if (d == nullptr)
                continue;
            const double level = deviation == DEV_LEVEL_BAND ? shift : y;
            least = std::fmin(least, level - std::fabs(d[k]));
            most = std::fmax(most, level + std::fabs(d[k]));
        }
    });
    ranges->ymin = std::fmin(low - 0.05 * (high - low), least - 0.02 * (most - least));
    ranges->ymax = std::fmax(high + 0.05 * (high - low), most + 0.02 * (most - least));
}

static panel_t panel_of(plot_t plot) {
    panel_t panel = {};
    panel.plot = plot;
    panel.ranges = plot_ranges(plot);
    if (Gxmin == GX_NOT_GIVEN && Gxmax == GX_NOT_GIVEN && panel.ranges.xmax < panel.ranges.xmin)
        std::swap(panel.ranges.xmin, panel.ranges.xmax);  // s falls from row to row
    set_y_range(plot, &panel.ranges);
    widen("s", &panel.ranges.xmin, &panel.ranges.xmax);
    widen("y", &panel.ranges.ymin, &panel.ranges.ymax);
    if (!PlotLegend && !is_format(".html"))
        return panel;
    for_each_column(plot, [&](int c, int j) {
        if (deviation_of(PlotColType[j]) != DEV_HIDDEN)
            panel.entries.push_back(entry_of(c, j));
    });
    return panel;
}

static bool is_shifted(const page_t& page) {
    bool shifted = false;
    for (const panel_t& panel : page.panels)
        for_each_column(panel.plot,
                        [&](int c, int j) { shifted = shifted || CurveShift[c][j] != 0.0; });
    return shifted;
}

// A page for all plots, or one for each. A plot of deviations that are shown with the curves has
// no room on a page: the groups of data sets are its rows, so that a column is empty in all of
// them.
static std::vector<page_t> make_pages() {
    std::vector<page_t> pages;
    for_each_plot([&](plot_t plot) {
        if (!has_series(plot))
            return;
        if (pages.empty() || !MultiPlot)
            pages.emplace_back();
        pages.back().panels.push_back(panel_of(plot));
    });
    for (page_t& page : pages) {
        page.rows = MultiPlot ? CurveGroupsToPlot : 1;
        page.columns = static_cast<int>(page.panels.size()) / page.rows;
        page.numbers = PlotYtics && !is_shifted(page);
    }
    return pages;
}

// gnuplot would draw empty frames without a word.
static void require_curves(const std::vector<page_t>& pages) {
    bool found = false;
    for (const page_t& page : pages) {
        for (const panel_t& panel : page.panels)
            for_each_column(panel.plot, [&](int c, int) {
                const auto [low, high] = std::minmax(Curve[c][0][0], Curve[c][0][Npts[c] - 1]);
                found = found || (low <= panel.ranges.xmax && high >= panel.ranges.xmin);
            });
    }
    if (!found)
        fail(stderr, "no curve has an s between --xmin and --xmax\n");
}

static void write_pages(const std::vector<page_t>& pages, const char* title) {
    int number = 0;
    for (const page_t& page : pages) {
        std::string name = Output;
        if (!MultiPlot)
            name = numbered_name(Output, ++number);
        FILE* file = new_file(name.c_str(), Force != 0);
        const std::string picture = draw_page(page, title);
        std::fwrite(picture.data(), 1, picture.size(), file);
    }
    keep_files();
}

int main(int argc, char** argv) {
    const char* inpFname = only_input(start_program(argc, argv, Program));
    find_format();
    check_numbers();
    read_input(inpFname);
    for (const set_name_t& name : Figure.names)
        require_set(name.Nd, name.Nc);
    prepare_plots();
    NamedBlocks = 1;
    std::vector<page_t> pages = make_pages();
    require_curves(pages);
    for (page_t& page : pages)
        lay_out(&page);
    const char* slash = std::strrchr(inpFname, '/');
    write_pages(pages, slash == nullptr ? inpFname : slash + 1);
    return EXIT_SUCCESS;
}
