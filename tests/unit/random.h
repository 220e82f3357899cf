// SPDX-License-Identifier: MIT
//
// Random numbers that are the same everywhere: the library's distributions differ from one to the
// next, plain arithmetic does not.
#pragma once

#include <cstdint>
#include <random>

struct random_t {
    std::mt19937 source;
    explicit random_t(unsigned seed) : source(seed) {}
    std::uint32_t next() { return static_cast<std::uint32_t>(source()); }
    int below(int n) { return static_cast<int>(next() % static_cast<std::uint32_t>(n)); }
    double unit() { return next() / 4294967296.0; }
};
