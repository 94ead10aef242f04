#!/usr/bin/env python3
"""Turns Zephrin2DBench's JSON output into the tables of docs/performance.md.

Usage: perf_report.py BENCH.json COUNTS.json docs/performance.md
BENCH.json is Zephrin2DBench's output, COUNTS.json count_instructions.py's.
Replaces the text between the peer-bench markers (appended when missing).
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
FLOOR_GOALS = {"a": 1.05, "d": 1.10, "g": 1.10}
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


def count_lines(counts):
    res = counts.get("results", {})
    lines = ["### Instructions per frame (figure of record)", ""]
    lines.append("callgrind, %d frames after 3 warm-up frames, the frame region only (the scene update up to the "
                 "last GL call before the swap), llvmpipe with `LP_NUM_THREADS=0`; mean of the runs (%d). "
                 "*Own* is the program and the library it drives (Zephrin2D; SDL2 for the SDL2 way; the "
                 "floor program itself), *driver* is GL, EGL and Mesa with the code it generates; what the "
                 "C and C++ runtimes execute is shared out in proportion to the calls each side makes into them."
                 % (counts.get("frames", 0), counts.get("runs", 0)))
    lines.append("")
    lines.append("| Scene | Zephrin2D own + driver | Floor own + driver | Zephrin2D / floor | Goal | Immediate | SDL2 "
                 "| Zephrin2D / SDL2 | Colours on / off | Runs differ by |")
    lines.append("|---|---|---|---|---|---|---|---|---|---|")
    spreads = []
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
        if known:
            spreads.append(spread)
        lines.append("| %s | %s | %s | %s | %s | %s | %s | %s | %s | %s |" % (
            NAMES.get(sid, sid), cell("zephrin2d"), cell("floor"), "%.3f" % ratio if ratio else "n/a", verdict,
            fmt_m(i) if i else "n/a", fmt_m(s) if s else "n/a", "%.3f" % (z / s) if z and s else "n/a",
            "%.4f" % (on / z) if on and z and sid != "g" else "n/a",
            "%.4f %%" % (100.0 * spread) if spread is not None else "one run"))
    lines.append("")
    if spreads:
        lines.append("Largest difference between two runs of the same scene and way: **%.4f %%**." %
                     (100.0 * max(spreads)))
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
    lines.append("")
    if counts:
        lines += count_lines(counts)
    lines += memory_lines(data)
    lines.append("### CPU time")
    lines.append("")
    lines.append("CPU time of the drawing thread per frame, median of the frames of one run "
                 "(the scene update up to the last GL call before the swap; `glFinish` and the "
                 "swap are outside the timed region). Ratio = Zephrin2D / SDL2. The machine is shared: "
                 "take the instruction counts above as the figure of record.")
    lines.append("")
    lines.append("| Scene | Zephrin2D | Immediate | Floor | SDL2 | Zephrin2D / SDL2 | Target | Draw calls Z / I / floor "
                 "/ SDL2 | Bytes uploaded per frame Z / floor / SDL2 |")
    lines.append("|---|---|---|---|---|---|---|---|---|")
    for sid in sorted(rows):
        r = rows[sid]
        z, i, s, f = r.get("Zephrin2D"), r.get("Immediate"), r.get("SDL2"), r.get("Floor")
        zt = z["frame_us"] if z else None
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
        lines.append("| %s | %s | %s | %s | %s | %s | %s | %s / %s / %s / %s | %s / %s / %s |" % (
            NAMES.get(sid, sid), fmt_us(zt) if zt else "n/a", fmt_us(it) if it else "n/a",
            fmt_us(ft) if ft else "n/a", fmt_us(st) if st else "n/a", ratio, verdict,
            fmt_count(z.get("draws")) if z else "n/a", fmt_count(i.get("draws")) if i else "n/a",
            fmt_count(f.get("draws")) if f else "n/a", fmt_count(s.get("draws")) if s else "n/a",
            fmt_bytes(z.get("upload_B")) if z else "n/a", fmt_bytes(f.get("upload_B")) if f else "n/a",
            fmt_bytes(s.get("upload_B"), True) if s else "n/a"))
    lines.append("")
    if loads:
        lines.append("### Load times")
        lines.append("")
        lines.append("| Load | Time | |")
        lines.append("|---|---|---|")
        for key, label in (("BM_LoadSceneJson5000", "JSON scene of 5,000 billboards (`parseJsonFile`)"),
                           ("BM_LoadActorJson500", "actor of 500 cels from JSON (`CActor2D::loadJson`)"),
                           ("BM_LoadActorDset500", "the same actor from its dataset (`CActor2D::loadDset`)")):
            b = loads.get(key)
            if not b:
                continue
            t = b["real_time"]
            unit = b.get("time_unit", "ns")
            scale = {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}[unit]
            lines.append("| %s | %s | |" % (label, "%.0f µs" % (t * scale)))
        j, d = loads.get("BM_LoadActorJson500"), loads.get("BM_LoadActorDset500")
        if j and d and d["real_time"] > 0:
            ratio = j["real_time"] / d["real_time"]
            lines.append("")
            lines.append("Dataset against JSON for the 500-cel actor: **%.1f times faster** (target at least 10: %s)." %
                         (ratio, "met" if ratio >= 10 else "**missed**"))
        lines.append("")
    lines.append(END)
    block = "\n".join(lines) + "\n"

    text = open(out_path).read() if os.path.exists(out_path) else "# Performance\n"
    if BEGIN in text and END in text:
        text = text[:text.index(BEGIN)] + block + text[text.index(END) + len(END) + 1:]
    else:
        text = text.rstrip("\n") + "\n\n" + block
    open(out_path, "w").write(text)


if __name__ == "__main__":
    main()
