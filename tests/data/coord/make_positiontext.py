#!/usr/bin/env python3
"""Reference data of tst_positiontext, made with GeographicLib's GeoConvert and PROJ
(cs2cs, cct).  Run from this directory: ./make_positiontext.py  (writes the files below).
Not run by the build; the outputs are committed.

positiontext_random.qz   100,000 positions drawn from a seeded generator that the test
                         repeats (splitmix64, seed SEED; latitude -90 + 180 u, longitude
                         -180 + 360 u, u = (x >> 11) 2^-53, latitude drawn first): per
                         position GeoConvert's UTM/UPS text to 9 decimals and its MGRS
                         band and square letters.  Compressed with zlib behind a 4-byte
                         big-endian length (what Qt's qUncompress reads).
positiontext_edges.txt   the same for positions on band, zone, UTM/UPS and datum edges.
positiontext_mgrs.txt    MGRS references of 0 to 5 digits per axis with GeoConvert's
                         reading of them (the centre of the square).
positiontext_grids.txt   SWEREF 99 TM, its twelve local zones, RT90 2.5 gon V (GRS 80
                         direct projection), the British and the Irish grid from PROJ;
                         for the national grids also the reference to the metre ("-"
                         outside the lettered squares) and PROJ's inverse of the centre
                         of that metre square.

The texts GeoConvert writes at lower precisions follow from the 9-decimal one: UTM by
rounding its digits half up, MGRS by truncating the integer metres.  This script runs
GeoConvert at every precision (-u -p 0..9, -m -p -5..0) and checks that for every row;
the few UTM values whose dropped digits are exactly a half and that GeoConvert rounds
down are listed in the row as <precision><e|n> tokens (e.g. "8n": at 8 decimals the
northing is one unit lower than the half-up rounding).
"""

import math
import random
import struct
import subprocess
import zlib

SEED = 0x4B76426173650D  # "KvBase" and the issue number
COUNT = 100000
MASK = (1 << 64) - 1


def splitmix64(state):
    state = (state + 0x9E3779B97F4A7C15) & MASK
    z = state
    z = ((z ^ (z >> 30)) * 0xBF58476D1CE4E5B9) & MASK
    z = ((z ^ (z >> 27)) * 0x94D049BB133111EB) & MASK
    return state, z ^ (z >> 31)


def random_positions(count):
    state = SEED
    out = []
    for _ in range(count):
        state, a = splitmix64(state)
        state, b = splitmix64(state)
        lat = -90.0 + 180.0 * ((a >> 11) * 2.0 ** -53)
        lon = -180.0 + 360.0 * ((b >> 11) * 2.0 ** -53)
        out.append((lat, lon))
    return out


def run(cmd, lines):
    out = subprocess.run(cmd, input="\n".join(lines) + "\n", capture_output=True, text=True, check=True).stdout
    return out.rstrip("\n").split("\n")


def text(value):
    """Shortest text of a double that reads back exactly, without an exponent (which
    GeoConvert does not read)."""
    t = repr(value)
    return t if "e" not in t else "%.20f" % value


def geoconvert(args, positions):
    return run(["GeoConvert"] + args, ["%s %s" % (text(lat), text(lon)) for lat, lon in positions])


def round_half_up(text, decimals):
    """Rounds a non-negative decimal text with 9 decimals to fewer, half up."""
    whole, frac = text.split(".")
    digits = whole + frac
    keep = len(whole) + decimals
    value = int(digits[:keep]) + (1 if digits[keep] >= "5" else 0)
    s = str(value).rjust(decimals + 1, "0")
    return s[:len(s) - decimals] + ("." + s[len(s) - decimals:] if decimals else "")


def utm_rows(positions):
    """GeoConvert UTM (9 decimals) and MGRS letters per position, with the corrections."""
    utm9 = geoconvert(["-u", "-p", "9"], positions)
    lower = {p: geoconvert(["-u", "-p", str(p)], positions) for p in range(9)}
    mgrs = {d: geoconvert(["-m", "-p", str(d - 5)], positions) for d in range(6)}
    rows = []
    for i, text in enumerate(utm9):
        zone, e9, n9 = text.split()
        corrections = []
        for p in range(9):
            actual = lower[p][i].split()
            assert actual[0] == zone, (i, text, lower[p][i])
            for axis, value, got in (("e", e9, actual[1]), ("n", n9, actual[2])):
                derived = round_half_up(value, p)
                if got == derived:
                    continue
                assert value.split(".")[1][p:] == "5" + "0" * (8 - p), (i, p, value, got)
                corrections.append("%d%s" % (p, axis))
        m5 = mgrs[5][i]
        letters = m5[len(zone) - 1:len(zone) + 2] if zone[0].isdigit() else m5[:3]
        head = (zone[:2] if zone[0].isdigit() else "") + letters
        for d in range(6):
            cut = 10 ** (5 - d)
            digits = "" if d == 0 else "%0*d%0*d" % (d, int(e9.split(".")[0]) % 100000 // cut,
                                                   d, int(n9.split(".")[0]) % 100000 // cut)
            assert mgrs[d][i] == head + digits, (i, d, mgrs[d][i], head + digits)
        rows.append(" ".join([text, letters] + corrections))
    return rows


def write_random():
    rows = utm_rows(random_positions(COUNT))
    header = ("# GeoConvert -u -p 9 and MGRS letters of %d positions of splitmix64 seed %#x; "
              "see make_positiontext.py\n" % (COUNT, SEED))
    raw = (header + "\n".join(rows) + "\n").encode("ascii")
    with open("positiontext_random.qz", "wb") as f:
        f.write(struct.pack(">I", len(raw)) + zlib.compress(raw, 9))


def edge_positions():
    lats = [-90, -89.5, -80.0000001, -80, -79.9999999, -72, -64, -56, -48, -40, -32, -24, -16, -8, -1e-9, 0,
            8, 16, 24, 32, 40, 48, 55.9999999, 56, 63.9999999, 64, 71.9999999, 72, 80, 83.9999999, 84, 89.5, 90]
    lons = [-180, -179.9999999, -177, -174, -6, -3, -0.0000001, 0, 0.0000001, 2.9999999, 3, 3.0000001, 6,
            8.9999999, 9, 12, 20.9999999, 21, 32.9999999, 33, 36, 41.9999999, 42, 45, 174, 177, 179.9999999, 180]
    return [(lat, lon) for lat in lats for lon in lons]


def write_edges():
    positions = edge_positions()
    rows = utm_rows(positions)
    with open("positiontext_edges.txt", "w") as f:
        f.write("# lat lon, GeoConvert -u -p 9, MGRS letters, corrections; see make_positiontext.py\n")
        for (lat, lon), row in zip(positions, rows):
            f.write("%s %s %s\n" % (text(lat), text(lon), row))


def write_mgrs():
    rnd = random.Random(SEED)
    positions = [(rnd.uniform(-90, 90), rnd.uniform(-180, 180)) for _ in range(3000)]
    positions += [(lat, lon) for lat, lon in edge_positions() if abs(lat) < 90]
    refs = []
    for i, ref in enumerate(geoconvert(["-m", "-p", "0"], positions)):
        d = i % 6
        split = len(ref) - 10
        refs.append(ref[:split] + ref[split:split + 5][:d] + ref[split + 5:][:d])
    back = run(["GeoConvert", "-p", "9"], refs)
    with open("positiontext_mgrs.txt", "w") as f:
        f.write("# MGRS reference, GeoConvert's reading (centre of the square) lat lon; see make_positiontext.py\n")
        for ref, ll in zip(refs, back):
            f.write("%s %s\n" % (ref, ll))


def cs2cs(src, dst, positions):
    lines = run(["cs2cs", "-f", "%.6f", src, dst], ["%.10f %.10f" % p for p in positions])
    return [tuple(float(v) for v in l.split()[:2]) for l in lines]


def cct(pipeline, positions):
    lines = run(["cct", "-d", "6"] + pipeline.split(), ["%.10f %.10f 0 0" % (lon, lat) for lat, lon in positions])
    return [tuple(float(v) for v in l.split()[:2]) for l in lines]


def uniform(rnd, n, lat0, lat1, lon0, lon1):
    return [(rnd.uniform(lat0, lat1), rnd.uniform(lon0, lon1)) for _ in range(n)]


# WGS-84 to the national grids: Helmert's inverse in the position-vector convention, as
# PROJ applies +towgs84, then the transverse Mercator of the grid.
BRITISH = ("+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad +step +proj=cart +ellps=WGS84 "
           "+step +inv +proj=helmert +x=446.448 +y=-125.157 +z=542.06 +rx=0.15 +ry=0.247 +rz=0.842 "
           "+s=-20.489 +convention=position_vector +step +inv +proj=cart +ellps=airy "
           "+step +proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy")
IRISH = ("+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad +step +proj=cart +ellps=WGS84 "
         "+step +inv +proj=helmert +x=482.5 +y=-130.6 +z=564.6 +rx=-1.042 +ry=-0.214 +rz=-0.631 +s=8.15 "
         "+convention=position_vector +step +inv +proj=cart +a=6377340.189 +rf=299.3249646 "
         "+step +proj=tmerc +lat_0=53.5 +lon_0=-8 +k=1.000035 +x_0=200000 +y_0=250000 "
         "+a=6377340.189 +rf=299.3249646")
RT90 = ("+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad +step +proj=tmerc +lat_0=0 "
        "+lon_0=15.806284529444445 +k=1.00000561024 +x_0=1500064.274 +y_0=-667.711 +ellps=GRS80")


def national_reference(e, n, british):
    """Letters and 5 + 5 digits of a national grid reference, None outside the squares.
    The 100 km squares are lettered A to Z without I, five to a row from the north-west;
    the British 500 km squares S, T (south), N, O and H, J (north) use the same lettering."""
    letters = "ABCDEFGHJKLMNOPQRSTUVWXYZ"
    if e < 0 or n < 0 or e >= (1000000 if british else 500000) or n >= (1500000 if british else 500000):
        return None
    e1, n1 = int(e // 100000), int(n // 100000)
    square = letters[(4 - n1 % 5) * 5 + e1 % 5]
    if british:
        square = {(0, 0): "S", (1, 0): "T", (0, 1): "N", (1, 1): "O", (0, 2): "H", (1, 2): "J"}[(e1 // 5, n1 // 5)] + square
    return "%s_%05d_%05d" % (square, int(e) % 100000, int(n) % 100000)


def national_rows(name, pipeline, positions):
    rows = []
    grid = cct(pipeline, positions)
    centres = [(math.floor(e) + 0.5, math.floor(n) + 0.5) for e, n in grid]
    lines = run(["cct", "-I", "-d", "12"] + pipeline.split(), ["%.4f %.4f 0 0" % c for c in centres])
    for (lat, lon), (e, n), line in zip(positions, grid, lines):
        ref = national_reference(e, n, name == "british")
        clon, clat = line.split()[:2]
        rows.append("%s %.10f %.10f %.4f %.4f %s %s %s" % (name, lat, lon, n, e, ref or "-", clat, clon))
    return rows


def write_grids():
    rnd = random.Random(SEED + 1)
    rows = []
    sweden = uniform(rnd, 300, 55.2, 69.1, 10.5, 24.2) + [(59.3293, 18.0686)]
    for (lat, lon), (n, e) in zip(sweden, cs2cs("EPSG:4619", "EPSG:3006", sweden)):
        rows.append("sweref_99_tm %.10f %.10f %.4f %.4f" % (lat, lon, n, e))
    for i, hhmm in enumerate(["1200", "1330", "1500", "1630", "1800", "1415", "1545", "1715", "1845", "2015",
                              "2145", "2315"]):
        meridian = int(hhmm[:2]) + int(hhmm[2:]) / 60.0
        pts = uniform(rnd, 40, 55.2, 69.1, meridian - 1.5, meridian + 1.5)
        for (lat, lon), (n, e) in zip(pts, cs2cs("EPSG:4619", "EPSG:%d" % (3007 + i), pts)):
            rows.append("sweref_99_%s %.10f %.10f %.4f %.4f" % (hhmm, lat, lon, n, e))
    for (lat, lon), (e, n) in zip(sweden, cct(RT90, sweden)):
        rows.append("rt90_2.5_gon_v %.10f %.10f %.4f %.4f" % (lat, lon, n, e))
    rows += national_rows("british", BRITISH, uniform(rnd, 400, 49.9, 60.9, -8.2, 1.8) + [(51.5074, -0.1278)])
    rows += national_rows("irish", IRISH, uniform(rnd, 300, 51.4, 55.4, -10.6, -5.4) + [(53.3498, -6.2603)])
    with open("positiontext_grids.txt", "w") as f:
        f.write("# grid lat lon northing easting (metres) [reference centreLat centreLon] -- cs2cs/cct, "
                "see make_positiontext.py\n")
        f.write("\n".join(rows) + "\n")


if __name__ == "__main__":
    import sys
    parts = sys.argv[1:] or ["random", "edges", "mgrs", "grids"]
    for part in parts:
        globals()["write_" + part]()
