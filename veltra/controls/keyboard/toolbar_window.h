// SPDX-License-Identifier: MIT
// A window with a strip for tools at the top of its content, which can be shown and hidden. The
// window grows and shrinks by the strip's height, its upper left corner stays, and what it shows
// keeps its size.
//
//   DfKeyboardWindow window(Rect{{100, 100}, {900, 240}});
//   window.setContentView(std::move(keyboard));
//   window.setToolbarView(std::make_unique<Tools>(Rect{{}, {900, 30}}));
//   window.df_addToolbarWidget();
//   window.showToolbar();
//
// The strip lies above the subviews of the content view; so the content view is a plain view that
// holds everything else.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/button.h"
#include "veltra/ui/panel.h"
#include "veltra/ui/window.h"

#include <memory>
#include <utility>
#include <vector>

namespace veltra {

// DfKeyboardWindow and DfKeyboardPanel are this for a Window and a Panel. Every function that
// shows, hides or exchanges something may delete the window, if a view or the host does so on
// hearing of it.
template <typename Base>
class ToolbarWindow : public Base {
public:
    using Base::Base;

    // The strip. A toolbar view is not necessary: without one the strip is empty.

    // Whether the strip is shown. At first it is not.
    bool toolbarVisible() const noexcept { return m_toolbarVisible; }

    // Shows the strip when it is hidden, and hides it when it is shown. Nothing while that is being
    // done already.
    void toggleToolbar();
    // Nothing when it is shown, or hidden, already.
    void showToolbar();
    void hideToolbar();

    // In points. One that overrides it returns the same as long as the strip is shown.
    virtual float toolbarHeight() const { return 30.0F; }

    // The window owns it while it is hidden, the content view while it is shown. The one before is
    // destroyed as soon as no event or timer is being handled any more. It stands in the
    // middle of the strip; where its mask has kViewWidthSizable or kViewHeightSizable, it takes the
    // strip's width or height.
    View* toolbarView() const noexcept;
    void setToolbarView(std::unique_ptr<View> view);

    // A button in the upper right corner of the content view that shows and hides the strip.
    // Nothing when it is there already or there is no content view.
    void df_addToolbarWidget();
    // What the button does.
    void df_ToolbarButtonAction(Anchored* sender);
    // Null when there is none.
    Button* toolbarButton() const noexcept { return m_toolbarButton.get(); }

    // Frames and limits.

    // The frame that the window has, or would have, while the strip is hidden.
    Rect frameWithoutToolBar() const;

    // The whole window, with the strip while that is shown, below which it never shrinks.
    void setFrame(const Rect& frame, bool display = true, bool animate = false) override;
    // The same as a plain window does it.
    void oldSetFrame(const Rect& frame, bool display = true, bool animate = false);

    // Limits of the content without the strip. minSize() and maxSize() return those of the whole
    // window: the strip's height is added while it is shown.
    void setMinSize(Size size) override;
    void setMaxSize(Size size) override;

    // The strip and the button move over to the new content view, which has the room beside the
    // strip. Without a new one the window keeps the strip, and the button is destroyed.
    void setContentView(std::unique_ptr<View> view) override;

    // The masks of the content view's subviews, while a change of its size is to leave them alone.
    using ResizeBehavior = std::vector<std::pair<WeakPointer<View>, AutoresizingMask>>;
    // Adds the masks to `behavior` and sets them to none.
    void saveAndChangeResizeBehavior(ResizeBehavior& behavior);
    // Sets them back, of those views that are still there.
    void restoreResizeBehavior(const ResizeBehavior& behavior);

protected:
    // Puts the strip and the button into their places.
    void windowDidChangeFrame(const Rect& before) override;

private:
    void toggle();
    bool meetLimits();
    void moveContentDown(float points);
    std::unique_ptr<View> takeToolbarView();
    void placeToolbarView();
    void layOut();
    void showState();

    bool m_toolbarVisible = false;
    std::unique_ptr<View> m_toolbarView;  // while it is not in the content view
    WeakPointer<Button> m_toolbarButton;  // the content view owns it

    WeakPointer<View> m_shownToolbarView;  // while it is
    bool m_isToggling = false;
};

extern template class VELTRA_EXPORT ToolbarWindow<Window>;
extern template class VELTRA_EXPORT ToolbarWindow<Panel>;

}  // namespace veltra
