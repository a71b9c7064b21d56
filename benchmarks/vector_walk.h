// SPDX-License-Identifier: MIT
// The reference of a pass over the callback list: a vector of callbacks, walked in a shared library
// as the list is, so that both pay alike for calls from one module into another.
#pragma once

#include <cstdint>
#include <vector>

struct Pair {
    void* context;
    void (*callback)(void* context, std::uint32_t message, void* data);
};

__attribute__((visibility("default"))) void walkVector(const std::vector<Pair>& pairs,
                                                       std::uint32_t message, void* data);
