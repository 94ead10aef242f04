#!/bin/sh
# From loose pictures to a frame on screen, with the tools on the PATH:
#   pipeline.sh OUT_DIR
# OUT_DIR receives the sheet, the compiled actor and pipeline.png.
set -e
OUT=$1 HERE=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$OUT"
# 1. Pack the loose pictures into a texture sheet (paletted when lossless).
zephrin2d-pack "$HERE/art" --reg "$HERE/art.reg.json" -o "$OUT/sheet"
# 2. Check the scene and the actor against the sheet.
zephrin2d-check --sheet "$OUT/sheet.json" "$HERE/scene.json" "$HERE/critter.json"
# 3. Compile the actor into a dataset; its pictures are found in the sheet.
zephrin2d-dset --verify --sheet "$OUT/sheet.json" "$HERE/critter.json" -o "$OUT/critter"
# 4. Draw the scene with the actor's dataset, as a game would load them.
zephrin2d-render "$HERE/scene.json" --sheet "$OUT/sheet.json" --actor "$OUT/critter.dsetBin" \
    --size 256x64 --frames 3 --dt 150 --out "$OUT/pipeline.png"
