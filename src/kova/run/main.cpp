// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "input/input.h"
#include "plot/plot.h"
#include "run/run.h"

static void read_tables(const char* inpFname) {
    if (detect_int_table_version(inpFname) == 2)
        parse_kova_int_tables_ver2(inpFname);
    else
        parse_kova_int_tables_ver1(inpFname);
}

static void release_all() {
    std::free(ParToReadNum1);
    std::free(ParToReadNum2);
    std::free(ParToCombineNum1);
    std::free(ParToCombineNum2);
    release_curves();
    release_rows();
}

int main(int argc, char** argv) {
    prepare_process();
    const char* inpFname = parse_command_line(argc, argv);
    echo_settings();
    read_tables(inpFname);
    link_deviations();
    group_columns();
    group_curves();
    refuse_empty_curves();
    plot_all();
    release_all();
    return EXIT_SUCCESS;
}
