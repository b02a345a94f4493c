# From a disassembly on stdin: the functions from which a raise can be reached by direct calls, or which
# hand an array to the hooks, where the array list raises for a null one. One name a line. Destruction does not
# count: it raises where sharers of private data get no memory, which oxDestroyArray says for all.
/^[0-9a-f]+ <.*>:$/ {
    fn = $2
    gsub(/[<>:]/, "", fn)
    next
}
match($0, /<[^>]+>$/) {
    to = substr($0, RSTART + 1, RLENGTH - 2)
    sub(/\+0x[0-9a-f]+$/, "", to)
    sub(/@plt$/, "", to)
    if (to == fn || to == "oxDestroyArray") next
    hook = to ~ /array_hooks/
    if (hook && fn ~ /release_contents|SetArrayScope|array_list_installed/) next # only tells of the end
    if (!hook && $0 !~ /\t(call|jmp|j[a-z]+|bl|b)[ \t]/) next
    if (to ~ /^_ZN2ox[0-9]+raise_|^_ZN2ox12_GLOBAL__N_1[0-9]+raise_|^ox(V|Simple)?Err(Stack)?|^ut_error/ || hook) raises[fn] = 1
    if (!((to, fn) in seen)) {
        seen[to, fn] = 1
        callers[to] = callers[to] " " fn
    }
}
END {
    for (f in raises) queue[++last] = f
    for (i = 1; i <= last; i++) {
        n = split(callers[queue[i]], from, " ")
        for (k = 1; k <= n; k++)
            if (!(from[k] in raises)) {
                raises[from[k]] = 1
                queue[++last] = from[k]
            }
    }
    for (f in raises) print f
}
