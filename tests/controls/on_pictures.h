// SPDX-License-Identifier: MIT
// Pictures of controls as the toolkit draws them, at every scale and in both appearances.
#pragma once

#include "veltra/qt/qt_port.h"
#include "veltra/ui/picture.h"
#include "veltra/ui/testing/sight.h"
#include "veltra/ui/theme.h"

#include <QApplication>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace veltra::testing {

struct Setting {
    float scale;
    Appearance appearance;
};

// The toolkit's application: ends before what it stands on does.
class Toolkit final : public ::testing::Environment {
public:
    void SetUp() override {
        m_application = std::make_unique<QApplication>(m_count, m_arguments);
        installQtPort();
    }
    void TearDown() override { m_application.reset(); }

private:
    int m_count = 1;
    char m_name[19] = "controls_look_test";
    char* m_arguments[2] = {m_name, nullptr};
    std::unique_ptr<QApplication> m_application;
};

inline ::testing::Environment* const kToolkit = ::testing::AddGlobalTestEnvironment(new Toolkit);

inline std::vector<Setting> settings() {
    std::vector<Setting> all;
    for (const float scale : {1.0F, 1.25F, 1.5F, 2.0F}) {
        for (const Appearance appearance : {Appearance::Light, Appearance::Dark})
            all.push_back({scale, appearance});
    }
    return all;
}

inline std::string nameOf(const Setting& setting) {
    return (setting.appearance == Appearance::Dark ? "dark, scale " : "light, scale ") +
           std::to_string(setting.scale);
}

class Pixels {
public:
    explicit Pixels(std::shared_ptr<const Image> image) : m_image(std::move(image)) {}

    std::int32_t width() const { return pixels(m_image->size().width); }
    std::int32_t height() const { return pixels(m_image->size().height); }
    // From the upper left corner; 0xRRGGBB.
    std::uint32_t rgbAt(std::int32_t x, std::int32_t y) const {
        return m_image->pixelAt(x, y) & 0xFFFFFFU;
    }
    // The pixel around a place in points.
    std::uint32_t rgbAt(Point place) const {
        const float scale = m_image->scale();
        return rgbAt(static_cast<std::int32_t>(place.x * scale),
                     static_cast<std::int32_t>(place.y * scale));
    }
    bool operator==(const Pixels& other) const {
        bool isEqual = width() == other.width() && height() == other.height();
        for (std::int32_t x = 0; isEqual && x < width(); ++x) {
            for (std::int32_t y = 0; isEqual && y < height(); ++y)
                isEqual = rgbAt(x, y) == other.rgbAt(x, y);
        }
        return isEqual;
    }

private:
    std::int32_t pixels(float points) const {
        return static_cast<std::int32_t>(std::lround(points * m_image->scale()));
    }

    const std::shared_ptr<const Image> m_image;
};

// In the colour of the theme's cards.
struct Card : View {
    using View::View;
    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect&) override {
        canvas.fillRect(bounds(), theme(effectiveAppearance()).card);
    }
};

// A card in the window that has the keyboard.
struct CardPicture {
    CardPicture(Size size, const Setting& setting)
        : picture(size, setting.scale, setting.appearance) {
        window.setContentView(std::make_unique<Card>(Rect{{}, size}));
        window.visibilityDidChange(true);
        window.keyStateDidChange(true);
    }
    template <typename C, typename... Arguments>
    C& add(const Rect& frame, Arguments... arguments) {
        return window.contentView()->addSubview(std::make_unique<C>(frame, arguments...));
    }
    Pixels draw() { return Pixels(picture.draw()); }

    PictureWindow picture;
    Window& window = picture.window();
};

}  // namespace veltra::testing
