#!/usr/bin/env bash
# A stick holding RestoreMWDB: the content daemon's databases and JSON files come over, the
# middleware restores itself from the folder, and the user is told how it ended.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

RESTORE_ON_TV="$DEFAULT_MOUNT/RestoreMWDB"

# A restore folder as a set's dump would leave it, plus files that are not the daemon's.
fill_restore_folder() {
    local r="$STICK/RestoreMWDB"
    mkdir -p "$r"
    printf 'channels' >"$r/channels.db"
    printf 'guide' >"$r/guide.db"
    printf '{"country":"DE"}' >"$r/settings.json"
    printf 'not for the daemon' >"$r/notes.txt"
    printf 'middleware services' >"$r/db-tvs-services"
    printf 'restored channel map' >"$r/channelmap.dat"
}

begin_case restore-success
fill_restore_folder
printf 'stays' >"$DATA/kept.db"
printf 'channel map of the set' >"$CHMS/channelmap.dat"
run_on_stick "$DEFAULT_MOUNT" --monitor
expect_exit_status 0
expect_notifications "ChannelMap Dump|Restore ChannelMap Success"
expect_log "Start Restore Kelvo DB"
expect_log "kelvo-util 333....."
expect_no_log "Start Dump Kelvo DB"
for f in channels.db guide.db settings.json; do
    expect_file "$DATA/$f" "$STICK/RestoreMWDB/$f"
done
expect_no_path "$DATA/notes.txt"
expect_file "$DATA/kept.db"
# The middleware takes back its own files, and only those.
expect_file "$DBSPACE/db-tvs-services" "$STICK/RestoreMWDB/db-tvs-services"
expect_file "$CHMS/channelmap.dat" "$STICK/RestoreMWDB/channelmap.dat"
for f in notes.txt channels.db settings.json; do
    expect_no_path "$CHMS/$f"
    expect_no_path "$DBSPACE/$f"
done
expect_tvs_calls "restore $RESTORE_ON_TV 1"
expect_no_path "$STICK/DumpMWDB"
expect_clock
# On the wire: one Notify call to the notification service carrying the result text.
expect_eq "Notify calls on the bus" "$(grep -c 'member=Notify$' "$OUT/dbus-monitor.txt" || true)" 1
grep -q 'string "Restore ChannelMap Success"' "$OUT/dbus-monitor.txt" \
    || fail "the bus did not carry the text 'Restore ChannelMap Success'"

begin_case restore-middleware-fails
fill_restore_folder
: >"$SIM/fail-restore"
run_on_stick
expect_exit_status 0
expect_notifications "ChannelMap Dump|Restore ChannelMap Fail"
expect_log "kelvo-util 444 ....."
# The copies are done before the middleware is asked; its failure does not undo them.
expect_file "$DATA/channels.db" "$STICK/RestoreMWDB/channels.db"
expect_tvs_calls "restore $RESTORE_ON_TV -1"

begin_case restore-without-databases
mkdir -p "$STICK/RestoreMWDB"
printf '{"a":1}' >"$STICK/RestoreMWDB/only.json"
run_on_stick
expect_exit_status 0
expect_notifications "ChannelMap Dump|Restore ChannelMap Success"
expect_file "$DATA/only.json" "$STICK/RestoreMWDB/only.json"
expect_tvs_calls "restore $RESTORE_ON_TV 1"

begin_case restore-entry-is-a-file
printf 'not a folder' >"$STICK/RestoreMWDB"
run_on_stick
expect_exit_status 0
expect_notifications "ChannelMap Dump|Restore ChannelMap Fail"
expect_log "Start Restore Kelvo DB"
expect_no_log "Start Dump Kelvo DB"
expect_no_path "$STICK/DumpMWDB"
expect_tvs_calls "restore $RESTORE_ON_TV -1"

begin_case restore-links-stay-out
mkdir -p "$STICK/RestoreMWDB"
printf 'real' >"$STICK/RestoreMWDB/good.db"
printf 'secret of the set' >"$CHMS/secret.db"
# Paths as the set sees them: a stick prepared to make the daemon's data point elsewhere.
ln -s /opt/usr/globalapps/tvs-chms/data/secret.db "$STICK/RestoreMWDB/evil.db"
ln -s /opt/usr/globalapps/tvs-chms/data "$STICK/RestoreMWDB/evil.json"
run_on_stick
expect_exit_status 0
expect_file "$DATA/good.db" "$STICK/RestoreMWDB/good.db"
links=$(find "$DATA" -type l -printf '%P ')
expect_eq "links in the daemon's data folder" "$links" ""
expect_eq "the set's own file" "$(cat "$CHMS/secret.db")" "secret of the set"

finish
