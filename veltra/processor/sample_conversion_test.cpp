#include "veltra/processor/sample_conversion.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <span>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

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
constexpr std::span<const Form> kIntegers(kForms, 8);

void append(Bytes& bytes, Form form, std::int64_t value) {
    if (form.format == 1 && form.swapped) value += 128;
    for (std::size_t byte = 0; byte < form.size(); ++byte) {
        const std::size_t place = form.swapped ? byte : form.size() - 1 - byte;
        bytes.push_back(static_cast<unsigned char>(value >> (8 * place)));
    }
}

Floats toFloats(Form form, const Bytes& bytes) {
    Floats floats(bytes.size() / form.size());
    GetConvertNToFloat(form.format, form.swapped)(floats.data(), bytes.data(), floats.size(),
                                                  nullptr);
    return floats;
}

Bytes fromFloats(Form form, const Floats& floats) {
    Bytes bytes(floats.size() * form.size());
    GetConvertFloatToN(form.format, form.swapped)(bytes.data(), floats.data(), floats.size(),
                                                  nullptr);
    return bytes;
}

Bytes bytesOf(const Floats& floats) {
    Bytes bytes(floats.size() * sizeof(float));
    if (!bytes.empty()) std::memcpy(bytes.data(), floats.data(), bytes.size());
    return bytes;
}

float* floatsAt(unsigned char* bytes) {
    return reinterpret_cast<float*>(bytes);
}

// Runs `convert` on an odd address at which `before` lies; only `after` may then be different.
template <class Convert>
void expectOnly(const Bytes& before, const Bytes& after, Convert convert) {
    constexpr std::size_t kGuard = 13;
    Bytes arena(kGuard, 0xA5);
    Bytes expected = arena;
    arena.insert(arena.end(), before.begin(), before.end());
    arena.resize(std::max(before.size(), after.size()) + 2 * kGuard, 0xA5);
    expected.insert(expected.end(), after.begin(), after.end());
    expected.insert(expected.end(), arena.begin() + static_cast<long>(expected.size()),
                    arena.end());
    convert(arena.data() + kGuard);
    EXPECT_EQ(arena, expected);
}

TEST(SampleConversion, EveryIntegerBecomesItsExactFractionAndComesBack) {
    for (const Form form : kIntegers) {
        const int bits = 8 * form.format;
        const std::int64_t half = std::int64_t{1} << (bits - 1);
        const std::int64_t step = bits == 32 ? 4099 : 1;
        for (std::int64_t start = -half; start < half; start += 4096 * step) {
            Bytes bytes;
            Floats expected;
            Bytes back;
            for (std::int64_t i = start; i < std::min(half, start + 4096 * step); i += step) {
                const std::int64_t kept = bits == 32 ? i - (i & 0xFF) : i;
                append(bytes, form, i);
                expected.push_back(std::ldexp(static_cast<float>(kept), 1 - bits));
                // -1.0 is beyond the clip point of the two wide forms.
                const std::int64_t clip = bits == 32 ? 0x7FFFFF00 : half - 1;
                append(back, form, bits > 16 ? std::max(kept, -clip) : kept);
            }
            const Floats floats = toFloats(form, bytes);
            ASSERT_EQ(bytesOf(floats), bytesOf(expected)) << bits << " bits from " << start;
            ASSERT_EQ(fromFloats(form, floats), back) << bits << " bits from " << start;
        }
    }
}

TEST(SampleConversion, FloatsOfEveryExponentBecomeTheTruncatedAndClippedInteger) {
    Floats floats;
    for (std::uint32_t top = 0; top < 0x200; ++top) {  // sign and exponent
        for (std::uint32_t low : {0U, 1U, 0x100U, 0x2AAAAAU, 0x400000U, 0x7FFF00U, 0x7FFFFFU}) {
            floats.push_back(std::bit_cast<float>(top << 23 | low));
        }
    }
    for (const Form form : kIntegers) {
        Bytes expected;
        for (const float x : floats) {
            const double size = std::fabs(static_cast<double>(x));
            const auto magnitude = static_cast<std::int64_t>(size < 1 ? size * 0x1p31 : 0x7FFFFF00);
            const std::int64_t result = std::signbit(x) ? -magnitude : magnitude;
            append(expected, form, result >> (32 - 8 * form.format));
        }
        EXPECT_EQ(fromFloats(form, floats), expected) << form.format << form.swapped;
    }
}

TEST(SampleConversion, FullScaleClippingAndTinyValuesGiveTheDocumentedIntegers) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    for (const float x : {1.0F, 1.5F, kInfinity, kNan}) {
        EXPECT_EQ(fromFloats({1, true}, {x, -x}), (Bytes{255, 0}));
        EXPECT_EQ(fromFloats({2, false}, {x, -x}), (Bytes{0x7F, 0xFF, 0x80, 0}));
        EXPECT_EQ(fromFloats({3, true}, {x, -x}), (Bytes{0xFF, 0xFF, 0x7F, 1, 0, 0x80}));
        EXPECT_EQ(fromFloats({4, false}, {x, -x}), (Bytes{0x7F, 0xFF, 0xFF, 0, 0x80, 0, 1, 0}));
    }
    EXPECT_EQ(fromFloats({1, false}, {0.0F, -0.0F, -1e-9F, -1e-10F}), (Bytes{0, 0, 255, 0}));
    EXPECT_EQ(fromFloats({4, false}, {0.99999994F}), (Bytes{0x7F, 0xFF, 0xFF, 0x80}));
}

TEST(SampleConversion, FloatStreamsAreCopiedBitByBitAndDoublesAreRoundedOrWidened) {
    const Floats floats{std::bit_cast<float>(0x7FA00001U), -0.0F, 1e-45F, 0.1F};
    EXPECT_EQ(fromFloats({-4, true}, floats), bytesOf(floats));
    EXPECT_EQ(bytesOf(toFloats({-4, true}, bytesOf(floats))), bytesOf(floats));

    const double doubles[] = {0.1, -1e300, 1e-45, 1.0 + 0x1p-24, 1.0 + 0x3p-24};
    Bytes bytes(sizeof doubles);
    std::memcpy(bytes.data(), doubles, sizeof doubles);
    const Floats narrow{0.1F, -std::numeric_limits<float>::infinity(), 1e-45F, 1.0F,
                        1.0F + 0x1p-22F};
    EXPECT_EQ(toFloats({-8, false}, bytes), narrow);
    EXPECT_EQ(toFloats({-8, false}, fromFloats({-8, false}, narrow)), narrow);
}

// What one channel gives is proved above; every other shape must agree with it.
TEST(SampleConversion, ToFloatsTwoChannelsAndInPlaceAgreeAndNothingElseIsWritten) {
    std::mt19937 random(1);
    for (const Form form : kForms) {
        const auto convert = GetConvertNToFloat(form.format, form.swapped);
        for (const std::size_t count : {0U, 1U, 2U, 5U, 64U}) {
            SCOPED_TRACE(testing::Message() << form.format << form.swapped << " x " << count);
            Bytes stream(2 * count * form.size());
            std::generate(stream.begin(), stream.end(), [&] { return random() & 0xFFU; });
            const Bytes all = bytesOf(toFloats(form, stream));
            const Bytes one(all.begin(), all.begin() + static_cast<long>(all.size() / 2));
            Bytes two[2];
            for (std::size_t i = 0; i < all.size(); ++i) {
                two[i / 4 % 2].push_back(all[i]);
            }
            if (form.format == 4 || form.format == -8) two[0] = one, two[1].clear();
            const bool unsplit = form.format == 3 || form.format == -4;
            const Bytes& firstInPlace = form.format == -4 ? stream : unsplit ? one : two[0];

            expectOnly({}, one,
                       [&](auto* at) { convert(floatsAt(at), stream.data(), count, nullptr); });
            expectOnly(stream, one, [&](auto* at) { convert(floatsAt(at), at, count, nullptr); });
            expectOnly({}, two[1], [&](auto* second) {
                expectOnly({}, two[0], [&](auto* at) {
                    convert(floatsAt(at), stream.data(), count, floatsAt(second));
                });
            });
            expectOnly({}, unsplit ? Bytes{} : two[1], [&](auto* second) {
                expectOnly(stream, firstInPlace,
                           [&](auto* at) { convert(floatsAt(at), at, count, floatsAt(second)); });
            });
        }
    }
}

TEST(SampleConversion, FromFloatsTwoChannelsAndInPlaceAgreeAndNothingElseIsWritten) {
    std::mt19937 random(2);
    std::uniform_real_distribution<float> distribution(-1.25F, 1.25F);
    for (const Form form : kForms) {
        const auto convert = GetConvertFloatToN(form.format, form.swapped);
        for (const std::size_t count : {0U, 1U, 2U, 5U, 64U}) {
            SCOPED_TRACE(testing::Message() << form.format << form.swapped << " x " << count);
            Floats first(count);
            Floats second(count + 1);  // never null
            Floats both;
            for (std::size_t i = 0; i < count; ++i) {
                both.push_back(first[i] = distribution(random));
                both.push_back(second[i] = distribution(random));
            }
            for (const bool stereo : {false, true}) {
                const float* other = stereo ? second.data() : nullptr;
                const Bytes after = fromFloats(form, stereo && form.format != -8 ? both : first);
                expectOnly({}, after, [&](auto* at) { convert(at, first.data(), count, other); });
                expectOnly(bytesOf(first), form.format == -4 ? Bytes{} : after,
                           [&](auto* at) { convert(at, floatsAt(at), count, other); });
            }
        }
    }
}

TEST(SampleConversion, UnknownFormatsAndNullBuffersDoNothing) {
    float values[] = {0.5F, 0.25F};
    float other = 0.125F;
    const auto convertAll = [&](Form form, float* destination, const float* source) {
        GetConvertNToFloat(form.format, form.swapped)(destination, source, 1, &other);
        GetConvertFloatToN(form.format, form.swapped)(destination, source, 1, &other);
    };
    for (const std::int32_t format : {INT32_MIN, -7, -3, -2, -1, 0, 5, 8, 24, INT32_MAX}) {
        convertAll({format, false}, values, &other);
        convertAll({format == -7 ? -8 : format, true}, values, &other);
    }
    for (const Form form : kForms) {
        convertAll(form, nullptr, values);
        convertAll(form, values, nullptr);
    }
    EXPECT_TRUE(values[0] == 0.5F && values[1] == 0.25F && other == 0.125F);
}

}  // namespace
}  // namespace veltra
