# SPDX-License-Identifier: MIT
# Hands a guide to Doxygen: its headings get the names that links use, links lead to those names, and
# what is no page of the reference (an example, a script) is named without a link.
function label(name, heading,    slug) {
    slug = tolower(heading)
    gsub(/[^a-z0-9 _-]/, "", slug)
    gsub(/ /, "-", slug)
    return name "_" slug
}
function page(path,    name) {
    name = path
    sub(/.*\//, "", name)
    sub(/\.md$/, "", name)
    return name
}
FNR == 1 { here = page(FILENAME); is_code = 0 }
/^```/ { is_code = !is_code; print; next }
is_code { print; next }
/^###* / { heading = $0; sub(/^#+ /, "", heading); print $0 " {#" label(here, heading) "}"; next }
{
    rest = $0
    line = ""
    while (match(rest, /\]\([^)]*\)/)) {
        target = substr(rest, RSTART + 2, RLENGTH - 3)
        before = substr(rest, 1, RSTART - 1)
        after = substr(rest, RSTART + RLENGTH)
        if (target ~ /\.(png|svg)$/) sub(/.*\//, "", target)
        if (target ~ /^https?:|\.(png|svg|md)$/) link = "](" target ")"
        else if (target ~ /^#/) link = "](#" label(here, substr(target, 2)) ")"
        else if (target ~ /\.md#/) link = "](#" label(page(substr(target, 1, index(target, "#") - 1)), substr(target, index(target, "#") + 1)) ")"
        else {  # the text alone: its bracket is the last one open
            for (i = length(before); i > 0 && substr(before, i, 1) != "["; --i);
            before = substr(before, 1, i - 1) substr(before, i + 1)
            link = ""
        }
        line = line before link
        rest = after
    }
    print line rest
}
