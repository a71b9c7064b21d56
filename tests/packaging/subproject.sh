#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A host that takes the tree in by add_subdirectory gets the library alone: no tests, no examples,
# no install rules of ours, and its own warnings stay its own.
set -euo pipefail
source_dir=$1 cc=$2 cxx=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat >"$work/CMakeLists.txt" <<HOST
cmake_minimum_required(VERSION 3.25)
project(Host LANGUAGES C CXX)
set(VELTRA_SHARED OFF)
set(CMAKE_BUILD_TYPE Debug)
set(CMAKE_C_FLAGS_DEBUG "-O0")
set(CMAKE_CXX_FLAGS_DEBUG "-O0")  # the build is what is tested
add_subdirectory("$source_dir" veltra EXCLUDE_FROM_ALL)
add_executable(host "$source_dir/examples/first_program/main.cpp")
target_link_libraries(host PRIVATE Veltra::Veltra)
HOST
cmake -S "$work" -B "$work/build" -G Ninja -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" >"$work/configure.log"
cmake --build "$work/build" --target host >"$work/build.log" || { cat "$work/build.log"; exit 1; }
"$work/build/host" 2>/dev/null
cmake --install "$work/build" --prefix "$work/prefix" >/dev/null
[ ! -e "$work/prefix/include" ]
ninja -C "$work/build" -t targets all | grep -qE '_test:' && { echo "tests are built for the host"; exit 1; }
echo "built as a subproject"
