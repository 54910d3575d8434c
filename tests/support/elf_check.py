#!/usr/bin/env python3
"""Tools that were written by others accept what the linker wrote: readelf, llvm-readelf and eu-elflint have nothing to say of
a file, and gdb finds its functions where they are, with their lines.

    elf_check.py --qvlink build/release/qvlink build/release/linktest build/release/runtest

checks every file below the folders that this qvlink wrote, most of them left by the tests; a test runs it after all others.
Files are given to each tool in batches. The status is 77 when there is no file that is as new as the linker.
"""
import argparse
import concurrent.futures
import os
import re
import struct
import subprocess
import sys
from collections import namedtuple
from pathlib import Path

from elf import SHN_XINDEX, SHT_NOBITS, Elf

SHF_ALLOC, SHF_STRINGS, ET_EXEC = 2, 0x20, 2
BATCH = 40
FUNCTIONS = 6  # of each file, that gdb is asked for, and those of these names
STARTS = "main", "start"

# What eu-elflint says of a file and why that stays: of all files, or of those whose path matches.
Exception_ = namedtuple("Exception_", "said where why")
TOLERATED = [Exception_(re.compile(said), re.compile(where), why) for said, where, why in (
    (r"'\.(sh)?strtab' has wrong flags", "", "string tables carry SHF_STRINGS, as their type already says"),
    (r"symbol \d+ \(\w*load(_\w+|ed)?\): st_value out of bounds", "",
     "a symbol for the load address of a section belongs to that section and lies outside of its run addresses"),
    (r"st_value out of bounds", r"linktest/(placement/order_steps|exidx/table|relocate/\w+|expr/\w+)/|reloc_table_test/",
     "the test defines symbols that lie outside of their sections, which a command file and an object may do"),
    (r"'\.(preinit|init|fini)_array' has wrong type: expected \w+, is PROGBITS", "",
     "output sections with contents are PROGBITS, whatever their inputs were"),
    (r"'\.note' has wrong type: expected NOTE, is PROGBITS", "", "the same"),
    (r"'\.ARM\.exidx' has wrong type", "", "the same, where the table is off"),
    (r"'\.(data|text)' has wrong type: expected PROGBITS, is NOBITS", "",
     "what is stored encoded has no contents where it runs: start-up puts them there"),
    (r"has unexpected type 8 for an executable section|is executable but contains no executable sections", "", "the same"),
    (r"'\S+' is both executable and writable|has wrong flags: expected \S+, is WRITE\|ALLOC\|EXECINSTR",
     r"overlays|order_steps|compress/choice|fill/ranges|matching_model", "code and variables in one section, as they were put"),
    (r"'\.data' has wrong flags: expected WRITE\|ALLOC, is ALLOC", r"linktest/reach/rules",
     "the command file puts a section that is only read into .data"),
    (r"not fully contained in segment of program header|is writable but contains no writable sections", "",
     "sections without contents that follow each other have one file offset, which is taken for the segment before"),
    (r"executables and DSOs cannot have zero program header|alloc flag set but section not in any loaded segment",
     r"trampoline/far_calls|load/rules|write/symbols",
     "a program that keeps its relocations is to be linked again and has no program headers"),
    (r"'\.QV\.symbol\.alias': size not multiple of entry size", "", "the table's entries have their names behind them"),
)]
# What isn't checked at all, and why.
LEFT_OUT = [(re.compile(where), why) for where, why in (
    (r"/mutation_test/", "its inputs are damaged on purpose, and what comes of them may be as senseless"),
)]


def output_of(tool, *files):
    done = subprocess.run([*tool, *map(str, files)], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          stdin=subprocess.DEVNULL)
    return done.stdout.decode("latin-1")


def by_file(text, files, head):
    """The lines of a tool that says before each file's lines which one it is."""
    heads, found, file = {head.format(f): f for f in files}, {f: [] for f in files}, files[0]
    for line in text.splitlines():
        file = heads.get(line, file)
        if line not in heads:
            found[file].append(line)
    return found


def check_readers(files):
    """readelf writes its complaints among what it reads: `warning:` and `error:` behind its own name or a blank."""
    for tool, head in (["arm-none-eabi-readelf", "-a", "-u", "-W"], "File: {}"), (["llvm-readelf", "-a", "-u"], "File: {}"):
        for file, lines in by_file(output_of(tool, *files), files, head).items():
            bad = [line for line in lines if re.search(r"\b([Ww]arning|[Ee]rror): |<corrupt|<unknown|\bbad \w+ value", line)]
            if bad:
                yield f"{tool[0]} on {file}:\n" + "\n".join(bad[:5])


def check_lint(files):
    for file, lines in by_file(output_of(["eu-elflint", "--gnu-ld"], *files), files, "{}:").items():
        sizes = None
        for line in lines:
            if line.strip() in ("", "No errors") or any(t.said.search(line) and t.where.search(str(file)) for t in TOLERATED):
                continue
            # A section without contents is there for its name and its symbols: it has a place and a type in no other sense.
            sizes = sizes or [s.size for s in Elf(file).sections]
            about = re.match(r"section \[ *(\d+)\]", line)
            if not about or sizes[int(about[1])]:
                yield f"eu-elflint on {file}:\n{line}"


def functions_of(elf):
    """The functions of a program that lie where their sections say."""
    code = {s.index: s for s in elf.sections if s.flags & SHF_ALLOC and s.type != SHT_NOBITS}
    for s in elf.symbols if elf.type == ET_EXEC else ():
        section = code.get(s.shndx)
        if section and s.type == "FUNC" and s.bind != "LOCAL" and section.addr <= s.value < section.addr + section.size:
            yield s


def asked_line(s):
    """By its name, which debug information gives a place of its own; by its place where gdb takes another name."""
    return f"-ex=info line *{s.value & ~1:#x}" if s.name.startswith("_Z") else f"-ex=info line '{s.name}'"


def check_debugger(files):
    """gdb knows of the code at the beginning of a function whose it is, and lists the function."""
    elves = {str(file): Elf(file) for file in files if "reloc_table_test" not in str(file)}  # its functions lie anywhere
    code = {file: list(functions_of(elf)) for file, elf in elves.items()}
    # Some functions, spread over the program; address 0 is no place of code for gdb.
    some = {file: [s for i, s in enumerate(found) if s.value > 1 and (i % (len(found) // FUNCTIONS + 1) == 0 or s.name in STARTS)]
            for file, found in code.items() if found}
    asked = []
    for file, found in some.items():
        asked += [f"-ex=echo \\n@@{file}\\n", f"-ex=file {file}", *map(asked_line, found), "-ex=info functions"]
    text = output_of(["gdb-multiarch", "-batch", "-nx", "-ex=set print asm-demangle off", "-ex=set print demangle off", *asked])
    answers = dict(part.split("\n", 1) for part in text.split("\n@@")[1:])
    for file in some:
        elf, names = elves[file], {}
        for s in elf.symbols:
            names.setdefault(s.value & ~1, set()).add(s.name)
        lines = elf.section(".debug_line")
        yield from judge_debugger(file, answers.get(file, ""), some[file], names, bool(lines and lines.size))


def judge_debugger(file, answer, asked, names, has_lines):
    found = {int(m[1], 16): (m[0].startswith("Line"), m[2])
             for m in re.finditer(r"^(?:Line \d+ of|No line number).*?address 0x(\w+) <([^>+(]+)\S*>.*$", answer, re.M)}
    for s in asked:
        at = s.value & ~1
        if at not in found or found[at][1] not in names[at]:
            yield f"gdb on {file}: {s.name} is at {at:#x}, info line knows of {found.get(at)}"
        elif not s.name.startswith("_Z") and not re.search(rf"\b{re.escape(s.name)}(\(|$)", answer, re.M):
            yield f"gdb on {file}: info functions does not list {s.name}"
    for at, (_, name) in found.items():
        if name not in names.get(at, ()):
            yield f"gdb on {file}: info line has {name} at {at:#x}"
    for m in re.finditer(r"^0x(\w+)  (\S+)$", answer, re.M):
        if m[2] not in names.get(int(m[1], 16), ()):
            yield f"gdb on {file}: info functions has {m[2]} at {m[1]}"
    if has_lines and not any(line for line, _ in found.values()):
        yield f"gdb on {file}: no line is known"


def complaints(files):
    """What the tools have to say of the files, as a list of texts."""
    files = [Path(f) for f in files]
    jobs = [(check, files[i:i + BATCH]) for i in range(0, len(files), BATCH)
            for check in (check_readers, check_lint, check_debugger)]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return [text for texts in pool.map(lambda job: list(job[0](job[1])), jobs) for text in texts]


def written_by_qvlink(path):
    """Other linkers and assemblers give the table of section names no flags."""
    with open(path, "rb") as f:
        head = f.read(52)
        if len(head) < 52 or head[:5] != b"\x7fELF\x01":
            return False
        end = "<" if head[5] == 1 else ">"
        (at,), (index,) = struct.unpack_from(end + "I", head, 32), struct.unpack_from(end + "H", head, 50)
        if index == SHN_XINDEX:  # the first section header says it
            f.seek(at + 24)
            index = int.from_bytes(f.read(4), "little" if end == "<" else "big")
        f.seek(at + 40 * index + 8)
        flags = f.read(4)
    return bool(int.from_bytes(flags, "little" if end == "<" else "big") & SHF_STRINGS)


def outputs_below(folder, since):
    for path in sorted(folder.rglob("*")):
        if path.is_symlink() or not path.is_file() or path.stat().st_mtime < since or any(w.search(str(path)) for w, _ in LEFT_OUT):
            continue
        if written_by_qvlink(path):
            yield path
        elif path.name == "out.elf" and path.read_bytes()[:4] == b"\x7fELF":
            sys.exit(f"{path} is not known as this linker's")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("folders", nargs="+", type=Path)
    opts = parser.parse_args()
    since = opts.qvlink.stat().st_mtime
    files = [path.resolve() for folder in opts.folders for path in outputs_below(folder, since)]
    if not files:
        print("no file is as new as the linker: the link tests come first")
        return 77
    found = complaints(files)
    print("\n".join(found))
    print(f"{len(files)} files, {len(found)} complaints")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
