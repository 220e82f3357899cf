// SPDX-License-Identifier: MIT
#pragma once

#include "program.h"

// Prints a line on each data set of the table TableN, of every table if it is EVERY_TABLE. Returns
// the exit status: 1 if there is a damaged table, which is named on standard error.
constexpr int EVERY_TABLE = -1000000;
int list_tables(const char* inpFname);
