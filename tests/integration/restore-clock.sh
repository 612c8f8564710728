#!/usr/bin/env bash
# The restore sets the clock from the dump's time.txt; inside the sandbox the kernel refuses,
# and the clock recorder shows what was asked for.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

# with_time_file CONTENT: a restore stick whose DumpMWDB/time.txt holds CONTENT.
with_time_file() {
    mkdir -p "$STICK/RestoreMWDB" "$STICK/DumpMWDB"
    printf '%b' "$1" >"$STICK/DumpMWDB/time.txt"
}

begin_case one-time-stamp
with_time_file '1600000000\n'
run_on_stick
expect_exit_status 0
expect_log "restore time is 1600000000"
expect_clock "settimeofday 1600000000 0 result=-1 errno=EPERM real=yes"
expect_notifications "ChannelMap Dump|Restore ChannelMap Success"
[ "$(date +%s)" -gt 1700000000 ] || fail "the machine's clock reads $(date +%s)"

begin_case last-time-stamp-wins
with_time_file '1500000000\n1600000000\n'
run_on_stick
expect_exit_status 0
expect_log "restore time is 1500000000"
expect_log "restore time is 1600000000"
expect_clock "settimeofday 1600000000 0 result=-1 errno=EPERM real=yes"

begin_case empty-time-file
with_time_file ''
run_on_stick
expect_exit_status 0
expect_no_log "restore time is"
expect_clock "settimeofday 0 0 result=-1 errno=EPERM real=yes"

begin_case no-time-file
mkdir -p "$STICK/RestoreMWDB"
run_on_stick
expect_exit_status 0
expect_clock
expect_notifications "ChannelMap Dump|Restore ChannelMap Success"

begin_case time-stamp-in-restore-folder-only
mkdir -p "$STICK/RestoreMWDB"
printf '1600000000\n' >"$STICK/RestoreMWDB/time.txt"
run_on_stick
expect_exit_status 0
expect_clock

# A time.txt that is not a number keeps the read loop turning; the run-time limit of the
# launch ends it before the clock is touched or anything is shown.
begin_case time-file-not-a-number
with_time_file 'soon\n'
run_on_stick "$DEFAULT_MOUNT" --timeout 3
expect_exit_status 124
expect_clock
expect_notifications

finish
