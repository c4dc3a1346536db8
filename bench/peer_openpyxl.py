#!/usr/bin/env python3
"""Inserts rows and columns into the sheet of workload w13 with openpyxl and prints the times.

Prints nothing where openpyxl is not installed.
"""

import sys
import time

try:
    import openpyxl
except ImportError:
    sys.exit(0)

sheet = openpyxl.load_workbook(sys.argv[1]).worksheets[0]
for name, insert, place, count in (("rows", sheet.insert_rows, 50001, 1000),
                                   ("columns", sheet.insert_cols, 4, 10)):
    start = time.perf_counter()
    insert(place, count)
    print(f"{name} {(time.perf_counter() - start) * 1000:.1f} ms")
