#!/usr/bin/env python3
"""Peer check of the GMT colour-table reader: for every GMT table in a folder, sample a few
values with GMT itself (a tiny grid of those values painted by `gmt grdimage -A` to a raster)
and with `rktool colormap sample --gmt`, and print the largest difference per file in 0-255
units. Needs Debian's gmt and gdal-bin; not part of scripts/test.

Usage: gmt_peer_check.py <rktool> <folder of .cpt files>"""
import json
import os
import subprocess
import sys
import tempfile


def run(*args):
    return subprocess.run(args, capture_output=True, text=True)


def gmt_colours(cpt, values, work):
    xyz = os.path.join(work, "v.xyz")
    with open(xyz, "w") as f:
        for row in (0, 1):
            for i, v in enumerate(values):
                f.write(f"{i} {row} {v!r}\n")
    grid, tif = os.path.join(work, "v.nc"), os.path.join(work, "v.tif")
    for path in (grid, tif):
        if os.path.exists(path):
            os.remove(path)
    n = len(values) - 1
    if run("gmt", "xyz2grd", xyz, f"-R0/{n}/0/1", "-I1", f"-G{grid}").returncode != 0:
        return None
    if run("gmt", "grdimage", grid, f"-C{cpt}", f"-JX{n + 1}c/1c", f"-A{tif}").returncode != 0:
        return None
    bands = []
    for band in (1, 2, 3):
        out = run("gdal_translate", "-q", "-of", "XYZ", "-b", str(band), tif, "/vsistdout/")
        rows = [line.split() for line in out.stdout.splitlines() if line.strip()]
        bands.append([int(float(r[2])) for r in rows[: len(values)]])
    return list(zip(*bands))


def main():
    rktool, folder = sys.argv[1], sys.argv[2]
    print(f"{'file':44s} {'values':>6s} {'largest difference':>20s}")
    worst = 0
    with tempfile.TemporaryDirectory() as work:
        for name in sorted(os.listdir(folder)):
            if not name.endswith(".cpt"):
                continue
            cpt = os.path.join(folder, name)
            info = run(rktool, "colormap", "info", cpt, "--gmt", "--json")
            if info.returncode != 0:
                print(f"{name:44s} {'-':>6s} {'not read: ' + info.stderr.strip()[:40]:>20s}")
                continue
            table = json.loads(info.stdout)
            breaks = [b["value"] for b in table["breaks"]]
            lo, hi = min(breaks), max(breaks)
            if hi <= lo:
                continue
            if table.get("categorical"):
                values = breaks  # a categorical table has colours at its keys only
            else:
                # Interior values: GMT and the table agree on what the ends are.
                values = [lo + (hi - lo) * (k + 0.5) / 9 for k in range(9)]
            theirs = gmt_colours(cpt, values, work)
            if theirs is None:
                print(f"{name:44s} {'-':>6s} {'gmt failed':>20s}")
                continue
            ours = json.loads(run(rktool, "colormap", "sample", cpt, *map(repr, values), "--gmt", "--json").stdout)
            diff = 0
            for sample, (r, g, b) in zip(ours, theirs):
                c = sample["colour"]
                rgb = (int(c[1:3], 16), int(c[3:5], 16), int(c[5:7], 16))
                diff = max(diff, abs(rgb[0] - r), abs(rgb[1] - g), abs(rgb[2] - b))
            worst = max(worst, diff)
            note = "  (an HSV table)" if table.get("hsv_model") else ""
            print(f"{name:44s} {len(values):6d} {diff:20d}{note}")
    print(f"\nlargest difference over all files: {worst} (target: at most 1)")


if __name__ == "__main__":
    main()
