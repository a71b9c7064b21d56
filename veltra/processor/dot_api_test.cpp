// SPDX-License-Identifier: MIT
#include "veltra/processor/dot_api.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/processor_features.h"
#include "veltra/processor/variants.h"

namespace veltra {
namespace {

using Family = ProcessorFeatures::Family;

// A machine that the test invents, asked through the C functions, which hand on to the class.
struct DotAPI : ::testing::Test {
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
        VLDotAPISetDebugMode(debug);
        VLDotAPIInit();
        VLDotAPIOverride(VLDotAPIProcessorID());
    }

    static ProcessorFeatures powerPc(bool altivec, std::optional<std::uint32_t> version) {
        return {.family = Family::PowerPc, .altivec = altivec, .processorVersion = version};
    }
    static ProcessorFeatures x86(bool sse, bool sse3) {
        return {.family = Family::X86, .sse = sse, .sse3 = sse3, .processorVersion = {}};
    }

    // "position:EID" for each entry, then the answers past the end.
    static std::string menu() {
        std::string text;
        const int end = static_cast<int>(VLDotAPIMenuEntries());
        for (int position = 0; position < end; ++position) {
            text += std::to_string(VLDotAPIMenuID(position));
            EXPECT_STREQ(VLDotAPIMenuText(position), kTexts[text.back() - '0']);
        }
        for (const int position : {-1, end, end + 9, -2, INT_MIN}) {
            EXPECT_EQ(VLDotAPIMenuID(position), position == -1 ? -1 : 0);
            EXPECT_EQ(VLDotAPIMenuText(position), nullptr);
        }
        return text;
    }

    void SetUp() override {
        ProcessorFeatures::install([]() noexcept { return machine; });
    }
    void TearDown() override {
        ProcessorFeatures::install(nullptr);
        VLDotAPISetDebugMode(false);
        VLDotAPIInit();
    }
};

TEST_F(DotAPI, EachMachineIsDetectedAndOfferedItsMenu) {
    const struct {
        ProcessorFeatures machine;
        int id;
        const char *release, *debug;
    } rows[] = {{powerPc(false, 0x0008), 5, "5", "456"},  // G3
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
                {ProcessorFeatures{}, 5, "5", "456"}};
    for (const auto& row : rows) {
        for (const bool debug : {false, true}) {
            play(row.machine, debug);
            EXPECT_EQ(VLDotAPIProcessorID(), row.id) << "row " << &row - rows;
            EXPECT_EQ(menu(), debug ? row.debug : row.release) << "row " << &row - rows;
            EXPECT_EQ(VLDotAPIMaxInterleave(), 4);
            EXPECT_EQ(VLDotAPIInterleave(), row.id == 5 ? 1 : 4);
        }
    }
    VLDotAPISetDebugMode(false);  // also after the detection
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
    EXPECT_EQ(VLDotAPIProcessorID(), expected);
}

TEST_F(DotAPI, AnOverrideIsInForceWhenTheMenuOffersItAndIsKeptWhenNot) {
    play(powerPc(true, 0x000C), false);
    const struct {
        int position, id, selection, interleave;
    } steps[] = {{1, 5, 1, 1}, {-1, 5, 1, 1}, {0, 3, 0, 4}, {1, 5, 1, 1}, {2, 3, 0, 4}};
    for (const auto& step : steps) {
        VLDotAPISetSelection(step.position);
        EXPECT_EQ(VLDotAPIID(), step.id);
        EXPECT_EQ(VLDotAPIGetSelection(), step.selection);
        EXPECT_EQ(VLDotAPIInterleave(), step.interleave);
        EXPECT_EQ(VLDotAPIMaxInterleave(), 4);
    }

    play(powerPc(true, 0x000C), true);
    using Override = std::pair<int, int>;  // asked for, and in force then
    for (const auto& [asked, id] :
         {Override{4, 4}, {0, 3}, {6, 6}, {3, 3}, {5, 5}, {7, 3}, {6, 6}, {-1, 3}, {4, 4}}) {
        EXPECT_EQ(VLDotAPIOverride(asked), 3);
        EXPECT_EQ(VLDotAPIID(), id);
        EXPECT_EQ(VLDotAPIInterleave(), id == 5 ? 1 : 4);
        EXPECT_EQ(VLDotAPIMaxInterleave(), 4);  // of the detected one, also in debug's 1
    }
    VLDotAPISetDebugMode(false);  // takes away the entry, not the override
    EXPECT_EQ(VLDotAPIID(), 4);
    EXPECT_EQ(VLDotAPIGetSelection(), 0);

    play(x86(true, true), true);  // past the end means variant 0, which this menu has
    VLDotAPISetSelection(9);
    EXPECT_TRUE(VLDotAPIID() == 0 && VLDotAPIGetSelection() == 0);
    EXPECT_TRUE(CDotAPI::UpdateHistory());
    CDotAPI::DisableHistoryUpdate();
    EXPECT_FALSE(CDotAPI::UpdateHistory());
    CDotAPI::EnableHistoryUpdate();
    EXPECT_TRUE(CDotAPI::UpdateHistory());
}

}  // namespace
}  // namespace veltra
