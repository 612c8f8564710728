#!/usr/bin/env bash
# A dump of the reference TV onto an empty stick, checked as a person would: the notification,
# the time stamp, the files on the stick, and every row of kelvoutilInfo.db read with sqlite3.
source "$(dirname "$0")/lib.sh" "$1" "$2"

new_case --edge-service
run_dump

equal "kelvo-util exits with 0" 0 "$RUN_STATUS"
equal "exactly one notification, the dump's success" "ChannelMap Dump:ChannelMap Dump Success" "$(notifications)"

# time.txt: one line, the dump's time in seconds, taken during the run.
stamp=$(cat "$DUMP/time.txt" 2>/dev/null)
check "time.txt holds one decimal number" grep -qxE '[0-9]+' "$DUMP/time.txt"
check "time.txt lies within the run ($RUN_START..$RUN_END, got $stamp)" \
    test "${stamp:-0}" -ge "$RUN_START" -a "${stamp:-0}" -le "$RUN_END"
mapfile -t times < <(current_times)
equal "the clock is read three times: time stamp, guide window, metadata window" 3 "${#times[@]}"
equal "time.txt holds the first reading" "${times[0]:-}" "$stamp"

# The stick: the middleware's backup, the copies of the sources that exist, nothing else.
expected_files=$(jq -r '.stickFiles[]' "$EXPECTED" | sort | tr '\n' ' ')
actual_files=$(ls -A "$DUMP" | sort | tr '\n' ' ')
equal "the files and folders on the stick" "$expected_files" "$actual_files"
equal "nothing but DumpMWDB at the stick's root" "DumpMWDB" "$(ls -A "$STICK")"
for copied in usr/globalapps/esg-service/data/esg-service.db dbspace/db-tvs-epg.db dbspace/db-tvs-service.db \
              usr/home/owner/apps_rw/org.tizen.content-tiles-provider/data/.preview.db \
              usr/home/owner/apps_rw/ContentServiceManager/data/csm-state.db \
              usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/shared/kelvo/data/thumbnails/ch-0001.png \
              usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data/kelvoutilInfo.db; do
    name=${copied#*thumbnails/}
    [ "$name" = "$copied" ] && name=$(basename "$copied") || name="thumbnails/$name"
    check "$name on the stick is the TV's file" cmp -s "$TV/opt/$copied" "$DUMP/$name"
done

# The channel-map dump was made afresh by this run: exactly the services of the channel map.
in_map=$(sql "$TV/opt/dbspace/db-tvs-service.db" "SELECT count(*) FROM service WHERE chmap_index <> -1;")
equal "CHMS_Memory_Dump.sqlite holds the channel map" "$in_map" \
    "$(sql "$DUMP/CHMS_Memory_Dump.sqlite" 'SELECT count(*) FROM chmap;' 2>&1)"

# kelvoutilInfo.db: exactly the guide of the selected services in the window, and exactly the
# server's programmes; the stale rows of the earlier dump on the TV are gone.
equal "the two tables of the dump database" "programMETA programRF" \
    "$(sql "$DB" "SELECT name FROM sqlite_master WHERE type='table' ORDER BY name;" | tr '\n' ' ' | sed 's/ $//')"
rows_match "programRF holds the selected services' guide of the next 86400 s" programRF "${times[1]:-0}"
rows_match "programMETA holds the server's programmes of the next 86400 s" programMETA "${times[2]:-0}"
# The edge service has an event starting every second around both ends of the day: the guide
# window runs from the second the dump read the clock up to 86399 seconds later.
equal "the guide window, to the second" "${times[1]:-0} $((${times[1]:-0} + 86399))" \
    "$(sql -separator ' ' "$DB" "SELECT min(starttime), max(starttime) FROM programRF WHERE title LIKE 'Second %';")"
equal "programMETA row count as the generator promised" "$(jq .metaRowsInWindow "$EXPECTED")" \
    "$(sql "$DB" 'SELECT count(*) FROM programMETA;')"
equal "no row of the earlier dump survives" 0 \
    "$(sql "$DB" "SELECT count(*) FROM (SELECT title FROM programRF UNION ALL SELECT title FROM programMETA) WHERE title LIKE 'stale row%';")"
equal "programRF covers exactly the selected services that broadcast a guide" \
    "$(jq '.rfRowsPerService | length' "$EXPECTED")" "$(sql "$DB" 'SELECT count(DISTINCT serviceId) FROM programRF;')"
equal "no programRF row of a service the export leaves out" 0 \
    "$(sql "$DB" "ATTACH '$EXPECTED_DB' AS e; SELECT count(*) FROM programRF WHERE serviceId NOT IN (SELECT serviceId FROM e.selected);")"

# Sources the TV does not know carry the all-ones service id, and only those.
unmatched_rows=$(jq '[.unmatchedSources[] as $s | .metaRowsPerSource[$s]] | add' "$EXPECTED")
equal "rows of unmatched sources carry service id $ALL_ONES" "$unmatched_rows" \
    "$(sql "$DB" "SELECT count(*) FROM programMETA WHERE serviceId = $ALL_ONES;")"
equal "the unmatched sources" "$(jq -r '.unmatchedSources | sort | join(" ")' "$EXPECTED")" \
    "$(sql "$DB" "SELECT DISTINCT CAST(metaSrcId AS TEXT) FROM programMETA WHERE serviceId = $ALL_ONES ORDER BY 1;" | sort | tr '\n' ' ' | sed 's/ $//')"

# Texts: non-ASCII and non-BMP characters arrive intact, apostrophes as double quotes, "%%" as "%".
equal "a title outside the Basic Multilingual Plane arrives whole" 1 \
    "$(sql "$DB" "SELECT count(*) > 0 FROM programRF WHERE title = 'Music 𝄞 Hall' OR title = '𠮷野家の一日';")"
equal "no apostrophe is stored" 0 \
    "$(sql "$DB" "SELECT count(*) FROM programRF WHERE title LIKE '%''%' OR descript LIKE '%''%';")"

# Selected services lacking a fetched tag make the middleware print its diagnostics, once each.
equal "missing-tag diagnostics for the selected services without a minor number" \
    "$(jq '.selectedWithoutMinor | length' "$EXPECTED")" "$(grep -c 'ASSERT: missing tag\[ 14\]' "$OUT/kelvo-util.log")"

finish
