// SPDX-License-Identifier: MIT
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include "plain/plain.h"

namespace plain {

int finish(const run_ended_t& ended) {
    std::fflush(stdout);
    if (ended.stream != nullptr)
        std::fputs(ended.message.c_str(), ended.stream);
    return ended.status;
}

void fail(std::FILE* stream, const char* format, ...) {
    char* text = nullptr;
    std::va_list args;
    va_start(args, format);
    const int length = vasprintf(&text, format, args);
    va_end(args);
    const std::string message(text, static_cast<std::size_t>(length));
    std::free(text);
    throw run_ended_t{1, stream, message};
}

void complain(const char* format, ...) {
    std::va_list args;
    va_start(args, format);
    std::fflush(stdout);
    std::vfprintf(stderr, format, args);
    va_end(args);
}

void start_again() {
    Type = types_at_start();
    Options = options_t();
    Table = table_t();
    buf.clear();
    f = nullptr;
}

// ---- Groups ------------------------------------------------------------------------------------

static int first_column(int type) {
    for (int j = 1; j < Table.NcolsToPlot; j++) {
        if (Table.PlotColType[j] == type)
            return j;
    }
    return 0;
}

static void link_deviations() {
    const int deviations = first_column(P_GINT_SMSS);
    Table.ColErrIdx[first_column(P_GINT_SMS)] = deviations;
    Table.ColErrIdx[first_column(P_GINT_DSMS)] = deviations;
}

static void form_groups() {
    table_t& t = Table;
    if (Options.DataToCombine != 0)
        t.ColGroupsToPlot = 1;
    for (int j = 1; j < t.NcolsToPlot; j++) {
        if (static_cast<unsigned>(t.PlotColType[j]) & Options.DataToCombine)
            t.ColPlotGroup[j] = 1;
    }
    for (int j = 1; j < t.NcolsToPlot; j++) {
        if (t.ColPlotGroup[j] == 0)
            t.ColPlotGroup[j] = ++t.ColGroupsToPlot;
    }
    // Any list puts every set that was read into the first group, listed or not.
    const bool is_combined = !Options.ParToCombine.empty();
    if (is_combined)
        t.CurveGroupsToPlot = 1;
    for (curve_t& curve : t.curves)
        curve.PlotGroup = is_combined ? 1 : ++t.CurveGroupsToPlot;
}

static void refuse_empty_sets() {
    bool is_empty = false;
    for (std::size_t c = 0; c < Table.curves.size(); c++) {
        if (points(Table.curves[c], 0) != 0)
            continue;
        std::printf("No data found in data set # %zu\n", c);
        is_empty = true;
    }
    if (is_empty)
        throw run_ended_t{1};
}

// ---- gnuplot -----------------------------------------------------------------------------------

static void write_image_commands(int number) {
    if (Options.MakeImage == IMG_EPS)
        std::fprintf(f, "set terminal postscript eps enhanced color solid clip\n");
    else if (Options.MakeImage == IMG_SVG)
        std::fprintf(f, "set terminal svg size %d,%d dynamic enhanced\n", Options.wx, Options.wy);
    else
        std::fprintf(f, "set term pngcairo size %d,%d\n", Options.wx, Options.wy);
    if (Options.MultiPlot)
        std::fprintf(f, "set output \"%s\"\n", Options.ImgFname);
    else
        std::fprintf(f, "set output \"%d_%s\"\n", number, Options.ImgFname);
    std::fprintf(f, "replot\n");
}

// One gnuplot with the whole page, or with the single plot that has this number.
static void run_gnuplot(int number) {
    const bool has_panels =
        Options.MultiPlot && (Table.CurveGroupsToPlot > 1 || Table.ColGroupsToPlot > 1);
    std::fflush(stdout);
    f = popen("gnuplot -persist", "w");
    if (f == nullptr)
        fail(stdout, "Cannot connect to gnuplot pipe: %s\n", std::strerror(errno));
    if (has_panels)
        std::fprintf(f, "set multiplot layout %d, %d title \"KOVA GED curves\"\n",
                     Table.CurveGroupsToPlot, Table.ColGroupsToPlot);
    data_plot(1);
    if (Options.MakeImage && !has_panels) {
        write_image_commands(number);
        data_plot(0);
    }
    if (has_panels)
        std::fprintf(f, "unset multiplot\n");
    std::FILE* ending = f;
    f = nullptr;
    if (pclose(ending) != 0)
        complain("Unable to close GnuPlot pipe.\n");
}

void draw(const char* inpFname) {
    echo_settings();
    if (detect_int_table_version(inpFname) == 2)
        parse_kova_int_tables_ver2(inpFname);
    else
        parse_kova_int_tables_ver1(inpFname);
    link_deviations();
    form_groups();
    refuse_empty_sets();
    int number = 0;
    for (int g = 1; g <= Table.CurveGroupsToPlot; g++) {
        for (int h = 1; h <= Table.ColGroupsToPlot; h++) {
            Table.CurCurvesGroupToPlot = g;
            Table.CurDataGroupToPlot = h;
            run_gnuplot(++number);
            if (Options.MultiPlot)
                return;  // all plots are on one page
        }
    }
}

}  // namespace plain
