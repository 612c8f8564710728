# shellcheck shell=bash disable=SC2034,SC2153
# (Sourced by tools/kelvo-tv: its variables are set and read across these files.)
# kelvo-tv: the sandbox. bubblewrap makes the TV's file system and namespaces; its first process
# is kelvo-tv-supervisor, which brings up the bus and the servers and runs kelvo-util (or a shell).

# Top-level folders under which a stick may be mounted: each is replaced by an empty tmpfs in
# the sandbox, so that the mount point can be made there.
MOUNT_ROOTS=(/media /mnt /run /tmp /srv /opt)

check_mount() {
    [[ "$MOUNT" == /* ]] || die "--mount must be an absolute path: $MOUNT"
    [[ "$MOUNT" != *:* && "$MOUNT" != *=* && "$MOUNT" != *$'\n'* ]] \
        || die "--mount cannot hold ':', '=' or a newline: $MOUNT"
    local top="${MOUNT#"${MOUNT%%[!/]*}"}"
    top="/${top%%/*}"
    local r
    for r in "${MOUNT_ROOTS[@]}"; do
        if [ "$top" = "$r" ] && [ "$MOUNT" != "$r" ] && [ "$MOUNT" != "$r/" ]; then
            MOUNT_TOP=$r
            return 0
        fi
    done
    die "--mount must lie below one of ${MOUNT_ROOTS[*]}: $MOUNT"
}

# Runs the sandbox; $1 is "util" (one kelvo-util run), "shell", or "command" (CLIENT_COMMAND in
# place of the shell). A run leaves kelvo-util's status in OUT/exit-status. Returns the
# supervisor's status.
sandbox() {
    local mode=$1
    [ -d "$TV/opt" ] || die "no simulated TV at $TV (make one with: tools/kelvo-tv make-tv --tv $TV)"
    command -v bwrap >/dev/null || die "bubblewrap (bwrap) is not installed"
    local built
    for built in util/kelvo-util tools/notify-sim/kelvo-notify-sim tools/clock-recorder/libkelvo-clock-recorder.so \
                 tools/supervisor/kelvo-tv-supervisor; do
        [ -e "$BUILD_DIR/$built" ] || die "$built is not built in $BUILD_DIR"
    done
    if [ "$NO_STICK" -eq 0 ]; then
        [ -n "$STICK" ] || die "no --stick given (or --no-stick)"
        [ -d "$STICK" ] || die "the stick folder $STICK does not exist"
        check_mount
    fi
    mkdir -p "$OUT"
    rm -f "$OUT"/{kelvo-util.log,kelvo-util.usage,exit-status,notifications.tsv,clock.log,daemon-requests.jsonl,dbus-monitor.txt,daemon-sim.log,notify-sim.log}

    local args=(bwrap --unshare-user --unshare-pid --die-with-parent
                --ro-bind / /
                --proc /proc --dev /dev
                --tmpfs /run --tmpfs /tmp
                --bind "$TV/opt" /opt)
    if [ "$NO_STICK" -eq 0 ]; then
        case "$MOUNT_TOP" in /run|/tmp|/opt) ;; *) args+=(--tmpfs "$MOUNT_TOP") ;; esac
    fi
    resolve_fixture
    # The tree and the build stay visible even when they live below a folder hidden above.
    args+=(--ro-bind "$ROOT" "$ROOT" --ro-bind "$BUILD_DIR" "$BUILD_DIR")
    [ "$NO_STICK" -eq 0 ] && args+=(--bind "$STICK" "$MOUNT")
    args+=(--bind "$OUT" /run/kelvo-tv)
    local inside=(--build "$BUILD_DIR" --out /run/kelvo-tv --run-dir /run/kelvo-bus --timeout "$TIMEOUT"
                --log-limit "$LOG_LIMIT")
    if [ -n "$FIXTURE" ]; then
        args+=(--ro-bind "$FIXTURE" /run/kelvo-fixture.json)
        inside+=(--fixture /run/kelvo-fixture.json)
    fi
    [ "$NO_STICK" -eq 0 ] && inside+=(--usb-mounts "$MOUNT")
    [ "$NO_DAEMON" -eq 1 ] && inside+=(--no-daemon)
    [ "$MONITOR" -eq 1 ] && inside+=(--monitor)
    # Every log line with -v; by default the milestones, the whole log staying in OUT.
    if [ "$VERBOSE" -eq 1 ]; then inside+=(--verbose); else inside+=(--milestones); fi
    if is_sanitized_build "$BUILD_DIR"; then
        inside+=(--sanitized --asan-options "${ASAN_OPTIONS:-}" --ubsan-options "${UBSAN_OPTIONS:-}")
    fi
    if [ "$mode" = shell ]; then
        inside+=(--shell)
    elif [ "$mode" = command ]; then
        inside+=(--shell -- "${CLIENT_COMMAND[@]}")
    else
        args+=(--new-session)
    fi
    args+=(--clearenv
           --setenv PATH /usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin
           --setenv HOME /tmp --setenv LANG C.UTF-8 --setenv TERM "${TERM:-dumb}"
           "$(supervisor)" "${inside[@]}")
    "${args[@]}"
}

# One kelvo-util run. Its status is in OUT/exit-status, which only a TV that came up writes.
run_util() {
    local status=0
    sandbox util || status=$?
    [ -f "$OUT/exit-status" ] || { note "the simulated TV did not come up (status $status)"; exit 70; }
}
