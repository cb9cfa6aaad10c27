#!/usr/bin/env python3
"""Lets every single system call of a save fail, and looks at the files afterwards.

    tests/faults/failing-calls.py [build folder]

The file must hold the former work or the new one, whole, and the new one if the save was told to have worked.
What it held before, which is another program's, must be kept where the new one stands, as a copy in the folder
of the copies or beside the file, and no other file may be left. The program must end by itself. Calls that leave the file system alone are left out, as are those that cannot
fail. Needs strace, and a system that lets a program be traced: without them it says so and ends with 77.
"""

import collections
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build" / "release")
PROGRAM = BUILD / "tests" / "walk" / "saveonce"
ERRORS = {
    "openat": ["EIO", "EACCES", "EMFILE"],
    "write": ["EIO", "ENOSPC"],
    "read": ["EIO"],
    "fsync": ["EIO"],
    "rename": ["EIO", "EACCES", "EPERM"],
    "renameat2": ["EIO", "EINVAL"],
}
OTHERS = ["EIO"]
HARMLESS = {"access", "brk", "mmap", "munmap", "mprotect", "madvise", "futex", "close", "exit_group", "getuid",
            "geteuid", "getgid", "getegid", "gettid", "getpid", "poll", "ppoll", "clock_gettime", "rt_sigaction",
            "rt_sigprocmask", "rt_sigreturn", "restart_syscall", "sched_yield", "clock_nanosleep", "mremap",
            "getrandom", "eventfd2", "recvmsg", "sendmsg"}
FOLDER = pathlib.Path("Fablegrid", "Kept")
COPY = re.compile(r"\d{8}_\d{6}_\d{3}_other\.scene")
BESIDE = re.compile(r"story\.scene\.\w{6}")
CALL = re.compile(r"^(\d+) +(\w+)\(")
LIMIT = 60  # seconds for one save


def left_out(reason):
    print(f"Skipped: {reason}")
    sys.exit(77)


class Home:
    """A folder with the file that is saved over, for one program."""

    def __init__(self, old):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="fablegrid-"))
        self.target = self.path / "Documents" / "story.scene"
        self.target.parent.mkdir()
        shutil.copy(old, self.target)

    def run(self, source, *tracing):
        environment = dict(os.environ, HOME=str(self.path), XDG_CONFIG_HOME=str(self.path),
                           XDG_DOCUMENTS_DIR=str(self.target.parent), QT_QPA_PLATFORM="offscreen",
                           QT_QPA_PLATFORMTHEME="", LC_ALL="C.UTF-8")
        return subprocess.run(
            ["strace", "-f", "-qq", "-o", str(self.path / "trace"), *tracing, PROGRAM, source, self.target],
            env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=LIMIT, check=False)

    def copies_and_leavings(self, old):
        """The names of the copies of the former work, and of all other files beside the saved one.

        With a few letters behind the file's name it is a copy where there is no other.
        """
        copies, besides, leavings = [], [], []
        documents = self.target.parent
        for file in sorted(path for path in documents.rglob("*") if not path.is_dir() and path != self.target):
            name = file.relative_to(documents)
            if file.read_bytes() == old and COPY.fullmatch(name.name) and name.parent in (FOLDER, pathlib.Path()):
                copies.append(str(name))
            elif file.read_bytes() == old and BESIDE.fullmatch(str(name)):
                besides.append(str(name))
            else:
                leavings.append(str(name))
        return (copies, besides + leavings) if copies else (besides, leavings)

    def remove(self):
        shutil.rmtree(self.path)


def calls_of_a_save(trace):
    """The calls of the program's first thread while it saves, each with its number among those of that name."""
    counts = collections.Counter()
    found = []
    is_saving = False
    first = None
    for line in trace.read_text(errors="replace").splitlines():
        match = CALL.match(line)
        if not match:
            continue
        thread, name = match.groups()
        first = first or thread
        if thread != first:
            continue
        counts[name] += 1
        if '"/save begins"' in line:
            is_saving = True
        elif '"/save ends"' in line:
            return found
        elif is_saving and name not in HARMLESS:
            found.append((name, counts[name]))
    sys.exit("The save was not found among the program's calls")


def outcome(source, old, new, call, number, error):
    """What is wrong after that call has failed, None if nothing is; and whether it was told to have worked."""
    home = Home(old)
    try:
        code = home.run(source, "-e", f"inject={call}:error={error}:when={number}").returncode
        content = home.target.read_bytes() if home.target.exists() else None
        if code not in (0, 1):
            return f"the program ended with {code}", code
        if content not in (old.read_bytes(), new):
            return "the file is neither the former nor the new one", code
        if code == 0 and content != new:
            return "the save is said to have worked", code
        copies, leavings = home.copies_and_leavings(old.read_bytes())
        if leavings and call != "unlink":  # what cannot be removed stays
            return "left over: " + ", ".join(leavings), code
        if content == new and not copies:
            return "no copy of the former work", code
        return None, code
    except subprocess.TimeoutExpired:
        return "the program never ends", None
    finally:
        home.remove()


def main():
    if not shutil.which("strace"):
        left_out("strace is not installed")
    if not PROGRAM.exists():
        sys.exit(f"{PROGRAM} must be built first")
    if subprocess.run(["strace", "-qq", "-o", "/dev/null", "true"], stderr=subprocess.DEVNULL, check=False).returncode:
        left_out("this system lets no program be traced")
    source = ROOT / "docs" / "examples" / "the-lighthouse.scene"
    with tempfile.TemporaryDirectory() as folder:
        old = pathlib.Path(folder) / "old.scene"
        old.write_bytes(bytes(4))  # a file without tabs
        home = Home(old)
        ended = home.run(source)
        if ended.returncode != 0:
            sys.exit("The save fails by itself: " + ended.stderr.decode(errors="replace"))
        new = home.target.read_bytes()
        if [len(names) for names in home.copies_and_leavings(old.read_bytes())] != [1, 0]:
            sys.exit("The save leaves more or less than one copy by itself")
        calls = calls_of_a_save(home.path / "trace")
        home.remove()
        tries = [(*call, error) for call in calls for error in ERRORS.get(call[0], OTHERS)]
        if len(tries) < 20:
            sys.exit(f"Only {len(tries)} calls of a save were found")
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            outcomes = list(pool.map(lambda one: outcome(source, old, new, *one), tries))
    faults = 0
    for (call, number, error), (fault, _) in zip(tries, outcomes):
        if fault:
            faults += 1
            print(f"{call} number {number} with {error}: {fault}")
    worked = sum(code == 0 for _, code in outcomes)
    print(f"{len(tries)} failures of {len(calls)} calls: {worked} saves worked nevertheless, "
          f"{sum(code == 1 for _, code in outcomes)} were told to have failed, {faults} did harm")
    sys.exit(1 if faults else 0)


main()
