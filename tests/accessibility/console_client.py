# SPDX-License-Identifier: MIT
"""Reads the console through the accessibility bus, puts out a clip light, clicks and types."""
from reader import Atspi, checked, click, desktop, do, find, focus_window, named, wait_for, xdotool

# The pointer and the keyboard, as a person has them.
long = named(desktop, "Mute long.wav")
click(long)
wait_for("a muted strip", lambda: checked(long))
focus_window("Veltra Console")
xdotool("key", "space")
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

assert do(left.get_parent(), "Press")
wait_for("a light that is out", lambda: "clipped" not in left.get_description())
wait_for("the quiet file alone", lambda: "-40.0 dB" in left.get_description())
print("names, roles and values as expected; click, key and press did what they should")
