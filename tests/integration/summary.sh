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
    ok "the dump names the command that inspects the stick" \
        grep -qxF "inspect the stick: tools/kelvo-tv inspect $STICK" <<<"$(tail -n 1 "$WORK/run.txt")"
    # One screen: the milestones as they happened, then the summary.
    ok "the output fits on one screen (under 60 lines, got $(wc -l <"$WORK/run.txt"))" \
        test "$(wc -l <"$WORK/run.txt")" -lt 60
    services=$(jq '.selectedServices | length' "$TV/expected.json")
    sources=$(jq '.sourceIds | length' "$TV/expected.json")
    inWindow=$(jq '.sourcesInWindow | length' "$TV/expected.json")
    milestones=$(sed '/^== kelvo-tv dump ==$/,$d' "$WORK/run.txt")
    for line in "USB storage: $MOUNT (device USBDriveA1)" "branch: dump" \
        "TVS backup into $MOUNT/DumpMWDB: done (result $(awk '$1 == "backup" { print $3 }' "$TV/opt/var/kelvo-sim/tvs.log"))" \
        "broadcast export: $services/$services services, $(jq .rfRowsInWindow "$TV/expected.json") rows" \
        "metadata export: $inWindow/$inWindow sources with programmes (of $sources, $(jq '.unmatchedSources | length' \
            "$TV/expected.json") unmatched), $(jq .metaRowsInWindow "$TV/expected.json") rows" \
        "result posted: ChannelMap Dump Success"; do
        ok "a milestone: $line" grep -qxF -- "$line" <<<"$milestones"
    done
    ok "no log line among the milestones" no grep -q '^[VDIWEF]/' <<<"$milestones"
}

# -v streams every line of the log as it comes, then the same summary.
verbose() {
    CASE=verbose
    C="$WORK" TV="$WORK/tv" STICK="$WORK/stick"
    mkdir -p "$STICK"
    "$ROOT/tools/kelvo-tv" dump -v --build-dir "$BUILD" --tv "$TV" --stick "$STICK" --out "$WORK/out" >"$WORK/run.txt" 2>&1
    eq "kelvo-tv dump -v's status" 0 "$?"
    sed '/^== kelvo-tv dump ==$/,$d' "$WORK/run.txt" | sed '$d' >"$WORK/streamed.txt"
    ok "every line of the log is shown, in order" cmp -s "$WORK/out/kelvo-util.log" "$WORK/streamed.txt"
    ok "debug lines are among them" grep -q '^D/kelvo-util' "$WORK/streamed.txt"
    ok "the summary follows" grep -qxF "notification: ChannelMap Dump: ChannelMap Dump Success" "$WORK/run.txt"
}

add_case summary summary
add_case verbose verbose
cases "$@"
