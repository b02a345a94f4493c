#!/usr/bin/env bash
# Compiles every public header alone: .h as C99 and C++17, .hpp as C++20, pedantically and without a warning.
. "$(dirname "$0")/common.sh"

flags=(-Iinclude -fexceptions -Wall -Wextra -pedantic -Werror -fsyntax-only)
count=0
failed=0

# try LANGUAGE STANDARD HEADER
try() {
    count=$((count + 1))
    echo "#include \"$3\"" | g++ -x "$1" -std="$2" "${flags[@]}" - || {
        echo "headers: $3 does not stand alone as $2"
        failed=$((failed + 1))
    }
}

for header in include/*.h include/*.hpp include/ox/*.h include/ox/*.hpp; do
    [ -e "$header" ] || continue
    name=${header#include/}
    case $name in
    *.h)
        try c c99 "$name"
        try c++ c++17 "$name"
        ;;
    *.hpp) try c++ c++20 "$name" ;;
    esac
done
echo "headers: $count compiles, $failed failed"
[ "$failed" = 0 ]
