#!/usr/bin/env bash
# `make run`: the application on a simulated watch. With a display it opens the round window;
# without one it tours every reachable screen headless and writes them under out/tour/.
# The watch's log goes to its log buffer (`quillset-sim log`); QUILLSET_LOG_ECHO=1 copies it
# to this terminal as well.
set -euo pipefail
build=${1:-build}
profile=${2:-default}
bin="$build/bin"

# An unknown or broken profile is refused before anything starts.
if ! problem=$("$bin/quillset-sim" check "$profile" 2>&1); then
    echo "make run: ${problem%%$'\n'*}" >&2
    exit 2
fi

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo "No display: touring every screen of profile '$profile' headless instead."
    exec "$(dirname "$0")/tour.sh" "$build" "$profile"
fi

# The state directory is made here, so that the way to reach the watch can be said first.
state=$(mktemp -d /tmp/quillset-watch-XXXXXX)
trap 'rm -rf "$state"' EXIT
cat <<EOT
The watch opens in a window: the mouse wheel or Page Up/Down turn the bezel, Escape goes back
(on the About list it closes the application and stops the watch).
Change the watch as it runs from a second terminal, in this directory:
    export QUILLSET_STATE=$state
    $bin/quillset-sim event language de      # more in README.md
    $bin/quillset-sim log -f                 # the watch's log
EOT
a11y=()
[ -n "${A11Y:-}" ] && a11y=(--a11y)  # make run A11Y=1: a desktop screen reader hears it
"$bin/quillset-sim" run --state "$state" --profile "$profile" "${a11y[@]}" -- "$bin/quillset-info"
