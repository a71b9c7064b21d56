// SPDX-License-Identifier: MIT
// A window without a screen, to be drawn into images: for documents, reports and thumbnails.
//
//   PictureWindow picture({400, 300}, 2.0F, Appearance::Dark);
//   picture.window().setContentView(std::make_unique<Mixer>());
//   picture.draw()->writePng("mixer.png");
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/appearance.h"
#include "veltra/ui/image.h"
#include "veltra/ui/window.h"

#include <memory>

namespace veltra {

class VELTRA_EXPORT PictureWindow {
public:
    // `scale` is in pixels a point; not above 0 counts as 1.
    PictureWindow(Size size, float scale, Appearance appearance);
    PictureWindow(const PictureWindow&) = delete;
    PictureWindow& operator=(const PictureWindow&) = delete;
    ~PictureWindow();

    // The window to put views into. It lives as long as this object.
    Window& window() noexcept { return *m_window; }

    // All of the window as it is at present, with the tool tip of a value. Null where
    // Image::drawn() returns null.
    std::shared_ptr<const Image> draw();

private:
    const std::unique_ptr<WindowPort> m_surface;
    const std::unique_ptr<Window> m_window;  // after the surface: goes first
};

}  // namespace veltra
