// SPDX-License-Identifier: MIT
// Benchmarks judged by ratios: our time over that of a reference which ran in the same process,
// interleaved with ours, so that the machine's mood cancels out.
#pragma once

#include <deque>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace benchmark {
class State;
}

// One comparison. `ours` and `reference` are full names of registered benchmarks.
struct Ratio {
    const char* name;
    const char* ours;
    const char* reference;
    double limit;      // the largest ratio that passes; 0: reported without a verdict
    double extra = 0;  // nanoseconds that ours may take on top
};

// The reason of a benchmark that is left out for want of instructions: no failure of the run.
inline constexpr char kNotHere[] = "not on this processor";

// Runs every registered benchmark in randomly interleaved repetitions and prints the median real
// time of each, then a table of the ratios. Takes Google Benchmark's own flags, which win over the
// defaults set here. Answers 0, or 1 when a ratio is over its limit, or 2 when one was not measured
// or a benchmark failed (no verdict is given for what a --benchmark_filter left out).
int runRatios(int argc, char** argv, std::span<const Ratio> ratios);

// Benchmarks and comparisons whose names are made up while the program runs.
class RatioList {
public:
    // Registers a benchmark; the name that is answered lives as long as the list.
    const char* add(const std::string& name, std::function<void(benchmark::State&)> function,
                    double minimumSeconds = 0);

    void compare(const char* ours, const char* reference, double limit);
    void append(std::span<const Ratio> ratios);

    int run(int argc, char** argv) const { return runRatios(argc, argv, m_ratios); }

private:
    const char* keep(std::string name) { return m_names.emplace_back(std::move(name)).c_str(); }

    std::deque<std::string> m_names;
    std::vector<Ratio> m_ratios;
};
