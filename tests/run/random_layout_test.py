#!/usr/bin/env python3
"""Command files made at random from the whole language: whatever they ask for, the answer is right or an error.

The link is that of one object with many small sections, which hold their own address and that of another one. Layout
number i depends on --seed and i only. For each: the status is 0 or 1 and no message calls itself internal; a link that
fails leaves no file. Of a file it is checked that sections lie in the ranges of MEMORY and apart from each other (where
no UNION lets them take turns), are aligned as asked, and that each address in the data is that of its symbol.

    random_layout_test.py --qvlink build/debug/qvlink --work /tmp/layouts --count 5000
    random_layout_test.py --qvlink build/debug/qvlink --work /tmp/layouts --only 17        one again, told at length
"""
import argparse
import concurrent.futures
import os
import random
import re
import shutil
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
from elf import Elf  # noqa: E402

PIECES = 24  # of each kind
KINDS = {".text": "ax", ".data": "aw", ".rodata": "a", ".bss": "aw"}
TIME_LIMIT = 10
ET_REL, SHF_ALLOC, SHT_NOBITS = 1, 2, 8


def assembly():
    """Pieces of each kind, of sizes and alignments of their own; all but .bss hold two addresses."""
    rng = random.Random(7)
    names = [f"{kind[1:]}_{i}" for kind in KINDS for i in range(PIECES)]
    lines = ["    .global _start"]
    for name in names:
        kind, number = name.split("_")
        align, size = rng.choice([2, 2, 2, 3, 4, 6]), rng.choice([0, 0, 4, 20, 36, 100, 500])
        lines.append(f"    .section .{kind}.{number}, \"{KINDS['.' + kind]}\", %{'nobits' if kind == 'bss' else 'progbits'}")
        lines.append(f"    .balign {1 << align}\n    .global {name}\n{name}:")
        lines += ["    .space 8"] if kind == "bss" else [f"    .word {name}, {rng.choice(names)} + 4"]
        lines += [f"    .space {size}"] if size else []
        if name == "text_0":
            lines.append("_start:")
    return "\n".join(lines) + "\n"


class Layout:
    """A command file with what it promises."""

    def __init__(self, rng):
        self.rng = rng
        self.number = 0
        self.has_union = self.has_address = self.has_type = False
        self.ranges = self.make_ranges()
        self.text = self.make_text()

    def maybe(self, chance, text):
        return text if self.rng.random() < chance else ""

    def make_ranges(self):
        ranges, at = [], self.rng.choice([0, 0x100, 0x102, 0x8000])
        for i in range(self.rng.randrange(1, 6)):
            length = self.rng.choice([0x10, 0x62, 0x200, 0x400, 0x1000, 0x4000, 0x10000])
            ranges.append((f"R{i}", at, length))
            at += length + self.rng.choice([0, 0, 2, 0x100, 0x10000])
        ranges.append(("LAST", at, self.rng.choice([0x800, 0x10000, 0x10000])))
        return ranges

    def name(self):
        self.number += 1
        return self.rng.choice([".text", ".data", ".bss", ".rodata", ".stack", ".sysmem", ".args", ".init_array",
                                ".binit", ".pinit", ".const", ".cinit"]) if self.rng.random() < 0.25 else f".out{self.number}"

    def range_list(self):
        names = self.rng.sample([r[0] for r in self.ranges], self.rng.randrange(1, min(4, len(self.ranges)) + 1))
        return " | ".join(names)

    def place(self):
        if self.rng.random() < 0.07:
            self.has_address = True
            name, origin, length = self.rng.choice(self.ranges)
            return f"> {origin + self.rng.randrange(length):#x}"
        if self.rng.random() < 0.05:
            return "> (" + self.rng.choice(["R", "RW", "X", "RWX"]) + ")"
        arrow = ">>" if self.rng.random() < 0.25 else ">"
        return f"{arrow} {self.range_list()}{self.maybe(0.1, ' (HIGH)')}"

    def placement(self):
        if self.rng.random() < 0.15:
            return ""
        if self.rng.random() < 0.2:
            return f"load {self.place()}, run {self.place()}"
        return self.place()

    def properties(self, is_union=False):
        rng, n = self.rng, self.rng.choice([2, 4, 8, 16, 64, 256])
        words = [self.maybe(0.15, f"align({n})"), self.maybe(0.08, f"palign({n})"), self.maybe(0.05, f"block({n * 4})"),
                 self.maybe(0.1, f"PRIORITY({rng.randrange(1, 5)})"), self.maybe(0.08, f"fill = {rng.choice(['0', '0xAB', '0x12345678'])}"),
                 self.maybe(0.1, f"RUN_START(rs{self.number})"), self.maybe(0.1, f"LOAD_END(le{self.number})"),
                 self.maybe(0.1, f"SIZE(sz{self.number})"), self.maybe(0.03, "palign(power2)"),
                 self.placement()]
        if not is_union and rng.random() < 0.06:
            self.has_type = True
            words.append(f"type = {rng.choice(['NOINIT', 'NOLOAD', 'DSECT', 'COPY'])}")
        return ", ".join(filter(None, words))

    def item(self):
        rng = self.rng
        kind = rng.choice(list(KINDS))
        return rng.choice([f"*({kind}*)", f"*({kind}.{rng.randrange(10)}*)", f"*({kind}.{rng.randrange(PIECES)})",
                           f"a.o({kind}.1*)", f". += {rng.choice([0, 2, 4, 0x20])};", f". = ALIGN({rng.choice([4, 16, 128])});",
                           f"here{rng.randrange(99)} = .;", "*(COMMON)", f"*({kind}.3* {kind}.2)"])

    def section(self, depth):
        name = self.name()
        body = "".join(" " + self.item() for _ in range(self.rng.choice([0, 1, 1, 2, 4])))
        colon = " :" if self.rng.random() < 0.9 else ""
        return f"{'  ' * depth}{name}{colon} {{{body} }} {self.properties()}"

    def entry(self, depth):
        kind = self.rng.random()
        if depth > 2 or kind < 0.75:
            return self.section(depth)
        members = "\n".join(self.entry(depth + 1) for _ in range(self.rng.randrange(1, 4)))
        self.has_union |= kind > 0.9
        word = "UNION" if kind > 0.9 else "GROUP"
        return f"{'  ' * depth}{word}\n{'  ' * depth}{{\n{members}\n{'  ' * depth}}} {self.properties(True)}"

    def make_text(self):
        rng = self.rng
        memory = [f"  {name}{self.maybe(0.2, ' (' + rng.choice(['R', 'RW', 'RX', 'RWX']) + ')')} : origin = {origin:#x}, "
                  f"length = {length:#x}{self.maybe(0.15, ' fill = 0xEE')}" for name, origin, length in self.ranges]
        entries = [self.entry(1) for _ in range(rng.randrange(1, 9))]
        return "\n".join(["--entry_point=_start", self.maybe(0.5, "--unused_section_elimination=off"),
                          self.maybe(0.2, f"--stack_size={rng.choice(['0', '7', '0x100', '0x20000'])}"),
                          self.maybe(0.2, f"--heap_size={rng.choice(['0', '0x11', '0x800'])}"),
                          self.maybe(0.1, "--arg_size=16"), self.maybe(0.1, "--fill_value=0x5A"),
                          self.maybe(0.1, "--ram_model"), self.maybe(0.04, "--relocatable"),
                          self.maybe(0.1, "--no_placement_optimization"), self.maybe(0.1, "after = _start + SIZE(R0);"),
                          "MEMORY", "{", *memory, "}", "SECTIONS", "{", *entries, "}", ""])


def faults_of_file(path, layout):
    """What the file of a link that reports no error must not show."""
    elf = Elf(path)
    if elf.type == ET_REL:
        return
    placed = [s for s in elf.sections if s.flags & SHF_ALLOC and s.size]
    # From the top, blocking takes the place of alignment.
    may_be_unaligned = layout.has_address or ("(HIGH)" in layout.text and "block(" in layout.text)
    for s in placed:
        inside = any(origin <= s.addr and s.addr + s.size <= origin + length for _, origin, length in layout.ranges)
        if not inside and not layout.has_address and not layout.has_type:
            yield f"{s.name} at {s.addr:#x}, size {s.size:#x}, lies in no range"
        if s.align > 1 and s.addr % s.align and not may_be_unaligned:
            yield f"{s.name} at {s.addr:#x} is not aligned to {s.align}"
    if not layout.has_union and not layout.has_type:
        placed.sort(key=lambda s: s.addr)
        for a, b in zip(placed, placed[1:]):
            if a.addr + a.size > b.addr:
                yield f"{a.name} at {a.addr:#x}, size {a.size:#x}, overlaps {b.name} at {b.addr:#x}"
    for symbol in elf.symbols:
        if not re.fullmatch(r"(text|data|rodata)_\d+", symbol.name):
            continue
        section = elf.sections[symbol.shndx] if symbol.shndx < len(elf.sections) else None
        if section is None or section.type == SHT_NOBITS or not section.flags & SHF_ALLOC:
            continue
        at = symbol.value - section.addr
        word = int.from_bytes(section.data[at:at + 4], "little")
        if word != symbol.value:
            yield f"{symbol.name} at {symbol.value:#x} holds {word:#x}"


def run_layout(opts, number):
    layout = Layout(random.Random(f"{opts.seed}:{number}"))
    work = opts.work / str(number)
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    (work / "link.cmd").write_text(layout.text)
    (work / "a.o").write_bytes((opts.work / "a.o").read_bytes())
    env = {**os.environ, "ASAN_OPTIONS": "exitcode=99:handle_segv=2"}
    text, wrong, status = "", None, None
    try:
        done = subprocess.run([str(opts.qvlink), "a.o", "link.cmd", "-o", "out.elf", "--map_file=out.map"], cwd=work,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=TIME_LIMIT, env=env)
        status, text = done.returncode, done.stdout.decode("latin-1")
        has_file = (work / "out.elf").exists()
        if status not in (0, 1) or re.search(r"internal .*#|INTERNAL ERROR|runtime error|Sanitizer", text):
            wrong = f"status {status}"
        elif has_file != (status == 0):
            wrong = f"status {status} {'with' if has_file else 'without'} a file"
        elif has_file:
            wrong = "; ".join(faults_of_file(work / "out.elf", layout))
    except subprocess.TimeoutExpired:
        wrong = f"no end within {TIME_LIMIT} seconds"
    if opts.only is not None:
        print(f"{layout.text}\n{text}\nstatus {status}")
    elif not wrong:
        shutil.rmtree(work)
    report = f"FAILED: {wrong}\n  seed {opts.seed}, layout {number}, in {work}\n" + "".join(
        f"  | {line}\n" for line in text.splitlines()[:20])
    return status, report if wrong else None


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--count", type=int, default=400)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", type=int)
    opts = parser.parse_args()
    opts.qvlink, opts.work = opts.qvlink.resolve(), opts.work.resolve()
    shutil.rmtree(opts.work, ignore_errors=True)
    opts.work.mkdir(parents=True)
    (opts.work / "a.s").write_text(assembly())
    subprocess.run(["arm-none-eabi-as", "-mcpu=cortex-m3", "a.s", "-o", "a.o"], cwd=opts.work, check=True)
    numbers = range(opts.count) if opts.only is None else [opts.only]
    linked = failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for status, report in pool.map(lambda number: run_layout(opts, number), numbers):
            linked += status == 0
            failed += report is not None
            if report:
                print(report, flush=True)
    print(f"{len(numbers)} layouts, {linked} linked, {failed} failures")
    if opts.only is None and linked < len(numbers) // 20:
        print("too few of them link to say anything")
        return 1
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
