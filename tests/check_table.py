#!/usr/bin/env python3
"""Runs zephrin2d-check on each file of the mistakes table of docs/check.md and
compares what it prints, line for line, with the table's diagnostics."""
import collections
import re
import subprocess
import sys

checker, doc, datadir = sys.argv[1:4]
row = re.compile(r'^\|\s*`([^`]+)`\s*\|\s*(?:`([^`]*)`)?\s*\|[^|]*\|\s*`([^`]+)`\s*\|\s*$')
runs = collections.OrderedDict()
for line in open(doc, encoding='utf-8'):
    m = row.match(line)
    if m:
        runs.setdefault((m.group(1), m.group(2) or ''), []).append(m.group(3))
failed = not runs
for (name, options), expected in runs.items():
    p = subprocess.run([checker] + options.split() + [name], cwd=datadir, capture_output=True, text=True)
    lines = p.stdout.splitlines()
    got = lines[:-1]
    status = 1 if any(': error: ' in e for e in expected) else 0
    if sorted(got) != sorted(expected) or p.returncode != status or not lines[-1].startswith('zephrin2d-check: '):
        failed = True
        print('%s %s: exit %d (expected %d)' % (name, options, p.returncode, status))
        for e in sorted(set(expected) - set(got)):
            print('  missing:    ' + e)
        for g in sorted(set(got) - set(expected)):
            print('  unexpected: ' + g)
        if p.stderr:
            print('  stderr: ' + p.stderr.strip())
print('%d files, %d diagnostics' % (len(runs), sum(len(e) for e in runs.values())))
sys.exit(1 if failed else 0)
