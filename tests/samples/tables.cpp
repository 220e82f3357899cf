// SPDX-License-Identifier: MIT

#include <cstring>
#include <string>

#include "report.h"

static int column_width(const column_t& column) {
    return static_cast<int>(std::strlen(column.label));
}

static int table_width(const table_t& table) {
    int width = 0;
    for (const column_t& column : table.columns)
        width += column_width(column);
    return width;
}

static void write_rule(std::FILE* out, char sign, const table_t& table) {
    const std::string rule(static_cast<std::size_t>(table_width(table)), sign);
    std::fprintf(out, "%s\n", rule.c_str());
}

static void write_header_row(std::FILE* out, const table_t& table) {
    for (const column_t& column : table.columns)
        std::fputs(column.label, out);
    std::fputc('\n', out);
}

static void write_rows(std::FILE* out, const table_t& table, const data_set_t& set) {
    for (const point_t& p : set.points) {
        for (const column_t& column : table.columns)
            std::fprintf(out, "%*.*f", column_width(column), column.decimals, p.*column.value);
        std::fputc('\n', out);
    }
}

static void write_range(std::FILE* out, const data_set_t& set) {
    const exposure_t& e = set.exposure;
    std::fprintf(out, " %zu points, s from %.1f to %.1f in steps of %.1f 1/A\n", set.points.size(),
                 e.first / 10.0, e.last / 10.0, e.step / 10.0);
}

// The factor must end with a blank, and nothing like "x= " may stand before it.
static void write_set_layout_1(std::FILE* out, const table_t& table, const data_set_t& set,
                               bool last) {
    const exposure_t& e = set.exposure;
    std::fprintf(out, " Curve: (%d-%d)  Scale=%.4f  nozzle-to-plate distance %d mm\n", e.nd, e.nc,
                 e.scale, e.nozzle_mm);
    write_range(out, set);
    write_rows(out, table, set);
    write_rule(out, last ? '-' : '=', table);
}

// No line of a set, and none between two sets, may be blank: that would end the table.
static void write_set_layout_2(std::FILE* out, const table_t& table, const data_set_t& set) {
    const exposure_t& e = set.exposure;
    std::fprintf(out, " Set: %d-%d  nozzle-to-plate distance %d mm\n", e.nd, e.nc, e.nozzle_mm);
    write_range(out, set);
    std::fprintf(out, " Scale=%.4f  (factor of the sM(s) values and of their deviations)\n",
                 e.scale);
    write_rule(out, '-', table);
    write_header_row(out, table);
    write_rule(out, '-', table);
    write_rows(out, table, set);
    write_rule(out, '-', table);
}

void write_table(std::FILE* out, int layout, int number, const table_t& table,
                 const std::vector<data_set_t>& sets) {
    std::fprintf(out, " Table %d. GED curves. %s (computed, for demonstration)\n", number,
                 table.title);
    write_rule(out, '=', table);
    if (layout == 1) {
        write_header_row(out, table);
        write_rule(out, '-', table);
    }
    for (const data_set_t& set : sets) {
        if (layout == 1)
            write_set_layout_1(out, table, set, &set == &sets.back());
        else
            write_set_layout_2(out, table, set);
    }
    std::fputc('\n', out);
}
