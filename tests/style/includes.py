"""Dependencies point one way: who may include whom, room by room.

Usage: includes.py ROOT. Prints each include that breaks a rule; exit status 1 if there is one.
"""

import re
import sys
from pathlib import Path

KORV = "mrp/platform/korv/"
PELK = "mrp/platform/pelk/"

# Each folder of the platform knows those before it. The two hosts stand on all of them.
FOLDERS = ["korv", "pelk", "dovr", "sornlog", "attrlog", "kernel", "interface", "bridging", "stp",
           "mirel"]
ORDER = [f"mrp/platform/{name}/" for name in FOLDERS]

# What all subcommands share.
COMMAND = ["mrp/"] + [f"command/{name}.h"
                      for name in ("Arguments", "CommandError", "Nanoseconds", "StandardOutput",
                                   "StreamPath")]
REPORT = "command/report/"
REPLAY = "command/replay/"

# The first room that a file stands in decides what it may include of this repository.
ROOMS = [
    *((folder, ORDER[: i + 1]) for i, folder in enumerate(ORDER)),
    ("mrp/platform/memory/", ORDER + ["mrp/platform/memory/"]),
    ("mrp/platform/linux/", ORDER + ["mrp/platform/linux/"]),
    ("mrp/vocabulary/", ["mrp/vocabulary/", KORV, PELK]),
    ("mrp/observer/", ["mrp/"]),
    ("mrp/", ["mrp/"]),
    (REPORT, COMMAND + [REPORT]),
    (REPLAY, COMMAND + [REPORT, REPLAY]),
    ("command/script/", COMMAND + [REPORT, REPLAY, "command/script/"]),
    ("command/run/", COMMAND + [REPORT, "command/run/"]),
    ("command/show/", COMMAND + [REPORT, "command/show/"]),
    ("command/", ["mrp/", "command/"]),
    ("examples/", ["mrp/"]),
    ("bench/", ["mrp/", "bench/", "tests/support/"]),
    ("tests/", ["mrp/", "command/", "tests/"]),
]

# The engine cannot tell which of the two platforms it stands on.
PLATFORMS = ("mrp/platform/memory/", "mrp/platform/linux/")

# All that the library may include from outside: the C++ library, C's and Linux's headers.
SYSTEM = re.compile(
    r"[a-z_]+|(sys|net|netinet|netpacket|arpa|linux|asm)/.*"
    r"|(unistd|fcntl|poll|ifaddrs|signal|time|stdlib|errno|execinfo|endian|byteswap)\.h"
)

INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)


def fault(root, file, own, system):
    """Why this include is wrong, or None."""
    room, allowed = next((r, a) for r, a in ROOMS if file.startswith(r))
    if system is not None:
        # tests/install stands outside the repository: it includes the library as installed.
        if system.startswith("mrp/") and not file.startswith("tests/install/"):
            return "write it with quotes"
        if room.startswith("mrp/") and not SYSTEM.fullmatch(system):
            return "the library stands on the standard library and Linux alone"
        return None
    if not (root / own).is_file():
        return "no such file; includes are written from the root of the repository"
    if not own.startswith(tuple(allowed)):
        return f"{room} may include only {' '.join(allowed)}"
    if room == "mrp/" and own.startswith(PLATFORMS):
        return "only agents, examples and tests choose a platform"
    return None


def main():
    root = Path(sys.argv[1])
    folders = sorted({room.split("/")[0] for room, _ in ROOMS})
    files = [f for d in folders for f in sorted((root / d).rglob("*")) if f.suffix in (".h", ".cpp")]
    faults = 0
    for path in files:
        file = path.relative_to(root).as_posix()
        text = path.read_text()
        for match in INCLUDE.finditer(text):
            why = fault(root, file, *match.groups())
            if why:
                line = text.count("\n", 0, match.start(match.lastindex)) + 1
                print(f"{file}:{line}: {match.group().strip()}: {why}")
                faults += 1
    print(f"{len(files)} files, {faults} faults")
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
