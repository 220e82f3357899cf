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
    {"N",
     7,
     {11.893780, 3.277479, 1.858092, 0.858927, 0.912985},
     -11.804902,
     {0.000158, 10.232723, 30.344690, 0.656065, 0.217287}},
    {"O",
     8,
     {2.960427, 2.508818, 0.637853, 0.722838, 1.142756},
     0.027014,
     {14.182259, 5.936858, 0.112726, 34.958481, 0.390240}},
    {"F",
     9,
     {3.511943, 2.772244, 0.678385, 0.915159, 1.089261},
     0.032557,
     {10.687859, 4.380466, 0.093982, 27.255203, 0.313066}},
    {"P",
     15,
     {1.950541, 4.146930, 1.494560, 1.522042, 5.729711},
     0.155233,
     {0.908139, 27.044952, 0.071280, 67.520187, 1.981173}},
    {"S",
     16,
     {6.372157, 5.154568, 1.473732, 1.635073, 1.209372},
     0.154722,
     {1.514347, 22.092527, 0.061373, 55.445175, 0.646925}},
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
    {"CF4",
     {{"C", 1}, {"F", 4}},
     {{"C", "F", true, 4, 1.319, 0.0433, PUBLISHED, COMPUTED},
      {"F", "F", false, 6, 2.154, 0.0540, PUBLISHED, COMPUTED}}},
    {"SF6",
     {{"S", 1}, {"F", 6}},
     {{"S", "F", true, 6, 1.561, 0.0418, PUBLISHED, COMPUTED},
      {"F", "F", false, 12, 2.208, 0.0605, PUBLISHED, COMPUTED},
      {"F", "F", false, 3, 3.122, 0.0531, PUBLISHED, COMPUTED}}},
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

// f(r) = sum sM(s) sin(s r) exp(-0.002 s^2) ds; the damping hides that the curve is cut off.
double radial_distribution(const std::vector<sms_point_t>& curve, double r) {
    if (curve.size() < 2)
        return 0.0;
    double sum = 0.0;
    for (const sms_point_t& p : curve)
        sum += p.sms * std::sin(p.s * r) * std::exp(-0.002 * p.s * p.s);
    return sum * (curve[1].s - curve[0].s);
}
