#!/usr/bin/env python3
"""Mutation testing of the libraries: how many small faults does the suite find?

A fixed, seeded sample of mutants of Zephrin2D/Src and Platform/src is built,
one at a time, into the shared libraries of a dedicated build directory; the
test programs load the mutated library and the suite runs with
`ctest --stop-on-failure`. A mutant is killed when a test fails, timed out when
the run passes its time limit, and survives when every test passes.
The same seed on the same sources gives the same mutants; --replay takes the
mutants of an earlier report, so that two versions of the tests meet the very
same faults.
"""
import argparse
import json
import os
import random
import re
import shutil
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SOURCES = ["Zephrin2D/Src", "Platform/src"]
LIBRARIES = ["Zephrin2D", "Zephrin2DPlatform"]
# Long runs that add nothing a mutant of the libraries could change the
# verdict of: the soak, the installed tree and the X11 viewer.
DEFAULT_EXCLUDE = "[Ss]oak|install|viewer"

SWAPS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==",
         "+": "-", "-": "+", "*": "/", "/": "*", "&&": "||", "||": "&&",
         "+=": "-=", "-=": "+=", "<<": ">>", ">>": "<<"}
BINARY = re.compile(r"(?<=\S) (<=|>=|==|!=|&&|\|\||\+=|-=|<<|>>|<|>|\+|-|\*|/) (?=\S)")
NUMBER = re.compile(r"(?<![\w.])(0x[0-9A-Fa-f]+|\d+)(?![\w.])")
CONDITION = re.compile(r"\b(if|while) \(")
CALL = re.compile(r"^(\s*)((?:[A-Za-z_]\w*(?:::|\.|->))*[A-Za-z_]\w*\(.*\));\s*$")
ASSIGN = re.compile(r"^(\s*)([A-Za-z_][\w.\->\[\]]*(?:\s*[-+|&]?=)\s*[^=].*);\s*$")
RETURN = re.compile(r"^(\s*)return (.+);\s*$")
KEYWORDS = ("if", "while", "for", "switch", "return", "sizeof", "delete", "case")


def code_mask(text):
    """Per character: True where the text is code, not a comment or a literal."""
    mask = [True] * len(text)
    i, n, in_block = 0, len(text), False
    while i < n:
        if in_block:
            end = text.find("*/", i)
            end = n if end < 0 else end + 2
            mask[i:end] = [False] * (end - i)
            i, in_block = end, False
        elif text.startswith("/*", i):
            in_block = True
        elif text.startswith("//", i):
            end = text.find("\n", i)
            end = n if end < 0 else end
            mask[i:end] = [False] * (end - i)
            i = end
        elif text[i] in "\"'":
            q, j = text[i], i + 1
            while j < n and text[j] != q and text[j] != "\n":
                j += 2 if text[j] == "\\" else 1
            mask[i:j + 1] = [False] * (j + 1 - i)
            i = j + 1
        else:
            i += 1
    return mask


def matching_paren(line, open_at):
    depth = 0
    for j in range(open_at, len(line)):
        depth += {"(": 1, ")": -1}.get(line[j], 0)
        if depth == 0:
            return j
    return -1


def line_mutants(line, mask):
    """(kind, new line, description) for one source line."""
    def code(a, b):
        return all(mask[a:b])
    out = []
    stripped = line.strip()
    if not stripped or stripped.startswith("#") or not any(mask):
        return out
    for m in BINARY.finditer(line):
        op = m.group(1)
        if not code(m.start(1), m.end(1)) or op not in SWAPS:
            continue
        if op in "<>" and re.search(r"\w<|template|static_cast|reinterpret_cast", line):
            continue
        if op == "*" and re.match(r"\s*(const\s+)?\w+ \* \w+[;,)=]", line[m.start() - 20 if m.start() > 20 else 0:]):
            continue
        kind = "relational" if op in ("<", "<=", ">", ">=", "==", "!=") else "logical" if op in ("&&", "||") else "arithmetic"
        new = line[:m.start(1)] + SWAPS[op] + line[m.end(1):]
        out.append((kind, new, "%s -> %s" % (op, SWAPS[op])))
    for m in NUMBER.finditer(line):
        if not code(m.start(), m.end()) or re.match(r"\s*(case|enum|static_assert)\b", line) or "DebugOut(" in line:
            continue
        value = int(m.group(1), 0)
        repl = value + 1 if value == 0 or m.start() % 2 == 0 else value - 1
        text = hex(repl) if m.group(1).startswith("0x") else str(repl)
        out.append(("constant", line[:m.start()] + text + line[m.end():], "%s -> %s" % (m.group(1), text)))
    for m in CONDITION.finditer(line):
        if not code(m.start(), m.end()):
            continue
        close = matching_paren(line, m.end() - 1)
        if close < 0:
            continue
        cond = line[m.end():close]
        new = line[:m.end()] + "!(" + cond + ")" + line[close:]
        out.append(("negation", new, "%s (%s) -> %s (!(...))" % (m.group(1), cond[:40], m.group(1))))
    if not code(0, len(line.rstrip())):
        return out
    m = RETURN.match(line)
    if m:
        value = m.group(2).strip()
        repl = {"true": "false", "false": "true"}.get(value, "{}")
        if value != "{}" and not NUMBER.fullmatch(value):
            out.append(("return", "%sreturn %s;\n" % (m.group(1), repl), "return %s -> return %s" % (value[:40], repl)))
        return out
    m = CALL.match(line)
    if m and m.group(2).split("(")[0].split("::")[-1] not in KEYWORDS and line.count("(") == line.count(")"):
        out.append(("call", "%s;\n" % m.group(1), "call removed: %s" % m.group(2)[:60]))
        return out
    m = ASSIGN.match(line)
    if m and not re.match(r"\s*(auto|const|static|return|unsigned|int|bool|char)\b", line) and line.count("(") == line.count(")"):
        out.append(("assignment", "%s;\n" % m.group(1), "assignment removed: %s" % m.group(2)[:60]))
    return out


def all_mutants():
    mutants = []
    for base in SOURCES:
        for dirpath, _, files in sorted(os.walk(os.path.join(ROOT, base))):
            for name in sorted(files):
                if not name.endswith(".cpp"):
                    continue
                path = os.path.join(dirpath, name)
                rel = os.path.relpath(path, ROOT)
                text = open(path, encoding="utf-8").read()
                mask = code_mask(text)
                offset = 0
                for number, line in enumerate(text.splitlines(keepends=True), 1):
                    for kind, new, desc in line_mutants(line, mask[offset:offset + len(line)]):
                        mutants.append({"file": rel, "line": number, "kind": kind,
                                        "original": line, "mutated": new, "change": desc})
                    offset += len(line)
    return mutants


def run_suite(build, args, log):
    cmd = ["ctest", "--stop-on-failure", "-j1", "--timeout", str(args.test_timeout)]
    if args.exclude:
        cmd += ["-E", args.exclude]
    proc = subprocess.Popen(cmd, cwd=build, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            start_new_session=True)
    try:
        out, _ = proc.communicate(timeout=args.timeout)
        log.write(out.decode(errors="replace")[-3000:])
        return "survived" if proc.returncode == 0 else "killed"
    except subprocess.TimeoutExpired:
        os.killpg(proc.pid, 9)
        proc.communicate()
        return "timed out"


def build_libraries(build, log):
    cmd = ["cmake", "--build", build, "-j1"]
    for target in LIBRARIES:
        cmd += ["--target", target]
    return subprocess.run(cmd, stdout=log, stderr=subprocess.STDOUT).returncode == 0


def apply(mutant, text):
    lines = text.splitlines(keepends=True)
    index = mutant["line"] - 1
    if index >= len(lines) or lines[index] != mutant["original"]:
        # The file moved on since the sample was drawn: find the same line.
        near = [i for i, l in enumerate(lines) if l == mutant["original"]]
        if not near:
            return None
        index = min(near, key=lambda i: abs(i - index))
    lines[index] = mutant["mutated"]
    return "".join(lines)


def write_report(path, args, results, started):
    counts = {k: sum(1 for r in results if r["status"] == k)
              for k in ("killed", "timed out", "survived", "did not build", "not found")}
    judged = counts["killed"] + counts["timed out"] + counts["survived"]
    score = 100.0 * (counts["killed"] + counts["timed out"]) / judged if judged else 0.0
    with open(path, "w") as f:
        f.write("# Mutation report\n\n")
        f.write("Seed %d, %d mutants of %s; tests excluded: %s; %.0f minutes.\n\n" % (
            args.seed, len(results), " and ".join(SOURCES), args.exclude or "none",
            (time.time() - started) / 60))
        f.write("| killed | timed out | survived | did not build | not found | score |\n")
        f.write("|---|---|---|---|---|---|\n")
        f.write("| %d | %d | %d | %d | %d | %.1f%% |\n\n" % (
            counts["killed"], counts["timed out"], counts["survived"], counts["did not build"],
            counts["not found"], score))
        f.write("Score: (killed + timed out) / (killed + timed out + survived).\n\n## Survivors\n\n")
        for r in results:
            if r["status"] == "survived":
                f.write("- %s:%d %s: %s\n" % (r["file"], r["line"], r["kind"], r["change"]))
        f.write("\n## All mutants\n\n")
        for r in results:
            f.write("- %s %s:%d %s: %s\n" % (r["status"], r["file"], r["line"], r["kind"], r["change"]))
    with open(os.path.splitext(path)[0] + ".json", "w") as f:
        json.dump(results, f, indent=1)
    return counts, score


def main():
    p = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    p.add_argument("--build", default=os.path.join(ROOT, "build-mutation"), help="dedicated build directory")
    p.add_argument("--seed", type=int, default=16)
    p.add_argument("--count", type=int, default=200)
    p.add_argument("--timeout", type=int, default=600, help="seconds for one suite run")
    p.add_argument("--test-timeout", type=int, default=60, help="seconds for one test")
    p.add_argument("--exclude", default=DEFAULT_EXCLUDE, help="ctest -E regex of tests left out")
    p.add_argument("--report", help="report file (default BUILD/mutation-report.md)")
    p.add_argument("--replay", help="JSON of an earlier report: run its mutants again")
    p.add_argument("--list", action="store_true", help="print the sample and stop")
    args = p.parse_args()
    build = os.path.abspath(args.build)
    report = args.report or os.path.join(build, "mutation-report.md")

    if args.replay:
        sample = [{k: m[k] for k in ("file", "line", "kind", "original", "mutated", "change")}
                  for m in json.load(open(args.replay))]
    else:
        candidates = all_mutants()
        # Run in the drawn order: a run cut short is still a random subsample.
        sample = random.Random(args.seed).sample(candidates, min(args.count, len(candidates)))
    os.makedirs(build, exist_ok=True)
    with open(os.path.join(build, "mutation-sample.json"), "w") as f:
        json.dump(sample, f, indent=1)
    if args.list:
        for m in sample:
            print("%s:%d %s: %s" % (m["file"], m["line"], m["kind"], m["change"]))
        return 0

    log = open(os.path.join(build, "mutation.log"), "w")
    launcher = ["-DCMAKE_%s_COMPILER_LAUNCHER=ccache" % c for c in ("C", "CXX")] if shutil.which("ccache") else []
    if not os.path.exists(os.path.join(build, "CMakeCache.txt")):
        subprocess.run(["cmake", "-S", ROOT, "-B", build, "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
                        "-DZEPHRIN2D_TESTS_PER_PROGRAM=ON"] + launcher,
                       stdout=log, stderr=subprocess.STDOUT, check=True)
    if subprocess.run(["cmake", "--build", build, "-j1"], stdout=log, stderr=subprocess.STDOUT).returncode:
        sys.exit("mutation: the unmutated tree does not build (see %s/mutation.log)" % build)
    if run_suite(build, args, log) != "survived":
        sys.exit("mutation: the suite fails before any mutation (see %s/mutation.log)" % build)

    started, results = time.time(), []
    for i, m in enumerate(sample, 1):
        path = os.path.join(ROOT, m["file"])
        original = open(path, encoding="utf-8").read()
        mutated = apply(m, original)
        status = "not found"
        if mutated is not None:
            log.write("\n== %s:%d %s\n" % (m["file"], m["line"], m["change"]))
            try:
                with open(path, "w", encoding="utf-8") as f:
                    f.write(mutated)
                status = run_suite(build, args, log) if build_libraries(build, log) else "did not build"
            finally:
                with open(path, "w", encoding="utf-8") as f:
                    f.write(original)
        results.append(dict(m, status=status))
        print("[%d/%d] %s %s:%d %s" % (i, len(sample), status, m["file"], m["line"], m["change"]), flush=True)
        write_report(report, args, results, started)
    build_libraries(build, log)
    counts, score = write_report(report, args, results, started)
    print("killed %d, timed out %d, survived %d, did not build %d, not found %d; score %.1f%%" % (
        counts["killed"], counts["timed out"], counts["survived"], counts["did not build"],
        counts["not found"], score))
    print("report: %s" % report)
    return 0


if __name__ == "__main__":
    sys.exit(main())
