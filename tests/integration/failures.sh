#!/usr/bin/env bash
# shellcheck source-path=SCRIPTDIR disable=SC2317  # the case functions run through `cases` (add_case)
# Runs that cannot dump: no USB storage, a middleware backup that fails, and a TV whose content
# daemon is not running (the dump goes on without the server's programmes).
# shellcheck source=lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

no_storage() {
    new_case no-storage
    run --no-stick
    eq "exit status" 0 "$(status)"
    eq notifications "ChannelMap Dump|ChannelMap Dump Fail" "$(notes)"
    for text in "kelvo-util run starts by activation ....." "kelvo-util 111 ....."; do ok "log has $text" logged "$text"; done
    ok "nothing else ran" no logged "kelvo-util 222"
    ok "no dump database" absent "$DATA/kelvoutilInfo.db"
    eq "TVS calls" "" "$(tvs_calls)"
    eq clock "" "$(clock)"
}

backup_fails() {
    new_case backup-fails --reference
    : >"$SIM/fail-backup"
    run
    eq "exit status" 0 "$(status)"
    eq "a failed dump posts nothing" "" "$(notes)"
    ok "log has 666" logged "kelvo-util 666 ....."
    ok "no success" no logged "kelvo-util 555"
    eq "only the time stamp written before the backup" time.txt "$(ls -A "$DUMP")"
    eq "TVS calls" "backup $MOUNT/DumpMWDB -1" "$(tvs_calls)"
    eq "the export did not run: the TV's database is the earlier one" 1 \
        "$(sql "$DATA/kelvoutilInfo.db" "SELECT count(*) FROM programRF WHERE title LIKE 'stale row%';")"
    eq "the content daemon was asked nothing" 0 "$( (wc -l <"$OUT/daemon-requests.jsonl") 2>/dev/null || echo 0)"
    ok "no export log lines" no logged "Start to Backup ProgramData"
}

no_daemon() {
    new_case no-daemon --reference
    run --no-daemon
    eq "exit status" 0 "$(status)"
    eq "the dump still succeeds" "$SUCCESS" "$(notes)"
    mapfile -t times < <(current_times)
    rows_match "programRF is complete" programRF "${times[1]:-0}"
    eq "programMETA is empty" 0 "$(sql "$DB" 'SELECT count(*) FROM programMETA;')"
    ok "the copies are on the stick" test -f "$DUMP/db-tvs-epg.db" -a -f "$DUMP/.preview.db" -a -f "$DUMP/reminder.db"
}

add_case no-storage no_storage
add_case backup-fails backup_fails
add_case no-daemon no_daemon
cases "$@"
