// SPDX-License-Identifier: MIT
#include "benchmarks/ratios.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

using Times = std::map<std::string, std::vector<double>>;

// Empty when there is none. Google Benchmark 1.8 renamed it.
template <typename Run>
std::string problemOf(const Run& run) {
    if constexpr (requires { run.error_occurred; }) {
        return run.error_occurred ? run.error_message : "";
    } else {
        return static_cast<int>(run.skipped) != 0 ? run.skip_message : "";
    }
}

// Keeps the time of one iteration of every repetition, in nanoseconds.
class Collector final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const std::string name = run.run_name.function_name +
                                     (run.run_name.args.empty() ? "" : "/" + run.run_name.args);
            if (const std::string problem = problemOf(run); !problem.empty()) {
                std::printf("%s: %s\n", name.c_str(), problem.c_str());
                m_hasFailed |= problem != kNotHere;
                continue;
            }
            const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
            m_times[name].push_back(seconds * 1e9);
        }
    }

    Times m_times;
    bool m_hasFailed = false;
};

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

bool hasFlag(int argc, char** argv, std::string_view name) {
    return std::any_of(argv + 1, argv + argc, [name](const char* argument) {
        return std::string_view(argument).substr(0, name.size()) == name;
    });
}

}  // namespace

int runRatios(int argc, char** argv, std::span<const Ratio> ratios) {
    std::vector<std::string> defaults;
    const bool listing = hasFlag(argc, argv, "--benchmark_list_tests");
    if (!hasFlag(argc, argv, "--benchmark_repetitions"))
        defaults.emplace_back("--benchmark_repetitions=9");
    if (!hasFlag(argc, argv, "--benchmark_enable_random_interleaving"))
        defaults.emplace_back("--benchmark_enable_random_interleaving=true");
    if (!hasFlag(argc, argv, "--benchmark_min_time"))
        defaults.emplace_back("--benchmark_min_time=0.05");
    std::vector<char*> arguments(argv, argv + argc);
    for (std::string& text : defaults)
        arguments.push_back(text.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    if (listing) return benchmark::RunSpecifiedBenchmarks() > 0 ? 0 : 2;

    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);

    std::printf("%-44s %14s\n", "median of real time", "ns");
    for (const auto& [name, times] : collector.m_times)
        std::printf("%-44s %14.2f\n", name.c_str(), median(times));

    int status = collector.m_hasFailed ? 2 : 0;
    std::printf("\n%-44s %12s %12s %7s %7s\n", "ratio", "ours ns", "reference ns", "ratio",
                "limit");
    for (const Ratio& ratio : ratios) {
        const auto ours = collector.m_times.find(ratio.ours);
        const auto reference = collector.m_times.find(ratio.reference);
        if (ours == collector.m_times.end() || reference == collector.m_times.end()) {
            std::printf("%-44s not measured\n", ratio.name);
            status = std::max(status, hasFlag(argc, argv, "--benchmark_filter") ? 0 : 2);
            continue;
        }
        const double oursTime = median(ours->second);
        const double referenceTime = median(reference->second);
        const double value = oursTime / referenceTime;
        if (ratio.limit <= 0) {
            std::printf("%-44s %12.2f %12.2f %7.3f\n", ratio.name, oursTime, referenceTime, value);
            continue;
        }
        const bool pass = oursTime <= ratio.limit * referenceTime + ratio.extra;
        if (!pass) status = std::max(status, 1);
        std::printf("%-44s %12.2f %12.2f %7.3f %7.3f  %s\n", ratio.name, oursTime, referenceTime,
                    value, ratio.limit, pass ? "PASS" : "FAIL");
    }
    return status;
}

const char* RatioList::add(const std::string& name, std::function<void(benchmark::State&)> function,
                           double minimumSeconds) {
    auto* const registered = benchmark::RegisterBenchmark(
        name.c_str(),
        [function = std::move(function)](benchmark::State& state) { function(state); });
    if (minimumSeconds > 0) registered->MinTime(minimumSeconds);
    return keep(name);
}

void RatioList::compare(const char* ours, const char* reference, double limit) {
    m_ratios.push_back({keep(std::string(ours) + " / " + reference), ours, reference, limit});
}

void RatioList::append(std::span<const Ratio> ratios) {
    m_ratios.insert(m_ratios.end(), ratios.begin(), ratios.end());
}
