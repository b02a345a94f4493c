#!/usr/bin/env bash
# run.sh BUILD SUBJECT WORK: what gdb shows of the subject, alive and as a core, against expected.txt.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$1 subject=$2 work=$3
export LC_ALL=C.UTF-8

skip() {
    echo "skipped: $*"
    exit 77
}
command -v gdb >/dev/null || skip "there is no gdb"

# As a user has it: the printers come with the installed library, from gdb's auto-load path.
rm -rf "$work"
mkdir -p "$work"
work=$(cd "$work" && pwd -P)
cmake --install "$build" --prefix "$work/prefix" --component runtime >/dev/null
libs=$(dirname "$(find "$work/prefix" -name 'libox.so.1')")
gdb=(timeout 120 gdb -batch -nx -iex "set auto-load scripts-directory $work/prefix/share/gdb/auto-load"
    -iex "add-auto-load-safe-path $work/prefix" -iex "set debuginfod enabled off"
    -iex "set solib-search-path $libs" -ex "set print frame-arguments none")

sed -n 's/^(gdb) //p' "$here/expected.txt" | while read -r command; do
    printf 'echo (gdb) %s\\n\n%s\n' "${command//\\/\\\\}" "$command"
done >"$work/look.gdb"

# judge NAME LOG: what follows the first command, with addresses made equal.
judge() {
    sed -n '/^(gdb) /,$p' "$2" | sed -E 's/0x[0-9a-f]{3,}/0x.../g; s/^\$[0-9]+ = //' |
        grep -vE '^(Saved corefile|\[Inferior|Kill)' >"$work/$1.out" || true
    diff -u "$here/expected.txt" "$work/$1.out" || {
        echo "what gdb shows of the $1 process differs"
        cat "$2" | head -n 20
        exit 1
    }
}

"${gdb[@]}" -ex "set environment LD_LIBRARY_PATH $libs" -ex "break ready" -ex run \
    -ex "generate-core-file $work/core" -x "$work/look.gdb" -ex kill "$subject" >"$work/live.log" 2>&1 || true
! grep -qiE 'ptrace|not permitted|Could not trace' "$work/live.log" || skip "ptrace is refused here"
judge live "$work/live.log"
"${gdb[@]}" -x "$work/look.gdb" "$subject" "$work/core" >"$work/core.log" 2>&1
judge core "$work/core.log"
