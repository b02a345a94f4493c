#!/usr/bin/env bash
# Builds the library, the vel tool and the example modules, and runs the modules and the tool on real data.
. "$(dirname "$0")/common.sh"
scripts/setup.sh build tool

build=build/release
echo "building in $build ..."
mkdir -p build
{
    cmake --preset release -DOX_BUILD_TESTS=OFF -DOX_BUILD_BENCH=OFF &&
        cmake --build --preset release -j "$JOBS"
} >build/demo.log 2>&1 || {
    tail -n 40 build/demo.log
    die "demo: the build failed; build/demo.log has all of it"
}

# built NAME: where the build put a file, which is CMake's affair.
built() {
    local path
    path=$(find "$build" -name "$1" -type f | head -n 1)
    [ -n "$path" ] || die "demo: the build made no $1"
    echo "$path"
}

vel=$(built vel)
data=examples/data/iris.csv

# show STATUS SENTENCE MODULE ARG...: says what is to be seen, shows the command, and runs it.
show() {
    local expected=$1 sentence=$2 module=$3 status=0
    shift 3
    module=$(built "$module.vex")
    say "$sentence"
    echo "\$ vel call $(basename "$module") $*"
    "$vel" call "$module" "$@" </dev/null 2>&1 || status=$?
    [ "$status" = "$expected" ] || die "demo: exit status $status, expected $expected"
}

show 0 "zscore: every column of 150 flowers comes out with mean 0 and deviation 1; the middle is cut" \
    zscore "$data"
show 0 "covariance: symmetric; column 3, petal length, has the widest spread and goes with 1, 4 and 5" \
    covariance "$data"
show 0 "forgetful: gives back nothing of what it makes; leaving its contexts reclaims all 15 pieces" \
    forgetful --stats "$data"
show 1 "raising: raises halfway through its work; the raise frees its blocks, the context its arrays" \
    raising --stats "$data"
show 0 "word_count: text in, a struct array out; 'to' and 'be' come first, twice each" \
    word_count "'To be, or not to be, that is the question'"
show 0 "group_by: a table in, a cell with one table for each of the three species out" \
    group_by "$data" 5
show 0 "normalize_image: bytes in and out; the brightest pixel saturates at 255, with one warning" \
    normalize_image 'uint8([10 20 30;40 50 60;70 80 250])'
show 0 "pagerank: 67 nodes of a sparse graph ranked in 41 rounds" \
    pagerank --nlhs 2 examples/data/west0067.mtx

show 0 "game_of_life: five cells, 200 generations later; shifted references count, masks assign" \
    game_of_life '[0 1 1;1 1 0;0 1 0]' 200 '[64 72]'
[ -z "$(find "$build" -name heat.vex)" ] ||
    show 0 "heat, in Fortran: a plate whose upper edge is hot, after 20 steps" \
        heat '[1 1 1 1 1;0 0 0 0 0;0 0 0 0 0;0 0 0 0 0;0 0 0 0 0]' 20

# tool STATUS SENTENCE WORD ARG...: the same for the words that work on files.
tool() {
    local expected=$1 status=0
    say "$2"
    shift 2
    echo "\$ vel $*"
    "$vel" "$@" </dev/null 2>&1 || status=$?
    [ "$status" = "$expected" ] || die "demo: exit status $status, expected $expected"
}

file=build/demo.vel
tool 0 "save: a table and a sparse matrix go into one compressed file" \
    save "$file" --compress iris="$data" west=examples/data/west0067.mtx
tool 0 "ls: the listing reads headers only; the table shrinks to a sixth" ls "$file"
tool 0 "check: every element against every rule, then read by the library" check "$file"
tool 0 "show: the pattern of the sparse matrix as it came back, twelve of its 294 entries" show "$file" west
ranks=build/demo-ranks.vel
show 0 "pagerank: the same ranks as before, this time from a file into a file" \
    pagerank "$file:west" -o "$ranks"
tool 0 "show --stats: the 67 ranks sum up to 1, which makes their mean 0.0149; the largest is 0.0287" \
    show "$ranks" --stats
tool 0 "show --stats, --rows, --cols: the first species only" \
    show "$file" iris --rows 1:50 --cols 1:4 --stats
tool 0 "show --hex: tags, counts, data and padding, byte by byte" show "$file" iris --hex

groups=build/demo-groups.vel
"$vel" call "$(built group_by.vex)" "$data" 5 -o "$groups"
tool 0 "plot: 150 flowers as a heat map; the three species show as steps in columns 1, 3 and 5" \
    plot "$file" iris --width 72
tool 0 "plot -o: the same as a picture" plot "$file" iris -o build/demo-iris.png
tool 0 "plot: a cell as a tree of sizes" plot "$groups"
tool 0 "plot -o: the sparse matrix as a PNG file of 469 by 469 dots" \
    plot "$file" west -o build/demo-west.png

tool 0 "convert: the table for other programs, 6000 bytes of doubles after a header" \
    convert "$file:iris" build/demo.npy
tool 0 "convert: both ways through an archive with the members of a sparse matrix" \
    convert "$file:west" build/demo.npz --compress
tool 0 "diff: nothing was lost" diff build/demo.npz examples/data/west0067.mtx

damaged=build/demo-damaged.vel
"$vel" save "$damaged" n=3.5 "flowers=$data"
printf '\x77' | dd of="$damaged" bs=1 seek=136 conv=notrunc status=none
tool 1 "check: one byte of a file was changed; where it is, what belongs there, what is there" \
    check "$damaged"

say "demo: done; pictures and files are build/demo*"
