// SPDX-License-Identifier: MIT
// A picture that does not change, kept in the form in which the port draws it fastest. findImage()
// in image_registry.h finds one by its name.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/geometry.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace veltra {

class Canvas;

class VELTRA_EXPORT Image {
public:
    Image() = default;
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    virtual ~Image();

    // In points; a whole number of pixels divided by scale().
    virtual Size size() const noexcept = 0;
    // Pixels a point.
    virtual float scale() const noexcept = 0;

    // The pixel as 0xAARRGGBB with straight alpha, counted from the upper left corner; 0 outside.
    virtual std::uint32_t pixelAt(std::int32_t x, std::int32_t y) const noexcept = 0;

    // Writes the image as a PNG file, with the application's name as the software that made it.
    // Returns false when that is not possible.
    virtual bool writePng(const std::string& path) const = 0;

    // Reads a picture of any format that the port knows; `scale` are its pixels a point. Null when
    // there is none.
    static std::shared_ptr<const Image> load(const std::string& path, float scale = 1.0F);

    // A picture of `size`, rounded up to whole pixels, that `draw` has drawn on a clear ground. The
    // canvas is flipped: its y axis points down. Null when the port cannot draw or the size is
    // empty or beyond 32,767 pixels a side.
    static std::shared_ptr<const Image> drawn(Size size, float scale,
                                              const std::function<void(Canvas&)>& draw);
};

}  // namespace veltra
