#!/usr/bin/env bash
# `make bench`: a release build of its own, then the benchmark on a simulated watch. The table
# goes to stdout (and next to the figures as bench.txt); every figure goes to the JSON file.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
release=${1:-build-release}
out=${2:-build/bench.json}
shift $(( $# < 2 ? $# : 2 ))

cd "$root"
cmake -S . -B "$release" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQUILLSET_TESTS=OFF >/dev/null
cmake --build "$release"

profile="$release/bench-profile.json"
python3 bench/bench_profile.py sim/profiles/default.json "$profile"

mkdir -p "$(dirname "$out")"
out=$(cd "$(dirname "$out")" && pwd)/$(basename "$out")
"$release/bin/quillset-sim" run --profile "$profile" -- \
    "$release/bin/quillset-bench" --out "$out" "$@" | tee "${out%.json}.txt"
