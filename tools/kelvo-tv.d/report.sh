# shellcheck shell=bash disable=SC2034,SC2153
# (Sourced by tools/kelvo-tv: its variables are set and read across these files.)
# kelvo-tv: what a run left, as a person reads it.

# What a run left: the notifications, the clock, the exit status.
print_run_result() {
    local out=$1 status
    if [ -s "$out/notifications.tsv" ]; then
        awk -F'\t' '{ print "notification: " $2 ": " $3 }' "$out/notifications.tsv"
    else
        echo "notification: none"
    fi
    if [ -s "$out/clock.log" ]; then
        sed 's/^/clock: /' "$out/clock.log"
    fi
    status=$(cat "$out/exit-status" 2>/dev/null || echo "?")
    if [ "$status" = 124 ] || [ "$status" = 137 ]; then
        echo "exit status: $status (stopped by the time limit of ${TIMEOUT}s)"
    else
        echo "exit status: $status"
    fi
}

# Which way kelvo-util went, from its own log lines.
run_branch() {
    local log="$1/kelvo-util.log"
    if grep -q 'kelvo-util 111 \.\.\.\.\.' "$log" 2>/dev/null; then echo "no USB storage"
    elif grep -q 'Start Restore Kelvo DB' "$log" 2>/dev/null; then echo "restore"
    elif grep -q 'RestoreMWDB\] refused' "$log" 2>/dev/null; then echo "restore (refused before it began; see the log)"
    elif grep -q 'Start Dump Kelvo DB' "$log" 2>/dev/null; then echo "dump"
    else echo "unknown (see $1/kelvo-util.log)"
    fi
}

# The summary of a dump: branch, notification, what is on the stick, rows per table against
# what the reference TV promises (TV/expected.json, written with the TV), the sources the TV
# does not know, and the time taken. Arguments: OUT STICK [TV [SECONDS-ALL [SECONDS-RUN]]].
dump_summary() {
    local out=$1 stick=$2 tv=${3:-} all=${4:-} run=${5:-}
    local expected="$tv/expected.json"
    [ -n "$tv" ] && [ -f "$expected" ] || expected=""
    echo
    echo "== kelvo-tv dump =="
    echo "branch: $(run_branch "$out")"
    print_run_result "$out"
    if [ -n "$stick" ]; then
        echo "stick ($stick):"
        if [ -n "$(ls -A "$stick" 2>/dev/null)" ]; then
            (cd "$stick" && find . -mindepth 1 -printf '%P\t%y\t%s\t%l\n' | LC_ALL=C sort \
                | awk -F'\t' '$2 == "d" { printf "  %s/\n", $1; next }
                               $2 == "l" { printf "  %s -> %s\n", $1, $4; next }
                               { printf "  %s  %s bytes\n", $1, $3 }')
        else
            echo "  (empty)"
        fi
        local db="$stick/DumpMWDB/kelvoutilInfo.db" table rows promise
        if [ -f "$db" ]; then
            echo "kelvoutilInfo.db:"
            for table in $(sqlite3 "$db" "SELECT name FROM sqlite_master WHERE type='table' ORDER BY name;"); do
                rows=$(sqlite3 "$db" "SELECT COUNT(*) FROM \"$table\";")
                promise=""
                if [ -n "$expected" ]; then
                    case "$table" in
                        programRF) promise=$(sed -n 's/^ *"rfRowsInWindow" *: *\([0-9]*\).*/\1/p' "$expected") ;;
                        programMETA) promise=$(sed -n 's/^ *"metaRowsInWindow" *: *\([0-9]*\).*/\1/p' "$expected") ;;
                    esac
                fi
                if [ -n "$promise" ]; then
                    echo "  $table: $rows rows (the reference TV's day holds $promise)"
                else
                    echo "  $table: $rows rows"
                fi
            done
            # Programmes of sources the TV has no service for carry the all-ones service id.
            local unmatched
            unmatched=$(sqlite3 -separator ' ' "$db" "SELECT CAST(metaSrcId AS TEXT), COUNT(*) FROM programMETA
                WHERE serviceId = 18446744073709551615 GROUP BY 1 ORDER BY 1;" 2>/dev/null || true)
            if [ -n "$unmatched" ]; then
                echo "unmatched sources (service id 18446744073709551615): $(wc -l <<<"$unmatched")"
                awk '{ printf "  source %s: %s programmes\n", $1, $2 }' <<<"$unmatched"
            else
                echo "unmatched sources: none"
            fi
        fi
    fi
    if [ -n "$all" ]; then
        echo "time taken: ${all} s in all${run:+, of which ${run} s for the run in the TV (sandbox, bus, kelvo-util)}"
    fi
    echo "artefacts: $out (the whole log: $out/kelvo-util.log)"
    # What the engineer who receives the stick runs on it.
    if [ -n "$stick" ] && [ -d "$stick/DumpMWDB" ]; then
        printf 'inspect the stick: tools/kelvo-tv inspect %q\n' "$stick"
    fi
}
