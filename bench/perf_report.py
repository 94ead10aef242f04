#!/usr/bin/env python3
"""Turns Zephrin2DBench's JSON output into the tables of docs/performance.md.

Usage: perf_report.py BENCH.json COUNTS.json docs/performance.md
BENCH.json is Zephrin2DBench's output, COUNTS.json count_instructions.py's.
Replaces the text between the peer-bench markers (appended when missing).
Exits 1 after writing when two runs of a count differ by more than
RUNS_TOLERANCE or a count failed, so that `make bench` fails.
"""
import datetime
import json
import os
import re
import sys

BEGIN = "<!-- peer-bench:begin -->"
END = "<!-- peer-bench:end -->"
TARGETS = {"a": 0.05, "b": 0.30, "c": 1.0, "d": 0.5}
# Zephrin2D against the driver's floor, in instructions.
FLOOR_GOALS = {"a": 1.10, "b": 1.10, "c": 1.10, "d": 1.10, "e": 1.50, "f": 1.10, "g": 1.10}
# The library's own instructions per cel change in (e), per moved sprite in (c).
OWN_GOALS = {"e": 1500, "c": 400}
# A dataset loads with at least this many times fewer instructions than its JSON.
LOAD_GOAL = 10.0
# Two runs of one count may differ by this fraction at most; colours on may
# cost this much more than off in a scene without tints.
RUNS_TOLERANCE = 0.005
# Sprites that move (or change cel) per frame.
MOVED = {"b": 1000, "c": 10000, "e": 500, "f": 60}
NAMES = {
    "a": "(a) 10,000 static sprites, 8 textures, random depths",
    "b": "(b) the same, 10% moving",
    "c": "(c) the same, all moving",
    "d": "(d) 2,000 translucent sprites, 4 textures, 50 depths",
    "e": "(e) 500 actors changing cel every frame",
    "f": "(f) 320x240 game scene, 300 sprites",
    "g": "(g) 2,000 tinted sprites fading, 4 textures, 50 depths",
}


def cpu_model():
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return "unknown"


def fmt_us(us):
    return "%.0f µs" % us if us >= 100 else "%.1f µs" % us


def fmt_count(v):
    if v is None or v < 0:
        return "not measurable"
    return "%.0f" % v if abs(v - round(v)) < 0.05 else "%.1f" % v


def fmt_bytes(v, peer=False):
    if v is None or v < 0:
        return "not measurable"
    if peer and v == 0:
        return "not measured (see notes)"
    return "%.0f" % v


def fmt_m(v):
    """Instructions as millions (or thousands when small)."""
    return "%.2f M" % (v / 1e6) if v >= 1e6 else "%.0f k" % (v / 1e3)


def short_name(fn):
    """A function's name without its parameters and template arguments."""
    name = fn.split("(")[0]
    while True:
        shorter = re.sub(r"<[^<>]*>", "", name)
        if shorter == name:
            return name[:70]
        name = shorter


def run_spread(runs):
    totals = [r["total"] for r in runs if r and "total" in r]
    if len(totals) < 2 or min(totals) == 0:
        return None
    return (max(totals) - min(totals)) / min(totals)


def mean(runs, key):
    vals = [r[key] for r in runs if r and key in r]
    return sum(vals) / len(vals) if vals else None


def res_runs(res, way):
    """The most runs any scene has of a way."""
    return max((ways.get(way, []) for ways in res.values()), key=len, default=[])


def count_lines(counts):
    res = counts.get("results", {})
    lines = ["### Instructions per frame (figure of record)", ""]
    lines.append("callgrind, %d frames after 8 warm-up frames (two cycles of the actors' cels), the frame region only (the scene update up to the "
                 "last GL call before the swap), llvmpipe with `LP_NUM_THREADS=0`; mean of the runs (%d). "
                 "*Own* is the program and the library it drives (Zephrin2D; SDL2 for the SDL2 way; the "
                 "floor program itself), *driver* is GL, EGL and Mesa with the code it generates; what the "
                 "C and C++ runtimes execute is shared out in proportion to the calls each side makes into them."
                 % (counts.get("frames", 0), counts.get("runs", 0)))
    lines.append("")
    lines.append("| Scene | Zephrin2D own + driver | Floor own + driver | Zephrin2D / floor | Goal | Immediate | SDL2 "
                 "| Zephrin2D / SDL2 | Colours on / off | Runs differ by |")
    lines.append("|---|---|---|---|---|---|---|---|---|---|")
    for sid in sorted(res):
        r = res[sid]
        def cell(way):
            own, drv = mean(r.get(way, []), "own"), mean(r.get(way, []), "driver")
            if own is None:
                return "n/a"
            return "%s + %s = **%s**" % (fmt_m(own), fmt_m(drv), fmt_m(own + drv))
        def total(way):
            return mean(r.get(way, []), "total")
        z, f, i, s = total("zephrin2d"), total("floor"), total("immediate"), total("sdl2")
        on = total("colors")
        ratio = z / f if z and f else None
        goal = FLOOR_GOALS.get(sid)
        verdict = ""
        if goal and ratio:
            verdict = "≤ %.2f: %s" % (goal, "met" if ratio <= goal else "**missed**")
        elif sid in MOVED:
            verdict = "own per moved sprite (below)"
        known = [x for x in (run_spread(r.get(w, [])) for w in r) if x is not None]
        spread = max(known) if known else None
        lines.append("| %s | %s | %s | %s | %s | %s | %s | %s | %s | %s |" % (
            NAMES.get(sid, sid), cell("zephrin2d"), cell("floor"), "%.3f" % ratio if ratio else "n/a", verdict,
            fmt_m(i) if i else "n/a", fmt_m(s) if s else "n/a", "%.3f" % (z / s) if z and s else "n/a",
            "%.4f" % (on / z) if on and z and sid != "g" else "n/a",
            "%.4f %%" % (100.0 * spread) if spread is not None else "one run"))
    lines.append("")
    once = sorted({"%s (%d frame%s)" % (w, n, "" if n == 1 else "s") for ways in counts.get("frames_by_way", {}).values()
                   for w, n in ways.items() if len(res_runs(res, w)) < 2})
    if once:
        lines.append("Counted in one run, for comparison only: %s." % ", ".join(once))
    spread, label = largest_spread(counts)
    if spread is not None:
        lines.append("Largest difference between two runs of one count (frames and loads): **%.4f %%**%s." %
                     (100.0 * spread, " (%s)" % label if spread else ""))
    if counts.get("seconds"):
        lines.append("The counts took %.0f minutes." % (counts["seconds"] / 60.0))
    lines.append("")
    lines.append("#### Moving scenes: the library's own instructions per moved sprite")
    lines.append("")
    lines.append("| Scene | Moved per frame | Own per frame | Own per moved sprite | Own above (a), per moved sprite "
                 "| Where the own instructions go (share of own, self cost) |")
    lines.append("|---|---|---|---|---|---|")
    base = mean(res.get("a", {}).get("zephrin2d", []), "own")
    for sid in sorted(MOVED):
        runs = res.get(sid, {}).get("zephrin2d", [])
        own = mean(runs, "own")
        if own is None:
            continue
        above = "%.0f" % ((own - base) / MOVED[sid]) if base is not None and sid in "bc" else ""
        top = runs[0].get("top_own", []) if runs and runs[0] else []
        where = "; ".join("`%s` %.0f %%" % (short_name(fn), 100.0 * c / own) for _, fn, c in top[:5])
        lines.append("| %s | %d | %s | %.0f | %s | %s |" % (sid, MOVED[sid], fmt_m(own), own / MOVED[sid], above,
                                                           where))
    lines.append("")
    return lines


# Heap bytes per static billboard the library aims at.
MEMORY_GOAL = 600

LOADS = (("actor", "the 500-cel actor", "BM_LoadActorJson500", "BM_LoadActorDset500"),
         ("scene", "the 5,000-billboard scene", "BM_LoadSceneJson5000", "BM_LoadSceneDset5000"))


def all_runs(counts):
    """Every count with its runs: (label, runs)."""
    for sid, ways in sorted(counts.get("results", {}).items()):
        for way, runs in sorted(ways.items()):
            yield "(%s) %s" % (sid, way), runs
    for kind, forms in sorted(counts.get("loads", {}).items()):
        for form, runs in sorted(forms.items()):
            yield "load %s %s" % (kind, form), runs


def largest_spread(counts):
    """The largest difference between two runs of one count: (fraction, label), or (None, None)."""
    known = [(run_spread(runs), label) for label, runs in all_runs(counts)]
    known = [k for k in known if k[0] is not None]
    return max(known, key=lambda k: k[0]) if known else (None, None)


def failed_counts(counts):
    return ["%s: %s" % (label, r["error"]) for label, runs in all_runs(counts) for r in runs if r and "error" in r]


def load_ratio(counts, kind):
    forms = counts.get("loads", {}).get(kind, {})
    j, d = mean(forms.get("json", []), "total"), mean(forms.get("dset", []), "total")
    return (j / d if j and d else None), j, d


def verdict(value, goal, at_most=True):
    if value is None:
        return "not counted"
    return "met" if (value <= goal if at_most else value >= goal) else "**missed**"


def goal_rows(data, counts):
    """(goal, measured, verdict, benchmarks) for every goal of the draw path and the loaders."""
    res = counts.get("results", {})
    def total(sid, way):
        return mean(res.get(sid, {}).get(way, []), "total")
    rows = []
    for sid in sorted(FLOOR_GOALS):
        z, f = total(sid, "zephrin2d"), total(sid, "floor")
        ratio = z / f if z and f else None
        rows.append(("%s: Zephrin2D / floor, instructions, at most %.2f" % (NAMES[sid], FLOOR_GOALS[sid]),
                     "%.3f" % ratio if ratio else "n/a", verdict(ratio, FLOOR_GOALS[sid]),
                     "`BM_Scene/%s/Zephrin2D`, `BM_Scene/%s/Floor`" % (sid, sid)))
    for sid, what in (("e", "cel change"), ("c", "moved sprite")):
        own = mean(res.get(sid, {}).get("zephrin2d", []), "own")
        per = own / MOVED[sid] if own is not None else None
        rows.append(("Own instructions per %s in (%s), at most %s" % (what, sid, "{:,}".format(OWN_GOALS[sid])),
                     "%.0f" % per if per is not None else "n/a", verdict(per, OWN_GOALS[sid]),
                     "`BM_Scene/%s/Zephrin2D` (%s a frame)" % (sid, "{:,}".format(MOVED[sid]))))
    for kind, label, json_bench, dset_bench in LOADS:
        ratio = load_ratio(counts, kind)[0]
        rows.append(("Dataset against JSON, %s: times fewer instructions, at least %.0f" % (label, LOAD_GOAL),
                     "%.1f" % ratio if ratio else "n/a", verdict(ratio, LOAD_GOAL, False),
                     "`%s`, `%s`" % (json_bench, dset_bench)))
    b = next((b for b in data.get("benchmarks", []) if b["name"].split("/")[0] == "BM_MemoryBillboard"), None)
    per = b["B_per_billboard"] if b else None
    rows.append(("Heap bytes per static billboard, at most %d" % MEMORY_GOAL, "%.0f" % per if b else "n/a",
                 verdict(per, MEMORY_GOAL), "`BM_MemoryBillboard`"))
    worst = None
    for sid in "abcdef":
        z, on = total(sid, "zephrin2d"), total(sid, "colors")
        if z and on and (worst is None or on / z > worst[0]):
            worst = (on / z, sid)
    rows.append(("Tint path in scenes without tints: colours on (every element untinted) / off, (a)-(f), the "
                 "largest, at most %.3f" % (1 + RUNS_TOLERANCE),
                 "%.4f (%s)" % worst if worst else "n/a", verdict(worst and worst[0], 1 + RUNS_TOLERANCE),
                 "`BM_Scene/X/Colors`, `BM_Scene/X/Zephrin2D`"))
    spread, label = largest_spread(counts)
    rows.append(("Two runs of every count agree within %.1f %%" % (100 * RUNS_TOLERANCE),
                 "n/a" if spread is None else "%.4f %%" % (100 * spread) + (" (%s)" % label if spread else ""),
                 verdict(spread, RUNS_TOLERANCE), "`make bench`"))
    return rows


def goal_lines(data, counts):
    lines = ["### Goals", "", "Instructions are callgrind's (below), the figure of record; each goal has a Google "
             "Benchmark of its own in `Zephrin2DBench` (CPU time and memory, below).", "",
             "| Goal | Measured | | Benchmarks |", "|---|---|---|---|"]
    lines += ["| %s | %s | %s | %s |" % row for row in goal_rows(data, counts)]
    lines.append("")
    spread = largest_spread(counts)[0]
    if spread is not None and spread > RUNS_TOLERANCE:
        lines += ["**The two runs of a count differ by more than %.1f %%: these figures are not reproducible, "
                  "and `make bench` failed.**" % (100 * RUNS_TOLERANCE), ""]
    failed = failed_counts(counts)
    if failed:
        lines += ["**Counts that failed, so `make bench` failed:** %s." % "; ".join(failed), ""]
    return lines


def load_count_lines(counts):
    if not counts.get("loads"):
        return []
    lines = ["### Loading: instructions", "",
             "callgrind, every instruction of one load (`Zephrin2DLoadCount KIND FORMAT`: reading the file and "
             "building the elements; the textures are loaded before), mean of the runs.", "",
             "| Load | From JSON | From the dataset | JSON / dataset |", "|---|---|---|---|"]
    for kind, label, _, _ in LOADS:
        ratio, j, d = load_ratio(counts, kind)
        lines.append("| %s | %s | %s | %s |" % (label[0].upper() + label[1:], fmt_m(j) if j else "n/a",
                                                fmt_m(d) if d else "n/a", "%.1f" % ratio if ratio else "n/a"))
    lines.append("")
    return lines


def memory_lines(data):
    m = {b["name"].split("/")[0]: b for b in data["benchmarks"] if b["name"].startswith("BM_Memory")}
    if not m:
        return []
    lines = ["### Memory", "", "Heap bytes in use (`mallinfo2`: `uordblks + hblkhd`) around creating the "
             "elements and registering them with the draw manager; textures are loaded before.", "",
             "| Element | Heap bytes | Of which |", "|---|---|---|"]
    b = m.get("BM_MemoryBillboard")
    if b:
        goal = "met" if b["B_per_billboard"] <= MEMORY_GOAL else "**missed**"
        lines.append("| static billboard, 10,000 of scene (a) (goal <= %d B: %s) | %.0f B | element and its chunk %.0f B "
                     "(`CBillboard` %d B and `CTexturedChunk` %d B, each in one heap block with its control block, "
                     "the chunk's three vectors, the element's chunk vector); draw lists %.0f B (the entry, %d B in "
                     "its list's pool, its shared and weak references, its lookup slot) |"
                     % (MEMORY_GOAL, goal, b["B_per_billboard"], b["B_element_chunk"], b["sizeof_billboard"],
                        b["sizeof_chunk"], b["B_draw_lists"], b["sizeof_entry"]))
    c = m.get("BM_MemoryActorCel")
    if c:
        lines.append("| actor cel, 500 actors of 4 cels (scene (e)) | %.0f B | |" % c["B_per_cel"])
    p = m.get("BM_MemoryCloudPoint")
    if p:
        lines.append("| point of a cloud of 8,192 | %.1f B | |" % p["B_per_point"])
    lines.append("")
    return lines


def main():
    data = json.load(open(sys.argv[1]))
    counts = json.load(open(sys.argv[2])) if os.path.exists(sys.argv[2]) else {}
    out_path = sys.argv[3]
    ctx = data.get("context", {})
    rows = {}
    loads = {}
    for b in data["benchmarks"]:
        if b.get("run_type") == "aggregate":
            continue
        name = b["name"]
        m = re.match(r"BM_Scene/(\w)/(\w+)", name)
        if m:
            rows.setdefault(m.group(1), {})[m.group(2)] = b
        elif name.startswith("BM_Load"):
            loads[name.split("/")[0]] = b

    lines = [BEGIN, "## Against the driver's floor and SDL2 (generated by `make bench`)", ""]
    lines.append("Machine: %s, %s logical cores; GL: %s (%s); SDL2 renderer: %s; date: %s." % (
        cpu_model(), ctx.get("num_cpus", os.cpu_count()), ctx.get("gl_renderer", "?"),
        ctx.get("gl_version", "?"), ctx.get("sdl_renderer", "?"),
        datetime.datetime.now().strftime("%Y-%m-%d %H:%M")))
    lines.append("Load average at the start: %s." % ", ".join("%.2f" % x for x in ctx.get("load_avg", [])))
    try:
        started = datetime.datetime.fromisoformat(ctx["date"])
        minutes = (datetime.datetime.now(started.tzinfo) - started).total_seconds() / 60.0
        lines.append("From the start of the benchmarks to this report: %.0f minutes." % minutes)
    except (KeyError, ValueError):
        pass
    lines.append("")
    lines += goal_lines(data, counts)
    if counts.get("results"):
        lines += count_lines(counts)
    lines += load_count_lines(counts)
    lines += memory_lines(data)
    lines.append("### CPU time")
    lines.append("")
    lines.append("CPU time of the drawing thread per frame, median of the frames of one run "
                 "(the scene update up to the last GL call before the swap; `glFinish` and the "
                 "swap are outside the timed region). Ratio = Zephrin2D / SDL2. The machine is shared: "
                 "take the instruction counts above as the figure of record.")
    lines.append("")
    lines.append("| Scene | Zephrin2D | Colours on | Immediate | Floor | SDL2 | Zephrin2D / SDL2 | Target | Draw calls Z "
                 "/ I / floor / SDL2 | Bytes uploaded per frame Z / floor / SDL2 |")
    lines.append("|---|---|---|---|---|---|---|---|---|---|")
    for sid in sorted(rows):
        r = rows[sid]
        z, i, s, f = r.get("Zephrin2D"), r.get("Immediate"), r.get("SDL2"), r.get("Floor")
        zt = z["frame_us"] if z else None
        ct = r["Colors"]["frame_us"] if "Colors" in r else None
        it = i["frame_us"] if i else None
        ft = f["frame_us"] if f else None
        st = s["frame_us"] if s and not s.get("error_occurred") else None
        ratio = "%.3f" % (zt / st) if zt and st else "n/a"
        target = TARGETS.get(sid)
        verdict = ""
        if target is not None and zt and st:
            verdict = "≤ %.2f: %s" % (target, "met" if zt / st <= target else "**missed**")
        elif sid == "e":
            verdict = "no heap allocation per cel change (test)"
        lines.append("| %s | %s | %s | %s | %s | %s | %s | %s | %s / %s / %s / %s | %s / %s / %s |" % (
            NAMES.get(sid, sid), fmt_us(zt) if zt else "n/a", fmt_us(ct) if ct else "n/a", fmt_us(it) if it else "n/a",
            fmt_us(ft) if ft else "n/a", fmt_us(st) if st else "n/a", ratio, verdict,
            fmt_count(z.get("draws")) if z else "n/a", fmt_count(i.get("draws")) if i else "n/a",
            fmt_count(f.get("draws")) if f else "n/a", fmt_count(s.get("draws")) if s else "n/a",
            fmt_bytes(z.get("upload_B")) if z else "n/a", fmt_bytes(f.get("upload_B")) if f else "n/a",
            fmt_bytes(s.get("upload_B"), True) if s else "n/a"))
    lines.append("")
    if loads:
        lines.append("### Load times")
        lines.append("")
        lines.append("| Load | CPU time | |")
        lines.append("|---|---|---|")
        for key, label in (("BM_LoadSceneJson5000", "JSON scene of 5,000 billboards (`parseJsonFile`)"),
                           ("BM_LoadSceneDset5000", "the same scene from its dataset (`CSceneLoaderDset`)"),
                           ("BM_LoadActorJson500", "actor of 500 cels from JSON (`CActor2D::loadJson`)"),
                           ("BM_LoadActorDset500", "the same actor from its dataset (`CActor2D::loadDset`)")):
            b = loads.get(key)
            if not b:
                continue
            t = b["cpu_time"]
            unit = b.get("time_unit", "ns")
            scale = {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}[unit]
            lines.append("| %s | %s | |" % (label, "%.0f µs" % (t * scale)))
        for kind, label, json_bench, dset_bench in LOADS:
            j, d = loads.get(json_bench), loads.get(dset_bench)
            if j and d and d["cpu_time"] > 0:
                lines.append("")
                lines.append("Dataset against JSON for %s, in time: %.1f times faster (the goal is counted in "
                             "instructions, above)." % (label, j["cpu_time"] / d["cpu_time"]))
        lines.append("")
    lines.append(END)
    block = "\n".join(lines) + "\n"

    text = open(out_path).read() if os.path.exists(out_path) else "# Performance\n"
    if BEGIN in text and END in text:
        text = text[:text.index(BEGIN)] + block + text[text.index(END) + len(END) + 1:]
    else:
        text = text.rstrip("\n") + "\n\n" + block
    tmp = out_path + ".tmp"
    with open(tmp, "w") as f:
        f.write(text)
    os.replace(tmp, out_path)
    status = 0
    spread, label = largest_spread(counts)
    if spread is not None and spread > RUNS_TOLERANCE:
        print("perf_report.py: %s: two runs differ by %.4f %%, more than %.1f %%" %
              (label, 100 * spread, 100 * RUNS_TOLERANCE), file=sys.stderr)
        status = 1
    for failure in failed_counts(counts):
        print("perf_report.py: count failed: %s" % failure, file=sys.stderr)
        status = 1
    return status

if __name__ == "__main__":
    sys.exit(main())
