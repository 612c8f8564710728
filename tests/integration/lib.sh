# Shared by the integration scripts: a scratch folder per script, a fresh simulated TV and
# stick per case, one sandboxed kelvo-util run, and checks that report every mismatch of a
# case before the script fails.
set -euo pipefail

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
: "${KELVO_BUILD_DIR:?KELVO_BUILD_DIR must name the build folder to test}"
SCRATCH=$(mktemp -d "${TMPDIR:-/tmp}/kelvo-it.XXXXXX")
trap 'rm -rf "$SCRATCH"' EXIT

DAEMON_DATA_REL=opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data
DEFAULT_MOUNT=/media/USBDriveA1
FAILURES=0
CASE=""

kelvo_tv() { "$ROOT/tools/kelvo-tv" "$@" --build-dir "$KELVO_BUILD_DIR"; }

# begin_case NAME: sets C (case folder), TV, STICK (empty), OUT, DATA (the content daemon's
# data folder as seen from outside), SIM (the TVS simulator's control folder), DBSPACE, CHMS.
begin_case() {
    CASE=$1
    C="$SCRATCH/$CASE"
    TV="$C/tv"
    STICK="$C/stick"
    OUT="$C/out"
    mkdir -p "$STICK"
    kelvo_tv make-tv --tv "$TV" --minimal >/dev/null
    DATA="$TV/$DAEMON_DATA_REL"
    SIM="$TV/opt/var/kelvo-sim"
    DBSPACE="$TV/opt/dbspace"
    CHMS="$TV/opt/usr/globalapps/tvs-chms/data"
    echo "=== case $CASE"
}

# run_util [kelvo-tv run options...]: one run; its output is shown, its status is in OUT.
run_util() {
    kelvo_tv run --tv "$TV" --out "$OUT" "$@" || true
}

# run_on_stick [MOUNT] [more options...]: a run with STICK attached at MOUNT.
run_on_stick() {
    local mount=${1:-$DEFAULT_MOUNT}
    [ $# -gt 0 ] && shift
    run_util --stick "$STICK" --mount "$mount" "$@"
}

fail() {
    echo "FAIL [$CASE] $*"
    FAILURES=$((FAILURES + 1))
}

expect_eq() {  # what actual expected
    [ "$2" = "$3" ] || fail "$1: got '$2', expected '$3'"
}

expect_exit_status() {
    expect_eq "exit status" "$(cat "$OUT/exit-status" 2>/dev/null || echo none)" "$1"
}

# The notifications posted, in order, as "summary|body" (none given: no notification at all).
expect_notifications() {
    local expected="" actual="" n
    for n in "$@"; do expected+="$n"$'\n'; done
    if [ -f "$OUT/notifications.tsv" ]; then
        actual=$(awk -F'\t' '{ print $2 "|" $3 }' "$OUT/notifications.tsv")
        [ -n "$actual" ] && actual+=$'\n'
    fi
    [ "$actual" = "$expected" ] || fail "notifications: got [${actual//$'\n'/; }], expected [${expected//$'\n'/; }]"
}

expect_log() {  # a fixed text that some line of kelvo-util's log holds
    grep -qF -- "$1" "$OUT/kelvo-util.log" 2>/dev/null || fail "log lacks '$1'"
}

expect_no_log() {
    ! grep -qF -- "$1" "$OUT/kelvo-util.log" 2>/dev/null || fail "log has '$1'"
}

expect_file() {  # path [expected content file]
    if [ ! -f "$1" ] || [ -L "$1" ]; then
        fail "no regular file $1"
    elif [ $# -gt 1 ] && ! cmp -s "$1" "$2"; then
        fail "$1 differs from $2"
    fi
}

expect_no_path() {
    [ ! -e "$1" ] && [ ! -L "$1" ] || fail "$1 should not exist"
}

# The TVS simulator's record of backup/restore calls, exactly (none given: no call).
expect_tvs_calls() {
    local expected="" actual=""
    local line
    for line in "$@"; do expected+="$line"$'\n'; done
    if [ -f "$SIM/tvs.log" ]; then
        actual=$(cat "$SIM/tvs.log")
        [ -n "$actual" ] && actual+=$'\n'
    fi
    [ "$actual" = "$expected" ] || fail "TVS calls: got [${actual//$'\n'/; }], expected [${expected//$'\n'/; }]"
}

# The attempts to set the clock, exactly (none given: no attempt).
expect_clock() {
    local expected="" actual=""
    local line
    for line in "$@"; do expected+="$line"$'\n'; done
    if [ -f "$OUT/clock.log" ]; then
        actual=$(cat "$OUT/clock.log")
        [ -n "$actual" ] && actual+=$'\n'
    fi
    [ "$actual" = "$expected" ] || fail "clock: got [${actual//$'\n'/; }], expected [${expected//$'\n'/; }]"
}

finish() {
    if [ "$FAILURES" -ne 0 ]; then
        echo "$FAILURES check(s) failed"
        exit 1
    fi
    echo "all checks passed"
}
