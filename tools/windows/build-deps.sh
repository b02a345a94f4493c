#!/usr/bin/env bash
# Cross-builds what Debian has no Windows packages of (ICU, Highway, GoogleTest) into a cache; prints the folder.
# Once it is there, this does nothing. OX_CACHE names another cache folder; JOBS the number of processes.
set -euo pipefail
. /etc/os-release
cache=${OX_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/oxarray}
target=x86_64-w64-mingw32
prefix=$cache/mingw-$VERSION_CODENAME
work=$cache/mingw-work
jobs=${JOBS:-$(nproc)}

# fetch SOURCE: a Debian source package, unless it is there; prints its folder. From an apt source file of
# our own with its own lists: the system's stay as they are, and root is not needed.
fetch() {
    local apt=$work/apt mirror
    [ -z "$(compgen -G "$work/$1-[0-9]*/")" ] || { echo "$work/$1"-[0-9]*/ && return; }
    mirror=$(grep -rhoE 'https?://[^ ]*/debian/?( |$)' /etc/apt/sources.list /etc/apt/sources.list.d 2>/dev/null |
        head -n 1 | tr -d ' ') || true
    mkdir -p "$apt/lists/partial"
    [ -n "$mirror" ] || { echo "build-deps: no Debian mirror among the sources of apt" >&2 && exit 1; }
    echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg]" \
        "$mirror $VERSION_CODENAME main" >"$apt/deb-src.list"
    local options=(-q -o Dir::Etc::SourceList="$apt/deb-src.list" -o Dir::Etc::SourceParts=/dev/null
        -o Dir::State::Lists="$apt/lists")
    apt-get "${options[@]}" update >&2
    (cd "$work" && apt-get "${options[@]}" --only-source source "$1" >&2)
    echo "$work/$1"-[0-9]*/
}

# A native build first: the cross build runs its tools to pack the data.
build_icu() {
    local source
    source=$(fetch icu)source
    local off=(--disable-tests --disable-samples --disable-extras --disable-icuio --disable-layoutex)
    rm -rf "$work/native" "$work/cross"
    mkdir -p "$work/native" "$work/cross"
    (cd "$work/native" && "$source/configure" "${off[@]}" && make -j"$jobs")
    (cd "$work/cross" &&
        CC=$target-gcc-posix CXX=$target-g++-posix "$source/configure" --host=$target --prefix="$prefix" \
            --with-cross-build="$work/native" "${off[@]}" --disable-tools &&
        make -j"$jobs" && make install)
}

# build_with_cmake SOURCE OPTION...: for the target, into the prefix.
build_with_cmake() {
    local source=$1
    shift
    rm -rf "$work/cross"
    cmake -S "$source" -B "$work/cross" -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_SYSTEM_PROCESSOR=x86_64 -DCMAKE_C_COMPILER=$target-gcc-posix \
        -DCMAKE_CXX_COMPILER=$target-g++-posix -DCMAKE_INSTALL_PREFIX="$prefix" "$@"
    cmake --build "$work/cross" -j "$jobs"
    cmake --install "$work/cross"
}

build_gtest() { build_with_cmake /usr/src/googletest; }

build_highway() {
    local source
    source=$(fetch highway)
    build_with_cmake "$source" -DHWY_ENABLE_CONTRIB=OFF -DHWY_ENABLE_EXAMPLES=OFF -DHWY_ENABLE_TESTS=OFF \
        -DBUILD_TESTING=OFF -DBUILD_SHARED_LIBS=OFF
}

mkdir -p "$work"
for part in gtest highway icu; do
    [ ! -e "$prefix/$part.done" ] || continue
    log=$work/$part.log
    echo "windows: building $part for $target (ICU takes about 12 minutes on 2 cores; log: $log)" >&2
    "build_$part" >"$log" 2>&1 || {
        tail -n 30 "$log" >&2
        exit 1
    }
    touch "$prefix/$part.done"
done
rm -rf "$work/native" "$work/cross"
echo "$prefix"
