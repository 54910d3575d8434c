#!/usr/bin/env python3
"""How long a pull of members from a group of archives takes, as ratios to other linkers, and how it grows.

Ten archives in one group hold MEMBERS members of 20 global functions each. An object asks for the first of a chain of
members that leads through the archives at random, so that the group has to be read many times: of 5,000 members 600 are
pulled, one asking for the next. The same with twice and four times as many members shows the growth. CPU is user time,
the best of the rounds; the linkers run in turn. Ends with status 1 if a member costs more than 1.3 times as much where
there are twice as many of them.

    archive_bench.py --qvlink build/release/qvlink
"""
import argparse
import os
import random
import resource
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests" / "support"))
from elf_write import ALLOC, EXEC, FUNC, UND, ElfObject  # noqa: E402

ARCHIVES = 10
FUNCTIONS = 20
PULLED = 0.12
R_ARM_ABS32 = 2
MAX_GROWTH = 1.3

COMMANDS = """\
--entry_point=_start
--diag_suppress=10151
MEMORY { M : origin = 0x10000, length = 0x1000000 }
SECTIONS { .text : { *(.text*) } > M }
"""
SCRIPT = """\
ENTRY(_start)
SECTIONS { .text 0x10000 : { *(.text*) } /DISCARD/ : { *(.ARM.attributes) } }
"""


def member(number, wanted):
    """An object of FUNCTIONS functions that asks for the first function of another member, or for nothing."""
    obj = ElfObject()
    text = obj.section(f".text.m{number}", ALLOC | EXEC, b"\x70\x47\x00\xbf" * FUNCTIONS + bytes(4))
    for j in range(FUNCTIONS):
        obj.symbol(f"member_{number}_function_{j}", text, 4 * j + 1, FUNC)
    if wanted is not None:
        name = f"member_{wanted}_function_{wanted % FUNCTIONS}"
        obj.symbol(name, UND, 0)
        obj.reloc(text, 4 * FUNCTIONS, R_ARM_ABS32, name)
    return obj.bytes()


def make_inputs(folder, members):
    chain = random.Random(5).sample(range(members), int(members * PULLED))
    follower = dict(zip(chain, chain[1:]))
    (folder / "obj").mkdir(parents=True)
    for i in range(members):
        (folder / "obj" / f"m{i}.o").write_bytes(member(i, follower.get(i)))
    start = ElfObject()
    text = start.section(".text._start", ALLOC | EXEC, b"\x70\x47\x00\xbf" + bytes(4))
    start.symbol("_start", text, 1, FUNC)
    name = f"member_{chain[0]}_function_3"
    start.symbol(name, UND, 0)
    start.reloc(text, 4, R_ARM_ABS32, name)
    (folder / "start.o").write_bytes(start.bytes())
    names = []
    for a in range(ARCHIVES):
        names.append(f"lib{a}.a")
        subprocess.run(["arm-none-eabi-ar", "rc", names[-1], *(f"obj/m{i}.o" for i in range(a, members, ARCHIVES))],
                       cwd=folder, check=True)
    (folder / "link.cmd").write_text(COMMANDS)
    (folder / "link.ld").write_text(SCRIPT)
    return names, len(chain)


def user_time(argv, folder):
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    done = subprocess.run(argv, cwd=folder, capture_output=True, text=True)
    if done.returncode:
        sys.exit(f"{' '.join(argv)} in {folder}:\n{done.stderr}")
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before


def pulled_members(folder, name):
    table = subprocess.run(["arm-none-eabi-nm", name], cwd=folder, capture_output=True, text=True, check=True).stdout
    return sum(line.endswith("_function_0") for line in table.splitlines())


def measure(qvlink, members, work, rounds, peers):
    folder = work / str(members)
    archives, pulled = make_inputs(folder, members)
    group = ["--start-group", *archives, "--end-group"]
    linkers = {"qvlink": [qvlink, "start.o", *group, "link.cmd", "-o", "qvlink.elf"],
               "GNU ld": ["arm-none-eabi-ld", "-T", "link.ld", "start.o", *group, "-o", "bfd.elf"],
               "lld": ["ld.lld", "--threads=1", "-T", "link.ld", "start.o", *group, "-o", "lld.elf"]}
    linkers = {name: argv for name, argv in linkers.items() if name == "qvlink" or peers and shutil.which(argv[0])}
    best = {}
    for _ in range(rounds):
        for name, argv in linkers.items():
            best[name] = min(best.get(name, 1e9), user_time(argv, folder))
    for argv in linkers.values():
        if pulled_members(folder, argv[-1]) != pulled:
            sys.exit(f"{argv[0]} pulled {pulled_members(folder, argv[-1])} members, not {pulled}")
    own = best["qvlink"]
    ratios = "".join(f", {own / t:.2f} of {name}" for name, t in best.items() if name != "qvlink")
    print(f"{members} members, {members * FUNCTIONS} symbols, {pulled} pulled: {1000 * own:.0f} ms{ratios}", flush=True)
    return own


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--qvlink", required=True)
    parser.add_argument("--members", type=int, default=5000)
    parser.add_argument("--rounds", type=int, default=5)
    args = parser.parse_args()
    qvlink = os.path.abspath(args.qvlink)
    with tempfile.TemporaryDirectory() as work:
        times = [measure(qvlink, args.members * n, Path(work), args.rounds, peers=n == 1) for n in (1, 2, 4)]
    growth = times[2] / times[1] / 2
    print(f"growth per member from {2 * args.members} to {4 * args.members}: {growth:.2f}")
    return growth > MAX_GROWTH


if __name__ == "__main__":
    sys.exit(main())
