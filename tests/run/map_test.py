#!/usr/bin/env python3
"""The map says what the program is: each number of the report is found again in the ELF file, by a reader of its own.

For every example: memory ranges, segments, output sections and what they are made of, sums per module, the tables of
start-up, trampolines and symbols.
"""
import argparse
import subprocess
import sys
from collections import Counter
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1] / "examples"), str(HERE.parent / "support")]
import arm_branch  # noqa: E402
import run  # noqa: E402
from elf import SHT_NOBITS, Elf  # noqa: E402
from mapfile import Map  # noqa: E402

LOAD = 1
ALLOC, WRITE, EXEC = 2, 1, 4
# The parts of the map that only some programs have.
PARTS = {"overlays": {"copy_tables", "handlers", "far_calls"}, "rom-model": {"copy_tables", "handlers"},
         "crc": {"copy_tables", "handlers", "crc_tables"}, "farcall": {"far_calls"}, "farcall-a15": {"far_calls", "veneers"}}


class Program:
    """An ELF file with what the map speaks of: where sections are stored, and words at addresses."""

    def __init__(self, path):
        self.elf = Elf(path)
        self.loads = [s for s in self.elf.segments if s.type == LOAD]
        self.sections = [s for s in self.elf.sections if s.flags & ALLOC]
        self.stored = {s.name: self.load_address(s) for s in self.sections}

    def load_address(self, section):
        """Where the bytes of a section are stored; its run address if it has none."""
        for s in self.loads:
            if section.type != SHT_NOBITS and s.offset <= section.offset and s.vaddr <= section.addr and \
               section.offset + section.size <= s.offset + s.filesz:
                return section.addr - s.vaddr + s.paddr
        return section.addr

    def at(self, address, size):
        """The bytes stored at a load address."""
        for s in self.sections:
            start = self.stored[s.name]
            if s.type != SHT_NOBITS and start <= address and address + size <= start + s.size:
                return s.data[address - start:address - start + size]
        raise run.Failed(f"nothing is stored at {address:#x}")

    def word(self, address, size=4):
        return int.from_bytes(self.at(address, size), "little" if self.elf.end == "<" else "big")

    def flags(self, bits):
        return "".join(c if bits & b else "-" for b, c in ((4, "r"), (2, "w"), (1, "x")))


def same(what, said, found):
    if said != found:
        raise run.Failed(f"{what}: the map says {said!r}, the program has {found!r}")


def covered(intervals, start, end):
    """How much of [start, end) the intervals cover together."""
    total, at = 0, start
    for a, b in sorted(intervals):
        a, b = max(a, at), min(b, end)
        if b > a:
            total, at = total + b - a, b
    return total


def check_memory(report, program):
    places = [(s.addr, s.addr + s.size) for s in program.sections]
    places += [(program.stored[s.name], program.stored[s.name] + s.size) for s in program.sections]
    for r in report.memory:
        same(f"{r.name} used", r.used, covered(places, r.origin, r.origin + r.length))
        same(f"{r.name} unused", r.unused, r.length - r.used)
    outside = [hex(a) for a, b in places if b > a and
               not any(r.origin <= a and b <= r.origin + r.length for r in report.memory)]
    same("what lies in no range", [], outside)


def check_segments(report, program):
    rows = sorted((s.run, s.load, s.size, s.init, s.flags) for s in report.segments)
    same("segments", rows, sorted((s.vaddr, s.paddr, s.memsz, s.filesz, program.flags(s.flags)) for s in program.loads))
    members = sorted((m.name, m.run, m.load, m.size, m.init) for s in report.segments for m in s.members)
    same("members of segments", members, sorted(
        (s.name, s.addr, program.stored[s.name], s.size, 0 if s.type == SHT_NOBITS else s.size)
        for s in program.sections if s.size))


def check_sections(report, program):
    rows = sorted((s.name, s.origin, s.origin if s.run is None else s.run, s.length, s.note == "UNINITIALIZED")
                  for s in report.sections)
    same("sections", rows, sorted((s.name, program.stored[s.name], s.addr, s.size, s.type == SHT_NOBITS)
                                  for s in program.sections))
    order = [(s.page, s.origin) for s in report.sections]
    same("the order of sections", order, sorted(order))
    for s in report.sections:
        at = s.origin
        for m in s.members:
            same(f"where {s.name} goes on", m.address, at)
            at += m.size
        same(f"where {s.name} ends", at, s.origin + s.length)


def input_file(member, work):
    """The object that a member of a section comes from."""
    if not member.library:
        return work / member.file
    out = work / "members" / member.library / member.file
    if not out.exists():
        out.parent.mkdir(parents=True, exist_ok=True)
        out.write_bytes(subprocess.run(["arm-none-eabi-ar", "p", work / member.library, member.file], check=True,
                                       stdout=subprocess.PIPE).stdout)
    return out


def kind_of(member, output, work, objects):
    """Which of the module table's columns a member counts in: 0 code, 1 constants, 2 variables."""
    if member.file and not member.section.startswith(".tramp."):
        path = input_file(member, work)
        if path not in objects:
            objects[path] = Elf(path)
        inputs = [s for s in objects[path].sections if s.name == member.section]
        if not member.section.startswith(".ARM.exidx") and member.size not in (s.size for s in inputs):
            raise run.Failed(f"{path.name} has no section {member.section} of {member.size:#x} bytes")
        flags = inputs[0].flags
    else:
        flags = EXEC if member.file else output.flags
    return 0 if flags & EXEC else 2 if flags & WRITE else 1


def check_modules(report, program, work):
    """Each row is the sum of what the section map lists from that file, once for each memory that it takes."""
    sums, objects = Counter(), {}
    for s in report.sections:
        output = program.elf.section(s.name)
        times = 1 if s.run is None or s.run == s.origin else 2
        if s.name in (".stack", ".sysmem"):
            sums[None, "Stack:" if s.name == ".stack" else "Heap:", 2] += s.length
            continue
        for m in s.members:
            if m.section:
                group = m.library and str(work / m.library) or (str(work) if m.file else None)
                sums[group, m.file or "Linker Generated:", kind_of(m, output, work, objects)] += m.size * times
    said = {(m.group, m.name, column): m[2 + column] for m in report.modules for column in range(3) if m[2 + column]}
    same("module sums", sorted(said.items(), key=str), sorted(sums.items(), key=str))
    for group, total in report.totals.items():
        rows = [m for m in report.modules if m.group == group]
        same(f"total of {group}", total, tuple(sum(m[2 + c] for m in rows) for c in range(3)))
        sizes = [sum(m[2:]) for m in rows]
        same(f"order of {group}", sizes, sorted(sizes, reverse=True))
    same("grand total", report.grand_total, tuple(sum(m[2 + c] for m in report.modules) for c in range(3)))


def check_copy_tables(report, program):
    image = {s.name: s for s in program.sections}
    for table in report.copy_tables:
        cinit = table.record_size == 8
        same(f"records of {table.name}", table.records, len(table.rows))
        same(f"size of {table.name}", table.size, table.records * table.record_size + (0 if cinit else 4))
        at = table.address
        if not cinit:
            same(f"head of {table.name}", (table.record_size, table.records), (program.word(at, 2), program.word(at + 2, 2)))
            same(f"place of {table.name}", at, program.elf.symbol(table.name).value)
            at += 4
        for row in table.rows:
            encoded = row["compression"] != "none"
            size = [] if cinit else [0 if encoded else row["load size"]]
            same(f"record of {row['name']}", [row["load addr"], row["run addr"], *size],
                 [program.word(at + 4 * i) for i in range(table.record_size // 4)])
            section = image[row["name"]]
            same(f"{row['name']} in {table.name}", (row["run addr"], row["run size"]), (section.addr, section.size))
            same(f"compression of {row['name']}", encoded, section.type == SHT_NOBITS)
            at += table.record_size
    for table in report.handlers:
        for i, routine in enumerate(table.rows):
            same(f"handler {i}", program.elf.symbol(routine).value, program.word(table.address + 4 * i))
        same("the handler table's size", (table.records, table.size), (len(table.rows), 4 * len(table.rows)))


def check_crc_tables(report, program):
    for table in report.crc_tables:
        same(f"head of {table.name}", (table.record_size, table.records),
             (program.word(table.address), program.word(table.address + 4)))
        same(f"size of {table.name}", table.size, 8 + table.records * table.record_size)
        same(f"place of {table.name}", table.address, program.elf.symbol(table.name).value)
        at = table.address + 8
        for row in table.rows:
            same(f"record of {row['name']}", (row["CRC"], row["load addr"], row["size"]),
                 (program.word(at, 8), program.word(at + 12), program.word(at + 16)))
            same(f"what {row['name']} is", (row["load addr"], row["size"]),
                 (program.stored[row["name"]], program.elf.section(row["name"]).size))
            at += table.record_size


def branches_to(memory, address):
    """Where the instruction at an address leads, if it is a branch, in either state."""
    for state in arm_branch.THUMB, arm_branch.ARM:
        try:
            yield arm_branch.branch(memory, address, state)[0] & ~1
        except ValueError:
            pass


def check_stubs(report, program):
    memory = arm_branch.Memory(program.elf)
    stubs = sorted((s.name, s.value & ~1) for s in program.elf.symbols if s.name.startswith(("$Tramp$", "$Ven$")))
    same("stubs", sorted((s.name, s.address) for s in report.far_calls + report.veneers), stubs)
    for stub in report.far_calls + report.veneers:
        same(f"place of {stub.callee}", stub.callee_address, program.elf.symbol(stub.callee).value)
        for call in stub.calls:
            if stub.address not in branches_to(memory, call.address):
                raise run.Failed(f"no branch at {call.address:#x} leads to the stub {stub.name} at {stub.address:#x}")


def check_symbols(report, program):
    found = Counter((None if s.shndx == 0 else s.value, s.name) for s in program.elf.symbols if s.bind != "LOCAL")
    same("symbols by name", Counter(report.by_name), found)
    same("symbols by address", Counter(report.by_address), found)
    same("the number of symbols", report.symbol_count, len(report.by_address))
    same("the order of names", report.by_name, sorted(report.by_name, key=lambda s: s[1]))
    same("the order of addresses", report.by_address, sorted(report.by_address, key=lambda s: (s[0] is None, s[0] or 0, s[1])))
    same("the entry point", report.entry[1], program.elf.entry)
    same("the entry's symbol", report.entry, (report.entry[0], program.elf.symbol(report.entry[0]).value))


def check(name, qvlink, work):
    elf = run.build(name, qvlink, work)
    report, program = Map(elf.with_suffix(".map")), Program(elf)
    same("the output", report.output, str(elf))
    parts = {"copy_tables", "handlers", "crc_tables", "far_calls", "veneers"}
    same("special parts", {part for part in parts if getattr(report, part)}, PARTS.get(name, set()))
    check_memory(report, program)
    check_segments(report, program)
    check_sections(report, program)
    check_modules(report, program, work)
    check_copy_tables(report, program)
    check_crc_tables(report, program)
    check_stubs(report, program)
    check_symbols(report, program)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("programs", nargs="*")
    opts = parser.parse_args()
    failures = 0
    for name in opts.programs or run.PROGRAMS:
        try:
            check(name, opts.qvlink, opts.work / name)
            print(f"{name}: ok")
        except (run.Failed, ValueError) as e:
            failures += 1
            print(f"{name}: FAILED: {e}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
