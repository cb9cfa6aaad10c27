#!/usr/bin/env python3
"""Opens sound scene files that were damaged in one or a few places, as a field of a record or as bytes.

    tests/fuzz/mutate.py [--count N] [--seed S] [--keep DIR] [file ...]

Each damaged file has to open within five seconds and 500 MB, what is shown has to be what the next save writes,
and opening that and saving it again has to give the same bytes: checkdocument, which this builds with the
release preset, looks at all of it. The files are those of docs/examples and some that are made here, unless
others are named. One seed always gives the same damage. What failed is kept in build/mutated, and named.
"""

import argparse
import os
import pathlib
import random
import shutil
import struct
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
CHECKER = ROOT / "build/release/tests/fuzz/checkdocument"
FAILED = ROOT / "build/mutated"
FILES_A_RUN = 100
PATIENCE = 1200  # seconds for so many; a file that is never opened counts as harm

NUMBERS = [0, 1, 2, 3, 4, 6, 8, 10, 99, -1, -2, -2**31, 2**31 - 1, 2**31 - 2, 65536]
PLACES = [0.0, -0.0, 0.5, -1.0, 1e-300, 5e-324, 99999.0, 1e5, 1e12, 1e300, -1e300,
          float("inf"), float("-inf"), float("nan")]
TEXTS = ["", "a", "Event", "Enter description", "0 events", "\n", "\r", "\r\n", "a\rb\r\nc", "\u2028", "\u2029",
         "\x00", "a\x00b", "\ufffe", "\uffff", "\ufdd0", "\ud800", "\udc00\ud83d", "\U0001F600" * 9,
         "\u202eabc", "\u05d0\u05d1 ab", "\u0301" * 99, "\u00ad" * 40, "\u00a0" * 300, "word " * 400, "x" * 3000,
         "line\n" * 300, "\t\t\t", "<b>bold</b> & <i>", "&amp;", " ", "  two  blanks  "]


class Event:
    FIELDS = ("tag", "title", "x", "y", "index", "upstream", "end", "important", "text")

    def __init__(self, **fields):
        self.tag, self.title, self.text = "Event", "Event", "Enter description"
        self.x = self.y = 0.0
        self.index, self.upstream, self.end, self.important = 0, -1, 0, 0
        for name, value in fields.items():
            setattr(self, name, value)

    def copy(self):
        return Event(**{name: getattr(self, name) for name in self.FIELDS})

    def parts(self):
        return [string(self.tag), string(self.title), struct.pack(">dd", self.x, self.y),
                struct.pack(">iiii", self.index, self.upstream, self.end, self.important), string(self.text)]


def string(text):
    if text is None:
        return b"\xff\xff\xff\xff"
    units = text.encode("utf-16-be", "surrogatepass")
    return struct.pack(">I", len(units)) + units


class Reader:
    def __init__(self, data):
        self.data, self.at = data, 0

    def take(self, form):
        values = struct.unpack_from(form, self.data, self.at)
        self.at += struct.calcsize(form)
        return values if len(values) > 1 else values[0]

    def string(self):
        length = self.take(">I")
        if length == 0xFFFFFFFF:
            return None
        if self.at + length > len(self.data) or length % 2:
            raise ValueError("no text")
        units = self.data[self.at:self.at + length]
        self.at += length
        return units.decode("utf-16-be", "surrogatepass")


def parse(data):
    """The tabs of a sound file, lists of events."""
    reader = Reader(data)
    tabs = []
    for _ in range(reader.take(">i")):
        events = []
        for _ in range(reader.take(">i")):
            event = Event(tag=reader.string(), title=reader.string())
            event.x, event.y = reader.take(">dd")
            event.index, event.upstream, event.end, event.important = reader.take(">iiii")
            event.text = reader.string()
            events.append(event)
        tabs.append(events)
    if reader.at != len(data):
        raise ValueError("more than a document")
    return tabs


def written(tabs, rng=None):
    """The bytes; with a generator, one count or one length among them is wrong."""
    parts = [struct.pack(">i", len(tabs))]
    for events in tabs:
        parts.append(struct.pack(">i", len(events)))
        for event in events:
            parts += event.parts()
    if rng:
        place = rng.randrange(len(parts))
        wrong = rng.choice(NUMBERS + [len(tabs) + 1, 1000, 2000, 0x7FFFFFF0])
        parts[place] = struct.pack(">i", wrong) + parts[place][4:]
    return b"".join(parts)


def made():
    """Sound documents of the shapes that a story can have."""
    chain = [Event(index=i, upstream=i - 1, title=f"Event {i}", x=i * 505.0, y=20.0, end=int(i == 11),
                   important=i % 2, text=f"What happens {i}") for i in range(12)]
    star = [Event(index=i, upstream=0 if i else -1, x=600.0, y=i * 200.0, end=int(i == 3)) for i in range(9)]
    odd = [Event(index=i * 7 % 40, upstream=-1, x=i * 10.0, end=int(i == 0)) for i in range(20)]
    tree = [Event(index=i, upstream=(i - 1) // 2 if i else -1, y=i * 90.0, end=int(i == 30)) for i in range(31)]
    texts = [Event(index=i, upstream=i - 1, title=text, text=text, end=int(i == 0), y=i * 300.0)
             for i, text in enumerate(["A", "Two\nlines", "\U0001F600", "\u05d0\u05d1", ""])]
    return [[chain], [star, odd], [tree, [], chain[:3]], [texts], [[Event(end=1)]], [odd[:5], texts, star]]


def damage_record(tabs, rng):
    filled = [events for events in tabs if events]
    if not filled:
        tabs.append([Event(end=1)])
        return
    events = rng.choice(filled)
    event = rng.choice(events)
    other = rng.choice(events)
    kind = rng.randrange(12)
    if kind <= 1:
        event.index = other.index
    elif kind == 2:
        event.index = rng.choice(NUMBERS + [2 * rng.randrange(len(events) + 2)])
    elif kind == 3:
        for each in rng.sample(events, rng.randint(1, len(events))):
            each.index = event.index
    elif kind == 4:
        event.upstream = rng.choice(NUMBERS + [event.index, other.index])
    elif kind == 5:
        event.end = rng.choice(NUMBERS)
        other.end = rng.choice([0, 1, 1, 2])
    elif kind == 6:
        event.important = rng.choice(NUMBERS)
    elif kind == 7:
        event.x = rng.choice(PLACES)
        other.y = rng.choice(PLACES)
    elif kind == 8:
        setattr(event, rng.choice(["tag", "title", "text"]), rng.choice(TEXTS + [None]))
    elif kind == 9:
        events.insert(rng.randrange(len(events) + 1), other.copy())
    elif kind == 10:
        rng.shuffle(events)
    else:
        events.remove(event)


def damaged_bytes(data, other, rng):
    data = bytearray(data)
    at = rng.randrange(len(data))
    kind = rng.randrange(6)
    if kind == 0:
        del data[at:]
    elif kind == 1:
        data[at] ^= 1 << rng.randrange(8)
    elif kind == 2:
        data[at:at] = rng.randbytes(rng.choice([1, 2, 4, 8, 40]))
    elif kind == 3:
        del data[at:at + rng.choice([1, 2, 4, 8, 40])]
    elif kind == 4:
        data[at:] = other[rng.randrange(len(other)):]
    else:
        data[at:at + 4] = struct.pack(">i", rng.choice(NUMBERS))
    return bytes(data)


def mutation(sources, rng):
    tabs = [[event.copy() for event in events] for events in rng.choice(sources)]
    how = rng.randrange(10)
    if how < 6:
        for _ in range(rng.choice([1, 1, 1, 2, 3, 8])):
            damage_record(tabs, rng)
        return written(tabs)
    if how == 6:
        return written(tabs, rng)
    data = written(tabs)
    for _ in range(rng.choice([1, 1, 2, 5])):
        data = damaged_bytes(data, written(rng.choice(sources)), rng) or b"\x00"
    return data


def build():
    subprocess.run([ROOT / "packaging/install-dependencies.sh", "ci"], check=True)
    if not (ROOT / "build/release/build.ninja").exists():
        subprocess.run(["cmake", "--preset", "release"], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", "--preset", "release", "--target", "checkdocument"], cwd=ROOT, check=True,
                   stdout=subprocess.DEVNULL)


def troubles_of(paths):
    """What the checker says, a line for each file that failed. A file that ends it counts, too."""
    lines = []
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", QT_QPA_PLATFORMTHEME="", LC_ALL="C.UTF-8")
    while paths:
        try:
            run = subprocess.run([CHECKER, *paths], env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                                 text=True, errors="replace", timeout=PATIENCE)
            out, fate = run.stdout, f"ended the program with {run.returncode}: {run.stderr[-500:]}"
        except subprocess.TimeoutExpired as late:
            out, fate = (late.stdout or b"").decode(errors="replace"), "was not opened in time"
        told = out.splitlines()
        done = [line for line in told if line.startswith("done ")]
        lines += [line for line in told if not line.startswith("done ")]
        if len(done) == len(paths):
            break
        lines.append(f"{paths[len(done)]}: {fate}")
        paths = paths[len(done) + 1:]
    return lines


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, default=2000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--keep", type=pathlib.Path, help="write the damaged files there and check nothing")
    parser.add_argument("file", nargs="*", type=pathlib.Path)
    options = parser.parse_args()

    files = options.file or sorted((ROOT / "docs/examples").glob("*.scene"))
    sources = [parse(path.read_bytes()) for path in files] + ([] if options.file else made())
    rng = random.Random(options.seed)
    if not options.keep:
        build()
    memory = pathlib.Path("/dev/shm")
    with tempfile.TemporaryDirectory(prefix="fablegrid-mutate-", dir=memory if memory.is_dir() else None) as scratch:
        folder = options.keep or pathlib.Path(scratch)
        folder.mkdir(parents=True, exist_ok=True)
        paths = []
        for number in range(options.count):
            path = folder / f"{options.seed}-{number:05}.scene"
            path.write_bytes(mutation(sources, rng))
            paths.append(path)
        if options.keep:
            print(f"{len(paths)} damaged files in {folder}")
            return 0
        lines = []
        for start in range(0, len(paths), FILES_A_RUN):
            lines += troubles_of(paths[start:start + FILES_A_RUN])
        for line in lines:
            print(line)
            path = pathlib.Path(line.split(": ")[0])
            if path.is_file():
                FAILED.mkdir(parents=True, exist_ok=True)
                shutil.copy(path, FAILED)
        print(f"{len(paths)} damaged files opened, saved, and opened and saved again; {len(lines)} did harm"
              + (f", see {FAILED}" if lines else ""))
        return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main())
