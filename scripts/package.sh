#!/usr/bin/env bash
# The Debian packages, in build/package/packages; built in a tree of their own with Debian's hardening flags.
. "$(dirname "$0")/common.sh"
scripts/setup.sh build tool package

export DEB_BUILD_MAINT_OPTIONS=hardening=+all
defines=$(dpkg-buildflags --get CPPFLAGS)
linking=$(dpkg-buildflags --get LDFLAGS)
mkdir -p build
cmake --preset package \
    -DCMAKE_C_FLAGS="$(dpkg-buildflags --get CFLAGS) $defines" \
    -DCMAKE_CXX_FLAGS="$(dpkg-buildflags --get CXXFLAGS) $defines" \
    -DCMAKE_SHARED_LINKER_FLAGS="$linking" -DCMAKE_EXE_LINKER_FLAGS="$linking"
cmake --build --preset package -j "$JOBS" --target ox ut fl vel vel_manual
rm -rf build/package/packages
(cd build/package && cpack)
ls -l build/package/packages
