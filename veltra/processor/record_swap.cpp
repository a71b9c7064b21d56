// SPDX-License-Identifier: MIT
#include "veltra/processor/record_swap.h"

#include "veltra/processor/detail/bytes.h"
#include "veltra/processor/detail/swap_kernels.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>

namespace veltra {

namespace {

using detail::ByteOrder;
using detail::reverse;
using detail::reverseWords;

// Relaxed throughout: the limit is a value of its own and orders nothing else, so no operation on
// it has a partner.
std::atomic<std::uintptr_t> intelLimit{UINTPTR_MAX};

std::uintptr_t currentLimit() noexcept {
    return intelLimit.load(std::memory_order_relaxed);
}

void setLimit(std::uintptr_t limit) noexcept {
    intelLimit.store(limit, std::memory_order_relaxed);
}

std::uintptr_t addressOf(const unsigned char* bytes) noexcept {
    return reinterpret_cast<std::uintptr_t>(bytes);
}

enum class Kind : std::uint8_t {
    Keep,
    Reverse16,
    Reverse32,
    Reverse64,
    Reverse32And16,
    Reverse64Twice,
    Length
};

struct Field {
    Kind kind = Kind::Keep;
    std::uint8_t size = 1;    // bytes of one value
    std::uint8_t values = 1;  // how many, each with a limit test of its own
};

constexpr std::size_t kNamedCodes = 22;
constexpr std::array<Field, kNamedCodes> kFields{{
    {},                             // 0
    {},                             // 1
    {},                             // 2
    {},                             // 3
    {Kind::Keep, 2, 1},             // 4
    {Kind::Keep, 3, 1},             // 5
    {Kind::Keep, 4, 1},             // 6
    {Kind::Reverse32, 4, 1},        // 7
    {Kind::Reverse32, 4, 2},        // 8
    {Kind::Reverse32, 4, 3},        // 9
    {Kind::Reverse32, 4, 4},        // 10
    {Kind::Reverse64, 8, 1},        // 11
    {Kind::Reverse64, 8, 2},        // 12
    {Kind::Reverse64, 8, 3},        // 13
    {Kind::Reverse64, 8, 4},        // 14
    {Kind::Reverse16, 2, 1},        // 15
    {Kind::Reverse16, 2, 2},        // 16
    {Kind::Reverse16, 2, 3},        // 17
    {Kind::Reverse16, 2, 4},        // 18
    {Kind::Reverse32And16, 6, 1},   // 19
    {Kind::Reverse64Twice, 16, 1},  // 20
    {Kind::Length, 2, 1},           // 21
}};

Field fieldOf(std::uint8_t fieldCode) noexcept {
    return fieldCode < kNamedCodes ? kFields[fieldCode] : Field{};
}

constexpr std::size_t sizeOf(Field field) noexcept {
    return std::size_t{field.size} * field.values;
}

// How many of `count` fields fit in `room` bytes. Most often all do, which saves a division.
std::uint32_t fitting(Field field, std::uint32_t count, std::size_t room) noexcept {
    const std::uint64_t whole = std::uint64_t{sizeOf(field)} * count;
    return whole <= room ? count : static_cast<std::uint32_t>(room / sizeOf(field));
}

// The length that a field of code 21 holds after it was reversed; its block's, when above 2.
int lengthAt(const unsigned char* field) noexcept {
    return static_cast<std::int16_t>(detail::load<std::uint16_t, ByteOrder::Big>(field));
}

constexpr int kLengthOfNoBlock = 2;

void reverseValue(unsigned char* value, Kind kind) noexcept {
    switch (kind) {
        case Kind::Keep:
            break;
        case Kind::Reverse32:
            reverse<std::uint32_t>(value);
            break;
        case Kind::Reverse64:
            reverse<std::uint64_t>(value);
            break;
        case Kind::Reverse32And16:
            reverse<std::uint32_t>(value);
            reverse<std::uint16_t>(value + sizeof(std::uint32_t));
            break;
        case Kind::Reverse64Twice:
            reverseWords<std::uint64_t>(value, value, 2);
            break;
        case Kind::Reverse16:
        case Kind::Length:
            reverse<std::uint16_t>(value);
            break;
    }
}

// A length that says where its block ends moves the limit, and has then passed it: the length lies
// inside the block. One that says nothing is a 16-bit value like any other.
unsigned char* swapLength(unsigned char* record) noexcept {
    reverse<std::uint16_t>(record);
    const int length = lengthAt(record);
    unsigned char* const end = record + sizeof(std::uint16_t);
    if (length > kLengthOfNoBlock) {
        setLimit(addressOf(record) + static_cast<std::uintptr_t>(length));
    } else if (addressOf(end) > currentLimit()) {
        reverse<std::uint16_t>(record);
    }
    return end;
}

// Most values are touched only after the limit allows it. Lengths are not, nor is the first value
// of the codes for several.
unsigned char* swapField(unsigned char* record, std::uint8_t fieldCode) noexcept {
    const Field field = fieldOf(fieldCode);
    if (field.kind == Kind::Length) return swapLength(record);

    const std::uintptr_t limit = currentLimit();
    unsigned char* end = record;
    for (int value = 0; value < field.values; ++value) {
        unsigned char* const start = end;
        end += field.size;
        if (addressOf(end) <= limit) reverseValue(start, field.kind);
    }
    if (field.values > 1 && addressOf(end) > limit) reverseValue(record, field.kind);
    return end;
}

// Few words are reversed sooner than a vector is set up.
const kernels::SwapKernels& kernelsFor(std::size_t words) noexcept {
    return words < 8 ? kernels::kSwapPlain : *detail::swapKernels.current();
}

// Reverses a run of values that the limit allows. False for the kinds that go field by field.
bool reverseRun(unsigned char* values, std::size_t size, Kind kind) noexcept {
    switch (kind) {
        case Kind::Keep:
            return true;
        case Kind::Reverse16:
            kernelsFor(size / 2).words16(values, values, size / 2);
            return true;
        case Kind::Reverse32:
            kernelsFor(size / 4).words32(values, values, size / 4);
            return true;
        case Kind::Reverse64:
        case Kind::Reverse64Twice:
            kernelsFor(size / 8).words64(values, values, size / 8);
            return true;
        default:
            return false;
    }
}

// Those within the limit in one go. Of the rest, codes for one value leave the record as it is.
void swapFields(unsigned char* record, std::uint8_t fieldCode, std::uint32_t count) noexcept {
    const Field field = fieldOf(fieldCode);
    const std::uintptr_t start = addressOf(record);
    const std::uintptr_t limit = currentLimit();
    const std::size_t room = start <= limit ? limit - start : 0;
    const std::uint32_t within = fitting(field, count, room);
    const std::size_t run = within * sizeOf(field);
    std::uint32_t done = 0;
    if (reverseRun(record, run, field.kind)) {
        if (within == count) return;
        record += run;
        done = within;
    }
    const bool isLimited = field.kind != Kind::Length && field.values == 1;
    for (const std::uint32_t end = isLimited ? within : count; done < end; ++done) {
        record = swapField(record, fieldCode);
    }
}

constexpr std::uint8_t kEndOfTable = 0;
constexpr std::uint8_t kRepeat = 1;
constexpr std::uint8_t kRepeatLong = 2;

// A code of a table, how often it applies, and how many bytes of the table say so.
struct Entry {
    std::uint8_t code;
    std::uint16_t count;
    std::size_t length;
};

std::size_t entryLength(std::uint8_t first) noexcept {
    return first > kRepeatLong ? 1 : first + std::size_t{2};
}

Entry entryAt(const std::uint8_t* table) noexcept {
    if (*table > kRepeatLong) return {*table, 1, 1};
    if (*table == kRepeat) return {table[1], table[2], 3};
    return {table[1], detail::load<std::uint16_t, ByteOrder::Big>(table + 2), 4};
}

void swapTable(unsigned char* record, const std::uint8_t* table, std::uintptr_t limit) noexcept {
    if (record == nullptr || table == nullptr) return;
    const std::uintptr_t savedLimit = currentLimit();
    setLimit(limit);
    while (*table != kEndOfTable) {
        if (*table > kRepeatLong) {
            record = swapField(record, *table++);
            continue;
        }
        const Entry entry = entryAt(table);
        swapFields(record, entry.code, entry.count);
        record += sizeOf(fieldOf(entry.code)) * entry.count;
        table += entry.length;
    }
    setLimit(savedLimit);
}

// A record that ends where its memory ends, and the end of the block that a length in it heads.
class BoundedRecord {
public:
    BoundedRecord(unsigned char* record, std::size_t size) noexcept
        : m_record(record), m_size(size), m_limit(size) {}

    // How much of the record the fields so far take.
    std::size_t taken() const noexcept { return m_taken; }

    // False, and the rest is left, at the first field that passes the end of the record.
    bool apply(const Entry& entry) noexcept {
        const Field field = fieldOf(entry.code);
        const std::size_t room = m_taken <= m_limit ? m_limit - m_taken : 0;
        const std::uint32_t within = fitting(field, entry.count, room);
        std::uint32_t done = 0;
        if (reverseRun(m_record + m_taken, within * sizeOf(field), field.kind)) {
            m_taken += within * sizeOf(field);
            done = within;
        }
        for (; done < entry.count; ++done) {
            if (!applyOne(field)) return false;
        }
        return true;
    }

private:
    bool applyOne(Field field) noexcept {
        unsigned char* const start = m_record + m_taken;
        const std::size_t left = m_size - m_taken;
        if (left < field.size) return false;
        if (field.kind == Kind::Length) {
            applyLength(start);
        } else {
            std::size_t end = m_taken;
            for (int value = 0; value < field.values; ++value) {
                end += field.size;
                if (end <= m_limit) reverseValue(m_record + end - field.size, field.kind);
            }
            if (field.values > 1 && end > m_limit) reverseValue(start, field.kind);
        }
        if (left < sizeOf(field)) return false;
        m_taken += sizeOf(field);
        return true;
    }

    void applyLength(unsigned char* start) noexcept {
        reverse<std::uint16_t>(start);
        const int length = lengthAt(start);
        if (length > kLengthOfNoBlock) {
            m_limit = std::min(m_size, m_taken + static_cast<std::size_t>(length));
        } else if (m_taken + sizeof(std::uint16_t) > m_limit) {
            reverse<std::uint16_t>(start);
        }
    }

    unsigned char* const m_record;
    const std::size_t m_size;
    std::size_t m_limit;
    std::size_t m_taken = 0;
};

// Whether the whole table was applied.
bool swapBounded(BoundedRecord& record, const std::uint8_t* table, std::size_t size) noexcept {
    for (std::size_t at = 0; at < size;) {
        if (table[at] == kEndOfTable) return true;
        if (size - at < entryLength(table[at])) return false;
        const Entry entry = entryAt(table + at);
        if (!record.apply(entry)) return false;
        at += entry.length;
    }
    return false;
}

// How many fields of a description are like its first, of `most`; 1 or more.
std::size_t runLength(const std::int8_t* description, std::size_t most) noexcept {
    constexpr std::size_t kShort = 16;
    constexpr std::size_t kStretch = 1024;
    std::size_t run = 1;
    while (run < std::min(most, kShort) && description[run] == description[0])
        ++run;
    // A long run: stretches that equal themselves a field later.
    while (run >= kShort && run < most) {
        const std::size_t left = std::min(most - run, kStretch);
        const void* const end = std::memchr(description + run, 0, left);
        const std::size_t stretch =
            end == nullptr ? left
                           : static_cast<std::size_t>(static_cast<const std::int8_t*>(end) -
                                                      (description + run));
        if (stretch == 0 || std::memcmp(description + run - 1, description + run, stretch) != 0)
            break;
        run += stretch;
    }
    while (run < most && description[run] == description[0])
        ++run;
    return run;
}

// Copies a run of fields in order: a destination inside the source reads what was written.
void copyReversed(unsigned char* to, const unsigned char* from, std::size_t size,
                  std::size_t fields) noexcept {
    const bool inside =
        addressOf(from) < addressOf(to) && addressOf(to) < addressOf(from) + size * fields;
    const kernels::SwapKernels& kernels = inside ? kernels::kSwapPlain : kernelsFor(fields);
    if (size == 2) kernels.words16(to, from, fields);
    if (size == 4) kernels.words32(to, from, fields);
    if (size == 8) kernels.words64(to, from, fields);
}

}  // namespace

uintptr_t GetPIntelLimit() noexcept {
    return currentLimit();
}

void SetPIntelLimit(uintptr_t limit) noexcept {
    setLimit(limit);
}

void* IntelSwap(void* record, uint8_t fieldCode) noexcept {
    return record == nullptr ? nullptr : swapField(static_cast<unsigned char*>(record), fieldCode);
}

void MultiIntelSwap(void* record, uint8_t fieldCode, int32_t repeatCount) noexcept {
    if (record == nullptr || repeatCount <= 0) return;
    swapFields(static_cast<unsigned char*>(record), fieldCode,
               static_cast<std::uint32_t>(repeatCount));
}

void TabIntelSwap(void* record, const uint8_t* table) noexcept {
    swapTable(static_cast<unsigned char*>(record), table, UINTPTR_MAX);
}

void LimitTabIntelSwap(void* record, const uint8_t* table, uintptr_t limit) noexcept {
    swapTable(static_cast<unsigned char*>(record), table, limit);
}

bool SwapRecordWithin(void* record, size_t size, const uint8_t* table, size_t tableSize,
                      size_t* taken) noexcept {
    if (taken != nullptr) *taken = 0;
    if (record == nullptr || table == nullptr) return false;
    BoundedRecord bounded(static_cast<unsigned char*>(record), size);
    const bool isComplete = swapBounded(bounded, table, tableSize);
    if (taken != nullptr) *taken = bounded.taken();
    return isComplete;
}

void SwapData(void* destination, const void* source, const int8_t* description,
              size_t length) noexcept {
    if (destination == nullptr || source == nullptr || description == nullptr) return;
    auto* to = static_cast<unsigned char*>(destination);
    const auto* from = static_cast<const unsigned char*>(source);
    while (*description != 0) {
        const int field{*description};
        const auto size = static_cast<std::size_t>(std::abs(field));
        if (length < size) return;
        std::size_t fields = 1;
        if (field == 2 || field == 4 || field == 8) {
            fields = runLength(description, length / size);
            copyReversed(to, from, size, fields);
        } else {
            std::memmove(to, from, size);
        }
        description += fields;
        to += size * fields;
        from += size * fields;
        length -= size * fields;
    }
}

}  // namespace veltra
