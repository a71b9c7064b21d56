#!/usr/bin/env bash
# Every public header compiles alone: as C++20, and as C11 where it declares functions for C.
set -euo pipefail
source_dir=$1 cc=$2 cxx=$3
cd "$source_dir"
checked=0 status=0
while read -r header; do
    echo "#include \"$header\"" | "$cxx" -std=c++20 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I. -x c++ - || status=1
    if grep -q VELTRA_C_BEGIN "$header"; then
        echo "#include \"$header\"" | "$cc" -std=c11 -pedantic-errors -Wall -Wextra -Wstrict-prototypes \
            -Werror -fsyntax-only -I. -x c - || status=1
    fi
    checked=$((checked + 1))
done < <(find veltra -name '*.h' ! -path 'veltra/qt/*' | sort)
echo "$checked headers checked"
[ "$checked" -gt 5 ] && exit $status
