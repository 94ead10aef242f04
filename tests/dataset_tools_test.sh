#!/bin/sh
# zephrin2d-dset finds images as the runtime will; zephrin2d-dump reads datasets.
#   dataset_tools_test.sh DSET DUMP EXAMPLES_DIR WORK_DIR
DSET=$1 DUMP=$2 EX=$3 W=$4
fail() { echo "FAIL: $*"; exit 1; }
rm -rf "$W" && mkdir -p "$W/out" || exit 1
cp "$EX"/demo/hero.json "$EX"/demo/hero_*.png "$EX"/demo/kid-costume.json "$EX"/demo/kid*.png "$EX"/art/sheet.* "$W/"

# Datasets dump as the JSON they came from (all but the lines naming the file).
for f in hero kid-costume; do
  "$DSET" "$W/$f.json" -o "$W/$f" >/dev/null || fail "compiling $f"
  "$DUMP" "$W/$f.json" | sed '1d;$d' >"$W/$f.json.xml"
  "$DUMP" "$W/$f.dsetBin" | sed '1d;$d' >"$W/$f.dset.xml"
  cmp -s "$W/$f.json.xml" "$W/$f.dset.xml" || fail "$f: the dataset dumps otherwise: $(diff "$W/$f.json.xml" "$W/$f.dset.xml" | head)"
done
for args in "--costume $W/hero.dsetBin" "--actor $W/kid-costume.dsetBin" "--costume $W/hero.json"; do
  "$DUMP" $args >"$W/dump.out" 2>"$W/dump.err"; rc=$?
  [ $rc -eq 2 ] && grep -q "asked for, but the file is" "$W/dump.err" && [ ! -s "$W/dump.out" ] ||
    fail "zephrin2d-dump $args: exit $rc, $(cat "$W/dump.err")"
done

# A cel count no dataset can hold is reported, not dumped as an actor without cels.
cp "$W/hero.dsetBin" "$W/huge.dsetBin" && cp "$W/hero.relinkBin" "$W/huge.relinkBin"
root=$(od -An -tu4 -j8 -N4 "$W/huge.dsetBin" | tr -d ' ')
printf '\377\377\377\377' | dd of="$W/huge.dsetBin" bs=1 seek=$((root + 40)) conv=notrunc 2>/dev/null
"$DUMP" "$W/huge.dsetBin" >"$W/dump.out" 2>"$W/dump.err" && fail "a cel count of 0xFFFFFFFF dumped"
grep -q "its 4294967295 cels reach outside the dataset" "$W/dump.err" || fail "message: $(cat "$W/dump.err")"

# Sheet pictures: refused without the sheet, named; taken with it, also under --verify.
sed 's/"hero_walk[0-9].png"/"hero"/; s/"hero_wave1.png"/"coin"/' "$W/hero.json" >"$W/sheeted.json"
for verify in "" --verify; do
  "$DSET" $verify "$W/sheeted.json" -o "$W/out/s" >/dev/null 2>"$W/err" && fail "missing images taken $verify"
  grep -q 'URL: image "hero" not found: no texture sheet given' "$W/err" || fail "message: $(cat "$W/err")"
  [ ! -e "$W/out/s.dsetBin" ] || fail "a dataset written with missing images"
  "$DSET" $verify --sheet "$W/sheet.json" "$W/sheeted.json" -o "$W/s" >"$W/log" 2>&1 || fail "with the sheet: $(cat "$W/log")"
done
grep -q "s.dsetBin: verified" "$W/log" || fail "not verified: $(cat "$W/log")"
# Images are sought beside the dataset, where the runtime looks.
"$DSET" "$W/hero.json" -o "$W/out/hero" 2>"$W/err" && fail "an actor whose images are not beside its dataset"
grep -q "hero_walk0.png\" not found: no texture sheet given (--sheet), no file $W/out/hero_walk0.png" "$W/err" ||
  fail "message: $(cat "$W/err")"
"$DSET" "$W/kid-costume.json" -o "$W/out/kid" 2>"$W/err" && fail "a costume whose textures are nowhere"
"$DSET" --art-path "$W" "$W/kid-costume.json" -o "$W/out/kid" >/dev/null || fail "costume textures from --art-path"
echo "dataset tools: all checks passed"
