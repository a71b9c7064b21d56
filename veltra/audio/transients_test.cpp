// SPDX-License-Identifier: MIT
#include "veltra/audio/transients.h"

#include "veltra/audio/detail/distribution_sort.h"
#include "veltra/audio/transients_c.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/indent_stack.h"

#include <initializer_list>
#include <iostream>
#include <locale>

#include <sys/resource.h>

namespace veltra {
namespace {

using Limits = std::numeric_limits<std::int64_t>;
using List = CTransients;

// `reserved3` numbers the transients of a list in its order.
bool byPosAndNumber(const CTransient& one, const CTransient& other) {
    return one.pos != other.pos ? one.pos < other.pos : one.reserved3 < other.reserved3;
}

// Written with the floats themselves; what is not a number comes last.
bool byEnergyAndPos(const CTransient& one, const CTransient& other) {
    const bool oneIsNan = std::isnan(one.Energy), otherIsNan = std::isnan(other.Energy);
    if (oneIsNan != otherIsNan) return otherIsNan;
    if (!oneIsNan && one.Energy != other.Energy) return one.Energy < other.Energy;
    return one.pos < other.pos;
}

bool areSame(const List& one, const List& other) {
    const std::size_t size = one.size() * sizeof(CTransient);
    return one.size() == other.size() && (size == 0 || std::memcmp(&one[0], &other[0], size) == 0);
}

// Lists of every kind that the sorts tell apart; `reserved3` numbers the transients, so that the
// order of equal ones shows.
std::map<std::string, List> lists(std::size_t size) {
    std::mt19937_64 random(size);
    const auto below = [&](std::uint64_t limit) {
        return static_cast<std::int64_t>(random() % limit);
    };
    // Zeros, denormals, infinities, what is not a number, the greatest, and one of many.
    constexpr std::uint32_t kSpecial[] = {0,          0x80000000, 1,          0x80000001,
                                          0x7F800000, 0xFF800000, 0x7FC00000, 0xFFC00000,
                                          0x7F7FFFFF, 0xC0400000};
    constexpr std::int64_t kEnds[] = {Limits::min(), Limits::min() + 1, -1, 0, 1, Limits::max()};
    using Index = std::int64_t;
    const auto half = static_cast<Index>(size / 2);
    const struct {
        const char* name;
        std::function<Index(Index)> positionAt;
        std::function<double(Index)> energyAt;
    } kinds[] = {
        {"random", [&](Index) { return static_cast<Index>(random()); },
         [&](Index) { return std::ldexp(below(1 << 24), -24); }},
        {"few values", [&](Index) { return below(7); }, [&](Index) { return below(3); }},
        {"extreme", [&](Index) { return kEnds[below(6)]; },
         [&](Index) { return std::bit_cast<float>(kSpecial[below(10)]); }},
        {"clustered", [&](Index) { return (Index{1} << below(63)) - below(5); },
         [&](Index) { return std::ldexp(1.0F, static_cast<int>(below(200)) - 100); }},
        {"equal", [](Index) { return 1; }, [](Index) { return 1; }},
        {"reversed", [](Index index) { return -index; }, [](Index index) { return -index; }},
        {"sorted", [](Index index) { return index / 3; }, [](Index index) { return index / 2; }},
        {"up, then down", [&](Index index) { return index < half ? index : 2 * half - index; },
         [&](Index index) { return std::min(index, 9 * (2 * half - index)); }},
        {"two takes", [&](Index index) { return index % (half + 1); },
         [&](Index index) { return index % (half + 1); }},
        {"jittering", [&](Index index) { return 10 * index + below(100); },
         [&](Index index) { return index + below(5); }}};
    std::map<std::string, List> all;
    for (const auto& kind : kinds)
        for (Index index = 0; index < static_cast<Index>(size); ++index)
            all[kind.name].push_back(
                {kind.positionAt(index), static_cast<float>(kind.energyAt(index))});
    for (const std::uint64_t oneIn : {100U, 12U, 4U}) {
        List& list = all["swapped 1 in " + std::to_string(oneIn)] = all["sorted"];
        for (std::size_t index = 0; index + 1 < size; ++index)
            if (below(oneIn) == 0)
                std::swap(list[index], list[static_cast<std::size_t>(below(size))]);
    }
    List& run = all["with a run that belongs to the front"] = all["sorted"];
    std::rotate(run.begin(), run.begin() + static_cast<std::ptrdiff_t>(size / 40), run.end());
    List& outlying = all["begun by great ones"] = all["sorted"];
    for (std::size_t index = 0; index < size / 50; ++index) {
        outlying[index].pos = Limits::max() - static_cast<std::int64_t>(index);
        outlying[index].Energy = 1e9F;
    }
    for (auto& [name, list] : all) {
        std::uint32_t number = 0;
        for (CTransient& transient : list)
            transient.reserved3 = number++;
    }
    return all;
}

TEST(Transients, SortsAreStableAndThinningKeepsTheWeakestInListsOfEveryKindAndSize) {
    for (const std::size_t size :
         std::initializer_list<std::size_t>{0, 1, 2, 20, 21, 127, 128, 1000, 4097, 10000, 132000}) {
        for (const auto& [name, list] : lists(size)) {
            if (size > 100'000 && name != "random" && name != "extreme") continue;
            SCOPED_TRACE(name + " " + std::to_string(size));
            List ranked = list, expected = list;
            ranked.SortByEnergyAndPos();
            std::stable_sort(expected.begin(), expected.end(), byEnergyAndPos);
            EXPECT_TRUE(areSame(ranked, expected));
            for (const std::size_t kept : {std::size_t{0}, size / 10, size / 2, size, size + 1}) {
                List thinned = list, weakest = expected;
                thinned.ThinOutToSizeAndSortByPos(kept);
                if (kept < size) weakest.resize(kept);
                std::sort(weakest.begin(), weakest.end(), byPosAndNumber);
                EXPECT_TRUE(areSame(thinned, weakest)) << kept;
            }
            List sorted = list;
            sorted.SortByPos();
            std::sort(expected.begin(), expected.end(), byPosAndNumber);
            EXPECT_TRUE(areSame(sorted, expected) && sorted.AreSortedByPos());
            EXPECT_EQ(list.AreSortedByPos(), areSame(sorted, list));
        }
    }
}

template <typename Order>
struct Counting : Order {
    static inline std::size_t steps = 0;
    static std::uint64_t key(const CTransient& transient) noexcept {
        return ++steps, Order::key(transient);
    }
    static bool less(const CTransient& one, const CTransient& other) noexcept {
        return ++steps, Order::less(one, other);
    }
};

template <typename Order>
double stepsPerTransient(List list) {
    Counting<Order>::steps = 0;
    detail::sortTransients<Counting<Order>>(list);
    return static_cast<double>(Counting<Order>::steps) / static_cast<double>(list.size());
}

TEST(Transients, NoListTakesMoreStepsToSortThanItsSizeTimesTheLogarithmOfIt) {
    for (const std::size_t size : std::initializer_list<std::size_t>{100, 3000, 100'000}) {
        const double most = 4 * std::log2(size);
        for (const auto& [name, list] : lists(size)) {
            EXPECT_LE(stepsPerTransient<detail::ByPos>(list), most) << name << " " << size;
            EXPECT_LE(stepsPerTransient<detail::ByEnergyAndPos>(list), most) << name << " " << size;
        }
        for (const char* const orderly : {"equal", "reversed", "sorted", "jittering"})
            EXPECT_LE(stepsPerTransient<detail::ByPos>(lists(size)[orderly]), 10) << orderly;
    }
}

#ifndef VELTRA_SANITIZED
TEST(Transients, SortsToTheSameResultWithoutMemoryForWorkSpace) {
    List list = lists(300'000)["few values"], expected = list, thinned = list, weakest = list;
    expected.SortByEnergyAndPos();
    weakest.ThinOutToSizeAndSortByPos(100);
    rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_AS, &before), 0);
    const rlimit none = {0, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &none), 0);  // an emulator may take no notice
    list.SortByEnergyAndPos();
    thinned.ThinOutToSizeAndSortByPos(100);
    ASSERT_EQ(setrlimit(RLIMIT_AS, &before), 0);
    EXPECT_TRUE(areSame(list, expected) && areSame(thinned, weakest));
}
#endif

TEST(Transients, UniquePositionsKeepTheFirstTransientAtEach) {
    List list;
    for (const std::int64_t pos : {5, -1, 5, 0, -1, 5}) {
        list.push_back({pos});
        list.back().reserved3 = static_cast<std::uint32_t>(list.size());
    }
    list.SortAndMakeUniquePos();
    ASSERT_EQ(list.size(), 3U);
    EXPECT_TRUE(list.AreUniqueAndSortedByPos());
    EXPECT_EQ(list[0].reserved3 * 100 + list[1].reserved3 * 10 + list[2].reserved3, 241U);
    list.push_back(list.back());
    EXPECT_TRUE(list.AreSortedByPos() && !list.AreUniqueAndSortedByPos());
}

TEST(Transients, TracesEndWithTheAddressOfTheStream) {
    const CTransient one = {-5'000'000'000, 0.1F, 0, 2.5F, {}, 1e9F};
    const List list = {one, {}};
    struct Grouped : std::numpunct<char> {
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouped));
    const std::string text = one.TraceStr() + list.TraceStr();
    std::locale::global(before);
    const std::string full =
        "CTransient: pos -5000000000, Energy 0.1, visibleweight 2.5, FreqHz 1e+09";
    const std::string second = "CTransient: pos 0, Energy 1, visibleweight 1, FreqHz 0";
    std::ostringstream address, texts;
    address << static_cast<const void*>(&std::cout);
    texts << one << list;
    EXPECT_EQ(texts.str(), full + "CTransients: size  2\n" + full + "\n" + second);
    EXPECT_EQ(text, texts.str());
    EXPECT_EQ(testing::printed([&] { one.Trace(); }), full + address.str());
    EXPECT_EQ(testing::printed([&] { one.TraceBrief(); }),
              "CTransient: pos -5000000000, Energy 0.1, FreqHz 1e+09" + address.str());
    EXPECT_EQ(testing::printed([&] { list.Trace(); }), list.TraceStr() + address.str());
    EXPECT_EQ(testing::printed([&] { list.TraceBrief(); }), "CTransients: size  2" + address.str());

    ASSERT_TRUE(traceIndents().push(3));
    std::ostringstream block;
    EXPECT_EQ(testing::printed([&] { TraceOutContainer(block, list, "onsets", 7); }), "      ");
    ASSERT_TRUE(traceIndents().push(-3));
    EXPECT_EQ(block.str(), full + second);
}

TEST(Transients, TheListAsStatementsIsTheListAgain) {
    List transients;
#define STATEMENTS                                             \
    transients.push_back({-9223372036854775807 - 1,            \
                          0.1F,                                \
                          7U,                                  \
                          -0.0F,                               \
                          {1U, 2U, 4294967295U},               \
                          std::bit_cast<float>(2143289345U)}); \
    transients.push_back({5, 1.0F, 0U, 1e-45F, {0U, 0U, 0U}, 3.4028235e+38F});
    STATEMENTS
#define TEXT_OF(statements) #statements
#define EXPANDED_TEXT_OF(statements) TEXT_OF(statements)
    const auto squeezed = [](std::string text) {
        std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
        return text;
    };
    EXPECT_EQ(squeezed(transients.TraceAsPushBackList()), squeezed(EXPANDED_TEXT_OF(STATEMENTS)));
    EXPECT_EQ(List().TraceAsPushBackList(), "");

    const List before = transients;
    SwapTransientCallback(transients.data(), 1024);
    EXPECT_TRUE(areSame(transients, before));
}

TEST(Transients, ArraysOfCBecomeWhatListsBecome) {
    for (const auto& [kind, list] : lists(300)) {
        for (const std::size_t size : {0U, 1U, 120U, 299U, 300U, 301U}) {
            const auto isSame = [&list = list](
                                    void (*ofList)(List&, std::size_t),
                                    std::size_t (*ofC)(VLTransient*, std::size_t, std::size_t),
                                    std::size_t given) {
                List expected = list, array = list;
                ofList(expected, given);
                auto* const records = reinterpret_cast<VLTransient*>(array.data());
                array.resize(ofC(records, array.size(), given));
                return areSame(array, expected);
            };
            EXPECT_TRUE(isSame([](List& l, std::size_t n) { l.ThinOutToSizeAndSortByPos(n); },
                               VLTransientsThinOutToSizeAndSortByPos, size))
                << kind << ' ' << size;
            EXPECT_TRUE(isSame([](List& l, std::size_t) { l.SortAndMakeUniquePos(); },
                               [](VLTransient* all, std::size_t count, std::size_t) {
                                   return VLTransientsSortAndMakeUniquePos(all, count);
                               },
                               0));
        }
    }
    VLTransient records[] = {VLTransientMake(7, 2.0F), VLTransientMake(5, 3.0F)};
    EXPECT_FALSE(VLTransientsAreSortedByPos(records, 2));
    VLTransientsSortByPos(records, 2);
    EXPECT_TRUE(records[0].pos == 5 && VLTransientsAreUniqueAndSortedByPos(records, 2));
    VLTransientsSortByEnergyAndPos(records, 2);
    EXPECT_EQ(records[0].energy, 2.0F);
    VLTransientsSortByPos(nullptr, 2);
    EXPECT_TRUE(VLTransientsAreSortedByPos(nullptr, 2));
    EXPECT_EQ(VLTransientsSortAndMakeUniquePos(nullptr, 2), 0U);

    const std::string text = "CTransient: pos 7, Energy 2, visibleweight 1, FreqHz 0";
    char buffer[64] = "?";
    EXPECT_EQ(VLTransientText(records, buffer, 1), text.size());
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(VLTransientText(records, buffer, text.size()), text.size());
    EXPECT_EQ(buffer, text.substr(0, text.size() - 1));
    VLTransientText(records, buffer, text.size() + 1);
    EXPECT_EQ(buffer, text);
    EXPECT_EQ(VLTransientText(nullptr, nullptr, 9), 0U);
}

}  // namespace
}  // namespace veltra
