// SPDX-License-Identifier: MIT
// The ground that a number editor lies on: the dark glass of a read-out, or a field among other
// settings. It stays when the editor is disabled and draws nothing; the focus ring runs around it.
//
//   auto& tempo = view.addSubview(
//       std::make_unique<NumberDisplay>(Rect{{16, 16}, {100, 40}},
//       NumberEditorLook::Glass, 20.0F));
//   tempo.editor().setEditorCellCount(2);
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/number_editor/number_editor_control.h"

#include <string>
#include <string_view>
#include <vector>

namespace veltra {

class VELTRA_EXPORT NumberDisplay : public View {
public:
    // The size of the font is in points; Plain counts as Glass.
    explicit NumberDisplay(const Rect& frame = {}, NumberEditorLook look = NumberEditorLook::Glass,
                           float fontSize = 20.0F);
    ~NumberDisplay() override;

    DfNumberEditorControl& editor() noexcept { return *m_editor; }
    const DfNumberEditorControl& editor() const noexcept { return *m_editor; }

    // Small words above the groups, such as BAR, BEAT, TICK; the first belongs to the first group.
    // None at first.
    const std::vector<std::string>& captions() const noexcept { return m_captions; }
    void setCaptions(std::vector<std::string> captions);

    // What the digits and the ground need, with captions and margins.
    Size sizeThatFits() const;
    // Puts the editor into the middle. Call it when its groups have changed.
    void layOut();

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;

protected:
    void frameDidChange() override { layOut(); }

private:
    float width() const;
    float radius() const noexcept;

    const NumberEditorLook m_look;
    DfNumberEditorControl* m_editor;  // a subview
    std::vector<std::string> m_captions;
};

}  // namespace veltra
