#!/usr/bin/env bash
# The binary interface against abi/*.abi.xz: fails on what breaks installed modules, tells of additions.
# check-abi.sh renew: writes the dumps anew, to be committed with the change that they record.
. "$(dirname "$0")/common.sh"
scripts/setup.sh build tool abi

mkdir -p build
cmake --preset abi >build/configure-abi.log || { cat build/configure-abi.log && exit 1; }
cmake --build --preset abi -j "$JOBS" --target ox ut fl

# Types of the public headers only; places in sources and folders of this machine say nothing.
dump() {
    abidw --headers-dir include --drop-private-types --no-show-locs --no-corpus-path --no-comp-dir-path \
        --no-elf-needed --type-id-style hash "$1"
}

status=0
for lib in src/libox.so libs/liboxut.so libs/liboxfl.so; do
    name=$(basename "$lib")
    if [ "${1:-}" = renew ]; then
        dump "build/abi/$lib" | xz -9 >"abi/$name.abi.xz"
        continue
    fi
    say "$name"
    xz -dc "abi/$name.abi.xz" >build/abi/recorded.abi
    dump "build/abi/$lib" >build/abi/built.abi
    # What goes away and what has another type or layout; then what is new, which breaks nothing.
    if ! abidiff --no-added-syms build/abi/recorded.abi build/abi/built.abi; then
        status=1
    elif ! abidiff build/abi/recorded.abi build/abi/built.abi; then
        echo "$name: changed compatibly; 'make renew-abi' records it"
    fi
done
[ "${1:-}" != renew ] || exit 0
[ $status = 0 ] || die "check-abi: failed. A break needs a new major version; see CONTRIBUTING.md."
echo "check-abi: passed"
