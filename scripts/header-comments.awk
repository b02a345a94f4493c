# Which comment holds for which declaration of a public header.
#   out=doxygen   the header as Doxygen wants it: every declaration has its comment right before it
#   out=list      one line for each exported function: place, name, its declaration, its comment, by tabs
# A comment holds for the declarations below it up to a blank line or the next comment, and one behind a
# declaration for that one. A comment above a blank line holds for the whole section, which ends at the
# next such comment or at a headline ("--- Data ---"); the file's first comment, and those before its first
# headline, hold for the whole file.

function flat(s) {
    gsub(/\n/, " ", s)
    gsub(/[ \t]+/, " ", s)
    gsub(/^ | $/, "", s)
    return s
}

# The text of a comment without its marks.
function bare(s) {
    gsub(/\/\*\*?<?|\*\/|\/\/\/?/, "", s)
    gsub(/\n[ \t]*\*[ \t]/, "\n", s)
    gsub(/^[ \t]+|[ \t]+$/, "", s)
    return s
}

# Doxygen reads some signs as commands.
function quoted(s) {
    gsub(/[\\@<>#%&]/, "\\\\&", s)
    return s
}

function show(line) { if (out == "doxygen") print line }

# What a finished comment says about what follows, which is known at the next line.
function end_comment() {
    pending = bare(comment)
    in_comment = 0
    if (pending ~ /---/) {
        gsub(/--+ *| *--+/, "", pending)
        if (named) show("/** @} */")
        show("/** @name " quoted(pending) "\n@{ */")
        named = 1
        if (!headed) filewide = filewide " " family
        headed = 1
        pending = family = own = ""
    }
}

function doc(text) {
    if (text == "" && family == "") return
    show("/** " quoted(text) (family != "" && exported ? "\n\n" quoted(family) : "") " */")
}

function finish_list(    name, decl) {
    if (out != "list" || !exported || statement ~ /^[^(]*(class|struct) /) return
    decl = statement
    sub(/^.*(OX|UT|FL)_API[ \t]+/, "", decl)
    name = decl
    sub(/\(.*/, "", name)
    sub(/.*[ *]/, "", name)
    sub(/;.*/, ";", decl)
    if (own != covering && own !~ /^The same/) before = ""
    else if (own != covering) before = before " " covering
    covering = own # "The same with ..." leans on the comment before it.
    printf "%s:%d\t%s\t%s\t%s\t%s\n", FILENAME, line, name, flat(decl), flat(own " " trailing " " before),
        flat(family " " filewide)
}

function end_statement() {
    finish_list()
    statement = ""
}

FNR == 1 { pending = own = family = filewide = statement = ""; in_comment = 0; depth = 0; first = 1; named = headed = started = 0 }

# Inside of a comment that stands for itself.
in_comment { comment = comment "\n" $0; if (/\*\/[ \t]*$/) end_comment(); next }

statement == "" && /^[ \t]*\/\*/ {
    comment = $0
    in_comment = 1
    if (first) { show("/** @file */"); first = 0 }
    if (/\*\/[ \t]*$/) end_comment()
    own = ""
    next
}
statement == "" && /^[ \t]*\/\/\/?/ {
    if (first) { show("/** @file */"); first = 0 }
    pending = (pending == "" ? "" : pending "\n") bare($0)
    own = ""
    next
}
statement == "" && /^[ \t]*$/ {
    if (pending != "" && started) family = pending
    else if (pending != "") filewide = filewide pending
    pending = own = ""
    show("")
    next
}
in_macro || statement == "" && /^[ \t]*#/ {
    if (in_macro) show($0)
    continued = in_macro
    in_macro = /\\$/
    if (continued) next
    if (!started && pending != "") { # The file's first comment stands right above its first line.
        filewide = pending
        pending = ""
    }
    started = started || /^#include|^#define/
    if (pending != "") own = pending
    pending = ""
    text = $0
    if (/^#define/) {
        if (own != "") doc(own)
        sub(/[ \t]*\/\*[^*<]/, " /**< ", text)
    }
    show(text)
    next
}

{
    if (statement == "") { # A declaration begins.
        started = 1
        if (pending != "") own = pending
        pending = trailing = ""
        line = FNR
        exported = /(^|[ \t(])(OX|UT|FL)_API[ \t]/ && !/class|struct [A-Za-z_]* \{/
        scope = /^[ \t]*(typedef |template<.*> )?(class|struct|enum|union|namespace|extern "C").*\{[^}]*$/
        closes = /^[ \t]*\}/
        if (!closes && !/^[ \t]*(public|private|protected):/ && !/^(OX_BEGIN_C|OX_END_C|extern|namespace)/ &&
            !($0 ~ /^[ \t]*\/\//))
            doc(own)
    }
    text = $0
    if (match($0, /(;|,|\{|\}|[A-Za-z0-9_])[ \t]*(\/\*[^*]|\/\/ )/) && $0 !~ /^[ \t]*\/\//) {
        behind = substr($0, RSTART + RLENGTH)
        trailing = behind
        if (index($0, "/*") && !/\*\//) in_trailing = 1
        sub(/[ \t]*\/\*[^*<]/, " /**< ", text)
        if (text == $0) sub(/[ \t]*\/\/ /, " ///< ", text)
        sub(/\*\/.*/, "", trailing)
    } else if (in_trailing) {
        behind = $0
        sub(/\*\/.*/, "", behind)
        trailing = trailing " " behind
        if (/\*\//) in_trailing = 0
    }
    show(text)
    code = $0
    sub(/[ \t]*(\/\*|\/\/).*/, "", code)
    statement = statement " " code
    if (in_trailing) next
    opens = gsub(/\{/, "{", code)
    shuts = gsub(/\}/, "}", code)
    if (scope) { # What is inside has comments of its own.
        statement = own = ""
        next
    }
    depth += opens - shuts
    if (closes) depth = 0
    if (depth <= 0 && (code ~ /[;}][ \t]*$/ || code ~ /^[ \t]*(public|private|protected):/ || code ~ /,[ \t]*$/ && statement !~ /\(/ || code ~ /^(OX_BEGIN_C|OX_END_C)/)) {
        depth = 0
        if (closes) own = ""
        end_statement()
    }
}

END { if (named) show("/** @} */") }
