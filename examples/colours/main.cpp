// SPDX-License-Identifier: MIT
// Colours in the shared spaces, as numbers of sRGB and on a canvas.
#include "veltra/infrastructure/calibrated_rgb_color.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/view.h"

#include <cmath>
#include <cstdio>

class Needle : public veltra::View {
public:
    using View::View;

    void drawRect(veltra::Canvas& canvas, const veltra::Rect& /*dirty*/) override {
        const veltra::Canvas::StateScope scope(canvas);  // the colours of before come back after it
        setFill(m_color, canvas);
        setStroke(createCGColorWithAlpha(m_color, 0.5F), canvas);
        canvas.fillRect(bounds());
        canvas.strokePath(veltra::Path::rect(bounds()), 1.0F);
    }

    // As a port that draws nothing but numbers would show it.
    void print() const {
        const veltra::VLSrgbColor srgb = veltra::VLColorToSrgb(m_color);
        std::printf("%.3f %.3f %.3f\n", static_cast<double>(srgb.red),
                    static_cast<double>(srgb.green), static_cast<double>(srgb.blue));
    }

private:
    const veltra::VLColor m_color = veltra::VLCreateRGBColor(0.5F, 0.25F, 0.75F, 1.0F);
};

int main() {
    const Needle needle({{0, 0}, {4, 40}});
    needle.print();
    const veltra::VLColor paper = veltra::VLCreateWhiteColor(0.5F, 1.0F);
    const veltra::VLSrgbColor shown = veltra::VLColorToSrgb(paper);
    const bool isDevice = shown.red == 0.5F;  // see VLGetCalibratedWhiteColorSpace()
    return isDevice || std::abs(shown.red - 0.5723F) < 1e-3F ? 0 : 1;
}
