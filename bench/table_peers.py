#!/usr/bin/env python3
"""Peers of the table benchmark: Python's csv module and pandas reading the data rows of the
same table file (the header block skipped), and pandas writing the same shape of table.

Usage: table_peers.py <file> <header-lines> <columns> <out-file>
Prints one JSON object: seconds and peak resident kilobytes of each step, each measured in a
fresh process so that the peaks do not mix."""
import json
import resource
import subprocess
import sys
import time


def child(step, path, skip, columns, out):
    start = time.perf_counter()
    if step == "csv":
        import csv
        rows = []
        with open(path, newline="") as f:
            reader = csv.reader(f)
            for _ in range(skip):
                next(reader)
            for row in reader:
                rows.append([float(v) if v else None for v in row])
        n = len(rows)
    elif step == "pandas_read":
        import pandas
        frame = pandas.read_csv(path, skiprows=skip, header=None)
        n = len(frame)
    else:  # pandas_write
        import numpy
        import pandas
        frame = pandas.DataFrame(numpy.arange(1_000_000 * columns, dtype=float).reshape(-1, columns) * 0.5)
        start = time.perf_counter()
        frame.to_csv(out, header=False, index=False, float_format="%.6f")
        n = len(frame)
    seconds = time.perf_counter() - start
    peak = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    print(json.dumps({"seconds": seconds, "peak_kb": peak, "rows": n}))


def main():
    if len(sys.argv) > 6 and sys.argv[1] == "--child":
        child(sys.argv[2], sys.argv[3], int(sys.argv[4]), int(sys.argv[5]), sys.argv[6])
        return
    path, skip, columns, out = sys.argv[1], sys.argv[2], sys.argv[3], sys.argv[4]
    result = {}
    for step in ("csv", "pandas_read", "pandas_write"):
        done = subprocess.run([sys.executable, __file__, "--child", step, path, skip, columns, out],
                              capture_output=True, text=True)
        try:
            result[step] = json.loads(done.stdout)
        except ValueError:
            result[step] = {"error": done.stderr.strip()[-300:]}
    print(json.dumps(result))


if __name__ == "__main__":
    main()
