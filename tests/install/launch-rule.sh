#!/usr/bin/env bash
# The launch rule as a host installs it: the build installed into a temporary prefix puts the udev
# rule and the systemd unit in the folders pkg-config names for udev and systemd, below that
# prefix and nowhere else; systemd itself finds the unit sound (an instance for a partition,
# whose command exists); the rule starts that unit; the launcher refuses a TV or a stick it
# cannot use before running anything. Nothing is started and udev is not triggered.
# Usage: launch-rule.sh BUILD_DIR
set -uo pipefail
build=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

cmake --install "$build" --prefix "$prefix" >"$scratch/install.log" 2>&1 || { cat "$scratch/install.log"; exit 1; }
outside=$(sed -n 's/^-- \(Installing\|Up-to-date\): //p' "$scratch/install.log" | grep -v "^$prefix/")
[ -z "$outside" ] || fail "installed outside the prefix: $outside"

# pkg-config's folders, below the prefix.
below() { local named; named=$(pkg-config --variable="$2" "$1"); named=${named#/}; printf '%s/%s' "$prefix" "${named#usr/}"; }
rules="$(below udev udevdir)/rules.d/90-kelvo-util.rules"
units=$(below systemd systemdsystemunitdir)
unit="$units/kelvo-util@.service"
[ -f "$rules" ] || fail "no udev rule at $rules"
[ -f "$unit" ] || fail "no unit at $unit"

exec_start=$(sed -n 's/^ExecStart=//p' "$unit")
[ "$exec_start" = "$prefix/libexec/kelvo/kelvo-usb-launch $prefix/bin/kelvo-util %I" ] \
    || fail "the unit runs [$exec_start], not the installed launcher on the installed kelvo-util"
grep -qE '^RuntimeMaxSec=[1-9][0-9]*$' "$unit" || fail "the unit has no run-time limit"
grep -qF 'ENV{SYSTEMD_WANTS}+="kelvo-util@%k.service"' "$rules" || fail "the rule does not start the installed unit"

# systemd-analyze reports what it finds wrong (an unknown key, a bad value, a missing command)
# on its output, some of it without failing.
verified=$(systemd-analyze verify "$units/kelvo-util@sdb1.service" 2>&1)
status=$?
[ "$status" -eq 0 ] || fail "systemd-analyze verify failed ($status)"
[ -z "$verified" ] || fail "systemd-analyze verify says: $verified"

launch=$prefix/libexec/kelvo/kelvo-usb-launch
mkdir -p "$scratch/tv/opt"
KELVO_TV=$scratch/none "$launch" "$prefix/bin/kelvo-util" sdb1 >"$scratch/launch.txt" 2>&1
[ $? -eq 2 ] || fail "the launcher ran without a simulated TV: $(cat "$scratch/launch.txt")"
KELVO_TV=$scratch/tv KELVO_MOUNT_WAIT=0 "$launch" "$prefix/bin/kelvo-util" "kelvo-no-such-disk9" >"$scratch/launch.txt" 2>&1
[ $? -eq 1 ] || fail "the launcher ran on a partition that is not mounted: $(cat "$scratch/launch.txt")"
KELVO_TV=$scratch/tv "$launch" "$prefix/bin/kelvo-util" "../sda1" >"$scratch/launch.txt" 2>&1
[ $? -eq 2 ] || fail "the launcher took a path for a device name: $(cat "$scratch/launch.txt")"

[ "$failures" -eq 0 ] || exit 1
echo "the launch rule installs where udev and systemd look, and systemd finds its unit sound"
