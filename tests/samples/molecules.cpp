// SPDX-License-Identifier: MIT

#include "molecules.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// Form factors: D. Waasmaier, A. Kirfel, Acta Cryst. A51 (1995) 416.
static const element_t ELEMENTS[] = {
    {"H",
     1,
     {0.413048, 0.294953, 0.187491, 0.080701, 0.023736},
     0.000049,
     {15.569946, 32.398468, 5.711404, 61.889874, 1.334118}},
    {"C",
     6,
     {2.657506, 1.078079, 1.490909, -4.241070, 0.713791},
     4.297983,
     {14.780758, 0.776775, 42.086842, -0.000294, 0.239535}},
    {"P",
     15,
     {1.950541, 4.146930, 1.494560, 1.522042, 5.729711},
     0.155233,
     {0.908139, 27.044952, 0.071280, 67.520187, 1.981173}},
    {"Cl",
     17,
     {1.446071, 6.870609, 6.151801, 1.750347, 0.634168},
     0.146773,
     {0.052357, 1.193165, 18.343416, 46.398396, 0.401005}},
};

// Benzene: r and l of C-C and C-H from M. Kimura, M. Kubo, J. Chem. Phys. 32 (1960) 1776; the
// longer r follow from the rigid ring. Their l have no published source here, and those of the
// H..H pairs are computed: for demonstration only, as are all l called "computed".
static const char PUBLISHED[] = "published";
static const char COMPUTED[] = "computed";
static const char KIMURA[] = "Kimura 1960";
static const char RING[] = "rigid ring";
static const char DEMO[] = "demo value";

static const molecule_t MOLECULES[] = {
    {"P4", {{"P", 4}}, {{"P", "P", true, 6, 2.1994, 0.0560, PUBLISHED, PUBLISHED}}},
    {"CCl4",
     {{"C", 1}, {"Cl", 4}},
     {{"C", "Cl", true, 4, 1.767, 0.0528, PUBLISHED, COMPUTED},
      {"Cl", "Cl", false, 6, 2.886, 0.0681, PUBLISHED, COMPUTED}}},
    {"benzene",
     {{"C", 6}, {"H", 6}},
     {{"C", "C", true, 6, 1.3969, 0.0456, KIMURA, KIMURA},
      {"C", "C", false, 6, 2.420, 0.0555, RING, DEMO},
      {"C", "C", false, 3, 2.794, 0.0614, RING, DEMO},
      {"C", "H", true, 6, 1.0845, 0.0748, KIMURA, KIMURA},
      {"C", "H", false, 12, 2.154, 0.0975, RING, DEMO},
      {"C", "H", false, 12, 3.402, 0.0925, RING, DEMO},
      {"C", "H", false, 6, 3.878, 0.0960, RING, DEMO},
      {"H", "H", false, 6, 2.481, 0.157, RING, COMPUTED},
      {"H", "H", false, 6, 4.298, 0.135, RING, COMPUTED},
      {"H", "H", false, 3, 4.963, 0.12, RING, COMPUTED}}},
};

const element_t& find_element(const char* symbol) {
    for (const element_t& element : ELEMENTS)
        if (std::strcmp(element.symbol, symbol) == 0)
            return element;
    std::fprintf(stderr, "No scattering factors for '%s'\n", symbol);
    std::exit(1);
}

const molecule_t& find_molecule(const char* name) {
    for (const molecule_t& molecule : MOLECULES)
        if (std::strcmp(molecule.name, name) == 0)
            return molecule;
    std::fprintf(stderr, "No molecule '%s'\n", name);
    std::exit(1);
}

double scattering_amplitude(const element_t& element, double s) {
    const double pi = 3.14159265358979324;
    const double k = s / (4.0 * pi);
    double form_factor = element.c;
    for (int n = 0; n < 5; ++n)
        form_factor += element.a[n] * std::exp(-element.b[n] * k * k);
    // Mott-Bethe formula; the constant is 2 / a0 with the Bohr radius a0 in Angstrom.
    return 3.779452 * (element.z - form_factor) / (s * s);
}

double atomic_scattering(const molecule_t& molecule, double s) {
    double sum = 0.0;
    for (const atom_t& atom : molecule.atoms) {
        const double f = scattering_amplitude(find_element(atom.symbol), s);
        sum += atom.count * f * f;
    }
    return sum;
}

// I_mol / C = sum f_i f_j exp(-l^2 s^2 / 2) sin(s r) / (s r), the form that Kimura and Kubo use.
double molecular_scattering(const molecule_t& molecule, double s) {
    double sum = 0.0;
    for (const pair_t& pair : molecule.pairs) {
        const double f_first = scattering_amplitude(find_element(pair.first), s);
        const double f_second = scattering_amplitude(find_element(pair.second), s);
        const double damping = std::exp(-0.5 * pair.l * pair.l * s * s);
        sum +=
            2.0 * pair.count * f_first * f_second * damping * std::sin(s * pair.r) / (s * pair.r);
    }
    return sum;
}

double reduced_scattering(const molecule_t& molecule, double s) {
    return s * molecular_scattering(molecule, s) / atomic_scattering(molecule, s);
}
