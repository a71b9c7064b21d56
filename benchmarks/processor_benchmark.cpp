// SPDX-License-Identifier: MIT
// Checksums, sample converters and byte swaps beside the libraries that do the same. Times are only
// compared of results that agree.
#include "benchmarks/processor_benchmark.h"

#include "veltra/processor/kernels.h"

#include <cstdio>

int main(int argc, char** argv) {
    RatioList list;
    const struct {
        const char* name;
        bool (*add)(RatioList& list);
    } parts[] = {
        {"checksums", addChecksums}, {"sample converters", addConverters}, {"swaps", addSwaps}};
    for (const auto& part : parts) {
        if (part.add(list)) continue;
        std::fprintf(stderr, "%s: the results do not agree\n", part.name);
        return 2;
    }
    addNarrow(list);
    for (veltra::KernelFamily* const family : veltra::KernelFamily::all())
        std::printf("%s runs as %s\n", family->name(), family->inForce());
    return list.run(argc, argv);
}
