# SPDX-License-Identifier: MIT
# Shared by the scripts beside it; sourced, not run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
export LC_ALL=C.UTF-8

say() { printf '\n== %s\n' "$*"; }
fail() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# The script's own first comment.
usage() { sed -n '3,${/^#/!q; s/^# \{0,1\}//; p}' "$0"; }
case ${1-} in -h | --help) usage; exit 0 ;; esac

# Where ccache is installed, a tree that was compiled before, here or in another folder, is not
# compiled again. A launcher of your own stays.
use_compiler_cache() {
    command -v ccache >/dev/null || return 0
    export CMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER-ccache}
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
    export CCACHE_BASEDIR=${CCACHE_BASEDIR-$PWD} CCACHE_NOHASHDIR=1
    export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS-pch_defines,time_macros}  # tests have a precompiled header
}
use_compiler_cache

# Configures and builds one preset. On a terminal the progress shows; elsewhere only what went wrong
# does.
build() {
    local preset=$1
    shift
    use_compiler_cache  # the script may just have installed it
    say "build $preset"
    cmake --preset "$preset" "$@" | grep -E '^--   VELTRA_|^-- Veltra|not found' || true
    if [ -t 1 ]; then
        cmake --build --preset "$preset" --parallel "$(nproc)"
    else
        cmake --build --preset "$preset" --parallel "$(nproc)" |
            { grep -vE '^\[[0-9]+/[0-9]+\] |^ninja: no work to do' || true; }
    fi
}

# Reads the end of ctest's log: sets p (passed), s (skipped) and f (failed).
count_tests() {
    local total
    read -r f total < <(sed -nE 's/.* ([0-9]+) tests failed out of ([0-9]+)$/\1 \2/p' "$1") || true
    [ "${total:-0}" -gt 0 ] || { cat "$1"; fail "no test ran: $1"; }
    s=$(grep -cE '^[[:space:]]+[0-9]+ - .* \(Skipped\)$' "$1" || true)
    p=$((total - s - f))
}

# What such a log says beside the tests that passed.
tell_failures() { grep -vE ' Passed |^ *Start ' "$1" || true; }

# Each reason of a skipped test once, with its count, out of ctest's results (--output-junit).
tell_skips() {
    echo "skipped, by reason:"
    sed 's/.*<system-out>//; s/&apos;/'\''/g; s/&quot;/"/g' "$@" |
        awk '/: Skipped$/ { getline; print } sub(/^Skipped: /, "")' | sort | uniq -c | sort -rn
}

# MAJOR, MINOR or PATCH of the tree's version.
version_part() { sed -n "s/^#define VELTRA_VERSION_$1 //p" veltra/version.h; }

# What needs a configured tree makes do with the one there is.
configure_dev() { [ -f build/dev/CMakeCache.txt ] || cmake --preset dev >/dev/null; }

# The headers that the tree would install, below a folder; nothing is compiled.
install_headers() {
    configure_dev
    cmake --install build/dev --component headers --prefix "$1" >/dev/null
}
