#!/usr/bin/env python3
"""Asks the tests whether they notice small changes of the program.

    tests/mutations/mutate.py [--sample N] [--seed S] [--jobs J] [--tests ROOM,ROOM] [--again] [room ...]

Takes the rooms src/scene, src/commands and src/items unless others are named. Each mutation changes one place
of one file in a copy of the tree, builds the library and runs the tests that open no window, until one fails:
those first that are named after the changed file, then those of its room, then all others. --tests asks those of
the named rooms only. What no test noticed is listed at the end with its line; each outcome is added to
build/mutations/outcomes.jsonl, and places that are in there already are not tried again, unless --again is given,
as after a change of the tests.

Without --sample every place is tried, which takes about half a minute each.
"""

import argparse
import json
import pathlib
import random
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutations"
TREE = WORK / "tree"
BUILD = WORK / "build"
OUTCOMES = WORK / "outcomes.jsonl"
TEST_TIME = 60  # seconds for one test program; a mutation that never ends counts as noticed

# What is looked for in a line of code, and what takes its place.
EDITS = [
    (r"==", "!="),
    (r"!=", "=="),
    (r"(?<= )<(?= )", "<="),
    (r"(?<= )>(?= )", ">="),
    (r"<=", "<"),
    (r">=", ">"),
    (r"&&(?= )", "||"),
    (r"\|\|", "&&"),
    (r"(?<=[( ])!(?=[A-Za-z(*])", ""),
    (r"(?<= )\+(?= )", "-"),
    (r"(?<= )-(?= )", "+"),
    (r"(?<= )\*(?= )", "/"),
    (r"\+\+", "--"),
    (r"\+=", "-="),
    (r"\btrue\b", "false"),
    (r"\bfalse\b", "true"),
    (r"\bif \((?!const |auto |[A-Z]\w* \*)(?=.*\)(?: \{)?$)", "if (false && "),
    (r"\bbreak;", ";"),
    (r"\bcontinue;", ";"),
    (r"\breturn;", ";"),
    (r"(?<![\w.])(\d+)(?![\w.])", lambda m: str(int(m.group(1)) + 1)),
]
CALL = re.compile(r"^\s+(?!return|delete|using|const|auto|case|throw)[\w:.>()\[\]*-]+\(.*\);$")


def code_lines(text):
    """The numbers and texts of lines that hold code, without comments and log lines."""
    for number, line in enumerate(text.split("\n")):
        bare = line.split("//")[0].rstrip()
        stripped = bare.strip()
        if not stripped or stripped.startswith(("#", "*", "Q_", "/", "namespace", "class ", "using ")):
            continue
        if "template" in bare or "qInfo" in bare or "qRegisterMetaType" in bare:
            continue
        yield number, bare


def outside_strings(line, start):
    return line[:start].count('"') % 2 == 0


def mutations_of(path):
    text = path.read_text()
    for number, line in code_lines(text):
        found = []
        for pattern, change in EDITS:
            for match in re.finditer(pattern, line):
                if not outside_strings(line, match.start()):
                    continue
                new = change(match) if callable(change) else change
                found.append(line[: match.start()] + new + line[match.end() :])
        if CALL.match(line):
            found.append(re.match(r"\s*", line).group() + ";")
        for changed in dict.fromkeys(found):
            yield {
                "file": str(path.relative_to(TREE)),
                "line": number + 1,
                "was": line.strip(),
                "is": changed.strip(),
                "changed": changed,
            }


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False, **options)


def prepare(rooms):
    """Copies and builds the tree with the tests of these rooms, with all of them if there are none; returns them."""
    TREE.mkdir(parents=True, exist_ok=True)
    listed = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, stdout=subprocess.PIPE, check=True).stdout
    kept = set()
    for name in filter(None, listed.decode().split("\0")):
        source, target = ROOT / name, TREE / name
        if not source.exists():
            continue
        kept.add(target)
        if target.exists() and target.read_bytes() == source.read_bytes():
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(source, target)
    for target in TREE.rglob("*"):
        if target.is_file() and target not in kept:
            target.unlink()
    # A library of its own, so that no test program has to be linked again.
    configured = run(
        ["cmake", "-G", "Ninja", "-S", TREE, "-B", BUILD, "-DCMAKE_BUILD_TYPE=Release",
         "-DCMAKE_CXX_FLAGS_RELEASE=-O1", "-DFABLEGRID_SHARED_CORE=ON",
         "-DCMAKE_CXX_COMPILER_LAUNCHER=" + (shutil.which("ccache") or "")])
    if configured.returncode != 0:
        sys.exit("The unchanged tree cannot be configured in " + str(BUILD))
    tests = tests_by_room()
    targets = []
    if rooms:
        tests = {room: names for room, names in tests.items() if room in rooms}
        targets = ["--target", "fablegrid_core"] + [name for names in tests.values() for name in names]
    if run(["cmake", "--build", BUILD, "--parallel", "2"] + targets).returncode != 0:
        sys.exit("The unchanged tree does not build in " + str(BUILD))
    return tests


def tests_by_room():
    shown = subprocess.run(["ctest", "--show-only=json-v1"], cwd=BUILD, stdout=subprocess.PIPE, check=True)
    rooms = {}
    listing = (TREE / "tests" / "CMakeLists.txt").read_text()
    folders = dict((name, folder) for folder, name in re.findall(r"fablegrid_test\((\w+) (\w+)", listing))
    for test in json.loads(shown.stdout)["tests"]:
        labels = [p["value"] for p in test["properties"] if p["name"] == "LABELS"]
        if labels and "walk" in labels[0]:
            continue
        rooms.setdefault(folders.get(test["name"], "other"), []).append(test["name"])
    return rooms


def failing_test(names, jobs):
    """The first test that fails, None if none does."""
    if not names:
        return None
    pattern = "^(" + "|".join(names) + ")$"
    done = subprocess.run(
        ["ctest", "-R", pattern, "-j", str(jobs), "--stop-on-failure", "--timeout", str(TEST_TIME)],
        cwd=BUILD, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL, check=False)
    if done.returncode == 0:
        return None
    failed = re.search(r"Test +#\d+: (\w+) \.*[^\n]*(?:Failed|Timeout|Exception|Not Run)", done.stdout.decode())
    return failed.group(1) if failed else "unknown"


def attempt(mutation, rooms, jobs):
    path = TREE / mutation["file"]
    original = path.read_text()
    lines = original.split("\n")
    lines[mutation["line"] - 1] = mutation["changed"]
    path.write_text("\n".join(lines))
    try:
        if run(["cmake", "--build", BUILD, "--target", "fablegrid_core"]).returncode != 0:
            return "does not build"
        room = mutation["file"].split("/")[1]
        own = "tst_" + path.stem
        near = rooms.get(room, [])
        named = [name for name in near if name.startswith(own)]
        neighbours = [name for name in near if name not in named]
        others = [name for key, names in rooms.items() if key != room for name in names]
        return (failing_test(named, jobs) or failing_test(neighbours, jobs) or failing_test(others, jobs)
                or "unnoticed")
    finally:
        path.write_text(original)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--sample", type=int, help="so many places, chosen by the seed")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=2, help="test programs at a time")
    parser.add_argument("--tests", help="rooms of tests that are asked, with commas between them")
    parser.add_argument("--again", action="store_true", help="try places that have an outcome already")
    parser.add_argument("--list", action="store_true", help="print the places and try none")
    parser.add_argument("rooms", nargs="*", default=["src/scene", "src/commands", "src/items"])
    options = parser.parse_args()

    rooms = prepare(options.tests.split(",") if options.tests else [])
    places = [m for room in options.rooms for path in sorted((TREE / room).rglob("*.cpp"))
              for m in mutations_of(path)]
    if options.sample:
        places = random.Random(options.seed).sample(places, min(options.sample, len(places)))
    if options.list:
        for place in places:
            print(f"{place['file']}:{place['line']}: {place['was']}  ->  {place['is']}")
        return
    known = {}
    if OUTCOMES.exists() and not options.again:
        for line in OUTCOMES.read_text().splitlines():
            outcome = json.loads(line)
            known[(outcome["file"], outcome["was"], outcome["is"])] = outcome["outcome"]
    if failing_test([name for names in rooms.values() for name in names], options.jobs):
        sys.exit("The tests fail without any change.")
    outcomes = []
    for count, place in enumerate(places, 1):
        key = (place["file"], place["was"], place["is"])
        if key not in known:
            known[key] = attempt(place, rooms, options.jobs)
            with OUTCOMES.open("a") as log:
                log.write(json.dumps({**place, "outcome": known[key]}) + "\n")
        outcomes.append((place, known[key]))
        print(f"{count}/{len(places)} {place['file']}:{place['line']}: {known[key]}", flush=True)
    run(["cmake", "--build", BUILD, "--target", "fablegrid_core"])

    built = [outcome for _, outcome in outcomes if outcome != "does not build"]
    unnoticed = [place for place, outcome in outcomes if outcome == "unnoticed"]
    print(f"\n{len(built)} mutations, {len(built) - len(unnoticed)} noticed, {len(unnoticed)} unnoticed; "
          f"{len(outcomes) - len(built)} more do not build")
    for place in unnoticed:
        print(f"{place['file']}:{place['line']}: {place['was']}  ->  {place['is']}")


if __name__ == "__main__":
    main()
