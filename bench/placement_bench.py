#!/usr/bin/env python3
"""How placement grows: input sections of mixed size and alignment, many of them, in few or many output sections.

    bench/placement_bench.py --qvlink build/release/qvlink --work /tmp/placement_bench [--sizes 1000,10000,100000,200000]

Layouts: `one` puts all in one output section, `split` spreads that over 8 ranges, `few` and `many` make 4 and 276 output
sections over 4 ranges. CPU seconds of the whole link, the best of --rounds. The status is 1 when time(last)/time(10,000)
of a layout is above 30, or `many` takes more than 1.5 times `few`.
"""
import argparse
import random
import resource
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests/support"))
from elf_write import ALLOC, EXEC, ElfObject  # noqa: E402

SECTIONS_OF_OBJECT = 10000
MODULES = 276


def write_inputs(work, count):
    """Objects with `count` sections in all; each section belongs to one of 276 modules by its name."""
    rng = random.Random(count)
    total, names = 0, []
    for first in range(0, count, SECTIONS_OF_OBJECT):
        elf = ElfObject()
        for i in range(first, min(count, first + SECTIONS_OF_OBJECT)):
            size = rng.choice([4, 8, 12, 20, 36, 64, 100, 200, rng.randrange(1, 400)])
            index = elf.section(f".text.m{i % MODULES}.f{i}", ALLOC | EXEC, bytes(size), rng.choice([1, 2, 4, 4, 4, 8, 16]))
            total += size
            if i == 0:
                elf.symbol("_start", index, 0)
        names.append(f"in{count}_{first}.o")
        (work / names[-1]).write_bytes(elf.bytes())
    return names, total


def layout(kind, total):
    """The text of a command file with room for `total` bytes and their padding."""
    room = total * 3 // 2 + 0x10000
    pieces = {"one": 1, "split": 8, "few": 4, "many": 4}[kind]
    length = room if pieces == 1 else room * 2 // pieces
    ranges = [f"R{i}" for i in range(pieces)]
    memory = [f"  {r} : origin = {0x1000000 + i * (length + 0x1000):#x}, length = {length:#x}" for i, r in enumerate(ranges)]
    if kind in ("one", "split"):
        body = [f"  .text : {{ *(.text*) }} {'>>' if kind == 'split' else '>'} {' | '.join(ranges)}"]
    else:
        groups = 4 if kind == "few" else MODULES
        body = []
        for g in range(groups):
            patterns = " ".join(f".text.m{m}.*" for m in range(g, MODULES, groups))
            body.append(f"  .text{g} : {{ *({patterns}) }} > {' | '.join(ranges)}")
    return "\n".join(["--entry_point=_start", "--unused_section_elimination=off", "MEMORY", "{", *memory, "}", "SECTIONS", "{",
                      *body, "}", ""])


def cpu_of(command, work):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    done = subprocess.run(command, cwd=work, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command[-3:])}: status {done.returncode}\n{done.stdout.decode('latin-1')[:2000]}")
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--sizes", default="1000,10000,100000,200000")
    parser.add_argument("--rounds", type=int, default=3)
    opts = parser.parse_args()
    opts.work.mkdir(parents=True, exist_ok=True)
    times, bad = {}, False
    for count in map(int, opts.sizes.split(",")):
        names, total = write_inputs(opts.work, count)
        for kind in ("one", "split", "few", "many"):
            text = layout(kind, total)
            (opts.work / f"{kind}.cmd").write_text(text)
            command = [str(opts.qvlink.resolve()), *names, f"{kind}.cmd", "-o", "out.elf"]
            times[kind, count] = min(cpu_of(command, opts.work) for _ in range(opts.rounds))
        print(f"{count:>8} sections: " + "  ".join(f"{k} {times[k, count]:.3f} s" for k in ("one", "split", "few", "many")),
              flush=True)
        if count >= 10000:
            ratio = times["many", count] / times["few", count]
            bad |= ratio > 1.5
            print(f"{'':8} many / few: {ratio:.2f}")
        for name in names:
            (opts.work / name).unlink()
    last = max(c for _, c in times)
    for kind in ("one", "split"):
        if (kind, 10000) in times and last > 10000:
            growth = times[kind, last] / times[kind, 10000]
            bad |= growth > 30
            print(f"{kind}: time({last}) / time(10000) = {growth:.1f}")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
