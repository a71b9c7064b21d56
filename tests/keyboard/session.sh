#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The layout of the display wins over the configured one. Skipped without Xvfb and setxkbmap.
set -euo pipefail
program=$1
command -v xvfb-run >/dev/null && command -v setxkbmap >/dev/null || { echo "no X server"; exit 77; }
export program XKB_DEFAULT_LAYOUT=us
[[ $(env -u DISPLAY "$program") == *"quit with ⌘Q"* ]]
xvfb-run -a -s -noreset bash -euo pipefail -c '
    setxkbmap fr
    text=$("$program")
    [[ $text == *"quit with ⌘A"* ]] || { echo "$text"; exit 1; }'
DISPLAY=:987 "$program" | grep -q "quit with ⌘Q"
