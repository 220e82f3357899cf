// SPDX-License-Identifier: MIT
//
// The text around the tables: what a least squares program would say of such a refinement. The
// geometry and the R factors are real numbers of the computed curves; the course of the
// refinement is invented. The words that open a table or a set must not occur here.

#include <cmath>

#include "report.h"

constexpr int LOG_CYCLES = 5;

static void write_origin(std::FILE* out, const result_file_t& file) {
    std::fprintf(
        out,
        " KOVA %s  least squares analysis of gas electron diffraction intensities\n"
        "\n"
        " Molecule: %s\n"
        "\n"
        " DEMONSTRATION DATA. No measurement stands behind this file: all its curves are\n"
        " computed from the distances and amplitudes below, with artificial noise and a\n"
        " small artificial misfit. Values marked \"computed\" and \"demo value\", and\n"
        " everything derived from them, are for demonstration only.\n"
        "\n"
        " Scattering amplitudes: Mott-Bethe formula with the X-ray form factors of\n"
        "   D. Waasmaier, A. Kirfel, Acta Cryst. A51 (1995) 416\n",
        file.version, file.molecule);
}

static void write_recording(std::FILE* out, const std::vector<data_set_t>& sets) {
    std::fprintf(out,
                 "\n Recording conditions (invented)\n"
                 "   accelerating voltage 60.0 kV, wavelength %.6f A, r**3 sector\n"
                 "   set    distance, mm   s(min), 1/A   s(max), 1/A   points\n",
                 WAVELENGTH);
    for (const data_set_t& set : sets) {
        const exposure_t& e = set.exposure;
        std::fprintf(out, "   %d-%d %15d %13.1f %13.1f %8zu\n", e.nd, e.nc, e.nozzle_mm,
                     e.first / 10.0, e.last / 10.0, set.points.size());
    }
}

// Over all sets, each with the weight of its points.
static double total_r_factor(const std::vector<data_set_t>& sets, const molecule_t& model) {
    double sum = 0.0;
    double points = 0.0;
    for (const data_set_t& set : sets) {
        const double r = r_factor(set, model);
        sum += r * r * static_cast<double>(set.points.size());
        points += static_cast<double>(set.points.size());
    }
    return std::sqrt(sum / points);
}

// How far the model of a cycle still is from the final one.
static double rest_of(int cycle) {
    return cycle == LOG_CYCLES ? 0.0 : std::pow(0.2, cycle);
}

// The invented start is 1.2 % off in the distances and 30 % in the amplitudes; a fifth of that
// remains after each cycle. The R factors are those of the models on this way.
static void write_refinement(std::FILE* out, const molecule_t& molecule,
                             const std::vector<data_set_t>& sets) {
    std::fprintf(out,
                 "\n Refinement of the structure\n"
                 "   cycle    R factor, %%    largest change of r, A\n");
    for (int cycle = 0; cycle <= LOG_CYCLES; ++cycle) {
        molecule_t model = molecule;
        double change = 0.0;
        for (pair_t& pair : model.pairs) {
            change = std::fmax(change, 0.012 * pair.r * (rest_of(cycle - 1) - rest_of(cycle)));
            pair.r *= 1.0 + 0.012 * rest_of(cycle);
            pair.l *= 1.0 + 0.3 * rest_of(cycle);
        }
        std::fprintf(out, "   %5d %14.1f", cycle, total_r_factor(sets, model));
        if (cycle > 0)
            std::fprintf(out, " %24.5f", change);
        std::fputc('\n', out);
    }
    std::fprintf(out, "   Converged after %d cycles.\n", LOG_CYCLES);
}

static void write_structure(std::FILE* out, const molecule_t& molecule) {
    std::fprintf(out,
                 "\n Distances and vibrational amplitudes\n"
                 "   pair      number      r, A   source           l, A   source\n");
    for (const pair_t& pair : molecule.pairs) {
        char name[16];
        std::snprintf(name, sizeof name, "%s%s%s", pair.first, pair.bonded ? "-" : "..",
                      pair.second);
        std::fprintf(out, "   %-8s %7d %9.4f   %-12s %8.4f   %s\n", name, pair.count, pair.r,
                     pair.r_source, pair.l, pair.l_source);
    }
}

void write_log_head(std::FILE* out, const result_file_t& file,
                    const std::vector<data_set_t>& sets) {
    const molecule_t& molecule = find_molecule(file.molecule);
    write_origin(out, file);
    if (file.source[0] != '\0')
        std::fprintf(out, " Structure: %s\n", file.source);
    write_recording(out, sets);
    write_refinement(out, molecule, sets);
    write_structure(out, molecule);
    std::fputc('\n', out);
}

void write_log_tail(std::FILE* out, const result_file_t& file,
                    const std::vector<data_set_t>& sets) {
    const molecule_t& molecule = find_molecule(file.molecule);
    std::fprintf(out,
                 " Agreement of theory and experiment (experiment computed, for demonstration)\n"
                 "   set     factor    R factor, %%\n");
    for (const data_set_t& set : sets)
        std::fprintf(out, "   %d-%d %10.4f %14.1f\n", set.exposure.nd, set.exposure.nc,
                     set.exposure.scale, r_factor(set, molecule));
    std::fprintf(out,
                 "   all %25.1f\n"
                 "\n"
                 " End of the analysis.\n",
                 total_r_factor(sets, molecule));
}
