#!/usr/bin/env python3
"""Writes workload w5 with xlwt, or reads such a file with xlrd and prints its totals.

Usage: peer_xls.py write OUT | read IN. Prints nothing where the module is not installed.
"""

import sys


def hashed(k):
    return k * 2654435761 % 4294967296


def number(k, column):
    h = hashed(k)
    return (float(h % 100000), h % 10000000 / 100, h % 1000000007 / 1000000, h / 7)[column % 4]


def repeated(k):
    entry = hashed(k) % 1000
    return f"Größe & Maß {entry:04d}" if entry % 10 == 0 else f"Category {entry:04d}"


def write(path):
    import xlwt
    book = xlwt.Workbook()
    sheet = book.add_sheet("Sheet1")
    for row in range(60000):
        for column in range(20):
            k = row * 20 + column
            if column < 14:
                value = number(k, column)
            elif column < 19:
                value = repeated(k)
            else:
                value = f"U{row:06d}-{column}-{hashed(k):08X}"
            sheet.write(row, column, value)
    book.save(path)
    print("written")


def read(path):
    import xlrd
    numbers = strings = characters = 0
    total = 0.0
    for sheet in xlrd.open_workbook(path).sheets():
        for row in range(sheet.nrows):
            for kind, value in zip(sheet.row_types(row), sheet.row_values(row)):
                if kind == xlrd.XL_CELL_NUMBER:
                    numbers += 1
                    total += value
                elif kind == xlrd.XL_CELL_TEXT:
                    strings += 1
                    characters += len(value)
    print(f"numbers {numbers} sum {total:.2f} strings {strings} characters {characters}")


try:
    {"write": write, "read": read}[sys.argv[1]](sys.argv[2])
except ImportError:
    sys.exit(0)
