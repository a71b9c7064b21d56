// SPDX-License-Identifier: MIT
// Any bytes as a table and a record, each in memory of just its size. The input: how long the table
// is, the table, the record.
#include "fuzz/require.h"
#include "veltra/processor/record_swap.h"
#include "veltra/processor/testing/record_swap_model.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    if (size < 1) return 0;
    const std::size_t tableEnd = std::min<std::size_t>(size, 1U + data[0]);
    const std::vector<unsigned char> table(data + 1, data + tableEnd);
    const std::vector<unsigned char> original(data + tableEnd, data + size);
    const veltra::BoundedModel expected(original, table);

    std::vector<unsigned char> record = original;
    std::size_t taken = SIZE_MAX;
    // Empty vectors have no address, which the function would refuse.
    unsigned char none = 0;
    const bool isComplete =
        veltra::SwapRecordWithin(record.empty() ? &none : record.data(), record.size(),
                                 table.empty() ? &none : table.data(), table.size(), &taken);
    require(record == expected.record, "the rules, step by step");
    require(isComplete == expected.isComplete && taken == expected.taken, "where it stopped");
    require(taken <= record.size(), "never behind the end");
    return 0;
}
