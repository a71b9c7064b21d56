# SPDX-License-Identifier: MIT
"""Reads and sets the console through the accessibility bus, puts out a clip light, clicks, types."""
from reader import Atspi, checked, click, desktop, do, find, focus_window, named, wait_for, xdotool

# The pointer and the keyboard, as a person has them.
long = named(desktop, "Mute long.wav")
for is_muted in (True, False):
    click(long)
    wait_for(f"a strip that is muted: {is_muted}", lambda: checked(long) == is_muted)

bridge = named(desktop, "Output meters")
left = named(lambda: bridge, "channel L")
assert left.get_role() == Atspi.Role.PROGRESS_BAR, left.get_role_name()
value = left.get_value_iface()
assert value.get_minimum_value() == -70.0 and value.get_maximum_value() == 0.0  # decibels
wait_for("a clipped output", lambda: "clipped" in left.get_description())
strip = named(desktop, "one")
wait_for("the end", lambda: find(strip, lambda node: node.get_name() == "Ended"))
menu = named(desktop, "Menu of two.wav")
assert menu.get_role() == Atspi.Role.PUSH_BUTTON, menu.get_role_name()

assert do(bridge, "Press")
wait_for("a light that is out", lambda: "clipped" not in left.get_description())
wait_for("the quiet file alone", lambda: "\u221240.0 dB" in left.get_description())

# A value that a reader sets is heard, and told.
fader = named(desktop, "fader of long.wav")
fader.get_value_iface().set_current_value(0.6)
wait_for("ten decibels less", lambda: "10.0 dB" in fader.get_description())
wait_for("a quieter file", lambda: "\u221250.0 dB" in left.get_description())

transport = named(desktop, "Transport")
play = named(desktop, "Play")
focus_window("Veltra Console")
xdotool("key", "space")
wait_for("a transport that stands", lambda: not checked(play))
xdotool("key", "Home")
wait_for("the start", lambda: transport.get_description().startswith("0001.1.0000"))
print("names, roles and values as expected; clicks, keys and values did what they should")
