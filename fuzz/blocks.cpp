// SPDX-License-Identifier: MIT
//
// Blocks of rows, several on few abscissae, against the same rows written by printf. The texts of
// abscissae are kept between blocks; only the same abscissae may get them again.
#include <cstdio>
#include <cstdlib>

#include "harness.h"
#include "plot/plot.h"

using column_t = std::vector<double>;

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

static void write_block(bytes_t* bytes, const column_t& x, FILE* expected) {
    const bool has_two = take_below(bytes, 2) == 1;
    begin_rows({}, x.data(), static_cast<int>(x.size()));
    for (const double s : x) {
        const double y = take_number(bytes);
        if (has_two) {
            const double z = take_number(bytes);
            write_row(y, z);
            std::fprintf(expected, "%f %f %f\n", s, y, z);
        } else {
            write_row(y);
            std::fprintf(expected, "%f %f\n", s, y);
        }
    }
    end_rows();
    std::fprintf(expected, "e\n");
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    bytes_t bytes = {data, size};
    char* texts[2] = {};
    std::size_t lengths[2] = {};
    f = open_memstream(&texts[0], &lengths[0]);
    FILE* expected = open_memstream(&texts[1], &lengths[1]);
    std::vector<column_t> abscissae(4);
    while (bytes.left > 0) {
        const std::size_t which = static_cast<std::size_t>(take_below(&bytes, 4));
        if (take_below(&bytes, 4) == 0)
            abscissae[which] = take_abscissa(&bytes, abscissae[(which + 1) % 4]);
        write_block(&bytes, abscissae[which], expected);
    }
    flush_rows();
    std::fclose(f);
    std::fclose(expected);
    f = nullptr;
    release_rows();
    require_same(std::string(texts[0], lengths[0]), std::string(texts[1], lengths[1]),
                 "other rows");
    std::free(texts[0]);
    std::free(texts[1]);
    return 0;
}
