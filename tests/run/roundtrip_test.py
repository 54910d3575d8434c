#!/usr/bin/env python3
"""What the object file layer reads it can write: nothing is lost on the way through all states.

Every member of the compiler's archives, objects of other compilers and byte orders, files with more sections than fit
in 16 bits and linked programs go through ofe_copy. readelf -a -W must say the same of both sides, after the changes
that normalised() makes, each with its reason. Then an example is linked from rewritten objects and archives: the
program is the same to the byte.

    roundtrip_test.py --qvlink build/release/qvlink --work /tmp/roundtrip [--all]     --all: every multilib
"""
import argparse
import collections
import concurrent.futures
import difflib
import re
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1] / "examples")]
import run  # noqa: E402

TOOL = "arm-none-eabi-"
READELF = [TOOL + "readelf", "-a", "-W"]

# Archives of a representative few of the compiler's variants: ARM and Thumb code, M profile from the smallest to the
# largest, soft and hard floating point. The one of the C++ library is the largest of all.
VARIANTS = [
    ([], ["libc.a", "libm.a", "libgcc.a", "libstdc++.a"]),
    (["-marm", "-march=armv5te+fp", "-mfloat-abi=hard"], ["libc.a", "libm.a", "libgcc.a"]),
    (["-mthumb", "-march=armv6s-m", "-mfloat-abi=soft"], ["libc.a", "libm.a", "libgcc.a"]),
    (["-mthumb", "-march=armv7e-m+fp.dp", "-mfloat-abi=hard"], ["libc.a", "libm.a", "libgcc.a"]),
    (["-mthumb", "-march=armv8.1-m.main+mve", "-mfloat-abi=hard"], ["libc.a", "libm.a", "libgcc.a"]),
]

SECTION = re.compile(r"  \[ *(\d+)\] (.*?) +([A-Za-z_0-9<>:+]+) +([0-9a-f]{8}) ([0-9a-f]{6,}) ([0-9a-f]{6,}) ([0-9a-f]{2,})"
                     r" ([ A-Zoxlpny]*?) *(\d+) +(\d+) +(\d+)$")
SYMBOL = re.compile(r"( +\d+: [0-9a-f]{8} .{6,}? )( *\d+)( .*|)$")
OFFSET = re.compile(r"(at (?:file )?offset )0x[0-9a-f]+")
GROUP = re.compile(r"(.*group section )\[ *(\d+)\](.*)$")
MEMBER = re.compile(r"   \[ *(\d+)\](   .*)$")
RELOC = re.compile(r"[0-9a-f]{8}  [0-9a-f]{8} R_")
SEGMENT = re.compile(r"(  [A-Z_0-9]+ +)0x[0-9a-f]+( .*)$")


class Names:
    """Sections by name and rank among those of that name, since their order in the file is the writer's choice."""

    def __init__(self, rows):
        seen = collections.Counter()
        self.keys = {}
        for number, name in rows:
            self.keys[number] = f"{name}~{seen[name]}"
            seen[name] += 1

    def __getitem__(self, number):
        return self.keys.get(int(number), f"section {number} of none")


def section_row(match, names):
    """A row of the section header table in terms of names."""
    number, name, kind, addr, _, size, entsize, flags, link, info, align = match.groups()
    if kind == "STRTAB":
        size = "-"  # each string stands once, but ends of strings are not shared
    if kind in ("REL", "RELA") or "I" in flags:
        info = names[info]
    return f"{names[number]} {kind} {addr} {size} {entsize} {flags.strip()} {names[link]} {info} {align}"


def normalised(lines):
    """What readelf says of one file, without what the writer may choose.

    - Sections stand in the order groups, program data, tables: they are named instead of numbered, and sorted.
    - File offsets of sections, relocations, tables and segments follow from that order.
    - Sizes of string tables: see section_row.
    - Relocations of a table stand in the order of their offsets; those of one offset keep theirs.
    """
    rows = [m for m in map(SECTION.match, lines) if m]
    names = Names([(int(m[1]), m[2]) for m in rows])
    out, table, relocs, in_symbols, in_segments = [], [], [], False, False
    for line in lines:
        if RELOC.match(line):
            relocs.append(line)
            continue
        if relocs:
            out += sorted(relocs, key=lambda r: r[:8])
            relocs = []
        if not line:
            in_symbols = in_segments = False
        elif line.startswith("Symbol table"):
            in_symbols = True
        elif line == "Program Headers:":
            in_segments = True
        elif in_symbols:
            if m := SYMBOL.match(line):
                line = f"{m[1]}{names[m[2]]}{m[3]}"
        elif line.startswith("  [") and (m := SECTION.match(line)):
            table.append(section_row(m, names))
            continue
        elif in_segments and (m := SEGMENT.match(line)):
            line = m[1] + m[2]
        elif m := MEMBER.match(line):
            line = names[m[1]] + m[2]
        elif m := GROUP.match(line):
            line = m[1] + names[m[2]] + m[3]
        elif "(bytes into file)" in line:
            line = re.sub(r"\d+ \(bytes", "N (bytes", line)
        elif "string table index" in line:
            line = line.split(":")[0] + ": " + names[re.search(r"index: +(\d+)", line)[1]]
        elif "ffset" in line:
            line = OFFSET.sub(r"\1N", line)
        out.append(line)
    return sorted(table) + out


def files(path):
    """(member, lines) of what readelf says."""
    done = subprocess.run([*READELF, path], stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    member, lines = "", []
    for line in done.stdout.decode("latin-1").splitlines():
        if line.startswith("File: "):
            if lines:
                yield member, lines
            member, lines = line.rsplit("(", 1)[1], []
        else:
            lines.append(line)
    yield member, lines


def compare(old, new):
    """The number of files compared; Failed with the first difference."""
    count = 0
    a, b = files(old), files(new)
    for (name, before), (other, after) in zip(a, b, strict=True):
        if before != after and (before := normalised(before)) != (after := normalised(after)):
            diff = difflib.unified_diff(before, after, f"{old}({name}", f"{new}({other}", lineterm="", n=0)
            raise run.Failed("\n".join(list(diff)[:40]))
        if name != other:
            raise run.Failed(f"{old}: {name} became {other}")
        count += 1
    return count


def rewrite(copier, old, new, *flags):
    new.parent.mkdir(parents=True, exist_ok=True)
    text = run.run([copier, old, new, *flags])
    if text:
        raise run.Failed(f"ofe_copy {old} {new}: {text}")
    return new


def check_archive(copier, old, work):
    new = rewrite(copier, old, work / "archives" / str(old).strip("/").replace("/", "_"))
    count = compare(old, new)
    new.unlink()
    return count


def archives(everything):
    """Paths, each once: the default variant's archive serves where a variant has none of its own."""
    if everything:
        rows = run.run([TOOL + "gcc", "-print-multi-lib"]).split()
        variants = [([f"-{f}" for f in row.split(";")[1].split("@")[1:]], VARIANTS[0][1]) for row in rows]
    else:
        variants = VARIANTS
    found = {}
    for flags, names in variants:
        for name in names:
            path = Path(run.run([TOOL + "gcc", *flags, f"-print-file-name={name}"]).strip()).resolve()
            if not path.is_file():
                raise run.Failed(f"the compiler has no {name} for {flags}")
            found[path] = None
    return sorted(found, key=lambda p: -p.stat().st_size)


C_SOURCE = """
template <class T> struct Box { T v; virtual T get() const { return v; } virtual ~Box() {} };
inline int twice(int n) { static int calls; return n * 2 + ++calls; }
__attribute__((weak)) int hook(int); extern int common; __thread int mine = 3; __thread int empty;
static int table[] = {1, 2, 3}; int *where = &table[1];
int work(Box<int> *b, int n) { return twice(b->get()) + (hook ? hook(n) : *where) + common + mine + empty; }
Box<long> box;
"""


def objects(work):
    """Objects of two compilers, both byte orders, REL and RELA, groups, thread-local data, a partial link."""
    work.mkdir(parents=True, exist_ok=True)
    source = work / "object.cpp"
    source.write_text(C_SOURCE)
    flags = ["-c", "-O1", "-g", "-fno-exceptions", "-ffunction-sections", "-fdata-sections", source, "-o"]
    commands = {
        "little.o": [TOOL + "g++", "-mcpu=cortex-m4", *flags],
        "big.o": [TOOL + "g++", "-mcpu=cortex-r5", "-mbig-endian", *flags],
        "unwind.o": [TOOL + "g++", "-mcpu=cortex-a9", "-marm", "-fexceptions", *flags[:3], *flags[4:]],
        "clang.o": ["clang++", "--target=armv7m-none-eabi", *flags],
        "clang_big.o": ["clang++", "--target=armebv7r-none-eabi", *flags],
        "partial.o": [TOOL + "ld", "-r", work / "little.o", "-o"],
    }
    for name, command in commands.items():
        run.run([*command, work / name])
    return [work / name for name in commands]


def many_sections(work, count, order):
    """More sections than fit in 16 bits, with symbols and relocations among the last ones."""
    work.mkdir(parents=True, exist_ok=True)
    source, out = work / "many.s", work / f"many_{order}.o"
    lines = [f'.section .s{i},"a"\n.byte {i & 0xff}' for i in range(count)]
    lines += [".global last", "last:", f'.section .s{count - 2},"a"', ".word last, local", "local: .word last - ."]
    source.write_text("\n".join(lines) + "\n")
    run.run([TOOL + "as", f"-m{order}-endian", source, "-o", out])
    return out


def relink(name, qvlink, copier, work, flags):
    """The example from rewritten files is the same program."""
    first, second = work / name / "given", work / name / "rewritten"
    first.mkdir(parents=True, exist_ok=True)
    inputs = run.compile_program(name, first)
    libraries = run.library_copies(name, first)
    given = run.link(name, qvlink, inputs, libraries, first)
    inputs = [rewrite(copier, o, second / o.name, *flags) for o in inputs]
    libraries = [rewrite(copier, a, second / a.name, *flags) for a in libraries]
    for archive in libraries:
        run.run([TOOL + "ranlib", archive])
    rewritten = run.link(name, qvlink, inputs, libraries, second)
    if given.read_bytes() != rewritten.read_bytes():
        raise run.Failed(f"{rewritten} differs from {given}")
    return given


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--all", action="store_true", help="the archives of all variants of the compiler")
    opts = parser.parse_args()
    copier = opts.qvlink.resolve().parent / "tests" / "ofe_copy"
    work = opts.work
    try:
        with concurrent.futures.ProcessPoolExecutor(2) as pool:
            checks = [pool.submit(check_archive, copier, path, work) for path in archives(opts.all)]
            members = sum(check.result() for check in checks)
        if members < 1000:
            raise run.Failed(f"{members} members are not the compiler's archives")
        for old in objects(work / "objects"):
            compare(old, rewrite(copier, old, work / "copies" / old.name))
            compare(old, rewrite(copier, old, work / "copies" / ("twice_" + old.name), "--twice"))
        for order in ("little", "big"):
            old = many_sections(work / "many", 70000, order)
            compare(old, rewrite(copier, old, work / "copies" / old.name))
        relink("newlib", opts.qvlink, copier, work, [])
        program = relink("cpp", opts.qvlink, copier, work, ["--twice"])
        copy = rewrite(copier, program, work / "copies" / "program.elf")
        compare(program, copy)
        if run.run_in_qemu(copy) != (HERE.parents[1] / "examples/cpp/expected.txt").read_text():
            raise run.Failed(f"{copy} prints something else")
    except run.Failed as e:
        sys.exit(str(e))
    print(f"{members} members and more: as before")


if __name__ == "__main__":
    main()
