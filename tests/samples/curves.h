// SPDX-License-Identifier: MIT
//
// From a molecule to the curves of one data set, with the noise and the small misfit that a
// measurement has. The curves are computed: for demonstration only.
#pragma once

#include <cstdint>
#include <vector>

#include "molecules.h"

// How one data set was "recorded". s in tenths of 1/Angstrom, so that its values are exact.
struct exposure_t {
    int nd, nc;          // label nd-nc
    int nozzle_mm;       // nozzle-to-plate distance
    int first, last;     // range of s
    int step;            // of s
    double scale;        // by which the file's sM(s) values are multiplied
    double sigma_end;    // deviation of sM(s) at the last s; SIGMA_BEGIN at the first
    double phase;        // of the slow misfit between experiment and theory
    std::uint64_t seed;  // of the noise
};

// One row of all tables. The sM(s) values are those of the file, multiplied by the scale factor,
// and like the intensities rounded to the digits written: a delta is then exactly the difference
// of the two numbers that stand beside it.
struct point_t {
    double s;       // 1/Angstrom
    double radius;  // mm on the plate
    double sms_exp, sms_thr, sms_delta, sms_dev;
    double total, background, theory, int_delta, int_dev;
    double reduced, reduced_bgl;
    double levelled, levelled_bgl;
    double sector, atomic;
};

struct data_set_t {
    exposure_t exposure;
    std::vector<point_t> points;
};

constexpr double SIGMA_BEGIN = 0.01;

// Digits after the point of the rounded values.
constexpr int SMS_DECIMALS = 5;
constexpr int INT_DECIMALS = 2;

// Electrons of 60 kV, Angstrom.
constexpr double WAVELENGTH = 0.048661;

data_set_t compute_data_set(const molecule_t& molecule, const exposure_t& exposure);

// Weighted disagreement in percent between the experimental sM(s) of a set and that of a model.
double r_factor(const data_set_t& set, const molecule_t& model);
