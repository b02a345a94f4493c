#!/usr/bin/env bash
# Plants one fault after another in a copy of the tree and checks that each is named; likewise for links.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failed=0

# expect TEXT COMMAND...: the command finds one fault and names it so.
expect() {
    local output status=0
    output=$("${@:2}") || status=$?
    [ "$status" = 1 ] && [[ $output == *"$1"* ]] && [[ $output == *" 1 faults"* ]] && return
    printf 'self-test: expected "%s", got status %s:\n%s\n' "$1" "$status" "$output"
    failed=1
}

cp -r "$here"/../../{include,libs,src,tools,examples} "$tree"
while IFS='|' read -r file line text; do
    mkdir -p "$tree/$(dirname "$file")"
    cp "$tree/$file" "$tree/kept" 2>/dev/null || rm -f "$tree/kept"
    printf '  #  include %s // upward\n' "$line" >>"$tree/$file"
    expect "$text" "$here/check_floors.sh" "$tree"
    mv "$tree/kept" "$tree/$file" 2>/dev/null || rm "$tree/$file"
done <<'END'
src/core/array.h|"containers/copies.h"|floor 2 (core) includes src/containers/copies.h
src/sparse/storage/csc.h|"../growth.h"|floor 3 (storage) includes src/sparse/growth.h
src/stream/items.h|"compare/values.h"|floor 8 (stream) includes src/compare/values.h
src/errors/raise.cpp|"sparse/growth.h"|may include up to floor 4
libs/ut/internal.h|<fl.hpp>|floor 0 (ut) includes include/fl.hpp
include/ox/flags.h|<stdlib.h>|a C header includes <stdlib.h>
tools/vel/main.cpp|"core/array.h"|a user includes the internal src/core/array.h
src/extra/new.h|<new>|src/extra/new.h: stands on no floor
END
rm "$tree/src/containers/array_scope.cpp"
expect 'its definition src/containers/array_scope.cpp is missing' "$here/check_floors.sh" "$tree"

# Objects of two files, the low one calling a function of the high one.
mkdir -p "$tree"/links/{core,containers,errors}
echo 'void high(void); void low(void); void low(void) { high(); }' | cc -x c -c - -o "$tree/links/core/a.cpp.o"
echo 'void high(void); void high(void) {}' | cc -x c -c - -o "$tree/links/containers/b.cpp.o"
expect 'src/core/a.cpp (floor 2) needs high of src/containers/b.cpp' "$here/check_links.sh" "$tree/links"
mv "$tree"/links/{containers/b,errors/raise}.cpp.o # to which linking upward is allowed
"$here/check_links.sh" "$tree/links" >/dev/null || failed=1

[ "$failed" = 0 ] && echo "self-test: passed"
exit "$failed"
