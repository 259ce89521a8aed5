#!/usr/bin/env bash
# The watch's state as other users meet it: every file and directory writable by its owner only,
# whatever the umask, and a private bus that dbus-send run as another user cannot get onto.
set -euo pipefail
bin=$1/bin
state=$(mktemp -d)
trap 'kill "${watch:-}" 2>/dev/null || true; wait 2>/dev/null || true; rm -rf "$state"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }
unset DBUS_SYSTEM_BUS_ADDRESS QUILLSET_STATE

printf '%s\n' "tap WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB" "press WDS_ST_BUTTON_OK_ABB" \
    "tap WDS_ST_TMBODY_DEVICE_INFORMATION" "wait 200" "back" \
    "tap WDS_ST_MBODY_DEBUGGING_ABB" "press WDS_ST_BUTTON_OK_ABB" "wait 200" >"$state.script"
(umask 000 && "$bin/quillset-sim" run --profile default --state "$state/watch" -- \
    quillset-drive --script "$state.script") >/dev/null 2>&1 || fail "the watch did not run"
rm -f "$state.script"
[ -s "$state/watch/usage.db" ] || fail "no usage was recorded"
writable=$(find "$state/watch" ! -type s -perm /022)
[ -z "$writable" ] || fail "writable by others: $writable"
[ "$(stat -c %a "$state/watch/bus")" = 700 ] || fail "the bus socket's directory is open"

if [ "$(id -u)" -ne 0 ]; then
    echo "state security test: ok (another user can only be tried as root)"
    exit 0
fi
"$bin/quillset-sim" run --state "$state/watch" -- sleep 30 >/dev/null 2>&1 &
watch=$!
bus="unix:path=$state/watch/bus/system.sock"
hello() { dbus-send --bus="$bus" --print-reply --dest=org.freedesktop.DBus / \
    org.freedesktop.DBus.GetId >/dev/null 2>&1; }
for _ in $(seq 100); do hello && break; sleep 0.1; done
hello || fail "the watch's bus did not come up"
# Every door on the way open, so that only the bus itself can say no.
chmod 711 "$state" "$state/watch" "$state/watch/bus"
chmod 777 "$state/watch/bus/system.sock"
setpriv --reuid=65534 --regid=65534 --clear-groups true || fail "could not become another user"
! setpriv --reuid=65534 --regid=65534 --clear-groups dbus-send --bus="$bus" --print-reply \
    --dest=org.freedesktop.DBus / org.freedesktop.DBus.GetId >/dev/null 2>&1 ||
    fail "another user got onto the watch's bus"
echo "state security test: ok"
