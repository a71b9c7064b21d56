#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# One version: of the header, and of whatever repeats it. The names of the packages carry the soname.
#
#   tests/house/versions.sh ROOT
set -euo pipefail
cd "$1"
number() { sed -n "s/^#define VELTRA_VERSION_$1 //p" veltra/version.h; }
version=$(number MAJOR).$(number MINOR).$(number PATCH) soname=$(number MAJOR).$(number MINOR)
status=0
is() { [ "$1" = "$2" ] || { echo "$3 says '$1', veltra/version.h '$2'"; status=1; }; }
is "$(sed -n 's/^__version__ = "\(.*\)"/\1/p' python/veltra/_version.py)" "$version" python/veltra/_version.py
is "$(sed -n '/^## /{s/^## \([^,]*\),.*/\1/p;q}' CHANGELOG.md)" "$version" CHANGELOG.md
is "$(sed -n '1s/^veltra (\(.*\)-[^-]*) .*/\1/p' debian/changelog | sed 's/~.*//')" "$version" debian/changelog
is "$(sed -n '/<release /{s/.*version="\([^"]*\)".*/\1/p;q}' examples/console/data/*.metainfo.xml)" "$version" metainfo.xml
is "$(sed -n 's/^Package: libveltra\(-qt\)\?\([0-9.]*[0-9]\)$/\2/p' debian/control | sort -u)" "$soname" debian/control
is "$(ls debian | sed -n 's/^libveltra\(-qt\)\?\([0-9.]*[0-9]\)\.symbols$/\2/p' | sort -u)" "$soname" "debian/*.symbols"
grep -q "find_package(Veltra $soname " README.md || is "something else" "$soname" "find_package in README.md"
exit $status
