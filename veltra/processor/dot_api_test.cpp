// SPDX-License-Identifier: MIT
#include "veltra/processor/dot_api.h"

#include "veltra/platform/processor_features.h"

#include <climits>
#include <cstdlib>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace veltra {
namespace {

using Family = ProcessorFeatures::Family;

// A machine that the test invents.
class DotAPI : public testing::Test {
protected:
    static constexpr const char* kTexts[] = {"SSE optimizations",
                                             "SSE3 optimizations",
                                             "SSE optimizations",
                                             "AltiVec G4 optimizations",
                                             "AltiVec G5 optimizations",
                                             "optimizations off",
                                             "debug mode"};
    static inline ProcessorFeatures machine;

    static void play(const ProcessorFeatures& features, bool debug) {
        machine = features;
        CDotAPI::SetDebugMode(debug);
        CDotAPI::Init();
        CDotAPI::Override(CDotAPI::ProcessorID());
    }

    static ProcessorFeatures powerPc(bool altivec, std::optional<std::uint32_t> version) {
        ProcessorFeatures features;
        features.family = Family::PowerPc;
        features.altivec = altivec;
        features.processorVersion = version;
        return features;
    }

    static ProcessorFeatures x86(bool sse, bool sse3) {
        ProcessorFeatures features;
        features.family = Family::X86;
        features.sse = sse;
        features.sse3 = sse3;
        return features;
    }

    // "position:EID" for each entry, then the answers past the end.
    static std::string menu() {
        std::string text;
        const int end = static_cast<int>(CDotAPI::MenuEntries());
        for (int position = 0; position < end; ++position) {
            const int id = CDotAPI::MenuID(position);
            text += std::to_string(id);
            EXPECT_STREQ(CDotAPI::MenuText(position), kTexts[id]);
        }
        for (const int position : {end, end + 9, -2, INT_MIN}) {
            EXPECT_EQ(CDotAPI::MenuID(position), 0);
            EXPECT_EQ(CDotAPI::MenuText(position), nullptr);
        }
        EXPECT_EQ(CDotAPI::MenuID(-1), -1);
        EXPECT_EQ(CDotAPI::MenuText(-1), nullptr);
        return text;
    }

    void SetUp() override {
        ProcessorFeatures::install([]() noexcept { return machine; });
    }
    void TearDown() override {
        ProcessorFeatures::install(nullptr);
        CDotAPI::SetDebugMode(false);
        CDotAPI::Init();
    }
};

TEST_F(DotAPI, EachMachineIsDetectedAndOfferedItsMenu) {
    const struct {
        ProcessorFeatures machine;
        int id;
        const char* release;
        const char* debug;
    } rows[] = {
        {powerPc(false, 0x0008), 5, "5", "456"},  // G3
        {powerPc(false, std::nullopt), 5, "5", "456"},
        {powerPc(true, 0x000C), 3, "35", "3456"},  // 7400
        {powerPc(true, 0x0038), 3, "35", "3456"},
        {powerPc(true, 0x8001), 3, "35", "3456"},  // 7450
        {powerPc(true, 0x0039), 4, "45", "3456"},  // 970
        {powerPc(true, 0x004B), 4, "45", "3456"},  // POWER8
        {powerPc(true, std::nullopt), 4, "45", "3456"},
        {x86(true, true), 1, "15", "0156"},
        {x86(true, false), 0, "05", "056"},
        {x86(false, false), 5, "5", "456"},
        {ProcessorFeatures{}, 5, "5", "456"},
    };
    for (const auto& row : rows) {
        for (const bool debug : {false, true}) {
            play(row.machine, debug);
            EXPECT_EQ(CDotAPI::ProcessorID(), row.id) << "row " << &row - rows;
            EXPECT_EQ(menu(), debug ? row.debug : row.release) << "row " << &row - rows;
            EXPECT_EQ(CDotAPI::MaxInterleave(), 4);
            EXPECT_EQ(CDotAPI::Interleave(), row.id == 5 ? 1 : 4);
        }
    }
    CDotAPI::SetDebugMode(false);  // also after the detection
    EXPECT_EQ(menu(), "5");
}

// What emulators play is told by scripts/test-hosts; elsewhere the compiler's runtime knows.
TEST(DotAPIDetection, TheRealProcessorIsDetected) {
    int expected = CDotAPI::eID_Off;
    if (const char* variant = std::getenv("VELTRA_EXPECTED_VARIANT")) {
        expected = std::stoi(variant);
    } else {
#if defined(__x86_64__) || defined(__i386__)
        if (__builtin_cpu_supports("sse") != 0) expected = CDotAPI::eID_SSE;
        if (__builtin_cpu_supports("sse3") != 0) expected = CDotAPI::eID_SSE3;
#else
        GTEST_SKIP() << "VELTRA_EXPECTED_VARIANT is not set";
#endif
    }
    EXPECT_EQ(CDotAPI::ProcessorID(), expected);
}

TEST_F(DotAPI, AnOverrideIsInForceWhenTheMenuOffersItAndIsKeptWhenNot) {
    play(powerPc(true, 0x000C), false);
    const struct {
        int position;
        int id;
        int selection;
        int interleave;
    } steps[] = {{1, 5, 1, 1}, {-1, 5, 1, 1}, {0, 3, 0, 4}, {1, 5, 1, 1}, {2, 3, 0, 4}};
    for (const auto& step : steps) {
        CDotAPI::SetSelection(step.position);
        EXPECT_EQ(CDotAPI::ID(), step.id);
        EXPECT_EQ(CDotAPI::GetSelection(), step.selection);
        EXPECT_EQ(CDotAPI::Interleave(), step.interleave);
        EXPECT_EQ(CDotAPI::MaxInterleave(), 4);
    }

    play(powerPc(true, 0x000C), true);
    const struct {
        int asked;
        int id;
    } overrides[] = {{4, 4}, {0, 3}, {6, 6}, {3, 3}, {5, 5}, {7, 3}, {6, 6}, {-1, 3}, {4, 4}};
    for (const auto& override : overrides) {
        EXPECT_EQ(CDotAPI::Override(static_cast<CDotAPI::EID>(override.asked)), 3);
        EXPECT_EQ(CDotAPI::ID(), override.id);
        EXPECT_EQ(CDotAPI::ProcessorID(), 3);
        EXPECT_EQ(CDotAPI::Interleave(), override.id == 5 ? 1 : 4);
        EXPECT_EQ(CDotAPI::MaxInterleave(), 4);  // of the detected one, also in debug's 1
    }
    CDotAPI::SetDebugMode(false);  // takes away the entry, not the override
    EXPECT_EQ(CDotAPI::ID(), 4);
    EXPECT_EQ(CDotAPI::GetSelection(), 0);

    play(x86(true, true), true);  // past the end means variant 0, which this menu has
    CDotAPI::SetSelection(9);
    EXPECT_EQ(CDotAPI::ID(), 0);
    EXPECT_EQ(CDotAPI::GetSelection(), 0);
}

TEST_F(DotAPI, TheHistoryFlagStartsTrueAndFollowsItsSetters) {
    EXPECT_TRUE(CDotAPI::UpdateHistory());
    CDotAPI::DisableHistoryUpdate();
    EXPECT_FALSE(CDotAPI::UpdateHistory());
    CDotAPI::EnableHistoryUpdate();
    EXPECT_TRUE(CDotAPI::UpdateHistory());
}

}  // namespace
}  // namespace veltra
