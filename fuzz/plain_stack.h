// SPDX-License-Identifier: MIT
//
// Stacking once more, plainly: every look-up asks every curve.
#pragma once

#include <string>
#include <vector>

using column_t = std::vector<double>;

struct step_error_t {};  // thrown by a look-up between two points of equal abscissa

struct plain_curve_t {
    column_t x, y;
    int klo, khi;
};

struct plain_shift_t {
    double shift, lowest, highest;
};

struct plain_buffer_t {
    std::vector<plain_curve_t> curves;
};

void plain_add(plain_buffer_t* buffer, const column_t& x, const column_t& y, double shift);
int plain_min_max(plain_buffer_t* buffer, double x, double* lowest, double* highest);
plain_shift_t plain_shift_of(plain_buffer_t* buffer, const column_t& x, const column_t& y,
                             double direction);

// The shifts of a plot of the curves in the store, by set and plot column, and what is said
// meanwhile, also if a step error is thrown.
std::vector<column_t> plain_stack(int curve_group, int column_group, std::string* said);
