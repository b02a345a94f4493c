# Takes a page apart: awk -v dir=FOLDER -f blocks.awk PAGE. A block behind `<!-- file: NAME -->` becomes that
# file; `sh` blocks become step-01.sh, step-02.sh, ..., and an `output` block is the step-NN.expected of the
# last one, whose exit status `<!-- status: N -->` may change from 0. Any other block is a fault.
function fault(what) {
    printf "%s:%d: %s\n", FILENAME, FNR, what
    faults++
}

!inside && /^<!-- file: .* -->$/ { file = $3; next }
!inside && /^<!-- status: .* -->$/ { status = $3; next }
!inside && /^```/ {
    inside = 1
    kind = substr($0, 4)
    if (file != "") {
        out = dir "/" file
        system("mkdir -p \"$(dirname '" out "')\"")
    } else if (kind == "sh") {
        step = sprintf("%s/step-%02d", dir, ++steps)
        out = step ".sh"
        print status + 0 >(step ".status")
        status = 0
    } else if (kind == "output" && steps) {
        out = step ".expected"
    } else {
        fault("a block of '" kind "' that is neither a file nor a step")
        out = "/dev/null"
    }
    printf "" >out
    file = ""
    next
}
inside && /^```$/ { inside = 0; close(out); next }
inside { print >out }
END {
    if (inside) fault("a block without an end")
    exit faults > 0
}
