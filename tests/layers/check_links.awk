# Judges links by the floors: input is the table, then "link FILE [ADDRESS] TYPE SYMBOL". Runs with table.awk before it.

$1 == "link" {
    at = ($3 ~ /^[0-9a-f]+$/ && length($3) > 8) ? 4 : 3
    symbol = $0
    sub(/^[^ ]+ [^ ]+ +([0-9a-f]+ )?[A-Za-z] /, "", symbol)
    if ($at == "U") { needs[++count] = $2; needed[count] = symbol }
    else if ($at ~ /^[TBDR]$/) defined_in[symbol] = $2
}

END {
    for (i = 1; i <= count; i++) {
        from = needs[i]
        to = defined_in[needed[i]]
        if (to == "" || (to in seam_file) || to ~ /^src\/errors\//) continue
        f = row_of(from)
        t = row_of(to)
        # The lift of src/errors reaches its floor itself; other equal floors are siblings.
        if (unit[f] == unit[t] || floor[t] < floor[f] || (unit[f] == "errors" && floor[t] <= floor[f])) continue
        report(from " (floor " floor[f] ") needs " needed[i] " of " to " (floor " floor[t] ")")
    }
    print "layers: " count + 0 " links, " faults + 0 " faults"
    exit faults > 0 || count == 0
}
