#!/usr/bin/env bash
# make tour on one profile: a picture and a dump of each screen in both languages, every
# picture on the contact sheet, the German walk in German.
set -euo pipefail
build=$1
root=$(cd "$(dirname "$0")/.." && pwd)
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

TOUR_OUT="$out" "$root/scripts/tour.sh" "$build" bt-only >"$out/progress.txt" 2>&1 ||
    { cat "$out/progress.txt"; fail "the tour failed"; }
grep -q '\[ 2/2\] bt-only' "$out/progress.txt" || fail "no progress lines: $(cat "$out/progress.txt")"
[ -f "$out/index.html" ] || fail "no contact sheet"

for lang in en de; do
    pngs=$(find "$out/bt-only/$lang" -name '*.png' | wc -l)
    dumps=$(find "$out/bt-only/$lang" -name 'main*.json' | wc -l)
    [ "$pngs" -ge 5 ] || fail "$lang: only $pngs screens"
    [ "$pngs" -eq "$dumps" ] || fail "$lang: $pngs pictures but $dumps dumps"
    for png in "$out/bt-only/$lang"/*.png; do
        grep -q "src=\"bt-only/$lang/$(basename "$png")\"" "$out/index.html" ||
            fail "$png is not on the contact sheet"
    done
done
[ "$(ls "$out/bt-only/en" | grep -c png)" -eq "$(ls "$out/bt-only/de" | grep -c png)" ] ||
    fail "the languages reached different screens"
grep -q 'Geräteinformationen' "$out/bt-only/de/main.json" || fail "the German walk is not German"
grep -q 'Device information' "$out/bt-only/en/main.json" || fail "the English walk is not English"
echo "tour test: ok"
