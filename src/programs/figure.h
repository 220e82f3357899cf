// SPDX-License-Identifier: MIT
//
// The figure of a paper. Lengths are in points of 1/72 inch, from the lower left corner, unless it
// is said otherwise; an "em" is the size of the letters.
#pragma once

#include <string>
#include <vector>

#include "program.h"

// ---- What is asked for (figure.cpp) ------------------------------------------------------------

// A file format, and how gnuplot's terminal for it measures: no two kinds of them agree.
struct format_t {
    const char* ending;   // of the file name
    const char* end;      // of a whole file
    double tic;           // tic marks at "scale 1", in em
    double number_depth;  // from the axis down to the baseline of its numbers, in em
    double sample;        // "samplen" of a legend whose samples are 1.56 em long
};

struct set_name_t {
    int Nd, Nc;
    std::string text;
};

struct figure_t {
    const format_t* format;
    double width, height;  // of the page, in cm
    double letters;        // size of the letters
    int dpi;
    int grey;  // flag
    std::vector<set_name_t> names;
};
extern figure_t Figure;

// True if this is the file name's.
bool is_format(const char* ending);

// Format of the numbers on the axes, which tells any two tic marks from each other.
constexpr char NUMBER[] = "%.10g";

// ---- Where things are (figure_layout.cpp) ------------------------------------------------------

// A line of the legend.
struct entry_t {
    int c, j;
    std::string text;
    // Of its text: from the left of the panel, and below its upper margin's top.
    double x = 0.0, depth = 0.0;
};

struct panel_t {
    plot_t plot;
    ranges_t ranges;
    std::vector<entry_t> entries;     // of the legend; none without one
    int entry_rows;                   // that these fill
    std::vector<std::string> labels;  // of the y axis: its lines, as enhanced text
    double left, right, top, bottom;  // margins of the room for the frame, in the panel
    double x0, x1, y0, y1;            // the frame, in the panel
    double xstep, ystep;              // between tic marks, in data units
};

struct page_t {
    int rows, columns;  // of panels
    double panel_width, panel_height;
    bool numbers;                 // flag: the y axes have numbers
    std::vector<panel_t> panels;  // row by row
};

// Gives everything its place. A page that is too small ends the run with a sentence that says
// which size would do.
void lay_out(page_t* page);

// ---- What gnuplot is sent (figure_commands.cpp) ------------------------------------------------

// A curve of a panel with the band or bars that belong to it: positions in the plot command.
struct part_t {
    int panel, curve, deviations;  // from 1
};

// Writes the commands that draw the page to f; each panel as a picture of its own if it is to
// become a part of an HTML page. Returns which parts belong together.
std::vector<part_t> write_commands(const page_t& page);

// ---- gnuplot (figure_draw.cpp) -----------------------------------------------------------------

// Lets gnuplot draw the commands of the file, from its beginning, onto its standard output, which
// goes to the picture, a file. A gnuplot that is missing, fails or draws nothing ends the run with
// a sentence that has its own words.
void draw(FILE* commands, FILE* picture);

// ---- What becomes of the picture (figure_file.cpp, figure_page.cpp) ----------------------------

// Draws the page, and returns the content of its file.
std::string draw_page(const page_t& page, const char* title);

// An HTML page of pictures that gnuplot has drawn. It needs no other file.
std::string html_page(const std::string& pictures, const page_t& page, const char* title,
                      const std::vector<part_t>& parts);
