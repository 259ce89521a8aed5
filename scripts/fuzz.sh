#!/usr/bin/env bash
# `make fuzz`: builds the fuzz targets with clang (libFuzzer, AddressSanitizer and
# UndefinedBehaviorSanitizer) and runs each one for a bounded time (FUZZ_TIME seconds, 20 by
# default), starting from its committed corpus (tests/fuzz/corpus/NAME). New inputs collect
# in <build>/corpus/NAME; an input that breaks a target is kept in <build>/crashes/ and fails
# the run. Copy the interesting ones into the committed corpus.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build-fuzz}
case "$build" in /*) ;; *) build="$root/$build" ;; esac
seconds=${FUZZ_TIME:-20}

CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DQUILLSET_FUZZ=ON >/dev/null
cmake --build "$build" --target quillset-fuzzers
mkdir -p "$build/crashes" "$build/logs"

# Some inputs are better started from what the watch really reads.
declare -A seeds=([profile]="$root/sim/profiles")

failed=()
printf '%-18s %12s %9s %6s %6s %7s  %s\n' target executions exec/s cov ft corpus result
for dir in "$root"/tests/fuzz/corpus/*/; do
    name=$(basename "$dir")
    work="$build/corpus/$name"
    log="$build/logs/$name.log"
    mkdir -p "$work"
    options=(-max_total_time="$seconds" -print_final_stats=1 -timeout=10 -rss_limit_mb=2048
             -artifact_prefix="$build/crashes/$name-")
    [ -f "$root/tests/fuzz/$name.dict" ] && options+=(-dict="$root/tests/fuzz/$name.dict")
    result=ok
    "$build/bin/fuzz-$name" "${options[@]}" "$work" "$dir" ${seeds[$name]:-} >"$log" 2>&1 ||
        result="FAILED (see $log)"
    stat() { awk -v key="stat::$1:" '$1 == key { print $2 }' "$log" | tail -n 1; }
    last=$(grep -E '^#[0-9]+' "$log" | tail -n 1 || true)
    field() { sed -nE "s/.* $1: ([0-9]+[kKmM]?b?).*/\1/p" <<<"$last"; }
    printf '%-18s %12s %9s %6s %6s %7s  %s\n' "$name" "$(stat number_of_executed_units)" \
        "$(stat average_exec_per_sec)" "$(field cov)" "$(field ft)" "$(field corp)" "$result"
    [ "$result" = ok ] || failed+=("$name")
done

if [ ${#failed[@]} -gt 0 ]; then
    for name in "${failed[@]}"; do
        echo "=== $name"
        grep -E -A 25 'ERROR: (AddressSanitizer|LeakSanitizer|libFuzzer)|runtime error|property broken' \
            "$build/logs/$name.log" | cut -c1-240 | head -n 40
    done
    echo "fuzz: ${#failed[@]} target(s) failed: ${failed[*]}; inputs in $build/crashes/"
    exit 1
fi
echo "fuzz: every target ran ${seconds} s without a finding"
