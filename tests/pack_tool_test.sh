#!/bin/sh
# zephrin2d-pack from the command line: usage, refusals that write nothing,
# the registration sidecar, and the same bytes from the same input.
#   pack_tool_test.sh PACK PNG_DIR WORK_DIR
PACK=$1 PNG=$2 W=$3
fail() { echo "FAIL: $*"; exit 1; }
expect() {  # expect STATUS PATTERN ARGS...: exit status and a line of standard error
  status=$1 pattern=$2; shift 2
  "$PACK" "$@" >"$W/stdout" 2>"$W/err"; rc=$?
  [ $rc -eq "$status" ] || fail "$* exited with $rc, not $status: $(cat "$W/err")"
  grep -q -- "$pattern" "$W/err" || fail "$*: no '$pattern' in: $(cat "$W/err")"
}
rm -rf "$W" && mkdir -p "$W/art/sub" "$W/dup" "$W/out" || exit 1
cp "$PNG/rgba.png" "$W/art/hero.png"; cp "$PNG/pal4.png" "$W/art/sub/coin.png"; cp "$PNG/rgb.png" "$W/dup/hero.png"

"$PACK" --help | grep -q "^Usage: zephrin2d-pack" || fail "--help"
expect 2 "needs a value" "$W/art" -o
expect 2 "--palette takes auto, 8, 4 or off" "$W/art" -o "$W/out/s" --palette 7
expect 2 "--max-size takes a power of two from 16 to 2048" "$W/art" -o "$W/out/s" --max-size=1000
expect 2 "no output given" "$W/art"
expect 1 "^$PNG/not_a_png.png:1:1: error: not a PNG file" "$W/art" "$PNG/not_a_png.png" -o "$W/out/s"
expect 1 "^$W/dup/hero.png:1:1: error: a second picture named \"hero\"" "$W/art" "$W/dup" -o "$W/out/s"
expect 1 "^$PNG/rgb_2048x1.png:1:1: error: the picture needs 2048x1 pixels, more than a 1024x1024 page" \
  "$PNG/rgb_2048x1.png" -o "$W/out/s"
expect 1 "^$W/nowhere:1:1: error: no such file or folder" "$W/nowhere" -o "$W/out/s"
[ -z "$(ls "$W/out")" ] || fail "a refused run wrote $(ls "$W/out")"

printf '{"hero": [1, 2],\n "sub/coin": [3]}\n' > "$W/out/s.reg.json"
expect 1 "^$W/out/s.reg.json:2:14: error: the point of \"sub/coin\" must be \\[x, y\\]" "$W/art" -o "$W/out/s"
printf '{"hero": [1, 2], "sub/coin": [3, 4]}\n' > "$W/out/s.reg.json"
"$PACK" "$W/art" -o "$W/out/s" --reg center >"$W/out1" || fail "packing: $(cat "$W/out1")"
grep -q '"Name": "sub/coin", .*"RegPoint": \[3, -12\]' "$W/out/s.json" || fail "sidecar point: $(cat "$W/out/s.json")"
grep -q '^.*s-0-[0-9a-f]*.png: [0-9]*x[0-9]*, .*GPU bytes [0-9]* before, [0-9]* after$' "$W/out1" || fail "report: $(cat "$W/out1")"
cp "$W/out/s.json" "$W/first.json"; cp "$W/out"/s-0-*.png "$W/first.png"
"$PACK" "$W/art" -o "$W/out/s" --reg center >/dev/null || fail "second run"
cmp -s "$W/out/s.json" "$W/first.json" && cmp -s "$W/out"/s-0-*.png "$W/first.png" || fail "the same input gave other bytes"
echo "zephrin2d-pack: all checks passed"
