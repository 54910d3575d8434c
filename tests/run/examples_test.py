#!/usr/bin/env python3
"""Every example, linked by qvlink and, with the same layout, by GNU ld: both programs run in QEMU and print the same.

The output of qvlink is also read by tools that know ELF and by a debugger (elf_check.py), which must have nothing to say,
and two links of the same inputs in different folders must be equal byte for byte.
"""
import argparse
import re
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1] / "examples"), str(HERE.parent / "support")]
import elf_check  # noqa: E402
import run  # noqa: E402
from elf import Elf  # noqa: E402


def check_image(elf):
    """Sections that occupy memory lie apart unless they take turns in one place, and nothing lies outside."""
    runs = [(s.addr, s.addr + s.size, s.name) for s in Elf(elf).sections if s.flags & 2 and s.size]
    overlays = [{".first", ".second"}, {".sums", ".words", ".squares"}, {".overlay1", ".overlay2"}]
    for a in runs:
        for b in runs:
            if a < b and a[1] > b[0] and not any({a[2], b[2]} <= o for o in overlays):
                raise run.Failed(f"{elf}: {a} overlaps {b}")


# The stubs that a program needs, and no others: by output section, what is called over which kind of stub.
STUBS = {
    "farcall": {(".text", "TT", name) for name in ("square", "sum_to", "mix", "tail")} |
               {(".far", "TT", name) for name in ("twice", "add_one")},
    "farcall-a15": {(".text", "TT", "far_thumb"), (".text", "AT", "far_thumb"), (".text", "AA", "far_arm"),
                    (".text", "AT", "near_thumb"), (".text", "TA", "near_arm"), (".text", "AT", "report"),
                    (".text", "AT", "finish"), (".far", "AT", "near_thumb"), (".far", "TT", "near_thumb"),
                    (".far", "AA", "near_arm")},
    "overlays": {(".text", "TT", "squares")},
}


def check_stubs(name, elf):
    """The program has just the stubs that it needs, one of each kind, and each is branched to; all other branches out of a
    function lead to functions."""
    file = Elf(elf)
    stubs = {s.value & ~1: s for s in file.symbols if s.name.startswith(("$Tramp$", "$Ven$"))}
    found = sorted((s.section, s.name.split("$")[2], s.name.split("$$")[1]) for s in stubs.values())
    if found != sorted(STUBS.get(name, ())):
        raise run.Failed(f"{elf} has the stubs {found}")
    if not stubs:
        return
    entries = {s.value & ~1 for s in file.symbols if s.type == "FUNC"}
    text = run.run(["arm-none-eabi-objdump", "-d", elf])
    targets = [int(t, 16) for t in re.findall(r"\t(?:blx?|b\.w|b|bne)\t([0-9a-f]+) ", text)]
    unused, lost = stubs.keys() - set(targets), [t for t in targets if t not in entries]
    if unused or lost:
        raise run.Failed(f"{elf}: stubs without callers at {unused}, branches to {[hex(t) for t in lost]}")


def check_that_changes_show(elf):
    """A program that checks its image finds each byte that is another one than the linker wrote."""
    image, file = run.image_of(elf), Elf(elf)
    right = image.read_bytes()
    for section in map(file.section, (".check0", ".check5", ".check9", ".check10", ".check12", ".part2", ".overlay1")):
        start = next(s.paddr - s.offset for s in file.segments if s.offset <= section.offset < s.offset + s.filesz)
        wrong = bytearray(right)
        wrong[start + section.offset + section.size - 1] ^= 0x10
        image.write_bytes(wrong)
        try:
            said = run.run_image_in_qemu(image)
        except run.Failed as e:
            said = str(e)
        if "status 1\n" not in said or ", 1 wrong" not in said:
            raise run.Failed(f"a changed byte of {section.name} isn't found:\n{said}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("programs", nargs="*")
    opts = parser.parse_args()
    failures = 0
    for name in opts.programs or run.PROGRAMS:
        expected = (run.HERE / name / "expected.txt").read_text()
        try:
            elf = run.build(name, opts.qvlink, opts.work / name)
            again = run.build(name, opts.qvlink, opts.work / "again" / name)
            printed = run.run_program(name, elf)
            if printed != expected:
                raise run.Failed(f"printed\n{printed}--- expected\n{expected}")
            found = elf_check.complaints([elf])
            if found:
                raise run.Failed("\n".join(found))
            check_image(elf)
            check_stubs(name, elf)
            if name == "crc":
                check_that_changes_show(elf)
            if elf.read_bytes() != again.read_bytes():
                raise run.Failed(f"{elf} and {again} differ")
            if not (elf.with_suffix(".map")).read_text(encoding="latin-1").strip():
                raise run.Failed("the map file is empty")
            if run.PROGRAMS[name].get("runtime"):  # no other linker makes what its start-up reads
                print(f"{name}: ok")
                continue
            peer = peer_link(name, opts.work / name)
            if run.run_in_qemu(peer, run.machine_of(name)) != expected:
                raise run.Failed("linked by GNU ld the program prints something else")
            print(f"{name}: ok")
        except run.Failed as e:
            failures += 1
            print(f"{name}: FAILED: {e}")
    return 1 if failures else 0


def peer_link(name, work):
    out = work / f"{name}.peer.elf"
    objects = [work / (Path(s).stem + ".o") for s in run.PROGRAMS[name]["sources"]]
    archives = [work / a for a in run.PROGRAMS[name].get("archives", [])]
    run.run(["arm-none-eabi-ld", *run.PROGRAMS[name].get("peer", []), "--gc-sections", "-T", HERE / "peer" / f"{name}.ld", *objects, "--start-group",
             *archives, "--end-group", "-o", out])
    return out


if __name__ == "__main__":
    sys.exit(main())
