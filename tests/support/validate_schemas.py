#!/usr/bin/python3
"""Checks the content schemas: every JSON file under EXAMPLES is a scene,
actor, sheet or costume that validates, and every line of
BROKEN/expected.txt names an error its file gets.

Usage: validate_schemas.py SCHEMAS EXAMPLES BROKEN
"""
import json
import os
import sys

import jsonschema

KINDS = ("scene", "actor", "sheet", "costume")


def kind_of(doc):
    """The kind of a content file, told by its content as the tools tell it."""
    if isinstance(doc, list):
        return "scene"
    for key, kind in (("Animation", "actor"), ("LODList", "costume"), ("ImageData", "sheet")):
        if isinstance(doc, dict) and key in doc:
            return kind
    return None


def import_source(doc):
    """An Aseprite sprite sheet or a Tiled map or tileset: what zephrin2d-import reads, not content."""
    return isinstance(doc, dict) and (("frames" in doc and "meta" in doc) or
                                      doc.get("type") in ("map", "tileset"))


def errors(validator, doc):
    """Every error, those inside anyOf branches included, as (keyword, JSON pointer, message)."""
    pending = list(validator.iter_errors(doc))
    while pending:
        e = pending.pop()
        pending.extend(e.context)
        yield e.validator, "/" + "/".join(str(p) for p in e.absolute_path), e.message


def main(schemas, examples, broken):
    validators = {}
    for kind in KINDS:
        with open(os.path.join(schemas, kind + ".schema.json")) as f:
            schema = json.load(f)
        jsonschema.Draft202012Validator.check_schema(schema)
        validators[kind] = jsonschema.Draft202012Validator(schema)
    failures = []
    if validators["scene"].schema["$defs"] != validators["actor"].schema["$defs"]:
        failures.append("scene.schema.json and actor.schema.json define their elements differently")

    checked = 0
    for root, _, files in sorted(os.walk(examples)):
        for name in sorted(n for n in files if n.endswith(".json")):
            path = os.path.join(root, name)
            with open(path) as f:
                doc = json.load(f)
            if name.endswith(".reg.json"):
                # zephrin2d-pack's registration points: picture name -> [x, y].
                if not isinstance(doc, dict) or not all(
                        isinstance(v, list) and len(v) == 2 and all(type(c) is int for c in v) for v in doc.values()):
                    failures.append("%s: not an object of picture names and [x, y] points" % path)
                continue
            kind = kind_of(doc)
            if not kind and import_source(doc):
                continue
            if not kind:
                failures.append("%s: neither a scene, an actor, a sheet nor a costume" % path)
                continue
            checked += 1
            failures += ["%s: %s: %s" % (path, where, message) for _, where, message in errors(validators[kind], doc)]

    with open(os.path.join(broken, "expected.txt")) as f:
        lines = [line.split() for line in f if line.strip() and not line.startswith("#")]
    for name, kind, keyword, where in lines:
        with open(os.path.join(broken, name)) as f:
            got = list(errors(validators[kind], json.load(f)))
        if not any(k == keyword and w == where for k, w, _ in got):
            failures.append("%s: no %s error at %s; got: %s" % (name, keyword, where,
                                                                  "; ".join("%s %s" % (k, w) for k, w, _ in got)))

    for failure in failures:
        print(failure)
    print("%d example files valid, %d refusals as expected, %d failures" % (checked, len(lines), len(failures)))
    return 1 if failures or not checked else 0


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
