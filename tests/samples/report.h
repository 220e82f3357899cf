// SPDX-License-Identifier: MIT
//
// Writes a result file: the log of an invented refinement around the tables of the curves.
//
// Both table layouts are fussy about single lines, so one function writes each:
//
//   layout 1                                   layout 2
//   --------                                   --------
//   ... GED curves. ...                        ... GED curves. ...
//   (rule, passed over)                        (rule, passed over)
//   header row of the table                    Set: 1-1 ...
//   (rule, passed over)                        ... any lines ...
//   Curve: (1-1)  Scale=0.9300 ...             Scale=0.9300 ...
//   (a line, passed over)                      rule of hyphens
//   rows                                       header row of the set
//   rule of equals signs, or of hyphens        (rule, passed over)
//   after the last set                         rows
//                                              rule of hyphens; a blank line after the last set
#pragma once

#include <cstdio>
#include <vector>

#include "curves.h"

// The label of a column stands in the header row; its numbers end under the bar.
struct column_t {
    const char* label;
    int decimals;
    double point_t::*value;
};

struct table_t {
    const char* title;
    std::vector<column_t> columns;
};

struct result_file_t {
    const char* name;
    const char* version;
    int layout;  // 1 or 2
    const char* molecule;
    const char* source;  // of the structure
    std::vector<exposure_t> exposures;
    std::vector<table_t> tables;
};

// tables.cpp: table number `number`, counted from 1, with all data sets.
void write_table(std::FILE* out, int layout, int number, const table_t& table,
                 const std::vector<data_set_t>& sets);

// log.cpp: what stands before and after the tables.
void write_log_head(std::FILE* out, const result_file_t& file,
                    const std::vector<data_set_t>& sets);
void write_log_tail(std::FILE* out, const result_file_t& file,
                    const std::vector<data_set_t>& sets);
