#!/usr/bin/env bash
# The reference of the public headers as pages in build/docs/html; a warning about a header is an error.
. "$(dirname "$0")/common.sh"
scripts/setup.sh docs

mkdir -p build/docs
doxygen docs/doxygen/Doxyfile 2>build/docs/warnings.txt || {
    cat build/docs/warnings.txt
    die "docs: failed"
}
echo "docs: build/docs/html/index.html"
