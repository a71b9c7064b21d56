#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs into an empty prefix, then builds and runs hosts outside the tree that know only the
# prefix: C++ through the CMake package, C11 through pkg-config.
set -euo pipefail
source_dir=$1 build_dir=$2 cc=$3 cxx=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build_dir" --prefix "$prefix" >"$work/install.log"
mv "$prefix" "$work/moved"     # an installed tree may be moved
prefix=$work/moved

cp -r "$source_dir/examples/first_program" "$source_dir/examples/first_program_c" "$work"
cmake -S "$work/first_program" -B "$work/cpp" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$cxx" >"$work/configure.log"
cmake --build "$work/cpp" >"$work/build.log" || { cat "$work/build.log"; exit 1; }

libdir=$(dirname "$(dirname "$(find "$prefix" -name veltra.pc)")")
export PKG_CONFIG_PATH=$libdir/pkgconfig LD_LIBRARY_PATH=$libdir
# shellcheck disable=SC2046
"$cc" -std=c11 -pedantic-errors -Wall -Wextra -Werror "$work/first_program_c/main.c" -o "$work/c" \
    $(pkg-config --cflags --libs veltra)

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
