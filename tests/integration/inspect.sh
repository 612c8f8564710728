#!/usr/bin/env bash
# shellcheck source-path=SCRIPTDIR disable=SC2317  # the case functions run through `cases` (add_case)
# kelvo-inspect on what an engineer gets back: the reference TV's dump (its counts against the
# TV's expectations, its XMLTV through the XMLTV project's own validator), a database made to
# hold what the summary must point out, and files that are no dump database at all.
# shellcheck source=lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

DTD=/usr/share/xmltv/xmltv.dtd
inspect() { "$BUILD/tools/inspect/kelvo-inspect" "$@"; }
# The validator loads the DTD from the web unless it is given one.
valid_xmltv() { tv_validate_file --dtd-file "$DTD" "$1" >"$C/validate.txt" 2>&1; }
programmes() { grep -c '^  <programme ' "$1"; }
# jq over the JSON summary in $C/summary.json
summary() { jq -r "$@" "$C/summary.json"; }
# Everything on the stick, with sizes and times: what the inspector must leave as it was.
stick_state() { find "$STICK" -printf '%P %y %s %T@\n' | LC_ALL=C sort; }

reference_tv() {
    command -v tv_validate_file >/dev/null || { echo "FAIL: tv_validate_file is missing (apt-get install xmltv-util)"; exit 1; }
    new_case reference-tv --reference
    run --timeout 120
    eq "exit status of the dump" 0 "$(status)"
    mapfile -t times < <(current_times)
    local rf=${times[1]:-0} meta=${times[2]:-0} before
    before=$(stick_state)

    "$ROOT/tools/kelvo-tv" inspect "$STICK" --json --xmltv "$C/guide.xml" --build-dir "$BUILD" >"$C/summary.json" 2>"$C/inspect.err"
    eq "exit status of kelvo-tv inspect" 0 "$?"
    eq "nothing on standard error" "" "$(cat "$C/inspect.err")"
    eq "the stick is as the dump left it" "$before" "$(stick_state)"

    eq "dump time" "$(cat "$DUMP/time.txt")" "$(summary .dumpTime)"
    eq "programRF rows" "$(jq .rfRowsInWindow "$EXPECTED")" "$(summary .tables.programRF.rows)"
    eq "programMETA rows" "$(jq .metaRowsInWindow "$EXPECTED")" "$(summary .tables.programMETA.rows)"
    eq "programRF services" "$(jq '.rfRowsPerService | length' "$EXPECTED")" "$(summary .tables.programRF.services)"
    eq "rows per programRF service" "$(jq -r '.rfRowsPerService | to_entries[] | "\(.key) \(.value)"' "$EXPECTED" | sort)" \
        "$(summary '.tables.programRF.schedules[] | "\(.serviceId) \(.rows)"' | sort)"
    eq "metadata without a TV service, per source" \
        "$(jq -r '.unmatchedSources[] as $s | "\($s) \(.metaRowsPerSource[$s])"' "$EXPECTED" | sort)" \
        "$(summary '.unmatched.sources[] | "\(.source) \(.programmes)"' | sort)"
    local table start
    for table in programRF programMETA; do
        start=$rf
        [ "$table" = programMETA ] && start=$meta
        local window="FROM $table WHERE starttime >= $start AND starttime < $start + 86400"
        eq "$table languages" "$(sql -separator ' ' "$EXPECTED_DB" "SELECT language, count(*) $window GROUP BY 1;" | sort)" \
            "$(summary ".tables.$table.languages | to_entries[] | \"\(.key) \(.value)\"" | sort)"
        eq "$table time span" "$(sql -separator ' ' "$EXPECTED_DB" "SELECT min(starttime), max(starttime + duration) $window;")" \
            "$(summary ".tables.$table | \"\(.from) \(.to)\"")"
        eq "$table: gaps and overlaps of the reference schedules" "0 0" \
            "$(summary ".tables.$table | \"\(.schedulesWithGaps) \(.schedulesWithOverlaps)\"")"
    done
    # The TV's virtual channels have ids at or above 2^63: their metadata rows lose the id's low digits.
    local inexact
    inexact=$(jq -r --slurpfile f "$FIXTURE" '.sourcesInWindow[] as $s | ($f[0].sourceToService[$s] // empty)
        | select(length == 20 or (length == 19 and . >= "9223372036854775808")) | "\($s)"' "$EXPECTED")
    eq "service ids held inexactly" "$(sort -u <<<"$inexact" | grep -c .)" "$(summary '.inexactServiceIds | length')"
    eq "rows with an inexact id" "$(jq --arg s "$inexact" '[($s | split("\n"))[] as $x | .metaRowsPerSource[$x]] | add' "$EXPECTED")" \
        "$(summary .inexactRows)"
    eq "titles at the cut" 0 "$(summary '.cutTitles.titles | length')"

    ok "the XMLTV document passes tv_validate_file ($(tail -n 3 "$C/validate.txt" | paste -sd' '))" valid_xmltv "$C/guide.xml"
    eq "one programme per row" "$(sql "$DB" 'SELECT (SELECT count(*) FROM programRF) + (SELECT count(*) FROM programMETA);')" \
        "$(programmes "$C/guide.xml")"
    # A row as XMLTV has it: times in its format, title and description in the row's language.
    local row id stop title desc language
    IFS=$'\t' read -r id start stop language title desc < <(sql -separator $'\t' "$DB" \
        "SELECT serviceId, starttime, starttime + duration, language, title, descript FROM programRF WHERE title = 'Music 𝄞 Hall' AND descript NOT GLOB '*[&<>\"]*' LIMIT 1;")
    row=$(printf '  <programme start="%s" stop="%s" channel="%s.kelvo">\n    <title lang="%s">%s</title>\n    <desc lang="%s">%s</desc>' \
        "$(date -u -d "@$start" '+%Y%m%d%H%M%S +0000')" "$(date -u -d "@$stop" '+%Y%m%d%H%M%S +0000')" "$id" "$language" "$title" \
        "$language" "$desc")
    ok "a programme of \"$title\" on $id as XMLTV has it" grep -qzF "$row" "$C/guide.xml"

    inspect "$STICK" >"$C/summary.txt"
    eq "the text names the rows" "programRF: $(jq .rfRowsInWindow "$EXPECTED") rows" "$(grep -o '^programRF: [0-9]* rows' "$C/summary.txt")"
    ok "the text says ids were lost" grep -q '^service ids the database could not hold exactly: [1-9]' "$C/summary.txt"
}

# A dump database as the export makes it, with the rows given as SQL values.
make_db() {
    rm -f "$1"
    sql "$1" "CREATE TABLE programRF(serviceId integer, eventId integer, starttime integer, duration integer, language text, tsid integer, onid integer, title text, descript text);
        CREATE TABLE programMETA(serviceId integer, actId integer, metaSrcId integer, metaProgId integer, starttime integer, duration integer, language text, title text, descript text);
        $2"
}

made_database() {
    new_case made-database
    local t=1800000000 long256 long255 db="$DUMP/kelvoutilInfo.db"
    mkdir -p "$DUMP" && echo "$t" >"$DUMP/time.txt"
    long256=$(printf '𝄞%.0s' {1..128})  # 256 UTF-16 units: the export's cut
    long255=$(printf 'a%.0s' {1..255})
    make_db "$db" "INSERT INTO programRF VALUES
        (1153203425467392001, 1, $t, 600, 'eng', 0, 0, 'One', 'first'),
        (1153203425467392001, 2, $((t + 600)), 600, 'eng', 0, 0, 'Two', ''),
        (1153203425467392001, 3, $((t + 1500)), 600, 'eng', 0, 0, 'Three', 'after a gap'),
        (1153203425467392001, 4, $((t + 2000)), 600, 'eng', 0, 0, 'Tom & Jerry <live> \"quoted\"' || char(1) || CAST(X'C328' AS TEXT), ''),
        (9223372036854775809, 1, $t, 60, 'deu', 0, 0, '$long256', 'cut'),
        (1153203425467392002, 1, $t, 60, '', 0, 0, '$long255', ''),
        (1153203425467392002, 2, $((t + 60)), 60, 'eng', 0, 0, '', '');
        INSERT INTO programMETA VALUES
        (18446744073709551615, 0, '777', 'EP1', $t, 1800, 'en', 'Unmatched one', 'x'),
        (18446744073709551615, 0, '777', 'EP2', $((t + 1800)), 1800, 'en', 'Unmatched two', 'y'),
        (9223372036854780001, 0, '888', 'EP3', $t, 1800, 'en', 'Virtual', 'z'),
        (12345, 0, '999', 'EP4', NULL, 1800, 'en', 'No start', 'w');"
    local before
    before=$(stick_state)
    inspect --json --xmltv "$C/guide.xml" "$STICK" >"$C/summary.json" 2>"$C/inspect.err"
    eq "exit status" 0 "$?"
    eq "the stick is as it was" "$before" "$(stick_state)"

    # 2^63 + 1 and 2^63 + 4193 come back as 2^63 and 2^63 + 4096; the all-ones id is no loss.
    eq "the ids held inexactly: table, nearest id, distance, rows" \
        "programMETA 9223372036854779904 1024 1;programRF 9223372036854775808 1024 1" \
        "$(summary '[.inexactServiceIds[] | "\(.table) \(.serviceId) \(.within) \(.rows)"] | join(";")')"
    eq "metadata without a TV service" "777 2" "$(summary '.unmatched.sources[] | "\(.source) \(.programmes)"')"
    eq "the gap and the overlap" '[{"from":1800001200,"to":1800001500}] [{"from":1800002000,"to":1800002100}]' \
        "$(summary '.tables.programRF.schedules[] | select(.serviceId == "1153203425467392001") | "\(.gaps | tojson) \(.overlaps | tojson)"')"
    eq "the cut title (and not the one of 255 units)" "9223372036854775808 $long256" \
        "$(summary '.cutTitles.titles[] | "\(.serviceId) \(.title)"')"
    eq "rows without a start" 1 "$(summary .tables.programMETA.untimedRows)"
    eq "languages of programRF, an empty one included" '{"":1,"deu":1,"eng":5}' "$(summary -c .tables.programRF.languages)"

    ok "the XMLTV document passes tv_validate_file ($(tail -n 3 "$C/validate.txt" 2>/dev/null | paste -sd' '))" valid_xmltv "$C/guide.xml"
    eq "one programme per timed row" 10 "$(programmes "$C/guide.xml")"
    ok "markup and control characters in a title are escaped or replaced" \
        grep -qF '<title lang="eng">Tom &amp; Jerry &lt;live&gt; &quot;quoted&quot;??(</title>' "$C/guide.xml"
    ok "an untitled programme gets a title, an empty description none" \
        grep -qzF $'<title>(no title)</title>\n  </programme>' "$C/guide.xml"
    ok "a source without a TV service is a channel of its own" grep -qF '<channel id="777.source.kelvo">' "$C/guide.xml"

    inspect --xmltv "$db" "$STICK" >/dev/null 2>"$C/inspect.err"
    eq "--xmltv naming the database itself: exit status" 1 "$?"
    eq "--xmltv naming the database itself: the stick is as it was" "$before" "$(stick_state)"

    inspect "$STICK" >"$C/summary.txt"
    ok "the text names the lost id and how far off it may be" grep -qF \
        'programRF: service ~9223372036854775808, stored as 9.2233720368547758e+18: the id lay within 1024 of it: 1 row' "$C/summary.txt"
}

# Each: a name, how the file is made (in the case's folder, as FILE), what the one line says.
bad_files() {
    new_case bad-files
    local made="$C/made.db"
    make_db "$made" "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000)
        INSERT INTO programRF SELECT i, i, 1800000000 + i * 60, 60, 'eng', 0, 0, 'Title ' || i, 'Text ' || i FROM n;"
    local cases=(
        "missing|true|No such file or directory"
        "empty|: >FILE|empty file (0 bytes), not a dump database"
        "text|echo 'kelvoutilInfo, honest' >FILE|not an SQLite database"
        "truncated|head -c 20000 $made >FILE|truncated database: 20000 bytes of the"
        "without-programMETA|cp $made FILE && sql FILE 'DROP TABLE programMETA;'|the table programMETA is missing"
        "without-a-column|cp $made FILE && sql FILE 'ALTER TABLE programRF DROP COLUMN descript;'|the table programRF has no column descript"
        "damaged-page|cp $made FILE && dd if=/dev/zero of=FILE bs=1 seek=65544 count=64 conv=notrunc status=none|damaged database"
        "programMETA-a-view|cp $made FILE && sql FILE 'DROP TABLE programMETA; CREATE VIEW programMETA AS SELECT * FROM programRF;'|the table programMETA is missing"
        "stick-without-dump|mkdir FILE|neither a stick with DumpMWDB nor a DumpMWDB folder"
        "failed-dump|mkdir -p FILE/DumpMWDB && echo 1 >FILE/DumpMWDB/time.txt|holds no kelvoutilInfo.db"
    )
    local entry name make says file status
    for entry in "${cases[@]}"; do
        IFS='|' read -r name make says <<<"$entry"
        file="$C/$name"
        eval "${make//FILE/$file}"
        inspect "$file" >"$C/$name.out" 2>"$C/$name.err"
        status=$?
        eq "$name: exit status" 1 "$status"
        eq "$name: one line on standard error" 1 "$(wc -l <"$C/$name.err")"
        ok "$name: the line says \"$says\" ($(cat "$C/$name.err"))" grep -qF "$says" "$C/$name.err"
        eq "$name: nothing on standard output" "" "$(cat "$C/$name.out")"
    done
    # Random damage: whatever a byte flip does, the inspector answers with a summary or one line.
    local i offset size
    size=$(stat -c %s "$made")
    RANDOM=14
    for i in $(seq 40); do
        cp "$made" "$C/flipped.db"
        for _ in 1 2 3; do
            offset=$(((RANDOM * 32768 + RANDOM) % size))
            printf '%b' "\\x$(printf %02x $((RANDOM % 256)))" | dd of="$C/flipped.db" bs=1 seek="$offset" conv=notrunc status=none
        done
        inspect --json --xmltv "$C/flipped.xml" "$C/flipped.db" >/dev/null 2>"$C/flipped.err"
        status=$?
        ok "flip $i: exit status 0 or 1, not $status" test "$status" -le 1
        ok "flip $i: at most one line on standard error" test "$(wc -l <"$C/flipped.err")" -le "$status"
    done
}

add_case reference-tv reference_tv
add_case made-database made_database
add_case bad-files bad_files
cases "$@"
