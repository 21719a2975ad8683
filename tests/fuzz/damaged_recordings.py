#!/usr/bin/env python3
"""Damaged recordings (damaged_recordings.py ZANREC): a small synthetic survey is damaged in some two thousand
ways (cut at every frame boundary and inside frames, single bytes flipped,
frames swapped, lengths inflated and shrunk, payloads damaged behind a right
CRC), and zanrec's `info` and `render` run on every copy.

Every run must end by itself within the time limit, with exit code 0 or 1
(never a signal or a sanitizer's report) and at most one line on stderr. Where
the framing is damaged, the line names the first damaged frame, as the reader
of the format finds it, and `info` has listed every ping before it."""
import concurrent.futures
import os
import random
import struct
import subprocess
import sys
import tempfile
import zlib

TOOL = sys.argv[1]
LIMIT = 20  # seconds for one run
KEEP = os.environ.get('ZAN_DAMAGE_KEEP')  # a folder to keep the copies that fail in
FAILS = []


def frames(data):
    """(offset, kind, length) of each whole frame, and the first damaged
    frame's index by the framing rules (None when the file reads to its end)."""
    out, pos = [], 8
    while pos < len(data):
        if len(data) - pos < 12:
            return out, len(out)
        kind = data[pos]
        n, crc = struct.unpack('<II', data[pos + 4:pos + 12])
        if n > len(data) - pos - 12:
            return out, len(out)
        if zlib.crc32(data[pos + 12:pos + 12 + n]) & 0xFFFFFFFF != crc:
            return out, len(out)
        out.append((pos, kind, n))
        pos += 12 + n
    return out, None


def run(args):
    try:
        p = subprocess.run([TOOL, *args], capture_output=True, text=True, timeout=LIMIT,
                           errors='replace')
    except subprocess.TimeoutExpired:
        return None
    return p


def with_crc(data, pos):
    """The frame at pos with its CRC made right for its payload."""
    n = struct.unpack('<I', data[pos + 4:pos + 8])[0]
    crc = zlib.crc32(bytes(data[pos + 12:pos + 12 + n])) & 0xFFFFFFFF
    data[pos + 8:pos + 12] = struct.pack('<I', crc)


def copies(data):
    """(name, damaged bytes, framing exact): framing exact says that the
    framing rules alone decide the first damaged frame."""
    fr, _ = frames(data)
    rnd = random.Random(20240611)
    # Every ping frame and every eighth sensor frame are damaged inside.
    some = [i for i, f in enumerate(fr) if f[1] != 2 or i % 8 == 0]
    out = []
    # Cut at every frame boundary, and inside the headers and payloads.
    for i, (pos, _, n) in enumerate(fr):
        cuts = {pos, pos + 1, pos + 6, pos + 11, pos + 12, pos + 12 + n // 2, pos + 11 + n} if i in some else {pos}
        for cut in sorted(cuts):
            if cut < len(data):
                out.append((f'cut-{cut}', data[:cut], True))
    out.append(('cut-header', data[:5], True))
    # Single bytes flipped: payload bytes (CRC), and header bytes.
    for k in range(900):
        i = rnd.randrange(8, len(data))
        b = bytearray(data)
        b[i] ^= rnd.randrange(1, 256)
        in_header = any(pos <= i < pos + 4 for pos, _, _ in fr)
        # k in the name: the same byte may be drawn twice, and each copy
        # needs a file of its own while the runs go on side by side.
        out.append((f'flip-{i}-{k}', bytes(b), not in_header))
    # Adjacent frames swapped: still whole, so everything is listed.
    for i in range(0, len(fr) - 1, 8):
        a, b = fr[i], fr[i + 1]
        fa = data[a[0]:a[0] + 12 + a[2]]
        fb = data[b[0]:b[0] + 12 + b[2]]
        out.append((f'swap-{i}', data[:a[0]] + fb + fa + data[b[0] + 12 + b[2]:], True))
    # Lengths inflated and shrunk.
    for i in some:
        pos, _, n = fr[i]
        for m in (n + 1, n + 1000, len(data), 0xFFFFFFFF, max(n - 1, 0)):
            if m == n:
                continue
            b = bytearray(data)
            b[pos + 4:pos + 8] = struct.pack('<I', m)
            out.append((f'len-{i}-{m}', bytes(b), True))
    # Damage inside payloads behind a right CRC: the record loaders meet it.
    for k in range(700):
        pos, kind, n = fr[rnd.randrange(len(fr))]
        if n == 0:
            continue
        b = bytearray(data)
        for _ in range(rnd.choice((1, 1, 2, 4, 16))):
            j = pos + 12 + rnd.randrange(n)
            b[j] = rnd.randrange(256) if rnd.random() < 0.7 else rnd.choice((0, 0xFF, 0x7F, 0x80))
        with_crc(b, pos)
        out.append((f'payload-{pos}-{k}', bytes(b), False))
    return out


def check_one(tmp, name, data, exact, render):
    path = os.path.join(tmp, name + '.zrec')
    with open(path, 'wb') as f:
        f.write(data)
    fails = []
    whole, bad = frames(data)
    p = run(['info', path])
    if p is None:
        return [f'{name}: info did not finish within {LIMIT} s']
    err = p.stderr.strip().splitlines()
    if p.returncode not in (0, 1):  # 2 is a refused argument, not damage
        fails.append(f'{name}: info exited {p.returncode}: {p.stderr.strip()[-400:]}')
    if len(err) > 1:
        fails.append(f'{name}: info gave {len(err)} lines on stderr: {err[:3]}')
    if p.returncode == 1 and (len(err) != 1 or not err[0].startswith('zanrec: ')):
        fails.append(f'{name}: info failed without its one error line')
    if exact and data[:8] == DATA[:8] and len(data) >= 8:
        pings = sum(1 for _, kind, _ in whole if kind == 1)
        listed = sum(1 for l in p.stdout.split('\n\n')[0].splitlines() if l[:1].isdigit())
        if bad is None:
            if p.returncode != 0 or listed != pings:
                fails.append(f'{name}: a whole recording gave exit {p.returncode} and {listed} of {pings} pings')
        else:
            if p.returncode != 1 or not err or f'frame {bad} ' not in err[0]:
                fails.append(f'{name}: expected the error to name frame {bad}: {err}')
            if listed != pings:
                fails.append(f'{name}: {listed} pings listed, {pings} whole ones before the damage')
    if render:
        png = os.path.join(tmp, name + '.png')
        r = run(['render', path, '--ping', '0', '--out', png, '--size', '48'])
        if r is None:
            fails.append(f'{name}: render did not finish within {LIMIT} s')
        else:
            rerr = r.stderr.strip().splitlines()
            if r.returncode not in (0, 1, 2) or len(rerr) > 1:
                fails.append(f'{name}: render exited {r.returncode} with {rerr[:3]}')
        if os.path.exists(png):
            os.remove(png)
    if fails and KEEP:
        os.makedirs(KEEP, exist_ok=True)
        os.replace(path, os.path.join(KEEP, name + '.zrec'))
    else:
        os.remove(path)
    return fails


with tempfile.TemporaryDirectory() as tmp:
    rec = os.path.join(tmp, 'survey.zrec')
    p = run(['synth', '--out', rec, '--pings', '4', '--beams', '32', '--ranges', '64', '--seed', '11'])
    if p is None or p.returncode != 0:
        print('FAIL: synth did not write the recording')
        sys.exit(1)
    DATA = open(rec, 'rb').read()
    whole, bad = frames(DATA)
    assert bad is None and sum(1 for f in whole if f[1] == 1) == 4
    todo = copies(DATA)
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
        jobs = [pool.submit(check_one, tmp, name, data, exact, True)
                for name, data, exact in todo]
        for j in jobs:
            FAILS.extend(j.result())

kinds = {}
for name, _, _ in todo:
    kinds[name.split('-')[0]] = kinds.get(name.split('-')[0], 0) + 1
print(f'{len(todo)} damaged copies ({", ".join(f"{v} {k}" for k, v in kinds.items())}),'
      f' each also rendered')
if FAILS:
    for f in FAILS[:40]:
        print('FAIL:', f)
    print(f'{len(FAILS)} failures')
    sys.exit(1)
print('damaged recordings: all checks passed')
