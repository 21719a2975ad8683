#!/usr/bin/env python3
"""End-to-end checks of zanrec: a small synthetic survey is written, listed,
drawn and damaged, and the tool's answers are checked."""
import os
import struct
import subprocess
import sys
import tempfile
import zlib

TOOL = sys.argv[1]
FAILS = []


def run(*args, ok=True):
    p = subprocess.run([TOOL, *args], capture_output=True, text=True, timeout=120)
    if ok and p.returncode != 0:
        FAILS.append(f"{' '.join(args)} exited {p.returncode}: {p.stderr.strip()}")
    return p


def check(cond, what):
    if not cond:
        FAILS.append(what)


def read_png(path):
    """Width, height and RGBA rows of an 8-bit RGBA PNG (the tool's own kind)."""
    data = open(path, 'rb').read()
    assert data[:8] == b'\x89PNG\r\n\x1a\n', 'not a PNG'
    pos, idat, w, h = 8, b'', 0, 0
    while pos < len(data):
        n, kind = struct.unpack('>I4s', data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + n]
        if kind == b'IHDR':
            w, h, depth, ctype = struct.unpack('>IIBB', body[:10])
            assert depth == 8 and ctype == 6, 'expected 8-bit RGBA'
        elif kind == b'IDAT':
            idat += body
        pos += 12 + n
    raw = zlib.decompress(idat)
    stride, rows, prev = w * 4, [], bytearray(w * 4)
    for y in range(h):
        f = raw[y * (stride + 1)]
        line = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a = line[i - 4] if i >= 4 else 0
            b = prev[i]
            c = prev[i - 4] if i >= 4 else 0
            if f == 1: line[i] = (line[i] + a) & 255
            elif f == 2: line[i] = (line[i] + b) & 255
            elif f == 3: line[i] = (line[i] + (a + b) // 2) & 255
            elif f == 4:
                p = a + b - c
                pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                pr = a if pa <= pb and pa <= pc else (b if pb <= pc else c)
                line[i] = (line[i] + pr) & 255
        rows.append(bytes(line))
        prev = line
    return w, h, rows


def pixel(rows, x, y):
    return tuple(rows[y][4 * x:4 * x + 4])


def frames(path):
    """Offsets and lengths of the frames of a recording."""
    data = open(path, 'rb').read()
    out, pos = [], 8
    while pos + 12 <= len(data):
        n = struct.unpack('<I', data[pos + 4:pos + 8])[0]
        out.append((pos, data[pos], n))
        pos += 12 + n
    return out


with tempfile.TemporaryDirectory() as tmp:
    rec = os.path.join(tmp, 'survey.zrec')
    run('synth', '--out', rec, '--pings', '6', '--beams', '64', '--ranges', '300', '--seed', '7')
    check(os.path.getsize(rec) > 1000, 'recording is too small')

    # Deterministic for a seed.
    rec2 = os.path.join(tmp, 'again.zrec')
    run('synth', '--out', rec2, '--pings', '6', '--beams', '64', '--ranges', '300', '--seed', '7')
    check(open(rec, 'rb').read() == open(rec2, 'rb').read(), 'synth is not deterministic for a seed')

    info = run('info', rec)
    lines = [l for l in info.stdout.splitlines() if l[:1].isdigit()]
    check(len(lines) == 6, f'info lists {len(lines)} pings, not 6')
    check(all('64x300' in l for l in lines), 'info does not show 64x300 for every ping')
    check('Geo Position' in info.stdout or 'Position' in info.stdout, 'info does not list the sensor records')

    dump = run('dump', rec, '--ping', '2')
    check('m_numBeams' in dump.stdout and 'm_sosAvg' in dump.stdout and 'm_nState' in dump.stdout,
          'dump lacks fields')
    bad = run('dump', rec, '--ping', '99', ok=False)
    check(bad.returncode != 0 and 'out of range' in bad.stderr, 'dump of a missing ping is not refused clearly')

    png = os.path.join(tmp, 'fan.png')
    run('render', rec, '--ping', '5', '--out', png, '--size', '200', '--grid', '--overlays')
    w, h, rows = read_png(png)
    check((w, h) == (200, 200), f'picture is {w}x{h}, not 200x200')
    # The fan opens upward from the bottom centre: the corners are background,
    # and the fan's middle, well inside the range, is drawn.
    bg = pixel(rows, 2, 2)
    check(pixel(rows, w - 3, 2) == bg, 'top right corner is not background')
    inside = [pixel(rows, w // 2 + dx, h // 2 + dy) for dx in range(-10, 11, 5) for dy in range(-10, 11, 5)]
    check(sum(p != bg for p in inside) >= len(inside) // 2, 'the fan is not drawn in the middle of the picture')
    # Outside the fan's 60-degree edge, low on the left, stays background.
    check(pixel(rows, 12, h - 30) == bg, 'the fan spills past its edge')

    mos = os.path.join(tmp, 'mosaic.png')
    run('mosaic', rec, '--out', mos, '--size', '160')
    mw, mh, _ = read_png(mos)
    check((mw, mh) == (160, 160), 'mosaic has the wrong size')

    # Damage: cut the file inside the fourth ping frame.
    fr = frames(rec)
    pings = [f for f in fr if f[1] == 1]
    cut = os.path.join(tmp, 'cut.zrec')
    data = open(rec, 'rb').read()
    open(cut, 'wb').write(data[:pings[3][0] + 40])
    p = run('info', cut, ok=False)
    check(p.returncode != 0, 'info of a cut recording succeeds')
    idx = fr.index(pings[3])
    check(f'frame {idx}' in p.stderr, f'info does not name frame {idx}: {p.stderr.strip()}')
    check(len([l for l in p.stdout.splitlines() if l[:1].isdigit()]) == 3, 'the three whole pings are not listed')

    # Damage: a flipped byte inside the second ping frame fails its CRC.
    flip = bytearray(data)
    flip[pings[1][0] + 100] ^= 0x5A
    fl = os.path.join(tmp, 'flip.zrec')
    open(fl, 'wb').write(flip)
    p = run('info', fl, ok=False)
    check(p.returncode != 0 and 'CRC' in p.stderr, 'a flipped byte is not reported as a CRC mismatch')
    check(len([l for l in p.stdout.splitlines() if l[:1].isdigit()]) == 1, 'the whole ping before it is not listed')

    # Not a recording, and a missing file: one line, no crash.
    junk = os.path.join(tmp, 'junk.bin')
    open(junk, 'wb').write(b'hello world, not a recording')
    for f in (junk, os.path.join(tmp, 'missing.zrec')):
        p = run('info', f, ok=False)
        check(p.returncode not in (0,) and p.returncode > 0, f'info {f} did not fail cleanly ({p.returncode})')
        check(len(p.stderr.strip().splitlines()) == 1, f'info {f} did not give one error line')

    # Sensors: every type listed by info with its rate, one type printed,
    # every type interpolated at a ping's time.
    check('Heading' in info.stdout or 'Gyro' in info.stdout, 'info does not list headings')
    sens = run('sensors', rec, '--type', '1')
    check(len(sens.stdout.splitlines()) >= 10 and '\u00b0' in sens.stdout, 'sensors --type 1 prints no positions')
    at = run('sensors', rec, '--at', '1767225600.5')
    check(len(at.stdout.splitlines()) >= 5, 'sensors --at does not interpolate every type')

    # The frame a ping takes from the sensor records follows the survey's own
    # track: the synthesis moves 2 m/s on a course of 30 degrees with a slow
    # weave, and the head stands 1 m ahead of the reference point.
    import math
    for k in (0, 3, 5):
        d = run('dump', rec, '--ping', str(k)).stdout
        line = [l for l in d.splitlines() if l.strip().startswith('sonar')]
        check(len(line) == 1, f'dump --ping {k} shows no frame from the sensor records')
        if not line:
            continue
        f = line[0].split()
        x, y, hdg = float(f[2]), float(f[3]), float(f[6])
        dt = k / 5.0
        h = math.radians(30.0)
        weave = 0.8 * math.sin(dt / 6.0)
        hh = h + 0.02 * math.cos(dt / 6.0)
        ex = 2.0 * dt * math.sin(h) + weave * math.cos(h) + math.sin(hh)
        ey = 2.0 * dt * math.cos(h) - weave * math.sin(h) + math.cos(hh)
        err = math.hypot(x - ex, y - ey)
        check(err < 0.05, f'ping {k}: frame {x:.3f},{y:.3f} is {err:.3f} m off the track {ex:.3f},{ey:.3f}')
        check(abs(hdg - hh) < 0.002, f'ping {k}: heading {hdg:.4f} rad differs from the track {hh:.4f}')

    # A sensor frame whose CRC is right but whose record is cut short is
    # reported, and every ping is still listed.
    sensor = [f for f in fr if f[1] == 2][5]
    bad = bytearray(data)
    start, n = sensor[0] + 12, sensor[2]
    payload = bytes(bad[start:start + n - 3])
    tail = bytes(bad[start + n:])
    hdr = bytes(bad[sensor[0]:sensor[0] + 4]) + struct.pack('<II', len(payload), zlib.crc32(payload) & 0xFFFFFFFF)
    bad = bytes(bad[:sensor[0]]) + hdr + payload + tail
    sb = os.path.join(tmp, 'sensor.zrec')
    open(sb, 'wb').write(bad)
    p = run('info', sb, ok=False)
    check(p.returncode != 0 and 'sensor' in p.stderr and f'frame {fr.index(sensor)}' in p.stderr,
          f'a cut sensor record is not reported by its frame: {p.stderr.strip()}')
    check(len([l for l in p.stdout.splitlines() if l[:1].isdigit()]) == 6, 'the pings are not all listed')

    # Tide: synth writes high and low waters beside the recording; info shows
    # the tide at each ping by the half-sine rule between the two waters
    # round it, computed here from the file itself.
    tid = os.path.join(tmp, 'survey.tid')
    check(os.path.exists(tid), 'synth wrote no survey.tid beside the recording')
    import calendar
    import time as _time
    waters = []
    for line in open(tid).read().splitlines()[1:]:
        day, hm, hgt = line.replace(',', ' ').split()
        waters.append((calendar.timegm(_time.strptime(day + ' ' + hm, '%d/%m/%Y %H:%M:%S')), float(hgt)))
    check(len(waters) >= 4, f'the tide file holds {len(waters)} waters')

    def tide_at(t):
        for (t0, h0), (t1, h1) in zip(waters, waters[1:]):
            if t0 <= t < t1:
                return h0 + (h1 - h0) * (math.sin(-math.pi / 2 + (t - t0) / (t1 - t0) * math.pi) + 1) / 2
        return None

    ti = run('info', rec, '--tide', tid)
    check('tide m' in ti.stdout, 'info --tide shows no tide column')
    rows = [l.split() for l in ti.stdout.splitlines() if l[:1].isdigit() and len(l.split()) >= 10]
    check(len(rows) == 6, f'info --tide lists {len(rows)} pings with a tide')
    for r in rows:
        t = calendar.timegm(_time.strptime(r[1] + ' ' + r[2][:8], '%Y-%m-%d %H:%M:%S')) + float(r[2][8:] or 0)
        want = tide_at(t)
        check(want is not None and abs(float(r[-1]) - want) < 0.0015,
              f'ping {r[0]}: tide {r[-1]} m, the file gives {want}')
    # A table that misses the survey: every ping shows no tide, and render
    # still draws, saying why the depths are not reduced.
    old_tide = os.path.join(tmp, 'old.csv')
    open(old_tide, 'w').write('1/6/20,10:00,1.5\n1/6/20 16:12:30 3.9\n')
    p = run('info', rec, '--tide', old_tide)
    check(all(l.split()[-1] == '-' for l in p.stdout.splitlines() if l[:1].isdigit() and len(l.split()) >= 10),
          'a tide table of 2020 gives a tide in 2026')
    p = run('render', rec, '--ping', '1', '--out', os.path.join(tmp, 'old.png'), '--size', '64', '--tide', old_tide,
            '--depth', '0:20')
    check('no tide' in p.stderr, f'render does not say the table has no tide: {p.stderr.strip()}')
    for bad_tide in (os.path.join(tmp, 'missing.tid'), junk):
        p = run('info', rec, '--tide', bad_tide, ok=False)
        check(p.returncode == 2 and len(p.stderr.strip().splitlines()) == 1 and 'tide' in p.stderr,
              f'a bad tide file {bad_tide} is not refused in one line: {p.stderr.strip()}')
    # The tide moves the depth colours: a table standing 5 m higher draws a
    # different picture from the same ping and span.
    high = os.path.join(tmp, 'high.tid')
    with open(high, 'w') as f:
        for line in open(tid).read().splitlines()[1:]:
            when, hgt = line.rsplit(',', 1)
            f.write(f'{when},{float(hgt) + 5.0:.2f}\n')
    pics = {}
    for name, t in (('plain', None), ('tide', tid), ('high', high)):
        out = os.path.join(tmp, f'depth-{name}.png')
        run('render', rec, '--ping', '3', '--out', out, '--size', '120', '--depth', '0:20',
            *(['--tide', t] if t else []))
        pics[name] = open(out, 'rb').read()
    check(pics['plain'] != pics['tide'] != pics['high'], 'the tide does not change the depth colours')
    m1, m2 = os.path.join(tmp, 'md1.png'), os.path.join(tmp, 'md2.png')
    run('mosaic', rec, '--out', m1, '--size', '100', '--depth', '0:20')
    run('mosaic', rec, '--out', m2, '--size', '100', '--depth', '0:20', '--tide', tid)
    check(open(m1, 'rb').read() != open(m2, 'rb').read(), 'the tide does not change the mosaic by depth')

    # The panels' pictures.
    pd = os.path.join(tmp, 'panels')
    p = run('panels', rec, '--out', pd, '--tide', tid)
    for name in ('sensors-list.png', 'sensors-grid.png', 'sos.png', 'tide.png', 'tide-select.png', 'geodesy.png'):
        check(os.path.exists(os.path.join(pd, name)), f'panels wrote no {name}')
        if os.path.exists(os.path.join(pd, name)):
            pw, ph, prow = read_png(os.path.join(pd, name))
            check(len(set(prow[ph // 2])) > 1, f'{name} is blank')
    check(f'{len(waters)} tide points' in p.stdout, 'the tide panel does not hold the file\'s points')
    check('projections' in p.stdout and ' 0 spheroids' not in p.stdout, 'the geodetic panel has no database')

if FAILS:
    for f in FAILS:
        print('FAIL:', f)
    print(f'0 passed, {len(FAILS)} failed')
    sys.exit(1)
print('tool end to end: all checks passed')
