#!/usr/bin/env python3
"""Counts the instructions of fablegrid_benchmark's works: count.py BENCHMARK [arguments of its own] --json FILE

Runs the benchmark once under callgrind, where a round takes some fifty times as long, and writes its result with
the instructions of each work beside its times, which mean nothing there. Unlike times, counts are the same on any
machine, to some per cent. Needs valgrind, and a benchmark that was built where its headers are.
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile


def main():
    if len(sys.argv) < 3 or "--json" not in sys.argv:
        sys.exit(__doc__.splitlines()[0])
    result_file = pathlib.Path(sys.argv[sys.argv.index("--json") + 1])
    with tempfile.TemporaryDirectory() as folder:
        dumps = pathlib.Path(folder)
        subprocess.run(
            ["valgrind", "--tool=callgrind", "--instr-atstart=no", f"--callgrind-out-file={dumps}/out",
             *sys.argv[1:], "--rounds", "1"], check=True)
        counts = {}
        for dump in sorted(dumps.iterdir()):
            text = dump.read_text(errors="replace")
            name = re.search(r"^desc: Trigger: Client Request: (.*)\|(\d+)$", text, re.M)
            total = re.search(r"^(?:summary|totals): (\d+)", text, re.M)
            if name and total:
                counts.setdefault((name[1], int(name[2])), []).append(int(total[1]))
    result = json.loads(result_file.read_text(encoding="utf-8"))
    for row in result["rows"]:
        if found := counts.get((row["work"], row["events"])):
            row["instructions"] = min(found)
    result_file.write_text(json.dumps(result, indent=1), encoding="utf-8")
    print(f"{'work':34}{'events':>8}{'instructions':>16}")
    for row in result["rows"]:
        if "instructions" in row:
            print(f"{row['work']:34}{row['events']:8}{row['instructions']:16,}")


if __name__ == "__main__":
    main()
