# SPDX-License-Identifier: MIT
"""Reads, sets and steps each control of one sheet of the gallery; Tab reaches all of them."""
import sys
import time

from reader import (Atspi, all_of, checked, desktop, do, drag, find, focus_window, has_state,
                    wait_for, xdotool)

sheet = sys.argv[1]
xdotool("windowsize", "--sync", focus_window("Veltra Gallery"), 1270, 790)
window = wait_for("the window", lambda: find(
    desktop(), lambda node: node.get_name() == "Veltra Gallery"))


def controls(matches):
    """Those of the sheet: not the tabs and scroll bars of the window around."""
    return all_of(window, lambda node: node.get_name() and matches(node) and
                  not node.get_name().startswith("Scroll ") and
                  node.get_role() not in (Atspi.Role.PAGE_TAB, Atspi.Role.PAGE_TAB_LIST))


def is_enabled(node):
    return has_state(node, Atspi.StateType.ENABLED)


# The pointer drags. Of each: the role, which one of it on the sheet, from where to where, and the
# value before and after.
SLIDER, BUTTON = Atspi.Role.SLIDER, Atspi.Role.PUSH_BUTTON
drags = {
    "sliders": [
        (SLIDER, 0, (40, 48), (40, 93), 0.8, 0.5),    # a fader of 150 points of travel
        (SLIDER, 6, (42, 14), (60, 14), 0.0, 0.5),    # a pan of 72
        (SLIDER, 12, (100, 16), (198, 16), 50, 100),  # stops
    ],
    "number-editor": [(SLIDER, 2, (20, 12), (20, 2), 456, 466)],  # a tick for each point
    "keyboard": [
        (SLIDER, 0, (204, 20), (222, 20), 28, 31),  # keys of 6 points
        (SLIDER, 0, (30, 20), (30, 20), 31, 0),     # beside the range, to an octave
    ],
    "buttons": [
        (BUTTON, 7, (9, 9), (9, -9), False, False),  # let go outside
        (BUTTON, 7, (9, 9), (9, 9), False, True),
    ],
}.get(sheet, [])


def value_of(node):
    if node.get_role() == BUTTON:
        return checked(node)
    return node.get_value_iface().get_current_value()


for role, index, start, end, before, after in drags:
    node = wait_for(f"control {index}", lambda: controls(
        lambda each: each.get_role() == role)[index:])[0]
    assert abs(value_of(node) - before) < 0.01, (sheet, index, value_of(node))
    drag(node, start, end)
    wait_for(f"{sheet} {index} at {after}", lambda: abs(value_of(node) - after) < 0.01)
if sheet == "keyboard":  # a note ends where the pointer glides on, or with the release
    keys = controls(lambda each: each.get_role() == SLIDER)[6]
    for end in (("mousemove_relative", 60, 0), ("mouseup", 1)):
        drag(keys, (14, 100), (14, 100), released=False)
        wait_for("the note", lambda: keys.get_description().endswith("C3 pressed"))
        xdotool(*end)
        wait_for("its end", lambda: not keys.get_description().endswith("pressed"))
        xdotool("mouseup", 1)

# Each slider can be set and stepped, and says so.
sliders = wait_for("controls", lambda: controls(
    lambda node: node.get_role() in (Atspi.Role.SLIDER, Atspi.Role.PUSH_BUTTON,
                                     Atspi.Role.PROGRESS_BAR, Atspi.Role.TOGGLE_BUTTON)))
moved = 0
for node in [node for node in sliders if node.get_role() == Atspi.Role.SLIDER]:
    value = node.get_value_iface()
    least, most = value.get_minimum_value(), value.get_maximum_value()
    assert most > least, (node.get_name(), least, most)
    before = value.get_current_value()
    if not is_enabled(node):
        value.set_current_value(most if before != most else least)
        assert value.get_current_value() == before, node.get_name()
        continue
    value.set_current_value(least)
    low = wait_for(f"{node.get_name()} at its least", lambda: [value.get_current_value()])[0]
    assert do(node, "Increase"), node.get_name()
    wait_for(f"{node.get_name()} one step up", lambda: value.get_current_value() > low)
    assert do(node, "Decrease"), node.get_name()
    wait_for(f"{node.get_name()} back again", lambda: value.get_current_value() <= low)
    moved += 1

# Tab leads to everything that can have the keyboard.
expected = controls(lambda node: is_enabled(node) and
                    has_state(node, Atspi.StateType.FOCUSABLE))
reached = set()
for _ in range(2 * len(expected) + 4):
    xdotool("key", "Tab")
    time.sleep(0.05)
    for index, node in enumerate(expected):
        if index not in reached and has_state(node, Atspi.StateType.FOCUSED):
            reached.add(index)
    if len(reached) == len(expected):
        break
missed = [node.get_name() for index, node in enumerate(expected) if index not in reached]
assert not missed, missed
print(f"{sheet}: {len(drags)} drags, {moved} controls set and stepped, {len(expected)} reached by Tab")
