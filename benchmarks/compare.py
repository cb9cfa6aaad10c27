#!/usr/bin/env python3
"""Compares two results of fablegrid_benchmark --json: compare.py before.json after.json

Times are told in U, the unit that each run measured for itself, so that two runs can be compared although the
machine was not equally fast. Ends with 1 if any work became slower by more than the tolerance (--tolerance 1.3).
"""

import argparse
import json
import sys


def read(path):
    with open(path, encoding="utf-8") as file:
        result = json.load(file)
    return result["unit_ms"], {(row["work"], row["events"]): row for row in result["rows"]}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("before")
    parser.add_argument("after")
    parser.add_argument("--tolerance", type=float, default=1.3, help="how much slower is still the same (1.3)")
    arguments = parser.parse_args()
    unit_before, before = read(arguments.before)
    unit_after, after = read(arguments.after)

    print(f"U = {unit_before * 1000:.1f} us before, {unit_after * 1000:.1f} us after")
    print(f"{'work':34}{'events':>8}{'before':>12}{'after':>12}{'ratio':>8}")
    slower = 0
    for key in before:
        if key not in after:
            continue
        work, events = key
        measure = "units" if before[key]["units"] > 0 else "value"
        first, second = before[key][measure], after[key][measure]
        if first <= 0:
            continue
        ratio = second / first
        mark = ""
        if ratio > arguments.tolerance:
            mark = "  slower"
            slower += 1
        print(f"{work:34}{events:8}{first:12.1f}{second:12.1f}{ratio:8.2f}{mark}")
    for key in sorted(set(before) ^ set(after)):
        print(f"only in one of them: {key[0]}, {key[1]} events")
    return 1 if slower else 0


if __name__ == "__main__":
    sys.exit(main())
