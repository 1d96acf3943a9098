#!/usr/bin/env python3
"""Writes resources/rkBaseQt/epsg_bbox.csv: the area of use of every EPSG geographic and
projected system in PROJ's database, one row per code.

Usage: scripts/gen_epsg_bbox.py [path/to/proj.db]   (default /usr/share/proj/proj.db)

Where PROJ lists several areas for one code, the first usage row (lowest rowid) wins, so that
the output does not depend on the order SQLite happens to return. Boxes crossing the
antimeridian keep PROJ's west > east longitudes as they are. Line ends are CR LF and values
carry 11 fractional digits, which is what the library's reader expects.
"""
import os
import sqlite3
import sys

db = sys.argv[1] if len(sys.argv) > 1 else "/usr/share/proj/proj.db"
out = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "resources", "rkBaseQt", "epsg_bbox.csv")

con = sqlite3.connect(db)
rows = con.execute(
    """SELECT u.object_code, e.south_lat, e.west_lon, e.north_lat, e.east_lon
       FROM usage u JOIN extent e ON u.extent_auth_name = e.auth_name AND u.extent_code = e.code
       WHERE u.object_auth_name = 'EPSG' AND u.object_table_name IN ('geodetic_crs', 'projected_crs')
         AND e.south_lat IS NOT NULL
       ORDER BY u.object_table_name, u.rowid""")
seen = set()
lines = ["EPSG,minLat,minLon,maxLat,maxLon"]
for code, south, west, north, east in rows:
    code = str(code)
    if not code.isdigit() or code in seen:
        continue
    seen.add(code)
    lines.append("%s,%.11f,%.11f,%.11f,%.11f" % (code, south, west, north, east))
with open(out, "w", newline="") as f:
    f.write("\r\n".join(lines) + "\r\n")
print("%d rows written to %s" % (len(lines) - 1, os.path.normpath(out)))
