#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The controls from outside: a client of the accessibility bus reads, sets and steps each one that
# the gallery shows; the pointer drags, the wheel turns, the keyboard alone reaches everything.
set -euo pipefail
program=$1 client=$(dirname "$0")/gallery_client.py
command -v xdotool >/dev/null || { echo "Skipped: xdotool is not installed"; exit 77; }
/usr/bin/python3 -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null ||
    { echo "Skipped: the accessibility library for Python is not installed"; exit 77; }

bash "$(dirname "$0")/../on_display.sh" --accessible bash -euc '
    for sheet in $("$1" --list); do
        "$1" --sheet "$sheet" &
        program=$!
        trap "kill $program 2>/dev/null || true" EXIT
        /usr/bin/python3 -B -W ignore "$2" "$sheet"
        kill $program
        wait $program 2>/dev/null || true
    done' sh "$program" "$client"
