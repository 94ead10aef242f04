#!/bin/sh
# The guide's play step in an Xvfb window, driven by keys as a player would:
# the right arrow walks the hero to the right, Escape quits.
#   play_keys_test.sh PROGRAM ART XWIN OUT
set -u
PROGRAM=$1 ART=$2 XWIN=$3 OUT=$4
rm -rf "$OUT" && mkdir -p "$OUT" && ln -s "$ART" "$OUT/art" && cd "$OUT" || exit 1
. "$(dirname "$0")/support/xvfb.sh"
game="" xvfb=""
trap 'kill $xvfb $game 2>/dev/null' EXIT
start_xvfb "$OUT"
fail() { echo "play keys: $*"; cat "$OUT/play.log" 2>/dev/null; exit 1; }

"$PROGRAM" --window >"$OUT/play.log" 2>&1 &
game=$!
i=0
until "$XWIN" Zephrin2D title >/dev/null 2>&1; do
    sleep 0.1; i=$((i + 1)); [ $i -lt 300 ] || fail "no window"
done
"$XWIN" Zephrin2D key Right
sleep 1.5
"$XWIN" Zephrin2D key Escape
i=0
while kill -0 $game 2>/dev/null && [ $i -lt 300 ]; do sleep 0.1; i=$((i + 1)); done
kill -0 $game 2>/dev/null && fail "Escape did not quit"
wait $game || fail "the program exited with $?"
game=""
x=$(sed -n 's/^hero at \([-0-9]*\), .*/\1/p' "$OUT/play.log")
[ -n "$x" ] || fail "no position printed"
[ "$x" -gt 60 ] || fail "the hero did not walk right (x = $x, started at 40)"
echo "the hero walked to x = $x; Escape quit"
