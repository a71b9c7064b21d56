// SPDX-License-Identifier: MIT
#include "veltra/ui/image.h"

#include "veltra/ui/canvas.h"
#include "veltra/ui/port.h"

#include <cmath>

namespace veltra {

namespace {
constexpr float kLargestSide = 32767.0F;
}

Image::~Image() = default;

std::shared_ptr<const Image> Image::load(const std::string& path, float scale) {
    if (!(scale > 0.0F)) return nullptr;
    return UiPort::current().loadImage(path, scale);
}

std::shared_ptr<const Image> Image::drawn(Size size, float scale,
                                          const std::function<void(Canvas&)>& draw) {
    const float width = std::ceil(size.width * scale);
    const float height = std::ceil(size.height * scale);
    if (!(width >= 1.0F && width <= kLargestSide && height >= 1.0F && height <= kLargestSide)) {
        return nullptr;
    }
    return UiPort::current().drawImage(static_cast<std::int32_t>(width),
                                       static_cast<std::int32_t>(height), scale,
                                       [&draw](CanvasPort& port) {
                                           Canvas canvas(port);
                                           draw(canvas);
                                       });
}

}  // namespace veltra
