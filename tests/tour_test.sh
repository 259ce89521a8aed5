#!/usr/bin/env bash
# make tour on one profile: a picture and a dump of each screen in every language, every
# picture on the contact sheet, each walk in its own language.
set -euo pipefail
build=$1
root=$(cd "$(dirname "$0")/.." && pwd)
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

TOUR_OUT="$out" "$root/scripts/tour.sh" "$build" bt-only >"$out/progress.txt" 2>&1 ||
    { cat "$out/progress.txt"; fail "the tour failed"; }
grep -q '\[ 6/6\] bt-only' "$out/progress.txt" || fail "no progress lines: $(cat "$out/progress.txt")"
[ -f "$out/index.html" ] || fail "no contact sheet"

for lang in en de zh_CN ko hi ar; do
    pngs=$(find "$out/bt-only/$lang" -name '*.png' | wc -l)
    dumps=$(find "$out/bt-only/$lang" -name 'main*.json' | wc -l)
    [ "$pngs" -ge 5 ] || fail "$lang: only $pngs screens"
    [ "$pngs" -eq "$dumps" ] || fail "$lang: $pngs pictures but $dumps dumps"
    for png in "$out/bt-only/$lang"/*.png; do
        grep -q "src=\"bt-only/$lang/$(basename "$png")\"" "$out/index.html" ||
            fail "$png is not on the contact sheet"
    done
    [ "$(ls "$out/bt-only/en" | grep -c png)" -eq "$pngs" ] ||
        fail "$lang reached other screens than en"
done
for expected in 'en:Device information' 'de:Geräte' 'zh_CN:设备信息' 'ko:디바이스' \
                'hi:डिवाइस की जानकारी' 'ar:معلومات الجهاز'; do
    lang=${expected%%:*}
    # Korean words carry invisible word joiners between their syllables.
    sed 's/\xe2\x81\xa0//g' "$out/bt-only/$lang/main.json" | grep -q "${expected#*:}" ||
        fail "the $lang walk is not in $lang"
done
echo "tour test: ok"
