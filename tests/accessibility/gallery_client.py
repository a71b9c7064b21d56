# SPDX-License-Identifier: MIT
"""Reads, sets and steps each control of one sheet of the gallery; Tab reaches all of them."""
import sys
import time

from reader import Atspi, all_of, desktop, do, find, focus_window, has_state, wait_for, xdotool

sheet = sys.argv[1]
focus_window("Veltra Gallery")
window = wait_for("the window", lambda: find(
    desktop(), lambda node: node.get_name() == "Veltra Gallery"))


def controls(matches):
    """Those of the sheet: not the tabs and scroll bars of the window around."""
    return all_of(window, lambda node: node.get_name() and matches(node) and
                  not node.get_name().startswith("Scroll ") and
                  node.get_role() not in (Atspi.Role.PAGE_TAB, Atspi.Role.PAGE_TAB_LIST))


def is_enabled(node):
    return has_state(node, Atspi.StateType.ENABLED)


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
print(f"{sheet}: {moved} controls set and stepped, {len(expected)} reached by Tab")
