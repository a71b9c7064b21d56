// SPDX-License-Identifier: MIT
// The rules of record swapping step by step, for the unit test and the fuzz target: reverse first,
// then undo what went past the limit. It therefore touches the whole field, whatever the limit.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace veltra {

inline std::uintptr_t addressOf(const void* pointer) {
    return reinterpret_cast<std::uintptr_t>(pointer);
}

// A value's parts and how many values. Digits are reversed bytes, letters kept ones: a is 1 byte.
inline std::pair<std::string_view, int> partsOf(std::size_t code) {
    constexpr std::pair<std::string_view, int> kCodes[] = {
        {"a", 1}, {"a", 1}, {"a", 1}, {"a", 1},  {"b", 1},  {"c", 1}, {"d", 1}, {"4", 1},
        {"4", 2}, {"4", 3}, {"4", 4}, {"8", 1},  {"8", 2},  {"8", 3}, {"8", 4}, {"2", 1},
        {"2", 2}, {"2", 3}, {"2", 4}, {"42", 1}, {"88", 1}, {"2", 1}};
    return kCodes[code < 22 ? code : 0];
}

struct RecordSwapModel {
    std::uintptr_t limit;

    unsigned char* swap(unsigned char* record, std::size_t code) {
        const auto [parts, values] = partsOf(code);
        const auto flip = [&text = parts](unsigned char* at) {
            for (const char part : text) {
                unsigned char* const start = at;
                at += part < 'a' ? part - '0' : part - 'a' + 1;
                if (part < 'a') std::reverse(start, at);
            }
            return at;
        };
        unsigned char* end = record;
        for (int value = 0; value < values; ++value) {
            unsigned char* const start = end;
            end = flip(start);
            const std::uintptr_t length = code == 21 ? record[0] * 256U + record[1] : 0;
            if (length > 2 && length < 0x8000) limit = addressOf(record) + length;
            if (addressOf(end) > limit) flip(start);
        }
        if (values > 1 && addressOf(end) > limit) flip(record);
        return end;
    }
};

}  // namespace veltra
