# shellcheck shell=bash
# What every script starts with: the top folder, strict mode, and the words to speak in.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

JOBS=${JOBS:-$(nproc)}

say() { printf '\n== %s\n' "$*"; }

die() {
    printf '%s\n' "$*" >&2
    exit 1
}

# clang_format ARG...: formatting is only comparable with one version, so 14 is asked for by name first.
clang_format() {
    if command -v clang-format-14 >/dev/null; then
        clang-format-14 "$@"
    else
        clang-format "$@"
    fi
}

# list_sources GLOB...: the tracked and new files that match; in an unpacked archive, all that do.
list_sources() {
    if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git ls-files --cached --others --exclude-standard -- "$@" | while read -r file; do
            [ ! -e "$file" ] || echo "$file"
        done
    else
        local glob
        for glob in "$@"; do
            find . -path ./build -prune -o -name "${glob##*/}" -print | sed 's|^\./||'
        done
    fi
}
