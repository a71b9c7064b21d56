// SPDX-License-Identifier: MIT
#include "sheet_view.h"

#include "veltra/ui/drawing.h"
#include "veltra/ui/picture.h"

#include <algorithm>
#include <cmath>

namespace veltra::gallery {

namespace {

constexpr float kMargin = 16.0F;
constexpr float kTitleHeight = 40.0F;
constexpr float kCaptionHeight = 20.0F;
constexpr float kGap = 12.0F;
constexpr float kLeastWidth = 64.0F;  // of a caption's column

StyledText captionOf(const std::string& caption, const Theme& colors) {
    return {caption, themeFont(10.0F, FontWeight::Medium), colors.caption, TextAlignment::Center};
}

// The ground that a control lies on in the window of a specimen.
class Ground final : public View {
public:
    using View::View;
    void drawRect(Canvas& canvas, const Rect&) override {
        canvas.fillRect(bounds(), theme(effectiveAppearance()).card);
    }
};

std::shared_ptr<const Image> drawn(const Specimen& specimen, float scale, Appearance appearance) {
    const float margin = specimen.margin;
    PictureWindow picture({specimen.size.width + 2 * margin, specimen.size.height + 2 * margin},
                          scale, appearance);
    Window& window = picture.window();
    window.setContentView(std::make_unique<Ground>(Rect{{}, window.contentSize()}));
    auto view = specimen.make();
    view->setFrame({{margin, margin}, specimen.size});
    window.contentView()->addSubview(std::move(view));
    window.visibilityDidChange(true);
    window.keyStateDidChange(true);
    if (specimen.drive) specimen.drive(window);
    return picture.draw();
}

// Whatever of it a screen reader sees has a name.
void nameFor(View& view, const std::string& caption) {
    if (view.accessibilityName().empty()) view.setAccessibilityName(caption);
    for (AccessibilityElement* const part : shownAccessibilityChildren(view)) {
        if (part->accessibilityName().empty()) part->setAccessibilityName(caption);
    }
}

}  // namespace

SheetView::SheetView(const Sheet& sheet) : m_title(sheet.title) {
    layOut(sheet);
    auto place = m_places.begin();
    for (const auto& row : sheet.rows) {
        for (const Specimen& specimen : row) {
            auto view = specimen.make();
            view->setFrame(place++->rect);
            nameFor(*view, specimen.caption);
            addSubview(std::move(view));
        }
    }
}

SheetView::SheetView(const Sheet& sheet, float scale, Appearance appearance)
    : m_title(sheet.title) {
    layOut(sheet);
    auto place = m_places.begin();
    for (const auto& row : sheet.rows) {
        for (const Specimen& specimen : row)
            place++->picture = drawn(specimen, scale, appearance);
    }
}

void SheetView::layOut(const Sheet& sheet) {
    float top = kMargin + kTitleHeight;
    float right = 0.0F;
    for (const auto& row : sheet.rows) {
        float left = 2.0F * kMargin;
        float height = 0.0F;
        for (const Specimen& specimen : row)
            height = std::max(height, specimen.size.height + 2 * specimen.margin);
        for (const Specimen& specimen : row) {
            const float text = captionOf(specimen.caption, theme(Appearance::Dark)).size().width;
            const float width = std::max(
                {specimen.size.width + 2 * specimen.margin, std::ceil(text) + kGap, kLeastWidth});
            const Rect rect{{std::round(left + (width - specimen.size.width) / 2),
                             std::round(top + (height - specimen.size.height) / 2)},
                            specimen.size};
            m_places.push_back({specimen.caption, rect, specimen.margin, nullptr});
            left += width + kGap;
        }
        right = std::max(right, left);
        top += height + kCaptionHeight + kGap;
    }
    setFrame({{}, {std::ceil(right + 2.0F * kMargin - kGap), std::ceil(top + kMargin)}});
}

void SheetView::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    canvas.fillRect(bounds(), colors.window);
    const Rect card = bounds().inset(kMargin / 2, kMargin / 2);
    drawPlate(canvas, card, 10.0F, colors.card, colors.line);
    canvas.drawText({m_title, themeFont(16.0F, FontWeight::SemiBold), colors.text},
                    {{2.0F * kMargin, kMargin}, {card.size.width, kTitleHeight}},
                    TextPlacement::Capitals);
    auto row = m_places.begin();
    while (row != m_places.end()) {
        // Captions of a row stand on one line.
        float foot = 0.0F;
        auto end = row;
        for (; end != m_places.end() && (end == row || end->rect.minX() > (end - 1)->rect.minX());
             ++end)
            foot = std::max(foot, end->rect.maxY() + end->margin);
        for (; row != end; ++row) {
            if (row->picture)
                canvas.drawImage(*row->picture, row->rect.inset(-row->margin, -row->margin).origin);
            canvas.drawText(captionOf(row->caption, colors),
                            {{row->rect.center().x - 200.0F, foot}, {400.0F, kCaptionHeight}},
                            TextPlacement::Capitals);
        }
    }
}

std::shared_ptr<const Image> pictureOf(const Sheet& sheet, float scale, Appearance appearance) {
    auto view = std::make_unique<SheetView>(sheet, scale, appearance);
    PictureWindow picture(view->frame().size, scale, appearance);
    picture.window().setContentView(std::move(view));
    return picture.draw();
}

}  // namespace veltra::gallery
