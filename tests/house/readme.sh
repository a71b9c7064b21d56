#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Each C or C++ block of the documents stands, line for line, in a file that is compiled; each
# script and relative link that they name exists.
set -euo pipefail
cd "$1"
status=0
mapfile -t documents < <(ls README.md CONTRIBUTING.md CHANGELOG.md docs/*.md)
for document in "${documents[@]}"; do
    while IFS= read -r target; do
        [ -e "$(dirname "$document")/${target%%#*}" ] || { echo "$document: no $target"; status=1; }
    done < <(grep -oP '\]\(\K(?!https?:|#)[^)]+' "$document" || true)
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for document in "${documents[@]}"; do
    awk -v out="$work/$(basename "$document")" '
        /^```(cpp|c)$/ { inside = 1; n++; next }
        /^```/ { inside = 0 }
        inside { print > (out "." n) }' "$document"
done
mapfile -t compiled < <(find examples veltra -name '*.cpp' -o -name '*.c')
blocks=0
for block in "$work"/*; do
    [ -e "$block" ] || continue
    blocks=$((blocks + 1))
    python3 -c 'import sys; sys.exit(not any(open(sys.argv[1]).read() in open(f).read() for f in sys.argv[2:]))' \
        "$block" "${compiled[@]}" ||
        { echo "$(basename "$block"): no compiled file holds this block"; cat "$block"; status=1; }
done
echo "$blocks blocks of code, ${#documents[@]} documents"
[ $blocks -gt 0 ] && exit $status
