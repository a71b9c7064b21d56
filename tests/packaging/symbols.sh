#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The library exports what the committed list says: nothing lost, nothing slipped out.
# So does the list of the Debian package, which names those of C and says since when they are there.
# After a deliberate change: tests/packaging/symbols.sh LIBRARY LIST --update
set -euo pipefail
library=$1 list=$2
root=$(dirname "$(realpath "$0")")/../..
package_list=$(ls "$root"/debian/libveltra[0-9]*.symbols)
version=$(sed -n 's/^#define VELTRA_VERSION_\(MAJOR\|MINOR\|PATCH\) //p' "$root/veltra/version.h" | paste -sd .)
# The C names of the library, each with its version in the package's list, else with this one.
package_symbols() {
    sed '/^ [A-Za-z_]/d' "$package_list"
    nm -D --defined-only "$library" | awk '$3 !~ /^_Z/ { print $3 }' | LC_ALL=C sort -u |
        awk -v version="$version" 'NR == FNR { since[$1] = $2; next }
            { name = $1 "@Base"; print " " name, name in since ? since[name] : version }' "$package_list" -
}
exported=$(nm -DC --defined-only "$library" | cut -d' ' -f2- | LC_ALL=C sort -u)
if [ "${3-}" = --update ]; then
    printf '%s\n' "$exported" >"$list"
    symbols=$(package_symbols)
    printf '%s\n' "$symbols" >"$package_list"
    exit 0
fi
diff -u "$list" <(printf '%s\n' "$exported") || { echo "exported symbols differ from the list"; exit 1; }
diff -u "$package_list" <(package_symbols) || { echo "$package_list is another list"; exit 1; }
echo "$(wc -l <"$list") symbols, as listed"
