// SPDX-License-Identifier: MIT
// Lines of text, measured and drawn. Qt rounds the sizes of fonts to whole pixels, so that text is
// laid out once at one large size and scaled from there: it then has every size, and grows evenly.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/ui/geometry.h"
#include "veltra/ui/styled_text.h"

#include <map>
#include <string>

class QPainter;

namespace veltra {

// The families there are, and the sizes of lines. What was asked is kept, one entry for all sizes
// of a font, so that a search for the size that fits lays a text out once.
class QtTextSizes {
public:
    bool hasFamily(const std::string& name);
    Size sizeOf(const StyledText& text);
    // The toolkit's fonts have changed.
    void forget();
    std::size_t count() const noexcept { return m_measured.size(); }

private:
    std::map<std::string, Size> m_measured;  // at the size of the layout
    std::map<std::string, bool> m_families;
};

// What is wider than the rectangle is cut off at its sides.
void drawQtText(QPainter& painter, const StyledText& text, const Rect& rect,
                TextPlacement placement, bool isSmooth);

}  // namespace veltra
