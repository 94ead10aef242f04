#!/bin/sh
# Outputs as one set under faults: a full file system, an immutable or folder
# target, a run killed or failing between two renames, two runs into one
# folder. After each, the folder holds the old set or the new one, whole.
#   output_faults_test.sh PACK DSET IMPORT PNG_DIR EXAMPLES_DIR IMPORT_DATA_DIR WORK_DIR
PACK=$1 DSET=$2 IMPORT=$3 PNG=$4 EX=$5 IMP=$6 W=$7
fail() { echo "FAIL: $*"; exit 1; }
rm -rf "$W" && mkdir -p "$W/a" "$W/b" "$W/ref/a" "$W/ref/b" || exit 1
cp "$PNG/rgba.png" "$PNG/pal4.png" "$W/a/"; cp "$PNG/rgb_12x5.png" "$PNG/pal8.png" "$PNG/grey.png" "$W/b/"
"$PACK" "$W/a" -o "$W/ref/a/s" >/dev/null && "$PACK" "$W/b" --max-size 16 -o "$W/ref/b/s" >/dev/null || fail "reference packs"

whole() {  # whole DIR [strays]: DIR/s.json is one reference sheet, its pages all there (and no other page)
  for set in a b; do
    cmp -s "$1/s.json" "$W/ref/$set/s.json" || continue
    for page in "$W/ref/$set"/s-*.png; do cmp -s "$page" "$1/${page##*/}" || fail "$1: ${page##*/} of set $set"; done
    [ -n "$2" ] || [ "$(ls "$1" | grep -c '^s-.*png$')" -eq "$(ls "$W/ref/$set" | grep -c '^s-.*png$')" ] || fail "$1: stray pages: $(ls "$1")"
    echo $set; return
  done
  fail "$1/s.json is neither set: $(ls -a "$1")"
}
target() {  # target DIR: a fresh folder holding set a
  rm -rf "$1" 2>/dev/null; mkdir -p "$1" && "$PACK" "$W/a" -o "$1/s" >/dev/null || fail "packing set a into $1"
}

# A full file system: a small tmpfs where mounting is allowed, else a file-size limit.
D=$W/full; target "$D"
if mount -t tmpfs -o size=24k tmpfs "$D" 2>/dev/null; then
  target "$D"; head -c 16000 /dev/zero >"$D/filler" 2>/dev/null; limit=
else
  limit="ulimit -f 2;"
fi
sh -c "$limit \"\$0\" \"$W/b\" --max-size 16 -o \"$D/s\"" "$PACK" >/dev/null 2>"$W/err" && fail "a full disk passed"
[ "$(whole "$D")" = a ] || fail "full disk: not the old set"
ls -a "$D" | grep -q zephrin2d-tmp && fail "full disk: temporaries left"
umount "$D" 2>/dev/null

# Faults between renames, immutable and folder targets; each leaves set a.
for case in "fail:1" "kill:1" "kill:2" "immutable" "folder"; do
  D=$W/${case%%:*}${case#*:}; target "$D"; fault=
  case $case in
    immutable) chattr +i "$D/s.json" 2>/dev/null || { rm "$D/s.json"; mkdir "$D/s.json"; } ;;
    folder) mkdir "$D/$(ls "$W/ref/b" | grep '^s-0-')"; fault=none ;;
    *) fault=$case ;;
  esac
  ZEPHRIN2D_OUTPUT_FAULT=$fault "$PACK" "$W/b" --max-size 16 -o "$D/s" >/dev/null 2>"$W/err" && fail "$case passed"
  chattr -i "$D/s.json" 2>/dev/null
  # A killed run may leave new pages that no sheet names; the next run into the folder removes them.
  [ -d "$D/s.json" ] || [ "$(whole "$D" ${fault:+strays})" = a ] || fail "$case: not the old set"
  case $case in kill*) ;; *) grep -q "^$D/s[-.][^:]*:1:1: error: " "$W/err" || fail "$case: message: $(cat "$W/err")" ;; esac
  "$PACK" "$W/b" --max-size 16 -o "$D/s" >/dev/null 2>&1 && { [ "$(whole "$D")" = b ] || fail "$case: the next run"; }
done

# A dataset pair: a failing rename keeps the old pair byte for byte.
cp "$EX/demo/hero.json" "$EX"/demo/hero_*.png "$W/" && "$DSET" "$W/hero.json" -o "$W/hero" >/dev/null || fail "dset"
cp "$W/hero.dsetBin" "$W/old.dsetBin"; cp "$W/hero.relinkBin" "$W/old.relinkBin"
sed 's/"Duration": *[0-9]*/"Duration": 7/' "$W/hero.json" >"$W/hero2.json"
ZEPHRIN2D_OUTPUT_FAULT=fail:1 "$DSET" "$W/hero2.json" -o "$W/hero" >/dev/null 2>&1 && fail "dset with a failing rename"
cmp -s "$W/hero.dsetBin" "$W/old.dsetBin" && cmp -s "$W/hero.relinkBin" "$W/old.relinkBin" || fail "dset: a mixed pair"

# Two runs into one folder take turns: every round ends with one whole set.
D=$W/race; target "$D"
for round in 1 2 3 4 5 6 7 8; do
  "$PACK" "$W/a" -o "$D/s" >/dev/null 2>&1 & "$PACK" "$W/b" --max-size 16 -o "$D/s" >/dev/null 2>&1 & wait
  whole "$D" >/dev/null
done

# An output that would replace an input is refused.
mkdir "$W/c" && echo '{}' >"$W/c/s.json"
"$PACK" "$W/a" -o "$W/c/s" --reg "$W/c/s.json" >/dev/null 2>"$W/err" && fail "an input replaced"
grep -q "s.json:1:1: error: is an input of this run" "$W/err" && [ "$(cat "$W/c/s.json")" = "{}" ] || fail "input: $(cat "$W/err")"
mkdir "$W/knight" && sed 's|"image": *"[^"]*"|"image": "knight.png"|' "$IMP/hero-hash.json" >"$W/knight/knight.json"
cp "$IMP/hero.png" "$W/knight/knight.png"; cp "$W/knight/knight.json" "$W/knight.json"
(cd "$W/knight" && "$IMPORT" knight.json -o .) >/dev/null 2>"$W/err" && fail "import over its input"
grep -q "knight.json:1:1: error: is an input of this run" "$W/err" && cmp -s "$W/knight/knight.json" "$W/knight.json" ||
  fail "import over its input: $(cat "$W/err")"
# An import whose last rename fails keeps the previous actor, sheet and pages.
(cd "$W/knight" && "$IMPORT" knight.json -o ../imp) >/dev/null || fail "import"
cp -r "$W/imp" "$W/imp-old"
(cd "$W/knight" && ZEPHRIN2D_OUTPUT_FAULT=fail:2 "$IMPORT" knight.json --once -o ../imp) >/dev/null 2>&1 &&
  fail "import with a failing rename"
diff -r "$W/imp" "$W/imp-old" >/dev/null || fail "import: not the old set: $(ls -a "$W/imp")"
echo "zephrin2d output sets: all checks passed"
