#!/usr/bin/env bash
# Runs every fuzz target for FUZZ_SECONDS (60) seconds, from its seeds and what earlier runs found.
. "$(dirname "$0")/common.sh"
scripts/setup.sh build tool fuzz

cmake --preset fuzz
cmake --build --preset fuzz -j "$JOBS" --target fuzzers

export ASAN_OPTIONS=${ASAN_OPTIONS:-allocator_may_return_null=1:detect_leaks=1}
failed=()
for target in build/fuzz/fuzz/*_fuzz; do
    [ -x "$target" ] || die "fuzz: no targets were built"
    name=$(basename "$target")
    found=build/fuzz-found/$name
    mkdir -p "$found"
    seeds=()
    [ ! -d "fuzz/seeds/$name" ] || seeds=("fuzz/seeds/$name")
    say "$name"
    "$target" -max_total_time="${FUZZ_SECONDS:-60}" -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$found-" "$found" "${seeds[@]}" || failed+=("$name")
done
[ ${#failed[@]} -eq 0 ] || die "fuzz: failed: ${failed[*]}"
