// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_image.h"

#include "veltra/platform/application_facts.h"
#include "veltra/qt/qt_port.h"
#include "veltra/qt/qt_types.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

bool isOpaque(const QImage& premultiplied) {
    for (int y = 0; y < premultiplied.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(premultiplied.constScanLine(y));
        const auto clear = [](QRgb pixel) { return qAlpha(pixel) != 255; };
        if (std::any_of(line, line + premultiplied.width(), clear)) return false;
    }
    return true;
}

QImage fastest(const QImage& image) {
    if (!image.hasAlphaChannel()) return image.convertToFormat(QImage::Format_RGB32);
    QImage result = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (isOpaque(result)) result.convertTo(QImage::Format_RGB32);
    return result;
}

}  // namespace

QtImage::QtImage(const QImage& image, float scale) : m_image(fastest(image)), m_scale(scale) {
    m_image.setDevicePixelRatio(scale);
}

Size QtImage::size() const noexcept {
    return {static_cast<float>(m_image.width()) / m_scale,
            static_cast<float>(m_image.height()) / m_scale};
}

std::uint32_t QtImage::pixelAt(std::int32_t x, std::int32_t y) const noexcept {
    return m_image.valid(x, y) ? m_image.pixel(x, y) : 0;
}

bool QtImage::writePng(const std::string& path) const {
    QImage signedImage = m_image;
    signedImage.setText(QStringLiteral("Software"), toQt(applicationName()));
    return signedImage.save(toQt(path), "PNG");
}

QImage toQImage(const Image& image) {
    if (const auto* const own = dynamic_cast<const QtImage*>(&image)) return own->pixels();
    const auto pixels = [&image](float points) {
        return static_cast<int>(std::lround(points * image.scale()));
    };
    QImage copy(pixels(image.size().width), pixels(image.size().height), QImage::Format_ARGB32);
    for (int y = 0; y < copy.height(); ++y) {
        for (int x = 0; x < copy.width(); ++x)
            copy.setPixel(x, y, image.pixelAt(x, y));
    }
    copy.setDevicePixelRatio(image.scale());
    return copy;
}

std::shared_ptr<const Image> fromQImage(const QImage& image) {
    if (image.isNull()) return nullptr;
    return std::make_shared<QtImage>(image, static_cast<float>(image.devicePixelRatio()));
}

}  // namespace veltra
