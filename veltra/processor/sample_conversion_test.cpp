// SPDX-License-Identifier: MIT
#include "veltra/processor/sample_conversion.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/processor/detail/sample_kernels.h"
#include "veltra/processor/testing/float_modes.h"

namespace veltra {
namespace {

using Bytes = std::vector<unsigned char>;
using Floats = std::vector<float>;

struct Form {
    std::int32_t format;
    bool swapped;
    std::size_t size() const { return static_cast<std::size_t>(std::abs(format)); }
};

constexpr Form kForms[] = {{1, false}, {1, true}, {2, false},  {2, true},  {3, false}, {3, true},
                           {4, false}, {4, true}, {-4, false}, {-4, true}, {-8, false}};
constexpr std::span kIntegers(kForms, 8);
constexpr Form kFloat = kForms[8], kDouble = kForms[10];

void append(Bytes& bytes, Form form, std::int64_t value) {
    if (form.format == 1 && form.swapped) value += 128;
    for (std::size_t byte = 0; byte < form.size(); ++byte) {
        const std::size_t place = form.swapped ? byte : form.size() - 1 - byte;
        bytes.push_back(static_cast<unsigned char>(value >> (8 * place)));
    }
}

// Converters take any address.
float* floatsAt(void* bytes) {
    return static_cast<float*>(bytes);
}

Floats toFloats(Form form, const Bytes& bytes) {
    Floats floats(bytes.size() / form.size());
    GetConvertNToFloat(form.format, form.swapped)(floats.data(), bytes.data(), floats.size(),
                                                  nullptr);
    return floats;
}

// At most `run` samples a call.
Bytes fromFloats(Form form, const Floats& floats, std::size_t run = SIZE_MAX) {
    Bytes bytes(floats.size() * form.size());
    const ConvertFloatToNProc convert = GetConvertFloatToN(form.format, form.swapped);
    for (std::size_t at = 0; at < floats.size(); at += std::min(run, floats.size() - at))
        convert(&bytes[at * form.size()], &floats[at], std::min(run, floats.size() - at), nullptr);
    return bytes;
}

// x * 2^31 truncated and clipped, of which a format keeps the top bytes.
Bytes integersOf(Form form, const Floats& floats) {
    Bytes bytes;
    for (const float x : floats) {
        const double size = std::fabs(static_cast<double>(x));
        const auto magnitude = static_cast<std::int64_t>(size < 1 ? size * 0x1p31 : 0x7FFFFF00);
        append(bytes, form, (std::signbit(x) ? -magnitude : magnitude) >> (32 - 8 * form.format));
    }
    return bytes;
}

// With every sign, and among others every infinity, NaN and denormal.
Floats everyExponent() {
    Floats floats;
    for (std::uint32_t top = 0; top < 0x200; ++top)
        for (std::uint32_t low : {0U, 1U, 0x100U, 0x2AAAAAU, 0x400000U, 0x7FFF00U, 0x7FFFFFU})
            floats.push_back(std::bit_cast<float>(top << 23 | low));
    return floats;
}

// `run` with each variant in force that runs here.
template <class Run>
void withEveryVariant(KernelFamily& family, Run run) {
    for (std::size_t i = 0; i < family.variantCount(); ++i) {
        if (!family.use(family.variantName(i))) continue;
        SCOPED_TRACE(family.variantName(i));
        run();
    }
    family.useBest();
}

TEST(SampleConversion, IntegersBecomeTheirExactFractionAndFloatsTheTruncatedClippedInteger) {
    const Floats floatsOfAllKinds = everyExponent();
    const auto expectExact = [&](const Form form) {
        for (const std::size_t run : {64U, 8192U})
            EXPECT_EQ(fromFloats(form, floatsOfAllKinds, run), integersOf(form, floatsOfAllKinds))
                << form.format;
        const int bits = 8 * form.format;
        const std::int64_t half = std::int64_t{1} << (bits - 1);
        const std::int64_t step = bits == 32 ? 4099 : 1;
        for (std::int64_t start = -half; start < half; start += 4096 * step) {
            Bytes bytes;
            Floats fractions;
            for (std::int64_t i = start; i < std::min(half, start + 4096 * step); i += step) {
                append(bytes, form, i);
                const std::int64_t kept = bits == 32 ? i - (i & 0xFF) : i;
                fractions.push_back(std::ldexp(static_cast<float>(kept), 1 - bits));
            }
            const Floats floats = toFloats(form, bytes);
            ASSERT_EQ(fromFloats(kFloat, floats), fromFloats(kFloat, fractions)) << start;
            ASSERT_EQ(fromFloats(form, floats), integersOf(form, floats)) << start;
        }
    };
    withEveryVariant(detail::sampleKernels,
                     [&] { std::for_each(kIntegers.begin(), kIntegers.end(), expectExact); });
}

// All 2^32 floats and 32-bit samples, in runs that take either way. Takes minutes:
//     veltra_processor_test --gtest_also_run_disabled_tests --gtest_filter=*EveryPattern*
TEST(SampleConversion, DISABLED_EveryPatternIsConvertedAlikeByEveryVariant) {
    Bytes stream(4 * 4096);
    for (std::uint64_t first = 0; first < 1ULL << 32; first += 4096) {
        for (std::uint32_t i = 0; i < 4096; ++i) {
            const std::uint32_t pattern = static_cast<std::uint32_t>(first) + i;
            std::memcpy(&stream[i * sizeof pattern], &pattern, sizeof pattern);
        }
        const Floats floats = toFloats(kFloat, stream);
        for (const Form form : kIntegers) {
            ASSERT_TRUE(detail::sampleKernels.use("plain"));
            const Bytes expected = fromFloats(form, floats);
            const Bytes samples = fromFloats(kFloat, toFloats(form, stream));
            withEveryVariant(detail::sampleKernels, [&] {
                for (const std::size_t run : {128U, 4096U})
                    ASSERT_EQ(fromFloats(form, floats, run), expected) << form.format << first;
                ASSERT_EQ(fromFloats(kFloat, toFloats(form, stream)), samples) << form.format;
            });
        }
    }
}

// Bits of floats, halves of their distance and the neighbours of both, below and above the floats.
std::vector<double> doublesOfAllKinds() {
    std::vector<double> doubles;
    for (std::uint64_t top = 0; top < 0x1000; ++top)
        for (const std::uint64_t low :
             {0x0ULL, 0x1ULL, 0xFFFFFFFULL, 0x10000000ULL, 0x10000001ULL, 0x30000000ULL,
              0x8000000000000ULL, 0xFFFFFEFFFFFFFULL, 0xFFFFFF0000000ULL, 0xFFFFFFFFFFFFFULL})
            doubles.push_back(std::bit_cast<double>(top << 52 | low));
    return doubles;
}

TEST(SampleConversion, DoublesBecomeTheNearestFloatAndFloatsTheirDouble) {
    const std::vector<double> doubles = doublesOfAllKinds();
    const Floats floats = everyExponent();
    Bytes bytes(doubles.size() * sizeof(double));
    std::memcpy(bytes.data(), doubles.data(), bytes.size());
    withEveryVariant(detail::float64Kernels, [&] {
        const Floats narrow = toFloats(kDouble, bytes);
        for (std::size_t i = 0; i < doubles.size(); ++i) {
            const auto bits = std::bit_cast<std::uint64_t>(doubles[i]);
            auto expected = std::bit_cast<std::uint32_t>(static_cast<float>(doubles[i]));
            if (std::isnan(doubles[i]))
                expected = static_cast<std::uint32_t>(bits >> 32 & 0x80000000U) | 0x7FC00000U |
                           static_cast<std::uint32_t>(bits >> 29 & 0x3FFFFFU);
            ASSERT_EQ(std::bit_cast<std::uint32_t>(narrow[i]), expected) << std::hex << bits;
        }
        const Bytes wide = fromFloats(kDouble, floats);
        for (std::size_t i = 0; i < floats.size(); ++i) {
            std::uint64_t bits = 0;
            std::memcpy(&bits, &wide[i * sizeof bits], sizeof bits);
            const auto narrowBits = std::bit_cast<std::uint32_t>(floats[i]);
            auto expected = std::bit_cast<std::uint64_t>(static_cast<double>(floats[i]));
            if (std::isnan(floats[i]))
                expected = std::uint64_t{narrowBits & 0x80000000U} << 32 | 0x7FF8ULL << 48 |
                           std::uint64_t{narrowBits & 0x3FFFFFU} << 29;
            ASSERT_EQ(bits, expected) << std::hex << narrowBits;
        }
    });
}

TEST(SampleConversion, NoSettingOfTheThreadsArithmeticChangesABitOrIsChanged) {
    const std::vector<double> doubles = doublesOfAllKinds();
    const Floats floats = everyExponent();
    Bytes stream(doubles.size() * sizeof(double));
    std::memcpy(stream.data(), doubles.data(), stream.size());
    for (const Form form : kForms) {
        const Bytes expectedBytes = fromFloats(form, floats);
        const Bytes expectedFloats = fromFloats(kFloat, toFloats(form, stream));
        KernelFamily& family = form.format == -8
                                   ? static_cast<KernelFamily&>(detail::float64Kernels)
                                   : detail::sampleKernels;
        withEveryVariant(family, [&] {
            const auto to = GetConvertNToFloat(form.format, form.swapped);
            const auto from = GetConvertFloatToN(form.format, form.swapped);
            for (const FloatMode& mode : kFloatModes) {
                Bytes bytes(expectedBytes.size()), ofFloats(expectedFloats.size());
                const bool isUntouched = [&] {
                    const InFloatMode inMode(mode);
                    from(bytes.data(), floats.data(), floats.size(), nullptr);
                    to(floatsAt(ofFloats.data()), stream.data(), stream.size() / form.size(),
                       nullptr);
                    return inMode.isUntouched();
                }();
                EXPECT_TRUE(isUntouched && bytes == expectedBytes && ofFloats == expectedFloats)
                    << form.format << " mode " << &mode - kFloatModes;
            }
        });
    }
}

TEST(SampleConversion, FloatStreamsAreCopiedBitByBit) {
    const Floats floats{std::bit_cast<float>(0x7FA00001U), -0.0F, 1e-45F, 0.1F};
    Bytes copied(floats.size() * sizeof(float));
    std::memcpy(copied.data(), floats.data(), copied.size());
    for (const bool swapped : {false, true}) {
        EXPECT_EQ(fromFloats({-4, swapped}, floats), copied);
        EXPECT_EQ(fromFloats(kFloat, toFloats({-4, swapped}, copied)), copied);
    }
}

// What one channel gives is proved above; every other shape must agree with it.
void expectAgreement(Form form, std::size_t count, bool stereo, bool inPlace) {
    static std::mt19937 random(1);
    std::uniform_real_distribution<float> distribution(-1.25F, 1.25F);
    Floats noise(10'000);
    std::generate(noise.begin(), noise.end(), [&] { return distribution(random); });
    Bytes arena = fromFloats(kFloat, noise);
    arena.insert(arena.begin(), 0);  // so that all three buffers lie at odd addresses
    const std::size_t first = 13, second = 17'013, stream = inPlace ? first : 22'013;
    auto* const mono = floatsAt(&arena[first]);
    auto* const other = stereo ? floatsAt(&arena[second]) : nullptr;

    Bytes expected = arena;
    const auto expectAt = [&](std::size_t at, const Bytes& bytes) {
        std::copy(bytes.begin(), bytes.end(), &expected[at]);
    };
    const auto read = [&](Form as, std::size_t at, std::size_t samples) {
        return toFloats(as, Bytes(&arena[at], &arena[at] + samples * as.size()));
    };
    const bool isWhole = form.format == 3 || form.format == -4;  // in place never split
    const bool splits = stereo && form.format != 4 && form.format != -8 && !(inPlace && isWhole);
    const Floats floats = read(form, stream, 2 * count);
    for (std::size_t i = 0; i < count; ++i) {
        expectAt(first + 4 * i, fromFloats(kFloat, {floats[splits ? 2 * i : i]}));
        if (splits) expectAt(second + 4 * i, fromFloats(kFloat, {floats[2 * i + 1]}));
    }
    GetConvertNToFloat(form.format, form.swapped)(mono, &arena[stream], count, other);
    EXPECT_EQ(arena, expected);

    Floats both;
    for (std::size_t i = 0; i < count; ++i) {
        both.push_back(read(kFloat, first + 4 * i, 1)[0]);
        if (stereo && form.format != -8) both.push_back(read(kFloat, second + 4 * i, 1)[0]);
    }
    if (!inPlace || form.format != -4) expectAt(stream, fromFloats(form, both));
    GetConvertFloatToN(form.format, form.swapped)(&arena[stream], mono, count, other);
    EXPECT_EQ(arena, expected);
}

TEST(SampleConversion, TwoChannelsAndInPlaceAgreeWithOneChannelAndNothingElseIsWritten) {
    for (const Form form : kForms)
        for (const std::size_t count : {0U, 1U, 2U, 5U, 64U, 255U, 256U, 257U, 1000U})
            for (const int shape : {0, 1, 2, 3}) {
                SCOPED_TRACE(::testing::Message() << form.format << form.swapped << count << shape);
                expectAgreement(form, count, shape / 2 != 0, shape % 2 != 0);
            }
}

TEST(SampleConversion, UnknownFormatsAndNullBuffersDoNothing) {
    Floats values{0.5F, 0.25F, 0.125F};
    const auto convert = [&](Form form, float* to, const float* from) {
        GetConvertNToFloat(form.format, form.swapped)(to, from, 1, &values[2]);
        GetConvertFloatToN(form.format, form.swapped)(to, from, 1, &values[2]);
    };
    for (const std::int32_t format : {INT32_MIN, -7, -3, -2, -1, 0, 5, 8, 24, INT32_MAX}) {
        convert({format, false}, &values[0], &values[1]);
        convert({format == -7 ? -8 : format, true}, &values[0], &values[1]);
    }
    for (const Form form : kForms) {
        convert(form, nullptr, &values[1]);
        convert(form, &values[0], nullptr);
    }
    EXPECT_EQ(values, (Floats{0.5F, 0.25F, 0.125F}));
}

}  // namespace
}  // namespace veltra
