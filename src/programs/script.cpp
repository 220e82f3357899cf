// SPDX-License-Identifier: MIT
//
// gravlex-script: the plot as a gnuplot script to keep and edit. It draws gravlex's own picture,
// to the pixel, and is plain ASCII as long as the terminal's name is.
#include <popt.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "input/input.h"
#include "program.h"

static int Force = 0;
static const char* Output = "gravlex.gp";

static const poptOption OwnOptions[] = {
    {"force", 'f', POPT_ARG_NONE, &Force, 0, "Replace files that exist", nullptr},
    {"output", 'o', POPT_ARG_STRING, &Output, 0,
     "Write the script to 'file' (gravlex.gp); - is standard output", "file"},
    POPT_TABLEEND};

static const refused_options_t Refused[] = {{}};

static const program_t Script = {"gravlex-script", "[options...] inputfile", OwnOptions, nullptr,
                                 Refused};

static const char* InputName = nullptr;
static const char* Terminal = nullptr;  // of --term; the core would repeat it in each panel
static int ArgCount;
static char** Arguments;

// ---- The comment -------------------------------------------------------------------------------

static bool is_odd(char c) {
    return !std::isprint(static_cast<unsigned char>(c)) || c == '\'' || c == '\\';
}

// Writes a word as a shell reads it, in plain letters: a comment ends at the first newline.
static void write_word(const char* word) {
    static const char PLAIN[] =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./-=,:@%+";
    if (*word != '\0' && word[std::strspn(word, PLAIN)] == '\0') {
        std::fprintf(f, "%s", word);
        return;
    }
    bool odd = false;
    for (const char* c = word; *c != '\0'; c++)
        odd = odd || is_odd(*c);
    std::fprintf(f, odd ? "$'" : "'");
    for (const char* c = word; *c != '\0'; c++)
        std::fprintf(f, is_odd(*c) ? "\\%03o" : "%c", static_cast<unsigned char>(*c));
    std::fprintf(f, "'");
}

// With commas, in lines that are not too long for a letter.
static void write_names(const std::vector<std::string>& names) {
    std::size_t used = 20;
    for (const std::string& name : names) {
        const bool is_last = &name == &names.back();
        const bool fits = (used += name.size() + 2) < 80;
        std::fprintf(f, "%s%s%s", fits ? " " : "\n#    ", name.c_str(), is_last ? "" : ",");
        used = fits ? used : name.size() + 6;
    }
}

static void add_once(std::vector<std::string>* names, const std::string& name) {
    if (std::find(names->begin(), names->end(), name) == names->end())
        names->push_back(name);
}

// Of the plot, or of all.
static void write_content(const plot_t* only) {
    std::vector<std::string> kinds, sets;
    const auto add = [&](plot_t plot) {
        for_each_column(plot, [&](int c, int j) {
            if (deviation_of(PlotColType[j]) != DEV_HIDDEN)
                add_once(&kinds, Type[d_idx(PlotColType[j])].name);
            add_once(&sets, std::to_string(CurveNd[c]) + "-" + std::to_string(CurveNc[c]));
        });
    };
    if (only != nullptr)
        add(*only);
    else
        for_each_plot(add);
    std::fprintf(f, "# Table %d of ", TableN);
    write_word(InputName);
    std::fprintf(f, ":");
    write_names(kinds);
    std::fprintf(f, "\n# of the data sets");
    write_names(sets);
    std::fprintf(f, "\n");
}

// How to draw it, with the script's own name.
static void write_way(const char* way, const char* name) {
    std::fprintf(f, "# %s %s", way, before_name(name));
    write_word(name);
    std::fprintf(f, "\n");
}

static void write_usage(const char* name) {
    if (image_is_asked_for()) {
        write_way("Draw the image:  gnuplot", name);
        return;
    }
    write_way("In a window:  gnuplot -persist", name);
    if (Terminal != nullptr)
        return;                                      // it would replace those
    if (MultiPlot || std::strcmp(Output, "-") != 0)  // a PNG has one page
        write_way(
            "As PNG:       gnuplot -e "
            "\"set terminal pngcairo size 1200,800; set output 'plot.png'\"",
            name);
    write_way(
        "As PDF:       gnuplot -e "
        "\"set terminal pdfcairo size 17cm,11cm; set output 'plot.pdf'\"",
        name);
}

static void write_comment(const char* name, const plot_t* only) {
    std::fprintf(f, "# A gnuplot script, written by\n#    %s", ProgramName);
    for (int i = 1; i < ArgCount; i++) {
        std::fprintf(f, " ");
        write_word(Arguments[i]);
    }
    std::fprintf(f, "\n");
    write_content(only);
    write_usage(std::strcmp(name, "-") == 0 ? "gravlex.gp" : name);
    std::fprintf(f, "\n");
}

// ---- The plots ---------------------------------------------------------------------------------

// Visits those that can be drawn, with their numbers among all: visit(number, plot, ranges).
template <class visitor_t>
static void for_each_drawn(visitor_t visit) {
    int number = 0;
    for_each_plot([&](plot_t plot) {
        number++;
        ranges_t ranges = {};
        if (find_ranges(plot, &ranges))
            visit(number, plot, ranges);
    });
}

static void write_plot(plot_t plot, const ranges_t& ranges) {
    Look->settings(plot, ranges);
    write_plot_command(plot);
}

// The terminal stands in front: on a page of panels gnuplot would refuse to change it.
// A number from 1 is put in front of the name of the image, as gravlex does it.
static void write_terminal(int number) {
    if (!image_is_asked_for()) {
        if (Terminal != nullptr)
            std::fprintf(f, "set terminal %s\n", Terminal);
        return;
    }
    std::string image = ImgFname;
    if (number != 0)
        image.insert(0, std::to_string(number) + "_");
    write_image_terminal();
    std::fprintf(f, "set output ");
    write_name(f, image.c_str());
    std::fprintf(f, "\n");
}

static void write_page() {
    write_comment(Output, nullptr);
    for_each_plot(write_data_blocks);
    write_terminal(0);
    // An image of a page has the encoding that was set when it began: the Angstrom sign needs it.
    if (page_has_panels())
        std::fprintf(f,
                     "set encoding iso_8859_1\n"
                     "set multiplot layout %d, %d title \"KOVA GED curves\"\n",
                     CurveGroupsToPlot, ColGroupsToPlot);
    for_each_drawn([](int, plot_t plot, const ranges_t& ranges) { write_plot(plot, ranges); });
    if (page_has_panels())
        std::fprintf(f, "unset multiplot\n");
}

// One script, in which each plot has a window or an image of its own.
static void write_windows() {
    write_comment(Output, nullptr);
    for_each_plot(write_data_blocks);
    for_each_drawn([](int number, plot_t plot, const ranges_t& ranges) {
        write_terminal(number);
        if (!image_is_asked_for())
            std::fprintf(f,
                         "if (strstrt('|wxt|qt|x11|aqua|windows|', '|'.GPVAL_TERM.'|')) "
                         "eval 'set terminal '.GPVAL_TERM.' %d'\n",
                         number);
        write_plot(plot, ranges);
    });
}

// A script for each plot.
static void write_scripts() {
    for_each_drawn([](int number, plot_t plot, const ranges_t& ranges) {
        const std::string name = numbered_name(Output, number);
        f = new_file(name.c_str(), Force);
        write_comment(name.c_str(), &plot);
        write_data_blocks(plot);
        write_terminal(number);
        write_plot(plot, ranges);
    });
}

int main(int argc, char** argv) {
    ArgCount = argc;
    Arguments = argv;
    InputName = only_input(start_program(argc, argv, Script));
    read_input(InputName);
    prepare_plots();
    require_ranges();
    Terminal = UserTerminal ? UserTerminalName : nullptr;
    UserTerminal = 0;
    NamedBlocks = 1;
    const bool to_output = std::strcmp(Output, "-") == 0;
    if (MultiPlot || to_output)
        f = new_file(Output, Force);
    if (MultiPlot)
        write_page();
    else if (to_output)
        write_windows();
    else
        write_scripts();
    keep_files();
    return EXIT_SUCCESS;
}
