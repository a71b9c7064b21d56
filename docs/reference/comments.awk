# SPDX-License-Identifier: MIT
# Hands a header to Doxygen as if its plain comments were Doxygen's:
#   - The comment at the top speaks for the file, and for types in it that have none of their own.
#   - A comment above several declarations without a blank line between them speaks for each.
#   - A comment behind a declaration speaks for it, together with the lines that go on below it.
#   - Lines that are set in by three blanks or more are shown as they stand.
#   - A comment for the linter speaks for nothing.
# What stands in the bodies of functions is passed on untouched.

# One line of a comment, without its slashes, in Doxygen's own writing.
function written(text, mark,    is_verbatim, parts, count, i, result) {
    is_verbatim = text ~ /^   +[^ ]/
    if (is_verbatim) {
        result = verbatim ? "" : mark "\n" mark "\\verbatim\n"
        verbatim = 1
        return result mark text
    }
    result = verbatim && text !~ /^ *$/ ? mark "\\endverbatim\n" : ""
    if (verbatim && result == "") return mark
    verbatim = 0
    # A quote between single backticks would end them for Doxygen.
    count = split(text, parts, "`")
    for (i = 1; i <= count; i += 2) {
        gsub(/[\\@<>#%]/, "\\\\&", parts[i])
        sub(/^ Thread:/, "\n" mark " <b>Thread:</b>", parts[i])
        sub(/Realtime-safe:/, "<b>Realtime-safe:</b>", parts[i])
    }
    text = parts[1]
    for (i = 2; i <= count; ++i) text = text "``" parts[i]
    sub(/^\n/, mark "\n", text)
    return result (text ~ /^\/\// ? text : mark text)
}
function close_verbatim(mark,    was) {
    was = verbatim
    verbatim = 0
    return was ? mark "\\endverbatim\n" : ""
}

# The comment as Doxygen is to see it. Of a line that is shown as it stands it would also show what is
# left of its slashes: such a comment goes between the marks of C.
function shown(comment) {
    if (comment !~ /\\verbatim/ || comment ~ /\/\*|\*\//) return comment
    gsub(/(^|\n)\/\/\//, "\n", comment)
    sub(/^\n/, "", comment)
    gsub(/\n+\\verbatim\n/, "\n\n\\verbatim\n", comment)
    gsub(/\n+\\endverbatim\n/, "\n\\endverbatim\n\n", comment)
    return "/**\n" comment "*/\n"
}

# The code of a line: no comment, nothing between quotes.
function code_of(line) {
    gsub(/\\./, "", line)
    gsub(/"[^"]*"/, "\"\"", line)
    gsub(/'[^']*'/, "0", line)
    sub(/\/\/.*/, "", line)
    return line
}

# Follows the braces of a line: kinds[1..depth] are D (declarations), E (enumerators) or B (a body).
function follow(code,    i, c) {
    for (i = 1; i <= length(code); ++i) {
        c = substr(code, i, 1)
        if (c == "{") {
            # The first = of a class template may belong to its parameters.
            is_template = statement ~ /^template <[^()]*> *(class|struct) [^()=]*$/
            if (kinds[depth] == "B" || (statement ~ /[(=]/ && !is_template)) kinds[++depth] = "B"
            else if (statement ~ /(^|[^A-Za-z_])enum([^A-Za-z_]|$)/) {
                kinds[++depth] = "E"
                opened = 1
                statement = ""
            }
            else if (statement ~ /(^|[^A-Za-z_])(namespace|class|struct|union|extern)([^A-Za-z_]|$)/) {
                kinds[++depth] = "D"
                opened = 1
                statement_before = statement
                statement = ""
                if (statement_before ~ /(^|[^A-Za-z_])(namespace|extern)([^A-Za-z_]|$)/) frames[depth] = 1
                else delete frames[depth]
            } else kinds[++depth] = "B"
        } else if (c == "}") {
            if (kinds[depth--] == "B") {
                # Behind the body of a function nothing comes; behind an initialiser a semicolon.
                if (kinds[depth] != "B" && statement !~ /=[^()]*$/) statement = ""
            } else statement = (depth + 1) in frames ? "" : "}"
        } else if (kinds[depth] != "B") {
            if (c == ";" || (c == "," && kinds[depth] == "E" && statement !~ /\([^)]*$/)) statement = ""
            else if (c != " " || statement != "") statement = statement c
        }
    }
}

BEGIN { kinds[0] = "D" }

FNR == 1 && /^\/\// { print; in_head = 1; next }
in_head && /^\/\// {
    line = written(substr($0, 3), "///")
    head = head line "\n"
    next
}
in_head { head = head close_verbatim("///"); printf "%s", shown("/// \\file\n" head); in_head = 0 }

kinds[depth] == "B" { follow(code_of($0)); print; next }

/^[ \t]*\/\/ NOLINT/ { print; next }

# Comments of their own, and the rest of a comment behind a declaration.
/^[ \t]*\/\// {
    match($0, /\/\//)
    if (behind && RSTART == behind) { print written(substr($0, RSTART + 2), "///<"); next }
    if (!in_block) { block = ""; verbatim = 0 }
    in_block = 1
    block = block written(substr($0, RSTART + 2), "///") "\n"
    next
}

{
    if (in_block) block = block close_verbatim("///")
    if (/^[ \t]*$/ || /^[ \t]*(public|protected|private):/) block = ""
    # A comment above a frame or a namespace is about what is inside, and Doxygen's \file has it.
    if (/^(VELTRA_C_|namespace |#(if|el|endif|include|pragma|undef))/) block = ""
    in_block = 0
    behind = 0
    code = code_of($0)
    is_macro = /^#define/ || in_macro
    starts = statement == "" && !in_macro && code ~ /[^ \t}]/ && !/^[ \t]*(#(if|el|endif|include|pragma|undef)|public|protected|private|VELTRA_C_|namespace)/
    line = $0
    # What follows is the declaration.
    if (block == "" && /^template <.*>$/) { print; next }
    if (starts && code !~ /^[ \t]*[})]/) {
        if (block != "") printf "%s", shown(block)
        else if (head != "" && line !~ /;/ && line ~ /^(typedef )?(class|struct|enum( class)?) /) printf "%s", shown(head)
    }
    if (code ~ /[^ \t]/ && match(line, /[^ \t].*[ \t]\/\/ /) && code !~ /^[ \t]*(#(if|else|endif)|}|namespace)/) {
        behind = index(line, "// ")
        verbatim = 0
        line = substr(line, 1, behind - 1) written(substr(line, behind + 2), "///<")
    }
    opened = 0
    if (is_macro) { in_macro = line ~ /\\$/; statement = "" }
    else if (!/^(VELTRA_C_|#)/ && !/^[ \t]*(public|protected|private):/) follow(code)
    # Inside a type a new list of declarations begins.
    if (opened) block = ""
    print line
}
