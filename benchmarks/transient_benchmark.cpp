// SPDX-License-Identifier: MIT
// Sorting transients, against the sorts that a host would otherwise take. The peers that sort small
// pairs of key and index move each transient once afterwards; what they allocate is timed, as ours
// is. Each iteration sorts another list, or the branch predictor would learn the one there is.
#include "benchmarks/transient_benchmark.h"

#include "veltra/audio/transients.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/sort/pdqsort/pdqsort.hpp>
#include <boost/sort/spreadsort/spreadsort.hpp>
#include <hwy/contrib/sort/vqsort.h>

namespace {

using List = veltra::CTransients;
using veltra::CTransient;

// Jittering: rising, but a few places out of order. The last three are what defeats a plain
// quicksort.
enum class Kind { Random, NearlySorted, Jittering, UpThenDown, MostlyUp, TwoTakes };

// In samples, of the onset with this number.
std::int64_t position(Kind kind, std::int64_t index, std::int64_t size, std::mt19937_64& random) {
    constexpr std::int64_t kStep = 441;
    const std::int64_t turn = kind == Kind::MostlyUp ? size / 10 * 9 : size / 2;
    switch (kind) {
        case Kind::Random:
            return static_cast<std::int64_t>(random());
        case Kind::NearlySorted:
            return index * kStep;
        case Kind::Jittering:
            return index * kStep + static_cast<std::int64_t>(random() % (5 * kStep));
        case Kind::UpThenDown:
        case Kind::MostlyUp:
            return std::min(index, turn - (index - turn) * turn / (size - turn)) * kStep;
        case Kind::TwoTakes:
            return index % turn * kStep + static_cast<std::int64_t>(random() % kStep);
    }
    return 0;
}

List makeList(std::size_t size, Kind kind, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    List list(size);
    for (std::size_t index = 0; index < size; ++index) {
        list[index].pos = position(kind, static_cast<std::int64_t>(index),
                                   static_cast<std::int64_t>(size), random);
        list[index].Energy = static_cast<float>(random() >> 40U) / static_cast<float>(1 << 24);
    }
    for (std::size_t swaps = kind == Kind::NearlySorted ? size / 100 : 0; swaps > 0; --swaps)
        std::swap(list[random() % size], list[random() % size]);
    return list;
}

// Lists of one size and kind, enough of them that no predictor knows them.
const std::vector<List>& lists(std::size_t size, Kind kind) {
    static std::vector<List> made;
    static std::size_t madeSize = 0;
    static Kind madeKind = Kind::Random;
    if (size == madeSize && kind == madeKind) return made;
    madeSize = size;
    madeKind = kind;
    made.clear();
    for (std::size_t left = std::max<std::size_t>(1, 200'000 / size); left > 0; --left)
        made.push_back(makeList(size, kind, left));
    return made;
}

std::uint64_t positionKey(const CTransient& transient) {
    return static_cast<std::uint64_t>(transient.pos) ^ (std::uint64_t{1} << 63U);
}

// Of energies that are 0 or more.
std::uint64_t energyKey(const CTransient& transient) {
    return std::bit_cast<std::uint32_t>(transient.Energy);
}

struct ByPos {
    static std::uint64_t key(const CTransient& transient) { return positionKey(transient); }
    bool operator()(const CTransient& one, const CTransient& other) const {
        return one.pos < other.pos;
    }
};

struct ByEnergyAndPos {
    static std::uint64_t key(const CTransient& transient) { return energyKey(transient); }
    bool operator()(const CTransient& one, const CTransient& other) const {
        return one.Energy < other.Energy || (one.Energy == other.Energy && one.pos < other.pos);
    }
};

template <typename Order>
void ours(List& list) {
    if constexpr (std::is_same_v<Order, ByPos>)
        list.SortByPos();
    else
        list.SortByEnergyAndPos();
}

template <typename Order>
void stdSort(List& list) {
    std::sort(list.begin(), list.end(), Order());
}

template <typename Order>
void pdqsort(List& list) {
    boost::sort::pdqsort(list.begin(), list.end(), Order());
}

template <typename Order>
void pdqsortBranchless(List& list) {
    boost::sort::pdqsort_branchless(list.begin(), list.end(), Order());
}

template <typename Order>
void spreadsort(List& list) {
    const auto shifted = [](const CTransient& transient, unsigned bits) {
        if constexpr (std::is_same_v<Order, ByPos>)
            return std::int64_t{transient.pos} >> bits;
        else
            return std::bit_cast<std::int32_t>(transient.Energy) >> bits;
    };
    boost::sort::spreadsort::integer_sort(list.begin(), list.end(), shifted, Order());
}

struct Pair {
    std::uint64_t key, index;
};

// `pairs` sorted by key; equal keys are put right by an insertion sort.
template <typename Order, typename IndexAt>
void gather(List& list, IndexAt indexAt) {
    const std::size_t size = list.size();
    const std::unique_ptr<std::byte[]> memory(new std::byte[size * sizeof(CTransient)]);
    auto* const sorted = reinterpret_cast<CTransient*>(memory.get());
    const Order less;
    for (std::size_t index = 0; index < size; ++index) {
        const CTransient& moved = list[indexAt(index)];
        std::size_t place = index;
        for (; place > 0 && less(moved, sorted[place - 1]); --place)
            sorted[place] = sorted[place - 1];
        sorted[place] = moved;
    }
    std::memcpy(static_cast<void*>(list.data()), sorted, size * sizeof(CTransient));
}

// Eleven bits at a time, from the lowest on; digits that all keys share are left out.
template <typename Order>
void radixPairs(List& list) {
    constexpr unsigned kBits = 11, kDigits = 6;
    const std::size_t size = list.size();
    const std::unique_ptr<Pair[]> first(new Pair[size]), second(new Pair[size]);
    static std::array<std::array<std::uint32_t, 1U << kBits>, kDigits> counts;
    counts = {};
    const auto digitOf = [](std::uint64_t key, unsigned digit) {
        return static_cast<std::size_t>(key >> (kBits * digit)) & ((1U << kBits) - 1);
    };
    for (std::size_t index = 0; index < size; ++index) {
        const std::uint64_t key = Order::key(list[index]);
        first[index] = {key, index};
        for (unsigned digit = 0; digit < kDigits; ++digit)
            ++counts[digit][digitOf(key, digit)];
    }
    Pair *from = first.get(), *to = second.get();
    for (unsigned digit = 0; digit < kDigits; ++digit) {
        auto& places = counts[digit];
        if (places[digitOf(from[0].key, digit)] == size) continue;
        std::uint32_t before = 0;
        for (std::uint32_t& place : places)
            before += std::exchange(place, before);
        for (std::size_t index = 0; index < size; ++index)
            to[places[digitOf(from[index].key, digit)]++] = from[index];
        std::swap(from, to);
    }
    gather<Order>(list, [from](std::size_t index) { return from[index].index; });
}

template <typename Order>
void vqsortPairs(List& list) {
    static hwy::Sorter sorter;
    const std::unique_ptr<hwy::K64V64[]> pairs(new hwy::K64V64[list.size()]);
    for (std::size_t index = 0; index < list.size(); ++index)
        pairs[index] = {index, Order::key(list[index])};
    sorter(pairs.get(), list.size(), hwy::SortAscending());
    gather<Order>(list, [&](std::size_t index) { return pairs[index].value; });
}

void thinOurs(List& list) {
    list.ThinOutToSizeAndSortByPos(static_cast<unsigned long>(list.size() / 10));
}

void thinWithNthElement(List& list) {
    const std::size_t kept = list.size() / 10;
    std::nth_element(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(kept), list.end(),
                     ByEnergyAndPos());
    list.resize(kept);
    boost::sort::pdqsort(list.begin(), list.end(), ByPos());
}

template <Kind kind>
void run(benchmark::State& state, void (*sort)(List&)) {
    const auto& inputs = lists(static_cast<std::size_t>(state.range(0)), kind);
    std::vector<List> work(inputs.size());
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(inputs.size()))) {
        state.PauseTiming();
        work = inputs;
        state.ResumeTiming();
        for (List& list : work)
            sort(list);
    }
}

void checkOrder(benchmark::State& state) {
    List list = makeList(static_cast<std::size_t>(state.range(0)), Kind::NearlySorted, 1);
    list.SortByPos();
    for (auto _ : state)
        benchmark::DoNotOptimize(list.AreSortedByPos());
}

// What it costs to bring the records in: eight bytes of each.
void readRecords(benchmark::State& state) {
    const List list = makeList(static_cast<std::size_t>(state.range(0)), Kind::NearlySorted, 1);
    for (auto _ : state) {
        std::int64_t sum = 0;
        for (const CTransient& transient : list)
            sum += transient.pos;
        benchmark::DoNotOptimize(sum);
    }
}

struct Entry {
    const char* name;
    void (*byPos)(List&);
    void (*byEnergy)(List&);
};

constexpr Entry kSorts[] = {
    {"list", ours<ByPos>, ours<ByEnergyAndPos>},
    {"std::sort", stdSort<ByPos>, stdSort<ByEnergyAndPos>},
    {"pdqsort", pdqsort<ByPos>, pdqsort<ByEnergyAndPos>},
    {"pdqsort branchless", pdqsortBranchless<ByPos>, pdqsortBranchless<ByEnergyAndPos>},
    {"spreadsort", spreadsort<ByPos>, spreadsort<ByEnergyAndPos>},
    {"radix pairs", radixPairs<ByPos>, radixPairs<ByEnergyAndPos>},
    {"vqsort pairs", vqsortPairs<ByPos>, vqsortPairs<ByEnergyAndPos>},
};
constexpr std::int64_t kSizes[] = {1000, 100'000, 1'000'000};

}  // namespace

std::vector<Ratio> registerTransientBenchmarks() {
    std::vector<Ratio> ratios;
    static std::vector<std::string> names;  // what the ratios point to
    names.reserve(1000);
    const auto keep = [](std::string name) { return names.emplace_back(std::move(name)).c_str(); };
    const auto compare = [&](const std::string& what, const std::string& own, std::string peer,
                             std::int64_t size, double limit) {
        const std::string suffix = std::string("/").append(std::to_string(size));
        ratios.push_back({keep(what + suffix + " : " + peer), keep(what + "/" + own + suffix),
                          keep(what + "/" + peer + suffix), limit});
    };
    for (const Entry& sort : kSorts) {
        for (const std::int64_t size : kSizes) {
            const std::string name = std::string("/") + sort.name;
            benchmark::RegisterBenchmark(("pos" + name).c_str(), run<Kind::Random>, sort.byPos)
                ->Arg(size);
            benchmark::RegisterBenchmark(("energy" + name).c_str(), run<Kind::Random>,
                                         sort.byEnergy)
                ->Arg(size);
            benchmark::RegisterBenchmark(("nearly" + name).c_str(), run<Kind::NearlySorted>,
                                         sort.byPos)
                ->Arg(size);
            if (&sort == kSorts) continue;
            compare("pos", "list", sort.name, size, 1.05);
            compare("energy", "list", sort.name, size, 1.05);
            compare("nearly", "list", sort.name, size,
                    std::string_view(sort.name) == "pdqsort" ? 1.05 : 0);
        }
    }
    // What is bounded, and against which peer.
    const Entry &list = kSorts[0], &standard = kSorts[1], &pdq = kSorts[2];
    const auto bound = [&](const char* what, auto function, bool isByPos, const Entry& peer,
                           std::initializer_list<std::int64_t> sizes, double limit) {
        for (const Entry* const sort : {&list, &peer}) {
            const std::string name = what + std::string("/") + sort->name;
            for (const std::int64_t size : sizes)
                benchmark::RegisterBenchmark(name.c_str(), function,
                                             isByPos ? sort->byPos : sort->byEnergy)
                    ->Arg(size);
        }
        for (const std::int64_t size : sizes)
            compare(what, list.name, peer.name, size, limit);
    };
    bound("jittering", run<Kind::Jittering>, true, pdq, {100'000, 1'000'000}, 1.05);
    bound("up, then down", run<Kind::UpThenDown>, true, standard, {2'000'000}, 1.1);
    bound("mostly up", run<Kind::MostlyUp>, true, standard, {2'000'000}, 1.1);
    bound("two takes", run<Kind::TwoTakes>, true, standard, {2'000'000}, 1.1);
    bound("short energy", run<Kind::Random>, false, standard, {30, 60, 100}, 1.05);
    bound("short jittering", run<Kind::Jittering>, true, standard, {60, 1000}, 1.05);
    benchmark::RegisterBenchmark("thin/list", run<Kind::Random>, thinOurs)->Arg(1'000'000);
    benchmark::RegisterBenchmark("thin/nth_element", run<Kind::Random>, thinWithNthElement)
        ->Arg(1'000'000);
    compare("thin", "list", "nth_element", 1'000'000, 1.1);
    for (const std::int64_t size : kSizes) {
        benchmark::RegisterBenchmark("check/list", checkOrder)->Arg(size);
        benchmark::RegisterBenchmark("check/read", readRecords)->Arg(size);
        compare("check", "list", "read", size, 1.3);
    }
    return ratios;
}
