#!/usr/bin/env bash
# Mount paths end up in shell commands. A path with a character outside [A-Za-z0-9/._+-] is
# refused before any command is built; a benign unusual path still works.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# mount path | what the stick holds | expected notification ("-" for none)
CASES=(
    '/media/USB;Drive|restore|Restore ChannelMap Fail'
    '/media/USB Drive|restore|Restore ChannelMap Fail'
    '/media/x$(touch /opt/injected)|restore|Restore ChannelMap Fail'
    '/media/USB;Drive|dump|-'
    '/media/USB Drive|dump|-'
    '/media/USB_Drive-1.0+x|restore|Restore ChannelMap Success'
)

n=0
for row in "${CASES[@]}"; do
    IFS='|' read -r mount content expected <<<"$row"
    n=$((n + 1))
    begin_case "mount-$n-$content"
    echo "mount path: '$mount'"
    if [ "$content" = restore ]; then
        mkdir -p "$STICK/RestoreMWDB"
        printf 'channels' >"$STICK/RestoreMWDB/channels.db"
        printf '{}' >"$STICK/RestoreMWDB/settings.json"
    fi
    run_on_stick "$mount" --no-daemon
    expect_exit_status 0
    if [ "$expected" = - ]; then
        expect_notifications
    else
        expect_notifications "ChannelMap Dump|$expected"
    fi
    expect_no_path "$TV/opt/injected"
    if [[ "$expected" == *Success ]]; then
        expect_file "$DATA/channels.db" "$STICK/RestoreMWDB/channels.db"
        expect_tvs_calls "restore $mount/RestoreMWDB 1"
    else
        # Refused before anything ran: no copy, no middleware call, nothing on the stick.
        expect_eq "files in the daemon's data folder" "$(ls -A "$DATA")" ""
        expect_no_path "$STICK/DumpMWDB/kelvoutilInfo.db"
        expect_tvs_calls
    fi
done

finish
