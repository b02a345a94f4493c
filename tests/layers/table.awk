# Reads the floor table (lines that begin with "table") and answers which row a path falls under.

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

$1 == "table" && $2 == "floor" { row_pattern[++rows] = pattern($5); floor[rows] = $3; unit[rows] = $4 }
$1 == "table" && $2 == "user" { row_pattern[++rows] = pattern($4); user[rows] = 1; unit[rows] = $3 }
$1 == "table" && $2 == "seam" && $4 == "includes" {
    lift_pattern[++lifts] = pattern($3); lift[lifts] = $7
    row_pattern[++rows] = pattern($3); floor[rows] = $7; unit[rows] = "errors"
}
$1 == "table" && $2 == "seam" && $4 == "defined" {
    low[++seams] = $3
    high[seams] = $6
    for (i = 6; i <= NF; i++) seam_file[$i] = 1
}
$1 == "table" && $2 == "system" {
    system_pattern[++systems] = pattern($3)
    for (i = 4; i <= NF; i++) system_list[systems] = system_list[systems] " " $i " "
}
