#!/usr/bin/env bash
# A stick without RestoreMWDB: the middleware data of the TV lands in DumpMWDB with a time
# stamp and the programme-information database.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

DUMP_ON_TV="$DEFAULT_MOUNT/DumpMWDB"

# Middleware data of the TV, as the channel manager and the platform keep it.
seed_middleware() {
    printf 'channel map' >"$CHMS/channelmap.dat"
    printf 'services' >"$DBSPACE/db-tvs-services"
    printf 'daemon data' >"$DATA/kelvo.json"
}

begin_case dump-to-empty-stick
seed_middleware
before=$(date +%s)
run_on_stick "$DEFAULT_MOUNT" --no-daemon
after=$(date +%s)
expect_exit_status 0
expect_notifications "ChannelMap Dump|ChannelMap Dump Success"
expect_log "Start Dump Kelvo DB"
expect_log "kelvo-util 555 ....."
expect_eq "mode of DumpMWDB" "$(stat -c %a "$STICK/DumpMWDB" 2>/dev/null)" 750
stamp=$(cat "$STICK/DumpMWDB/time.txt" 2>/dev/null || true)
if [[ ! "$stamp" =~ ^[0-9]+$ ]] || [ "$stamp" -lt "$before" ] || [ "$stamp" -gt "$after" ]; then
    fail "time.txt holds '$stamp', expected a time between $before and $after"
fi
expect_file "$STICK/DumpMWDB/channelmap.dat" "$CHMS/channelmap.dat"
expect_file "$STICK/DumpMWDB/db-tvs-services" "$DBSPACE/db-tvs-services"
expect_file "$STICK/DumpMWDB/kelvo.json" "$DATA/kelvo.json"
# One backup call into the dump folder, having copied at least the two middleware files.
backups=$(grep -c '' "$SIM/tvs.log" 2>/dev/null || true)
read -r op folder result <"$SIM/tvs.log" || true
expect_eq "TVS calls" "$backups ${op:-} ${folder:-}" "1 backup $DUMP_ON_TV"
[ "${result:-0}" -ge 3 ] || fail "TVS backup result ${result:-none}, expected 1 + at least 2 files"
tables=$(sqlite3 "$STICK/DumpMWDB/kelvoutilInfo.db" \
    "SELECT name FROM sqlite_master WHERE type='table' ORDER BY name;" 2>&1 | tr '\n' ' ')
expect_eq "tables of kelvoutilInfo.db on the stick" "$tables" "programMETA programRF "
expect_clock

begin_case dump-backup-fails
seed_middleware
: >"$SIM/fail-backup"
run_on_stick "$DEFAULT_MOUNT" --no-daemon
expect_exit_status 0
expect_notifications
expect_log "kelvo-util 666 ....."
expect_no_log "kelvo-util 555"
[ -f "$STICK/DumpMWDB/time.txt" ] || fail "time.txt is written before the backup"
expect_no_path "$STICK/DumpMWDB/kelvoutilInfo.db"
expect_no_path "$STICK/DumpMWDB/kelvo.json"
expect_tvs_calls "backup $DUMP_ON_TV -1"

begin_case dump-replaces-old-dump
seed_middleware
mkdir -p "$STICK/DumpMWDB/old"
printf 'old' >"$STICK/DumpMWDB/old.txt"
printf 'kept' >"$STICK/DumpMWDB/.hidden"
ln -s /opt/usr/globalapps/tvs-chms/data/channelmap.dat "$STICK/DumpMWDB/time.txt"
run_on_stick "$DEFAULT_MOUNT" --no-daemon
expect_exit_status 0
expect_notifications "ChannelMap Dump|ChannelMap Dump Success"
expect_no_path "$STICK/DumpMWDB/old.txt"
expect_no_path "$STICK/DumpMWDB/old"
expect_file "$STICK/DumpMWDB/.hidden"
[ -f "$STICK/DumpMWDB/time.txt" ] && [ ! -L "$STICK/DumpMWDB/time.txt" ] || fail "time.txt is not a regular file"
expect_eq "the TV's channel map" "$(cat "$CHMS/channelmap.dat")" "channel map"

finish
