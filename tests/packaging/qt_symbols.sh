#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# libveltra-qt exports what is Veltra's own: nothing of Qt's or the standard library's templates.
set -euo pipefail
exported=$(nm -DC --defined-only "$1" | cut -d' ' -f3- | grep -vE '^(__bss_start|_edata|_end)$' |
    LC_ALL=C sort -u)  # without the linker's own marks
foreign=$(grep -vE '^(vtable for |typeinfo for |typeinfo name for |VTT for |guard variable for |(non-)?virtual thunk to )?veltra::' <<<"$exported" || true)
[ -z "$foreign" ] || { echo "exported, but not ours:"; echo "$foreign"; exit 1; }
grep -q '^veltra::installQtPort()' <<<"$exported" || { echo "installQtPort() is not exported"; exit 1; }
echo "$(wc -l <<<"$exported") symbols, all ours"
