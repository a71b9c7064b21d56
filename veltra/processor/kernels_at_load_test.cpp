// SPDX-License-Identifier: MIT
// A program that links the library statically and names no family: each is chosen all the same,
// before the program's own constructors run.
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/processor_features.h"
#include "veltra/processor/byte_order.h"
#include "veltra/processor/checksum.h"
#include "veltra/processor/detail/sample_kernels.h"
#include "veltra/processor/utf8_text.h"

namespace veltra {
namespace {

const bool s_wasPlainBeforeMain = detail::sampleKernels.current() == &kernels::kSamplesPlain;
int s_queries = 0;

TEST(KernelsAtLoad, TheBestIsInForceAndNoFirstCallAsksTheProcessor) {
    detail::sampleKernels.useBest();
    EXPECT_EQ(s_wasPlainBeforeMain, std::string_view(detail::sampleKernels.inForce()) == "plain");
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
