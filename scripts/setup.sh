#!/usr/bin/env bash
# Installs the packages of the named groups (scripts/packages.txt) that are missing; usually there are none.
. "$(dirname "$0")/common.sh"

groups=${*:-build test tool}
wanted=()
for group in $groups; do
    line=$(grep "^$group " scripts/packages.txt) || die "setup: no group '$group' in scripts/packages.txt"
    read -r -a packages <<<"${line#"$group" }"
    wanted+=("${packages[@]}")
done

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    echo "setup: no apt-get here; these Debian packages, or what your system calls them, are needed:"
    echo "  ${wanted[*]}"
    exit 0 # They may all be there: CMake names the first that is not.
fi

installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null || true)
missing=()
for package in "${wanted[@]}"; do
    grep -qx "installed $package" <<<"$installed" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "setup: installing ${missing[*]}"
if [ "$(id -u)" = 0 ]; then
    as_root=()
elif sudo -n true 2>/dev/null; then
    as_root=(sudo -n)
elif [ -t 0 ] && command -v sudo >/dev/null; then
    as_root=(sudo)
else
    die "setup: neither root nor sudo works here. As root, run:
  apt-get update && apt-get install -y ${missing[*]}"
fi

# A stale mirror is no reason to stop: the install says whether the lists were good enough.
"${as_root[@]}" apt-get update -q || echo "setup: apt-get update failed; going on with the lists there are"
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${missing[@]}" </dev/null ||
    die "setup: apt-get could not install ${missing[*]}"
