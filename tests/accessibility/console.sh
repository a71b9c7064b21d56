#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The console from outside: a client of the accessibility bus reads names, roles and values as a
# screen reader does, and puts out a clip light; the pointer clicks, a key is pressed.
set -euo pipefail
program=$1 client=$(dirname "$0")/console_client.py
for tool in xdotool sox; do
    command -v "$tool" >/dev/null || { echo "Skipped: $tool is not installed"; exit 77; }
done
/usr/bin/python3 -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null ||
    { echo "Skipped: the accessibility library for Python is not installed"; exit 77; }

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# Two files that clip only together, and end soon: the light stays on.
for name in one two; do
    sox -V1 -n -r 48000 -c 2 "$folder/$name.wav" synth 1 sine 300 gain -1
done
sox -V1 -n -r 48000 -c 1 "$folder/long.wav" synth 100 sine 300 gain -40
bash "$(dirname "$0")/../on_display.sh" --accessible bash -euc '
    program=$1 client=$2 folder=$3
    "$program" --device null "$folder/one.wav" "$folder/two.wav" "$folder/long.wav" &
    trap "kill $! 2>/dev/null || true" EXIT
    /usr/bin/python3 -B -W ignore "$client"' sh "$program" "$client" "$folder"
