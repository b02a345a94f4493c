#!/usr/bin/env bash
# Plants one fault after another in a copy of the tree and checks that each is named.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT

# expect TEXT: one fault is found, and named so.
expect() {
    output=$("$here/check_floors.sh" "$tree" || true)
    [[ $output == *"$1"*" 1 faults"* ]] || { printf 'expected "%s":\n%s\n' "$1" "$output" && exit 1; }
}

cp -r "$here"/../../{include,libs,src,tools,examples} "$tree"
while IFS='|' read -r file line text; do
    cp "$tree/$file" "$tree/kept"
    printf '  #  include %s // upward\n' "$line" >>"$tree/$file"
    expect "$text"
    mv "$tree/kept" "$tree/$file"
done <<'END'
src/core/array.h|"containers/copies.h"|floor 2 (core) includes src/containers/copies.h
src/sparse/storage/csc.h|"../growth.h"|floor 3 (storage) includes src/sparse/growth.h
src/stream/items.h|"compare/values.h"|floor 8 (stream) includes src/compare/values.h
src/errors/raise.cpp|"sparse/growth.h"|may include up to floor 4
libs/ut/internal.h|<fl.hpp>|floor 0 (ut) includes include/fl.hpp
tools/vel/main.cpp|"core/array.h"|a user includes the internal src/core/array.h
END
rm "$tree/src/containers/array_scope.cpp"
expect 'its definition src/containers/array_scope.cpp is missing'
