#!/usr/bin/env bash
# A stick holding RestoreMWDB: the content daemon's databases and JSON files come over, the
# middleware restores itself from the folder, the clock is set from the dump's time.txt (the
# kernel refuses it in the sandbox; the clock recorder shows what was asked for), and the user is
# told how it ended.
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
eq "foreign files in the middleware's folders" "" "$(ls "$CHMS" "$DBSPACE" | grep -E 'notes|channels|settings')"
eq "TVS calls" "restore $R 1" "$(tvs_calls)"
ok "no DumpMWDB" absent "$DUMP"
eq "clock" "" "$(clock)"
eq "Notify calls on the bus" 1 "$(grep -c 'member=Notify$' "$OUT/dbus-monitor.txt")"
ok "the bus carries the text" grep -q 'string "Restore ChannelMap Success"' "$OUT/dbus-monitor.txt"

new_case restore-middleware-fails
fill_restore_folder
: >"$SIM/fail-restore"
run
eq notifications "ChannelMap Dump|Restore ChannelMap Fail" "$(notes)"
ok "log has 444" logged "kelvo-util 444 ....."
ok "the copies are not undone" same "$DATA/channels.db" "$STICK/RestoreMWDB/channels.db"
eq "TVS calls" "restore $R -1" "$(tvs_calls)"

new_case restore-entry-is-a-file
printf 'not a folder' >"$STICK/RestoreMWDB"
run
eq "exit status" 0 "$(status)"
eq notifications "ChannelMap Dump|Restore ChannelMap Fail" "$(notes)"
ok "restore branch" logged "Start Restore Kelvo DB"
ok "no dump" absent "$DUMP"
eq "TVS calls" "restore $R -1" "$(tvs_calls)"

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

# DumpMWDB/time.txt | exit status | attempts to set the clock | a log line
# A time.txt that is not a number keeps the read loop turning; the launch's run-time limit ends it
# before the clock is touched or anything is shown.
CLOCK_CASES=(
    '1600000000\n|0|settimeofday 1600000000 0 result=-1 errno=EPERM real=yes|restore time is 1600000000'
    '1500000000\n1600000000\n|0|settimeofday 1600000000 0 result=-1 errno=EPERM real=yes|restore time is 1500000000'
    '|0|settimeofday 0 0 result=-1 errno=EPERM real=yes|'
    'soon\n|124||'
)
n=0
for row in "${CLOCK_CASES[@]}"; do
    IFS='|' read -r content want_status want_clock want_log <<<"$row"
    new_case "clock-$((n += 1))"
    mkdir -p "$STICK/RestoreMWDB" "$DUMP"
    printf '%b' "$content" >"$DUMP/time.txt"
    run --timeout "$([ "$want_status" = 124 ] && echo 3 || echo 120)"
    eq "exit status" "$want_status" "$(status)"
    eq clock "$want_clock" "$(clock)"
    if [ -n "$want_log" ]; then ok "log has $want_log" logged "$want_log"
    elif [ "$want_status" = 0 ]; then ok "no restore time logged" no logged "restore time is"
    else eq notifications "" "$(notes)"; fi
done
ok "the machine's clock is untouched" test "$(date +%s)" -gt 1700000000
finish
