#!/usr/bin/env bash
# run.sh [SECONDS]: replays each fuzz target's seed corpus (corpus/<target>), then fuzzes each
# target for SECONDS (default 20), with the binaries of the preset fuzz as they are: it builds
# nothing. Fails when a target crashes, leaks, overflows, hangs or breaks its property; the input
# that did it is kept in the run's folder (KELVO_FUZZ_OUT, default a new temporary folder that is
# removed again when every target passed), beside each target's log and the new inputs it found.
# The seed corpora are only read.
#
#   KELVO_FUZZ_BUILD_DIR  the fuzz build folder (default build/fuzz of this tree)
#   KELVO_FUZZ_TARGETS    which targets, blank-separated (default: all)
set -uo pipefail

HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
ROOT=$(cd "$HERE/../.." && pwd)
SECONDS_EACH=${1:-20}
[[ "$SECONDS_EACH" =~ ^[1-9][0-9]*$ ]] || { echo "usage: $0 [SECONDS]" >&2; exit 2; }
BUILD=${KELVO_FUZZ_BUILD_DIR:-$ROOT/build/fuzz}
read -r -a TARGETS <<<"${KELVO_FUZZ_TARGETS:-marshal statement timefile jsoneach aoc}"
OUT=${KELVO_FUZZ_OUT:-$(mktemp -d "${TMPDIR:-/tmp}/kelvo-fuzz.XXXXXX")}
mkdir -p "$OUT"

# The statement target writes its database into a folder of its own under TMPDIR: a tmpfs
# when there is one, since each input opens, fills and syncs a fresh file.
SCRATCH=$(mktemp -d /dev/shm/kelvo-fuzz.XXXXXX 2>/dev/null || mktemp -d "${TMPDIR:-/tmp}/kelvo-fuzz-db.XXXXXX")
trap 'rm -rf "$SCRATCH"' EXIT

# Per target: the longest input worth trying, and its dictionary.
declare -A MAX_LEN=([marshal]=8192 [statement]=600 [timefile]=256 [jsoneach]=4096 [aoc]=4096)
declare -A DICT=([marshal]=json.dict [statement]=sql.dict [jsoneach]=json.dict [aoc]=json.dict)

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}

stat_of() { sed -n "s/^stat::$1: *//p" "$2" | tail -n 1; }
# The input libFuzzer kept for a target's failure.
artefact() {
    find "$OUT" -maxdepth 1 -type f \( -name "$1-crash-*" -o -name "$1-leak-*" -o -name "$1-timeout-*" \
        -o -name "$1-oom-*" \) | head -n 1
}

failed=()
for target in "${TARGETS[@]}"; do
    binary="$BUILD/tests/fuzz/kelvo-fuzz-$target"
    seeds="$HERE/corpus/$target"
    if [ ! -x "$binary" ]; then
        echo "FAIL $target: $binary is not built (cmake --preset fuzz && cmake --build --preset fuzz)"
        failed+=("$target")
        continue
    fi
    found="$OUT/$target-corpus"
    mkdir -p "$found"
    options=(-max_len="${MAX_LEN[$target]:-4096}" -timeout=10 -artifact_prefix="$OUT/$target-" -print_final_stats=1)
    [ -n "${DICT[$target]:-}" ] && options+=(-dict="$HERE/${DICT[$target]}")

    # Every seed once, as it is.
    if ! TMPDIR="$SCRATCH" "$binary" "${options[@]}" -runs=0 "$seeds" >"$OUT/$target-replay.log" 2>&1; then
        echo "FAIL $target: a seed of corpus/$target broke it (log: $OUT/$target-replay.log)"
        grep -m 3 -E 'ERROR|property|runtime error|SUMMARY' "$OUT/$target-replay.log" | sed 's/^/  | /'
        failed+=("$target")
        continue
    fi
    replayed=$(find "$seeds" -type f | wc -l)

    # New inputs go to the run's folder; the seeds are read from the tree.
    if ! TMPDIR="$SCRATCH" "$binary" "${options[@]}" -max_total_time="$SECONDS_EACH" "$found" "$seeds" \
        >"$OUT/$target-fuzz.log" 2>&1; then
        echo "FAIL $target: fuzzing broke it (log: $OUT/$target-fuzz.log; input: $(artefact "$target"))"
        grep -m 3 -E 'ERROR|property|runtime error|SUMMARY' "$OUT/$target-fuzz.log" | sed 's/^/  | /'
        failed+=("$target")
        continue
    fi
    log="$OUT/$target-fuzz.log"
    echo "ok   $target: $replayed seeds replayed; fuzzed ${SECONDS_EACH}s: $(stat_of number_of_executed_units "$log") runs," \
         "$(stat_of average_exec_per_sec "$log")/s, coverage $(grep -o 'cov: [0-9]*' "$log" | tail -n 1 | cut -d' ' -f2)," \
         "corpus $(find "$found" "$seeds" -type f | wc -l)"
done

if [ ${#failed[@]} -eq 0 ] && [ -z "${KELVO_FUZZ_OUT:-}" ]; then
    rm -rf "$OUT"  # nothing to look at
    echo "fuzz: ${#TARGETS[@]} target(s), none failed"
    exit 0
fi
echo "fuzz: ${#TARGETS[@]} target(s), ${#failed[@]} failed; artefacts in $OUT"
[ ${#failed[@]} -eq 0 ]
