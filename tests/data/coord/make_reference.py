#!/usr/bin/env python3
"""Reference values for tests/coord, computed with PROJ (cs2cs) and GeographicLib
(GeoConvert).  Run from this directory: ./make_reference.py  (writes *.txt here).
Not run by the build; the outputs are committed."""

import math
import random
import subprocess

random.seed(20261121)


def run(cmd, lines):
    out = subprocess.run(cmd, input="\n".join(lines) + "\n", capture_output=True, text=True, check=True).stdout
    return [l.split() for l in out.strip().split("\n")]


def cs2cs(src, dst, pairs):
    """pairs of (x, y) in the source CRS's axis order; returns (x, y) of the target."""
    rows = run(["cs2cs", "-f", "%.6f"] + src.split() + ["+to"] + dst.split(),
               ["%.12f %.12f" % p for p in pairs])
    return [(float(r[0]), float(r[1])) for r in rows]


def cs2cs_epsg(src, dst, pairs):
    rows = run(["cs2cs", "-f", "%.6f", src, dst], ["%.12f %.12f" % p for p in pairs])
    return [(float(r[0]), float(r[1])) for r in rows]


def cs2cs_epsg_deg(src, dst, pairs):
    rows = run(["cs2cs", "-f", "%.12f", src, dst], ["%.6f %.6f" % p for p in pairs])
    return [(float(r[0]), float(r[1])) for r in rows]


def utm_meridian(lat, lon):
    zone = int((lon + 180) // 6) + 1
    if 56 <= lat < 64 and 3 <= lon < 12:
        zone = 32
    if 72 <= lat < 84 and 0 <= lon < 42:
        zone = 31 if lon < 9 else 33 if lon < 21 else 35 if lon < 33 else 37
    return zone, zone * 6 - 183


def uniform(n, lat0, lat1, lon0, lon1):
    return [(round(random.uniform(lat0, lat1), 6), round(random.uniform(lon0, lon1), 6)) for _ in range(n)]


# --- tm_grids.txt: grid zoneMeridian lat lon easting northing (no offsets) -------------
tm = []
grids = [
    (1, 0, "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy",
     "+proj=longlat +ellps=airy", uniform(40, 49.9, 60.8, -7.5, 1.8)),
    (2, 0, "+proj=tmerc +lat_0=53.5 +lon_0=-8 +k=1.000035 +x_0=200000 +y_0=250000 +ellps=mod_airy",
     "+proj=longlat +ellps=mod_airy", uniform(30, 51.4, 55.4, -10.6, -5.4)),
]
# Grid 10's Clarke 1880 has b = 6356514.87 m, not PROJ's clrk80 (rf 293.4663).
for grid, ellps in ((3, "+ellps=intl"), (4, "+ellps=WGS84"), (10, "+a=6378249.145 +b=6356514.87"),
                    (11, "+ellps=clrk66")):
    count = 120 if grid == 4 else 20
    for lat, lon in uniform(count, -80, 84, -180, 180):
        zone, cm = utm_meridian(lat, lon)
        off = random.uniform(-3.5, 3.5) if grid == 4 and random.random() < 0.5 else lon - (((lon + 180) // 6) * 6 - 177)
        lon = round(cm + off, 6)
        if lon < -180 or lon > 180:
            continue
        grids.append((grid, cm, "+proj=tmerc +lat_0=0 +lon_0=%d +k=0.9996 +x_0=500000 +y_0=0 %s" % (cm, ellps),
                      "+proj=longlat %s" % ellps, [(lat, lon)]))
# Grids 13 to 18 as the library defines them: GRS 80's major axis with Bessel's minor
# axis and a latitude of origin of 0.003352810681182319 radians.
rt90 = [(11.30625, 1.000006, -667.282, 1500025.141), (13.55626667, 1.0000058, -667.13, 1500044.695),
        (15.80628333, 1.00000561024, -667.711, 1500064.274), (18.0563, 1.0000054, -668.844, 1500083.521),
        (20.30631667, 1.0000052, -670.706, 1500102.765), (22.55633333, 1.0000049, -672.557, 1500121.846)]
for i, (lon0, k, fn, fe) in enumerate(rt90):
    grids.append((13 + i, 0, "+proj=tmerc +lat_0=%.17g +lon_0=%.17g +k=%.17g +x_0=%.17g +y_0=%.17g +a=6378137 "
                  "+b=6356078.961955" % (math.degrees(0.003352810681182319), lon0, k, fe, fn),
                  "+proj=longlat +a=6378137 +b=6356078.961955", uniform(5, 55.2, 69.1, lon0 - 2.5, lon0 + 2.5)))
for grid, cm, proj, geo, pts in grids:
    res = cs2cs(geo, proj, [(lon, lat) for lat, lon in pts])
    for (lat, lon), (e, n) in zip(pts, res):
        tm.append("%d %d %.6f %.6f %.4f %.4f" % (grid, cm, lat, lon, e, n))
with open("tm_grids.txt", "w") as f:
    f.write("# grid zoneMeridian lat lon easting northing -- cs2cs +proj=tmerc, see make_reference.py\n")
    f.write("\n".join(tm) + "\n")

# --- utm.txt: ellipsoid lat lon zone easting northing (LLtoUTM) ------------------------
utm = []
# WGS-84 itself for 23; the table's rounded radius and e^2 for the others.
for ellipsoid, ellps, n in ((23, "+ellps=WGS84", 80), (14, "+a=6378388 +es=0.00672267", 10),
                            (5, "+a=6378206 +es=0.006768658", 10)):
    pts = uniform(n, -79.9, 83.9, -179.9, 179.9)
    pts += [(60.5, 5.5), (59.9, 3.1), (75.0, 10.0), (78.2, 20.9), (73.0, 35.0), (-33.9, 18.4), (0.5, 0.5)]
    for lat, lon in pts:
        zone, cm = utm_meridian(lat, lon)
        south = " +south" if lat < 0 else ""
        (e, nn), = cs2cs("+proj=longlat %s" % ellps, "+proj=utm +zone=%d %s%s" % (zone, ellps, south), [(lon, lat)])
        utm.append("%d %.6f %.6f %d %.4f %.4f" % (ellipsoid, lat, lon, zone, e, nn))
with open("utm.txt", "w") as f:
    f.write("# ellipsoid lat lon zone easting northing -- cs2cs +proj=utm, see make_reference.py\n")
    f.write("\n".join(utm) + "\n")

# --- mgrs.txt: lat lon mgrs(mm, of the nudged position) cornerLat cornerLon -----------
# The library nudges every position by 1e-6 degrees north and 1e-5 degrees east before
# it writes a reference; the reference here is for that nudged position, in millimetres.
pts = uniform(60, -79.9, 83.9, -179.9, 179.9)
pts += [(60.0, 5.0), (75.0, 10.0), (83.99, 20.0), (-79.99, -60.0), (0.0, 0.0), (-0.3, 33.3), (51.5, -0.12)]
nudged = ["%.12f %.12f" % ((lat * 1e6 + 1) / 1e6, (lon * 1e5 + 1) / 1e5) for lat, lon in pts]
refs = [r[0] for r in run(["GeoConvert", "-m", "-p", "3"], nudged)]
# South-west corners of the metre squares of those references (GeoConvert reads a
# reference as the centre of its square, so the millimetre digits are given as 000).
corners = []
for r in refs:
    head, digits = r[:-16], r[-16:]
    corners.append(head + digits[:5] + "000" + digits[8:13] + "000")
cornerll = run(["GeoConvert", "-p", "9"], corners)
with open("mgrs.txt", "w") as f:
    f.write("# lat lon mgrs(mm, nudged position) cornerLat cornerLon -- GeoConvert, see make_reference.py\n")
    for (lat, lon), r, c in zip(pts, refs, cornerll):
        f.write("%.6f %.6f %s %s %s\n" % (lat, lon, r, c[0], c[1]))

# --- swedish.txt: set epsg lat lon x y -------------------------------------------------
sets = [("sweref_99_tm", "EPSG:4619", "EPSG:3006")]
for i, name in enumerate(["rt90_7.5_gon_v", "rt90_5.0_gon_v", "rt90_2.5_gon_v", "rt90_0.0_gon_v",
                          "rt90_2.5_gon_o", "rt90_5.0_gon_o"]):
    sets.append((name, "EPSG:4619", "EPSG:%d" % (3845 + i)))
    sets.append(("bessel_" + name, "EPSG:4124", "EPSG:%d" % (3019 + i)))
for i, hhmm in enumerate(["1200", "1330", "1500", "1630", "1800", "1415", "1545", "1715", "1845", "2015",
                          "2145", "2315"]):
    sets.append(("sweref_99_" + hhmm, "EPSG:4619", "EPSG:%d" % (3007 + i)))
sw = []
for name, geo, proj in sets:
    pts = uniform(8, 55.2, 69.1, 10.5, 24.2) + [(59.3293, 18.0686)]
    res = cs2cs_epsg(geo, proj, pts)
    for (lat, lon), (x, y) in zip(pts, res):
        sw.append("%s %s %.6f %.6f %.4f %.4f" % (name, proj, lat, lon, x, y))
with open("swedish.txt", "w") as f:
    f.write("# set epsg lat lon x(northing) y(easting) -- cs2cs, see make_reference.py\n")
    f.write("\n".join(sw) + "\n")

# --- datum.txt: datum lat lon wgs84Lat wgs84Lon ---------------------------------------
datums = [
    (1, "+proj=longlat +ellps=airy +towgs84=446.448,-125.157,542.06,0.15,0.247,0.842,-20.489", (49.9, 60.8, -7.5, 1.8)),
    (2, "+proj=longlat +a=6377340.189 +rf=299.3249646 +towgs84=482.5,-130.6,564.6,-1.042,-0.214,-0.631,8.15",
     (51.4, 55.4, -10.6, -5.4)),
    (5, "+proj=longlat +ellps=bessel +towgs84=414.1,41.3,603.1,-0.855,2.141,-7.023,0", (55.2, 69.1, 10.5, 24.2)),
]
dt = []
for number, geo, box in datums:
    pts = uniform(8, *box)
    rows = run(["cs2cs", "-f", "%.10f"] + geo.split() + ["+to", "+proj=longlat", "+datum=WGS84"],
               ["%.6f %.6f 0" % (lon, lat) for lat, lon in pts])
    for (lat, lon), r in zip(pts, rows):
        dt.append("%d %.6f %.6f %s %s" % (number, lat, lon, r[1], r[0]))
with open("datum.txt", "w") as f:
    f.write("# datum lat lon wgs84Lat wgs84Lon -- cs2cs +towgs84, see make_reference.py\n")
    f.write("\n".join(dt) + "\n")
