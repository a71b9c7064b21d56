#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a test program of the Qt back end on a virtual X server, and with an accessibility bus where
# there is one to start.
set -euo pipefail
command -v xvfb-run >/dev/null || { echo "Skipped: xvfb-run is not installed"; exit 77; }
export QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$(mktemp -d)
trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
on_screen=(xvfb-run -a -s '-screen 0 1280x800x24 -noreset')
if command -v dbus-run-session >/dev/null && command -v gdbus >/dev/null; then
    # Qt uses the bus only when it runs before the program does.
    bus=(gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus --method org.a11y.Bus.GetAddress)
    dbus-run-session -- bash -c '
        count=$1; shift
        if "${@:1:count}" >/dev/null 2>&1; then export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1; fi
        shift "$count"; exec "$@"' sh "${#bus[@]}" "${bus[@]}" "${on_screen[@]}" "$@"
else
    "${on_screen[@]}" "$@"
fi
