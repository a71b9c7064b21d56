// SPDX-License-Identifier: MIT
// A sheet on screen or in a picture: rows of specimens on a card, each with its caption.
#pragma once

#include "sheets.h"
#include "veltra/ui/image.h"

namespace veltra::gallery {

class SheetView final : public View {
public:
    // The controls themselves, at rest, to be tried out.
    explicit SheetView(const Sheet& sheet);
    // Pictures of them in their states.
    SheetView(const Sheet& sheet, float scale, Appearance appearance);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;

private:
    struct Place {
        std::string caption;
        Rect rect;  // of the control
        float margin;
        std::shared_ptr<const Image> picture;  // with the margin; null: there is a view
    };

    void layOut(const Sheet& sheet);

    std::string m_title;
    std::vector<Place> m_places;
};

// Draws the sheet. Null where nothing can be drawn.
std::shared_ptr<const Image> pictureOf(const Sheet& sheet, float scale, Appearance appearance);

}  // namespace veltra::gallery
