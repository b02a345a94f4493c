#!/usr/bin/env bash
# The Debian packages: lintian, then installed into an empty tree, where a user's project is built and run.
. "$(dirname "$0")/common.sh"
scripts/setup.sh lint
scripts/package.sh

packages=$PWD/build/package/packages
work=$PWD/build/package/check
say "lintian"
lintian --fail-on error --allow-root "$packages"/*.deb

say "what the packages are made of"
rm -rf "$work"
mkdir -p "$work/root/var/lib/dpkg/info" "$work/root/var/lib/dpkg/updates" "$work/log"
: >"$work/root/var/lib/dpkg/status"
for deb in "$packages"/*.deb; do
    # Unpacked in the order of the alphabet by a database of its own, without the system's packages.
    dpkg --root="$work/root" --log="$work/log/dpkg" --force-not-root --force-depends --no-triggers --unpack "$deb"
done
lib=$(dirname "$(find "$work/root/usr/lib" -name 'libox.so.1')")
for file in "$lib"/libox*.so.1 "$work/root/usr/bin/vel"; do
    readelf -dW "$file" >"$work/dynamic"
    grep -q 'BIND_NOW\|FLAGS_1.*NOW' "$work/dynamic" || die "$file: not bound at start"
    ! grep -q 'RPATH\|RUNPATH' "$work/dynamic" || die "$file: has a search path"
    readelf --dyn-syms -W "$file" >"$work/symbols"
    grep -q '__stack_chk_fail\|_chk@' "$work/symbols" || die "$file: not hardened"
done
[ -e "$work/root/usr/share/gdb/auto-load/${lib#"$work/root/"}/libox.so.$(sed -n \
    's/^project(oxarray VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)-gdb.py" ] || die "the printers are not where gdb looks"
[[ $(dpkg-deb -I "$packages"/libox1_*.deb triggers) == *ldconfig* ]] || die "libox1: no ldconfig trigger"

for deb in "$packages"/*.deb; do # How the architectures share it: see ox_debian.
    printf '%s=%s ' "$(dpkg-deb -f "$deb" Package)" "$(dpkg-deb -f "$deb" Multi-Arch)"
done >"$work/multiarch"
[ "$(<"$work/multiarch")" = "libox-dev=same libox-fortran-dev=no libox1=same ox-doc=foreign ox-tools=foreign " ] ||
    die "Multi-Arch: $(<"$work/multiarch")"

say "consumers"
LD_LIBRARY_PATH=$lib "$work/root/usr/bin/vel" --help >/dev/null
LD_LIBRARY_PATH=$lib cmake -DPREFIX="$work/root/usr" -DSOURCE="$PWD/tests/package" -DWORK="$work/consumers" \
    -DCC=gcc -DCXX=g++ -DFC=gfortran -P tests/package/run.cmake
echo "check-packages: passed"
