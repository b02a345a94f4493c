#!/usr/bin/env bash
# All checks from an empty folder: format, layers, headers, then every quick test, plain and under sanitizers.
. "$(dirname "$0")/common.sh"

presets=${CHECK_PRESETS:-dev asan}
mkdir -p build
summary=build/check-summary.txt
: >"$summary"
failures=0

# step NAME COMMAND...: goes on after a failure, so that one run tells all there is to tell.
step() {
    local name=$1 start=$SECONDS
    shift
    say "$name"
    if "$@"; then
        echo "ok      $name ($((SECONDS - start)) s)" >>"$summary"
    else
        echo "FAILED  $name ($((SECONDS - start)) s)" >>"$summary"
        failures=$((failures + 1))
        return 1
    fi
}

build() {
    cmake --preset "$1" -DOX_WERROR=ON >"build/configure-$1.log" 2>&1 || {
        cat "build/configure-$1.log"
        return 1
    }
    cmake --build --preset "$1" -j "$JOBS"
}

# A line for every passed test is noise by the thousand: the failures and the runner's summary are shown.
run_tests() {
    local log=build/ctest-$1.log status=0
    ctest --preset "$1" -j "$JOBS" --no-tests=error --timeout 600 2>&1 | tee "$log" |
        awk '!/^ *Start +[0-9]+:/ && !/^ *[0-9]+\/[0-9]+ Test +#[0-9]+:.* Passed /' || status=$?
    sed -n '/^[0-9]*% tests passed/,$p' "$log" >>"$summary"
    return $status
}

scripts/setup.sh build test tool
step "format" scripts/format.sh --check || true
step "layers" tests/layers/check_floors.sh || true
step "headers" scripts/check-headers.sh || true
for preset in $presets; do
    if step "build $preset" build "$preset"; then
        step "tests $preset" run_tests "$preset" || true
    fi
done

say "summary"
cat "$summary"
if [ "$failures" = 0 ]; then
    echo "check: passed"
else
    echo "check: failed ($failures)"
    exit 1
fi
