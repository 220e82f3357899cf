// SPDX-License-Identifier: MIT
//
// What the programs that write numbers share.
#pragma once

#include "program.h"

// Options of gravlex that only matter to a drawing, up to a null name. From ChangingOptions on,
// the same behind those that change numbers.
extern const refused_option_t ChangingOptions[];
extern const refused_option_t* const DrawingOptions;

// The word of a kind in a list, s and r for those that have none there.
const char* column_word(int kind);

// The plot column of the kind; -1 if the set has none.
int column_of(const set_t& set, int kind);

// Prints a line on each data set of the table TableN, of every table if it is EVERY_TABLE. Returns
// the exit status: 1 if there is a damaged table, which is named on standard error.
constexpr int EVERY_TABLE = -1000000;
int list_tables(const char* inpFname);
