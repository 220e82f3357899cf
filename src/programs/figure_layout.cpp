// SPDX-License-Identifier: MIT
//
// gnuplot cannot know how long a text will be when it leaves room for it, so everything gets its
// place here:
//
//      Exp.sM(s) (1-1)  Thr.sM(s) (1-1)     the legend, in columns, above the frame
//      +---------------------------------+
//    y |                                 |  the label of the y axis in as many lines as it needs,
//      |                                 |  then its numbers, if there are any
//      +---------------------------------+
//      0        10        20        30
//                   s, A^-1
#include <algorithm>
#include <cmath>
#include <cstring>

#include "figure.h"

namespace {

struct size_2d_t {
    double width, height;
};

// The margins that all panels of a page must have, so that their frames stand in line.
struct margins_t {
    double left, right, top;
};

}  // namespace

// Margins in em.
static constexpr double RIGHT = 0.9;    // half a number at the end of the axis
static constexpr double TOP = 0.55;     // half a number at the upper end of the y axis
static constexpr double BOTTOM = 2.85;  // numbers and label of the x axis
static constexpr double SIDE = 0.7;     // beside the label of the y axis, both sides together
static constexpr double LINE = 1.2;     // a line of it
static constexpr double ENTRY = 1.25;   // a line of the legend
static constexpr double SAMPLE = 2.2;   // from the left end of an entry to its text
static constexpr double BETWEEN = 0.9;  // two columns of the legend

// The smallest frame that shows anything, in em, and the smallest panel, in cm.
static constexpr double LEAST_WIDTH = 6.0, LEAST_HEIGHT = 3.0;
static constexpr double LEAST_PANEL_WIDTH = 4.0, LEAST_PANEL_HEIGHT = 3.0;

// In cm: longer sides differ from each other by too little, and the search for a size might not
// end.
static constexpr double NO_PAGE = 1e4;

// In points: what fits to this is not looked at again, or the search for a size might not end.
static constexpr double ROUNDING = 1e-6;

// ---- Texts -------------------------------------------------------------------------------------

// Widths of ' ' to '~' in Arial, and in what stands in for it, in thousandths of an em.
// clang-format off
static const short Widths[] = {
    278, 278, 355, 556, 556, 889, 667, 191, 333, 333, 389, 584, 278, 333, 278, 278,
    556, 556, 556, 556, 556, 556, 556, 556, 556, 556, 278, 278, 584, 584, 584, 556,
    1015, 667, 667, 722, 722, 667, 611, 778, 722, 278, 500, 667, 556, 833, 722, 778,
    667, 778, 722, 667, 611, 722, 667, 944, 667, 667, 611, 278, 278, 278, 469, 556,
    333, 556, 556, 500, 556, 556, 278, 556, 556, 222, 222, 500, 222, 833, 556, 556,
    556, 556, 333, 500, 278, 556, 500, 722, 500, 500, 500, 334, 260, 334, 584};
// clang-format on

static constexpr double DIGIT = 0.556;
static constexpr double OTHER = 1.1;  // no letter of Latin, Greek, Cyrillic or Chinese is wider

static double text_width(const std::string& text) {
    double width = 0.0;
    for (const char c : text) {
        if ((c & 0x80) == 0)  // no control character: is_text has looked
            width += Widths[c - ' '] / 1000.0;
        else if ((c & 0xc0) != 0x80)  // the first byte of a character
            width += OTHER;
    }
    return width;
}

// The same for the label of a kind, without the marks in it: {/Arial-Italic I}({/Arial-Italic s}).
static double label_width(const std::string& label) {
    std::string plain;
    for (std::size_t i = 0; i < label.size(); i++) {
        if (label[i] == '{' && label[i + 1] == '/')
            i = label.find(' ', i);
        else if (std::strchr("{}_", label[i]) == nullptr)
            plain += label[i];
    }
    return text_width(plain);
}

// ---- Numbers on the axes -----------------------------------------------------------------------

// The longest of the numbers at the multiples of step, in em; last: of the last one only.
static double number_width(double low, double high, double step, bool last) {
    std::size_t longest = 0;
    for (double k = std::ceil(low / step - 1e-9); k * step <= high + 1e-9 * step; k++) {
        char text[40];
        std::snprintf(text, sizeof text, NUMBER, k * step);
        longest = std::max(last ? 0 : longest, std::strlen(text));
    }
    return DIGIT * static_cast<double>(longest);
}

// The smallest of 1, 2, 5, 10, 20 ... whose numbers stand clear of each other on that length; as
// many as a hundred need not be looked at.
static double number_step(double low, double high, double length, bool beside) {
    const double span = high - low;
    double power = std::pow(10.0, std::floor(std::log10(span / 100)));
    while (true) {
        for (const double factor : {1.0, 2.0, 5.0}) {
            const double step = factor * power;
            if (span / step > 100)
                continue;
            const double room = beside ? number_width(low, high, step, false) + 1.2 : 1.8;
            if (step / span * length >= room * Figure.letters)
                return step;
        }
        power *= 10;
    }
}

// How far the last number of the x axis reaches beyond the frame.
static double overhang(const panel_t& panel) {
    const double low = panel.ranges.xmin, high = panel.ranges.xmax;
    const double last = std::floor(high / panel.xstep + 1e-9) * panel.xstep;
    const double inside = (high - last) / (high - low) * (panel.x1 - panel.x0);
    return number_width(low, high, panel.xstep, true) / 2 * Figure.letters - inside;
}

// ---- A panel -----------------------------------------------------------------------------------

static int count_kinds(const panel_t& panel) {
    return static_cast<int>(
        std::count_if(panel.entries.begin(), panel.entries.end(),
                      [&](const entry_t& entry) { return entry.c == panel.entries.front().c; }));
}

// As many columns as there is room for, in the middle of the panel. The kinds of a set stand in
// one row where they fit; where not, the columns are filled one after the other.
static void place_entries(panel_t* panel, double panel_width, double width, int fit) {
    const int count = static_cast<int>(panel->entries.size());
    const int kinds = count_kinds(*panel);
    const bool down = fit < kinds;
    int columns = down ? fit : fit / kinds * kinds;
    const int rows = (count + columns - 1) / columns;
    if (down)
        columns = (count + rows - 1) / rows;
    const double em = Figure.letters;
    const double left = (panel_width - columns * width + BETWEEN * em) / 2;
    for (int i = 0; i < count; i++) {
        entry_t* entry = &panel->entries[static_cast<std::size_t>(i)];
        entry->x = left + (down ? i / rows : i % columns) * width + SAMPLE * em;
        entry->depth = (0.75 + ENTRY * (down ? i % rows : i / columns)) * em;
    }
    panel->entry_rows = rows;
}

// Returns the size of panel that the legend needs, nothing if it has it.
static size_2d_t place_legend(panel_t* panel, double panel_width) {
    panel->entry_rows = 0;
    if (panel->entries.empty())
        return {};
    const double em = Figure.letters;
    double width = 0.0;
    for (const entry_t& entry : panel->entries)
        width = std::max(width, (SAMPLE + text_width(entry.text) + BETWEEN) * em);
    const double room = panel_width - 0.4 * em + ROUNDING;
    if (room < width)
        return {width + 0.4 * em, 0.0};
    const double count = static_cast<double>(panel->entries.size());
    place_entries(panel, panel_width, width, static_cast<int>(std::min(room / width, count)));
    return {};
}

// The typeset labels of the kinds that are shown, each once, in lines that are not too long.
static void break_label(panel_t* panel, double length) {
    std::vector<std::string> known;
    double used = 0.0;
    panel->labels.clear();
    for_each_column(panel->plot, [&](int, int j) {
        const std::string label = Type[d_idx(PlotColType[j])].name_eps;
        if (deviation_of(PlotColType[j]) == DEV_HIDDEN ||
            std::find(known.begin(), known.end(), label) != known.end())
            return;
        known.push_back(label);
        const double width = label_width(label) * Figure.letters;
        const double joined = used + text_width(", ") * Figure.letters + width;
        if (panel->labels.empty() || joined > length) {
            panel->labels.push_back(label);
            used = width;
        } else {
            panel->labels.back() += ", " + label;
            used = joined;
        }
    });
}

static void set_margins(panel_t* panel, const page_t& page, const margins_t& least) {
    const double em = Figure.letters;
    const double legend = panel->entry_rows > 0 ? ENTRY * panel->entry_rows + 0.1 : 0.0;
    panel->bottom = BOTTOM * em;
    panel->right = std::max(RIGHT * em, least.right);
    panel->top = std::max((TOP + legend) * em, least.top);
    const double height = page.panel_height - panel->top - panel->bottom;
    break_label(panel, height);
    double left = SIDE + LINE * static_cast<double>(panel->labels.size());
    if (page.numbers) {
        const ranges_t& ranges = panel->ranges;
        const double step = number_step(ranges.ymin, ranges.ymax, std::max(height, em), false);
        left += number_width(ranges.ymin, ranges.ymax, step, false) + 0.5;
    }
    panel->left = std::max(left * em, least.left);
}

// The height of the frame in widths, 0 if it may have any; gnuplot's own ratio would move the
// frame away from its labels.
static double frame_ratio(const ranges_t& ranges) {
    if (PlotRatio >= 0.0)
        return PlotRatio;
    return -PlotRatio * (ranges.ymax - ranges.ymin) / (ranges.xmax - ranges.xmin);
}

// In the middle of the room for it. Returns the size of panel that it needs, nothing if it has it.
static size_2d_t place_frame(panel_t* panel, const page_t& page) {
    const double ratio = frame_ratio(panel->ranges);
    const double room_width = page.panel_width - panel->left - panel->right;
    const double room_height = page.panel_height - panel->top - panel->bottom;
    double width = room_width, height = room_height;
    double least_width = LEAST_WIDTH * Figure.letters,
           least_height = LEAST_HEIGHT * Figure.letters;
    if (ratio > 0.0) {
        width = std::min(room_width, room_height / ratio);
        height = width * ratio;
        least_width = std::max(least_width, least_height / ratio);
        least_height = least_width * ratio;
    }
    if (width < least_width - ROUNDING || height < least_height - ROUNDING)
        return {panel->left + panel->right + least_width,
                panel->top + panel->bottom + least_height};
    panel->x0 = panel->left + (room_width - width) / 2;
    panel->y0 = panel->bottom + (room_height - height) / 2;
    panel->x1 = panel->x0 + width;
    panel->y1 = panel->y0 + height;
    const ranges_t& ranges = panel->ranges;
    panel->xstep = number_step(ranges.xmin, ranges.xmax, width, true);
    panel->ystep = number_step(ranges.ymin, ranges.ymax, height, false);
    return {};
}

// ---- A page ------------------------------------------------------------------------------------

static size_2d_t larger(const size_2d_t& a, const size_2d_t& b) {
    return {std::max(a.width, b.width), std::max(a.height, b.height)};
}

// With one set of margins for all panels. Returns the size of panel that is needed.
static size_2d_t place_panels(page_t* page, margins_t* margins) {
    size_2d_t needed = {};
    margins_t least = *margins;
    for (panel_t& panel : page->panels) {
        size_2d_t size = place_legend(&panel, page->panel_width);
        if (size.width == 0.0) {
            set_margins(&panel, *page, *margins);
            size = place_frame(&panel, *page);
        }
        needed = larger(needed, size);
        if (size.width != 0.0)
            continue;
        least.left = std::max(least.left, panel.left);
        least.right = std::max(least.right, overhang(panel) + 0.2 * Figure.letters);
        least.top = std::max(least.top, panel.top);
    }
    *margins = least;
    return needed;
}

// For a page of that size, in cm. Returns which size is needed, nothing if it is this.
static size_2d_t try_size(page_t* page, const size_2d_t& size) {
    page->panel_width = size.width / 2.54 * 72 / page->columns;
    page->panel_height = size.height / 2.54 * 72 / page->rows;
    size_2d_t needed = {};
    if (page->panels.size() > 1 && (size.width < LEAST_PANEL_WIDTH * page->columns ||
                                    size.height < LEAST_PANEL_HEIGHT * page->rows))
        return {LEAST_PANEL_WIDTH * page->columns, LEAST_PANEL_HEIGHT * page->rows};
    margins_t margins = {};
    needed = place_panels(page, &margins);
    if (needed.width == 0.0)
        needed = place_panels(page, &margins);
    return {needed.width * page->columns / 72 * 2.54, needed.height * page->rows / 72 * 2.54};
}

static double tenths_up(double least, double value) {
    return value <= least ? least : std::ceil(10 * value) / 10;
}

void lay_out(page_t* page) {
    const size_2d_t asked = {Figure.width, Figure.height};
    size_2d_t size = asked, needed;
    // What is wider or higher may need other margins, so that one look is not enough.
    while ((needed = try_size(page, size)).width != 0.0) {
        size = {tenths_up(size.width, needed.width), tenths_up(size.height, needed.height)};
        if (size.width > NO_PAGE || size.height > NO_PAGE)
            fail(stderr, "no page is large enough for this figure\n");
    }
    if (size.width > asked.width || size.height > asked.height)
        fail(stderr, "%gx%g cm is too small for this figure: it needs %gx%g cm\n", asked.width,
             asked.height, size.width, size.height);
}
