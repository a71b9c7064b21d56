// SPDX-License-Identifier: MIT
// What the sample converters are measured on, ours and everybody else's.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

struct Shape {
    std::size_t bytes;  // of an integer sample
    bool isBig;
    bool toFloat;
    bool isStereo;

    // The 8-bit format of the little-endian world has no sign.
    bool isUnsigned() const { return bytes == 1 && !isBig; }
    std::size_t frameSize() const { return bytes * (isStereo ? 2 : 1); }
};

// A stream of integers and one or two channels of floats; conversions go from one to the other.
struct Samples {
    unsigned char* stream;
    float* left;
    float* right;  // null: one channel
    std::size_t frames;
};

using Conversion = std::function<void(const Samples& samples)>;

// The contract as a plain loop, built for this very machine.
Conversion exactLoop(const Shape& shape);

// Words of 2, 4 or 8 bytes in place, likewise.
using WordSwap = void (*)(unsigned char* words, std::size_t size);
WordSwap swapLoop(std::size_t word);

// The libraries that convert this shape. They scale, round and clip in ways of their own.
std::vector<std::pair<std::string, Conversion>> peersOf(const Shape& shape, std::size_t frames);

// Those with a file of their own; null where they do not convert this shape.
Conversion pipewireConversion(const Shape& shape, std::size_t frames);
Conversion sndfileConversion(const Shape& shape);
