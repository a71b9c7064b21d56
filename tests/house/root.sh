#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Nothing is kept in the root folder but what belongs there.
#
#   tests/house/root.sh ROOT
set -euo pipefail
cd "$1"
known='.ci .clang-format .clang-tidy .gitignore .reuse CHANGELOG.md CMakeLists.txt CMakePresets.json
CONTRIBUTING.md LICENSE LICENSES README.md SECURITY.md abi benchmarks build cmake debian docs examples fuzz
python scripts tests veltra'
kept=$({ git ls-files 2>/dev/null || ls -A --ignore=.git; } | cut -d/ -f1 | sort -u)  # also without git
[ -n "$kept" ]
strange=$(comm -13 <(tr ' ' '\n' <<<"$known" | sort) - <<<"$kept")
[ -z "$strange" ] || { echo "in the root folder:" $strange; exit 1; }
