// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "input/input.h"
#include "run/run.h"

static void read_tables(const char* inpFname) {
    if (detect_int_table_version(inpFname) == 2)
        parse_kova_int_tables_ver2(inpFname);
    else
        parse_kova_int_tables_ver1(inpFname);
}

int main(int argc, char** argv) {
    prepare_process();
    const char* inpFname = parse_command_line(argc, argv);
    echo_settings();
    read_tables(inpFname);
    release_curves();
    return EXIT_SUCCESS;
}
