# SPDX-License-Identifier: MIT
"""Reads the console through the accessibility bus, puts out a clip light, clicks and types."""
import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402


def find(node, matches, depth=12):
    """The first node below, or itself, for which `matches` holds."""
    if node is None or depth == 0:
        return None
    if matches(node):
        return node
    for index in range(node.get_child_count()):
        found = find(node.get_child_at_index(index), matches, depth - 1)
        if found:
            return found
    return None


def wait_for(what, look):
    """What `look` answers as soon as it answers something."""
    deadline = time.monotonic() + 60
    while time.monotonic() < deadline:
        try:
            found = look()
            if found:
                return found
        except gi.repository.GLib.Error:
            pass  # the tree changes while it is read
        time.sleep(0.1)
    sys.exit(f"not found: {what}")


def named(root, name):
    return wait_for(name, lambda: find(root(), lambda node: node.get_name() == name))


def xdotool(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True, timeout=60)


def click(node):
    place = node.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
    xdotool("mousemove", place.x + place.width // 2, place.y + place.height // 2, "click", 1)


def checked(node):
    return node.get_state_set().contains(Atspi.StateType.CHECKED)


def desktop():
    return Atspi.get_desktop(0)


# The pointer and the keyboard, as a person has them.
long = named(desktop, "Mute long.wav")
click(long)
wait_for("a muted strip", lambda: checked(long))
search = ["xdotool", "search", "--onlyvisible", "--name", "Veltra Console"]
window = subprocess.run(search, check=True, timeout=60, capture_output=True,
                        text=True).stdout.split()[-1]
xdotool("windowfocus", "--sync", window, "key", "space")
wait_for("a strip that is heard again", lambda: not checked(long))

bridge = named(desktop, "Output meters")
left = named(lambda: bridge, "left stereo")
assert left.get_role() == Atspi.Role.PROGRESS_BAR, left.get_role_name()
value = left.get_value_iface()
assert value.get_minimum_value() < -60.0 and value.get_maximum_value() == 0.0  # decibels
wait_for("a clipped output", lambda: "clipped" in left.get_description())
wait_for("the end", lambda: find(desktop(), lambda node: node.get_name() == "Play one.wav again"))
mute = named(desktop, "Remove two.wav")
assert mute.get_role() == Atspi.Role.PUSH_BUTTON, mute.get_role_name()

group = left.get_parent()
action = group.get_action_iface()
names = [action.get_action_name(i) for i in range(action.get_n_actions())]
assert action.do_action(names.index("Press")), names
wait_for("a light that is out", lambda: "clipped" not in left.get_description())
wait_for("the quiet file alone", lambda: "-40.0 dB" in left.get_description())
print("names, roles and values as expected; click, key and press did what they should")
