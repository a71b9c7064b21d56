// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels.h"

#include "veltra/diagnostics/report_sections.h"
#include "veltra/processor/detail/kernel_choice.h"

#include <string>

#include <gtest/gtest.h>

namespace veltra {
namespace {

using Kernel = int (*)() noexcept;

constexpr detail::KernelVariant<Kernel> kVariants[] = {
    {"wide", [](const ProcessorFeatures& features) noexcept { return features.avx512f; },
     []() noexcept { return 512; }},
    {"vector", [](const ProcessorFeatures& features) noexcept { return features.altivec; },
     []() noexcept { return 128; }},
    {"plain", detail::runsEverywhere, []() noexcept { return 1; }},
};

TEST(Kernels, AFamilyIsPlainUntilTheBestThatRunsIsChosenAndUseReplacesItUntilUseBest) {
    detail::KernelChoice<Kernel> family("invented", kVariants);
    EXPECT_EQ(family.current()(), 1);
    ProcessorFeatures::install([]() noexcept {
        ProcessorFeatures features;
        features.altivec = true;
        return features;
    });
    EXPECT_EQ(family.current()(), 1);
    family.useBest();
    EXPECT_EQ(family.current()(), 128);
    EXPECT_FALSE(family.use("wide"));
    EXPECT_FALSE(family.use("none"));
    EXPECT_STREQ(family.inForce(), "vector");
    EXPECT_TRUE(family.use("plain"));
    EXPECT_EQ(family.current()(), 1);
    EXPECT_STREQ(family.inForce(), "plain");

    EXPECT_NE(ProcessorFeatures::install([]() noexcept { return ProcessorFeatures{}; }), nullptr);
    family.useBest();
    EXPECT_EQ(family.current()(), 1);
    ProcessorFeatures::install(nullptr);
    EXPECT_EQ(family.current()(), 1);
    EXPECT_FALSE(family.runs(3));
    EXPECT_EQ(family.variantName(3), nullptr);
}

TEST(Kernels, EveryFamilyIsFoundByNameEndsPlainAndRunsAsItIsTold) {
    for (KernelFamily* family : KernelFamily::all()) {
        ASSERT_EQ(KernelFamily::find(family->name()), family);
        const std::size_t last = family->variantCount() - 1;
        EXPECT_STREQ(family->variantName(last), "plain");
        for (std::size_t i = 0; i <= last; ++i) {
            ASSERT_EQ(family->use(family->variantName(i)), family->runs(i));
            if (!family->runs(i)) continue;
            EXPECT_STREQ(family->inForce(), family->variantName(i));
            const std::string listed = std::string(family->name()) + ' ' + family->inForce();
            EXPECT_NE(reportSections().find(listed), std::string::npos) << listed;
        }
        family->useBest();
    }
    EXPECT_EQ(KernelFamily::find("crc"), nullptr);
}

}  // namespace
}  // namespace veltra
