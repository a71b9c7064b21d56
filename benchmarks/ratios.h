// Benchmarks judged by ratios: our time over that of a reference which ran in the same process,
// interleaved with ours, so that the machine's mood cancels out.
#pragma once

#include <span>

// One comparison. `ours` and `reference` are full names of registered benchmarks.
struct Ratio {
    const char* name;
    const char* ours;
    const char* reference;
    double limit;      // the largest ratio that passes; 0: reported without a verdict
    double extra = 0;  // nanoseconds that ours may take on top
};

// Runs every registered benchmark in randomly interleaved repetitions and prints the median real
// time of each, then a table of the ratios. Takes Google Benchmark's own flags, which win over the
// defaults set here. Answers 0, or 1 when a ratio is over its limit, or 2 when one was not measured
// (no verdict is given for what a --benchmark_filter left out).
int runRatios(int argc, char** argv, std::span<const Ratio> ratios);
