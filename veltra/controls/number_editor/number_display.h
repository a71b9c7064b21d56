// SPDX-License-Identifier: MIT
// The ground that a number editor lies on: the dark glass of a read-out, or a field among other
// settings. It stays when the editor is disabled and draws nothing; the focus ring runs around it.
//
//   auto& tempo = view.addSubview(
//       std::make_unique<NumberDisplay>(Rect{{16, 16}, {100, 40}},
//       NumberEditorLook::Glass, 20.0F));
//   tempo.setGroups({{3, "beats a minute"}, {2, "hundredths", true}});
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/number_editor/number_editor_control.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace veltra {

// One of the groups of digits that a NumberDisplay is set up with.
struct NumberDisplayGroup {
    std::uint32_t places = 1;      // digits that have room, and that can be typed
    std::string name;              // for a screen reader, such as "bar"
    bool hasLeadingZeros = false;  // zeros fill the places before the number
};

class VELTRA_EXPORT NumberDisplay : public View {
public:
    // The size of the font is in points; Plain counts as Glass.
    explicit NumberDisplay(const Rect& frame = {}, NumberEditorLook look = NumberEditorLook::Glass,
                           float fontSize = 20.0F);
    ~NumberDisplay() override;

    // The editor that lies on the ground, for value, target and action. It lives as long as this
    // view.
    DfNumberEditorControl& editor() noexcept { return *m_editor; }
    const DfNumberEditorControl& editor() const noexcept { return *m_editor; }

    // Gives the editor these groups, from the left, with shadow eights behind all places and
    // `separator` between each two, and lays them out. Groups that it had before are gone, with all
    // that was set on them: set delegate and value afterwards.
    void setGroups(const std::vector<NumberDisplayGroup>& groups, std::string_view separator = ".");

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
