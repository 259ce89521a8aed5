#!/usr/bin/env bash
# `make tour`: every screen of the device profiles, page by page to its end, as a PNG and a dump
# each, then a contact sheet out/tour/index.html and a look at every picture for text cut by the
# round edge or by its box. Two watches run side by side.
# The watches whose screens differ most (TOUR_EVERY_LANGUAGE, default: default india
# esim-standalone) are walked in every compiled language and both pseudo-locales; the others in
# English. TOUR_LANGUAGES walks every profile in the languages it names instead.
#   scripts/tour.sh BUILD [PROFILE...]      (default: every shipped profile)
set -uo pipefail
build=${1:-build}
shift || true
bin="$(cd "$build/bin" && pwd)"
top="$(cd "$(dirname "$0")/.." && pwd)"
out="${TOUR_OUT:-$top/out/tour}"
mapfile -t compiled < <(ls "$build/res/locale")
read -r -a every_language <<<"${TOUR_EVERY_LANGUAGE-default india esim-standalone}"
jobs=${TOUR_JOBS:-2}

# A second terminal's watch must not be toured by accident.
unset QUILLSET_STATE

if [ $# -gt 0 ]; then
    profiles=("$@")
else
    mapfile -t profiles < <("$bin/quillset-sim" profiles | awk '{print $1}')
fi
if [ ${#profiles[@]} -eq 0 ]; then
    echo "tour: no profiles" >&2
    exit 1
fi

# Only the profiles toured now are replaced; others stay from earlier tours.
mkdir -p "$out"
for profile in "${profiles[@]}"; do
    rm -rf "${out:?}/$profile"
done

# The languages of one profile's walks.
languages_of() {
    if [ -n "${TOUR_LANGUAGES:-}" ]; then
        echo "$TOUR_LANGUAGES"
    elif [[ " ${every_language[*]} " == *" $1 "* ]]; then
        echo "${compiled[*]}"
    else
        echo en
    fi
}
plan=()
for profile in "${profiles[@]}"; do
    for lang in $(languages_of "$profile"); do plan+=("$profile $lang"); done
done
total=${#plan[@]}
read -r -a languages <<<"${TOUR_LANGUAGES:-${compiled[*]}}"
echo "tour: $total walks of ${#profiles[@]} profiles, $jobs at a time, into $out/"

# One walk: a fresh watch, the language set, every reachable screen captured.
walk() {
    local profile=$1 lang=$2 dir="$out/$1/$2"
    mkdir -p "$dir"
    local start=$SECONDS
    # The language is set before the watch starts: some profiles start in another one.
    printf 'tour %s\n' "$dir" |
        "$bin/quillset-sim" run --profile "$profile" -- sh -c \
            'quillset-sim event language "$0" && exec quillset-drive' "$lang" \
            >"$dir/tour.jsonl" 2>"$dir/tour.log"
    local status=$?
    local screens
    screens=$(find "$dir" -name '*.png' | wc -l)
    if [ $status -eq 0 ]; then
        echo "$profile $lang ok $screens $((SECONDS - start))"
    else
        echo "$profile $lang failed($status) $screens $((SECONDS - start))"
    fi
}
export -f walk
export bin out

failed=0
done_count=0
while read -r profile lang result screens seconds; do
    done_count=$((done_count + 1))
    printf 'tour: [%2d/%d] %-16s %-5s  %3d screens  %3ds  %s\n' "$done_count" "$total" "$profile" \
        "$lang" "$screens" "$seconds" "$result"
    if [ "$result" != ok ]; then
        failed=1
        sed 's/^/    /' "$out/$profile/$lang/tour.log" | tail -n 5
    fi
done < <(printf '%s\n' "${plan[@]}" | xargs -P "$jobs" -L 1 bash -c 'walk "$0" "$1"')

python3 "$top/scripts/tour_index.py" "$out" "${languages[@]}" || failed=1
echo "tour: contact sheet $out/index.html"
toured=()
for profile in "${profiles[@]}"; do toured+=("$out/$profile"); done
"$bin/quillset-tour-check" "${toured[@]}" >"$out/check.txt" || failed=1
grep -v '^tour check:' "$out/check.txt" | head -n 20
tail -n 1 "$out/check.txt"
exit $failed
