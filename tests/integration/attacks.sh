#!/usr/bin/env bash
# attacks.sh CASE: one attack on the guards against hostile input, with the real kelvo-util in the
# simulated TV. Hostile programme text arrives from the broadcast guide or from the content
# daemon's metadata; hostile sticks carry links into the TV, special files, odd names and bad
# time stamps. Besides its own outcome, every case checks that nothing of the TV's /opt changed
# but the daemon's data folder, and a dump that every row of the TV except the crafted one is in
# the database. `attacks.sh --list` names the cases; `attacks.sh CASE` runs one.
# shellcheck source-path=SCRIPTDIR disable=SC2317  # the case functions run through `cases` (add_case)
# shellcheck source=lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

DATA_REL=usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data
SKIPPED=77
# Columns of each table besides the two texts: a consumed quote shows in them.
RF_COLUMNS="serviceId, eventId, starttime, duration, language, tsid, onid"
META_COLUMNS="serviceId, actId, metaSrcId, metaProgId, starttime, duration, language"

# Hostile texts: name | title | description. Apostrophes become double quotes before any
# statement is built; '%' is what the statement guard must handle.
TEXTS=(
    "quote-delete|Evil%|, 0); DELETE FROM programRF; DELETE FROM programMETA; --"
    "apostrophe-delete|Bob'); DELETE FROM programRF; --|it's'); DELETE FROM programMETA; --"
    "attach|Evil%|, 0); ATTACH '/opt/usr/attack.db' AS x; CREATE TABLE x.t(a); ATTACH '/opt/dbspace/db-tvs-service.db' AS y; DELETE FROM y.service; --"
    "drop|Evil%|, 0); DROP TABLE programRF; DROP TABLE programMETA; --"
    "percent-n|%n%n%s%s%n|%n%*d%.*s%lld%1\$n%p"
)

hex() { printf '%s' "$1" | od -An -tx1 -v | tr -d ' \n'; }
quoted() { printf "'%s'" "${1//\'/\'\'}"; }

# Every entry of the TV's /opt with its type, mode and link target, and every regular file's
# content, leaving out the two folders a run may write: the content daemon's data folder and the
# simulator's control and log folder. The channel map's memory dump is made afresh by every dump:
# it has to be there, its content is the dump's own.
CHANNEL_MAP_DUMP=./usr/globalapps/tvs-chms/data/CHMS_Memory_Dump.sqlite
tv_state() {
    (cd "$TV/opt" && find . \( -path "./$DATA_REL" -o -path ./var/kelvo-sim \) -prune -o \
        -printf '%y %m %p -> %l\n' -type f -exec sha256sum {} + | grep -vF "  $CHANNEL_MAP_DUMP" \
        | LC_ALL=C sort)
}
remember_tv() { BEFORE=$(tv_state); }
tv_unchanged() {
    local now
    now=$(tv_state)
    [ "$now" == "$BEFORE" ] || fail "the TV's /opt changed outside the daemon's data folder:" \
        "$(diff <(printf '%s\n' "$BEFORE") <(printf '%s\n' "$now") | grep '^[<>]' | head -n 6 | tr '\n' ' ')"
}

# rows_but_crafted WHAT TABLE START KEY COLUMNS: TABLE holds exactly the expected rows of the day
# from START, the crafted row (KEY) aside; that one is there at most once, and then with its other
# COLUMNS as the TV gave them.
rows_but_crafted() {
    local table=$2 start=$3 key=$4 columns=$5
    eq "$1" "missing 0, extra 0, others off by 0, crafted at most once, crafted columns off 0" \
        "$(sql "$DB" "ATTACH '$EXPECTED_DB' AS e;
        CREATE TEMP TABLE want AS SELECT * FROM e.$table WHERE starttime >= $start AND starttime < $start + 86400;
        CREATE TEMP TABLE got AS SELECT * FROM main.$table;
        SELECT 'missing ' || (SELECT count(*) FROM (SELECT * FROM want WHERE NOT ($key) EXCEPT SELECT * FROM got))
            || ', extra ' || (SELECT count(*) FROM (SELECT * FROM got WHERE NOT ($key) EXCEPT SELECT * FROM want))
            || ', others off by ' || ((SELECT count(*) FROM got WHERE NOT ($key)) - (SELECT count(*) FROM want WHERE NOT ($key)))
            || CASE WHEN (SELECT count(*) FROM got WHERE $key) <= 1 THEN ', crafted at most once'
                    ELSE ', crafted ' || (SELECT count(*) FROM got WHERE $key) || ' times' END
            || ', crafted columns off ' || (SELECT count(*) FROM
                (SELECT $columns FROM got WHERE $key EXCEPT SELECT $columns FROM want WHERE $key));" 2>&1)"
}

# ---------------------------------------------------------------- hostile programme text
# The texts on one broadcast event in the middle of the day, of a service the dump exports.
craft_broadcast() {
    read -r CRAFTED_SERVICE CRAFTED_EVENT <<<"$(sql -separator ' ' "$EXPECTED_DB" \
        "SELECT serviceId, eventId FROM programRF ORDER BY starttime, serviceId, eventId
         LIMIT 1 OFFSET (SELECT count(*) / 2 FROM programRF);")"
    eq "events given the hostile text" 1 "$(sql "$DBSPACE/db-tvs-epg.db" \
        "UPDATE event SET title = CAST(X'$(hex "$1")' AS TEXT), extended_text = CAST(X'$(hex "$2")' AS TEXT)
         WHERE service_id = $CRAFTED_SERVICE AND event_id = $CRAFTED_EVENT; SELECT changes();")"
    CRAFTED_KEY="serviceId = $CRAFTED_SERVICE AND eventId = $CRAFTED_EVENT"
}

# The texts on one server programme in the middle of the day, of a source the dump asks for.
craft_metadata() {
    local now
    now=$(jq .now "$EXPECTED")
    IFS=$'\t' read -r CRAFTED_SOURCE CRAFTED_PROGRAM <<<"$(jq -r --argjson now "$now" --argjson asked "$(jq -c .sourcesInWindow "$EXPECTED")" \
        '[.programs | to_entries[] | select(.key as $k | $asked | any(.[]; . == $k)) | .key as $s | .value[]
          | select(."utc start time" >= $now + 36000 and ."utc start time" < $now + 50400) | [$s, ."program id"]]
         | sort | .[0] | @tsv' "$FIXTURE")"
    jq --arg s "$CRAFTED_SOURCE" --arg p "$CRAFTED_PROGRAM" --arg t "$1" --arg d "$2" \
        '.programs[$s] |= map(if ."program id" == $p then .title = $t | .desc = $d else . end)' \
        "$FIXTURE" >"$C/fixture.hostile.json" && mv "$C/fixture.hostile.json" "$FIXTURE"
    eq "programmes given the hostile text" 1 "$(jq --arg t "$1" '[.programs[][] | select(.title == $t)] | length' "$FIXTURE")"
    CRAFTED_KEY="CAST(metaSrcId AS TEXT) = $(quoted "$CRAFTED_SOURCE") AND CAST(metaProgId AS TEXT) = $(quoted "$CRAFTED_PROGRAM")"
}

# text_attack SOURCE NAME: a dump of the reference TV with one hostile text from SOURCE
# (broadcast|metadata) succeeds, changes nothing of the TV, and keeps every other row.
text_attack() {
    local source=$1 name=$2 row title description
    for row in "${TEXTS[@]}"; do
        [ "${row%%|*}" = "$name" ] && IFS='|' read -r _ title description <<<"$row"
    done
    new_case "$source-$name" --reference
    if [ "$source" = broadcast ]; then craft_broadcast "$title" "$description"; else craft_metadata "$title" "$description"; fi
    remember_tv
    run
    eq "exit status" 0 "$(status)"
    eq notifications "$SUCCESS" "$(notes)"
    tv_unchanged
    ok "no file was attached into the TV" absent "$TV/opt/usr/attack.db"
    eq "the tables" "programMETA programRF" \
        "$(sql "$DB" "SELECT group_concat(name, ' ') FROM (SELECT name FROM sqlite_master ORDER BY name);" 2>&1)"
    eq "the only database file beside the copies" "" "$(find "$DUMP" -maxdepth 1 -name 'attack*')"
    mapfile -t times < <(current_times)
    if [ "$source" = broadcast ]; then
        rows_but_crafted "programRF: every other broadcast row" programRF "${times[1]:-0}" "$CRAFTED_KEY" "$RF_COLUMNS"
        rows_match "programMETA: every server row" programMETA "${times[2]:-0}"
    else
        rows_match "programRF: every broadcast row" programRF "${times[1]:-0}"
        rows_but_crafted "programMETA: every other server row" programMETA "${times[2]:-0}" "$CRAFTED_KEY" "$META_COLUMNS"
    fi
}

# ------------------------------------------------------------------------- hostile sticks
# A TV with bare folders, the middleware's databases and channel map in them, and a stick whose
# restore folder holds one file for the daemon.
stick_case() {
    new_case "$1"
    printf 'services of the set' >"$DBSPACE/db-tvs-service.db"
    printf 'guide of the set' >"$DBSPACE/db-tvs-epg.db"
    printf 'map of the set' >"$CHMS/channelmap.dat"
    mkdir -p "$STICK/RestoreMWDB"
    printf 'for the daemon' >"$STICK/RestoreMWDB/good.db"
}

# A restore through a RestoreMWDB that is a link into the TV (as the set sees its folders) is
# refused: nothing of the TV is read, copied or written.
restore_through_link() {
    stick_case "$1"
    rm -rf "$STICK/RestoreMWDB"
    ln -s "$2" "$STICK/RestoreMWDB"
    remember_tv
    run --no-daemon
    eq "exit status" 0 "$(status)"
    eq notifications "ChannelMap Dump|Restore ChannelMap Fail" "$(notes)"
    tv_unchanged
    eq "TVS calls" "" "$(tvs_calls)"
    eq "files in the daemon's data folder" "" "$(ls -A "$DATA")"
    ok "the log says why" grep -qiE 'RestoreMWDB.*link|link.*RestoreMWDB' "$OUT/kelvo-util.log"
}

# special_file_in_restore NAME [logged]: the restore goes on with the regular files; the special
# entry NAME does not arrive in the daemon's data folder, and with "logged" kelvo-util's log names
# it (a device node never arrives: the copy cannot make one in the sandbox).
special_file_in_restore() {
    remember_tv
    run --no-daemon
    eq "exit status" 0 "$(status)"
    eq notifications "ChannelMap Dump|Restore ChannelMap Success" "$(notes)"
    tv_unchanged
    ok "good.db in the daemon's data" same "$DATA/good.db" "$STICK/RestoreMWDB/good.db"
    eq "entries of the daemon's data folder that are not regular files" "" "$(find "$DATA" -mindepth 1 ! -type f)"
    [ "${2:-}" != logged ] || ok "kelvo-util's log names $1" grep -qE "^./kelvo-util\(.*${1//./\\.}" "$OUT/kelvo-util.log"
}

# clock_case NAME: a stick for a restore, with a DumpMWDB folder for the case's time.txt.
clock_case() {
    stick_case "$1"
    mkdir -p "$DUMP"
}



case_restore_fifo() {
    stick_case restore-fifo
    mkfifo "$STICK/RestoreMWDB/pipe.db"
    special_file_in_restore pipe.db logged
}

case_restore_socket() {
    stick_case restore-socket
    python3 -c 'import socket, sys; socket.socket(socket.AF_UNIX).bind(sys.argv[1])' "$STICK/RestoreMWDB/socket.db" \
        || { echo "FAIL: cannot make a socket on the stick"; exit 1; }
    special_file_in_restore socket.db logged
}

case_restore_device_node() {
    stick_case restore-device-node
    if ! error=$(mknod "$STICK/RestoreMWDB/null.db" c 1 3 2>&1); then
        echo "SKIP: a device node cannot be made here without privileges (mknod: $error)"
        exit "$SKIPPED"
    fi
    special_file_in_restore null.db
}

# The dump's rm -rf and its writes go into a real folder on the stick, not into the TV.
case_dump_link_to_dbspace() {
    new_case dump-link-to-dbspace --reference
    ln -s /opt/dbspace "$DUMP"
    remember_tv
    run
    eq "exit status" 0 "$(status)"
    eq notifications "$SUCCESS" "$(notes)"
    tv_unchanged
    ok "DumpMWDB is no link" test ! -L "$DUMP"
    ok "DumpMWDB is a folder" test -d "$DUMP"
    mapfile -t times < <(current_times)
    rows_match "programRF: every broadcast row" programRF "${times[1]:-0}"
    rows_match "programMETA: every server row" programMETA "${times[2]:-0}"
}

# Names that a shell would take for commands, options or several words.
# Names that a shell would take for commands, options or several words; a command that ran would
# leave /opt/injected-N in the TV (the names cannot hold a '/', printf makes it).
# shellcheck disable=SC2016  # the names are meant to hold the unexpanded text
ODD_NAMES=('$(touch "$(printf "\057opt\057injected-1")").db' 'a;touch "$(printf "\057opt\057injected-2")";.db'
           '`touch "$(printf "\057opt\057injected-3")"`.db' '|touch "$(printf "\057opt\057injected-4")".db'
           '&&touch "$(printf "\057opt\057injected-5")".db' 'two words.db' '-rf.db' $'new\nline.db' '*.db'
           "it's.db")

case_restore_odd_names() {
    stick_case restore-odd-names
    local name
    for name in "${ODD_NAMES[@]}"; do printf '%s' "$name" >"$STICK/RestoreMWDB/$name"; done
    remember_tv
    run --no-daemon
    eq "exit status" 0 "$(status)"
    eq notifications "ChannelMap Dump|Restore ChannelMap Success" "$(notes)"
    tv_unchanged
    eq "commands run from the names" "" "$(find "$TV/opt" -name 'injected*')"
    for name in "${ODD_NAMES[@]}"; do ok "[$name] arrived as it is" same "$DATA/$name" "$STICK/RestoreMWDB/$name"; done
}

case_dump_odd_names() {
    new_case dump-odd-names
    mkdir -p "$DUMP"
    local name
    for name in "${ODD_NAMES[@]}"; do
        printf old >"$DUMP/$name"
        printf keep >"$STICK/$name"
    done
    remember_tv
    run --no-daemon
    eq "exit status" 0 "$(status)"
    eq notifications "$SUCCESS" "$(notes)"
    tv_unchanged
    eq "commands run from the names" "" "$(find "$TV/opt" "$STICK" -name 'injected*')"
    for name in "${ODD_NAMES[@]}"; do
        ok "[$name] of the earlier dump is gone" absent "$DUMP/$name"
        eq "[$name] beside DumpMWDB is untouched" keep "$(cat "$STICK/$name" 2>&1)"
    done
    ok "the new dump is there" test -s "$DB"
}

# A FIFO as time.txt: opening it waits for a writer that never comes, like the kept hang of a
# time.txt without a number; the run-time limit ends it before the clock or a notification.
# A FIFO would block the read for good: it is not opened, the clock is left alone and the
# middleware's restore still decides the outcome.
case_time_fifo() {
    clock_case time-fifo
    mkfifo "$DUMP/time.txt"
    remember_tv
    run --no-daemon --timeout 10
    eq "exit status" 0 "$(status)"
    eq notifications "ChannelMap Dump|Restore ChannelMap Success" "$(notes)"
    eq clock "" "$(clock)"
    ok "the log says why" logged "time.txt] is not a regular file"
    tv_unchanged
}

case_time_garbage() {
    clock_case time-garbage
    printf 'Mon Nov 23 17:00:00 UTC 2026\n' >"$DUMP/time.txt"
    remember_tv
    run --no-daemon --timeout 2
    eq "exit status" 124 "$(status)"
    eq notifications "" "$(notes)"
    eq clock "" "$(clock)"
    tv_unchanged
}

# time_number CASE TEXT SECONDS: a number the set cannot take still ends the restore normally;
# the clock is asked for what the read gave (the sandbox refuses it).
time_number() {
    clock_case "$1"
    printf '%s\n' "$2" >"$DUMP/time.txt"
    remember_tv
    run --no-daemon
    eq "exit status" 0 "$(status)"
    eq notifications "ChannelMap Dump|Restore ChannelMap Success" "$(notes)"
    eq "what the clock was asked for" "settimeofday $3 0 result=-1" "$(clock | sed 's/ errno=.*//')"
    ok "the log has the time read" logged "restore time is $3"
    tv_unchanged
}

add_case broadcast-quote-delete text_attack broadcast quote-delete
add_case broadcast-apostrophe-delete text_attack broadcast apostrophe-delete
add_case broadcast-attach text_attack broadcast attach
add_case broadcast-drop text_attack broadcast drop
add_case broadcast-percent-n text_attack broadcast percent-n
add_case metadata-quote-delete text_attack metadata quote-delete
add_case metadata-apostrophe-delete text_attack metadata apostrophe-delete
add_case metadata-attach text_attack metadata attach
add_case metadata-drop text_attack metadata drop
add_case metadata-percent-n text_attack metadata percent-n
add_case restore-link-to-dbspace restore_through_link restore-link-to-dbspace /opt/dbspace
add_case restore-link-to-channel-map restore_through_link restore-link-to-channel-map /opt/usr/globalapps/tvs-chms/data
add_case restore-fifo case_restore_fifo
add_case restore-socket case_restore_socket
add_case restore-device-node case_restore_device_node
add_case restore-odd-names case_restore_odd_names
add_case dump-link-to-dbspace case_dump_link_to_dbspace
add_case dump-odd-names case_dump_odd_names
add_case time-fifo case_time_fifo
add_case time-garbage case_time_garbage
add_case time-huge time_number time-huge 99999999999999999999999 9223372036854775807
add_case time-negative time_number time-negative -1 -1
cases "$@"
