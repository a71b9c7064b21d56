#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Includes point one way: each room names the rooms it may know, and only platform/linux and qt
# know the operating system and the toolkit.
set -euo pipefail
cd "$1"
declare -A may=(
    [base]=""
    [platform]="base"
    [ui]="base platform"
    [diagnostics]="base platform"
    [memory]="base platform diagnostics"
    [processor]="base platform diagnostics"
    [audio]="base platform diagnostics"
    [Source]="base platform diagnostics"
    [infrastructure]="base platform diagnostics Source"
    [controls]="base platform ui diagnostics infrastructure audio"
    [qt]="base platform ui diagnostics"
)
status=0
breach() { echo "$1"; status=1; }

while IFS=: read -r file line text; do
    case $file in *_test.cpp) continue ;; esac
    room=${file#veltra/} room=${room%%/*}
    [ -n "${may[$room]+known}" ] || { breach "$file: a room without a rule here"; continue; }
    target=""
    [[ $text =~ \"veltra/([^/\"]+)/ ]] && target=${BASH_REMATCH[1]}
    [ -z "$target" ] || [ "$target" = "$room" ] || [[ " ${may[$room]} " == *" $target "* ]] ||
        breach "$file:$line: $room may not know $target"
done < <(grep -rnE '^#include "veltra/' veltra --include='*.h' --include='*.cpp' | grep '^veltra/[^/]*/')

hits=$(grep -rnE '#include <(Q[A-Z]|QtCore|QtGui)' veltra --include='*.h' --include='*.cpp' | grep -v '^veltra/qt/' || true)
[ -z "$hits" ] || breach "Qt outside veltra/qt: $hits"
hits=$(grep -rnE '#include <(sys/|linux/|unistd|pthread|poll|fcntl|signal|spawn|dlfcn|time)\.?' veltra --include='*.h' --include='*.cpp' |
    grep -vE '^veltra/platform/linux/|_test\.cpp:|/testing/|^veltra/qt/' || true)
[ -z "$hits" ] || breach "system headers outside veltra/platform/linux: $hits"
hits=$(grep -rnE '^# *(if|ifdef|elif).*(__linux|__APPLE__|_WIN32|__unix)' veltra | grep -v '^veltra/platform/' || true)
[ -z "$hits" ] || breach "#if on the operating system outside veltra/platform: $hits"
exit $status
