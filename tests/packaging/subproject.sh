#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A host that takes the tree in by add_subdirectory gets the library alone: no tests, no examples,
# no install rules of ours, and its own warnings stay its own.
#
# The folder of the build is kept beside that of the tree itself, and the flags are those of the
# tree: what is compiled already is not compiled again.
set -euo pipefail
source_dir=$1 cc=$2 cxx=$3 flags=$4 build=$5-subproject
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$build"
cat >"$build/CMakeLists.txt" <<HOST
cmake_minimum_required(VERSION 3.25)
project(Host LANGUAGES C CXX)
set(VELTRA_SHARED OFF)
set(VELTRA_WERROR ON)
set(CMAKE_BUILD_TYPE Debug)
set(CMAKE_C_FLAGS_DEBUG "$flags")
set(CMAKE_CXX_FLAGS_DEBUG "$flags")
add_subdirectory("$source_dir" veltra EXCLUDE_FROM_ALL)
add_executable(host "$source_dir/examples/first_program/main.cpp")
target_link_libraries(host PRIVATE Veltra::Veltra)
HOST
cmake -S "$build" -B "$build" -G Ninja -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" >"$work/configure.log"
cmake --build "$build" --target host >"$work/build.log" || { cat "$work/build.log"; exit 1; }
"$build/host" 2>/dev/null
cmake --install "$build" --prefix "$work/prefix" >/dev/null
[ ! -e "$work/prefix/include" ]
ninja -C "$build" -t targets all | grep -qE '_test:' && { echo "tests are built for the host"; exit 1; }
echo "built as a subproject"
