# Judges include lines by the floors: input is the table, the list of files, then the include lines.

# Turns a shell-like pattern into a regular expression; * matches slashes too.
function pattern(text) {
    gsub(/[.+]/, "\\\\&", text)
    gsub(/[*]/, ".*", text)
    return "^" text "$"
}

# The row of the floor table that a path falls under, or 0.
function row_of(path,    i) {
    for (i = 1; i <= rows; i++) if (path ~ row_pattern[i]) return i
    return 0
}

function report(text) {
    print "layers: " text
    faults++
}

# The file that an include means: beside the includer, or under one of the include roots.
function resolve(from, name,    i, beside) {
    beside = from
    sub(/[^\/]*$/, name, beside)
    while (sub(/[^\/]+\/\.\.\//, "", beside)) continue
    if (beside in known) return beside
    for (i = 1; i <= 3; i++) if ((root[i] name) in known) return root[i] name
    return ""
}

function judge(where, from, to,    f, t) {
    f = row_of(from)
    t = row_of(to)
    if (!f || !t || unit[f] == unit[t]) return
    if (f in lift) {
        if (floor[t] > lift[f]) report(where ": may include up to floor " lift[f] ", but " to " is on " floor[t])
    } else if (f in user) {
        if (to !~ /^include\//) report(where ": a user includes the internal " to)
    } else if (t in user) {
        report(where ": the library includes " to)
    } else if (floor[t] >= floor[f]) {
        report(where ": floor " floor[f] " (" unit[f] ") includes " to " of floor " floor[t] " (" unit[t] ")")
    }
}

BEGIN { root[1] = "src/"; root[2] = "include/"; root[3] = "libs/" }

$1 == "floor" { row_pattern[++rows] = pattern($4); floor[rows] = $2; unit[rows] = $3 }
$1 == "user" { row_pattern[++rows] = pattern($3); user[rows] = 1; unit[rows] = $2 }
$1 == "lift" { row_pattern[++rows] = pattern($2); floor[rows] = lift[rows] = $6; unit[rows] = "errors" }
$1 == "seam" { high[$2] = $5 }

$1 == "file" {
    known[$2] = 1
    if ($2 ~ /\.(c|h|cpp|hpp|inc|def)$/ && !row_of($2)) report($2 ": stands on no floor of the table")
}

$1 == "include" {
    split(substr($0, 9), part, ":")
    name = $0
    sub(/^[^"<]*["<]/, "", name)
    sub(/[">].*$/, "", name)
    to = resolve(part[1], name)
    judge(part[1] ":" part[2], part[1], to)
    included[part[1], to] = 1
    count++
}

END {
    for (low in high)
        if ((low in known) && !((high[low], low) in included))
            report(low ": its definition " high[low] " is missing or does not include it")
    print "layers: " count + 0 " includes, " faults + 0 " faults"
    exit faults > 0
}
