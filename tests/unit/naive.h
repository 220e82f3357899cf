// SPDX-License-Identifier: MIT
//
// A second, straightforward computation of the stacking: every curve is compared with every curve
// placed before, at every one of its points. Nothing is kept that is not needed for the result.
#pragma once

#include <string>
#include <vector>

// One curve that has been placed.
struct naive_curve_t {
    std::vector<double> x, y;
    // Where abscissae do not rise strictly, the interval that a look-up ends in depends on the one
    // before, so that this search has to be followed step by step.
    bool rises;
    std::size_t klo, khi;
};

// Thrown where a look-up falls between two points of equal abscissa.
struct step_error_t {};

struct envelope_t {
    int count;
    double lowest, highest;
};

struct naive_shift_t {
    double shift, lowest, highest;
};

class naive_buffer_t {
  public:
    void add(const std::vector<double>& x, const std::vector<double>& y, double shift);
    envelope_t at(double x);
    naive_shift_t shift_of(const std::vector<double>& x, const std::vector<double>& y,
                           double direction);
    std::size_t size() const { return curves.size(); }

  private:
    std::vector<naive_curve_t> curves;
};

// What the shift phase makes of the store for a plot: one row of shifts a data set, and the text
// that it prints. A step ends it half way. The store is only read.
struct naive_stack_t {
    std::vector<std::vector<double>> shift;
    std::string trace;
    bool is_step;
};

naive_stack_t naive_stack(int curve_group, int column_group);
