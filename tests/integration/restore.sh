#!/usr/bin/env bash
# shellcheck source-path=SCRIPTDIR disable=SC2317  # the case functions run through `cases` (add_case)
# A stick holding RestoreMWDB: the content daemon's databases and JSON files come over, the
# middleware restores itself from the folder, the clock is set from the dump's time.txt (the
# kernel refuses it in the sandbox; the clock recorder shows what was asked for), and the user is
# told how it ended.
# shellcheck source=lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
R="$MOUNT/RestoreMWDB"

# A restore folder as a set's dump leaves it, plus files that are not the daemon's.
fill_restore_folder() {
    mkdir -p "$STICK/RestoreMWDB"
    cd "$STICK/RestoreMWDB" || exit 1
    printf channels >channels.db; printf guide >guide.db; printf '{"country":"DE"}' >settings.json
    printf 'not for the daemon' >notes.txt; printf services >db-tvs-services; printf 'new map' >channelmap.dat
    printf '1600000000\n' >time.txt  # only DumpMWDB/time.txt sets the clock
    cd - >/dev/null || exit 1
}

restore_success() {
    new_case restore-success
    fill_restore_folder
    printf stays >"$DATA/kept.db"
    printf 'map of the set' >"$CHMS/channelmap.dat"
    run --monitor
    eq "exit status" 0 "$(status)"
    eq notifications "ChannelMap Dump|Restore ChannelMap Success" "$(notes)"
    for text in "Start Restore Kelvo DB" "kelvo-util 333....."; do ok "log has $text" logged "$text"; done
    ok "no dump" no logged "Start Dump Kelvo DB"
    for f in channels.db guide.db settings.json; do ok "$f in the daemon's data" same "$DATA/$f" "$STICK/RestoreMWDB/$f"; done
    ok "only *.db and *.json reach the daemon" absent "$DATA/notes.txt"
    ok "the daemon's other files stay" same "$DATA/kept.db" <(printf stays)
    # The middleware takes back its own files, and only those.
    ok "services restored" same "$DBSPACE/db-tvs-services" "$STICK/RestoreMWDB/db-tvs-services"
    ok "channel map restored" same "$CHMS/channelmap.dat" "$STICK/RestoreMWDB/channelmap.dat"
    eq "foreign files in the middleware's folders" "" "$(find "$CHMS" "$DBSPACE" -mindepth 1 -maxdepth 1 -printf '%f\n' | grep -E 'notes|channels|settings')"
    eq "TVS calls" "restore $R 1" "$(tvs_calls)"
    ok "no DumpMWDB" absent "$DUMP"
    eq "clock" "" "$(clock)"
    eq "Notify calls on the bus" 1 "$(grep -c 'member=Notify$' "$OUT/dbus-monitor.txt")"
    ok "the bus carries the text" grep -q 'string "Restore ChannelMap Success"' "$OUT/dbus-monitor.txt"
}

restore_middleware_fails() {
    new_case restore-middleware-fails
    fill_restore_folder
    : >"$SIM/fail-restore"
    run
    eq notifications "ChannelMap Dump|Restore ChannelMap Fail" "$(notes)"
    ok "log has 444" logged "kelvo-util 444 ....."
    ok "the copies are not undone" same "$DATA/channels.db" "$STICK/RestoreMWDB/channels.db"
    eq "TVS calls" "restore $R -1" "$(tvs_calls)"
}

restore_entry_is_a_file() {
    new_case restore-entry-is-a-file
    printf 'not a folder' >"$STICK/RestoreMWDB"
    run
    eq "exit status" 0 "$(status)"
    eq notifications "ChannelMap Dump|Restore ChannelMap Fail" "$(notes)"
    ok "restore branch" logged "Start Restore Kelvo DB"
    ok "no dump" absent "$DUMP"
    eq "TVS calls" "restore $R -1" "$(tvs_calls)"
}

restore_links_stay_out() {
    new_case restore-links-stay-out
    mkdir -p "$STICK/RestoreMWDB"
    printf real >"$STICK/RestoreMWDB/good.db"
    printf '{"a":1}' >"$STICK/RestoreMWDB/only.json"
    printf secret >"$CHMS/secret.db"
    # Paths as the set sees them: a stick prepared to make the daemon's data point elsewhere.
    ln -s /opt/usr/globalapps/tvs-chms/data/secret.db "$STICK/RestoreMWDB/evil.db"
    ln -s /opt/usr/globalapps/tvs-chms/data "$STICK/RestoreMWDB/evil.json"
    run
    eq notifications "ChannelMap Dump|Restore ChannelMap Success" "$(notes)"
    ok "good.db in the daemon's data" same "$DATA/good.db" "$STICK/RestoreMWDB/good.db"
    ok "only.json in the daemon's data" same "$DATA/only.json" "$STICK/RestoreMWDB/only.json"
    eq "links in the daemon's data folder" "" "$(find "$DATA" -type l)"
    eq "the set's own file" secret "$(cat "$CHMS/secret.db")"
}

# DumpMWDB/time.txt | exit status | attempts to set the clock | a log line
# A time.txt that is not a number keeps the read loop turning; the launch's run-time limit ends it
# before the clock is touched or anything is shown.
CLOCK_CASES=(
    '1600000000\n|0|settimeofday 1600000000 0 result=-1 errno=EPERM real=yes|restore time is 1600000000'
    '1500000000\n1600000000\n|0|settimeofday 1600000000 0 result=-1 errno=EPERM real=yes|restore time is 1500000000'
    '|0|settimeofday 0 0 result=-1 errno=EPERM real=yes|'
    'soon\n|124||'
)
# clock_case ROW N: one row of the table.
clock_case() {
    local content want_status want_clock want_log
    IFS='|' read -r content want_status want_clock want_log <<<"$1"
    new_case "clock-$2"
    mkdir -p "$STICK/RestoreMWDB" "$DUMP"
    printf '%b' "$content" >"$DUMP/time.txt"
    if [ "$want_status" = 124 ]; then
        # The spinning read loop logs without end: the run keeps a bounded log.
        run --timeout 3 --log-limit 1048576
        eq "the log ends with the truncation notice" "… log truncated …" "$(tail -n 1 "$OUT/kelvo-util.log")"
        ok "the log holds at most its bound and the notice" test "$(stat -c %s "$OUT/kelvo-util.log")" -le $((1048576 + 64))
    else
        run --timeout 120
    fi
    eq "exit status" "$want_status" "$(status)"
    eq clock "$want_clock" "$(clock)"
    if [ -n "$want_log" ]; then ok "log has $want_log" logged "$want_log"
    elif [ "$want_status" = 0 ]; then ok "no restore time logged" no logged "restore time is"
    else eq notifications "" "$(notes)"; fi
    ok "the machine's clock is untouched" test "$(date +%s)" -gt 1700000000
}

add_case restore-success restore_success
add_case restore-middleware-fails restore_middleware_fails
add_case restore-entry-is-a-file restore_entry_is_a_file
add_case restore-links-stay-out restore_links_stay_out
n=0
for row in "${CLOCK_CASES[@]}"; do
    add_case "clock-$((n += 1))" clock_case "$row" "$n"
done
cases "$@"
