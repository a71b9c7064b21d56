#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The layout of the display wins over the configured one, also in a child that comes and goes.
set -euo pipefail
program=$1 forks=$2
command -v setxkbmap >/dev/null || { echo "Skipped: setxkbmap is not installed"; exit 77; }
export XKB_DEFAULT_LAYOUT=us
[[ $(env -u DISPLAY "$program") == *"quit with ⌘Q"* ]]
bash "$(dirname "$0")/../on_display.sh" bash -euo pipefail -c '
    setxkbmap fr
    text=$("$0")
    [[ $text == *"quit with ⌘A"* ]] || { echo "$text"; exit 1; }
    "$1" || { echo "a forked child: step $?"; exit 1; }' "$program" "$forks"
DISPLAY=:987 "$program" | grep -q "quit with ⌘Q"
