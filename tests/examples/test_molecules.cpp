// SPDX-License-Identifier: MIT
//
// The physics behind the sample files: a wrong coefficient or a lost factor would still give
// curves that look right, so the numbers are checked against independent ones.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "molecules.h"

struct amplitude_case_t {
    const char* symbol;
    double at[4];  // f_e at s = 5, 10, 20 and 30
};

class Amplitude : public testing::TestWithParam<amplitude_case_t> {};

TEST_P(Amplitude, has_the_spot_values) {
    const double s[] = {5.0, 10.0, 20.0, 30.0};
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(scattering_amplitude(find_element(GetParam().symbol), s[i]), GetParam().at[i],
                    0.51e-5)
            << GetParam().symbol << " at s = " << s[i];
}

INSTANTIATE_TEST_SUITE_P(
    Elements, Amplitude,
    testing::Values(amplitude_case_t{"C", {0.61149, 0.17654, 0.05108, 0.02417}},
                    amplitude_case_t{"F", {0.78883, 0.27431, 0.07502, 0.03522}},
                    amplitude_case_t{"S", {1.22818, 0.42264, 0.13428, 0.06205}},
                    amplitude_case_t{"Cl", {1.33002, 0.44352, 0.14194, 0.06596}},
                    amplitude_case_t{"H", {0.13122, 0.03722, 0.00944, 0.00420}}));

// At s = 0 all electrons scatter in phase: f_x(0) is the nuclear charge. Covers N, O and P too.
TEST(FormFactor, counts_the_electrons_in_the_forward_direction) {
    for (const char* symbol : {"H", "C", "N", "O", "F", "P", "S", "Cl"}) {
        const element_t& element = find_element(symbol);
        double sum = element.c;
        for (double a : element.a)
            sum += a;
        EXPECT_NEAR(sum, element.z, 0.01) << symbol;
    }
}

// sM(s) from 2 to 35 in steps of 0.1, as tables of measured curves have it.
static std::vector<sms_point_t> curve_of(const char* name) {
    std::vector<sms_point_t> curve;
    for (int i = 20; i <= 350; ++i)
        curve.push_back({i / 10.0, reduced_scattering(find_molecule(name), i / 10.0)});
    return curve;
}

struct extremes_case_t {
    const char* name;
    double lowest, highest;
};

class Extremes : public testing::TestWithParam<extremes_case_t> {};

TEST_P(Extremes, of_sms_between_2_and_35) {
    double lowest = 1e99, highest = -1e99;
    for (const sms_point_t& p : curve_of(GetParam().name)) {
        lowest = std::min(lowest, p.sms);
        highest = std::max(highest, p.sms);
    }
    EXPECT_NEAR(lowest, GetParam().lowest, 0.02) << GetParam().name;
    EXPECT_NEAR(highest, GetParam().highest, 0.02) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(Molecules, Extremes,
                         testing::Values(extremes_case_t{"P4", -1.35, 1.33},
                                         extremes_case_t{"CCl4", -1.33, 1.29},
                                         extremes_case_t{"CF4", -1.93, 1.85},
                                         extremes_case_t{"SF6", -2.11, 2.34},
                                         extremes_case_t{"benzene", -1.62, 1.99}));

// The number of atoms n gives n (n - 1) / 2 pairs; a pair forgotten changes a curve only a little.
TEST(Molecules, list_every_pair) {
    for (const char* name : {"P4", "CCl4", "CF4", "SF6", "benzene"}) {
        int atoms = 0, pairs = 0;
        for (const atom_t& atom : find_molecule(name).atoms)
            atoms += atom.count;
        for (const pair_t& pair : find_molecule(name).pairs)
            pairs += pair.count;
        EXPECT_EQ(pairs, atoms * (atoms - 1) / 2) << name;
    }
}

// The highest point of f(r) within a quarter Angstrom of r.
static double peak_near(const std::vector<sms_point_t>& curve, double r) {
    double best_r = 0.0, best = -1e99;
    for (int i = -250; i <= 250; ++i) {
        const double f = radial_distribution(curve, r + i / 1000.0);
        if (f > best)
            std::tie(best, best_r) = std::make_tuple(f, r + i / 1000.0);
    }
    return best_r;
}

TEST(RadialDistribution, peaks_at_the_distances) {
    EXPECT_NEAR(peak_near(curve_of("P4"), 2.1994), 2.1994, 0.01);
    EXPECT_NEAR(peak_near(curve_of("CCl4"), 1.767), 1.767, 0.01);
    EXPECT_NEAR(peak_near(curve_of("CCl4"), 2.886), 2.886, 0.01);
}
