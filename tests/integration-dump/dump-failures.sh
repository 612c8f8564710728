#!/usr/bin/env bash
# A dump whose middleware backup fails, and a dump on a TV whose content daemon is not running.
source "$(dirname "$0")/lib.sh" "$1" "$2"
DAEMON_DB_REL=opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data/kelvoutilInfo.db

echo "# the TVS backup fails"
new_case
: >"$TV/opt/var/kelvo-sim/fail-backup"
run_dump
equal "kelvo-util exits with 0" 0 "$RUN_STATUS"
equal "a failed dump posts nothing" "" "$(notifications)"
equal "the stick holds only the time stamp written before the backup" "time.txt" "$(ls -A "$DUMP")"
check "the backup was asked for and failed" grep -q ' -1$' "$TV/opt/var/kelvo-sim/tvs.log"
equal "the export did not run: the TV's database is the earlier one" 1 \
    "$(sql "$TV/$DAEMON_DB_REL" "SELECT count(*) FROM programRF WHERE title LIKE 'stale row%';")"
equal "the content daemon was not asked anything" 0 "$(cat "$OUT/daemon-requests.jsonl" 2>/dev/null | wc -l)"
check "the export's log lines are absent" bash -c "! grep -q 'Start to Backup ProgramData' '$OUT/kelvo-util.log'"

echo "# no content daemon on the bus"
new_case
run_dump --no-daemon
equal "kelvo-util exits with 0" 0 "$RUN_STATUS"
equal "the dump still succeeds" "ChannelMap Dump:ChannelMap Dump Success" "$(notifications)"
mapfile -t times < <(current_times)
rows_match "programRF is complete" programRF "${times[1]:-0}"
equal "programMETA is empty" 0 "$(sql "$DB" 'SELECT count(*) FROM programMETA;')"
check "the copies are on the stick" test -f "$DUMP/db-tvs-epg.db" -a -f "$DUMP/.preview.db" -a -f "$DUMP/reminder.db"
finish
