#!/usr/bin/env bash
# check.sh BUILD WORK PAGE...: does what the pages say, as their reader would: installs BUILD into a fresh prefix,
# and for each page, in a folder of its own, writes its files, runs its commands and compares their output.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$1
rm -rf "$2"
mkdir -p "$2"
work=$(cd "$2" && pwd)
shift 2

cmake --install "$build" --prefix "$work/prefix" >"$work/install.log" 2>&1 ||
    { cat "$work/install.log" && exit 1; }
export CMAKE_PREFIX_PATH=$work/prefix PATH=$work/prefix/bin:$PATH
PKG_CONFIG_PATH=$(dirname "$(find "$work/prefix" -name oxarray.pc)")
LD_LIBRARY_PATH=$(dirname "$PKG_CONFIG_PATH")
export PKG_CONFIG_PATH LD_LIBRARY_PATH
export -n CFLAGS CXXFLAGS FFLAGS LDFLAGS 2>/dev/null || true

faults=0
fault() {
    printf '%s: %s\n' "$page" "$*"
    faults=$((faults + 1))
}

for page in "$@"; do
    dir=$work/$(basename "$page" .md)
    mkdir -p "$dir"
    awk -v dir="$dir" -f "$here/blocks.awk" "$page" || fault "blocks that no test sees"
    for step in "$dir"/step-*.sh; do
        [ -e "$step" ] || continue
        name=$(basename "$step" .sh) status=0
        (cd "$dir" && bash -eu "$step") >"${step%.sh}.got" 2>&1 || status=$?
        [ "$status" = "$(cat "${step%.sh}.status")" ] ||
            { fault "$name ended with status $status" && cat "$step" "${step%.sh}.got"; }
        [ ! -e "${step%.sh}.expected" ] || diff -u "${step%.sh}.expected" "${step%.sh}.got" ||
            fault "$name printed something else"
    done
    find "$dir" -name '*.c' -not -path '*/build/*' >"$dir/c-files"
    while read -r file; do # What the reader copies is also clean under the strict warnings.
        # shellcheck disable=SC2046
        cc -std=c99 -Wall -Wextra -pedantic -Werror -fsyntax-only "$file" $(pkg-config --cflags oxarray) ||
            fault "$(basename "$file") has warnings"
    done <"$dir/c-files"
done
[ "$faults" = 0 ]
