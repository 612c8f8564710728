# shellcheck shell=bash disable=SC2034
# (SC2034: the variables a case sets up are read by the scripts that source this.)
# Shared by the integration scripts. A script registers its cases (add_case) and ends with
# `cases "$@"`:
#   SCRIPT --list   the names of its cases, one a line (CMake makes a ctest test of each);
#   SCRIPT CASE     runs that case in a scratch folder of its own: a fresh simulated TV and stick,
#                   one sandboxed kelvo-util run (tools/kelvo-tv run), and checks that report
#                   every mismatch of the case before it fails.
set -uo pipefail

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
declare -A CASE_COMMANDS=()
CASE_NAMES=()

# add_case NAME FUNCTION [ARGUMENT...]: the case NAME runs FUNCTION with the arguments.
add_case() {
    CASE_NAMES+=("$1")
    CASE_COMMANDS[$1]=$(printf '%q ' "${@:2}")
}

cases() {
    case "${1:-}" in
        --list) printf '%s\n' "${CASE_NAMES[@]}"; exit 0 ;;
        "") echo "usage: $0 --list | CASE"; exit 2 ;;
    esac
    [ -n "${CASE_COMMANDS[$1]+set}" ] || { echo "FAIL: no case $1 in $0"; exit 2; }
    BUILD=${KELVO_BUILD_DIR:?KELVO_BUILD_DIR must name the build folder to test}
    WORK=$(mktemp -d "${TMPDIR:-/tmp}/kelvo-it.XXXXXX")
    trap 'rm -rf "$WORK"' EXIT
    # CI must run these: a machine where bubblewrap cannot make a user namespace fails them.
    bwrap --unshare-user --ro-bind / / true 2>/dev/null || { echo "FAIL: bubblewrap cannot make a user namespace"; exit 1; }
    eval "${CASE_COMMANDS[$1]}"
    finish
}

MOUNT=/media/USBDriveA1
ALL_ONES=18446744073709551615
SUCCESS="ChannelMap Dump|ChannelMap Dump Success"
FAILURES=0

# new_case NAME [--reference [generator options]]: a TV with the bare folders, or the reference TV
# generated a few seconds back (so that the dump runs inside its quiet period); an empty stick.
new_case() {
    CASE=$1 C="$WORK/$1" FIXTURE=""
    shift
    TV="$C/tv" STICK="$C/stick" OUT="$C/out"
    mkdir -p "$STICK" "$OUT"
    if [ "${1:-}" = --reference ]; then
        shift
        FIXTURE="$C/fixture.json" EXPECTED="$C/expected.json" EXPECTED_DB="$C/expected.db"
        "$BUILD/tools/tv-gen/kelvo-tv-gen" --opt "$TV/opt" --fixture "$FIXTURE" --now $(($(date +%s) - 5)) "$@" \
            || { echo "FAIL: the TV generator failed"; exit 1; }
    else
        "$BUILD/tools/tv-gen/kelvo-tv-gen" --opt "$TV/opt" --minimal || { echo "FAIL: the TV generator failed"; exit 1; }
    fi
    DATA="$TV/opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data"
    SIM="$TV/opt/var/kelvo-sim" DBSPACE="$TV/opt/dbspace" CHMS="$TV/opt/usr/globalapps/tvs-chms/data"
    DUMP="$STICK/DumpMWDB" DB="$STICK/DumpMWDB/kelvoutilInfo.db"
    echo "=== $CASE"
}

# run [kelvo-tv run options]: one run with the stick at MOUNT (later options win); RUN_START and
# RUN_END (seconds) bracket it. Every notification of a run is shown for the system's hide time.
run() {
    RUN_START=$(date +%s)
    "$ROOT/tools/kelvo-tv" run --build-dir "$BUILD" --tv "$TV" --out "$OUT" --stick "$STICK" --mount "$MOUNT" \
        ${FIXTURE:+--fixture "$FIXTURE"} --timeout 120 "$@" >"$C/run.txt" 2>&1
    RUN_END=$(date +%s)
    check_hide_timeouts "$OUT/notifications.tsv"
}

# The fourth column of notifications.tsv: the hide timeout in ms (20 s).
check_hide_timeouts() {
    local app summary body timeout
    [ -f "$1" ] || return 0
    while IFS=$'\t' read -r app summary body timeout; do
        eq "hide timeout of \"$summary: $body\" from $app (ms)" 20000 "$timeout"
    done <"$1"
}

fail() { echo "FAIL [$CASE] $*"; FAILURES=$((FAILURES + 1)); }
eq() { [ "$2" == "$3" ] || fail "$1: expected [$2], got [$3]"; }  # what expected actual
ok() { local what=$1; shift; "$@" || fail "$what"; }              # what command...
no() { ! "$@"; }
finish() {
    [ "$FAILURES" -eq 0 ] && { echo "all checks of $CASE passed"; exit 0; }
    echo "$FAILURES check(s) failed; the last run, and the end of its log:"
    sed 's/^/  | /' "$C/run.txt" 2>/dev/null
    grep -v '^D/' "${OUT:-$C/out}/kelvo-util.log" 2>/dev/null | tail -n 30 | sed 's/^/  log | /'
    # A popup case's run is kelvo-popup, whose log (a sanitizer's report among it) tells why.
    local log
    for log in "$C"/kelvo-popup.log "$C"/*/kelvo-popup.log; do
        [ -f "$log" ] && tail -n 60 "$log" | sed "s#^#  ${log#"$C"/} | #"
    done
    exit 1
}

# What a run left, one line per item joined by ";": notifications as summary|body, the TVS
# simulator's backup/restore calls, the attempts to set the clock.
joined() { [ -f "$1" ] && paste -sd';' "$1"; true; }
notes() { [ -f "$OUT/notifications.tsv" ] && cut -f2,3 "$OUT/notifications.tsv" | tr '\t' '|' | paste -sd';'; true; }
tvs_calls() { joined "$SIM/tvs.log"; }
clock() { joined "$OUT/clock.log"; }
status() { cat "$OUT/exit-status" 2>/dev/null || echo none; }
logged() { grep -qF -- "$1" "$OUT/kelvo-util.log"; }
same() { [ -f "$1" ] && [ ! -L "$1" ] && cmp -s "$1" "$2"; }
absent() { [ ! -e "$1" ] && [ ! -L "$1" ]; }
sql() { sqlite3 -batch -noheader "$@"; }
# The clock readings of a dump in order: time.txt's, the guide window's, the metadata window's.
current_times() { sed -n 's/.*UTC Current Time = \([0-9]*\).*/\1/p' "$OUT/kelvo-util.log"; }

# rows_match WHAT TABLE START: TABLE on the stick holds exactly the expected rows of the day from
# START (duplicates count as differences).
rows_match() {
    eq "$1" "missing 0, extra 0, count off by 0" "$(sql "$DB" "ATTACH '$EXPECTED_DB' AS e;
        CREATE TEMP TABLE want AS SELECT * FROM e.$2 WHERE starttime >= $3 AND starttime < $3 + 86400;
        SELECT 'missing ' || (SELECT count(*) FROM (SELECT * FROM want EXCEPT SELECT * FROM main.$2))
            || ', extra ' || (SELECT count(*) FROM (SELECT * FROM main.$2 EXCEPT SELECT * FROM want))
            || ', count off by ' || ((SELECT count(*) FROM main.$2) - (SELECT count(*) FROM want));")"
}
