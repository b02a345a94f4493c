#!/usr/bin/env bash
# check_links.sh OBJECTS [SRC]: reports calls that go up without an include: a low object that needs a high
# one's symbol. OBJECTS is the folder of the library's objects, laid out as SRC, the folder of the sources.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
src=${2:+$(cd "$2" && pwd)}
cd "$1"

# Objects of sources that are gone stay in a build folder; they say nothing about the tree.
current_objects() {
    find . -name '*.o' | LC_ALL=C sort | while read -r object; do
        [ -n "$src" ] && [ ! -e "$src/${object%.o}" ] || echo "$object"
    done
}

{
    sed 's/^/table /' "$here/floors.txt"
    current_objects | xargs nm -A -C | sed 's|^\./\([^:]*\)\.o:|link src/\1 |'
} | awk -f "$here/table.awk" -f "$here/check_links.awk"
