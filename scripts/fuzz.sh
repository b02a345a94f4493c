#!/usr/bin/env bash
# Runs every fuzz target for FUZZ_SECONDS (60) seconds, from its seeds and what earlier runs found.
# With FUZZ_MINIMISE=1 the seeds become the smallest files of both that reach the same code.
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
    "$target" -max_total_time="${FUZZ_SECONDS:-60}" -max_len=16384 -malloc_limit_mb=256 -timeout=5 \
        -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$found-" "$found" "${seeds[@]}" ||
        failed+=("$name")
    [ -n "${FUZZ_MINIMISE:-}" ] || continue
    rm -rf "$found.least" && mkdir "$found.least"
    "$target" -set_cover_merge=1 -use_counters=0 -use_cmp=0 -max_len=16384 "$found.least" "${seeds[@]}" "$found"
    rm -rf "fuzz/seeds/$name" && mv "$found.least" "fuzz/seeds/$name"
done
[ ${#failed[@]} -eq 0 ] || die "fuzz: failed: ${failed[*]}"
