#!/usr/bin/env bash
# shellcheck source-path=SCRIPTDIR disable=SC2317  # the case functions run through `cases` (add_case)
# A dump of the reference TV onto an empty stick, checked as a person would: the notification,
# the time stamp, the files on the stick, every row of kelvoutilInfo.db read with sqlite3, and
# what the dump said to the content daemon as dbus-monitor saw it on the TV's bus.
# shellcheck source=lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

reference_tv() {
    new_case reference-tv --reference --edge-service
    run --monitor
    eq "exit status" 0 "$(status)"
    eq "exactly one notification, the dump's success" "$SUCCESS" "$(notes)"
    for text in "Start Dump Kelvo DB" "kelvo-util 555 ....."; do ok "log has $text" logged "$text"; done
    eq "no attempt to set the clock" "" "$(clock)"

    # time.txt: one line, the dump's time in seconds, read during the run.
    stamp=$(cat "$DUMP/time.txt" 2>/dev/null)
    ok "time.txt holds one decimal number" grep -qxE '[0-9]+' "$DUMP/time.txt"
    ok "time.txt ($stamp) lies within the run ($RUN_START..$RUN_END)" test "${stamp:-0}" -ge "$RUN_START" -a "${stamp:-0}" -le "$RUN_END"
    mapfile -t times < <(current_times)
    eq "clock readings: time stamp, guide window, metadata window" "3 $stamp" "${#times[@]} ${times[0]:-}"

    # The stick: the middleware's backup, the copies of the sources that exist, nothing else.
    eq "mode of DumpMWDB" 750 "$(stat -c %a "$DUMP")"
    eq "TVS calls" "backup $MOUNT/DumpMWDB" "$(tvs_calls | sed 's/ [0-9]*$//')"
    eq "the files and folders on the stick" "$(jq -r '.stickFiles[]' "$EXPECTED" | sort)" "$(find "$DUMP" -mindepth 1 -maxdepth 1 -printf '%f\n' | sort)"
    eq "nothing but DumpMWDB at the stick's root" DumpMWDB "$(ls -A "$STICK")"
    for copied in usr/globalapps/esg-service/data/esg-service.db dbspace/db-tvs-epg.db dbspace/db-tvs-service.db \
                  usr/home/owner/apps_rw/org.tizen.content-tiles-provider/data/.preview.db \
                  usr/home/owner/apps_rw/ContentServiceManager/data/csm-state.db \
                  usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/shared/kelvo/data/thumbnails/ch-0001.png \
                  usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data/kelvoutilInfo.db; do
        name=$(basename "$copied")
        [[ "$copied" == */thumbnails/* ]] && name="thumbnails/$name"
        ok "$name on the stick is the TV's file" cmp -s "$TV/opt/$copied" "$DUMP/$name"
    done
    eq "CHMS_Memory_Dump.sqlite holds the channel map made afresh" \
        "$(sql "$DBSPACE/db-tvs-service.db" "SELECT count(*) FROM service WHERE chmap_index <> -1;")" \
        "$(sql "$DUMP/CHMS_Memory_Dump.sqlite" 'SELECT count(*) FROM chmap;' 2>&1)"

    # kelvoutilInfo.db: exactly the guide of the selected services in the window, and exactly the
    # server's programmes; the stale rows of the earlier dump on the TV are gone.
    eq "the tables" "programMETA programRF" "$(sql "$DB" "SELECT group_concat(name, ' ') FROM (SELECT name FROM sqlite_master WHERE type='table' ORDER BY name);")"
    rows_match "programRF: the selected services' guide of the next 86400 s" programRF "${times[1]:-0}"
    rows_match "programMETA: the server's programmes of the next 86400 s" programMETA "${times[2]:-0}"
    # The edge service has an event starting every second around both ends of the day.
    eq "the guide window, to the second" "${times[1]:-0} $((${times[1]:-0} + 86399))" \
        "$(sql -separator ' ' "$DB" "SELECT min(starttime), max(starttime) FROM programRF WHERE title LIKE 'Second %';")"
    eq "programMETA rows as the generator promised" "$(jq .metaRowsInWindow "$EXPECTED")" "$(sql "$DB" 'SELECT count(*) FROM programMETA;')"
    eq "no stale row survives" 0 \
        "$(sql "$DB" "SELECT count(*) FROM (SELECT title FROM programRF UNION ALL SELECT title FROM programMETA) WHERE title LIKE 'stale row%';")"
    eq "programRF covers the selected services that broadcast a guide" \
        "$(jq '.rfRowsPerService | length' "$EXPECTED")" "$(sql "$DB" 'SELECT count(DISTINCT serviceId) FROM programRF;')"
    eq "no programRF row of a service the export leaves out" 0 \
        "$(sql "$DB" "ATTACH '$EXPECTED_DB' AS e; SELECT count(*) FROM programRF WHERE serviceId NOT IN (SELECT serviceId FROM e.selected);")"
    # Sources the TV does not know carry the all-ones service id, and only those.
    eq "rows with service id $ALL_ONES" "$(jq '[.unmatchedSources[] as $s | .metaRowsPerSource[$s]] | add' "$EXPECTED")" \
        "$(sql "$DB" "SELECT count(*) FROM programMETA WHERE serviceId = $ALL_ONES;")"
    eq "the unmatched sources" "$(jq -r '.unmatchedSources[]' "$EXPECTED" | sort)" \
        "$(sql "$DB" "SELECT DISTINCT CAST(metaSrcId AS TEXT) FROM programMETA WHERE serviceId = $ALL_ONES;" | sort)"
    # Texts: non-BMP characters arrive whole, apostrophes as double quotes.
    eq "a title outside the Basic Multilingual Plane" 1 \
        "$(sql "$DB" "SELECT count(*) > 0 FROM programRF WHERE title = 'Music 𝄞 Hall' OR title = '𠮷野家の一日';")"
    eq "no apostrophe is stored" 0 "$(sql "$DB" "SELECT count(*) FROM programRF WHERE title LIKE '%''%' OR descript LIKE '%''%';")"
    # Selected services lacking a fetched tag make the middleware print its diagnostics, once each.
    eq "missing-tag diagnostics" "$(jq '.selectedWithoutMinor | length' "$EXPECTED")" "$(grep -c 'ASSERT: missing tag\[ 14\]' "$OUT/kelvo-util.log")"

    # On the wire: the source list, one programme map for the day, then one lookup per source with
    # programmes in byte-wise ascending order, each with its exact argument text; nothing else.
    calls=$(awk '/^method call / && /interface=com\.halvorn\.tv\.KelvoDaemon\.Provider;/ {
                match($0, /member=[A-Za-z_]+/); member = substr($0, RSTART + 7, RLENGTH - 7); want = 1; next }
             want && /^   string "/ { text = $0; sub(/^   string "/, "", text); sub(/"$/, "", text);
                print member "\t" text; want = 0; next }
             { want = 0 }' "$OUT/dbus-monitor.txt")
    eq "the provider calls" "$(printf '%s\t%s\n' GetFullProgramSourceIdList '{"activityID":0}' GetProgramMap \
        "{\"activityID\":0,\"duration\":86400,\"genre id list\":\"\",\"sourceIDArray\":$(jq -c .sourceIds "$EXPECTED"),\"utc start time\":${times[2]:-0}}"
        jq -r '.sourcesInWindow[]' "$EXPECTED" | LC_ALL=C sort \
            | awk '{ printf "GetTCServiceIdByProgramSourceID\t{\"activityID\":0,\"program source id\":\"%s\"}\n", $0 }')" "$calls"
    eq "the daemon's own record agrees" "$(cut -f1 <<<"$calls")" "$(jq -r .method "$OUT/daemon-requests.jsonl")"
    eq "every call to the daemon is on the provider interface" "$(wc -l <<<"$calls")" \
        "$(grep -c '^method call .*destination=com.halvorn.tv.KelvoDaemon ' "$OUT/dbus-monitor.txt")"
}

add_case reference-tv reference_tv
cases "$@"
