#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The gate refuses each fault that is planted in a copy of the tree, with its line and nothing else,
# and accepts a second system.
set -euo pipefail
source_dir=$1
gate=$source_dir/tests/house/layers.sh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$source_dir/veltra" "$work"
bash "$gate" "$work" || { echo "refused before anything was planted"; exit 1; }

expected=$work/expected
plant() { # FILE LINE [COMPLAINT]
    mkdir -p "$work/veltra/$(dirname "$1")"
    printf '// planted\n%s\n' "$2" >"$work/veltra/$1"
    [ -z "${3-}" ] || echo "veltra/$1:2: $3" >>"$expected"
}

# A port of its own, which its neighbours need not know.
plant platform/other/clock.cpp '#include <mach/mach_time.h>'
plant platform/other/clock.h '#include "veltra/platform/clock.h"'
plant platform/other/alert.cpp '#include "veltra/platform/other/clock.h"'
plant platform/other/errors.cpp '#if defined(__APPLE__)'
plant controls/planted_cells/cell.cpp '#include "veltra/ui/view.h"'
plant controls/planted_cells/detail/part.cpp '#include "veltra/controls/planted_cells/detail/part.h"'
plant memory/planted_test.cpp '#include <unistd.h>'
plant memory/testing/planted.h '#include "veltra/controls/level_meters/decibel_scale.h"'

outside="a header of the system outside of veltra/platform/<system>"
plant platform/other/journal.cpp '#include "veltra/platform/linux/journal_log.h"' 'platform/other may not know platform/linux'
plant platform/other/log.cpp '#include "veltra/diagnostics/log.h"' 'platform/other may not know diagnostics'
plant platform/planted.cpp '#include "veltra/platform/linux/deadline.h"' 'platform may not know platform/linux'
plant platform/planted.h '#include <pthread.h>' "$outside: pthread.h"
plant base/planted.cpp '#include "veltra/platform/clock.h"' 'base may not know platform'
plant base/planted.h '  #  include  <mach/mach.h>' "$outside: mach/mach.h"
plant base/system.h '#ifdef __APPLE__' 'a condition on the system outside of veltra/platform'
plant memory/planted.cpp '[[gnu::section("planted")]] int x;' 'a mark of one object format outside of veltra/base/object_file.h'
plant memory/planted.h '#include "veltra/memory/leak_guard.h"'
plant audio/planted.h '#include "veltra/memory/leak_guard.h"' 'audio may not know memory'
plant audio/planted.cpp '#include "veltra/diagnostics/detail/banner.h"' 'the detail of diagnostics is its own'
plant audio/detail/planted.cpp '#include <errno.h>' "$outside: errno.h"
plant ui/planted.cpp '#include <QWidget>' 'Qt outside of veltra/qt: QWidget'
plant ui/planted.h '#include "veltra/controls/level_meters/decibel_scale.h"' 'ui may not know controls/level_meters'
plant qt/planted.cpp '#include <unistd.h>' "$outside: unistd.h"
plant qt/planted.h '#include "veltra/diagnostics/log.h"' 'qt may not know diagnostics'
plant controls/planted_cells/other.cpp '#include "veltra/controls/level_meters/decibel_scale.h"' 'controls/planted_cells may not know controls/level_meters'
plant controls/level_meters/planted.cpp '#include "planted.h"' 'not from the root: planted.h'
plant basement/planted.cpp ''
echo 'veltra/basement/planted.cpp:1: a room without a row in veltra/rooms.txt' >>"$expected"

status=0
bash "$gate" "$work" >"$work/refused" || status=$?
diff -u <(sort "$expected") <(sort "$work/refused") || { echo "the gate did not refuse just what was planted"; exit 1; }
[ $status -ne 0 ] || { echo "the gate complained and passed"; exit 1; }
echo "$(wc -l <"$expected") faults refused, a second system accepted"
