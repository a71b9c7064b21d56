#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Where a step fails, no script goes on with what is left of the run before: in a copy of them, with
# tools that fail.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/bin"
cp -r "$1/scripts" "$work"
tool() { printf '#!/bin/sh\n%s\n' "$2" >"$work/$1"; chmod +x "$work/$1"; }
tool scripts/setup ''
tool scripts/mk-sysroot ''
tool bin/cmake 'mkdir -p build/fuzz build/coverage build/hosts; [ "$1" = --build ] && touch built'
tool bin/spin 'echo "$@" >pan.c'
tool bin/cc '! grep -q LEAVE_OFFERED pan.c || exit 1
    echo "echo errors: 0" >pan; chmod +x pan
    ! grep -q -e -D pan.c || echo "echo pan:1: assertion violated \(at depth 1\) errors: 1" >pan'
run() { PATH=$work/bin:$PATH CC=cc "$work/scripts/$@" >"$work/log" 2>&1 || true; }
wrong() { echo "$1"; cat "$work/log"; exit 1; }

run reference --headers "$work/no/headers"
[ ! -e "$work/build" ] || wrong "reference takes other headers than those that it is given"
for script in 'test dev' coverage 'fuzz 1 target' 'test-hosts s390x'; do
    # shellcheck disable=SC2086
    run $script
    [ ! -e "$work/built" ] || wrong "$script builds what was not configured"
done
run check-model
[ "$(tail -n 1 "$work/log")" = 'SAME_SLOT: fails (assertion violated)' ] ||
    wrong "check-model runs what was not compiled"
