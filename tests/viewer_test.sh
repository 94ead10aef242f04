#!/bin/sh
# Opens the viewer on a still scene in an Xvfb window, dumps the real window
# with xwd while it runs, and compares both the dump and the viewer's own
# read-back with the render tool's frame of the same scene.
set -u
VIEW=$1 RENDER=$2 DIFF=$3 SCENE=$4 ART=$5 OUT=$6
mkdir -p "$OUT"
command -v xwd >/dev/null 2>&1 || { echo "xwd missing"; exit 77; }
. "$(dirname "$0")/support/xvfb.sh"
xvfb=""
trap 'kill $xvfb 2>/dev/null' EXIT
start_xvfb "$OUT"

"$RENDER" "$SCENE" --default-path "$ART" --frames 5 --out "$OUT/render.png" >/dev/null 2>&1 || { echo "render failed"; exit 1; }
"$VIEW" "$SCENE" --default-path "$ART" --frames 150 --screenshot "$OUT/view.png" &
viewer=$!
# A loaded machine may take a while to show the window: dump until it is there.
i=0
while :; do
  sleep 0.6
  xwd -root -silent >"$OUT/window.xwd" || { echo "xwd failed"; exit 1; }
  "$DIFF" "$OUT/window.xwd" "$OUT/render.png" 2 0 >/dev/null || [ $((i += 1)) -ge 6 ] || continue
  break
done
wait $viewer || { echo "viewer failed"; exit 1; }

"$DIFF" "$OUT/view.png" "$OUT/render.png" 2 0 || { echo "viewer read-back differs from the render"; exit 1; }
"$DIFF" "$OUT/window.xwd" "$OUT/render.png" 2 0 || { echo "the window on screen differs from the render"; exit 1; }
echo "viewer window matches the render"
