#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Every header compiles alone: as C++20, and as C11 where it declares functions for C. Those of one
# instruction set need the flags of their kernels, and are left out, as are those of a list: the
# installed ones, which install.sh compiles where they are installed.
#
#   tests/packaging/headers.sh ROOT CC CXX [LIST]
set -euo pipefail
cc=$2 cxx=$3
cd "$1"
export cc cxx
check() {
    echo "#include \"$1\"" | "$cxx" -std=c++20 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I. -x c++ - || return 1
    grep -q '^VELTRA_C_BEGIN' "$1" || return 0
    echo "#include \"$1\"" | "$cc" -std=c11 -pedantic-errors -Wall -Wextra -Wstrict-prototypes \
        -Werror -fsyntax-only -I. -x c -
}
export -f check
headers=$(find veltra -name '*.h' ! -path 'veltra/qt/*' ! -path '*/testing/*' \
    ! -path '*/kernels/avx*' ! -path '*/kernels/ssse3*' ! -path '*/kernels/neon*' \
    ! -path '*/kernels/crc_pclmul*' | grep -vxF -f "${4-/dev/null}" | sort)
xargs -P "$(nproc)" -n 1 bash -c 'check "$0"' <<<"$headers"
echo "$(wc -l <<<"$headers") headers, $(grep -l '^VELTRA_C_BEGIN' $headers | wc -l) of them for C too"
