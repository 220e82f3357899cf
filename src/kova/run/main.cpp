// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "run/run.h"

int main(int argc, char** argv) {
    prepare_process();
    parse_command_line(argc, argv);
    echo_settings();
    return EXIT_SUCCESS;
}
