// SPDX-License-Identifier: MIT
// How a fuzz target says that a law does not hold.
#pragma once

#include <cstdio>
#include <cstdlib>

inline void require(bool holds, const char* law) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", law);
    std::abort();
}
