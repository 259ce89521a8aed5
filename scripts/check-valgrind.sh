#!/usr/bin/env bash
# `make check-valgrind`: one end-to-end run on a simulated watch under valgrind's memcheck:
# the control command, the services daemon and the application with its driver, which tours
# every screen and then takes the watch through popups, events and a language change, and
# what a person does that the tour does not: a page left at once after a launch from it (its
# list's input frozen), the developer-mode toast left to time out, popups closed with back. Fails
# on any memory error and on any block definitely lost, except those of the toolkit listed
# (each with its reason) in tests/sanitizers/valgrind.supp.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build}
case "$build" in /*) ;; *) build="$root/$build" ;; esac
bin="$build/bin"
out="$build/valgrind"
rm -rf "$out"
mkdir -p "$out/logs" "$out/tour"

cat >"$out/script" <<SCRIPT
dump
tour $out/tour
tap WDS_ST_MBODY_DEBUGGING_ABB
press WDS_ST_BUTTON_CANCEL
tap WDS_ST_MBODY_DEBUGGING_ABB
press OK
dump
set db/setting/debug_mode bool false
wait 300
tap WDS_ST_TMBODY_DEVICE_INFORMATION
wait 2000
sim event sim-refresh --msisdn +447700900999
wait 2500
dump
back
sim event language de
wait 500
dump
sim event launch
wait 300
tap WDS_ST_TMBODY_DEVICE_INFORMATION
wait 300
tap WDS_WMGR_MBODY_KESTA_ESIM_PROFILE_ABB
back
tap WDS_ST_TMBODY_DEVICE_INFORMATION
wait 300
tap WDS_WMGR_MBODY_KESTA_ESIM_PROFILE_ABB
back
tap WDS_ST_TMBODY_SOFTWARE_INFORMATION
tap WDS_ST_MBODY_SOFTWARE_VERSION_ABB
tap WDS_ST_MBODY_SOFTWARE_VERSION_ABB
tap WDS_ST_MBODY_SOFTWARE_VERSION_ABB
tap WDS_ST_MBODY_SOFTWARE_VERSION_ABB
tap WDS_ST_MBODY_SOFTWARE_VERSION_ABB
wait 3000
back
tap WDS_ST_TMBODY_BATTERY_INFORMATION
back
tap WDS_ST_MBODY_DEBUGGING_ABB
back
tap WDS_ST_MBODY_REPORT_DIAGNOSTIC_AND_USAGE_INFO_ABB
back
quit
SCRIPT

started=$(date +%s)
status=0
# Every program of ours under memcheck; the system's bus daemon, the toolkit's cache daemon
# and the shell are left alone. The driver reads its script from a pipe, as from a person.
cat "$out/script" |
    valgrind --tool=memcheck --trace-children=yes \
        --trace-children-skip='*/dbus-daemon,*/efreetd,*/efreet/*,*/sh,*/bash,*/mkdir' \
        --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
        --error-exitcode=99 --num-callers=40 \
        --suppressions="$root/tests/sanitizers/valgrind.supp" --gen-suppressions=all \
        --log-file="$out/logs/memcheck.%p.log" \
        "$bin/quillset-sim" run --profile default --state "$out/state" --fresh -- \
        "$bin/quillset-drive" >"$out/drive.out" 2>"$out/drive.err" || status=$?

errors=0
programs=0
for log in "$out"/logs/memcheck.*.log; do
    program=$(awk '/Command:/ { sub(/.*Command: /, ""); split($0, a, " "); print a[1]; exit }' "$log")
    summary=$(awk '/ERROR SUMMARY:/ { n = $4 } END { print n }' "$log")
    # Only our programs; a log without a summary is a child that went on to run another one.
    case "$program" in "$bin"/*) ;; *) continue ;; esac
    [ -n "$summary" ] || continue
    programs=$((programs + 1))
    definite=$(awk '/definitely lost:/ { n = $4 } END { print n }' "$log")
    printf '  %-16s %s errors, %s bytes definitely lost (%s)\n' "$(basename "$program")" \
        "${summary:-?}" "${definite:-0}" "$(basename "$log")"
    if [ "${summary:-1}" != 0 ]; then
        errors=$((errors + ${summary:-1}))
    fi
done
echo "check-valgrind: $programs processes, $errors error(s) (definitely-lost blocks included)," \
    "driver exit $status, $(find "$out/tour" -name '*.png' | wc -l) screens toured," \
    "$(($(date +%s) - started)) s; logs in $out/logs"
[ "$status" -eq 0 ] && [ "$errors" -eq 0 ]
