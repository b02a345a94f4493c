#!/usr/bin/env bash
# check_floors.sh [ROOT]: reads every #include under ROOT and reports those that floors.txt does not allow.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
cd "${1:-$here/../..}"
{
    cat "$here/floors.txt"
    find include libs src tools examples -type f | LC_ALL=C sort | sed 's/^/file /'
    grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*["<]' include libs src tools examples \
        --include=*.{c,h,cpp,hpp,inc,def} | LC_ALL=C sort -t: -k1,1 -k2,2n | sed 's/^/include /'
} | awk -f "$here/check_floors.awk"
