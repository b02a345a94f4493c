# Reports exported declarations that no comment covers: none directly above the block of declarations
# that they stand in (a block ends at a blank line or at a comment), and none behind them.
FNR == 1 { covered = 0; in_comment = 0; open = "" }

function finish() {
    if (open != "" && !covered && !trailing) {
        name = open
        sub(/\(.*/, "", name)
        sub(/.*[ *]/, "", name)
        printf "%s:%d: %s has no comment\n", FILENAME, line, name
        faults++
    }
    open = ""
}

in_comment { if (/\*\//) { in_comment = 0; covered = 1 } next }
open == "" && /^[ \t]*\/\*/ {
    # A headline such as "--- Data ---" covers nothing.
    if (/---/) { covered = 0; next }
    if (/\*\//) covered = 1; else in_comment = 1
    next
}
open == "" && /^[ \t]*\/\/\/? / { covered = 1; next }
/^[ \t]*$/ { covered = 0; next }
open == "" && /(^|[ \t])(OX|UT|FL)_API[ \t]/ && !/^#/ && !/class|struct [A-Za-z]* \{/ { open = " "; line = FNR; trailing = 0; text = ""; declarations++ }
open != "" {
    text = text " " $0
    if (/;.*(\/\*|\/\/)/) trailing = 1
    if (/;.*\/\*/ && !/\*\//) in_comment = 1
    if (/;/) { open = text; sub(/^.*_API[ \t]+/, "", open); finish() }
}
END {
    printf "%d declarations, %d without a comment\n", declarations, faults
    exit faults > 0 || declarations < 100
}
