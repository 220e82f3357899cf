// SPDX-License-Identifier: MIT
//
// Blocks of rows, several on few abscissae, against the same rows written by printf. The texts of
// abscissae are kept between blocks; only the same abscissae may get them again.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "harness.h"
#include "plot/plot.h"

using column_t = std::vector<double>;

static void print(std::string* text, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

static void print(std::string* text, const char* format, ...) {
    char row[3 * NUMBER_SIZE + 1];
    va_list args;
    va_start(args, format);
    std::vsnprintf(row, sizeof row, format, args);
    va_end(args);
    *text += row;
}

// An abscissa that differs in one number from the one before may be as long.
static column_t take_abscissa(bytes_t* bytes, const column_t& before) {
    column_t x = before;
    if (!before.empty() && take_below(bytes, 2) == 0) {
        x[static_cast<std::size_t>(take_byte(bytes)) % x.size()] = take_number(bytes);
        return x;
    }
    x.resize(static_cast<std::size_t>(take_below(bytes, 12)));
    for (double& value : x)
        value = take_number(bytes);
    return x;
}

static void check_block(bytes_t* bytes, const column_t& x, std::string* expected) {
    const bool has_two = take_below(bytes, 2) == 1;
    begin_rows({}, x.data(), static_cast<int>(x.size()));
    for (const double s : x) {
        const double y = take_number(bytes);
        if (has_two) {
            const double z = take_number(bytes);
            write_row(y, z);
            print(expected, "%f %f %f\n", s, y, z);
        } else {
            write_row(y);
            print(expected, "%f %f\n", s, y);
        }
    }
    end_rows();
    *expected += "e\n";
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    bytes_t bytes = {data, size};
    std::string expected;
    char* text = nullptr;
    std::size_t length = 0;
    f = open_memstream(&text, &length);
    std::vector<column_t> abscissae(4);
    while (bytes.left > 0) {
        const std::size_t which = static_cast<std::size_t>(take_below(&bytes, 4));
        if (take_below(&bytes, 4) == 0)
            abscissae[which] = take_abscissa(&bytes, abscissae[(which + 1) % 4]);
        check_block(&bytes, abscissae[which], &expected);
    }
    flush_rows();
    std::fclose(f);
    f = nullptr;
    release_rows();
    require_same(std::string(text, length), expected, "other rows");
    std::free(text);
    return 0;
}
