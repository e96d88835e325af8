#!/usr/bin/env python3
"""Writes a generated sheet for the whole-process timings.

Columns: X, a skewed weight to one decimal (so that values repeat and the dot
diagram's stacks grow tall); time, a survival time to one decimal drawn from
an exponential per group; censored, 1 for a censored time (about a quarter);
group, one of four treatment names. Seeded, so every run writes the same
sheet. Usage: make_sheet.py ROWS FILE
"""
import random
import sys


def main() -> int:
    if len(sys.argv) != 3:
        print("usage: make_sheet.py ROWS FILE", file=sys.stderr)
        return 2
    rows = int(sys.argv[1])
    random.seed(2842)
    groups = ["A", "B", "C", "D"]
    scale = {"A": 10.0, "B": 12.0, "C": 15.0, "D": 9.0}
    with open(sys.argv[2], "w", encoding="ascii") as out:
        out.write("X,time,censored,group\n")
        lines = []
        for _ in range(rows):
            x = round(random.lognormvariate(5.15, 0.17), 1)
            g = groups[random.randrange(4)]
            t = max(0.1, round(random.expovariate(1.0 / scale[g]), 1))
            c = 1 if random.random() < 0.25 else 0
            lines.append(f"{x},{t},{c},{g}\n")
            if len(lines) >= 100000:
                out.writelines(lines)
                lines = []
        out.writelines(lines)
    return 0


if __name__ == "__main__":
    sys.exit(main())
