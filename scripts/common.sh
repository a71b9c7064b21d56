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
