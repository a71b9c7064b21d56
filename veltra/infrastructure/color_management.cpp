// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/color_management.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/base/string_object_text.h"
#include "veltra/infrastructure/detail/color_space.h"
#include "veltra/infrastructure/environment.h"
#include "veltra/infrastructure/profiles/generic_rgb_profile.h"
#include "veltra/platform/no_cancellation.h"
#include "veltra/platform/resources.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace veltra {

namespace {

constexpr std::size_t kLargestProfile = 1'048'576;
constexpr std::string_view kGenericRgbName = "VLGenericRGBProfile.icc";

constexpr float withinRange(float number) noexcept {
    return number > 0.0F ? std::min(number, 1.0F) : 0.0F;  // NaN is 0
}

float srgbOfGamma18(float component) noexcept {
    const double linear = std::pow(static_cast<double>(component), 1.8);
    return static_cast<float>(linear <= 0.0031308 ? 12.92 * linear
                                                  : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055);
}

// The spaces of resource files. One that is in the list stays, and no name is in it twice.
struct NamedSpace {
    VLColorSpace space;
    std::string name;
    const NamedSpace* next = nullptr;
};

constinit std::atomic<const NamedSpace*> namedSpaces{nullptr};

const VLColorSpace* findAmong(const NamedSpace* first, std::string_view name) noexcept {
    for (const NamedSpace* each = first; each != nullptr; each = each->next)
        if (each->name == name) return &each->space;
    return nullptr;
}

// Adds it, unless another thread has been faster with the same name.
const VLColorSpace* add(std::unique_ptr<NamedSpace> made) noexcept {
    made->next = namedSpaces.load(std::memory_order_acquire);  // with the exchange
    for (;;) {
        const VLColorSpace* const found = findAmong(made->next, made->name);
        if (found != nullptr) {
            delete made->space.transform;
            return found;
        }
        if (namedSpaces.compare_exchange_weak(made->next, made.get(),
                                              std::memory_order_acq_rel,   // with the loads
                                              std::memory_order_acquire))  // with itself
            return &made.release()->space;
    }
}

const VLColorSpace* spaceOfFile(const std::string& name) {
    const VLColorSpace* const found =
        findAmong(namedSpaces.load(std::memory_order_acquire), name);  // with the exchange
    if (found != nullptr) return found;
    const std::optional<std::string> file = textOfFile(pathOfResource(name, ""), kLargestProfile);
    if (!file) return nullptr;
    std::unique_ptr<const ColorTransform> transform =
        makeColorTransform(std::as_bytes(std::span(*file)));
    if (transform == nullptr) return nullptr;
    auto made = std::make_unique<NamedSpace>();
    made->name = name;
    made->space = {VLColorSpace::Kind::Profile, transform.release()};
    return add(std::move(made));
}

const VLColorSpace* spaceOfResource(const VLString* name) noexcept {
    const NoCancellation whileFilesAreRead;
    return unlessOutOfMemory(nullptr, [name]() -> const VLColorSpace* {
        const std::optional<std::string> text = textOf(name);
        if (!text || text->find_first_of(std::string_view("/\0", 2)) != std::string::npos)
            return nullptr;
        if (*text == kGenericRgbName) return VLGetCalibratedRGB_CGColorSpace();
        return spaceOfFile(*text);
    });
}

}  // namespace

extern "C" {

const VLColorSpace* VLGetCalibratedRGB_CGColorSpace() noexcept {
    static const VLColorSpace space{
        VLColorSpace::Kind::CalibratedRgb,
        makeColorTransform(std::as_bytes(std::span(kGenericRgbProfile))).release()};
    return &space;
}

const VLColorSpace* VLGetCalibratedRGB_NSColorSpace() noexcept {
    return VLGetCalibratedRGB_CGColorSpace();
}

const VLColorSpace* VLGetCalibratedWhiteColorSpace() noexcept {
    static const VLColorSpace& space = isSnowLeopardOrNewer() ? kDeviceGray : kCalibratedGray;
    return &space;
}

int32_t VLGetUIRenderingIntent() noexcept {
    return 3;
}

const VLColorSpace* VLCreateCGColorSpaceFromResource(const VLString* name) noexcept {
    return spaceOfResource(name);
}

const VLColorSpace* VLCreateNSColorSpaceFromResource(const VLString* name) noexcept {
    return spaceOfResource(name);
}

uint32_t VLColorSpaceComponentCount(const VLColorSpace* space) noexcept {
    if (space == nullptr) return 0;
    if (space->transform != nullptr)
        return static_cast<std::uint32_t>(space->transform->componentCount());
    return space->kind == VLColorSpace::Kind::CalibratedRgb ? 3 : 1;
}

VLColor VLCreateRGBColor(float red, float green, float blue, float alpha) noexcept {
    return {VLGetCalibratedRGB_CGColorSpace(), {red, green, blue}, alpha};
}

VLColor VLCreateWhiteColor(float white, float alpha) noexcept {
    return {VLGetCalibratedWhiteColorSpace(), {white, 0.0F, 0.0F}, alpha};
}

bool VLColorIsEqual(VLColor left, VLColor right) noexcept {
    if (left.space != right.space) return false;
    if (left.space == nullptr) return true;
    return left.alpha == right.alpha &&
           std::equal(left.components, left.components + VLColorSpaceComponentCount(left.space),
                      right.components);
}

VLSrgbColor VLColorToSrgb(VLColor color) noexcept {
    if (color.space == nullptr) return {};
    std::array<float, 3> given{};
    std::transform(color.components, color.components + given.size(), given.begin(), withinRange);
    std::array<float, 3> srgb{given[0], given[0], given[0]};
    if (color.space->transform != nullptr) {
        color.space->transform->toSrgb(given.data(), srgb.data());
    } else if (color.space->kind != VLColorSpace::Kind::DeviceGray) {
        const bool isRgb = color.space->kind == VLColorSpace::Kind::CalibratedRgb;
        std::transform(given.begin(), given.end(), srgb.begin(), srgbOfGamma18);
        if (!isRgb) srgb.fill(srgb[0]);
    }
    return {withinRange(srgb[0]), withinRange(srgb[1]), withinRange(srgb[2]),
            withinRange(color.alpha)};
}

}  // extern "C"

}  // namespace veltra
