// SPDX-License-Identifier: MIT
// From the colours of an ICC profile to sRGB. Done by Little CMS where the library was built with
// it; without it no profile can be opened.
#pragma once

#include <cstddef>
#include <memory>
#include <span>

namespace veltra {

class ColorTransform {
public:
    ColorTransform() noexcept = default;
    ColorTransform(const ColorTransform&) = delete;
    ColorTransform& operator=(const ColorTransform&) = delete;
    virtual ~ColorTransform() = default;

    // Components of a colour of the profile: 3 of an RGB profile, 1 of a grey one.
    virtual std::size_t componentCount() const noexcept = 0;

    // From componentCount() numbers, 0 to 1, to red, green and blue of sRGB, which may lie slightly
    // outside of 0 to 1, or far outside for colours that sRGB does not have.
    // Thread: any, several at once. Realtime-safe: no promise is known.
    virtual void toSrgb(const float* components, float* rgb) const noexcept = 0;
};

// The transform of the whole file `profile`, with the perceptual intent. Null when it is no intact
// profile of RGB or grey, when there is no library to read it, or when memory is out. The bytes
// are not needed afterwards.
// Thread: any. Realtime-safe: no.
std::unique_ptr<const ColorTransform> makeColorTransform(
    std::span<const std::byte> profile) noexcept;

}  // namespace veltra
