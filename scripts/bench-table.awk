# From Google Benchmark's CSV to one line for each operation/size: the limit's time, then everyone's ratio to it.
# A case is named operation/size/who; who is "ox" for the library, "limit_..." for the limit, or a peer.

function time_text(ns) {
    if (ns < 1e3) return sprintf("%.1f ns", ns)
    if (ns < 1e6) return sprintf("%.1f us", ns / 1e3)
    return sprintf("%.2f ms", ns / 1e6)
}

function ratio_text(ns, limit) {
    return limit > 0 ? sprintf("%.2f", ns / limit) : time_text(ns)
}

BEGIN { FS = "," }

# The header row says which columns hold the time and its unit.
$1 == "name" { for (i = 1; i <= NF; i++) column[$i] = i }

$1 ~ /_median"?$/ {
    name = $1
    gsub(/"/, "", name)
    sub(/_median$/, "", name)
    parts = split(name, word, "/")
    if (parts < 3) next
    case_name = word[1] "/" word[2]
    unit = $column["time_unit"]
    ns = $column["cpu_time"] * (unit == "us" ? 1e3 : unit == "ms" ? 1e6 : unit == "s" ? 1e9 : 1)
    if (!(case_name in seen)) { seen[case_name] = 1; order[++cases] = case_name }
    who = word[3]
    if (who ~ /^limit_/) { limit[case_name] = ns; limit_name[case_name] = substr(who, 7) }
    else if (who == "ox") own[case_name] = ns
    else { peers[case_name] = peers[case_name] " " who; peer[case_name, who] = ns }
}

# Sorted by name: interleaved repetitions report in no order of use.
function sort_cases(    i, k, c) {
    for (i = 2; i <= cases; i++) {
        c = order[i]
        for (k = i - 1; k >= 1 && order[k] > c; k--) order[k + 1] = order[k]
        order[k + 1] = c
    }
}

END {
    sort_cases()
    printf "%-28s %-22s %10s %9s   %s\n", "case", "limit", "its time", "ox/limit", "peers/limit"
    for (i = 1; i <= cases; i++) {
        c = order[i]
        list = ""
        n = split(peers[c], who_list, " ")
        for (k = 1; k <= n; k++)
            list = list (k > 1 ? ", " : "") who_list[k] " " ratio_text(peer[c, who_list[k]], limit[c])
        printf "%-28s %-22s %10s %9s   %s\n", c, (c in limit) ? limit_name[c] : "-", \
            (c in limit) ? time_text(limit[c]) : "-", (c in own) ? ratio_text(own[c], limit[c]) : "-", list
    }
}
