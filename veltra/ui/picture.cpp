// SPDX-License-Identifier: MIT
#include "veltra/ui/picture.h"

#include "veltra/ui/canvas.h"
#include "veltra/ui/detail/offscreen_window.h"
#include "veltra/ui/tool_tip.h"
#include "veltra/ui/value_tip.h"

namespace veltra {

PictureWindow::PictureWindow(Size size, float scale, Appearance appearance)
    : m_surface(std::make_unique<detail::OffscreenWindow>(scale)),
      m_window(std::make_unique<Window>(*m_surface, size)) {
    m_window->setAppearance(appearance);
}

PictureWindow::~PictureWindow() = default;

std::shared_ptr<const Image> PictureWindow::draw() {
    const Size size = m_window->contentSize();
    return Image::drawn(size, m_surface->scale(), [this, size](Canvas& canvas) {
        const Rect whole{{}, size};
        m_window->display(canvas, {&whole, 1});
        const auto shown = ToolTipWindow::shared().shownIn(*m_window);
        if (!shown) return;
        const Rect around{{shown->around.minX(), size.height - shown->around.maxY()},
                          shown->around.size};
        ValueTip::placed(shown->text, around, whole, shown->side)
            .draw(canvas, shown->text, m_window->appearance());
    });
}

}  // namespace veltra
