// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/x86_answers.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

// A row of digits: what needs no wide registers, what needs those of AVX, those of AVX-512.
std::string digits(std::initializer_list<int> features) {
    std::string text;
    for (const int is : features)
        text += is != 0 ? '1' : '0';
    return text.insert(13, " ").insert(8, " ");
}

std::string told(const ProcessorFeatures& f) {
    return digits({f.sse, f.sse2, f.sse3, f.ssse3, f.sse41, f.sse42, f.pclmulqdq, f.gfni, f.avx,
                   f.avx2, f.bmi, f.bmi2, f.vpclmulqdq, f.avx512f, f.avx512bw, f.avx512dq,
                   f.avx512vl, f.avx512vbmi, f.avx512vbmi2});
}

TEST(X86Answers, WideRegistersCountWhereTheSystemSavesThemAndTheirParentsAreThere) {
    const char *all = "11111111 11111 111111", *avx = "11111111 11111 000000",
               *none = "11111111 00000 000000";
    for (const auto& [saved, expected] : {std::pair(0xE7U, all),
                                          {0xE6U, all},
                                          {0xC7U, avx},
                                          {0xA7U, avx},
                                          {0x67U, avx},
                                          {0x07U, avx},
                                          {0xE5U, none},
                                          {0xE3U, none},
                                          {0U, none}})
        EXPECT_EQ(told(featuresOf({~0U, ~0U, ~0U, ~0U, saved})), expected) << saved;
    EXPECT_EQ(told(featuresOf({~(1U << 28), ~0U, ~0U, ~0U, 0xE7})), none);
    EXPECT_EQ(told(featuresOf({~0U, ~0U, ~(1U << 16), ~0U, 0xE7})), avx);
    EXPECT_EQ(told(featuresOf({~0U, ~0U, 1U << 16, 0U, 0xE7})), "11111110 10000 100000");
}

#if defined(__x86_64__)
TEST(X86Answers, TheCompilersRuntimeSaysTheSameOfThisProcessor) {
#define IS(feature) __builtin_cpu_supports(feature)
    EXPECT_EQ(told(ProcessorFeatures::current()),
              digits({IS("sse"), IS("sse2"), IS("sse3"), IS("ssse3"), IS("sse4.1"), IS("sse4.2"),
                      IS("pclmul"), IS("gfni"), IS("avx"), IS("avx2"), IS("bmi"), IS("bmi2"),
                      IS("vpclmulqdq"), IS("avx512f"), IS("avx512bw"), IS("avx512dq"),
                      IS("avx512vl"), IS("avx512vbmi"), IS("avx512vbmi2")}));
}
#endif

}  // namespace
}  // namespace veltra
