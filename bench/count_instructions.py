#!/usr/bin/env python3
"""Counts the instructions of the benchmark frames with callgrind.

Usage: count_instructions.py FRAMECOUNT_PROGRAM OUT.json [--frames N] [--runs R] [--jobs J]
         [--scenes abcdefg] [--ways W,...] [--once-ways W,...] [--once-frames N] [--load-program LOADCOUNT]

For every scene and way in --ways, runs the program under callgrind R times
(only the frame region collected) and records instructions per frame, split by
object file into the caller's own work (the program and the library it drives:
Zephrin2D, or SDL2 for the SDL2 way) and the driver's (GL, EGL, Mesa, code the
driver generates). What the C and C++ runtimes execute is shared out between
the two in proportion to the calls each makes into them. The ways in
--once-ways (the slow comparisons: immediate, SDL2) are counted in one run of
--once-frames frames. With --load-program, every load (actor and scene, from
JSON and from the dataset) is counted R times too: all instructions of the load.
"""
import argparse
import concurrent.futures
import json
import os
import subprocess
import sys
import tempfile
import time

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


def callgrind(program, args, collect_atstart):
    """Runs program under callgrind, instrumenting only what it switches on
    (and, without collect_atstart, collecting only what it toggles); returns
    the output file's name, or an error line."""
    with tempfile.NamedTemporaryFile(prefix="zephrin2d-callgrind-", delete=False) as tmp:
        out = tmp.name
    env = dict(os.environ, LP_NUM_THREADS="0", MESA_SHADER_CACHE_DISABLE="true")
    cmd = ["nice", "valgrind", "--tool=callgrind", "--instr-atstart=no",
           "--collect-atstart=" + ("yes" if collect_atstart else "no"),
           "--compress-strings=no", "--compress-pos=no", "--callgrind-out-file=" + out,
           program] + args
    r = subprocess.run(cmd, env=env, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if r.returncode != 0:
        if os.path.exists(out):
            os.unlink(out)
        return None, (r.stderr.strip().splitlines() or ["exit %d" % r.returncode])[-1]
    return out, None


def count_load(program, kind, form):
    out, error = callgrind(program, [kind, form], True)
    if error:
        return {"error": error}
    try:
        self_cost = parse(out, program)[0]
    finally:
        os.unlink(out)
    return {"total": float(sum(self_cost.values()))}


def count(program, scene, way, frames):
    out, error = callgrind(program, [scene, way, str(frames)], False)
    if error:
        return {"error": error}
    try:
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


# Rough cost of a count, so that the longest start first and the two
# workers finish together.
SLOW_SCENES = {"a": 4, "b": 4, "c": 4}
SLOW_WAYS = {"immediate": 10, "sdl2": 10}


def jobs_of(args):
    jobs = []
    for s in args.scenes:
        for w in args.ways.split(","):
            if w and not (w == "colors" and s == "g"):   # (g) has its colours on in every way
                jobs += [("frame", s, w, r, args.frames) for r in range(args.runs)]
        for w in args.once_ways.split(","):
            if w:
                jobs.append(("frame", s, w, 0, args.once_frames))
    if args.load_program:
        jobs += [("load", k, f, r, 0) for k in ("actor", "scene") for f in ("json", "dset") for r in range(args.runs)]
    jobs.sort(key=lambda j: -(SLOW_SCENES.get(j[1], 1) * SLOW_WAYS.get(j[2], 1) if j[0] == "frame" else 2))
    return jobs


def run_job(args, job):
    what, a, b, _, frames = job
    start = time.time()
    if what == "load":
        res = count_load(args.load_program, a, b)
    else:
        res = count(args.program, a, b, frames)
    res["seconds"] = round(time.time() - start, 1)
    return res


def main():
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("program")
    ap.add_argument("out")
    ap.add_argument("--frames", type=int, default=4)
    ap.add_argument("--runs", type=int, default=2)
    ap.add_argument("--jobs", type=int, default=2)
    ap.add_argument("--scenes", default="abcdefg")
    ap.add_argument("--ways", default=",".join(WAYS))
    ap.add_argument("--once-ways", default="")
    ap.add_argument("--once-frames", type=int, default=1)
    ap.add_argument("--load-program")
    args = ap.parse_args()
    if args.load_program and not os.path.exists(args.load_program):
        print("count_instructions.py: %s: no such program, loads not counted" % args.load_program, file=sys.stderr)
        args.load_program = None
    started = time.time()
    results, loads, frames = {}, {}, {}
    with concurrent.futures.ThreadPoolExecutor(max_workers=args.jobs) as pool:
        futures = {pool.submit(run_job, args, job): job for job in jobs_of(args)}
        for fut in concurrent.futures.as_completed(futures):
            what, a, b, r, n = futures[fut]
            res = fut.result()
            table = loads if what == "load" else results
            runs = table.setdefault(a, {}).setdefault(b, [])
            runs += [None] * (r + 1 - len(runs))
            runs[r] = res
            if what == "frame":
                frames.setdefault(a, {})[b] = n
            label = "load %s/%s" % (a, b) if what == "load" else "%s/%s" % (a, b)
            value = res.get("error") or "%.0f instructions%s" % (res["total"], "" if what == "load" else " per frame")
            print("callgrind %s run %d (%.0f s): %s" % (label, r + 1, res["seconds"], value), file=sys.stderr)
    out = {"frames": args.frames, "runs": args.runs, "frames_by_way": frames, "results": results, "loads": loads,
           "seconds": round(time.time() - started)}
    tmp = args.out + ".tmp"
    with open(tmp, "w") as f:
        json.dump(out, f, indent=1)
    os.replace(tmp, args.out)

if __name__ == "__main__":
    main()
