// SPDX-License-Identifier: MIT
#include "veltra/ui/port.h"

#include "veltra/base/immortal.h"
#include "veltra/base/installable_source.h"
#include "veltra/base/utf8.h"
#include "veltra/ui/detail/offscreen_window.h"

namespace veltra {

namespace {

// What stands in where there is no toolkit.
class NoScreen final : public UiPort {
public:
    std::unique_ptr<WindowPort> makeWindow(Window& /*window*/, const Rect& /*contentRect*/,
                                           const WindowStyle& /*style*/) override {
        return std::make_unique<detail::OffscreenWindow>();
    }
    bool waitForEvent() override { return false; }
    void terminate() override {}
    Appearance appearance() const override { return Appearance::Light; }
    bool hasFontFamily(const std::string& /*name*/) const override { return false; }
    Size textSize(const StyledText& text) const override {
        std::size_t characters = 0;
        for (const char byte : text.string)
            characters += continuesCharacter(byte) ? 0U : 1U;
        return {static_cast<float>(characters) * text.font.size * kWidthOfLetter,
                text.font.size * kHeightOfLine};
    }
    std::shared_ptr<const Image> loadImage(const std::string& /*path*/, float /*scale*/) override {
        return nullptr;
    }
    std::shared_ptr<const Image> drawImage(
        std::int32_t /*pixelWidth*/, std::int32_t /*pixelHeight*/, float /*scale*/,
        const std::function<void(CanvasPort&)>& /*draw*/) override {
        return nullptr;
    }
    void showToolTip(Window& /*window*/, const std::string& /*text*/, const Rect& /*around*/,
                     ToolTipSide /*side*/) override {}
    void closeToolTip() override {}
    void accessibilityChanged(AccessibilityElement& /*element*/,
                              AccessibilityNotification /*notification*/) override {}
    void accessibilityElementDied(AccessibilityElement& /*element*/) noexcept override {}

private:
    // Parts of the font's size, about right for the fonts of most systems.
    static constexpr float kWidthOfLetter = 0.55F;
    static constexpr float kHeightOfLine = 1.2F;
};

UiPort& noScreen() noexcept {
    static Immortal<NoScreen> port;
    return *port;
}

}  // namespace

WindowPort::~WindowPort() = default;
UiPort::~UiPort() = default;

template <>
struct OwnImplementation<UiPort> : OwnFrom<noScreen> {};
template class Installable<UiPort>;

}  // namespace veltra
