// SPDX-License-Identifier: MIT
// Any bytes as a table and a record that is as long as the table says, under any limit. The input:
// where the limit lies (two bytes), how long the table is, the table, the record.
#include "fuzz/require.h"
#include "veltra/processor/record_swap.h"
#include "veltra/processor/testing/record_swap_model.h"

#include <cstdint>
#include <vector>

namespace veltra {
namespace {

using Bytes = std::vector<unsigned char>;  // made anew for each length: it ends where the heap does

constexpr std::uintptr_t kBefore = 12345;
constexpr std::size_t kLongest = 1U << 13U;  // so that repeats do not take all the time

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

// A record of which the limit allows the first `allowed` bytes, or all.
void checkRecord(const Bytes& original, const Bytes& table, const Bytes& codes, bool isLimited,
                 std::size_t allowed) {
    const auto limitOf = [&](const Bytes& record) {
        return isLimited ? addressOf(record.data()) + allowed : UINTPTR_MAX;
    };
    Bytes swapped = original;
    SetPIntelLimit(kBefore);
    isLimited ? LimitTabIntelSwap(swapped.data(), table.data(), limitOf(swapped))
              : TabIntelSwap(swapped.data(), table.data());
    require(GetPIntelLimit() == kBefore, "the limit is as it was after a table");

    Bytes expected = original;
    RecordSwapModel model{limitOf(expected)};
    unsigned char* at = expected.data();
    for (const std::uint8_t code : codes)
        at = model.swap(at, code);
    require(swapped == expected, "the rules, step by step");

    const bool singles = std::all_of(codes.begin(), codes.end(), [](std::uint8_t code) {
        return partsOf(code).second == 1 && code != 21;  // without a length
    });
    if (!isLimited || !singles || allowed >= original.size()) return;
    const auto end = original.begin() + static_cast<std::ptrdiff_t>(allowed);
    Bytes record(original.begin(), end);
    record.shrink_to_fit();
    LimitTabIntelSwap(record.data(), table.data(), addressOf(record.data()) + allowed);
    require(std::equal(record.begin(), record.end(), expected.begin()),
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
        needed += sizeOf(partsOf(code).first) * static_cast<std::size_t>(partsOf(code).second);
    if (needed > kLongest) return 0;
    Bytes record(needed);
    for (std::size_t i = 0; i < needed && size > tableEnd; ++i)
        record[i] = data[tableEnd + i % (size - tableEnd)];
    checkRecord(record, table, codes, false, 0);
    checkRecord(record, table, codes, true, (data[0] * 256U + data[1]) % (needed + 2));
    return 0;
}
