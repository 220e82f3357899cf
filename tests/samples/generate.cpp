// SPDX-License-Identifier: MIT
//
// generate OUTDIR: writes the sample inputs ccl4.out, benzene.out and r_values.out. Their curves
// are computed, not measured: for demonstration only. The bytes are the same on every machine, and
// a test compares them with those of examples/: after a change, write them again and commit both.
//
// molecules.cpp holds the numbers and the scattering formulas, curves.cpp makes data sets of them,
// tables.cpp and log.cpp write a file's tables and the text around them; here stands which files
// there are.

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include "report.h"

static const std::vector<column_t> SMS_COLUMNS = {
    {"       S      |", 2, &point_t::s},
    {"   Exp. sM(s)  |", SMS_DECIMALS, &point_t::sms_exp},
    {"   Thr. sM(s)  |", SMS_DECIMALS, &point_t::sms_thr},
    {"  Delta sM(s)  |", SMS_DECIMALS, &point_t::sms_delta},
    {"  sM(s) St.dev |", SMS_DECIMALS, &point_t::sms_dev},
};

static const std::vector<column_t> INTENSITY_COLUMNS = {
    {"       S      |", 2, &point_t::s},
    {"   Total Int.  |", INT_DECIMALS, &point_t::total},
    {"   Background  |", INT_DECIMALS, &point_t::background},
    {" Thr. Tot. Int |", INT_DECIMALS, &point_t::theory},
    {"   Delta Int.  |", INT_DECIMALS, &point_t::int_delta},
    {"  Int. St.dev  |", INT_DECIMALS, &point_t::int_dev},
};

static const std::vector<column_t> LEVELLED_COLUMNS = {
    {"       S      |", 2, &point_t::s},
    {"    Red. Int.  |", 5, &point_t::reduced},
    {"    Lvl. Int.  |", 5, &point_t::levelled},
    {"    Red. Bgl   |", 5, &point_t::reduced_bgl},
    {"    Lvl. Bgl   |", 5, &point_t::levelled_bgl},
    {"   Sec. Func.  |", 6, &point_t::sector},
    {"   At. Scat.   |", INT_DECIMALS, &point_t::atomic},
};

// R is the radius on the plate, in mm.
static const std::vector<column_t> RADIUS_COLUMNS = {
    {"       S      |", 2, &point_t::s},
    {"      R      |", 3, &point_t::radius},
    {"   Exp. sM(s)  |", SMS_DECIMALS, &point_t::sms_exp},
    {"   Thr. sM(s)  |", SMS_DECIMALS, &point_t::sms_thr},
    {"  Delta sM(s)  |", SMS_DECIMALS, &point_t::sms_delta},
    {"  sM(s) St.dev |", SMS_DECIMALS, &point_t::sms_dev},
};

static const table_t SMS_TABLE = {"Reduced molecular scattering sM(s)", SMS_COLUMNS};
static const table_t INTENSITY_TABLE = {"Total intensities", INTENSITY_COLUMNS};
static const table_t LEVELLED_TABLE = {"Reduced and levelled intensities", LEVELLED_COLUMNS};
static const table_t RADIUS_TABLE = {"Reduced molecular scattering sM(s) and plate radius R in mm",
                                     RADIUS_COLUMNS};

// 1.6.987 is the first version that writes layout 2. In layout 1 the set 2-1 stands last: a table
// of that layout is closed only after its last set has been read.
static const result_file_t FILES[] = {
    {"ccl4.out",
     "1.6.990",
     2,
     "CCl4",
     "r published (r_g), l computed from vibrational frequencies",
     {{1, 1, 500, 20, 180, 1, 0.93, 0.05, 0.3, 101},
      {2, 1, 250, 60, 340, 1, 1.12, 0.08, 1.1, 102},
      {3, 1, 250, 60, 340, 2, 0.78, 0.10, 2.6, 103}},
     {SMS_TABLE, INTENSITY_TABLE, LEVELLED_TABLE}},
    {"benzene.out",
     "1.6.412",
     1,
     "benzene",
     "M. Kimura, M. Kubo, J. Chem. Phys. 32 (1960) 1776, and a rigid ring",
     {{1, 1, 500, 20, 180, 1, 1.07, 0.05, 2.0, 201},
      {1, 2, 500, 20, 180, 2, 0.88, 0.06, 0.7, 202},
      {2, 1, 250, 60, 340, 1, 1.24, 0.09, 1.6, 203}},
     {SMS_TABLE, INTENSITY_TABLE, LEVELLED_TABLE}},
    {"r_values.out",
     "1.7.12",
     2,
     "P4",
     "published electron diffraction values",
     {{1, 1, 500, 20, 180, 2, 0.85, 0.05, 0.9, 301},
      {2, 1, 250, 60, 340, 2, 1.16, 0.08, 2.2, 302}},
     {RADIUS_TABLE}},
};

static bool write_result_file(const std::string& path, const result_file_t& file) {
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (out == nullptr)
        return false;
    std::vector<data_set_t> sets;
    for (const exposure_t& exposure : file.exposures)
        sets.push_back(compute_data_set(find_molecule(file.molecule), exposure));

    write_log_head(out, file, sets);
    int number = 0;
    for (const table_t& table : file.tables)
        write_table(out, file.layout, ++number, table, sets);
    write_log_tail(out, file, sets);

    const bool written = std::ferror(out) == 0;
    return std::fclose(out) == 0 && written;
}

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "Usage: generate OUTDIR\n");
        return 1;
    }
    std::error_code error;
    std::filesystem::create_directories(argv[1], error);
    for (const result_file_t& file : FILES) {
        const std::string path = std::string(argv[1]) + "/" + file.name;
        if (!write_result_file(path, file)) {
            std::perror(path.c_str());
            return 1;
        }
    }
    return 0;
}
