#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Includes go the way that veltra/rooms.txt allows; detail/ is its room's own. The system's headers
# stay in platform/<system>/, Qt in qt/, conditions on the system in platform/, and marks of one
# object format in base/object_file.h. Tests may look everywhere, and condition nothing either.
#
#   tests/house/layers.sh ROOT
set -euo pipefail
cd "$1"
find veltra -type f \( -name '*.h' -o -name '*.cpp' -o -name '*.c' \) -print0 | sort -z |
    xargs -0 awk '
function complain(what) { print FILENAME ":" FNR ": " what; failed = 1 }

# Finds the room of a path below veltra/: sets `room`, and `row` to its row of the table. A folder
# counts for a row "x/*" unless it is one that every room may have.
function locate(path,    parts, count, prefix, i) {
    room = row = ""
    count = split(path, parts, "/")
    for (i = 1; i < count; ++i) {
        if (prefix "*" in may && parts[i] != "detail" && parts[i] != "testing") {
            room = prefix parts[i]
            row = prefix "*"
        }
        prefix = prefix parts[i]
        if (prefix in may) room = row = prefix
        prefix = prefix "/"
    }
}

function judgeInclude(name) {
    if (name ~ /^"/) {
        name = substr(name, 2, length(name) - 2)
        if (name !~ /^veltra\//) return complain("not from the root: " name)
        name = substr(name, 8)
        if (name !~ /\//) return
        locate(name)
        if (room == own) return
        if (room == "") return complain("no such room: " name)
        if (index(" " may[ownRow] " ", " " row " ") == 0) return complain(own " may not know " room)
        if (name ~ /\/detail\//) complain("the detail of " room " is its own")
        return
    }
    name = substr(name, 2, length(name) - 2)
    if (name ~ /^(Q[A-Z]|Qt)/) {
        if (own != "qt") complain("Qt outside of veltra/qt: " name)
    } else if (name ~ /\.h$/ && ownRow != "platform/*" && !(name in portable)) {
        complain("a header of the system outside of veltra/platform/<system>: " name)
    }
}

BEGIN {
    for (n = split("stdarg.h stdbool.h stddef.h stdint.h arm_acle.h arm_neon.h immintrin.h", names, " "); n > 0; --n)
        portable[names[n]]
    while ((getline line < "veltra/rooms.txt") > 0) {
        if (line !~ /^[A-Za-z]/) continue
        name = line
        sub(/:.*/, "", name)
        sub(/^[^:]*: */, "", line)
        may[name] = line
    }
}

FNR == 1 {
    path = substr(FILENAME, 8)
    isTest = FILENAME ~ /_test\.cpp$|\/testing\//
    locate(path)
    own = room
    ownRow = row
    if (own == "" && path ~ /\//) complain("a room without a row in veltra/rooms.txt")
}

/^[ \t]*#[ \t]*include[ \t]*["<]/ && !isTest && own != "" {
    name = $0
    sub(/^[^"<]*/, "", name)
    close_ = substr(name, 1, 1) == "<" ? ">" : "\""
    judgeInclude(substr(name, 1, 1 + index(substr(name, 2), close_)))
}

/^[ \t]*#[ \t]*(if|ifdef|ifndef|elif)/ && path !~ /^platform\// && path != "base/object_file.h" &&
/__linux|__APPLE__|__MACH__|_WIN32|_WIN64|__unix|__[A-Za-z]+BSD__|__ANDROID__|TARGET_OS_|__ELF__|__GLIBC__/ {
    complain("a condition on the system outside of veltra/platform")
}

/gnu::(tls_model|section)|__attribute__ *\(\((section|tls_model)/ && path != "base/object_file.h" {
    complain("a mark of one object format outside of veltra/base/object_file.h")
}

END { exit failed }'
