#!/usr/bin/env bash
# Runs the benchmarks (FILTER=regex for some of them) and prints each as a ratio to the limit of its case.
. "$(dirname "$0")/common.sh"
scripts/setup.sh build test bench tool

mkdir -p build
{
    cmake --preset release -DOX_BUILD_TESTS=OFF -DOX_BUILD_BENCH=ON &&
        cmake --build --preset release -j "$JOBS" --target ox_bench
} >build/bench.log 2>&1 || {
    tail -n 40 build/bench.log
    die "bench: the build failed; build/bench.log has all of it"
}

# Medians of repetitions that take turns: on a shared machine one limit varies by a quarter between runs.
build/release/bench/ox_bench --benchmark_filter="${FILTER:-.}" --benchmark_format=csv \
    --benchmark_repetitions="${REPEATS:-5}" --benchmark_min_time="${MIN_TIME:-0.05}" \
    --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true \
    2>build/bench.err >build/bench.csv || {
    cat build/bench.err
    die "bench: the program failed"
}
awk -f scripts/bench-table.awk build/bench.csv
