#!/usr/bin/env bash
# `make run`: the application on a simulated watch. With a display it opens the round window;
# without one it tours every reachable screen headless and writes them under out/tour/.
set -euo pipefail
build=${1:-build}
profile=${2:-default}
bin="$build/bin"

if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    a11y=()
    [ -n "${A11Y:-}" ] && a11y=(--a11y)  # make run A11Y=1: a desktop screen reader hears it
    exec "$bin/quillset-sim" run --profile "$profile" "${a11y[@]}" -- "$bin/quillset-info"
fi

echo "No display: touring every screen of profile '$profile' headless instead."
exec "$(dirname "$0")/tour.sh" "$build" "$profile"
