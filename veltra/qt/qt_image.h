// SPDX-License-Identifier: MIT
// A picture in the form that the raster engine copies fastest: without alpha where nothing is
// transparent, with premultiplied alpha elsewhere.
#pragma once

#include "veltra/ui/image.h"

#include <QImage>

namespace veltra {

class QtImage final : public Image {
public:
    QtImage(const QImage& image, float scale);

    const QImage& pixels() const noexcept { return m_image; }

    Size size() const noexcept override;
    float scale() const noexcept override { return m_scale; }
    std::uint32_t pixelAt(std::int32_t x, std::int32_t y) const noexcept override;
    bool writePng(const std::string& path) const override;

private:
    QImage m_image;
    float m_scale;
};

}  // namespace veltra
