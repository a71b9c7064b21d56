#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The console from outside: a client of the accessibility bus reads names, roles and values as a
# screen reader does, and puts out a clip light; the pointer clicks, a key is pressed.
set -euo pipefail
program=$1 client=$(dirname "$0")/client.py
for tool in Xvfb xdotool dbus-run-session gdbus sox /usr/libexec/at-spi-bus-launcher; do
    command -v "$tool" >/dev/null || { echo "$tool is not installed"; exit 77; }
done
/usr/bin/python3 -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null ||
    { echo "the accessibility library for Python is not installed"; exit 77; }

folder=$(mktemp -d)
export folder program client XDG_RUNTIME_DIR=$folder QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
trap 'rm -rf "$folder"' EXIT
# Two files that clip only together, and end soon: the light stays on.
for name in one two; do
    sox -V1 -n -r 48000 -c 2 "$folder/$name.wav" synth 1 sine 300 gain -1
done
sox -V1 -n -r 48000 -c 1 "$folder/long.wav" synth 100 sine 300 gain -40
timeout 60 dbus-run-session -- bash -euc '
    Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>"$folder/display" 2>/dev/null &
    server=$!
    trap "kill $server \$(jobs -p) 2>/dev/null || true" EXIT
    for attempt in $(seq 100); do [ -s "$folder/display" ] && break; sleep 0.1; done
    export DISPLAY=:$(cat "$folder/display")
    gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus \
        --method org.a11y.Bus.GetAddress >/dev/null
    "$program" --device null "$folder/one.wav" "$folder/two.wav" \
        "$folder/long.wav" &
    /usr/bin/python3 -W ignore "$client"'
