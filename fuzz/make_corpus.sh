#!/bin/sh
# Rebuilds the dataset seeds: every actor and costume JSON seed is compiled
# by zephrin2d-dset, and each .dsetBin/.relinkBin pair is packed into one
# fuzz input (16-bit count of relink entries, the entries, the dataset) for
# the dataset and dset targets. A few hand-made datasets join them.
#   fuzz/make_corpus.sh [BUILD_DIR]   (default build; needs zephrin2d-dset built)
set -e
cd "$(dirname "$0")/.."
BUILD=${1:-build}
DSET="$BUILD/tools/zephrin2d-dset/zephrin2d-dset"
[ -x "$DSET" ] || { echo "make_corpus: build zephrin2d-dset first ($DSET)" >&2; exit 1; }
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
for f in fuzz/corpus/actor_json/*.json fuzz/corpus/costume_json/*.json; do
  name=$(basename "$f" .json)
  cp "$f" "$tmp/$name.json"
  if "$DSET" -o "$tmp/$name" "$tmp/$name.json" >/dev/null 2>&1; then
    echo "compiled $name"
  else
    echo "skipped $name (not compilable: a seed of faults)"
  fi
done
python3 - "$tmp" <<'PY'
import glob, os, struct, sys
tmp = sys.argv[1]

def pack(dset, relink):
    assert len(relink) % 4 == 0
    return struct.pack('<H', len(relink) // 4) + relink + dset

def write(name, data):
    for target in ('dataset', 'dset'):
        os.makedirs(f'fuzz/corpus/{target}', exist_ok=True)
        open(f'fuzz/corpus/{target}/{name}.bin', 'wb').write(data)

for d in sorted(glob.glob(f'{tmp}/*.dsetBin')):
    base = d[:-len('.dsetBin')]
    write(os.path.basename(base), pack(open(d, 'rb').read(), open(base + '.relinkBin', 'rb').read()))

def header(root):
    return struct.pack('<III', 0x5453445A, 1, root)

# An actor of one cel whose billboard array reaches past the file.
actor = header(12) + struct.pack('<I', 0x52544341) + b'\0' * 36 + struct.pack('<II', 1, 60)
cel = struct.pack('<IHHIIIIII', 0, 0, 100, 0, 0, 1000, 92, 0, 0)
write('actor_billboards_outside', pack(actor + cel, struct.pack('<II', 56, 80)))
# A costume whose LOD names a texture string without its NUL.
cost = header(12) + struct.pack('<IIIII', 0x54534F43, 1, 32, 0, 0)
lod = struct.pack('<iIII', 64, 48, 0, 0) + b'sheet.png'
write('costume_unended_string', pack(cost + lod, struct.pack('<III', 20, 28, 36)))
# Relink entries that are unaligned, repeated and outside the file.
write('relink_bad', pack(header(12) + b'\0' * 8, struct.pack('<IIII', 13, 12, 12, 4096)))
PY
ls fuzz/corpus/dataset | wc -l
