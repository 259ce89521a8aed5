#!/usr/bin/env bash
# `make run`: the application on a simulated watch. With a display it opens the round window;
# without one it tours every reachable screen headless and writes them under out/tour/.
set -euo pipefail
build=${1:-build}
profile=${2:-default}
bin="$build/bin"

if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    exec "$bin/quillset-sim" run --profile "$profile" -- "$bin/quillset-info"
fi

out="out/tour/$profile"
rm -rf "$out"
mkdir -p "$out"
echo "No display: touring every screen of profile '$profile' headless into $out/"
echo "tour $out" | "$bin/quillset-sim" run --profile "$profile" -- "$bin/quillset-drive"
echo "Screens written to $out/ (one PNG and one dump each)."
