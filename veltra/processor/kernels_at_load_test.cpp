// SPDX-License-Identifier: MIT
// A program that links the library statically and names no family: each is chosen all the same,
// before the program's own constructors run, and as the environment wants it.
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/process.h"
#include "veltra/platform/processor_features.h"
#include "veltra/processor/byte_order.h"
#include "veltra/processor/checksum.h"
#include "veltra/processor/kernels.h"
#include "veltra/processor/sample_conversion.h"
#include "veltra/processor/utf8_text.h"
#include "veltra/processor/variants.h"

namespace veltra {
namespace {

std::string inForce() {
    std::string text(VLKernelsInForce(nullptr, 9), '#');
    VLKernelsInForce(text.data(), text.size() + 1);
    return text;
}

const std::string s_atLoad = inForce();
int s_queries = 0;

// By ctest VELTRA_KERNELS is "plain" in one run; in the other it chooses for crc16 alone, beside
// entries that choose nothing.
TEST(KernelsAtLoad, TheBestIsInForceWhereTheEnvironmentDoesNotWantAnother) {
    const char* const value = environmentVariable("VELTRA_KERNELS");
    const std::string_view wanted = value != nullptr ? value : "";
    std::string expected;
    for (KernelFamily* const family : KernelFamily::all()) {
        family->useBest();
        const bool isTold =
            wanted == "plain" || (wanted != "" && std::string_view(family->name()) == "crc16");
        expected += expected.empty() ? "" : ", ";
        expected += std::string(family->name()) + ' ' + (isTold ? "plain" : family->inForce());
    }
    EXPECT_EQ(s_atLoad, expected);
}

TEST(KernelsAtLoad, NoFirstCallAsksTheProcessor) {
    ProcessorFeatures::install([]() noexcept {
        ++s_queries;
        return ProcessorFeatures{};
    });
    char bytes[] = "abcd";
    PSwapLong(bytes, 1);
    EXPECT_EQ(QKCRC32(0, "123456789", 9), 0xCBF43926U);
    EXPECT_EQ(QKCRC16("123456789"), 0xE5CCU);
    EXPECT_EQ(utf8_check(bytes), 1);
    EXPECT_NE(GetConvertNToFloat(kSampleFloat64, false), nullptr);
    ProcessorFeatures::install(nullptr);
    EXPECT_EQ(s_queries, 0);
}

}  // namespace
}  // namespace veltra
