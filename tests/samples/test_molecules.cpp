// SPDX-License-Identifier: MIT
//
// The physics behind the sample files: a wrong coefficient or a lost factor would still give
// curves that look right, so the numbers are checked against independent ones.

#include <gtest/gtest.h>

#include <algorithm>

#include "molecules.h"

TEST(Samples, amplitudes_have_their_spot_values) {
    const double s[] = {5.0, 10.0, 20.0, 30.0};
    const struct {
        const char* symbol;
        double at[4];
    } elements[] = {{"C", {0.61149, 0.17654, 0.05108, 0.02417}},
                    {"Cl", {1.33002, 0.44352, 0.14194, 0.06596}},
                    {"H", {0.13122, 0.03722, 0.00944, 0.00420}}};
    for (const auto& element : elements)
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(scattering_amplitude(find_element(element.symbol), s[i]), element.at[i],
                        0.51e-5)
                << element.symbol << " at s = " << s[i];
}

// At s = 0 all electrons scatter in phase: f_x(0) is the nuclear charge. Covers P too.
TEST(Samples, form_factors_count_the_electrons_in_the_forward_direction) {
    for (const char* symbol : {"H", "C", "P", "Cl"}) {
        const element_t& element = find_element(symbol);
        double sum = element.c;
        for (double a : element.a)
            sum += a;
        EXPECT_NEAR(sum, element.z, 0.01) << symbol;
    }
}

TEST(Samples, sms_has_its_extremes_between_2_and_35) {
    const struct {
        const char* name;
        double lowest, highest;
    } molecules[] = {{"P4", -1.35, 1.33}, {"CCl4", -1.33, 1.29}, {"benzene", -1.62, 1.99}};
    for (const auto& molecule : molecules) {
        double lowest = 1e99, highest = -1e99;
        for (int i = 20; i <= 350; ++i) {
            const double sms = reduced_scattering(find_molecule(molecule.name), i / 10.0);
            lowest = std::min(lowest, sms);
            highest = std::max(highest, sms);
        }
        EXPECT_NEAR(lowest, molecule.lowest, 0.02) << molecule.name;
        EXPECT_NEAR(highest, molecule.highest, 0.02) << molecule.name;
    }
}

// The number of atoms n gives n (n - 1) / 2 pairs; a pair forgotten changes a curve only a little.
TEST(Samples, molecules_list_every_pair) {
    for (const char* name : {"P4", "CCl4", "benzene"}) {
        int atoms = 0, pairs = 0;
        for (const atom_t& atom : find_molecule(name).atoms)
            atoms += atom.count;
        for (const pair_t& pair : find_molecule(name).pairs)
            pairs += pair.count;
        EXPECT_EQ(pairs, atoms * (atoms - 1) / 2) << name;
    }
}
