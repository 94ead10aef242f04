#!/bin/sh
# Drives the viewer's keys in an Xvfb window and checks what the window shows:
# space pauses (the picture holds past a cel change), the right arrow steps,
# Select (Backspace) reloads the edited scene file, Escape quits.
set -u
VIEW=$1 RENDER=$2 DIFF=$3 XWIN=$4 SCENE=$5 ART=$6 OUT=$7
rm -rf "$OUT"
mkdir -p "$OUT"
command -v xwd >/dev/null 2>&1 || { echo "xwd missing"; exit 77; }
. "$(dirname "$0")/support/xvfb.sh"
viewer="" xvfb=""
trap 'kill $xvfb $viewer 2>/dev/null' EXIT
start_xvfb "$OUT"

fail() { echo "viewer keys: $*"; exit 1; }
# Waits up to 30 s for the window title to match (or, with !, not to match) a pattern.
wait_title() {
    i=0
    while [ $i -lt 300 ]; do
        title=$("$XWIN" scene.json title 2>/dev/null) && case "$title" in $1) return 0;; esac
        sleep 0.1; i=$((i + 1))
    done
    fail "window title never matched '$1' (last: '${title:-none}')"
}
dump() { xwd -root -silent >"$OUT/$1.xwd" || fail "xwd failed"; }
same() { "$DIFF" "$OUT/$1" "$OUT/$2" 2 0 >/dev/null || fail "$3"; }
# Dumps the screen until it shows the reference, for up to 30 s.
shows() {
    i=0
    while [ $i -lt 60 ]; do
        dump "$1"
        "$DIFF" "$OUT/$1.xwd" "$OUT/$2" 2 0 >/dev/null && return 0
        sleep 0.5; i=$((i + 1))
    done
    fail "$3"
}
differ() { ! "$DIFF" "$OUT/$1" "$OUT/$2" 2 0 >/dev/null || fail "$3"; }
render() { "$RENDER" "$OUT/scene.json" --default-path "$ART" --frames "$1" --out "$OUT/$2" >/dev/null 2>&1 || fail "render failed"; }

cp "$SCENE" "$OUT/scene.json"
render 1 first.png
render 100 later.png
differ first.png later.png "the scene's cel change shows nothing"

"$VIEW" "$OUT/scene.json" --default-path "$ART" >"$OUT/view.log" 2>&1 &
viewer=$!
wait_title "*scene.json*"
"$XWIN" scene.json key space
wait_title "*(paused)*"
dump paused
same paused.xwd first.png "the paused window does not show the first cel"
sleep 3.5
dump held
same held.xwd paused.xwd "the picture changed while paused"

# Each step advances 33 ms; 100 steps pass the 3000 ms cel.
"$XWIN" scene.json key $(yes Right | head -n 100)
shows stepped later.png "stepping did not reach the second cel"

sed 's/"Position": \[10.0, 20.0\]/"Position": [60.0, 20.0]/' "$SCENE" >"$OUT/scene.json"
render 1 edited.png
differ edited.png first.png "the edit changes nothing"
"$XWIN" scene.json key BackSpace
shows reloaded edited.png "Select (Backspace) did not reload the edited scene"

"$XWIN" scene.json key Escape
i=0
while kill -0 $viewer 2>/dev/null && [ $i -lt 300 ]; do sleep 0.1; i=$((i + 1)); done
kill -0 $viewer 2>/dev/null && fail "Escape did not quit"
wait $viewer || fail "the viewer exited with $?"
viewer="" xvfb=""
echo "viewer keys pause, step, reload and quit"
