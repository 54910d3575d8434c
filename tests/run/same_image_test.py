#!/usr/bin/env python3
"""The image of a program is that of GNU ld at the same layout, byte for byte: GNU ld is told by a script where qvlink has put
each input section, and objcopy makes a binary of both. Big-endian programs are compared in both forms, BE-8 and BE-32, and
their code is read by a disassembler."""
import argparse
import re
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1] / "examples"), str(HERE.parent / "support")]
import run  # noqa: E402
from elf import SHT_NOBITS, Elf  # noqa: E402

# Program, more options of qvlink, and what GNU ld needs for the same. Those with archives are not among them: where two
# members define a name, the two linkers may pull another one.
CASES = [("hello", [], []), ("cpp", [], []), ("regions", [], ["--no-check-sections"]),
         ("freestanding-be", [], ["-EB", "--be8"]), ("freestanding-be", ["--be32"], ["-EB"])]
HIDDEN = 2  # visibility of the symbols that the linker and the command file define
# GNU ld joins equal strings; in copies without that flag it leaves them.
NO_MERGING = ["--set-section-flags", "*.str*=alloc,readonly,data,contents", "--set-section-flags",
              ".rodata.cst*=alloc,readonly,data,contents", "--strip-debug"]
OUTPUT_SECTION = re.compile(r"^(\.\S+)(?:\s*\n\*)?\s+0\s+([0-9a-f]{8})\s+([0-9a-f]{8})\b.*$", re.M)
INPUT_SECTION = re.compile(r"^ {18}([0-9a-f]{8})\s+[0-9a-f]{8}\s+(\S+) \((\S+)\)$")


def input_sections(map_text):
    """{output section: [(address, file, input section)]} from the map file."""
    text = map_text[map_text.index("SECTION ALLOCATION MAP"):map_text.index("MODULE SUMMARY")]
    found = {}
    heads = list(OUTPUT_SECTION.finditer(text))
    for head, end in zip(heads, [h.start() for h in heads[1:]] + [len(text)]):
        matches = map(INPUT_SECTION.match, text[head.end():end].splitlines())
        found[head[1]] = [(int(m[1], 16), m[2], m[3]) for m in matches if m]
    return found


def load_address(elf, section):
    for s in elf.segments:
        if s.type == 1 and s.vaddr <= section.addr < s.vaddr + s.memsz:
            if section.type == SHT_NOBITS or s.offset <= section.offset < s.offset + max(s.filesz, 1):
                return s.paddr + section.addr - s.vaddr
    return section.addr


def script_of(elf, map_text):
    rows = input_sections(map_text)
    lines = [f"{s.name} = {s.value:#x};" for s in elf.symbols
             if s.other == HIDDEN and s.bind == "GLOBAL" and re.fullmatch(r"\w+", s.name)]
    lines += [f"ENTRY({next(s.name for s in elf.symbols if s.value == elf.entry and s.bind == 'GLOBAL')})", "SECTIONS {"]
    count = 0
    for section in elf.sections:
        if not section.flags & 2 or not section.size:
            continue
        lines.append(f"  {section.name} {section.addr:#x} : AT({load_address(elf, section):#x}) {{")
        base = min([r[0] for r in rows[section.name]] or [0])
        for address, file, name in rows[section.name]:
            count += 1
            lines.append(f"    . = {address - base:#x}; *{file}({name})")
        lines.append(f"    . = {section.size:#x};" if section.type != SHT_NOBITS else f"    . += {section.size:#x} - .;")
        lines.append("  }")
    if count < 5:
        raise run.Failed("the map names hardly any input section")
    return "\n".join([*lines, "  /DISCARD/ : { *(*) }", "}\n"])


def check(name, ours, theirs, opts):
    work = opts.work / "-".join([name, *[o.strip("-") for o in ours]])
    work.mkdir(parents=True, exist_ok=True)
    objects = run.compile_program(name, work)
    for file in objects:
        run.run(["arm-none-eabi-objcopy", *NO_MERGING, file])
    out, map_file = work / "ours.elf", work / "ours.map"
    run.run([opts.qvlink, *objects, run.HERE / name / "link.cmd", f"--map_file={map_file}", "-o", out, *ours])
    elf = Elf(out)
    script, peer = work / "peer.ld", work / "peer.elf"
    script.write_text(script_of(elf, map_file.read_text(encoding="latin-1")))
    run.run(["arm-none-eabi-ld", *theirs, "-T", script, *objects, "-o", peer])
    images = []
    for file in (out, peer):
        run.run(["arm-none-eabi-objcopy", "-O", "binary", file, file.with_suffix(".bin")])
        images.append(file.with_suffix(".bin").read_bytes())
    if len(images[0]) < 200 or images[0] != images[1]:
        at = next((i for i, (a, b) in enumerate(zip(*images)) if a != b), min(map(len, images)))
        raise run.Failed(f"{out} and {peer} differ at {at:#x} of {len(images[0]):#x} and {len(images[1]):#x} bytes")
    if "freestanding-be" in name:
        code = [instructions(file) for file in (out, peer)]
        if len(code[0]) < 80 or code[0] != code[1] or any("undefined" in line for line in code[0]):
            raise run.Failed(f"the code of {out} and {peer} reads differently")


def instructions(file):
    """The instructions of the program, without the names of places."""
    text = run.run(["arm-none-eabi-objdump", "-d", file])
    return [re.sub(r"<[^>]*>", "", line) for line in text.splitlines() if re.match(r"\s*[0-9a-f]+:\t", line)]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    opts = parser.parse_args()
    failures = 0
    for name, ours, theirs in CASES:
        try:
            check(name, ours, theirs, opts)
            print(f"{name} {' '.join(ours)}: ok")
        except run.Failed as e:
            failures += 1
            print(f"{name} {' '.join(ours)}: FAILED: {e}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
