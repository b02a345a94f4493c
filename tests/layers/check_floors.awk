# Judges include lines by the floors: input is the table, the list of files, then the include lines.
# Runs with table.awk before it.

function folder_of(path) {
    sub(/[^\/]*$/, "", path)
    return path
}

# The file that an include means: beside the includer, or under one of the include roots.
function resolve(from, name,    i, beside) {
    beside = folder_of(from) name
    while (sub(/[^\/]+\/\.\.\//, "", beside)) continue
    if (beside in known) return beside
    for (i = 1; i <= 3; i++) if ((root[i] name) in known) return root[i] name
    return ""
}

function judge_system(where, from, name,    i, allowed) {
    for (i = 1; i <= systems; i++)
        if (from ~ system_pattern[i]) {
            allowed = 1
            if (index(system_list[i], " " name " ")) return
        }
    if (allowed) report(where ": a C header includes <" name ">")
}

function judge(where, from, to,    f, t, i) {
    f = row_of(from)
    t = row_of(to)
    if (!f || !t || unit[f] == unit[t]) return
    for (i = 1; i <= lifts; i++) if (from ~ lift_pattern[i]) {
        if (floor[t] > lift[i]) report(where ": may include up to floor " lift[i] ", but " to " is on " floor[t])
        return
    }
    if (user[f]) {
        if (unit[t] != "include" && to !~ /^include\//) report(where ": a user includes the internal " to)
    } else if (user[t]) {
        report(where ": the library includes " to)
    } else if (floor[t] >= floor[f]) {
        report(where ": floor " floor[f] " (" unit[f] ") includes " to " of floor " floor[t] " (" unit[t] ")")
    }
}

BEGIN { root[1] = "src/"; root[2] = "include/"; root[3] = "libs/" }

$1 == "file" {
    known[$2] = 1
    if ($2 ~ /\.(c|h|cpp|hpp|inc|def)$/ && !row_of($2)) report($2 ": stands on no floor of the table")
}

$1 == "include" {
    line = substr($0, 9)
    split(line, part, ":")
    where = part[1] ":" part[2]
    name = line
    sub(/^[^"<]*["<]/, "", name)
    sub(/[">].*$/, "", name)
    to = resolve(part[1], name)
    count++
    if (to != "") judge(where, part[1], to)
    else judge_system(where, part[1], name)
    included[part[1], to] = 1
}

END {
    for (i = 1; i <= seams; i++)
        if ((low[i] in known) && !((high[i], low[i]) in included))
            report(low[i] ": its definition " high[i] " is missing or does not include it")
    print "layers: " count + 0 " includes, " faults + 0 " faults"
    exit faults > 0
}
