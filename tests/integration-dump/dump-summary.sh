#!/usr/bin/env bash
# `tools/kelvo-tv dump`, the command a person runs: it makes the reference TV itself and ends
# with a summary that must agree with what landed on the stick.
source "$(dirname "$0")/lib.sh" "$1" "$2"

TV="$WORK/tv" STICK="$WORK/stick" OUT="$WORK/out"
mkdir -p "$STICK"
"$KELVO_TV" dump --build-dir "$BUILD" --tv "$TV" --stick "$STICK" --out "$OUT" >"$WORK/dump.txt" 2>&1
equal "kelvo-tv dump succeeds" 0 "$?"
summary=$(sed -n '/^== kelvo-tv dump ==$/,$p' "$WORK/dump.txt")
has() { grep -qxF -- "$1" <<<"$summary"; }
DB="$STICK/DumpMWDB/kelvoutilInfo.db"
EXPECTED="$TV/expected.json"

check "the branch" has "branch: dump"
check "the notification" has "notification: ChannelMap Dump: ChannelMap Dump Success"
check "kelvo-util's exit status" has "exit status: 0"
check "the stick's folder" has "  DumpMWDB/"
check "the dump database on the stick" \
    grep -qE "^  DumpMWDB/kelvoutilInfo\.db  $(stat -c %s "$DB") bytes$" <<<"$summary"
for table in programRF programMETA; do
    rows=$(sql "$DB" "SELECT count(*) FROM $table;")
    check "$table's rows, as many as the reference TV's day holds" \
        grep -qE "^  $table: $rows rows \(the reference TV's day holds $rows\)$" <<<"$summary"
done
check "the number of unmatched sources" \
    has "unmatched sources (service id $ALL_ONES): $(jq '.unmatchedSources | length' "$EXPECTED")"
first=$(jq -r '.unmatchedSources | sort | .[0]' "$EXPECTED")
check "each unmatched source with its programmes" \
    has "  source $first: $(jq --arg s "$first" '.metaRowsPerSource[$s]' "$EXPECTED") programmes"
check "the time taken" grep -qE '^time taken: [0-9]+\.[0-9] s in all, of which [0-9]+\.[0-9] s for the run' <<<"$summary"
finish
