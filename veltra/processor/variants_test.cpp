// SPDX-License-Identifier: MIT
#include "veltra/processor/variants.h"

#include "veltra/processor/dot_api.h"
#include "veltra/processor/kernels.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(Variants, FamiliesAnswerByNameWhatTheirClassAnswers) {
    const auto families = KernelFamily::all();
    ASSERT_EQ(VLKernelFamilyCount(), families.size());
    for (std::uint32_t index = 0; index < families.size(); ++index) {
        const char* const name = VLKernelFamilyName(index);
        ASSERT_STREQ(name, families[index]->name());
        const std::uint32_t count = VLKernelVariantCount(name);
        ASSERT_EQ(count, families[index]->variantCount());
        for (std::uint32_t variant = 0; variant <= count; ++variant) {
            EXPECT_EQ(VLKernelVariantName(name, variant), families[index]->variantName(variant));
            EXPECT_EQ(VLKernelVariantRuns(name, variant), families[index]->runs(variant));
        }
        const char* const best = VLKernelFamilyInForce(name);
        EXPECT_TRUE(VLKernelFamilyUse(name, "plain"));
        EXPECT_STREQ(families[index]->inForce(), "plain");
        EXPECT_FALSE(VLKernelFamilyUse(name, "none"));
        EXPECT_STREQ(VLKernelFamilyInForce(name), "plain");
        EXPECT_TRUE(VLKernelFamilyUse(name, nullptr));
        EXPECT_STREQ(VLKernelFamilyInForce(name), best);
    }
    EXPECT_EQ(VLKernelFamilyName(VLKernelFamilyCount()), nullptr);
    for (const char* name : {static_cast<const char*>(nullptr), "", "crc"}) {
        EXPECT_EQ(VLKernelVariantCount(name), 0U);
        EXPECT_EQ(VLKernelVariantName(name, 0), nullptr);
        EXPECT_FALSE(VLKernelVariantRuns(name, 0));
        EXPECT_EQ(VLKernelFamilyInForce(name), nullptr);
        EXPECT_FALSE(VLKernelFamilyUse(name, "plain") || VLKernelFamilyUse(name, nullptr));
    }
}

TEST(Variants, TheHostsLoopsAnswerAsTheirClass) {
    ProcessorFeatures::install([]() noexcept {
        ProcessorFeatures features;
        features.family = ProcessorFeatures::Family::PowerPc;
        features.altivec = true;
        features.processorVersion = 0x000C;
        return features;
    });
    VLDotAPISetDebugMode(true);
    VLDotAPIInit();
    EXPECT_EQ(VLDotAPIProcessorID(), kVLDotAPIAltiVecG4);
    EXPECT_EQ(VLDotAPIMenuEntries(), 4U);
    EXPECT_STREQ(VLDotAPIMenuText(1), "AltiVec G5 optimizations");
    EXPECT_EQ(VLDotAPIMenuID(1), kVLDotAPIAltiVecG5);
    VLDotAPISetSelection(2);
    EXPECT_EQ(VLDotAPIGetSelection(), 2);
    EXPECT_EQ(VLDotAPIID(), kVLDotAPIOff);
    EXPECT_EQ(VLDotAPIInterleave(), 1);
    EXPECT_EQ(VLDotAPIMaxInterleave(), 4);
    EXPECT_EQ(VLDotAPIOverride(kVLDotAPIDebug), kVLDotAPIAltiVecG4);
    EXPECT_EQ(CDotAPI::ID(), CDotAPI::eID_Debug);
    ProcessorFeatures::install(nullptr);
    VLDotAPISetDebugMode(false);
    VLDotAPIInit();
    VLDotAPIOverride(VLDotAPIProcessorID());
}

}  // namespace
}  // namespace veltra
