#!/bin/sh
# A public header as Doxygen wants it: see scripts/header-comments.awk.
exec awk -v out=doxygen -f "$(dirname "$0")/../../scripts/header-comments.awk" "$1"
