// SPDX-License-Identifier: MIT
// Any bytes as a table and a record that is as long as the table says, under any limit. The input:
// where the limit lies (two bytes), how long the table is, the table, the record.
#include "veltra/processor/record_swap.h"
#include "veltra/processor/testing/record_swap_model.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace veltra {
namespace {

using Bytes = std::vector<unsigned char>;  // made anew for each length: it ends where the heap does

constexpr std::uintptr_t kBefore = 12345;
constexpr std::uint8_t kLength = 21;
constexpr std::size_t kLongest = 1U << 13U;  // so that repeats do not take all the time

void require(bool holds, const char* law) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", law);
    std::abort();
}

// The codes that a table applies, one by one: what it would do to a record that is not there.
Bytes dryWalk(const Bytes& table) {
    Bytes codes;
    for (std::size_t at = 0; table[at] != 0;) {
        const std::size_t extra = table[at] < 3 ? table[at] : 0;
        const std::size_t count = extra == 1   ? table[at + 2]
                                  : extra == 2 ? table[at + 2] * 256U + table[at + 3]
                                               : 1;
        codes.insert(codes.end(), count, table[extra != 0 ? at + 1 : at]);
        if (codes.size() > kLongest) return {};
        at += extra != 0 ? extra + 2 : 1;
    }
    return codes;
}

std::size_t bytesOf(std::uint8_t code) {
    std::size_t bytes = 0;
    const auto [parts, values] = partsOf(code);
    for (const char part : parts)
        bytes += static_cast<std::size_t>(part < 'a' ? part - '0' : part - 'a' + 1);
    return bytes * static_cast<std::size_t>(values);
}

// A record of `size` bytes, of which the limit allows the first `allowed`, or all.
void checkRecord(const Bytes& original, const Bytes& table, const Bytes& codes, bool isLimited,
                 std::size_t allowed) {
    Bytes record = original;
    const std::uintptr_t start = addressOf(record.data());
    const std::uintptr_t limit = isLimited ? start + allowed : UINTPTR_MAX;
    const auto swapTable = [&] {
        SetPIntelLimit(kBefore);
        if (isLimited) {
            LimitTabIntelSwap(record.data(), table.data(), limit);
        } else {
            TabIntelSwap(record.data(), table.data());
        }
        require(GetPIntelLimit() == kBefore, "the limit is as it was after a table");
    };
    swapTable();
    const Bytes byTable = record;

    record.assign(original.begin(), original.end());
    SetPIntelLimit(limit);
    unsigned char* at = record.data();
    for (const std::uint8_t code : codes) {
        unsigned char* const end = static_cast<unsigned char*>(IntelSwap(at, code));
        require(end == at + bytesOf(code), "a field ends where its size says");
        at = end;
    }
    const std::uintptr_t limitByFields = GetPIntelLimit();
    require(record == byTable, "a table does what its fields do");

    record.assign(original.begin(), original.end());
    RecordSwapModel model{limit};
    at = record.data();
    for (const std::uint8_t code : codes)
        at = model.swap(at, code);
    require(record == byTable && model.limit == limitByFields, "the rules, step by step");

    if (std::find(codes.begin(), codes.end(), kLength) != codes.end()) return;
    swapTable();
    require(record == original, "twice is not at all, without a length");

    const bool singles = std::all_of(codes.begin(), codes.end(),
                                     [](std::uint8_t code) { return partsOf(code).second == 1; });
    if (!isLimited || !singles || allowed >= original.size()) return;
    const auto end = original.begin() + static_cast<std::ptrdiff_t>(allowed);
    record = Bytes(original.begin(), end);
    record.shrink_to_fit();
    LimitTabIntelSwap(record.data(), table.data(), addressOf(record.data()) + allowed);
    require(std::equal(record.begin(), record.end(), byTable.begin()),
            "a record that ends at the limit is swapped as a longer one");
}

}  // namespace
}  // namespace veltra

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace veltra;
    if (size < 3) return 0;
    const std::size_t tableEnd = std::min<std::size_t>(size, 3U + data[2]);
    Bytes table(tableEnd - 3 + 4);  // cut short anywhere, four zeros end it
    std::copy(data + 3, data + tableEnd, table.begin());
    const Bytes codes = dryWalk(table);

    std::size_t needed = 0;
    for (const std::uint8_t code : codes)
        needed += bytesOf(code);
    if (needed > kLongest) return 0;
    Bytes record(needed);
    for (std::size_t i = 0; i < needed && size > tableEnd; ++i)
        record[i] = data[tableEnd + i % (size - tableEnd)];
    checkRecord(record, table, codes, false, 0);
    checkRecord(record, table, codes, true, (data[0] * 256U + data[1]) % (needed + 2));
    return 0;
}
