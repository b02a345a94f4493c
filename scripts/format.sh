#!/usr/bin/env bash
# Lays the sources out as .clang-format says; with --check changes nothing and fails where it would.
. "$(dirname "$0")/common.sh"
scripts/setup.sh test

mode=(-i)
[ "${1:-}" != --check ] || mode=(--dry-run -Werror)
mapfile -t files < <(list_sources '*.c' '*.cpp' '*.h' '*.hpp')
[ ${#files[@]} -eq 0 ] || clang_format "${mode[@]}" "${files[@]}"
echo "format: ${#files[@]} files"
