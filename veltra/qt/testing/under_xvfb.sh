#!/usr/bin/env bash
# Runs a test program of the Qt back end on a virtual X server.
set -euo pipefail
command -v xvfb-run >/dev/null || { echo "Skipped: xvfb-run is not installed"; exit 77; }
export QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$(mktemp -d)
trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
xvfb-run -a -s '-screen 0 1280x800x24 -noreset' "$@"
