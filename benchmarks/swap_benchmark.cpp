// SPDX-License-Identifier: MIT
// Byte swaps beside volk's, the plain loop for this very machine, and memcpy.
#include "benchmarks/converter_shapes.h"
#include "benchmarks/processor_benchmark.h"
#include "veltra/processor/byte_order.h"
#include "veltra/processor/record_swap.h"

#include <cstring>
#include <memory>

#include <benchmark/benchmark.h>
#include <volk/volk.h>

namespace {

using Bytes = std::vector<unsigned char>;
using Swap = std::function<void(unsigned char* to, const unsigned char* from, std::size_t size)>;

template <class Pointer>
auto words(unsigned char* bytes) {
    return reinterpret_cast<Pointer>(bytes);
}

std::uint32_t countOf(std::size_t size, std::size_t word) {
    return static_cast<std::uint32_t>(size / word);
}

// The description of a copy of 32-bit words, as many as there may be.
const std::int8_t* wordFields() {
    static const std::vector<std::int8_t> fields = [] {
        std::vector<std::int8_t> made(std::size_t{2} << 20U, 4);
        made.push_back(0);
        return made;
    }();
    return fields.data();
}

struct Row {
    const char* name;
    std::size_t word;
    bool copies;
    Swap ours;
    Swap volk = nullptr;
    bool isLibraryCall = true;  // nothing but the loop behind it
    std::size_t extra = 0;      // sixteenths of the traffic that are read besides
};

const Row kRows[] = {
    {"swap16", 2, false,
     [](auto* to, auto*, std::size_t n) { veltra::PSwapWord(to, countOf(n, 2)); },
     [](auto* to, auto*, std::size_t n) {
         volk_16u_byteswap(words<std::uint16_t*>(to), countOf(n, 2));
     }},
    {"swap32", 4, false,
     [](auto* to, auto*, std::size_t n) { veltra::PSwapLong(to, countOf(n, 4)); },
     [](auto* to, auto*, std::size_t n) {
         volk_32u_byteswap(words<std::uint32_t*>(to), countOf(n, 4));
     }},
    {"swap64", 8, false,
     [](auto* to, auto*, std::size_t n) { veltra::PSwapLongLong(to, countOf(n, 8)); },
     [](auto* to, auto*, std::size_t n) {
         volk_64u_byteswap(words<std::uint64_t*>(to), countOf(n, 8));
     }},
    {"swap24", 3, false,
     [](auto* to, auto*, std::size_t n) { veltra::ProcessSwapIntel(to, countOf(n, 3), 0, 24); }},
    {"copy32", 4, true,
     [](auto* to, auto* from, std::size_t n) { veltra::PSwapCopyLong(to, from, countOf(n, 4)); }},
    {"multi16", 2, false,
     [](auto* to, auto*, std::size_t n) {
         veltra::MultiIntelSwap(to, 15, static_cast<std::int32_t>(n / 2));
     },
     nullptr, false},
    {"multi64", 8, false,
     [](auto* to, auto*, std::size_t n) {
         veltra::MultiIntelSwap(to, 14, static_cast<std::int32_t>(n / 32));
     },
     nullptr, false},
    {"data32", 4, true,
     [](auto* to, auto* from, std::size_t n) { veltra::SwapData(to, from, wordFields(), n); },
     nullptr, false, 2},
};

void exact(std::size_t word, unsigned char* to, const unsigned char* from, std::size_t size) {
    for (std::size_t at = 0; at + word <= size; at += word) {
        unsigned char bytes[8];
        for (std::size_t byte = 0; byte < word; ++byte)
            bytes[byte] = from[at + word - 1 - byte];
        std::memcpy(to + at, bytes, word);
    }
}

class Case {
public:
    Case(RatioList& list, const Row& row, std::size_t size)
        : m_list(list),
          m_row(row),
          m_size(size),
          m_to(std::make_shared<Bytes>(size + size / 4 + 64)),
          m_from(std::make_shared<Bytes>(size + size / 4 + 64)) {
        unsigned char next = 1;
        for (unsigned char& byte : *m_from)
            byte = next = static_cast<unsigned char>(next * 5 + 1);
        *m_to = *m_from;
    }

    bool add() {
        Bytes expected = *m_from;
        exact(m_row.word, expected.data(), m_from->data(), m_size / 32 * 32);
        const auto agrees = [&](const Swap& swap) {
            Bytes to = *m_from;
            swap(to.data(), m_from->data(), m_size / 32 * 32);
            return to == expected;
        };
        if (!agrees(m_row.ours) || (m_row.volk && !agrees(m_row.volk))) return false;
        const char* const ours = add("ours", m_row.ours);
        const bool isLong = m_size > 65536;
        const double nearly = m_size == 64 || isLong ? 1.10 : 1.05;
        // The loop is part of this program; ours is a call of a library and a choice.
        const bool isJudged = m_row.isLibraryCall ? m_size > 64 : m_size > 1024;
        if (m_row.volk) m_list.compare(ours, add("volk", m_row.volk), nearly);
        const WordSwap loop = m_row.copies ? nullptr : swapLoop(m_row.word);
        const Swap inPlace = [loop](auto* to, auto*, std::size_t n) { loop(to, n); };
        if (loop != nullptr) m_list.compare(ours, add("loop", inPlace), isJudged ? nearly : 0);
        // Of the same traffic: a description is read too.
        const Swap copy = [extra = m_row.extra](auto* to, auto* from, std::size_t n) {
            std::memcpy(to, from, n + n / 16 * extra);
        };
        m_list.compare(ours, add("memcpy", copy), isLong ? 1.2 : 0);
        return true;
    }

private:
    static unsigned char* aligned(Bytes& bytes) {
        return bytes.data() + (64 - reinterpret_cast<std::uintptr_t>(bytes.data()) % 64) % 64;
    }

    const char* add(const char* who, const Swap& swap) {
        return m_list.add(
            std::string(m_row.name) + ' ' + std::to_string(m_size) + ' ' + who,
            [=, to = m_to, from = m_from, size = m_size](benchmark::State& state) {
                unsigned char* const target = aligned(*to);
                const unsigned char* const source = aligned(*from);
                for (auto _ : state) {
                    swap(target, source, size);
                    benchmark::ClobberMemory();
                }
            },
            0.02);
    }

    RatioList& m_list;
    const Row& m_row;
    std::size_t m_size;
    std::shared_ptr<Bytes> m_to;
    std::shared_ptr<Bytes> m_from;
};

}  // namespace

bool addSwaps(RatioList& list) {
    for (const Row& row : kRows) {
        for (const std::size_t size :
             {std::size_t{64}, std::size_t{1024}, std::size_t{16384}, std::size_t{8} << 20U}) {
            if (!Case(list, row, size).add()) return false;
        }
    }
    return true;
}
