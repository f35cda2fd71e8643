#!/usr/bin/env python3
"""Drafts the 32x32 icon sheet from the 16x16 one with the Scale2x pixel-art rule, which keeps
edges sharp and rounds diagonals. Run when an icon is added; the 32x32 sheet is a source of
its own after that, to be refined by hand where the doubled pixels look coarse.

usage: scale2x.py icons16.txt > icons32.txt
"""
import sys


def scale2x(rows):
    h, w = len(rows), len(rows[0])

    def at(x, y):
        return rows[min(max(y, 0), h - 1)][min(max(x, 0), w - 1)]

    out = [[""] * (w * 2) for _ in range(h * 2)]
    for y in range(h):
        for x in range(w):
            p, a, b, c, d = at(x, y), at(x, y - 1), at(x + 1, y), at(x - 1, y), at(x, y + 1)
            e0 = e1 = e2 = e3 = p
            if c == a and c != d and a != b:
                e0 = a
            if a == b and a != c and b != d:
                e1 = b
            if d == c and d != b and c != a:
                e2 = c
            if b == d and b != a and d != c:
                e3 = d
            out[2 * y][2 * x], out[2 * y][2 * x + 1] = e0, e1
            out[2 * y + 1][2 * x], out[2 * y + 1][2 * x + 1] = e2, e3
    return ["".join(r) for r in out]


def main(path):
    rows, name = [], None
    for line in open(path, encoding="ascii"):
        line = line.rstrip("\n")
        if line.startswith("size "):
            print("size 32")
        elif line.startswith("icon "):
            name, rows = line, []
        elif name and line and not line.startswith(("#", "colour")):
            rows.append(line)
            if len(rows) == 16:
                print(name)
                print("\n".join(scale2x(rows)))
                name = None
        elif not name:
            print(line.replace("16x16", "32x32"))


if __name__ == "__main__":
    main(sys.argv[1])
