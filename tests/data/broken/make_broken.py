#!/usr/bin/env python3
"""Writes the corpus of broken content files beside this script: scenes,
costumes, texture sheets and actor files with wrong types for their keys,
missing keys, bad IDs, unknown element types, deep nesting, empty files and
text that is not JSON. tests/BrokenContentTest.cpp lists what each must
report. Standard library only; run from anywhere."""
import os

HERE = os.path.dirname(os.path.abspath(__file__))

FILES = {
    # ---- scenes ----
    "scene-empty.json": "",
    "scene-not-json.json": "<scene><billboard url='coin'/></scene>\n",
    "scene-truncated.json": '[{"ElementType": 0, "ID": 0, "URL": "coin"',
    "scene-object-root.json": '{"ElementType": 0, "ID": 0, "URL": "coin"}\n',
    "scene-entries-not-objects.json": '[42, "billboard", null]\n',
    "scene-no-element-type.json": '[{"ID": 0, "URL": "coin"}]\n',
    "scene-element-type-mistyped.json": '[{"ElementType": "0", "ID": 0}, {"ElementType": 1.5, "ID": 0}]\n',
    "scene-unknown-element-types.json":
        '[{"ElementType": 6, "ID": 0}, {"ElementType": -1, "ID": 0}, {"ElementType": 100000}]\n',
    "scene-bad-ids.json": """[
  {"ElementType": 0, "ID": "0", "URL": "coin"},
  {"ElementType": 0, "ID": 2.5, "URL": "coin"},
  {"ElementType": 0, "ID": 7, "URL": "coin"},
  {"ElementType": 0, "ID": -3, "URL": "coin"},
  {"ElementType": 0, "ID": 99999999999, "URL": "coin"}
]
""",
    "scene-billboard-wrong-types.json": """[
  {"ElementType": 0, "ID": 0, "URL": 5, "Position": "here", "Rotation": "90", "Scale": 2,
   "Reg": {"x": 1}, "Color": "red"}
]
""",
    "scene-graphic-items-wrong.json": """[
  {"ElementType": 1, "ID": 0, "Position": ["a", true]},
  {"ElementType": 1, "ID": 1, "Position": [null, 1, {}], "Scale": [1.0, "2"], "Reg": [[], 1]},
  {"ElementType": 1, "ID": 2, "Position": [1, 2, 3, 4], "Scale": [1.0], "Reg": [1, 2, 3],
   "Color": [1, 2.5, 3, "4"]}
]
""",
    "scene-sprite-wrong-types.json": """[
  {"ElementType": 1, "ID": "s", "Children": {"ElementType": 0}},
  {"ElementType": 1, "ID": 1, "Children": [7, {"ElementType": 9}]}
]
""",
    "scene-cel-wrong-types.json": """[
  {"ElementType": 2, "ID": 0, "Duration": "long", "Operations": [
    {"Opcode": "jump", "Oparg": 1},
    {"Opcode": 1, "Oparg": "x"},
    {"Opcode": 5, "Oparg": {}},
    {"Opcode": 5, "Oparg": [1, 2]},
    {"Opcode": 5, "Oparg": ["a", "b", "c"]}]},
  {"ElementType": 2, "ID": 1, "Duration": -1},
  {"ElementType": 2, "ID": 2, "Duration": 1.5}
]
""",
    "scene-cel-missing-keys.json": """[
  {"ElementType": 2},
  {"ElementType": 2, "ID": 1, "Duration": 5, "Operations": [{}, {"Oparg": 1}]}
]
""",
    "scene-actor-wrong-types.json": """[
  {"ElementType": 3, "ID": 0, "Animation": {"ID": 0, "Duration": 1}},
  {"ElementType": 3, "ID": 1, "Animation": [{"ID": 0, "Duration": 1, "Label": 4}, 7]}
]
""",
    "scene-actor-missing-keys.json": '[{"ElementType": 3}, {"ElementType": 3, "ID": 1}]\n',
    "scene-piece-wrong.json": """[
  {"ElementType": 4, "ID": 0},
  {"ElementType": 5, "ID": 1, "Component": 3, "Variation": ["x"]},
  {"ElementType": 4, "ID": 2, "Component": "tail", "Variation": "long"},
  {"ElementType": 4, "ID": 3, "Component": "head", "Variation": "square"}
]
""",
    "scene-missing-art.json": '[{"ElementType": 0, "ID": 0, "URL": "no-such-picture.png"}]\n',
    "scene-deep-arrays.json": "[" * 20000 + "]" * 20000 + "\n",
    "scene-deep-unclosed.json": "[" * 30000,
    "scene-deep-sprites.json":
        "[" + "".join('{"ElementType": 1, "ID": %d, "Children": [' % i for i in range(150))
        + "]}" * 150 + "]\n",

    # ---- costumes ----
    "costume-empty.json": "",
    "costume-not-json.json": "LODList = 32, 64\n",
    "costume-array-root.json": '[{"Size": 32, "TextureURI": "kid32.png"}]\n',
    "costume-wrong-types.json": '{"LODList": {"Size": 32}, "AudioList": "giggle"}\n',
    "costume-lod-wrong-types.json": """{"LODList": [
  {"Size": "big", "TextureURI": 5, "ComponentList": {"Name": "head"}},
  {"Size": 64, "TextureURI": ["kid64.png"], "ComponentList": [7, "head"]}
]}
""",
    "costume-variation-wrong-types.json": """{"LODList": [
  {"Size": 32, "TextureURI": "no-such-texture.png", "ComponentList": [
    {"Name": 7, "Variations": "round"},
    {"Name": "head", "Variations": [
      {"Name": "round", "RectLeft": "0", "RectTop": null, "RectRight": [], "RectBottom": {},
       "RegPointX": true, "RegPointY": "5"},
      12]}]}],
 "AudioList": [{"Name": 1, "URI": 2}, "giggle"]}
""",
    "costume-missing-keys.json": '{"LODList": [{}, {"Size": 64}], "AudioList": [{}]}\n',
    "costume-odd-sizes.json": """{"LODList": [
  {"Size": 99999, "TextureURI": "no-such-texture.png", "ComponentList": []},
  {"Size": -5, "TextureURI": "no-such-texture.png", "ComponentList": []},
  {"Size": 0, "TextureURI": "no-such-texture.png", "ComponentList": []}
]}
""",

    # ---- texture sheets ----
    "sheet-empty.json": "",
    "sheet-not-json.json": "ImageData: sheet.png\n",
    "sheet-array-root.json": '[{"Bitmap": "sheet.png"}]\n',
    "sheet-wrong-types.json": '{"ImageData": {"Bitmap": "sheet.png", "Images": []}}\n',
    "sheet-image-wrong-types.json": """{"ImageData": [
  {"Bitmap": 5, "Images": "hero"},
  {"Bitmap": "no-such-sheet.png", "Images": [
    {"Name": 3, "P1": "0,0", "P2": [1], "RegPoint": {}, "CropRect": [1, 2]},
    7]}
]}
""",
    "sheet-missing-keys.json": '{"ImageData": [{}, {"Images": [{}]}]}\n',

    # ---- actor files ----
    "actor-empty.json": "",
    "actor-not-json.json": "Animation: walk, wave\n",
    "actor-array-root.json": '[{"Animation": []}]\n',
    "actor-no-animation.json": '{"Position": [1.0, 2.0]}\n',
    "actor-animation-not-array.json": '{"Animation": {"ID": 0, "Duration": 1}}\n',
    "actor-wrong-types.json": """{"Position": "x", "Animation": [
  {"ID": "0", "Duration": "1", "Label": 3, "Operations": [{"Opcode": "1"}], "Children": "none"},
  5]}
""",
    "actor-bad-ids.json": """{"Animation": [
  {"ID": 3, "Duration": 10, "Label": "a"},
  {"ID": 0, "Duration": 10},
  {"ID": -1, "Duration": 10, "Label": "a"}]}
""",
    "actor-deep.json":
        '{"Animation": [{"ID": 0, "Duration": 10, "Children": ['
        + "".join('{"ElementType": 1, "ID": %d, "Children": [' % i for i in range(150))
        + "]}" * 150 + "]}]}\n",
}

if __name__ == "__main__":
    for name, text in FILES.items():
        with open(os.path.join(HERE, name), "w") as f:
            f.write(text)
