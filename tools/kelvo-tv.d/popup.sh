# shellcheck shell=bash disable=SC2034,SC2153
# (Sourced by tools/kelvo-tv, and by the popup's tests for its display helpers.)
# kelvo-tv popup RESULT: kelvo-util's result popup (kelvo-popup) on the user's display, or on a
# virtual one (Xvfb) with a screenshot.
#
# Elementary stops drawing a window that no window manager has taken in (it counts as withdrawn),
# so the virtual display gets a small window manager (evilwm), as a set has its compositor.
# kelvo-popup runs in a PID namespace of its own: the helper Elementary starts (efreetd) ends
# with it instead of outliving it, and its caches stay in a folder of the run.

POPUP_XVFB_PID="" POPUP_WM_PID="" POPUP_PID=""
POPUP_LSAN_SUPPRESSIONS="$(cd "$(dirname "${BASH_SOURCE[0]}")/../popup" && pwd)/lsan-efl.supp"

# popup_display_start DIR: a virtual 1920x1080 display with a window manager; exports DISPLAY.
# Returns 1 (with a reason on stderr) when no X server can be started, 2 when the window manager
# ends at once (a popup would then draw nothing).
popup_display_start() {
    local dir=$1 number="" i
    command -v Xvfb >/dev/null || { echo "Xvfb is not installed" >&2; return 1; }
    command -v evilwm >/dev/null || { echo "evilwm is not installed" >&2; return 1; }
    mkdir -p "$dir"
    rm -f "$dir/display"
    # -displayfd: Xvfb picks a free display and writes its number once it accepts clients.
    Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp 3>"$dir/display" >"$dir/xvfb.log" 2>&1 &
    POPUP_XVFB_PID=$!
    for ((i = 0; i < 100; i++)); do
        number=$(tr -dc '0-9' 2>/dev/null <"$dir/display")  # the file may not be made yet
        [ -n "$number" ] && break
        kill -0 "$POPUP_XVFB_PID" 2>/dev/null || break
        sleep 0.1
    done
    if [ -z "$number" ]; then
        echo "Xvfb did not start (its log: $dir/xvfb.log)" >&2
        popup_display_stop
        return 1
    fi
    export DISPLAY=":$number"
    evilwm -fn fixed >"$dir/evilwm.log" 2>&1 &
    POPUP_WM_PID=$!
    # The window manager is in place once it owns the root window's redirect; a short wait is
    # enough, and a window mapped earlier is taken in all the same.
    sleep 0.3
    if ! kill -0 "$POPUP_WM_PID" 2>/dev/null; then
        echo "the window manager did not start: $(head -c 300 "$dir/evilwm.log")" >&2
        popup_display_stop
        return 2
    fi
}

popup_display_stop() {
    local pid
    for pid in "$POPUP_WM_PID" "$POPUP_XVFB_PID"; do
        [ -n "$pid" ] || continue
        kill "$pid" 2>/dev/null
        wait "$pid" 2>/dev/null
    done
    POPUP_WM_PID="" POPUP_XVFB_PID=""
}

# popup_start BUILD_DIR RESULT DIR: kelvo-popup in the background (POPUP_PID) on $DISPLAY. DIR
# receives kelvo-popup.log, each line led by the seconds since the start (started: the start, in
# seconds since the epoch), and exit-status.
popup_start() {
    local build=$1 result=$2 dir=$3
    local program="$build/tools/popup/kelvo-popup"
    [ -x "$program" ] || { echo "kelvo-popup is not built ($program)" >&2; return 1; }
    mkdir -p "$dir/home"
    rm -f "$dir/kelvo-popup.log" "$dir/exit-status" "$dir/started"
    (
        set +e
        # Elementary's and efreet's caches and sockets in the run's folder; the X cookie where
        # it was before HOME moved.
        export XAUTHORITY="${XAUTHORITY:-${HOME:-/nonexistent}/.Xauthority}" HOME="$dir/home"
        export XDG_CACHE_HOME="$dir/home/cache" XDG_CONFIG_HOME="$dir/home/config" XDG_RUNTIME_DIR="$dir/home/run"
        export EINA_LOG_BACKTRACE=0
        # In the asan preset: what EFL itself keeps to the end is not ours to report. It is told
        # apart by the libraries on the whole stack of its allocation, which only the slow
        # unwinder gives.
        export LSAN_OPTIONS="${LSAN_OPTIONS:+$LSAN_OPTIONS:}suppressions=$POPUP_LSAN_SUPPRESSIONS"
        export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}fast_unwind_on_malloc=0"
        mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
        local began=$EPOCHREALTIME
        echo "$began" >"$dir/started"
        bwrap --unshare-user --unshare-pid --die-with-parent --dev-bind / / --proc /proc \
            "$program" "$result" 2>&1 </dev/null \
            | while IFS= read -r line; do
                printf '%s %s\n' "$(awk -v a="$began" -v b="$EPOCHREALTIME" 'BEGIN { printf "%7.3f", b - a }')" "$line"
            done >"$dir/kelvo-popup.log"
        echo "${PIPESTATUS[0]}" >"$dir/exit-status"
    ) &
    POPUP_PID=$!
}

# popup_seconds DIR TEXT: when the first log line holding TEXT came (seconds since the start).
popup_seconds() { grep -F -- "$2" "$1/kelvo-popup.log" | head -n 1 | awk '{ print $1 }'; }

# popup_screenshot FILE: once the popup has drawn (the screen is no longer of one colour), the
# whole screen as PNG. Returns 1 when nothing was drawn within 20 s or kelvo-popup ended first.
popup_screenshot() {
    local file=$1 i spread
    for ((i = 0; i < 100; i++)); do
        kill -0 "$POPUP_PID" 2>/dev/null || return 1
        if import -window root "$file" 2>/dev/null; then
            spread=$(identify -format '%[fx:standard_deviation]' "$file" 2>/dev/null)
            [ -n "$spread" ] && [ "$spread" != 0 ] && return 0
        fi
        sleep 0.2
    done
    return 1
}

cmd_popup() {
    [[ "$POPUP_RESULT" =~ ^-?[0-9]+$ ]] \
        || die "popup needs RESULT: 0 dump failed, 1 dump succeeded, 2 restore failed, 3 restore succeeded, other: no text"
    prepare_build
    [ -n "$OUT" ] || OUT="$STATE/popup"
    OUT=$(absolute "$OUT")
    mkdir -p "$OUT"
    if [ -n "${DISPLAY:-}" ] && xdotool getdisplaygeometry >/dev/null 2>&1; then
        note "the popup on $DISPLAY: press OK, or it closes itself after 5 s"
        popup_start "$BUILD_DIR" "$POPUP_RESULT" "$OUT"
        wait "$POPUP_PID" || true
        cat "$OUT/kelvo-popup.log"
        echo "exit status: $(cat "$OUT/exit-status")"
        return 0
    fi
    note "no display here: the popup on a virtual one (Xvfb)"
    popup_display_start "$OUT/display"
    case $? in
        0) ;;
        1) die "no X server could be started" ;;
        *) die "the virtual display has no window manager (log: $OUT/display/evilwm.log)" ;;
    esac
    trap popup_display_stop EXIT
    popup_start "$BUILD_DIR" "$POPUP_RESULT" "$OUT"
    local shot="$OUT/popup-$POPUP_RESULT.png" shown=1
    popup_screenshot "$shot" || shown=0
    wait "$POPUP_PID" || true
    popup_display_stop
    trap - EXIT
    cat "$OUT/kelvo-popup.log"
    echo "exit status: $(cat "$OUT/exit-status")"
    [ "$shown" -eq 1 ] || die "the popup drew nothing (log: $OUT/kelvo-popup.log)"
    echo "screenshot: $shot"
}
