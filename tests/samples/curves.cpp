// SPDX-License-Identifier: MIT

#include "curves.h"

#include <cmath>

// The bytes of the samples must be the same everywhere, so the noise uses no distribution of the
// standard library: those may differ between libraries. This is the generator splitmix64.
static std::uint64_t next_random(std::uint64_t& state) {
    state += 0x9e3779b97f4a7c15u;
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
}

// Nearly normal with deviation 1: the sum of twelve uniforms has the variance 1. Integers are
// summed, so nothing is rounded.
static double next_noise(std::uint64_t& state) {
    std::int64_t sum = 0;
    for (int i = 0; i < 12; ++i)
        sum += static_cast<std::int64_t>(next_random(state) >> 32);
    const double one = 4294967296.0;
    return static_cast<double>(sum) / one - 6.0;
}

// Rounded to that many decimals; far fewer than a double has, so that the last bit of a machine's
// exp() and sin() cannot show. Adding 0 turns -0 into 0.
static double rounded(double value, int decimals) {
    const double unit = std::pow(10.0, decimals);
    return std::round(value * unit) / unit + 0.0;
}

// s = 4 pi / lambda sin(theta / 2), and the plate stands at right angles to the beam.
static double plate_radius(double s, int nozzle_mm) {
    const double pi = 3.14159265358979324;
    return nozzle_mm * std::tan(2.0 * std::asin(s * WAVELENGTH / (4.0 * pi)));
}

// The opening of a sector that turns before the plate grows with the cube of the radius.
static double sector_function(double s, const exposure_t& exposure) {
    const double edge = plate_radius(exposure.last / 10.0, exposure.nozzle_mm);
    const double ratio = plate_radius(s, exposure.nozzle_mm) / edge;
    return ratio * ratio * ratio;
}

// Slow and smooth, as the inelastic and stray scattering are: B in units of I_at.
static double relative_background(double u) {
    return 0.22 + 0.12 * std::exp(-2.0 * u);
}

// Grows from SIGMA_BEGIN to sigma_end. Not a polynomial: its values could fall just between two
// of the numbers that are written, and then the last bit would decide.
static double sms_deviation(double u, const exposure_t& exposure) {
    return SIGMA_BEGIN * std::pow(exposure.sigma_end / SIGMA_BEGIN, u);
}

// Where s stands in the range of the set, 0 to 1.
static double position(int tenths, const exposure_t& exposure) {
    return static_cast<double>(tenths - exposure.first) / (exposure.last - exposure.first);
}

// The intensities as they fall on the plate behind the sector K(s), all on one scale: I_at is
// 10000 counts at s = 10. I_tot = I_at (1 + M) + B, and the background column is the smooth line
// I_at + B about which I_tot swings.
static void compute_intensities(const molecule_t& molecule, const exposure_t& exposure, double u,
                                double exp_m, double thr_m, double sigma_m, point_t& p) {
    const double c = 1e4 / (sector_function(10.0, exposure) * atomic_scattering(molecule, 10.0));
    const double b = relative_background(u);
    const double sector = sector_function(p.s, exposure);
    const double atomic = c * sector * atomic_scattering(molecule, p.s);

    p.sector = sector;
    p.atomic = atomic;
    p.total = rounded(atomic * (1.0 + exp_m + b), INT_DECIMALS);
    p.theory = rounded(atomic * (1.0 + thr_m + b), INT_DECIMALS);
    p.int_delta = p.total - p.theory;
    p.int_dev = atomic * sigma_m;
    p.background = atomic * (1.0 + b);
    p.reduced = 1.0 + exp_m + b;
    p.reduced_bgl = b;
    // Weighted by s the swings keep about the same height over the whole range.
    p.levelled = 1.0 + p.s / 10.0 * (exp_m + b);
    p.levelled_bgl = p.s / 10.0 * b;
}

data_set_t compute_data_set(const molecule_t& molecule, const exposure_t& exposure) {
    data_set_t set{exposure, {}};
    std::uint64_t state = exposure.seed;
    for (int tenths = exposure.first; tenths <= exposure.last; tenths += exposure.step) {
        point_t p{};
        p.s = tenths / 10.0;
        p.radius = plate_radius(p.s, exposure.nozzle_mm);

        const double u = position(tenths, exposure);
        const double sigma = sms_deviation(u, exposure);
        const double misfit = 0.02 * std::sin(0.4 * p.s + exposure.phase);
        const double thr = reduced_scattering(molecule, p.s);
        const double exp = thr + misfit + sigma * next_noise(state);

        p.sms_exp = rounded(exposure.scale * exp, SMS_DECIMALS);
        p.sms_thr = rounded(exposure.scale * thr, SMS_DECIMALS);
        p.sms_delta = p.sms_exp - p.sms_thr;
        p.sms_dev = exposure.scale * sigma;
        compute_intensities(molecule, exposure, u, exp / p.s, thr / p.s, sigma / p.s, p);
        set.points.push_back(p);
    }
    return set;
}

double r_factor(const data_set_t& set, const molecule_t& model) {
    double misfit = 0.0;
    double norm = 0.0;
    for (const point_t& p : set.points) {
        const double delta = p.sms_exp - set.exposure.scale * reduced_scattering(model, p.s);
        misfit += delta * delta / (p.sms_dev * p.sms_dev);
        norm += p.sms_exp * p.sms_exp / (p.sms_dev * p.sms_dev);
    }
    return 100.0 * std::sqrt(misfit / norm);
}
