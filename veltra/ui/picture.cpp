// SPDX-License-Identifier: MIT
#include "veltra/ui/picture.h"

#include "veltra/ui/canvas.h"
#include "veltra/ui/detail/offscreen_window.h"

namespace veltra {

PictureWindow::PictureWindow(Size size, float scale, Appearance appearance)
    : m_surface(std::make_unique<OffscreenWindow>(scale)),
      m_window(std::make_unique<Window>(*m_surface, size)) {
    m_window->setAppearance(appearance);
}

PictureWindow::~PictureWindow() = default;

std::shared_ptr<const Image> PictureWindow::draw() {
    const Size size = m_window->contentSize();
    return Image::drawn(size, m_surface->scale(), [this, size](Canvas& canvas) {
        const Rect whole{{}, size};
        m_window->display(canvas, {&whole, 1});
    });
}

}  // namespace veltra
