#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a command on an X server of its own, away from the display and the bus of the session.
# With --accessible it gets a bus, too, on which programs show themselves to screen readers.
# Usage: on_display.sh [--accessible] COMMAND...
set -euo pipefail
need() { [ -x "$1" ] || command -v "$1" >/dev/null || { echo "Skipped: $1 is not installed"; exit 77; }; }

bus=()
if [ "$1" = --accessible ]; then
    shift
    need dbus-run-session
    need gdbus
    need /usr/libexec/at-spi-bus-launcher
    # Qt looks for the service when the program starts; the call returns when it runs.
    bus=(dbus-run-session -- bash -euc '
        gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus \
            --method org.a11y.Bus.GetAddress >/dev/null
        export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
        "$@"' bus)
fi
need Xvfb

folder=$(mktemp -d)
mkfifo "$folder/number"
Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>"$folder/number" 2>"$folder/log" &
server=$!
trap 'kill $server 2>/dev/null || true; rm -rf "$folder"' EXIT
# The end of the pipe: the server could not start.
read -r display <"$folder/number" || { cat "$folder/log"; echo "the X server did not start"; exit 1; }
unset WAYLAND_DISPLAY XAUTHORITY
export DISPLAY=:$display QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$folder DBUS_SESSION_BUS_ADDRESS=disabled:
"${bus[@]}" "$@"
