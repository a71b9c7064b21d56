# SPDX-License-Identifier: MIT
"""What the tests of the accessibility bus share: looking for things, and hands."""
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


def all_of(node, matches, depth=12):
    """Every node below, or itself, for which `matches` holds."""
    if node is None or depth == 0:
        return []
    found = [node] if matches(node) else []
    for index in range(node.get_child_count()):
        found += all_of(node.get_child_at_index(index), matches, depth - 1)
    return found


def named(root, name):
    return wait_for(name, lambda: find(root(), lambda node: node.get_name() == name))


def xdotool(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True, timeout=60)


def click(node):
    place = node.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
    xdotool("mousemove", place.x + place.width // 2, place.y + place.height // 2, "click", 1)


def drag(node, start, end, released=True):
    """Between two points, counted from the upper left corner of the node."""
    place = node.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
    points = [(place.x + x, place.y + y) for x, y in (start, end)]
    xdotool("mousemove", *points[0], "mousedown", 1, "mousemove", *points[1],
            *(("mouseup", 1) if released else ()))


def has_state(node, state):
    return node.get_state_set().contains(state)


def checked(node):
    return has_state(node, Atspi.StateType.CHECKED)


def do(node, action_name):
    """Whether the node has the action and has done it."""
    action = node.get_action_iface()
    if action is None:
        return False
    names = [action.get_action_name(i) for i in range(action.get_n_actions())]
    return action_name in names and action.do_action(names.index(action_name))


def focus_window(title):
    search = ["xdotool", "search", "--onlyvisible", "--name", title]
    window = wait_for(title, lambda: subprocess.run(
        search, timeout=60, capture_output=True, text=True).stdout.split())[-1]
    xdotool("windowfocus", "--sync", window)
    return window


def desktop():
    return Atspi.get_desktop(0)
