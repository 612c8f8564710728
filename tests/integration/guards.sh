#!/usr/bin/env bash
# shellcheck source-path=SCRIPTDIR disable=SC2317  # the case functions run through `cases` (add_case)
# A stick is not benign: mount paths that would break a shell command, what was on it before, and
# links planted on it. A TV with bare folders and no content daemon keeps each run short.
# shellcheck source=lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# A mount path with a character outside [A-Za-z0-9/._+-] is refused before any command is built;
# a benign unusual path still works.
# mount path | what the stick holds | expected notification ("-" for none)
# shellcheck disable=SC2016  # a command's text in a path, never run by this script
MOUNT_CASES=(
    '/media/USB;Drive|restore|Restore ChannelMap Fail'
    '/media/USB Drive|restore|Restore ChannelMap Fail'
    '/media/x$(touch /opt/injected)|restore|Restore ChannelMap Fail'
    '/media/USB;touch /opt/injected;|dump|-'
    '/media/USB Drive|dump|-'
    '/media/USB_Drive-1.0+x|restore|Restore ChannelMap Success'
)

# mount_case ROW: one row of the table.
mount_case() {
    local mount content expected
    IFS='|' read -r mount content expected <<<"$1"
    new_case "mount-$2-$content"
    if [ "$content" = restore ]; then
        mkdir -p "$STICK/RestoreMWDB"
        printf channels >"$STICK/RestoreMWDB/channels.db"
    fi
    run --mount "$mount" --no-daemon
    eq "exit status ($mount)" 0 "$(status)"
    eq "notifications ($mount)" "$([ "$expected" = - ] || echo "ChannelMap Dump|$expected")" "$(notes)"
    ok "no command ran from the path" absent "$TV/opt/injected"
    if [[ "$expected" == *Success ]]; then
        ok "the restore copied" same "$DATA/channels.db" "$STICK/RestoreMWDB/channels.db"
        eq "TVS calls" "restore $mount/RestoreMWDB 1" "$(tvs_calls)"
    else
        # Refused before anything ran: no copy, no middleware call, nothing on the stick.
        eq "files in the daemon's data folder" "" "$(ls -A "$DATA")"
        ok "nothing written on the stick" absent "$DUMP"
        eq "TVS calls" "" "$(tvs_calls)"
        ok "the log says why" grep -qiE 'mount|path' "$OUT/kelvo-util.log"
    fi
}

earlier_dump() {
    new_case earlier-dump
    mkdir -p "$DUMP/old-folder" "$DUMP/.hidden-folder"
    echo old >"$DUMP/old-report.txt"
    echo old >"$DUMP/old-folder/file"
    echo keep >"$DUMP/.keep"
    echo keep >"$DUMP/.hidden-folder/file"
    echo "keep me" >"$STICK/target.txt"
    ln -s ../target.txt "$DUMP/time.txt"
    run --no-daemon
    eq notifications "$SUCCESS" "$(notes)"
    ok "old files are gone" absent "$DUMP/old-report.txt"
    ok "old folders are gone" absent "$DUMP/old-folder"
    ok "dot-files stay" test "$(cat "$DUMP/.keep")" = keep -a -f "$DUMP/.hidden-folder/file"
    ok "time.txt is a regular file with the time" test -f "$DUMP/time.txt" -a ! -L "$DUMP/time.txt"
    ok "time.txt holds a number" grep -qxE '[0-9]+' "$DUMP/time.txt"
    eq "the link's target is untouched" "keep me" "$(cat "$STICK/target.txt")"
    ok "the new dump is there" test -s "$DB"
}

# A link at DumpMWDB is replaced by a real folder, whether it points into the stick or at the
# TV's own data (as the set sees it).
link_case() {
    local target=$1
    new_case "link-to-${target//\//-}"
    mkdir -p "$STICK/elsewhere"
    echo precious >"$STICK/elsewhere/precious.txt"
    guide="$TV/opt/usr/globalapps/tvs-guide/data"
    echo precious >"$guide/precious.txt"
    ln -s "$target" "$DUMP"
    run --no-daemon
    eq notifications "$SUCCESS" "$(notes)"
    ok "DumpMWDB is a real folder now" test -d "$DUMP" -a ! -L "$DUMP"
    ok "the dump went into it" test -s "$DB" -a -s "$DUMP/time.txt"
    for folder in "$STICK/elsewhere" "$guide"; do
        eq "$folder is untouched" precious.txt "$(ls -A "$folder")"
        eq "its file keeps its content" precious "$(cat "$folder/precious.txt")"
    done
}

n=0
for row in "${MOUNT_CASES[@]}"; do
    IFS='|' read -r _ content _ <<<"$row"
    n=$((n + 1))
    add_case "mount-$n-$content" mount_case "$row" "$n"
done
add_case earlier-dump earlier_dump
add_case link-to-elsewhere link_case elsewhere
add_case link-to-the-tv link_case /opt/usr/globalapps/tvs-guide/data
cases "$@"
