#!/usr/bin/env bash
# check.sh golden|update|levels|fortran LIB... , check.sh documented [LIB]: see README.md.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
word=$1
shift
export LC_ALL=C

symbols() { nm -D --defined-only "$1" | awk '{ sub(/@.*/, "", $3); print $3 }' | sort -u; }
golden() { echo "$root/abi/$(basename "$1").txt"; }

# missing WHAT FILE: status 1 when stdin has lines that FILE (sorted) lacks; they are printed.
missing() { ! sort -u | comm -23 - "$2" | sed "1i $1:" | grep .; }

status=0
case $word in
golden)
    for lib in "$@"; do
        diff -u "$(golden "$lib")" <(symbols "$lib") || status=1
    done
    [ $status = 0 ] || echo "The exported symbols changed. If that is intended: $here/check.sh update $*"
    ;;
update)
    for lib in "$@"; do symbols "$lib" >"$(golden "$lib")"; done
    ;;
levels)
    have=$(mktemp)
    trap 'rm -f "$have"' EXIT
    symbols "$1" >"$have"
    sed -n 's/^#define \(ox[A-Za-z0-9_]*\) OX_LEVEL(.*/\1\n\1_700\n\1_730/p' "$root/include/ox/levels.h" |
        missing "two-level functions without their three symbols" "$have" || status=1
    sed -n 's/^#define \(ox[A-Za-z0-9_]*\) \(ox[A-Za-z0-9_]*_700\)$/\1\n\2/p' "$root/include/ox/compat.h" |
        missing "functions with a form at level 700 only" "$have" || status=1
    ;;
fortran)
    have=$(mktemp) names=$(mktemp) bound=$(mktemp) typed=$(mktemp)
    trap 'rm -f "$have" "$names" "$bound" "$typed"' EXIT
    symbols "$1" >"$have"
    def=$root/src/compat/fortran.def
    sed -nE 's/^ENTRY\((OX[A-Z0-9]+),.*/\1/p; s/^SIZED\((OX[A-Z0-9]+),.*/\1\n\1700\n\1730/p' "$def" |
        sort >"$names"
    awk '{ print; print tolower($1); print tolower($1) "_" }' "$names" |
        missing "names without all three spellings" "$have" || status=1
    grep -x 'OX[A-Z0-9]*' "$have" | missing "exported, but not in fortran.def" "$names" || status=1
    sed -nE 's/.*bind\(C, name="([^"]*)"\).*/\1/p' "$root"/fortran/ox_*.inc | sort >"$bound"
    grep -vx OXCREATEFULL "$names" | missing "names without an explicit interface" "$bound" || status=1
    missing "explicit interfaces of no entry point" "$names" <"$bound" || status=1
    sed -nE 's/^(ENTRY|SIZED)\((OX[A-Z0-9]+), [a-z0-9]+, ([^,]*), \(/\1|\2|\3|/p' "$def" | awk -F'|' '
        function say(name, wide) {
            if ($3 ~ /\*|kwSize/ || ($3 == "Size" && wide)) print "integer*8 " name
            else if ($3 == "int" || $3 == "Size") print "integer*4 " name
            else if ($3 == "double") print "real*8 " name
            else if ($4 ~ /^char \*result/) print "character*64 " name
        }
        $2 == "OXCREATEFULL" { next }
        { say($2, 0) }
        $1 == "SIZED" { say($2 "700", 0); say($2 "730", 1) }' | sort >"$typed"
    awk '$2 ~ /^OX/ && $1 != "external" { print $1, $2 }' "$root/fortran/oxfort.inc" | sort |
        diff "$typed" - || { echo "result types (>) that oxfort.inc should not declare so" && status=1; }
    ;;
documented)
    # Every function has a comment; one that returns a pointer says when that is null, and one that a
    # library can be seen to raise from says so.
    list=$(mktemp) raisers=$(mktemp)
    trap 'rm -f "$list" "$raisers"' EXIT
    awk -v out=list -f "$root/scripts/header-comments.awk" "$root"/include/ut.h "$root"/include/fl.hpp \
        "$root"/include/ox/*.h "$root/include/ox/object_layer.hpp" "$root/include/ox/text.hpp" >"$list"
    for lib in "$@"; do
        objdump -d --no-show-raw-insn "$lib" | awk -f "$here/raises.awk" >"$raisers"
        [ "$(wc -l <"$raisers")" -gt 300 ] || { echo "no disassembly of $lib" && status=1; }
    done
    awk -F'\t' -v raisers="$raisers" '
        BEGIN { while ((getline name < raisers) > 0) raises[name] = 1 }
        $4 ~ /^ *$/ { print $1 ": " $2 " has no comment"; faults++ }
        $3 ~ /^[^(]*\*/ && $4 $5 !~ /[Nn]ull|[Rr]eturns dst/ { print $1 ": " $2 " does not say when it is null"; faults++ }
        $2 in raises && $4 $5 !~ /[Rr]ais(e|ing)|error [0-9]+|VELTRO:/ {
            print $1 ": " $2 " does not say that it raises"
            faults++
        }
        END { printf "%d functions, %d faults\n", NR, faults; exit faults > 0 || NR < 400 }' "$list" || status=1
    ;;
*)
    echo "check.sh: unknown word $word" >&2
    exit 2
    ;;
esac
exit $status
