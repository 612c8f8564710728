#!/usr/bin/env bash
# Started with no USB storage attached: the user is told the dump failed, and nothing else runs.
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

begin_case no-storage
run_util --no-stick
expect_exit_status 0
expect_notifications "ChannelMap Dump|ChannelMap Dump Fail"
expect_log "kelvo-util run starts by activation ....."
expect_log "kelvo-util 111 ....."
expect_no_log "kelvo-util 222"
expect_no_path "$DATA/kelvoutilInfo.db"
expect_tvs_calls
expect_clock

finish
