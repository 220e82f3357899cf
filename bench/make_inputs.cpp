// SPDX-License-Identifier: MIT
//
// make_inputs FOLDER: writes the inputs of the benchmark. They are the same at every run.
//
// The data sets come in turn from two nozzle-to-plate distances, so every other set has the same
// abscissae. Each set has noise of its own.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

enum value_t { VALUE_S, VALUE_SMS, VALUE_TSMS, VALUE_DSMS, VALUE_DEVIATION, VALUE_INTENSITY };

struct column_t {
    const char* label;
    int decimals;
    value_t value;
};

// Nearly all kinds of columns: R would be a second abscissa. The shorter tables are the beginning
// of this one.
constexpr int COLUMNS = 16;
static const column_t Columns[COLUMNS] = {
    {"       S      |", 6, VALUE_S},          {"   Exp. sM(s)  |", 8, VALUE_SMS},
    {"   Thr. sM(s)  |", 8, VALUE_TSMS},      {"  Delta sM(s)  |", 8, VALUE_DSMS},
    {"  sM(s) St.dev |", 8, VALUE_DEVIATION}, {"   Total Int.  |", 5, VALUE_INTENSITY},
    {"   Background  |", 5, VALUE_INTENSITY}, {"  Int. St.dev  |", 7, VALUE_DEVIATION},
    {" Thr. Tot. Int |", 5, VALUE_INTENSITY}, {"   Delta Int.  |", 6, VALUE_DSMS},
    {"    Red. Int.  |", 7, VALUE_INTENSITY}, {"    Red. Bgl   |", 7, VALUE_INTENSITY},
    {"    Lvl. Int.  |", 6, VALUE_INTENSITY}, {"    Lvl. Bgl   |", 6, VALUE_INTENSITY},
    {"   Sec. Func.  |", 8, VALUE_INTENSITY}, {"   At. Scat.   |", 6, VALUE_INTENSITY},
};

struct input_t {
    const char* name;
    int sets;
    int rows;
    int columns;
};

static const input_t Inputs[] = {
    {"long", 2, 100000, 16},  {"rows2", 2, 50000, 16},  {"rows1", 2, 25000, 16},
    {"sets400", 400, 500, 4}, {"sets200", 200, 500, 4}, {"typical", 4, 300, 7},
    {"points", 2, 20000, 4},
};

// ---- Curves ------------------------------------------------------------------------------------

struct point_t {
    double s, thr, exp, sigma;
};

// Between -0.5 and 0.5, by the generator splitmix64.
static double noise() {
    static std::uint64_t state = 1;
    std::uint64_t z = state += 0x9e3779b97f4a7c15u;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return static_cast<double>((z ^ (z >> 31)) >> 11) / 9007199254740992.0 - 0.5;
}

// A wave for each distance in the molecule, damped by its vibration.
static double scattering(double s) {
    static const struct {
        double weight, distance, amplitude;
    } pairs[] = {{1.9, 1.77, 0.05}, {2.6, 2.89, 0.07}, {0.4, 4.10, 0.09}};
    double sum = 0.0;
    for (const auto& pair : pairs) {
        const double damping = pair.amplitude * s;
        sum += pair.weight * std::exp(-0.5 * damping * damping) * std::sin(pair.distance * s);
    }
    return sum;
}

static point_t compute_point(bool near, double u) {
    point_t p;
    p.s = near ? 6.0 + 30.0 * u : 1.5 + 20.0 * u;
    p.thr = scattering(p.s);
    p.sigma = 0.01 + 0.2 * u * u;
    p.exp = p.thr + p.sigma * noise();
    return p;
}

// What the other kinds hold matters for its size and digits only.
static double value_of(const point_t& p, const column_t& column, int index) {
    switch (column.value) {
        case VALUE_S:
            return p.s;
        case VALUE_SMS:
            return p.exp;
        case VALUE_TSMS:
            return p.thr;
        case VALUE_DSMS:
            return p.exp - p.thr;
        case VALUE_DEVIATION:
            return p.sigma;
        default:
            return (120.0 / p.s + p.exp / p.s) * std::pow(10.0, index % 4);
    }
}

// ---- Files -------------------------------------------------------------------------------------

static void write_rule(std::FILE* out, int columns) {
    for (int i = 0; i < columns; i++)
        std::fputs("----------------", out);
    std::fputc('\n', out);
}

// Numbers end below the bar of their label.
static void write_row(std::FILE* out, const input_t& input, const point_t& p) {
    for (int i = 0; i < input.columns; i++) {
        const int width = static_cast<int>(std::string(Columns[i].label).size());
        std::fprintf(out, "%*.*f", width, Columns[i].decimals, value_of(p, Columns[i], i));
    }
    std::fputc('\n', out);
}

static void write_set(std::FILE* out, const input_t& input, int set) {
    std::fprintf(out, "Set: %d-%d\nScale=%.4f\n", set % 2 + 1, set / 2 + 1,
                 0.9 + 0.001 * (set % 50));
    write_rule(out, input.columns);
    for (int i = 0; i < input.columns; i++)
        std::fputs(Columns[i].label, out);
    std::fputc('\n', out);
    write_rule(out, input.columns);
    for (int k = 0; k < input.rows; k++)
        write_row(out, input, compute_point(set % 2 == 1, static_cast<double>(k) / input.rows));
    write_rule(out, input.columns);
}

static bool write_input(const std::string& folder, const input_t& input) {
    std::FILE* out = std::fopen((folder + "/" + input.name + ".out").c_str(), "w");
    if (out == nullptr)
        return false;
    std::fputs(" KOVA v1.7.55 benchmark\n\nTable 1. GED curves.\n", out);
    write_rule(out, input.columns);
    for (int set = 0; set < input.sets; set++)
        write_set(out, input, set);
    std::fputc('\n', out);
    const bool written = std::ferror(out) == 0;
    return std::fclose(out) == 0 && written;
}

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    for (const input_t& input : Inputs) {
        if (!write_input(argv[1], input)) {
            std::perror(input.name);
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}
