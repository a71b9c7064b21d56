// SPDX-License-Identifier: MIT
#include "benchmarks/vector_walk.h"

void walkVector(const std::vector<Pair>& pairs, std::uint32_t message, void* data) {
    for (const Pair& pair : pairs)
        pair.callback(pair.context, message, data);
}
