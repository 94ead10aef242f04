#!/usr/bin/env python3
"""Counts the instructions of the benchmark frames with callgrind.

Usage: count_instructions.py FRAMECOUNT_PROGRAM OUT.json [--frames N] [--runs R] [--jobs J] [--scenes abcdefg]

For every scene and way, runs the program under callgrind R times (only the
frame region collected) and records instructions per frame, split by object
file into the caller's own work (the program and the library it drives:
Zephrin2D, or SDL2 for the SDL2 way) and the driver's (GL, EGL, Mesa, code
the driver generates). What the C and C++ runtimes execute is shared out
between the two in proportion to the calls each makes into them.
"""
import argparse
import concurrent.futures
import json
import os
import subprocess
import sys
import tempfile

WAYS = ["zephrin2d", "immediate", "floor", "sdl2"]
RUNTIME = ("libc.so", "libc-", "libstdc++", "libm.so", "libgcc_s", "ld-linux", "libpthread",
           "libglib-2", "libglibmm", "libsigc", "vgpreload")
OWN = ("libZephrin2D", "libSDL2")


def kind(obj, program):
    base = os.path.basename(obj)
    if base == os.path.basename(program) or base.startswith(OWN):
        return "own"
    if base.startswith(RUNTIME):
        return "runtime"
    return "driver"


def parse(path, program):
    """Self instructions per object file, the inclusive cost of calls into
    the runtime per calling kind, and self instructions per own function."""
    self_cost = {}
    into_runtime = {"own": 0, "driver": 0}
    functions = {}
    ob = cob = fn = None
    call_pending = False
    with open(path, errors="replace") as f:
        for line in f:
            c = line[0]
            if c.isdigit() or c in "+-*":
                parts = line.split()
                if len(parts) < 2:
                    continue
                cost = int(parts[1])
                if call_pending:
                    call_pending = False
                    caller = kind(ob, program)
                    if caller != "runtime" and kind(cob, program) == "runtime":
                        into_runtime[caller] += cost
                else:
                    self_cost[ob] = self_cost.get(ob, 0) + cost
                    if kind(ob, program) == "own":
                        key = (os.path.basename(ob), fn)
                        functions[key] = functions.get(key, 0) + cost
            elif line.startswith("ob="):
                ob = line[3:].strip()
            elif line.startswith("fn="):
                fn = line[3:].strip()
                cob = ob
            elif line.startswith("cob="):
                cob = line[4:].strip()
            elif line.startswith("cfn="):
                pass
            elif line.startswith("calls="):
                call_pending = True
    return self_cost, into_runtime, functions


def count(program, scene, way, frames):
    with tempfile.NamedTemporaryFile(prefix="zephrin2d-callgrind-", delete=False) as tmp:
        out = tmp.name
    env = dict(os.environ, LP_NUM_THREADS="0", MESA_SHADER_CACHE_DISABLE="true")
    cmd = ["nice", "valgrind", "--tool=callgrind", "--instr-atstart=no", "--collect-atstart=no",
           "--compress-strings=no", "--compress-pos=no", "--callgrind-out-file=" + out,
           program, scene, way, str(frames)]
    r = subprocess.run(cmd, env=env, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    try:
        if r.returncode != 0:
            return {"error": (r.stderr.strip().splitlines() or ["exit %d" % r.returncode])[-1]}
        self_cost, into_runtime, functions = parse(out, program)
    finally:
        os.unlink(out)
    totals = {"own": 0, "driver": 0, "runtime": 0}
    for obj, cost in self_cost.items():
        totals[kind(obj, program)] += cost
    calls = into_runtime["own"] + into_runtime["driver"]
    own_share = into_runtime["own"] / calls if calls else 0.0
    own = totals["own"] + totals["runtime"] * own_share
    driver = totals["driver"] + totals["runtime"] * (1.0 - own_share)
    top = sorted(functions.items(), key=lambda kv: -kv[1])[:8]
    return {
        "own": own / frames, "driver": driver / frames, "total": (own + driver) / frames,
        "runtime": totals["runtime"] / frames,
        "top_own": [[obj, fn, cost / frames] for (obj, fn), cost in top],
    }


def main():
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("program")
    ap.add_argument("out")
    ap.add_argument("--frames", type=int, default=4)
    ap.add_argument("--runs", type=int, default=2)
    ap.add_argument("--jobs", type=int, default=2)
    ap.add_argument("--scenes", default="abcdefg")
    ap.add_argument("--ways", default=",".join(WAYS))
    args = ap.parse_args()
    jobs = [(s, w, r) for r in range(args.runs) for s in args.scenes for w in args.ways.split(",")]
    results = {}
    with concurrent.futures.ThreadPoolExecutor(max_workers=args.jobs) as pool:
        futures = {pool.submit(count, args.program, s, w, args.frames): (s, w, r) for s, w, r in jobs}
        for fut in concurrent.futures.as_completed(futures):
            s, w, r = futures[fut]
            res = fut.result()
            results.setdefault(s, {}).setdefault(w, [None] * args.runs)[r] = res
            print("callgrind %s/%s run %d: %s" % (s, w, r + 1, res.get("error") or "%.0f instructions per frame" % res["total"]),
                  file=sys.stderr)
    json.dump({"frames": args.frames, "runs": args.runs, "results": results}, open(args.out, "w"), indent=1)


if __name__ == "__main__":
    main()
