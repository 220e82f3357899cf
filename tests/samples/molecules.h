// SPDX-License-Identifier: MIT
//
// The physics of the sample files: electron scattering by a few small molecules, in the
// kinematic theory without phase differences, which is fine for atoms up to chlorine.
// Lengths are in Angstrom, the scattering variable s in 1/Angstrom; s must be 0.5 or more.
//
// The numbers are for demonstration. Where a source says "computed" the value was never
// measured, and whoever shows it has to say so.

#pragma once

#include <vector>

// X-ray form factor f_x(k) = c + sum a[n] exp(-b[n] k^2), k = s / (4 pi), good up to s = 75.
struct element_t {
    const char* symbol;
    int z;
    double a[5];
    double c;
    double b[5];
};

struct atom_t {
    const char* symbol;
    int count;
};

// `count` equal pairs of atoms at the distance r with the vibrational amplitude l.
struct pair_t {
    const char* first;
    const char* second;
    bool bonded;
    int count;
    double r;
    double l;
    const char* r_source;
    const char* l_source;
};

struct molecule_t {
    const char* name;
    std::vector<atom_t> atoms;
    std::vector<pair_t> pairs;
};

// The entry of that symbol or name; ends the program with status 1 when there is none.
const element_t& find_element(const char* symbol);
const molecule_t& find_molecule(const char* name);

// Amplitude f_e(s) of electron scattering by one atom, in Angstrom.
double scattering_amplitude(const element_t& element, double s);

// Sum of f_e^2 over the atoms: I_at(s) without its constant.
double atomic_scattering(const molecule_t& molecule, double s);

// Sum over all i != j, so each pair counts twice: I_mol(s) without the same constant.
double molecular_scattering(const molecule_t& molecule, double s);

// sM(s) = s I_mol / I_at.
double reduced_scattering(const molecule_t& molecule, double s);
