#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The library exports what the committed list says: nothing lost, nothing slipped out.
# After a deliberate change: tests/packaging/symbols.sh LIBRARY LIST --update
set -euo pipefail
library=$1 list=$2
exported=$(nm -DC --defined-only "$library" | cut -d' ' -f2- | LC_ALL=C sort -u)
if [ "${3-}" = --update ]; then
    printf '%s\n' "$exported" >"$list"
    exit 0
fi
diff -u "$list" <(printf '%s\n' "$exported") || { echo "exported symbols differ from the list"; exit 1; }
echo "$(wc -l <"$list") symbols, as listed"
