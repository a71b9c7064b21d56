// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/color_management.h"

#include "veltra/base/string_object.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/infrastructure/calibrated_rgb_color.h"
#include "veltra/infrastructure/detail/color_space.h"
#include "veltra/infrastructure/profiles/generic_rgb_profile.h"
#include "veltra/platform/resources.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <latch>

namespace veltra {
namespace {

#if defined(VELTRA_LCMS)
constexpr bool kReadsProfiles = true;
#else
constexpr bool kReadsProfiles = false;
#endif

// Profiles have 16 bits after the point; next to black the curve of sRGB makes 13 of each.
constexpr double kTolerance = 5e-4;

const std::string kProfile(kGenericRgbProfile.begin(), kGenericRgbProfile.end());

// A folder of resources, empty at first.
struct Resources {
    Resources() { setResourceFolder(folder.path.string()); }
    ~Resources() { setResourceFolder({}); }

    void put(const std::string& name, const std::string& bytes) const {
        testing::putText(folder.path / name, bytes);
    }

    const testing::TemporaryFolder folder;
};

const VLColorSpace* spaceOf(const std::string& name) {
    const VLString* const text = VLStringCreateWithUtf8(name.data(), name.size());
    const VLColorSpace* const space = VLCreateCGColorSpaceFromResource(text);
    EXPECT_EQ(VLCreateNSColorSpaceFromResource(text), space);
    VLStringRelease(text);
    return space;
}

double gammaToSrgb(double component) {
    const double linear = std::pow(component, 1.8);
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

TEST(ColorManagement, TheProfileTheFormulaAndTheLawOfTheSpaceAgree) {
    const Resources resources;
    resources.put("copy.icc", kProfile);
    std::vector<const VLColorSpace*> spaces{VLGetCalibratedRGB_CGColorSpace(),
                                            &kCalibratedRgbByFormula};
    if (kReadsProfiles) spaces.push_back(spaceOf("copy.icc"));
    for (const VLColorSpace* const space : spaces) {
        ASSERT_EQ(VLColorSpaceComponentCount(space), 3U);
        const double tolerance = space->transform != nullptr ? kTolerance : 1e-6;
        for (int step = 0; step < 11 * 11 * 11; ++step) {
            const auto part = [](int tenths) { return static_cast<float>(tenths) / 10.0F; };
            const float red = part(step % 11), green = part(step / 11 % 11),
                        blue = part(step / 121);
            const VLSrgbColor srgb = VLColorToSrgb({space, {red, green, blue}, 0.5F});
            ASSERT_NEAR(srgb.red, gammaToSrgb(red), tolerance);
            ASSERT_NEAR(srgb.green, gammaToSrgb(green), tolerance);
            ASSERT_NEAR(srgb.blue, gammaToSrgb(blue), tolerance);
            ASSERT_EQ(srgb.alpha, 0.5F);
        }
    }
    EXPECT_NEAR(VLColorToSrgb(VLCreateRGBColor(0.5F, 0, 0, 1)).red, 0.57231, kTolerance);
    EXPECT_EQ(VLGetCalibratedRGB_CGColorSpace()->transform != nullptr, kReadsProfiles);
}

TEST(ColorManagement, GreysAreNeutralAndOddNumbersBounded) {
    for (float white = 0.0F; white <= 1.0F; white += 0.125F) {
        const VLSrgbColor device = VLColorToSrgb({&kDeviceGray, {white}, 1});
        const VLSrgbColor calibrated = VLColorToSrgb({&kCalibratedGray, {white, 0.7F, 0.7F}, 1});
        EXPECT_EQ(device.red, white);
        EXPECT_NEAR(calibrated.red, gammaToSrgb(white), 1e-6);
        for (const VLSrgbColor& grey : {device, calibrated})
            EXPECT_TRUE(grey.red == grey.green && grey.red == grey.blue && grey.alpha == 1.0F);
    }
    const VLSrgbColor odd = VLColorToSrgb({&kCalibratedRgbByFormula, {NAN, 7, -7}, NAN});
    EXPECT_TRUE(odd.red == 0.0F && odd.green == 1.0F && odd.blue == 0.0F && odd.alpha == 0.0F);
    const VLSrgbColor none = VLColorToSrgb({nullptr, {1, 1, 1}, 1});
    EXPECT_EQ(none.red + none.green + none.blue + none.alpha, 0.0F);
}

TEST(ColorManagement, SharesItsSpacesAndKeepsWhatColorsWereMadeOf) {
    const VLColorSpace* const rgb = VLGetCalibratedRGB_CGColorSpace();
    const VLColorSpace* const white = VLGetCalibratedWhiteColorSpace();
    for (const VLColorSpace* same :
         {spaceOf("VLGenericRGBProfile.icc"), VLGetCalibratedRGB_NSColorSpace(),
          musicAppsCalibratedRGBColorSpace()})
        EXPECT_EQ(same, rgb);
    EXPECT_EQ(musicAppsCalibratedWhiteColorSpace(), white);
    EXPECT_EQ(VLColorSpaceComponentCount(white), 1U);
    EXPECT_EQ(VLColorSpaceComponentCount(nullptr), 0U);
    EXPECT_EQ(VLGetUIRenderingIntent(), 3);

    const VLColor color = VLCreateRGBColor(0.25F, -1.0F, 7.0F, 0.5F);
    EXPECT_TRUE(color.space == rgb && color.components[2] == 7.0F);
    const VLColor other = createCGColorWithAlpha(color, 0.75F);
    EXPECT_FALSE(VLColorIsEqual(color, other));
    EXPECT_TRUE(VLColorIsEqual(color, createCGColorWithAlpha(other, 0.5F)));
    VLColor grey = VLCreateWhiteColor(0.25F, 0.5F);
    EXPECT_FALSE(VLColorIsEqual(color, grey));
    grey.components[1] = 1.0F;  // no component of a grey
    EXPECT_TRUE(VLColorIsEqual(grey, VLCreateWhiteColor(0.25F, 0.5F)));
    EXPECT_TRUE(VLColorIsEqual({nullptr, {1, 2, 3}, 4}, {}));
}

TEST(ColorManagement, DamagedAndMisplacedProfilesMakeNoSpace) {
    const Resources resources;
    const auto ofSize = [](std::uint32_t size) {
        std::string profile = kProfile;
        profile.resize(size, '\0');
        for (std::uint32_t index = 0; index < 4; ++index)
            profile[index] = static_cast<char>(size >> (24 - 8 * index) & 0xFFU);
        return profile;
    };
    resources.put("largest.icc", ofSize(1'048'576));
    resources.put("large.icc", ofSize(1'048'577));
    EXPECT_EQ(spaceOf("largest.icc") != nullptr, kReadsProfiles);
    std::string ofInk = kProfile;
    ofInk.replace(16, 4, "CMYK");
    resources.put("ink.icc", ofInk);
    resources.put("longer.icc", kProfile + '\0');
    resources.put("folder/inside.icc", kProfile);
    using namespace std::string_literals;
    for (const std::string& name : {"large.icc"s, "ink.icc"s, "longer.icc"s, "missing.icc"s, ""s,
                                    "."s, ".."s, "folder"s, "folder/inside.icc"s, "ink.icc\0"s})
        EXPECT_EQ(spaceOf(name), nullptr) << name;
    EXPECT_EQ(VLCreateCGColorSpaceFromResource(nullptr), nullptr);
    resources.put("ink.icc", kProfile);  // only what could be read is kept
    EXPECT_EQ(spaceOf("ink.icc") != nullptr, kReadsProfiles);
    for (std::size_t length = 0; length < kProfile.size(); ++length)
        ASSERT_EQ(makeColorTransform(std::as_bytes(std::span(kProfile.data(), length))), nullptr);

    std::minstd_rand random(1);
    for (int round = 0; round < 300; ++round) {
        std::string mutant = kProfile;
        for (int change = 0; change < 3; ++change)
            mutant[random() % mutant.size()] = static_cast<char>(random());
        const auto transform = makeColorTransform(std::as_bytes(std::span(mutant)));
        if (transform == nullptr) continue;
        const VLColorSpace space{VLColorSpace::Kind::Profile, transform.get()};
        const VLSrgbColor srgb = VLColorToSrgb({&space, {0.1F, 0.5F, 0.9F}, 1});
        for (const float part : {srgb.red, srgb.green, srgb.blue})
            ASSERT_TRUE(part >= 0.0F && part <= 1.0F);
    }
}

TEST(ColorManagement, ThreadsThatMeetShareOneSpaceAndItsTransform) {
    if (!kReadsProfiles) GTEST_SKIP() << "needs Little CMS";
    const Resources resources;
    resources.put("shared.icc", kProfile);
    std::array<const VLColorSpace*, 4> spaces{};
    std::latch start(spaces.size());
    testing::onThreads(4, [&](std::size_t thread) {
        start.arrive_and_wait();
        const VLColorSpace* const space = spaces[thread] = spaceOf("shared.icc");
        for (float part = 0.0F; part <= 1.0F; part += 1.0F / 1024.0F)
            ASSERT_NEAR(VLColorToSrgb({space, {part, part, part}, 1}).green, gammaToSrgb(part),
                        kTolerance);
    });
    EXPECT_EQ(std::count(spaces.begin(), spaces.end(), spaces[0]), 4);
}

}  // namespace
}  // namespace veltra
