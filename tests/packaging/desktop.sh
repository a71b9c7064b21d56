#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What the console brings for desktops and shells: files that their own tools accept, a program and
# an icon behind the menu entry, and a completion that knows each option of the help.
set -euo pipefail
console=$1 data=$2/examples/console/data
if command -v desktop-file-validate >/dev/null; then desktop-file-validate "$data"/*.desktop; fi
validate() { appstreamcli validate --no-net --pedantic "$@" "$data"/*.metainfo.xml; }
if command -v appstreamcli >/dev/null; then
    # There is no homepage to name. An old tool does not know the rule.
    told=$(validate --override=url-homepage-missing=info 2>&1) || validate || { echo "$told"; exit 1; }
fi
entry=$(sed -n 's/^\(Exec\|Icon\)=//p' "$data/org.veltra.console.desktop" | paste -sd ' ')
is() { [ "$1" = "$2" ] || { echo "'$1', not '$2'"; exit 1; }; }
is "$entry" "veltra-console %F org.veltra.console"
[ -f "$data/org.veltra.console.svg" ]

. "$data/veltra-console.bash"
complete_words() {
    COMP_WORDS=("$console" "$@") COMP_CWORD=$#
    _veltra_console "$console"
    echo "${COMPREPLY[@]}"
}
is "$(complete_words --th)" --theme
is "$(complete_words --theme "")" "light dark"
is "$(complete_words --bits 2)" 24
is "$(complete_words good)" ""
told=$("$console" --help | grep -oE -e '^ .* --[a-z-]+' | grep -oE -e '--[a-z-]+' | sort -u | paste -sd ' ')
is "$(complete_words -- | tr ' ' '\n' | sort -u | paste -sd ' ')" "$told"
