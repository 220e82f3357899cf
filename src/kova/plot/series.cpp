// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "plot/plot.h"

deviation_t deviation_of(int kind) {
    if (kind == P_GINT_SMS)
        return smsErrBars ? DEV_BARS : smsErrFill ? DEV_BAND : DEV_NONE;
    if (kind == P_GINT_DSMS)
        return dsmsErrBars    ? DEV_BARS
               : dsmsErrFill  ? DEV_BAND
               : dsmslErrFill ? DEV_LEVEL_BAND
                              : DEV_NONE;
    return kind == P_GINT_SMSS && deviations_shown() ? DEV_HIDDEN : DEV_NONE;
}

bool has_bars(int j) {
    return deviation_of(PlotColType[j]) == DEV_BARS;
}

bool has_band(int j) {
    const deviation_t deviation = deviation_of(PlotColType[j]);
    return deviation == DEV_BAND || deviation == DEV_LEVEL_BAND;
}

bool has_series(plot_t plot) {
    bool found = false;
    for_each_series(plot, [&found](int, int) { found = true; });
    return found;
}

int NamedBlocks = 0;

// A number as a part of a name, in which there is no minus.
static int print_number(char* to, std::size_t room, int number) {
    return std::snprintf(to, room, "_%s%lld", number < 0 ? "m" : "",
                         std::llabs(static_cast<long long>(number)));
}

// How many sets have this label, up to this one: names must differ.
static int repeats_of_label(int c) {
    int count = 0;
    for (int other = 0; other <= c; other++)
        count += CurveNd[other] == CurveNd[c] && CurveNc[other] == CurveNc[c];
    return count;
}

block_name_t block_name(int c, int j, bool deviations) {
    block_name_t name = {"'-'"};
    if (!NamedBlocks)
        return name;
    char* to = name.text;
    char* end = to + sizeof name.text;
    const std::size_t room = sizeof name.text;
    to += std::snprintf(to, room, "$%s", kind_word(PlotColType[j]));
    to += print_number(to, static_cast<std::size_t>(end - to), CurveNd[c]);
    to += print_number(to, static_cast<std::size_t>(end - to), CurveNc[c]);
    if (repeats_of_label(c) > 1)
        to += print_number(to, static_cast<std::size_t>(end - to), repeats_of_label(c));
    std::snprintf(to, static_cast<std::size_t>(end - to), "%s", deviations ? "_dev" : "");
    return name;
}

// ---- The plot command --------------------------------------------------------------------------

static void require_style(int r) {
    const int style = Type[r].style_type;
    if (style < ST_LINES || style > ST_SPECIAL)
        fail(stderr, "Invalid plotting style %d for data type %d\n", style, r);
}

void write_plot_command(plot_t plot) {
    const char* separator = " ";
    const auto write = [&separator](void (*series)(int c, int j), int c, int j) {
        std::fprintf(f, "%s", separator);
        // A plot with named blocks is for people to edit: one series a line.
        separator = NamedBlocks ? ", \\\n     " : ", ";
        series(c, j);
    };
    std::fprintf(f, "plot ");
    if (Look->bands_first)
        for_each_series(plot, [&](int c, int j) {
            if (has_band(j))
                write(Look->deviations, c, j);
        });
    for_each_series(plot, [&](int c, int j) {
        require_style(d_idx(PlotColType[j]));
        if (has_bars(j) || (has_band(j) && !Look->bands_first))
            write(Look->deviations, c, j);
        write(Look->curve, c, j);
    });
    std::fprintf(f, "\n");
}

// ---- The data ----------------------------------------------------------------------------------

void write_deviation_block(int c, int j, deviation_t deviation) {
    const double* y = Curve[c][j];
    const double* d = Curve[c][ColErrIdx[j]];
    const double shift = CurveShift[c][j];
    const int n = d == nullptr ? 0 : column_points(c, j);
    begin_rows(block_name(c, j, true), Curve[c][0], n);
    for (int k = 0; k < n; k++) {
        const double level = deviation == DEV_LEVEL_BAND ? shift : y[k] + shift;
        if (deviation == DEV_BARS)
            write_row(level, d[k]);
        else
            write_row(level - d[k], level + d[k]);
    }
    end_rows();
}

void write_curve_block(int c, int j) {
    const double* y = Curve[c][j];
    const double shift = CurveShift[c][j];
    const int n = column_points(c, j);
    begin_rows(block_name(c, j, false), Curve[c][0], n);
    for (int k = 0; k < n; k++)
        write_row(y[k] + shift);
    end_rows();
}

void write_data_blocks(plot_t plot) {
    for_each_series(plot, [](int c, int j) {
        const deviation_t deviation = deviation_of(PlotColType[j]);
        if (deviation != DEV_NONE)
            write_deviation_block(c, j, deviation);
        write_curve_block(c, j);
    });
    flush_rows();
}
