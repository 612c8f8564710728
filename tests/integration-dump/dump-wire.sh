#!/usr/bin/env bash
# What the dump says to the content daemon, as dbus-monitor sees it on the TV's private bus:
# the source list, one programme map for the day, then one service-id lookup per source that
# has programmes, in ascending order, each with its exact argument text.
source "$(dirname "$0")/lib.sh" "$1" "$2"

# "member<TAB>argument" for every call of the daemon's provider interface, in wire order.
provider_calls() {
    awk '/^method call / && /interface=com\.halvorn\.tv\.KelvoDaemon\.Provider;/ {
            match($0, /member=[A-Za-z_]+/); member = substr($0, RSTART + 7, RLENGTH - 7); want = 1; next }
         want && /^   string "/ { text = $0; sub(/^   string "/, "", text); sub(/"$/, "", text);
            print member "\t" text; want = 0; next }
         { want = 0 }' "$OUT/dbus-monitor.txt"
}

new_case
run_dump --monitor
equal "the dump succeeds" "ChannelMap Dump:ChannelMap Dump Success" "$(notifications)"
mapfile -t times < <(current_times)
meta_start=${times[2]:-0}

calls="$CASE/calls.tsv"
provider_calls >"$calls"
sources_in_window=$(jq '.sourcesInWindow | length' "$EXPECTED")
equal "number of provider calls: list, map, one lookup per source with programmes" \
    $((2 + sources_in_window)) "$(wc -l <"$calls")"

equal "first call" 'GetFullProgramSourceIdList	{"activityID":0}' "$(sed -n 1p "$calls")"

all_sources=$(jq -c '.sourceIds' "$EXPECTED")
equal "second call: the programme map of every source for the day from the dump's clock" \
    "GetProgramMap	{\"activityID\":0,\"duration\":86400,\"genre id list\":\"\",\"sourceIDArray\":$all_sources,\"utc start time\":$meta_start}" \
    "$(sed -n 2p "$calls")"

expected_lookups=$(jq -r '.sourcesInWindow | sort | .[] | "GetTCServiceIdByProgramSourceID\t{\"activityID\":0,\"program source id\":\"" + . + "\"}"' "$EXPECTED")
equal "then one lookup per source in ascending order" "$expected_lookups" "$(sed -n '3,$p' "$calls")"
check "the lookups' order is byte-wise, not numeric" \
    bash -c "sed -n '3,\$p' '$calls' | cut -f2 | LC_ALL=C sort -c"

# The daemon's own record of requests agrees with the wire.
equal "the daemon saw the same requests" "$(cut -f1 "$calls")" \
    "$(jq -r '.method' "$OUT/daemon-requests.jsonl")"

# Nothing else of the run goes to the daemon: every method call to it is on the provider interface.
equal "no other call reaches the daemon" "$(wc -l <"$calls")" \
    "$(grep -c '^method call .*destination=com.halvorn.tv.KelvoDaemon ' "$OUT/dbus-monitor.txt")"
finish
