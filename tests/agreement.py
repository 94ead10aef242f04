#!/usr/bin/env python3
"""Runs zephrin2d-check, zephrin2d-dset and zephrin2d-render on every file of
data/agree/agreement.txt and requires each tool's verdict to be the row's:
what check refuses, dset does not compile (and writes nothing for) and render
fails on; what check accepts, dset compiles and render draws."""
import os
import shutil
import subprocess
import sys

check, dset, render, source, scratch = sys.argv[1:6]
# A copy, so that dset writes its datasets beside their images, as it must.
data = os.path.join(scratch, 'data')
shutil.rmtree(scratch, ignore_errors=True)
for folder in ('check', 'agree'):
    shutil.copytree(os.path.join(source, folder), os.path.join(data, folder))
env = dict(os.environ, ZEPHRIN2D_DEBUG_LEVEL='1')


def verdict(cmd, cwd):
    p = subprocess.run(cmd, cwd=cwd, capture_output=True, text=True, env=env, timeout=60)
    return {0: 'ok', 1: 'error'}.get(p.returncode, 'exit %d' % p.returncode), p.stdout + p.stderr


failed = 0
rows = [l.split(None, 4) for l in open(os.path.join(data, 'agree', 'agreement.txt')) if l.strip() and l[0] != '#']
for n, (folder, name, role, expected, *rest) in enumerate(rows):
    cwd = os.path.join(data, folder)
    extra = rest[0].strip() if rest else ''
    once = extra[5:] if extra.startswith('once:') else None
    options = [] if once else extra.split()
    given = [name] if role in ('scene', 'any') else ['--' + role, name, 'render-clean.json']
    got = {'check': verdict([check] + options + given, cwd),
           'render': verdict([render, '--frames', '1'] + options + given, cwd)}
    if role in ('actor', 'costume', 'any') and name.endswith('.json') and not once:
        out = os.path.join(cwd, 'compiled-%d' % n)
        got['dset'] = verdict([dset] + options + [name, '-o', out], cwd)
        if got['dset'][0] != 'ok' and os.path.exists(out + '.dsetBin'):
            got['dset'] = ('wrote a dataset', got['dset'][1])
    problems = ['%s: %s' % (tool, v) for tool, (v, _) in got.items() if v != expected]
    if once and got['check'][1].count(once) != 1:
        problems.append('check says "%s" %d times' % (once, got['check'][1].count(once)))
    if problems:
        failed += 1
        print('%s/%s as %s: expected %s; %s' % (folder, name, role, expected, '; '.join(problems)))
        for tool, (_, text) in got.items():
            print('  %s said: %s' % (tool, text.strip().replace('\n', '\n    ')))
print('%d files, %d disagreements' % (len(rows), failed))
sys.exit(1 if failed or not rows else 0)
