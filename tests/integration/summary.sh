#!/usr/bin/env bash
# shellcheck source-path=SCRIPTDIR disable=SC2317  # the case functions run through `cases` (add_case)
# `tools/kelvo-tv dump`, the command a person runs: it makes the reference TV itself and ends with
# a summary that must agree with what landed on the stick.
# shellcheck source=lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

summary() {
    CASE=summary
    C="$WORK" TV="$WORK/tv" STICK="$WORK/stick" DB="$WORK/stick/DumpMWDB/kelvoutilInfo.db"
    mkdir -p "$STICK"
    "$ROOT/tools/kelvo-tv" dump --build-dir "$BUILD" --tv "$TV" --stick "$STICK" --out "$WORK/out" >"$WORK/run.txt" 2>&1
    eq "kelvo-tv dump's status" 0 "$?"
    check_hide_timeouts "$WORK/out/notifications.tsv"
    summary=$(sed -n '/^== kelvo-tv dump ==$/,$p' "$WORK/run.txt")
    first=$(jq -r '.unmatchedSources | sort | .[0]' "$TV/expected.json")
    for line in "branch: dump" "notification: ChannelMap Dump: ChannelMap Dump Success" "exit status: 0" "  DumpMWDB/" \
        "  DumpMWDB/kelvoutilInfo.db  $(stat -c %s "$DB") bytes" \
        "  programRF: $(sql "$DB" 'SELECT count(*) FROM programRF;') rows (the reference TV's day holds $(jq .rfRowsInWindow "$TV/expected.json"))" \
        "  programMETA: $(sql "$DB" 'SELECT count(*) FROM programMETA;') rows (the reference TV's day holds $(jq .metaRowsInWindow "$TV/expected.json"))" \
        "unmatched sources (service id $ALL_ONES): $(jq '.unmatchedSources | length' "$TV/expected.json")" \
        "  source $first: $(jq --arg s "$first" '.metaRowsPerSource[$s]' "$TV/expected.json") programmes"; do
        ok "the summary shows: $line" grep -qxF -- "$line" <<<"$summary"
    done
    ok "the summary shows the time taken" grep -qE '^time taken: [0-9]+\.[0-9] s in all, of which [0-9]+\.[0-9] s for the run' <<<"$summary"
}

add_case summary summary
cases "$@"
