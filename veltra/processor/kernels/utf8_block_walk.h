// SPDX-License-Identifier: MIT
// The walk over aligned blocks of 64 bytes that the vector variants share. Each includes it in a
// file that is built with its own flags, so everything here has internal linkage and nothing of
// the standard library is instantiated: no other file may end up with code that only some
// processors can run.
//
// A block is loaded whole as soon as one of its bytes belongs to the text. Blocks are aligned to
// their size, as are groups of four, so that no load reaches into a page that holds none of the
// text. What lies before the text and behind its terminator never changes an answer. These files
// are exempt from the address and thread sanitizers for that reason.
//
// A variant supplies its `Block`, which the concept below describes.
#pragma once

#include "veltra/processor/kernels/utf8_kernels.h"

#include <concepts>
#include <cstdint>

namespace veltra::kernels {

static constexpr std::size_t kBlock = 64;
static constexpr std::size_t kGroup = 4 * kBlock;

// 64 bytes, loaded from an aligned address. Bit i of a mask is about byte i.
template <class Block>
concept Utf8Block = requires(const Block& block, const char* aligned) {
    Block(aligned);
    // NUL or not ASCII; NUL; at or above 0x80.
    { block.stops() } -> std::same_as<std::uint64_t>;
    { block.nuls() } -> std::same_as<std::uint64_t>;
    { block.nonAscii() } -> std::same_as<std::uint64_t>;
    // At or above a byte from 0xC0 on; the bits of ASCII bytes do not count.
    { block.template atLeast<0xC0>() } -> std::same_as<std::uint64_t>;
    // Whether any of four blocks from there has stops.
    { Block::anyStops4(aligned) } -> std::same_as<bool>;
};

static inline std::size_t offsetIn(std::size_t size, const char* text) noexcept {
    return reinterpret_cast<std::uintptr_t>(text) & (size - 1);
}

static inline std::size_t firstOf(std::uint64_t bits) noexcept {
    return static_cast<std::size_t>(__builtin_ctzll(bits));
}

static inline std::size_t smallerOf(std::size_t one, std::size_t other) noexcept {
    return one < other ? one : other;
}

template <Utf8Block Block>
static inline std::size_t asciiLength(const char* text) noexcept {
    const std::size_t offset = offsetIn(kBlock, text);
    const std::uint64_t first = Block(text - offset).stops() >> offset;
    if (first != 0) return firstOf(first);
    for (const char* at = text - offset + kBlock;; at += kBlock) {
        if (offsetIn(kGroup, at) == 0) {
            while (!Block::anyStops4(at))
                at += kGroup;
        }
        const std::uint64_t stops = Block(at).stops();
        if (stops != 0) return static_cast<std::size_t>(at - text) + firstOf(stops);
    }
}

template <Utf8Block Block>
static inline std::size_t asciiLengthWithin(const char* text, std::size_t limit) noexcept {
    if (limit == 0) return 0;
    const std::size_t offset = offsetIn(kBlock, text);
    std::uint64_t stops = Block(text - offset).stops() >> offset;
    std::size_t done = 0;
    for (std::size_t next = kBlock - offset; stops == 0 && next < limit; next += kBlock) {
        done = next;
        stops = Block(text + done).stops();
    }
    return stops != 0 ? smallerOf(done + firstOf(stops), limit) : limit;
}

// What a block's last bytes mean for the next block: one bit each, in the lowest place.
struct Carry {
    std::uint64_t nonAscii = 0;
    std::uint64_t four = 0;
    std::uint64_t three = 0;
    std::uint64_t two = 0;
    std::uint64_t complete = 0;
};

// `bits` moved on by one byte; the bit that leaves the block is exchanged for the carried one.
static inline std::uint64_t movedOn(std::uint64_t bits, std::uint64_t& carried) noexcept {
    const std::uint64_t moved = bits * 2 + carried;
    carried = bits >> 63;
    return moved;
}

// Whether a block breaks the structure. Within a run of bytes that are not ASCII only two places
// are judged: the run starts with a lead byte, and its last lead byte is followed by just as many
// continuation bytes as it announces. `live` marks the text's bytes that are not ASCII; no live
// byte is at or above 0xF8.
template <Utf8Block Block>
static bool isBroken(const Block& block, std::uint64_t live, Carry& carry) noexcept {
    const std::uint64_t leads = block.template atLeast<0xC0>() & live;
    const std::uint64_t leadsOf3 = block.template atLeast<0xE0>() & live;
    const std::uint64_t leadsOf4 = block.template atLeast<0xF0>() & live;
    const std::uint64_t continuations = live & ~leads;
    // Each step takes one continuation byte: `three` marks places that await two more, and so on.
    const std::uint64_t three =
        (movedOn(leadsOf4, carry.four) & continuations) | (leadsOf3 & ~leadsOf4);
    const std::uint64_t two = (movedOn(three, carry.three) & continuations) | (leads & ~leadsOf3);
    const std::uint64_t complete = movedOn(two, carry.two) & continuations;
    const std::uint64_t behindRun = movedOn(live, carry.nonAscii);
    const std::uint64_t behindComplete = movedOn(complete, carry.complete);
    return ((behindRun & ~live & ~behindComplete) | (continuations & ~behindRun)) != 0;
}

template <Utf8Block Block>
static bool check(const char* text) noexcept {
    const std::size_t offset = offsetIn(kBlock, text);
    const char* at = text - offset;
    std::uint64_t within = ~std::uint64_t{0} << offset;
    Carry carry;
    for (;; at += kBlock, within = ~std::uint64_t{0}) {
        const Block block(at);
        if (((block.stops() & within) | carry.nonAscii) == 0) {
            // Plain text is likely to go on: up to the block in front of the one that stops it.
            if (offsetIn(kGroup, at + kBlock) == 0) {
                while (!Block::anyStops4(at + kBlock))
                    at += kGroup;
            }
            continue;
        }
        const std::uint64_t nuls = block.nuls() & within;
        if (nuls != 0) within &= (nuls - 1) & ~nuls;
        const std::uint64_t live = block.nonAscii() & within;
        if ((block.template atLeast<0xF8>() & live) != 0) return checkUtf8Plainly(text);
        if (isBroken(block, live, carry)) return false;
        if (nuls != 0) return true;
    }
}

}  // namespace veltra::kernels
