// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/x86_answers.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

using Features = ProcessorFeatures;

constexpr X86Answers kEverything{~0U, ~0U, ~0U, ~0U, 0xE7};

// As the processor's manual numbers the bits: a feature, where it is told, and how many others
// nobody has without it.
constexpr struct {
    bool Features::*feature;
    unsigned X86Answers::*word;
    unsigned bit;
    int dependents = 0;
} kBits[] = {
    {&Features::sse, &X86Answers::basicD, 25},
    {&Features::sse2, &X86Answers::basicD, 26},
    {&Features::sse3, &X86Answers::basicC, 0},
    {&Features::pclmulqdq, &X86Answers::basicC, 1},
    {&Features::ssse3, &X86Answers::basicC, 9},
    {&Features::sse41, &X86Answers::basicC, 19},
    {&Features::sse42, &X86Answers::basicC, 20},
    {&Features::avx, &X86Answers::basicC, 28, 10},
    {&Features::bmi, &X86Answers::extendedB, 3},
    {&Features::avx2, &X86Answers::extendedB, 5},
    {&Features::bmi2, &X86Answers::extendedB, 8},
    {&Features::avx512f, &X86Answers::extendedB, 16, 5},
    {&Features::avx512dq, &X86Answers::extendedB, 17},
    {&Features::avx512bw, &X86Answers::extendedB, 30},
    {&Features::avx512vl, &X86Answers::extendedB, 31},
    {&Features::avx512vbmi, &X86Answers::extendedC, 1},
    {&Features::avx512vbmi2, &X86Answers::extendedC, 6},
    {&Features::gfni, &X86Answers::extendedC, 8},
    {&Features::vpclmulqdq, &X86Answers::extendedC, 10},
    // What the system saves: the halves of the registers that AVX has, then those of AVX-512.
    {&Features::avx, &X86Answers::saved, 1, 10},
    {&Features::avx, &X86Answers::saved, 2, 10},
    {&Features::avx512f, &X86Answers::saved, 5, 5},
    {&Features::avx512f, &X86Answers::saved, 6, 5},
    {&Features::avx512f, &X86Answers::saved, 7, 5},
};

std::ptrdiff_t countOf(const Features& features) {
    return std::count_if(std::begin(kBits), std::begin(kBits) + 19,
                         [&](const auto& row) { return features.*row.feature; });
}

TEST(X86Answers, EachFeatureHangsOnItsBitAndOnWhatTheSystemSaves) {
    EXPECT_EQ(countOf(featuresOf(kEverything)), 19);
    EXPECT_EQ(countOf(featuresOf({})), 0);
    for (const auto& [feature, word, bit, dependents] : kBits) {
        X86Answers answers = kEverything;
        answers.*word &= ~(1U << bit);
        const Features features = featuresOf(answers);
        EXPECT_FALSE(features.*feature) << bit;
        EXPECT_EQ(countOf(features), 18 - dependents) << bit;
    }
}

}  // namespace
}  // namespace veltra
