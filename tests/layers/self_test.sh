#!/usr/bin/env bash
# Builds small trees with one fault each and checks that check_floors.sh names it, and nothing in a clean tree.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failed=0

# put FILE LINE...: one file of the tree.
put() {
    mkdir -p "$tree/$(dirname "$1")"
    printf '%s\n' "${@:2}" >"$tree/$1"
}

clean_tree() {
    rm -rf "${tree:?}"/*
    put include/ox.h '#include <stddef.h>' '#include <ox/flags.h>'
    put include/ox/flags.h '#include <stdint.h>'
    put include/ut.h '#include <stddef.h>'
    put include/fl.hpp '#include <new>'
    put libs/ut/hash.cpp '#include <ut.h>' '#include "ut/hash.h"'
    put libs/ut/hash.h ''
    put libs/foundation/heap.cpp '#include <fl.hpp>'
    put src/errors/raise.h '#include <ox.h>'
    put src/errors/raise.cpp '#include "errors/raise.h"' '#include "containers/copy.h"'
    put src/core/array.h '#include "errors/raise.h"' '#include <vector>'
    put src/core/class_ops.h '#include "array.h"'
    put src/containers/class_ops.cpp '  #  include "core/class_ops.h"  // downward'
    put src/containers/copy.h '#include "sparse/storage/csc.h"'
    put src/sparse/storage/csc.h '#include "core/array.h"'
    put src/sparse/ref.h '#include "sparse/storage/csc.h"'
    put src/index/operands/subscript.h '#include "containers/copy.h"'
    put src/index/reference.h '#include "sparse/ref.h"'
    put src/stream/codec.h '#include "index/reference.h"'
    put src/compare/equal.h '#include "index/reference.h"'
    put tools/vel/main.cpp '#include <ox.h>' '#include "table.h"'
    put tools/vel/table.h ''
}

# expect TEXT FILE LINE: a clean tree with this one line added is reported with TEXT.
expect() {
    clean_tree
    mkdir -p "$tree/$(dirname "$2")"
    printf '%s\n' "$3" >>"$tree/$2"
    local output status=0
    output=$("$here/check_floors.sh" "$tree") || status=$?
    if [ "$status" = 0 ] || [[ $output != *"$1"* ]] || [[ $output != *" 1 faults"* ]]; then
        printf 'self-test: expected "%s" for %s in %s, got status %s:\n%s\n' "$1" "$3" "$2" "$status" "$output"
        failed=1
    fi
}

clean_tree
"$here/check_floors.sh" "$tree" || failed=1

expect 'core/array.h:3: floor 2 (core) includes src/containers/copy.h' src/core/array.h '#include "containers/copy.h"'
expect 'floor 3 (storage) includes src/sparse/ref.h' src/sparse/storage/csc.h '#include "../storage/x.h"
#include "sparse/ref.h"'
expect 'floor 5 (operands) includes src/index/reference.h' src/index/operands/subscript.h '#include "index/reference.h"'
expect 'floor 8 (stream) includes src/compare/equal.h' src/stream/codec.h '#include "compare/equal.h"'
expect 'floor 1.5 (errors) includes src/core/array.h' src/errors/raise.h '#include "core/array.h"'
expect 'may include up to floor 4' src/errors/raise.cpp '#include "sparse/ref.h"'
expect 'floor 0 (ut) includes include/fl.hpp' libs/ut/hash.h '#include <fl.hpp>'
expect 'floor 0 (foundation) includes include/ox.h' libs/foundation/heap.cpp '#include <ox.h>'
expect 'a C header includes <stdlib.h>' include/ox/flags.h '#include <stdlib.h>'
expect 'a user includes the internal src/core/array.h' tools/vel/main.cpp '#include "core/array.h"'
expect 'src/extra/new.h: stands on no floor' src/extra/new.h ''
expect 'its definition src/containers/array_scope.cpp is missing' src/core/array_list.h ''

# expect_link STATUS TEXT LOW HIGH: objects of two files, the low one calling a function of the high one.
expect_link() {
    rm -rf "${tree:?}"/*
    mkdir -p "$tree/$(dirname "$3")" "$tree/$(dirname "$4")"
    echo 'void high(void); void low(void); void low(void) { high(); }' | cc -x c -c - -o "$tree/$3.o"
    echo 'void high(void); void high(void) {}' | cc -x c -c - -o "$tree/$4.o"
    local output status=0
    output=$("$here/check_links.sh" "$tree") || status=$?
    if [ "$status" != "$1" ] || [[ $output != *"$2"* ]]; then
        printf 'self-test: expected status %s, "%s", got %s:\n%s\n' "$1" "$2" "$status" "$output"
        failed=1
    fi
}

expect_link 1 'src/core/a.cpp (floor 2) needs high of src/containers/b.cpp' core/a.cpp containers/b.cpp
expect_link 1 'src/stream/a.cpp (floor 8) needs high of src/compare/b.cpp' stream/a.cpp compare/b.cpp
expect_link 1 'src/errors/a.cpp (floor 4) needs high of src/index/b.cpp' errors/a.cpp index/b.cpp
expect_link 0 ' 0 faults' core/a.cpp containers/class_ops.cpp
expect_link 0 ' 0 faults' core/a.cpp errors/raise.cpp
expect_link 0 ' 0 faults' index/a.cpp core/b.cpp

[ "$failed" = 0 ] && echo "self-test: passed"
exit "$failed"
