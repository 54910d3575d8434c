#!/usr/bin/env python3
"""The XML link information says what the program is and what the map says: each of its numbers is found again in the ELF
file or in the map, by readers of their own; every document is valid by docs/link-info.xsd, and damaged ones are not.
"""
import argparse
import re
import subprocess
import sys
from collections import Counter
from pathlib import Path

HERE = Path(__file__).resolve().parent
TOP = HERE.parents[1]
sys.path[:0] = [str(TOP / "examples"), str(HERE), str(HERE.parent / "support")]
import run  # noqa: E402
from elf import SHT_NOBITS  # noqa: E402
from linkinfo import LinkInfo  # noqa: E402
from map_test import Program, branches_to  # noqa: E402
from mapfile import Map  # noqa: E402
import arm_branch  # noqa: E402

SCHEMA = TOP / "docs/link-info.xsd"
PROGRAMS = ["hello", "newlib", "rom-model", "overlays", "crc", "farcall", "farcall-a15", "exceptions", "freestanding-be"]
# Damage to a document, as a pattern and what it becomes, that the schema must find.
DAMAGE = [(r'idref="oc-\w+"', 'idref="oc-fffff"'), (r'idref="fl-\w+"', 'idref="fl-fffff"'),
          (r'<logical_group_ref idref="lg-', '<logical_group_ref idref="oc-'), (r"<size>0x", "<size>"),
          (r"<title>.*</title>", ""), (r' color="cyan"', ""), (r' id="lg-\w+"', ' id="fl-0"'),
          (r"<used_space>", "<used_place>"), (r"<run_address>.*\n", "")]


def same(what, said, found):
    if said != found:
        raise run.Failed(f"{what}: the document says {said!r}, the other {found!r}")


def valid(path):
    return subprocess.run(["xmllint", "--noout", "--schema", SCHEMA, path], stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, check=False)


def check_validity(path):
    done = valid(path)
    if done.returncode:
        raise run.Failed(f"{path} is not valid:\n{done.stderr.decode('latin-1')[:2000]}")


def check_schema(path):
    """What is damaged isn't valid."""
    text = path.read_text(encoding="latin-1")
    for pattern, instead in DAMAGE:
        bad, count = re.subn(pattern, instead, text, count=1)
        damaged = path.with_suffix(".bad")
        damaged.write_text(bad, encoding="latin-1")
        if not count or valid(damaged).returncode == 0:
            raise run.Failed(f"the schema allows {pattern!r} to become {instead!r}")
    root = (TOP / "src/ELFLNK/xmlinfo/xml_tags.def").read_text()
    names = {name for name in re.findall(r'XML_TAG\(\w+, \w+, "(\w+)"', root)}
    described = set(re.findall(r'<xs:element name="(\w+)"', SCHEMA.read_text()))
    same("elements of the schema and of the table", sorted(described), sorted(names))


def output_sections(info, program):
    """{name: (group or component, its components)} of the program's sections; a load image is no group."""
    names = {s.name for s in program.sections}
    found = {c.name: (c, [c]) for c in info.components.values() if c.name in names}
    found.update({g.name: (g, members(info, g)) for g in info.groups.values() if g.name in names and g.kind == "logical_group"})
    return found


def check_sections(info, program, report):
    sections = output_sections(info, program)
    same("sections", sorted(sections), sorted(s.name for s in program.sections))
    for s in program.sections:
        said = sections[s.name][0]
        load = None if s.type == SHT_NOBITS else program.stored[s.name]
        same(f"section {s.name}", (said.run, said.size, said.load), (s.addr, s.size, load))
    for row in report.sections:
        said, below = sections[row.name]
        same(f"{row.name} in the map", (row.origin if row.run is None else row.run, row.length), (said.run, said.size))
        rows = [m for m in row.members if m.section]
        same(f"members of {row.name}", Counter((c.name, c.size, *info.files.get(c.file, (None, None))) for c in below if c.size),
             Counter((m.section, m.size, m.library, m.file) for m in rows))
        at = {(c.load if c.load is not None and said.load is not None else c.run, c.size) for c in below if c.size}
        same(f"places in {row.name}", sorted(at), sorted({(m.address, m.size) for m in rows}))
    same("red groups", [g.name for g in info.groups.values() if g.color == "red"], [])


def members(info, group):
    """The components of a group, those of groups in it too."""
    found = [info.components[c] for c in group.components]
    for inner in group.groups:
        found += members(info, info.groups[inner])
    return found


def check_segments(info, program):
    rows = sorted((g.run, g.load if g.load is not None else g.run, g.size, g.flags)
                  for g in info.groups.values() if g.kind == "load_segment")
    same("segments", rows, sorted((s.vaddr, s.paddr, s.memsz, s.flags) for s in program.loads))


def check_memory(info, report):
    same("memory", [(a.name, a.page, a.origin, a.length, a.used, a.unused, a.attrs) for a in info.areas],
         [(r.name[:21], r.page, r.origin, r.length, r.used, r.unused, r.attrs) for r in report.memory])
    for a in info.areas:
        same(f"free blocks of {a.name}", sum(size for _, size in a.free), a.unused if a.taken else 0)
        same(f"display of {a.name}", (a.display, a.color), ("yes" if a.length > 100 else "no", "green"))
        at = a.origin
        for start, size, *group in sorted(a.free + a.taken):
            if start < at or start + size > a.origin + a.length:
                raise run.Failed(f"{a.name}: block at {start:#x} overlaps or leaves the range")
            at = start + size
            if group and group[0] is None:
                raise run.Failed(f"{a.name}: the block at {start:#x} belongs to nothing")


def check_tables(info, report):
    rows = {t.name: [(r["name"], r["load addr"], r["load size"], r["run addr"], r["run size"], r["compression"])
                     for r in t.rows] for t in report.copy_tables}
    same("copy tables", {name: [tuple(r.values()) for r in records] for name, records in info.copy_tables.items()}, rows)
    handlers = report.handlers[0].rows if report.handlers else []
    same("handlers", info.handlers, dict(enumerate(handlers)))
    rows = {t.name: [(r["name"], r["algorithm"], r["load addr"], r["size"], r["CRC"]) for r in t.rows]
            for t in report.crc_tables}
    same("CRC tables", {name: [(r["name"], r["alg_name"], r["load_address"], r["load_size"], r["crc_value"]) for r in records]
                        for name, records in info.crc_tables.items()}, rows)


def check_stubs(info, report, program):
    for said, listed in ((info.far_calls, report.far_calls), (info.veneers, report.veneers)):
        same("stubs", [(s.callee, s.callee_address, s.address, [a for a, _ in s.calls]) for s in said],
             [(s.callee, s.callee_address, s.address, [c.address for c in s.calls]) for s in listed])
    counts = (len(info.far_calls), sum(len(s.calls) for s in info.far_calls)) if info.far_calls else (None, None)
    same("the number of stubs and calls", info.stub_counts, counts)
    memory = arm_branch.Memory(program.elf)
    for s in info.far_calls:
        same(f"the stub of {s.callee}", s.address, info.components[s.component].run)
        for address, caller in s.calls:
            section = info.components[caller]
            if not section.run <= address < section.run + section.size or s.address not in branches_to(memory, address):
                raise run.Failed(f"the call at {address:#x} isn't one in {section.name} to {s.address:#x}")


def check_symbols(info, program):
    found = Counter((s.value, s.name) for s in program.elf.symbols if s.bind != "LOCAL")
    same("symbols", Counter((s.value, s.name) for s in info.symbols), found)
    of = {s.name: s.section for s in program.elf.symbols if s.bind != "LOCAL"}
    section_of = {c.id: name for name, (_, below) in output_sections(info, program).items() for c in below}
    with_component = [s for s in info.symbols if s.component]
    for s in with_component:
        c = info.components[s.component]
        if not c.run <= s.value <= c.run + c.size or of[s.name] != section_of[s.component]:
            raise run.Failed(f"symbol {s.name} at {s.value:#x} isn't in {c}, which is in {section_of[s.component]}")
    if len(with_component) < len(found) // 4:
        raise run.Failed(f"only {len(with_component)} of {len(found)} symbols have a component")
    same("the entry point", info.entry, (info.entry[0], program.elf.entry))


def build(name, qvlink, work):
    """Links an example; the document, the program and its map."""
    work.mkdir(parents=True, exist_ok=True)
    objects, archives = run.compile_program(name, work), run.library_copies(name, work)
    if run.PROGRAMS[name].get("runtime"):
        archives.append(run.runtime_archive(name, work))
    document = work / f"{name}.xml"
    elf = run.link(name, qvlink, [f"--xml_link_info={document}", *objects], archives, work)
    check_validity(document)
    return document, elf


def check(name, qvlink, work):
    document, elf = build(name, qvlink, work)
    info, report, program = LinkInfo(document), Map(elf.with_suffix(".map")), Program(elf)
    same("the frame", (info.output, info.errors, info.title), (str(elf), 0, "Link successful"))
    check_sections(info, program, report)
    check_segments(info, program)
    check_memory(info, report)
    check_tables(info, report)
    check_stubs(info, report, program)
    check_symbols(info, program)
    return document


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("programs", nargs="*")
    opts = parser.parse_args()
    failures = 0
    for name in opts.programs or PROGRAMS:
        try:
            document = check(name, opts.qvlink, opts.work / name)
            if name == "overlays":
                check_schema(document)
            print(f"{name}: ok")
        except (run.Failed, ValueError) as e:
            failures += 1
            print(f"{name}: FAILED: {e}")
    for golden in sorted((HERE / "golden").glob("*.xml")):
        try:
            check_validity(golden)
            LinkInfo(golden)
        except (run.Failed, ValueError) as e:
            failures += 1
            print(f"FAILED: {golden.name}: {e}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
