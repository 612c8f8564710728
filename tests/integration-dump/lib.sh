# Shared steps of the dump's integration tests: a fresh reference TV and stick in a temporary
# folder of the test's own, one kelvo-util run in the sandbox, and checks that report every
# failed expectation before the test ends.
# Usage from a test: source lib.sh SOURCE_DIR BUILD_DIR
set -uo pipefail

SRC=$(cd "$1" && pwd)
BUILD=$(cd "$2" && pwd)
KELVO_TV="$SRC/tools/kelvo-tv"
TV_GEN="$BUILD/tools/tv-gen/kelvo-tv-gen"
ALL_ONES=18446744073709551615
FAILURES=0

WORK=$(mktemp -d "${TMPDIR:-/tmp}/kelvo-dump-test.XXXXXX")
trap 'rm -rf "$WORK"' EXIT

# The sandbox needs a user namespace; a machine without one skips these tests.
if ! bwrap --unshare-user --ro-bind / / true 2>/dev/null; then
    echo "SKIP: bubblewrap cannot make a user namespace here"
    exit 77
fi
for binary in "$TV_GEN" "$BUILD/util/kelvo-util" "$BUILD/tools/daemon-sim/kelvo-daemon-sim"; do
    [ -x "$binary" ] || { echo "FAIL: $binary is not built"; exit 1; }
done

fail() { echo "FAIL: $*"; FAILURES=$((FAILURES + 1)); }
pass() { echo "ok: $*"; }
# check "what is expected" test-command...
check() {
    local what=$1
    shift
    if "$@"; then pass "$what"; else fail "$what"; fi
}
equal() {  # what expected actual
    if [ "$2" == "$3" ]; then pass "$1"; else fail "$1: expected [$2], got [$3]"; fi
}
finish() {
    if [ "$FAILURES" -ne 0 ]; then
        echo "$FAILURES check(s) failed; artefacts of the last run:"
        sed 's/^/  | /' "$OUT/kelvo-util.log" 2>/dev/null | grep -v 'query' | tail -n 40
        exit 1
    fi
    echo "all checks passed"
    exit 0
}

# A fresh case: the reference TV generated "now" (a few seconds back, so that the dump runs
# inside the TV's quiet period), an empty stick, an empty artefacts folder.
# Extra arguments go to the generator (e.g. --services 300).
new_case() {
    CASE="$WORK/case$((${CASE_NUMBER:-0} + 1))"
    CASE_NUMBER=$((${CASE_NUMBER:-0} + 1))
    TV="$CASE/tv"
    STICK="$CASE/stick"
    OUT="$CASE/out"
    FIXTURE="$CASE/fixture.json"
    EXPECTED="$CASE/expected.json"
    EXPECTED_DB="$CASE/expected.db"
    mkdir -p "$TV/opt/var/kelvo-sim" "$STICK" "$OUT"
    : >"$TV/.kelvo-tv"
    "$TV_GEN" --opt "$TV/opt" --fixture "$FIXTURE" --now $(($(date +%s) - 5)) "$@" \
        || { echo "FAIL: the TV generator failed"; exit 1; }
    DUMP="$STICK/DumpMWDB"
    DB="$DUMP/kelvoutilInfo.db"
}

# One kelvo-util run on the case's TV and stick; extra arguments go to `kelvo-tv run`.
# Sets RUN_START and RUN_END (seconds) around it.
run_dump() {
    RUN_START=$(date +%s)
    "$KELVO_TV" run --build-dir "$BUILD" --tv "$TV" --stick "$STICK" --out "$OUT" --fixture "$FIXTURE" \
        --timeout 120 "$@" >"$OUT/../run.txt" 2>&1
    RUN_STATUS=$?
    RUN_END=$(date +%s)
}

notifications() { cut -f2,3 "$OUT/notifications.tsv" 2>/dev/null | tr '\t' ':'; }
# The clock readings of the dump in order: time.txt's, the guide window's, the metadata window's.
current_times() { sed -n 's/.*UTC Current Time = \([0-9]*\).*/\1/p' "$OUT/kelvo-util.log"; }
sql() { sqlite3 -batch -noheader "$@"; }

# Rows of TABLE (programRF or programMETA) that differ between the stick's database and the
# expectation for a window from START: "missing N, extra M". Duplicates count as differences.
compare_rows() {
    local table=$1 start=$2
    sql "$DB" "ATTACH '$EXPECTED_DB' AS e;
        CREATE TEMP TABLE want AS SELECT * FROM e.$table WHERE starttime >= $start AND starttime < $start + 86400;
        SELECT 'missing ' || (SELECT count(*) FROM (SELECT * FROM want EXCEPT SELECT * FROM main.$table))
            || ', extra ' || (SELECT count(*) FROM (SELECT * FROM main.$table EXCEPT SELECT * FROM want))
            || ', rows ' || (SELECT count(*) FROM main.$table) || '/' || (SELECT count(*) FROM want);"
}
rows_match() {  # what table start
    local result
    result=$(compare_rows "$2" "$3")
    local want
    want=$(sql "$EXPECTED_DB" "SELECT count(*) FROM $2 WHERE starttime >= $3 AND starttime < $3 + 86400;")
    equal "$1" "missing 0, extra 0, rows $want/$want" "$result"
}
