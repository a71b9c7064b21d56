# SPDX-License-Identifier: MIT
# Shared by the scripts beside it; sourced, not run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
export LC_ALL=C.UTF-8

say() { printf '\n== %s\n' "$*"; }
fail() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# Configures and builds one preset; quiet where nothing changed.
build() {
    local preset=$1
    shift
    say "build $preset"
    cmake --preset "$preset" "$@" | grep -E '^--   VELTRA_|^-- Veltra|not found' || true
    cmake --build --preset "$preset" --parallel "$(nproc)" | tail -n 3
}

# Reads ctest's log, one line a test: sets p (passed), s (skipped) and f (failed).
count_tests() {
    local total
    p=$(grep -cE '^ *[0-9]+/[0-9]+ Test .* Passed ' "$1" || true)
    s=$(grep -cE '^ *[0-9]+/[0-9]+ Test .*\*\*\*Skipped ' "$1" || true)
    total=$(sed -nE 's/.* tests failed out of ([0-9]+)$/\1/p' "$1")
    [ "${total:-0}" -gt 0 ] || { cat "$1"; fail "no test ran: $1"; }
    f=$((total - p - s))
}

# What such a log says beside the tests that passed.
tell_failures() { grep -vE ' Passed |^ *Start ' "$1" || true; }
