// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "input/input.h"
#include "run/run.h"

int main(int argc, char** argv) {
    prepare_process();
    const char* inpFname = parse_command_line(argc, argv);
    echo_settings();
    detect_int_table_version(inpFname);
    return EXIT_SUCCESS;
}
