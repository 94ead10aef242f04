#!/bin/sh
# A dataset compiled on the build machine is byte for byte the one compiled on
# the target (under the emulator), and the target loads the build machine's.
#   dataset_across_hosts_test.sh HOST_BUILD_DIR DSET DUMP EXAMPLES_DIR WORK_DIR
HOST=$1 DSET=$2 DUMP=$3 EX=$4 W=$5
fail() { echo "FAIL: $*"; exit 1; }
HOST_DSET=$HOST/tools/zephrin2d-dset/zephrin2d-dset
HOST_DUMP=$HOST/tools/zephrin2d-dump/zephrin2d-dump
[ -x "$HOST_DSET" ] && [ -x "$HOST_DUMP" ] || fail "no host tools in $HOST: build them first (make build)"
rm -rf "$W" && mkdir -p "$W/host" "$W/target" || exit 1
for d in host target; do
  cp "$EX"/demo/hero.json "$EX"/demo/hero_*.png "$EX"/demo/kid-costume.json "$EX"/demo/kid*.png "$W/$d/"
done
for f in hero kid-costume; do
  "$HOST_DSET" "$W/host/$f.json" -o "$W/host/$f" >/dev/null || fail "compiling $f on the host"
  "$DSET" "$W/target/$f.json" -o "$W/target/$f" >/dev/null || fail "compiling $f on the target"
  cmp "$W/host/$f.dsetBin" "$W/target/$f.dsetBin" || fail "$f: the datasets differ"
  "$HOST_DUMP" "$W/host/$f.dsetBin" | sed '1d;$d' >"$W/$f.host.xml"
  "$DUMP" "$W/host/$f.dsetBin" | sed '1d;$d' >"$W/$f.target.xml"
  [ -s "$W/$f.host.xml" ] && cmp -s "$W/$f.host.xml" "$W/$f.target.xml" ||
    fail "$f: the target reads the host's dataset otherwise: $(diff "$W/$f.host.xml" "$W/$f.target.xml" | head)"
done
echo "datasets across hosts: identical, and loaded alike"
