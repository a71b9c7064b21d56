#include "veltra/processor/sample_conversion.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
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

constexpr Form kIntegers[] = {{1, false}, {1, true}, {2, false}, {2, true},
                              {3, false}, {3, true}, {4, false}, {4, true}};
constexpr Form kForms[] = {{1, false}, {1, true}, {2, false},  {2, true},  {3, false}, {3, true},
                           {4, false}, {4, true}, {-4, false}, {-4, true}, {-8, false}};

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
    Bytes arena(std::max(before.size(), after.size()) + 2 * kGuard, 0xA5);
    std::copy(before.begin(), before.end(), arena.begin() + kGuard);
    Bytes expected = arena;
    std::copy(after.begin(), after.end(), expected.begin() + kGuard);
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
        for (std::uint32_t mantissa :
             {0U, 1U, 0x100U, 0x2AAAAAU, 0x400000U, 0x7FFF00U, 0x7FFFFFU}) {
            floats.push_back(std::bit_cast<float>(top << 23 | mantissa));
        }
    }
    for (const Form form : kIntegers) {
        Bytes expected;
        for (const float x : floats) {
            const double size = std::fabs(static_cast<double>(x));
            const std::int64_t magnitude =
                size < 1.0 ? static_cast<std::int64_t>(size * 2147483648.0) : 0x7FFFFF00;
            append(expected, form,
                   (std::signbit(x) ? -magnitude : magnitude) >> (32 - 8 * form.format));
        }
        EXPECT_EQ(fromFloats(form, floats), expected) << form.format << form.swapped;
    }
}

TEST(SampleConversion, FullScaleClippingAndTinyValuesGiveTheDocumentedIntegers) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        float input;
        std::int32_t of8, of16, of24, of32;
    } rows[] = {
        {1.0F, 127, 32767, 8388607, 2147483392},
        {-1.0F, -128, -32768, -8388607, -2147483392},
        {1.5F, 127, 32767, 8388607, 2147483392},
        {-1.5F, -128, -32768, -8388607, -2147483392},
        {kInfinity, 127, 32767, 8388607, 2147483392},
        {-kInfinity, -128, -32768, -8388607, -2147483392},
        {kNan, 127, 32767, 8388607, 2147483392},
        {-kNan, -128, -32768, -8388607, -2147483392},
        {0.99999994F, 127, 32767, 8388607, 2147483520},
        {-1e-9F, -1, -1, -1, -2},
        {0.0F, 0, 0, 0, 0},
        {-0.0F, 0, 0, 0, 0},
        {-1e-10F, 0, 0, 0, 0},
        {1.9F / 32768, 0, 1, 486, 124518},
    };
    for (const auto& row : rows) {
        const std::int32_t results[] = {row.of8, row.of16, row.of24, row.of32};
        for (const Form form : kIntegers) {
            Bytes expected;
            append(expected, form, results[form.format - 1]);
            EXPECT_EQ(fromFloats(form, {row.input}), expected) << row.input << " " << form.format;
        }
    }
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
TEST(SampleConversion, ToFloatsTheShapesAgreeInPlaceAndNothingElseIsWritten) {
    std::mt19937 random(1);
    for (const Form form : kForms) {
        const auto convert = GetConvertNToFloat(form.format, form.swapped);
        for (const std::size_t count : {0, 1, 2, 3, 5, 64}) {
            SCOPED_TRACE(testing::Message() << form.format << form.swapped << " x " << count);
            Bytes stream(2 * count * form.size() + 1);
            std::generate(stream.begin(), stream.end(), [&] { return random() & 0xFFU; });
            stream.pop_back();
            const Floats all = toFloats(form, stream);
            const Bytes one = bytesOf(Floats(all.begin(), all.begin() + static_cast<long>(count)));
            Floats first;
            Floats second;
            for (std::size_t i = 0; i < all.size(); ++i) {
                (i % 2 == 0 ? first : second).push_back(all[i]);
            }
            const bool splits = form.format != 4 && form.format != -8;
            const bool splitsInPlace = form.format == 1 || form.format == 2;

            expectOnly({}, one,
                       [&](auto* at) { convert(floatsAt(at), stream.data(), count, nullptr); });
            expectOnly(stream, one, [&](auto* at) { convert(floatsAt(at), at, count, nullptr); });
            expectOnly({}, splits ? bytesOf(second) : Bytes{}, [&](auto* secondAt) {
                expectOnly({}, splits ? bytesOf(first) : one, [&](auto* at) {
                    convert(floatsAt(at), stream.data(), count, floatsAt(secondAt));
                });
            });
            expectOnly({}, splitsInPlace ? bytesOf(second) : Bytes{}, [&](auto* secondAt) {
                const Bytes& after = form.format == -4 ? stream
                                     : splitsInPlace   ? bytesOf(first)
                                                       : one;
                expectOnly(stream, after,
                           [&](auto* at) { convert(floatsAt(at), at, count, floatsAt(secondAt)); });
            });
        }
    }
}

TEST(SampleConversion, FromFloatsTheShapesAgreeInPlaceAndNothingElseIsWritten) {
    std::mt19937 random(2);
    std::uniform_real_distribution<float> distribution(-1.25F, 1.25F);
    for (const Form form : kForms) {
        const auto convert = GetConvertFloatToN(form.format, form.swapped);
        for (const std::size_t count : {0, 1, 2, 3, 5, 64}) {
            SCOPED_TRACE(testing::Message() << form.format << form.swapped << " x " << count);
            Floats first(count + 1);
            Floats second(count + 1);
            Floats both;
            for (std::size_t i = 0; i < count; ++i) {
                both.push_back(first[i] = distribution(random));
                both.push_back(second[i] = distribution(random));
            }
            first.pop_back();
            const Bytes source = bytesOf(first);
            const Bytes one = fromFloats(form, first);
            const Bytes two = form.format == -8 ? one : fromFloats(form, both);

            for (const bool stereo : {false, true}) {
                const float* other = stereo ? second.data() : nullptr;
                const Bytes& after = stereo ? two : one;
                expectOnly({}, after, [&](auto* at) { convert(at, first.data(), count, other); });
                expectOnly(source, form.format == -4 ? source : after,
                           [&](auto* at) { convert(at, floatsAt(at), count, other); });
            }
        }
    }
}

TEST(SampleConversion, UnknownFormatsAndNullBuffersDoNothing) {
    for (const std::int32_t format :
         {INT32_MIN, -9, -8, -7, -5, -3, -2, -1, 0, 5, 8, 24, INT32_MAX}) {
        for (const bool swapped : {false, true}) {
            if (format == -8 && !swapped) continue;
            float values[] = {0.5F, 0.25F};
            float others[] = {0.125F};
            GetConvertNToFloat(format, swapped)(values, others, 1, others);
            GetConvertFloatToN(format, swapped)(values, others, 1, others);
            EXPECT_TRUE(values[0] == 0.5F && values[1] == 0.25F && others[0] == 0.125F) << format;
        }
    }
    for (const Form form : kForms) {
        float value = 0.5F;
        GetConvertNToFloat(form.format, form.swapped)(nullptr, &value, 1, &value);
        GetConvertNToFloat(form.format, form.swapped)(&value, nullptr, 1, nullptr);
        GetConvertFloatToN(form.format, form.swapped)(nullptr, &value, 1, &value);
        GetConvertFloatToN(form.format, form.swapped)(&value, nullptr, 1, nullptr);
        EXPECT_EQ(value, 0.5F);
    }
}

}  // namespace
}  // namespace veltra
