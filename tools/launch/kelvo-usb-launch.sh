#!/usr/bin/env bash
# kelvo-usb-launch KELVO_UTIL DEVICE: runs kelvo-util once on the USB storage partition DEVICE
# (a kernel name such as sdb1), as kelvo-util@DEVICE.service does when udev sees the partition.
# It waits for the partition's mount (KELVO_MOUNT_WAIT seconds, default 30), then runs kelvo-util
# in a bubblewrap sandbox with its own user namespace (so the kernel refuses to set the clock),
# /opt bound to the simulated TV's state (KELVO_TV/opt) and the mount path writable. Nothing of
# the host's own /opt is touched.
set -euo pipefail

util=${1:?usage: kelvo-usb-launch KELVO_UTIL DEVICE}
device=${2:?usage: kelvo-usb-launch KELVO_UTIL DEVICE}
tv=${KELVO_TV:-/var/lib/kelvo-tv}
wait=${KELVO_MOUNT_WAIT:-30}

say() { echo "kelvo-usb-launch: $*" >&2; }

[[ "$device" =~ ^[A-Za-z0-9._-]+$ ]] || { say "not a kernel device name: $device"; exit 2; }
[[ "$wait" =~ ^[0-9]+$ ]] || { say "KELVO_MOUNT_WAIT wants whole seconds, got $wait"; exit 2; }
[ -x "$util" ] || { say "no kelvo-util at $util"; exit 2; }
[ -d "$tv/opt" ] || { say "no simulated TV at $tv (make one with: kelvo-tv make-tv --tv $tv)"; exit 2; }
command -v bwrap >/dev/null || { say "bubblewrap (bwrap) is not installed"; exit 2; }

# Whatever mounts the stick (the desktop, an automounter, a person) does so beside this unit.
mount=""
for ((tick = 0; tick <= wait * 4; tick++)); do
    mount=$(findmnt -n -o TARGET --first-only --source "/dev/$device" || true)
    [ -n "$mount" ] && break
    sleep 0.25
done
[ -n "$mount" ] || { say "/dev/$device was not mounted within ${wait}s; kelvo-util does not run"; exit 1; }
# KELVO_USB_MOUNTS separates devices with ':' and the name with '='.
[[ "$mount" != *[:=]* ]] || { say "mount path $mount holds ':' or '='; kelvo-util does not run"; exit 1; }
say "/dev/$device is mounted at $mount; running kelvo-util"

exec bwrap --unshare-user --unshare-pid --die-with-parent \
    --ro-bind / / --proc /proc --dev /dev --tmpfs /tmp --tmpfs /run \
    --bind "$tv/opt" /opt --bind "$mount" "$mount" \
    --setenv KELVO_USB_MOUNTS "$mount=$device" \
    "$util"
