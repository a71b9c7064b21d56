"""Reads the console through the accessibility bus and puts out a clip light."""
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
    deadline = time.monotonic() + 15
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


def desktop():
    return Atspi.get_desktop(0)


bridge = named(desktop, "Output meters")
left = named(lambda: bridge, "left stereo")
assert left.get_role() == Atspi.Role.PROGRESS_BAR, left.get_role_name()
value = left.get_value_iface()
assert value.get_minimum_value() == 0.0 and value.get_maximum_value() >= 1.0
wait_for("a clipped output", lambda: "clipped" in left.get_description())
wait_for("the end", lambda: find(desktop(), lambda node: node.get_name() == "Play one.wav again"))
mute = named(desktop, "Remove two.wav")
assert mute.get_role() == Atspi.Role.PUSH_BUTTON, mute.get_role_name()

group = left.get_parent()
action = group.get_action_iface()
names = [action.get_action_name(i) for i in range(action.get_n_actions())]
assert action.do_action(names.index("Press")), names
wait_for("a light that is out", lambda: "clipped" not in left.get_description())
wait_for("silence", lambda: value.get_current_value() == 0.0)
print("names, roles and values as expected; the clip light went out")
