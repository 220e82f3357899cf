// SPDX-License-Identifier: MIT
#include <csignal>

#include "plain/plain.h"

// A gnuplot that has gone must not take the program with it. A handler, because an ignored signal
// would stay ignored in gnuplot.
static void on_sigpipe(int) {}

int main(int argc, char** argv) {
    std::signal(SIGPIPE, on_sigpipe);
    try {
        plain::draw(plain::parse_command_line(argc, argv).c_str());
    } catch (const plain::run_ended_t& ended) {
        return plain::finish(ended);
    }
    return 0;
}
