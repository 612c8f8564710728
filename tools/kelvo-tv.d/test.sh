# shellcheck shell=bash disable=SC2034,SC2153
# (Sourced by tools/kelvo-tv: its variables are set and read across these files.)
# kelvo-tv test: the checks that need no build (format of the C++ files, shellcheck of the shell
# scripts), then each preset built and its ctest run; every summary at the end.

# The repository's files matching the patterns: tracked ones in a git checkout, else all.
tree_files() {
    if git -C "$ROOT" rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git -C "$ROOT" ls-files -z -- "$@"
    else
        local pattern find_args=()
        for pattern in "$@"; do find_args+=(-o -path "./$pattern"); done
        (cd "$ROOT" && find . -path ./build -prune "${find_args[@]}" -print0 | sed -z 's|^\./||')
    fi
}

check_format() {
    note "checking the format of the C++ files (clang-format)"
    (cd "$ROOT" && tree_files '*.cpp' '*.h' | xargs -0 -r clang-format --dry-run -Werror)
}

check_scripts() {
    note "checking the shell scripts (shellcheck)"
    (cd "$ROOT" && { printf '%s\0' tools/kelvo-tv .ci/run; tree_files 'tools/kelvo-tv.d/*.sh' 'tools/launch/*.sh' 'tests/*.sh'; } \
        | xargs -0 -r shellcheck -x)
}

# Whether CMakePresets.json has a configure preset of this name.
has_preset() { grep -q "\"name\": *\"$1\"" "$ROOT/CMakePresets.json"; }

cmd_test() {
    ensure_packages
    local failed=0 summaries="" check preset presets=(default asan tsan)
    for check in check_format check_scripts; do
        if "$check"; then
            summaries+="$check: passed"$'\n'
        else
            summaries+="$check: FAILED"$'\n'
            failed=1
        fi
    done
    local passed_tests=0 failed_tests=0
    for preset in "${presets[@]}"; do
        build_preset "$preset"
        local log="$STATE/ctest-$preset.log"
        note "testing (preset $preset)"
        set +e
        ctest --preset "$preset" --output-on-failure -j2 </dev/null 2>&1 | tee "$log"
        local status=${PIPESTATUS[0]}
        set -e
        [ "$status" -eq 0 ] || failed=1
        summaries+="preset $preset:"$'\n'
        summaries+=$(sed -n -e '/tests passed/p' -e '/Total Test time/p' -e '/The following tests FAILED/,$p' "$log")
        summaries+=$'\n'
        # "NN% tests passed, F tests failed out of T"
        local counts
        counts=$(sed -n 's/.*tests passed, \([0-9]*\) tests\{0,1\} failed out of \([0-9]*\).*/\1 \2/p' "$log" | tail -n 1)
        if [ -n "$counts" ]; then
            failed_tests=$((failed_tests + ${counts% *}))
            passed_tests=$((passed_tests + ${counts#* } - ${counts% *}))
        fi
    done
    # The fuzz targets: their seed corpora replayed, then each fuzzed for a bounded time.
    if has_preset fuzz; then
        build_preset fuzz
        local log="$STATE/fuzz.log"
        note "fuzzing (preset fuzz, ${KELVO_FUZZ_SECONDS:-20} s a target)"
        set +e
        "$ROOT/tests/fuzz/run.sh" "${KELVO_FUZZ_SECONDS:-20}" </dev/null 2>&1 | tee "$log"
        local status=${PIPESTATUS[0]}
        set -e
        summaries+="preset fuzz:"$'\n'$(grep -E '^(ok|FAIL) ' "$log")$'\n'
        passed_tests=$((passed_tests + $(grep -c '^ok ' "$log")))
        if [ "$status" -ne 0 ]; then
            failed=1
            failed_tests=$((failed_tests + $(grep -c '^FAIL ' "$log")))
        fi
    fi
    echo
    echo "== kelvo-tv test =="
    printf '%s' "$summaries"
    echo "$passed_tests passed, $failed_tests failed"
    [ "$failed" -eq 0 ] || { echo "kelvo-tv test: FAILED"; exit 1; }
    echo "kelvo-tv test: all passed"
}
