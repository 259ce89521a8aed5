#!/usr/bin/env bash
# `make check-asan`: builds everything with AddressSanitizer and UndefinedBehaviorSanitizer
# into its own directory and runs every test. Reports go to files, so that one from a child
# process (the services daemon, the driver) counts even when its parent carries on; any
# report, like any failing test, fails the check.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build-asan}
case "$build" in /*) ;; *) build="$root/$build" ;; esac
reports="$build/sanitizer-reports"

asan="log_path=$reports/report:log_exe_name=1:strict_string_checks=1"
asan="$asan:detect_stack_use_after_return=1:check_initialization_order=1"
# Whole allocating stacks, through the toolkit's libraries too, so that a leak is told apart
# from the toolkit's own by the functions on its stack (tests/sanitizers/lsan.supp).
asan="$asan:fast_unwind_on_malloc=0:malloc_context_size=40"
# The benchmark's probe is preloaded, so it comes before the sanitizer's runtime; it is built
# with the sanitizer too, which makes that order harmless.
asan="$asan:verify_asan_link_order=0"
export LSAN_OPTIONS="suppressions=$root/tests/sanitizers/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="log_path=$reports/report:print_stacktrace=1:halt_on_error=1"

cmake -S "$root" -B "$build" -G Ninja -DQUILLSET_SANITIZE=ON >/dev/null
rm -rf "$reports"
mkdir -p "$reports"
# The build runs the test programs to list their tests; leaks are looked for in the runs.
ASAN_OPTIONS="$asan:detect_leaks=0" cmake --build "$build"
export ASAN_OPTIONS="$asan:detect_leaks=1"

started=$(date +%s)
status=0
# The sanitized programs run several times slower; an end-to-end test whose screen was not
# drawn in time gets a second run. A sanitizer report from any run still fails the check.
(cd "$build" && ctest -j2 --output-on-failure --repeat until-pass:2) >"$build/ctest.log" 2>&1 ||
    status=$?
tail -n 25 "$build/ctest.log"

found=$(find "$reports" -type f | wc -l)
for report in $(find "$reports" -type f | sort); do
    echo "=== $report"
    head -n 60 "$report"
done
summary=$(grep -E '^[0-9]+% tests passed' "$build/ctest.log" || echo "no test summary")
retried=$(grep -c 'Test  *#[0-9]*: .*\*\*\*' "$build/ctest.log" || true)
echo "check-asan: $summary ($retried first run(s) failed and were run again);" \
    "$found sanitizer report(s); $(($(date +%s) - started)) s"
[ "$status" -eq 0 ] && [ "$found" -eq 0 ]
