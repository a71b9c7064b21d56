// SPDX-License-Identifier: MIT
// The rules of record swapping step by step, for the unit test and the fuzz targets: reverse first,
// then undo what went past the limit. It therefore touches the whole field, whatever the limit.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

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

// How many bytes the parts of one value take.
inline std::size_t sizeOf(std::string_view parts) {
    std::size_t size = 0;
    for (const char part : parts)
        size += static_cast<std::size_t>(part < 'a' ? part - '0' : part - 'a' + 1);
    return size;
}

struct RecordSwapModel {
    std::uintptr_t limit;

    unsigned char* swap(unsigned char* record, std::size_t code) {
        const auto [parts, values] = partsOf(code);
        const auto flip = [&text = parts](unsigned char* at) {
            for (const char part : text) {
                unsigned char* const start = at;
                at += sizeOf({&part, 1});
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

// What SwapRecordWithin must do: the rules above, played with room behind the record.
struct BoundedModel {
    std::vector<unsigned char> record;
    std::size_t taken = 0;
    bool isComplete = false;
    // And LimitTabIntelSwap, with the record's end as limit, stays inside too.
    bool isInside = true;

    BoundedModel(std::vector<unsigned char> bytes, const std::vector<unsigned char>& table)
        : record(std::move(bytes)) {
        const std::size_t size = record.size();
        record.resize(size + 64);
        m_end = m_model.limit = addressOf(record.data()) + size;
        for (std::size_t at = 0; at < table.size();) {
            const std::size_t operands = table[at] == 1 ? 2 : table[at] == 2 ? 3 : 0;
            isComplete = table[at] == 0;
            if (isComplete || table.size() - at <= operands) break;
            const std::size_t count = operands == 0   ? 1
                                      : operands == 2 ? table[at + 2]
                                                      : table[at + 2] * 256U + table[at + 3];
            if (!apply(operands == 0 ? table[at] : table[at + 1], count)) break;
            at += operands + 1;
        }
        record.resize(size);
    }

private:
    bool apply(std::size_t code, std::size_t count) {
        const auto [parts, values] = partsOf(code);
        const std::size_t first = sizeOf(parts);
        for (; count > 0; --count) {
            unsigned char* const field = record.data() + taken;
            isInside = isInside && addressOf(field) + first <= m_end;
            if (addressOf(field) + first > m_end) return false;
            const unsigned char* const end = m_model.swap(field, code);
            isInside = isInside && m_model.limit <= m_end;
            m_model.limit = std::min(m_model.limit, m_end);
            if (addressOf(end) > m_end) return false;
            taken += first * static_cast<std::size_t>(values);
        }
        return true;
    }

    RecordSwapModel m_model{};
    std::uintptr_t m_end;
};

}  // namespace veltra
