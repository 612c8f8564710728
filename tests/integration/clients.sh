#!/usr/bin/env bash
# shellcheck source-path=SCRIPTDIR disable=SC2317,SC2034  # cases run through `cases`; CASE is read by lib.sh
# The example clients of the installed library, run in the TV as a person runs them
# (tools/kelvo-tv client NAME): built from the installed library alone, answering from the
# reference TV's services and its content daemon.
# shellcheck source=lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# virtual-now: one block per virtual channel playing now, whose programme, playlist item and
# offset are those the fixture's schedule gives at the moment the client printed.
virtual_now() {
    CASE=virtual-now C="$WORK/virtual-now"
    TV="$C/tv" OUT="$C/out"
    local status=0
    "$ROOT/tools/kelvo-tv" client virtual-now --build-dir "$BUILD" --tv "$TV" --out "$OUT" >"$C.txt" 2>&1 || status=$?
    mkdir -p "$C" && mv "$C.txt" "$C/run.txt"
    eq "exit status" 0 "$status"
    local now fixture="$TV/daemon-fixture.json"
    now=$(sed -n 's/^now: .* UTC (\([0-9]*\))$/\1/p' "$C/run.txt")
    ok "the client names the moment it printed" test -n "$now"
    # id|event|position line of each channel, as the client printed them and as the schedule says.
    local printed expected
    printed=$(awk '/^[0-9]+-[0-9]+  [0-9]+$/ { id = $2; getline; sub(/.*event /, ""); sub(/\)$/, ""); event = $0;
                   getline; sub(/^ +/, ""); print id "|" event "|" $0 }' "$C/run.txt" | sort)
    expected=$(jq -r --argjson now "${now:-0}" '
        .virtualChannels[] | .TCServiceId as $id | .programs[]
        | (.starttime | strptime("%Y-%m-%dT%H:%M:%S") | mktime) as $start
        | select($start <= $now and $now < $start + .duration)
        | . as $p
        | if .content_type == "LIVE" then "one stream: playlist item index -1, offset 0 s"
          else ([foreach .group_play_list[] as $i ({t: $start, d: 0}; {t: (.t + .d), d: $i.duration}; .t)]) as $starts
               | ([range(0; $starts | length) | select($starts[.] <= $now and $now < $starts[.] + $p.group_play_list[.].duration)]
                  | first // 0) as $i
               | (if $starts[$i] <= $now and $now < $starts[$i] + $p.group_play_list[$i].duration then $now - $starts[$i] else 0 end) as $offset
               | "playlist item index \($i) of \($p.group_play_list | length): \"\($p.group_play_list[$i].title)\", offset \($offset) s of \($p.group_play_list[$i].duration) s"
          end
        | "\($id)|\($p.id)|\(.)"' "$fixture" | sort)
    eq "channels, programmes and playback positions" "$expected" "$printed"
    eq "channels playing" "$(jq '.virtualChannels | length' "$fixture")" "$(grep -c '^    .*(\(CIRCLE\|LIVE\), event' "$C/run.txt")"
    # Virtual channels are the services whose id carries channel type 9 (the app-on-channel
    # services share their service type, not their id's type).
    local inMap
    inMap=$(sqlite3 -batch -noheader "$TV/opt/dbspace/db-tvs-service.db" \
        "SELECT count(*) FROM service WHERE ((service_id >> 60) & 15) = 9 AND chmap_index != -1")
    ok "the summary counts the channel map's virtual services" \
        grep -qx "$inMap virtual channels in the channel map, $(jq '.virtualChannels | length' "$fixture") of them playing now" "$C/run.txt"
    ok "the client's log lines went to the run's log" grep -q 'FCAPI::Initialize' "$OUT/client.log"
}

add_case virtual-now virtual_now
cases "$@"
