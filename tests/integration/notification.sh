#!/usr/bin/env bash
# shellcheck source-path=SCRIPTDIR disable=SC2317  # the case functions run through `cases` (add_case)
# The system's notification on a real freedesktop notification server: Debian's dunst, under
# Xvfb, on a private bus. The result is posted by the system's ResultNotification through the
# host platform (kelvo-post-result, in a user namespace like every run of ours) and read back
# from the server's own history. Skipped only where no X server can be started.
# shellcheck source=lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

SERVERS=()
stop_servers() {
    local pid
    for pid in "${SERVERS[@]}"; do kill "$pid" 2>/dev/null; done
    for pid in "${SERVERS[@]}"; do wait "$pid" 2>/dev/null; done
    SERVERS=()
}

# wait_for SECONDS COMMAND...: until the command succeeds, or false.
wait_for() {
    local tries=$(($1 * 20))
    shift
    until "$@" >/dev/null 2>&1; do
        tries=$((tries - 1))
        [ "$tries" -gt 0 ] || return 1
        sleep 0.05
    done
}

notification_server_owned() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
        org.freedesktop.DBus.NameHasOwner string:org.freedesktop.Notifications | grep -q 'boolean true'
}

in_dunst_history() {
    CASE=in-dunst-history C="$WORK"
    trap 'stop_servers; rm -rf "$WORK"' EXIT
    local tool
    for tool in Xvfb dunst dunstctl dbus-daemon jq; do
        command -v "$tool" >/dev/null || { echo "FAIL: $tool is not installed (tools/kelvo-tv test installs it)"; exit 1; }
    done
    # An X server of our own, on a display it picks.
    Xvfb -displayfd 3 -nolisten tcp -screen 0 800x600x24 3>"$WORK/display" 2>"$WORK/xvfb.log" &
    SERVERS+=($!)
    if ! wait_for 10 test -s "$WORK/display"; then
        echo "SKIP: no X server can be started here (Xvfb: $(tail -n 1 "$WORK/xvfb.log"))"
        exit 77
    fi
    DISPLAY=":$(cat "$WORK/display")"
    export DISPLAY HOME="$WORK" XDG_CONFIG_HOME="$WORK/config"
    dbus-daemon --config-file="$ROOT/tools/supervisor/kelvo-bus.conf" --address="unix:path=$WORK/bus" --nofork \
        --nopidfile --print-address=4 4>"$WORK/address" 2>"$WORK/bus.log" &
    SERVERS+=($!)
    wait_for 10 test -s "$WORK/address" || { echo "FAIL: the private bus did not come up"; exit 1; }
    export DBUS_SESSION_BUS_ADDRESS="unix:path=$WORK/bus"
    dunst >"$WORK/dunst.log" 2>&1 &
    SERVERS+=($!)
    # dunst answers its own interface before it owns the notification service's name; the post
    # needs the name.
    wait_for 10 dunstctl is-paused || { echo "FAIL: dunst did not come up: $(tail -n 3 "$WORK/dunst.log")"; exit 1; }
    wait_for 10 notification_server_owned ||
        { echo "FAIL: dunst did not take org.freedesktop.Notifications: $(tail -n 3 "$WORK/dunst.log")"; exit 1; }

    # The tree and the build stay visible when they lie below /tmp (a CI checkout).
    bwrap --unshare-user --die-with-parent --ro-bind / / --dev /dev --proc /proc --tmpfs /tmp \
        --ro-bind "$ROOT" "$ROOT" --ro-bind "$BUILD" "$BUILD" --bind "$WORK" "$WORK" \
        "$BUILD/tests/integration/kelvo-post-result" 1 >"$WORK/post.txt" 2>&1
    local posted=$?
    eq "kelvo-post-result's status" 0 "$posted"
    [ "$posted" -eq 0 ] || sed 's/^/  post | /' "$WORK/post.txt"
    # The history holds what the server has stopped showing; close it first.
    dunstctl close-all
    dunstctl history >"$WORK/history.json"
    local shown
    shown=$(jq -c '[.data[0][] | select(.summary.data == "ChannelMap Dump")]' "$WORK/history.json")
    eq "notifications titled ChannelMap Dump" 1 "$(jq length <<<"$shown")"
    eq "its body" "ChannelMap Dump Success" "$(jq -r '.[0].body.data' <<<"$shown")"
    # dunst keeps the timeout it was asked for in microseconds: 20 s.
    eq "its hide timeout (us)" 20000000 "$(jq -r '.[0].timeout.data' <<<"$shown")"
    ok "posted without an error logged" no grep -q 'failed' "$WORK/post.txt"
    stop_servers
}

add_case in-dunst-history in_dunst_history
cases "$@"
