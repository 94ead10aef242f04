#!/bin/sh
# Runs one program of the getting-started guide in a fresh directory that
# holds the guide's art, then compares the picture it saved with the one the
# guide shows. ZEPHRIN2D_UPDATE_PICTURES=1 copies the new picture over it.
#   getting_started_test.sh PROGRAM ART RUN_DIR PICTURE EXPECTED IMGDIFF [--window]
set -u
PROGRAM=$1 ART=$2 DIR=$3 PICTURE=$4 EXPECTED=$5 DIFF=$6
shift 6
rm -rf "$DIR" && mkdir -p "$DIR" && ln -s "$ART" "$DIR/art" && cd "$DIR" || exit 1
if [ "${1:-}" = "--window" ]; then
  command -v xvfb-run >/dev/null 2>&1 || { echo "xvfb-run missing"; exit 77; }
  xvfb-run -a -s "-screen 0 640x480x24" "$PROGRAM" --window || { echo "program failed"; exit 1; }
else
  # A program that works says nothing on standard error.
  env -u ZEPHRIN2D_DEBUG_LEVEL "$PROGRAM" 2> stderr.txt || { cat stderr.txt; echo "program failed"; exit 1; }
  [ ! -s stderr.txt ] || { cat stderr.txt; echo "the program wrote on standard error"; exit 1; }
fi
[ -s "$PICTURE" ] || { echo "no $PICTURE written"; exit 1; }
if [ "${ZEPHRIN2D_UPDATE_PICTURES:-}" = 1 ]; then
  cp "$PICTURE" "$EXPECTED" && echo "updated $EXPECTED" && exit 0
fi
# The pictures were made by llvmpipe and FreeType as Debian ships them; the
# tolerance absorbs rounding in other driver and font builds, while a missing,
# misplaced or wrongly coloured element changes far more than 200 pixels.
out=$("$DIFF" "$PICTURE" "$EXPECTED" 8 200) && echo "$out" | grep -q "^320x240 compared" ||
  { echo "$out"; echo "$PICTURE differs from $EXPECTED"; exit 1; }
echo "picture matches"
