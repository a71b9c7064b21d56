#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs into an empty prefix, compiles each header there alone, then builds and runs hosts outside
# the tree that know only the prefix: C++ through the CMake package, C11 through pkg-config.
set -euo pipefail
source_dir=$1 build_dir=$2 cc=$3 cxx=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

uninstall() { cmake "-DBUILD_FOLDER=$1" -P "$source_dir/cmake/VeltraUninstall.cmake" >>"$work/install.log"; }
for staged in '' "$work/staged"; do
    DESTDIR=$staged cmake --install "$build_dir" --prefix "$work/gone" >>"$work/install.log"
    if DESTDIR=$work/elsewhere uninstall "$build_dir" 2>/dev/null; then echo "removed what is not there"; exit 1; fi
    DESTDIR=$staged uninstall "$build_dir"
    left=$(find "$staged$work/gone" ! -type d -o -iname '*veltra*')
    [ -z "$left" ] || { echo "left after uninstalling:"; echo "$left"; exit 1; }
done
mkdir -p "$work/stuck/folder"
echo "$work/stuck/folder" >"$work/stuck/install_manifest.txt"
if uninstall "$work/stuck" 2>/dev/null || [ ! -f "$work/stuck/install_manifest.txt" ]; then
    echo "what could not be removed is forgotten"; exit 1
fi
cmake --install "$build_dir" --prefix "$prefix" >>"$work/install.log"
mv "$prefix" "$work/moved"     # an installed tree may be moved
prefix=$work/moved

libdir=$(dirname "$(dirname "$(find "$prefix" -name veltra.pc)")")
export PKG_CONFIG_PATH=$libdir/pkgconfig LD_LIBRARY_PATH=$libdir

# The installed headers are a closed set without private ones. Those with C linkage serve C11 and
# older C++ too; the others tell a host of older C++ what they need before anything else.
cd "$prefix/include"
private=$(find veltra -path '*/detail/*' -o -path '*/testing/*' -o -path 'veltra/platform/*/*')
[ -z "$private" ] || { echo "private headers are installed:"; echo "$private"; exit 1; }
qt_flags=
[ ! -f "$libdir/pkgconfig/veltra-qt.pc" ] || qt_flags="-fPIC $(pkg-config --cflags Qt6Widgets | sed "s/-I/-isystem /g")"
export cc cxx qt_flags
check_header() {
    local strict="-Wall -Wextra -Wpedantic -Werror -fsyntax-only -I." qt=
    case $1 in veltra/qt/*) qt=$qt_flags ;; esac
    include() { printf '#include "%s"\nextern int lest_it_be_empty;\n' "$1"; }
    # shellcheck disable=SC2086
    if grep -q -E '^(#define )?VELTRA_C_BEGIN' "$1"; then
        include "$1" | "$cc" -std=c11 -pedantic-errors $strict -x c - &&
            include "$1" | "$cxx" -std=gnu++17 $strict -x c++ - || return 1
    else
        include "$1" | "$cxx" -std=gnu++17 $qt -fsyntax-only -I. -x c++ - 2>&1 | grep -m 1 error: |
            grep -q 'Veltra needs C++20' || { echo "$1 does not say that it needs C++20"; return 1; }
    fi
    # shellcheck disable=SC2086
    include "$1" | "$cxx" -std=c++20 $qt $strict -x c++ -
}
export -f check_header
headers=$(find veltra -name '*.h')
xargs -P "$(nproc)" -n 1 bash -c 'check_header "$0"' <<<"$headers"
echo "$(wc -l <<<"$headers") installed headers, $(grep -l -E '^(#define )?VELTRA_C_BEGIN' $headers | wc -l) of them for C too"

cp -r "$source_dir/examples/first_program" "$source_dir/examples/first_program_c" "$work"
cmake -S "$work/first_program" -B "$work/cpp" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$cxx" >"$work/configure.log"
cmake --build "$work/cpp" >"$work/build.log" || { cat "$work/build.log"; exit 1; }

# shellcheck disable=SC2046
"$cc" -std=c11 -pedantic-errors -Wall -Wextra -Werror "$work/first_program_c/main.c" -o "$work/c" \
    $(pkg-config --cflags --libs veltra)

# One version: of the headers, of the library that is loaded, and of the package.
printf '%s\n' '#include <stdio.h>' '#include "veltra/version.h"' 'int main(void) {' \
    '    printf("%d.%d.%d %s %d\n", VELTRA_VERSION_MAJOR, VELTRA_VERSION_MINOR, VELTRA_VERSION_PATCH,' \
    '           VeltraVersion(), VELTRA_VERSION);' '}' >"$work/version.c"
# shellcheck disable=SC2046
"$cc" -std=c11 "$work/version.c" -o "$work/version" $(pkg-config --cflags --libs veltra)
version=$(pkg-config --modversion veltra)
IFS=. read -r major minor patch <<<"$version"
[ "$("$work/version")" = "$version $version $((major * 10000 + minor * 100 + patch))" ] || { echo "not $version: $("$work/version")"; exit 1; }

CFLOG_FORCE_STDERR=1 "$work/cpp/first_program" 2>"$work/cpp.out"
grep -q 'first-program: 16-bit samples: -1.000000 0.500000 0.999969' "$work/cpp.out" || { cat "$work/cpp.out"; exit 1; }
CFLOG_FORCE_STDERR=1 "$work/c" 2>"$work/c.out"
grep -q 'first-program: -1.000000 0.500000 0.999969, first byte 4' "$work/c.out" || { cat "$work/c.out"; exit 1; }

# The library itself asks for nothing of Qt; libveltra-qt does, in a host of its own.
if ldd "$work/cpp/first_program" | grep -q Qt; then echo "a host without Qt depends on Qt"; exit 1; fi
if [ -f "$libdir/pkgconfig/veltra-qt.pc" ]; then
    cp -r "$source_dir/tests/packaging/qt_host" "$work"
    cmake -S "$work/qt_host" -B "$work/qt" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_COMPILER="$cxx" >"$work/configure.log"
    cmake --build "$work/qt" >"$work/build.log" || { cat "$work/build.log"; exit 1; }
    # shellcheck disable=SC2046
    "$cxx" -std=c++20 -fPIC "$work/qt_host/main.cpp" -o "$work/qt_pc" $(pkg-config --cflags --libs veltra-qt) \
        $(pkg-config --static --libs veltra)
    for host in "$work/qt/qt_host" "$work/qt_pc"; do
        QT_QPA_PLATFORM=offscreen "$host" 2>"$work/qt.out" || { echo "$host failed"; cat "$work/qt.out"; exit 1; }
    done
    echo "Qt host built and run"
fi

if library=$(ls "$libdir"/libveltra.so.*.*.* 2>/dev/null); then
    version=$(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --modversion veltra)
    readelf -d "$library" | grep -q "SONAME.*libveltra.so.${version%.*}\]"
fi
echo "C++ and C hosts built and run against $(basename "$(ls "$libdir"/libveltra.* | head -n 1)")"
