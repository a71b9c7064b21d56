// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/report_sections.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/processor/detail/checksum_kernels.h"
#include "veltra/processor/detail/sample_kernels.h"
#include "veltra/processor/detail/swap_kernels.h"
#include "veltra/processor/detail/utf8_kernels.h"
#include "veltra/processor/variants.h"

namespace veltra {
namespace {

using Kernel = int (*)() noexcept;

constexpr detail::KernelVariant<Kernel> kVariants[] = {
    {"wide", [](const ProcessorFeatures& features) noexcept { return features.avx512f; },
     []() noexcept { return 512; }},
    {"vector", [](const ProcessorFeatures& features) noexcept { return features.altivec; },
     []() noexcept { return 128; }},
    {"plain", detail::runsEverywhere, []() noexcept { return 1; }}};

bool agree(Kernel one, Kernel other) noexcept {
    return one() == other();
}

TEST(Kernels, AFamilyIsPlainUntilTheBestThatRunsIsChosenAndUseReplacesItUntilUseBest) {
    detail::KernelChoice<Kernel> family("invented", kVariants, agree);
    EXPECT_EQ(family.current()(), 1);
    ProcessorFeatures::install([]() noexcept {
        ProcessorFeatures features;
        features.altivec = true;
        return features;
    });
    EXPECT_EQ(family.current()(), 1);
    family.useBest();
    EXPECT_EQ(family.current()(), 128);
    EXPECT_FALSE(family.use("wide") || family.use("none"));
    EXPECT_STREQ(family.inForce(), "vector");
    EXPECT_TRUE(family.use("plain") && family.current()() == 1);
    EXPECT_STREQ(family.inForce(), "plain");
    EXPECT_NE(ProcessorFeatures::install([]() noexcept { return ProcessorFeatures{}; }), nullptr);
    family.useBest();
    EXPECT_EQ(family.current()(), 1);
    ProcessorFeatures::install(nullptr);
    EXPECT_EQ(family.current()(), 1);
    EXPECT_FALSE(family.runs(3));
    EXPECT_EQ(family.variantName(3), nullptr);
}

using Names = std::map<std::string, std::string>;

// What each family runs as, with these features beside those that go before them in time.
struct Processor {
    ProcessorFeatures::Family family;
    std::vector<bool ProcessorFeatures::*> features;
    Names changed;
};

TEST(Kernels, EachProcessorGetsTheBestVariantThatItRuns) {
    using F = ProcessorFeatures;
    const F::Family host = F::current().family;
    const Processor rows[] = {
        {F::Family::X86, {&F::sse}, {}},
        {F::Family::X86, {&F::sse2, &F::sse3}, {{"float64", "sse2"}, {"utf8", "sse2"}}},
        {F::Family::X86, {&F::ssse3}, {{"swaps", "ssse3"}}},
        {F::Family::X86, {&F::sse41, &F::sse42}, {{"samples", "sse41"}}},
        {F::Family::X86, {&F::pclmulqdq}, {{"crc16", "pclmulqdq"}, {"crc32", "pclmulqdq"}}},
        {F::Family::X86, {&F::avx, &F::avx2}, {{"samples", "avx2"}, {"swaps", "avx2"}}},
        {F::Family::X86, {&F::bmi, &F::bmi2}, {{"utf8", "avx2"}}},
        {F::Family::X86,
         {&F::vpclmulqdq},
         {{"crc16", "vpclmulqdq-avx2"}, {"crc32", "vpclmulqdq-avx2"}}},
        {F::Family::X86, {&F::avx512f, &F::avx512bw}, {{"utf8", "avx512"}}},
        {F::Family::X86, {&F::avx512vl, &F::avx512dq}, {}},
        {F::Family::X86, {&F::avx512vbmi}, {{"samples", "avx512vbmi"}, {"swaps", "avx512vbmi"}}},
        {F::Family::X86,
         {&F::gfni},
         {{"crc16", "vpclmulqdq-avx512"}, {"crc32", "vpclmulqdq-avx512"}}},
        {F::Family::Arm, {}, {}},
        {F::Family::Arm, {&F::crc32}, {{"crc32", "crc"}}},
        {F::Family::Arm,
         {&F::asimd},
         {{"float64", "neon"}, {"samples", "neon"}, {"swaps", "neon"}, {"utf8", "neon"}}},
        {F::Family::Arm, {&F::pmull}, {{"crc16", "pmull"}, {"crc32", "pmull"}}},
    };
    static F played;
    Names expected;
    F::install([]() noexcept { return played; });
    for (const Processor& row : rows) {
        if (row.family != host) continue;
        for (const auto feature : row.features)
            played.*feature = true;
        for (const auto& [family, variant] : row.changed)
            expected[family] = variant;
        for (KernelFamily* const family : KernelFamily::all()) {
            family->useBest();
            const auto known = expected.find(family->name());
            EXPECT_EQ(family->inForce(), known != expected.end() ? known->second : "plain")
                << family->name() << " in row " << &row - rows;
        }
    }
    F::install(nullptr);
    for (KernelFamily* const family : KernelFamily::all())
        family->useBest();
}

TEST(Kernels, AVariantThatGivesWrongResultsIsReplacedByTheBestThatDoesNot) {
    static constexpr detail::KernelVariant<Kernel> kRows[] = {
        {"wrong", detail::runsEverywhere, []() noexcept { return 2; }},
        {"absent", [](const ProcessorFeatures&) noexcept { return false; },
         []() noexcept { return 1; }},
        {"worse", detail::runsEverywhere, []() noexcept { return 3; }},
        {"sound", detail::runsEverywhere, []() noexcept { return 1; }},
        {"plain", detail::runsEverywhere, []() noexcept { return 1; }}};
    detail::KernelChoice<Kernel> family("invented", kRows, agree);
    family.useBest();
    LogWorld world;
    EXPECT_FALSE(family.prepare());
    EXPECT_STREQ(family.inForce(), "sound");
    EXPECT_TRUE(family.prepare());
    EXPECT_EQ(world.message(),
              "kernels: invented wrong gives wrong results here, sound is used instead");
}

TEST(Kernels, EveryVariantPassesTheSelfCheckAndNoneWithAWrongFunctionDoes) {
    for (KernelFamily* const family : KernelFamily::all()) {
        for (std::size_t i = 0; i < family->variantCount(); ++i)
            EXPECT_TRUE(!family->use(family->variantName(i)) || family->prepare())
                << family->name() << ' ' << family->variantName(i);
        family->useBest();
    }
    EXPECT_TRUE(VLKernelsPrepare());

    const auto expectFound = [](const auto& family, const auto& good, const auto& spoil) {
        auto wrong = good;
        spoil(wrong);
        EXPECT_TRUE(family.areAlike(&good, &good));
        EXPECT_FALSE(family.areAlike(&wrong, &good));
    };
    using kernels::SwapKernels, kernels::Utf8Kernels;
    for (const auto swap : {&SwapKernels::words16, &SwapKernels::words32, &SwapKernels::words64,
                            &SwapKernels::samples24, &SwapKernels::signs8})
        expectFound(detail::swapKernels, kernels::kSwapPlain, [&](SwapKernels& wrong) {
            wrong.*swap = [](unsigned char*, const unsigned char*, std::size_t) noexcept {};
        });
    for (std::size_t i = 0; i < 18; ++i)
        expectFound(detail::sampleKernels, kernels::kSamplesPlain, [&](auto& wrong) {
            auto& converters = i < 16 ? wrong.integers[i / 4][i / 2 % 2] : wrong.float32;
            if (i % 2 == 0)
                converters.toFloat = [](float*, const void*, std::size_t, float*) noexcept {};
            else
                converters.fromFloat = [](void*, const float*, std::size_t, const float*) noexcept {
                };
        });
    expectFound(detail::sampleKernels, kernels::kSamplesPlain, [](auto& wrong) {
        wrong.integers[1][0].toFloat = [](float* to, const void* from, std::size_t count,
                                          float* other) noexcept {
            kernels::kSamplesPlain.integers[1][0].toFloat(to, from, count, other);
            if (other != nullptr) other[count - 1] += 1;
        };
    });
    const auto expectUtf8Found = [&](const auto& spoil) {
        expectFound(detail::utf8Kernels, kernels::kUtf8Plain, spoil);
    };
    expectUtf8Found([](Utf8Kernels& w) {
        w.asciiLength = [](const char*) noexcept { return std::size_t{0}; };
    });
    expectUtf8Found([](Utf8Kernels& w) {
        w.asciiLengthWithin = [](const char*, std::size_t limit) noexcept { return limit; };
    });
    for (const bool answer : {false, true})
        expectUtf8Found([&](Utf8Kernels& w) {
            w.check = answer ? [](const char*) noexcept { return true; }
                             : [](const char*) noexcept { return false; };
        });
    EXPECT_FALSE(detail::crc32Kernels.areAlike(kernels::crc16Plain, kernels::crc32Plain));
}

TEST(Kernels, EveryFamilyIsFoundByNameEndsPlainAndRunsAsItIsToldThroughBothFaces) {
    const auto families = KernelFamily::all();
    ASSERT_EQ(VLKernelFamilyCount(), families.size());
    for (std::uint32_t index = 0; index < families.size(); ++index) {
        const KernelFamily& family = *families[index];
        const char* const name = VLKernelFamilyName(index);
        ASSERT_EQ(KernelFamily::find(name), &family);
        const char* const best = VLKernelFamilyInForce(name);
        const std::uint32_t count = VLKernelVariantCount(name);
        ASSERT_EQ(count, family.variantCount());
        for (std::uint32_t i = 0; i < count; ++i) {
            const char* const variant = VLKernelVariantName(name, i);
            EXPECT_EQ(variant, family.variantName(i));
            EXPECT_EQ(VLKernelVariantRuns(name, i), family.runs(i));
            ASSERT_EQ(VLKernelFamilyUse(name, variant), family.runs(i));
            if (!family.runs(i)) continue;
            EXPECT_STREQ(family.inForce(), variant);
            const std::string listed = std::string(name) + ' ' + variant;
            EXPECT_NE(reportSections().find(listed), std::string::npos) << listed;
        }
        EXPECT_STREQ(VLKernelFamilyInForce(name), "plain") << "the last";
        EXPECT_FALSE(VLKernelVariantName(name, count) || VLKernelVariantRuns(name, count));
        EXPECT_FALSE(VLKernelFamilyUse(name, "none"));
        EXPECT_TRUE(VLKernelFamilyUse(name, nullptr));
        EXPECT_STREQ(family.inForce(), best);
    }
    EXPECT_EQ(VLKernelFamilyName(VLKernelFamilyCount()), nullptr);
    for (const char* name : {static_cast<const char*>(nullptr), "crc"}) {
        EXPECT_EQ(VLKernelVariantCount(name), 0U);
        EXPECT_FALSE(VLKernelVariantName(name, 0) || VLKernelVariantRuns(name, 0));
        EXPECT_FALSE(VLKernelFamilyInForce(name) || VLKernelFamilyUse(name, nullptr));
    }
}

}  // namespace
}  // namespace veltra
