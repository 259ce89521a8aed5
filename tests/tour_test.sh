#!/usr/bin/env bash
# make tour on one profile in three languages, Thai (lines broken between words), Arabic (right
# to left) and the accented pseudo-locale (every text longer): a picture and a dump of each
# screen page by page, every picture on the contact sheet, each walk in its own language, and
# no picture with text cut by the round edge or by its box.
set -euo pipefail
build=$1
root=$(cd "$(dirname "$0")/.." && pwd)
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

# The watch sold in India has every page, the regulatory statements among them.
TOUR_OUT="$out" TOUR_LANGUAGES="th ar en_XA" "$root/scripts/tour.sh" "$build" india \
    >"$out/progress.txt" 2>&1 || { cat "$out/progress.txt"; fail "the tour failed"; }
grep -q '\[ 3/3\] india' "$out/progress.txt" || fail "no progress lines: $(cat "$out/progress.txt")"
grep -q '^tour check: [0-9]* pictures, 0 with cut text' "$out/progress.txt" ||
    fail "no look at the pictures: $(cat "$out/progress.txt")"
[ -f "$out/index.html" ] || fail "no contact sheet"

for lang in th ar en_XA; do
    pngs=$(find "$out/india/$lang" -name '*.png' | wc -l)
    dumps=$(find "$out/india/$lang" -name 'main*.json' | wc -l)
    [ "$pngs" -ge 20 ] || fail "$lang: only $pngs pictures"
    [ "$pngs" -eq "$dumps" ] || fail "$lang: $pngs pictures but $dumps dumps"
    # Every screen is seen down to its end: the licences page takes several pictures.
    [ -f "$out/india/$lang/main.7@3.png" ] || fail "$lang: the licences page is not paged through"
    for png in "$out/india/$lang"/*.png; do
        grep -q "src=\"india/$lang/$(basename "$png")\"" "$out/index.html" ||
            fail "$png is not on the contact sheet"
    done
done
for expected in 'th:อุปกรณ์' 'ar:معلومات الجهاز' 'en_XA:Ðéṽîçé'; do
    lang=${expected%%:*}
    grep -q "${expected#*:}" "$out/india/$lang/main.json" || fail "the $lang walk is not in $lang"
done
echo "tour test: ok"
