#!/usr/bin/env bash
# The libraries and their tests for 64-bit Windows: cross-built, and the tests run under Wine.
. "$(dirname "$0")/common.sh"
scripts/setup.sh build test windows
prefix=$(JOBS=$JOBS tools/windows/build-deps.sh)

# Where Wine looks for libraries besides the programs' own folder; it wants a home of its own.
target=x86_64-w64-mingw32
runtime=$(dirname "$($target-g++-posix -print-file-name=libstdc++-6.dll)")
export WINEPATH="Z:$prefix/bin;Z:$prefix/lib;Z:/usr/$target/lib;Z:$runtime"
export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all
mkdir -p "$WINEPREFIX"
/usr/lib/wine/wine64 wineboot --init # takes longer than the discovery of tests waits

cmake --preset mingw -DOX_WERROR=ON -DOX_MINGW_PREFIX="$prefix"
cmake --build --preset mingw -j "$JOBS"
# One at a time: Wine's tmpfile() may fail while another program asks for one.
ctest --preset mingw -j 1 --no-tests=error --timeout 900 "$@"
