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

# Reads what ninja says: prints how far it is at each tenth, with the minutes since the beginning, and
# all that is not about its steps.
tenths() { # NAME
    local line tenth shown=0 begin=$SECONDS time
    while IFS= read -r line; do
        if [[ $line =~ ^\[([0-9]+)/([0-9]+)\]\  ]]; then
            tenth=$((BASH_REMATCH[1] * 10 / BASH_REMATCH[2]))
            [ "$tenth" -gt "$shown" ] || continue
            shown=$tenth time=$((SECONDS - begin))
            printf '%s: %d %%  %d:%02d\n' "$1" $((tenth * 10)) $((time / 60)) $((time % 60))
        elif [ "$line" != 'ninja: no work to do.' ]; then
            printf '%s\n' "$line"
        fi
    done
}

# Configures a tree, and prints which lines of CMake's are told; all of them when it fails.
configure() { # TOLD CMAKE-ARGUMENT...
    local told=$1 lines
    shift
    lines=$(cmake "$@") || { printf '%s\n' "$lines"; fail "the tree was not configured"; }
    grep -E "$told" <<<"$lines" || true
}

# Configures and builds one preset. A terminal shows each step, anything else every tenth. The
# switches are printed when they are new.
build() {
    local preset=$1 told='^--   VELTRA_|^-- Veltra|not found'
    shift
    use_compiler_cache  # the script may just have installed it
    say "build $preset"
    mkdir -p "build/$preset" 2>/dev/null || fail "$PWD/build cannot be written to; copy the tree to where it can"
    [ ! -f "build/$preset/CMakeCache.txt" ] || told='^-- Veltra|not found'
    configure "$told" --preset "$preset" "$@"
    if [ -t 1 ]; then
        cmake --build --preset "$preset" --parallel "$(nproc)"
    else
        cmake --build --preset "$preset" --parallel "$(nproc)" | tenths "build $preset"
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
