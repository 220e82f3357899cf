// SPDX-License-Identifier: MIT
//
// The version line, against the reference.
#include "harness.h"
#include "input/input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* name = input_file(data, size);
    int got = -1, expected = -2;
    const bool returned =
        end_the_same([&] { got = detect_int_table_version(name); },
                     [&] { expected = plain::detect_int_table_version(name); }, "another message");
    close_input();  // the next input has the same name
    require(returned && got == expected, "another layout");
    return 0;
}
