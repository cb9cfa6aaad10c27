#!/usr/bin/env python3
"""Compares two results of fablegrid_benchmark --json: compare.py before.json after.json; or one with the goals:
compare.py --goals result.json

Times are told in U, the unit that each run measured for itself, so that two runs can be compared although the
machine was not equally fast. What count.py has counted is compared by its instructions, which hold on any machine.
Ends with 1 if any work became slower by more than the tolerance (--tolerance 1.3), grows with the number of
events by more than its goal, or misses another goal.
"""

import argparse
import json
import sys


# How much more an edit may take among 10,000 events than among 1,000, in instructions.
EDIT_GROWTH = 1.2
EDITS = ("add", "undo of add", "delete", "undo of delete", "redo of delete", "importance on", "importance off",
         "end of story", "end of story back", "filter on", "filter off", "disconnect", "connect")
# How much more pasting ten times as many may take, in instructions: by their number, and a fifth.
PASTE_GROWTH = 12
PASTE = "cut and paste of {}"

# What a work may take at most, in U or in KiB, among so many events; of several works it is their sum.
GOALS = [(1000, 900, ["open"]), (10000, 4500, ["open"]), (10000, 600, ["save"]), (10000, 600, ["autosave"]),
         (10000, 2000, ["New"]), (10000, 2000, ["closing of the window"]),
         (10000, 600, ["tab switch to an empty one", "tab switch back"]),
         (1000, 10, ["memory an event"]),
         (10000, 5000, ["memory more after New"]), (10000, 5000, ["memory more after a second New"]),
         (10000, 700, [PASTE.format(20)]), (10000, 1500, [PASTE.format(100)]), (10000, 9000, [PASTE.format(1000)])]
GOALS += [(events, most, [work]) for events, most in ((1000, 250), (10000, 300)) for work in EDITS]


def missed(rows):
    """Prints each goal that the rows tell of and what was reached; how many were missed."""
    count = 0
    for events, most, works in GOALS:
        if not all((work, events) in rows for work in works):
            continue
        measure = "value" if works[0].startswith("memory") else "units"
        reached = sum(rows[work, events][measure] for work in works)
        count += reached > most
        unit = "KiB" if measure == "value" else "U"
        print(f"{' and '.join(works):46}{events:8}{reached:12,.1f} of {most:,} {unit}"
              + ("  missed" if reached > most else ""))
    return count


def growths(rows):
    """Yields what grew, by how much, and the most that is wanted; nothing where instructions were not counted."""
    def counted(work, events):
        return rows.get((work, events), {}).get("instructions", 0)

    for work in EDITS:
        if counted(work, 1000) and counted(work, 10000):
            yield f"{work}, 1,000 to 10,000", counted(work, 10000) / counted(work, 1000), EDIT_GROWTH
    for events in sorted({events for _, events in rows}):
        few, many = counted(PASTE.format(100), events), counted(PASTE.format(1000), events)
        if few and many:
            yield f"{PASTE.format('100 to 1,000')} among {events:,}", many / few, PASTE_GROWTH


def beyond_growth(rows):
    """Prints what grew; how often by more than is wanted."""
    count = 0
    for what, growth, goal in growths(rows):
        print(f"growth of {what}: {growth:.2f}, goal {goal}" + ("  beyond" if growth > goal else ""))
        count += growth > goal
    return count


def read(path):
    with open(path, encoding="utf-8") as file:
        result = json.load(file)
    return result["unit_ms"], {(row["work"], row["events"]): row for row in result["rows"]}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("before", nargs="?")
    parser.add_argument("after", nargs="?")
    parser.add_argument("--goals", metavar="RESULT", help="one result, to be compared with the goals")
    parser.add_argument("--tolerance", type=float, default=1.3, help="how much slower is still the same (1.3)")
    arguments = parser.parse_args()
    if arguments.goals:
        unit, rows = read(arguments.goals)
        print(f"U = {unit * 1000:.1f} us")
        return 1 if missed(rows) + beyond_growth(rows) else 0
    if not arguments.after:
        parser.error("two results, or --goals and one")
    unit_before, before = read(arguments.before)
    unit_after, after = read(arguments.after)

    print(f"U = {unit_before * 1000:.1f} us before, {unit_after * 1000:.1f} us after")
    print(f"{'work':34}{'events':>8}{'before':>16}{'after':>16}{'ratio':>8}")
    slower = 0
    for key in before:
        if key not in after:
            continue
        work, events = key
        measure = "units" if before[key]["units"] > 0 else "value"
        if "instructions" in before[key] and "instructions" in after[key]:
            measure = "instructions"
        first, second = before[key][measure], after[key][measure]
        if first <= 0:
            continue
        ratio = second / first
        mark = ""
        if ratio > arguments.tolerance:
            mark = "  slower"
            slower += 1
        print(f"{work:34}{events:8}{first:16,.1f}{second:16,.1f}{ratio:8.2f}{mark}")
    for key in sorted(set(before) ^ set(after)):
        print(f"only in one of them: {key[0]}, {key[1]} events")
    return 1 if beyond_growth(after) + slower else 0


if __name__ == "__main__":
    sys.exit(main())
