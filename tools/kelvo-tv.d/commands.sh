# shellcheck shell=bash disable=SC2034,SC2153
# (Sourced by tools/kelvo-tv: its variables are set and read across these files.)
# kelvo-tv: the commands for people (dump, restore, shell, daemon, bench, client) and the lower-level
# ones the tests use (run, make-tv).

cmd_dump() {
    local began ran
    began=$(date +%s.%N)
    prepare_build
    set_defaults
    make_tv "$TV"
    if [ "$NO_STICK" -eq 0 ] && [ -z "$STICK" ]; then
        STICK="$STATE/stick"
        make_stick "$STICK"
    fi
    ran=$(date +%s.%N)
    run_util
    local ended
    ended=$(date +%s.%N)
    dump_summary "$OUT" "$([ "$NO_STICK" -eq 0 ] && printf '%s' "$STICK")" "$TV" \
        "$(awk -v a="$began" -v b="$ended" 'BEGIN { printf "%.1f", b - a }')" \
        "$(awk -v a="$ran" -v b="$ended" 'BEGIN { printf "%.1f", b - a }')"
}

cmd_restore() {
    [ -n "$STICK" ] || die "restore needs --stick DIR (a stick holding RestoreMWDB)"
    [ -e "$STICK/RestoreMWDB" ] || note "$STICK holds no RestoreMWDB: kelvo-util will dump instead"
    prepare_build
    set_defaults
    [ -d "$TV/opt" ] || make_tv "$TV"
    run_util
    echo
    echo "== kelvo-tv restore =="
    echo "branch: $(run_branch "$OUT")"
    print_run_result "$OUT"
    local data="$TV/$DAEMON_DATA_REL"
    echo "content daemon's data folder ($data):"
    find "$data" -mindepth 1 -maxdepth 1 -printf '  %M %10s %TY-%Tm-%Td %TH:%TM  %f\n' | LC_ALL=C sort -k5
    if [ -f "$TV/$SIM_REL/tvs.log" ]; then sed 's/^/TVS: /' "$TV/$SIM_REL/tvs.log"; fi
    echo "artefacts: $OUT"
}

cmd_run() {
    prepare_build
    set_defaults
    run_util
    print_run_result "$OUT"
    local status
    status=$(cat "$OUT/exit-status" 2>/dev/null || echo 70)
    return "$status"
}

cmd_make_tv() {
    prepare_build
    set_defaults
    make_tv "$TV"
    echo "simulated TV at $TV (its /opt: $TV/opt)"
}

cmd_shell() {
    prepare_build
    set_defaults
    [ -d "$TV/opt" ] || make_tv "$TV"
    if [ "$NO_STICK" -eq 0 ] && [ -z "$STICK" ]; then
        STICK="$STATE/stick"
        mkdir -p "$STICK"
    fi
    sandbox shell
}

cmd_daemon() {
    prepare_build
    set_defaults
    local daemon="$BUILD_DIR/tools/daemon-sim/kelvo-daemon-sim"
    [ -x "$daemon" ] || die "the content daemon simulator is not built ($daemon)"
    [ -x "$(supervisor)" ] || die "the supervisor is not built ($(supervisor))"
    if [ -z "${DBUS_SESSION_BUS_ADDRESS:-}" ] && [ ! -S "${XDG_RUNTIME_DIR:-/nonexistent}/bus" ]; then
        die "no session bus here; try: dbus-run-session -- tools/kelvo-tv daemon"
    fi
    resolve_fixture
    # Where the daemon lives on the bus, as the host's Call has it.
    local key value name="" path="" provider="" control=""
    while read -r key value; do
        case "$key" in name) name=$value ;; path) path=$value ;; provider) provider=$value ;; control) control=$value ;; esac
    done < <("$(supervisor)" --print-bus-names)
    local args=()
    [ -n "$FIXTURE" ] && args+=(--fixture "$FIXTURE")
    note "$name on your session bus${FIXTURE:+, fixture $FIXTURE}; try:"
    note "  busctl --user call $name $path $provider GetFullProgramSourceIdList s '{\"activityID\":0}'"
    note "  busctl --user call $name $path $control EmitEvent iiiis 7 1 2 3 'text'   # raises event 7"
    exec "$daemon" "${args[@]}"
}

cmd_bench() {
    ensure_packages
    build_preset default
    local ratios="" bench found=0
    for bench in "$ROOT"/build/default/bench/*/kelvo-bench-*; do
        if [ ! -f "$bench" ] || [ ! -x "$bench" ]; then continue; fi
        found=1
        local name log
        name=$(basename "$bench")
        log="$STATE/$name.log"
        echo "== $name =="
        set +e
        "$bench" </dev/null 2>&1 | tee "$log"
        local status=${PIPESTATUS[0]}
        set -e
        [ "$status" -eq 0 ] || die "$name failed (status $status)"
        ratios+=$(grep '^RATIO ' "$log" || true)
        ratios+=$'\n'
    done
    [ "$found" -eq 1 ] || { note "no benchmarks are built"; return 0; }
    echo
    echo "== RATIO summary (1.0 is the limit; lower is better) =="
    grep -v '^$' <<<"$ratios" | awk '{ printf "  %-40s %s\n", $2, $3 }' || true
}

# inspect PATH [--json] [--xmltv FILE]: what a dump holds (kelvo-inspect), read-only, outside the
# sandbox: it only reads the stick.
INSPECT_PATH=""
INSPECT_JSON=0
INSPECT_XMLTV=""
cmd_inspect() {
    [ -n "$INSPECT_PATH" ] || die "inspect needs a PATH: a stick, its DumpMWDB folder or a kelvoutilInfo.db"
    prepare_build
    local inspect="$BUILD_DIR/tools/inspect/kelvo-inspect" args=()
    [ -x "$inspect" ] || die "the inspector is not built ($inspect)"
    [ "$INSPECT_JSON" -eq 1 ] && args+=(--json)
    [ -n "$INSPECT_XMLTV" ] && args+=(--xmltv "$INSPECT_XMLTV")
    exec "$inspect" "${args[@]}" "$INSPECT_PATH"
}

# An example client of the installed library, examples/$CLIENT: the library is installed into a
# prefix in the run's folder (--out; by default under the build folder), the example built from
# it with pkg-config alone, and run in a fresh reference TV (so that its schedules are around the
# current time) with the bus and the daemon.
cmd_client() {
    local examples="$ROOT/examples" names
    names=$(find "$examples" -mindepth 2 -maxdepth 2 -name CMakeLists.txt -printf '%h\n' | xargs -rn1 basename | sort | xargs)
    [ -n "$CLIENT" ] || die "client needs a NAME, one of: $names"
    [ -f "$examples/$CLIENT/CMakeLists.txt" ] || die "no example client $CLIENT (there are: $names)"
    prepare_build
    set_defaults
    local prefix="$OUT/client/prefix" build="$OUT/client/$CLIENT" log="$OUT/client/build-$CLIENT.log"
    mkdir -p "$OUT/client"
    local pcpath="$prefix/lib/pkgconfig:$prefix/lib/x86_64-linux-gnu/pkgconfig:$prefix/lib64/pkgconfig"
    if ! { cmake --install "$BUILD_DIR" --prefix "$prefix" &&
           PKG_CONFIG_PATH="$pcpath" cmake -S "$examples/$CLIENT" -B "$build" &&
           cmake --build "$build"; } >"$log" 2>&1 </dev/null; then
        tail -n 20 "$log" >&2
        die "the example $CLIENT did not build (log: $log)"
    fi
    make_tv "$TV"
    NO_STICK=1
    # Inside the TV the run's folder is /run/kelvo-tv; the library is found there.
    local libdir
    libdir=$(cd "$(PKG_CONFIG_PATH="$pcpath" pkg-config --variable=libdir kelvo-provider-client)" && pwd)
    CLIENT_COMMAND=(env "LD_LIBRARY_PATH=/run/kelvo-tv/${libdir#"$OUT"/}")
    if [ "$VERBOSE" -eq 1 ]; then
        CLIENT_COMMAND+=("/run/kelvo-tv/client/$CLIENT/$CLIENT")
    else
        # shellcheck disable=SC2016 # expanded by the shell inside the sandbox
        CLIENT_COMMAND+=(bash -c 'exec "$0" 2>/run/kelvo-tv/client.log' "/run/kelvo-tv/client/$CLIENT/$CLIENT")
    fi
    sandbox command
}
