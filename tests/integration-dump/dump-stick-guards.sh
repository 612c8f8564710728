#!/usr/bin/env bash
# A stick is not benign: what was on it before, links planted on it, and a mount path that would
# break a shell command. Each case is a fresh TV and stick.
source "$(dirname "$0")/lib.sh" "$1" "$2"
SUCCESS="ChannelMap Dump:ChannelMap Dump Success"

echo "# an earlier DumpMWDB is emptied, except its dot-files"
new_case
mkdir -p "$DUMP/old-folder" "$DUMP/.hidden-folder"
echo old >"$DUMP/old-report.txt"
echo old >"$DUMP/old-folder/file"
echo keep >"$DUMP/.keep"
echo keep >"$DUMP/.hidden-folder/file"
echo 1 >"$DUMP/time.txt"
run_dump
equal "the dump succeeds" "$SUCCESS" "$(notifications)"
check "old files are gone" test ! -e "$DUMP/old-report.txt" -a ! -e "$DUMP/old-folder"
check "dot-files stay" test "$(cat "$DUMP/.keep" 2>/dev/null)" = keep -a -f "$DUMP/.hidden-folder/file"
check "the new dump is there" test -s "$DB" -a "$(cat "$DUMP/time.txt")" != 1

echo "# a link at DumpMWDB to a folder on the stick"
new_case
mkdir -p "$STICK/elsewhere"
echo precious >"$STICK/elsewhere/precious.txt"
ln -s elsewhere "$DUMP"
run_dump
equal "the dump succeeds" "$SUCCESS" "$(notifications)"
check "DumpMWDB is a real folder now" test -d "$DUMP" -a ! -L "$DUMP"
equal "the link's target is untouched" "precious.txt" "$(ls -A "$STICK/elsewhere")"
equal "its file keeps its content" precious "$(cat "$STICK/elsewhere/precious.txt")"
check "the dump went into the real folder" test -s "$DB" -a -s "$DUMP/time.txt"

echo "# a link at DumpMWDB to the TV's own data"
new_case
guide_cfg="$TV/opt/usr/globalapps/tvs-guide/data/tvs-guide.cfg"
before=$(cat "$guide_cfg")
ln -s /opt/usr/globalapps/tvs-guide/data "$DUMP"
run_dump
equal "the dump succeeds" "$SUCCESS" "$(notifications)"
check "DumpMWDB is a real folder now" test -d "$DUMP" -a ! -L "$DUMP"
equal "the TV's folder behind the link is untouched" "tvs-guide.cfg" "$(ls -A "$(dirname "$guide_cfg")")"
equal "and its file too" "$before" "$(cat "$guide_cfg")"

echo "# a link at DumpMWDB/time.txt"
new_case
mkdir -p "$DUMP"
echo "keep me" >"$STICK/target.txt"
ln -s ../target.txt "$DUMP/time.txt"
run_dump
equal "the dump succeeds" "$SUCCESS" "$(notifications)"
check "time.txt is a regular file with the time" \
    bash -c "test -f '$DUMP/time.txt' -a ! -L '$DUMP/time.txt' && grep -qxE '[0-9]+' '$DUMP/time.txt'"
equal "the link's target is untouched" "keep me" "$(cat "$STICK/target.txt")"

echo "# a mount path holding a shell separator"
new_case
stale_before=$(sql "$TV/opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data/kelvoutilInfo.db" \
    "SELECT count(*) FROM programRF;")
run_dump --mount '/media/USB;touch pwned;'
equal "kelvo-util exits with 0" 0 "$RUN_STATUS"
equal "no notification" "" "$(notifications)"
equal "nothing is written on the stick" "" "$(ls -A "$STICK")"
check "no command ran from the path" bash -c "! find '$CASE' -name pwned | grep -q ."
check "the log says why" grep -qiE 'mount|path' "$OUT/kelvo-util.log"
equal "the TV's dump database was not rewritten" "$stale_before" \
    "$(sql "$TV/opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data/kelvoutilInfo.db" 'SELECT count(*) FROM programRF;')"
finish
