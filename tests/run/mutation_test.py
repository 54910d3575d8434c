#!/usr/bin/env python3
"""Damaged input: whatever the bytes of an object, an archive or a command file, the linker ends with a message.

Variant number i is a link of SEEDS with one to three mutations of one of its files, and depends on --seed and i only.
A mutation knows the structure that it damages: it picks a field, an entry or a token, and gives it a value that is
likely to hurt. Of every variant holds: the status is 0 or 1, within the time limit; no message calls itself internal,
no sanitizer speaks; a link that fails leaves no output file, one that succeeds leaves one, and neither leaves anything
under a name that nobody asked for.

    mutation_test.py --qvlink build/asan/qvlink --work /tmp/mutants --count 20000     many of them
    mutation_test.py --qvlink build/asan/qvlink --work /tmp/mutants --only 1234       one again, its files are kept
"""
import argparse
import concurrent.futures
import os
import random
import re
import shlex
import shutil
import struct
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1] / "examples"), str(HERE.parent / "support")]
import linktest  # noqa: E402
import run as examples  # noqa: E402

TOOL = "arm-none-eabi-"
TIME_LIMIT = 10
OUTPUT = "out.elf"
# A sanitizer's report must not look like a link with errors, nor be taken for a crash that the linker reports itself.
# An allocation of this many megabytes is one that a damaged size asked for.
SANITIZER = {"ASAN_OPTIONS": "exitcode=99:handle_segv=2:handle_abort=0:max_allocation_size_mb=1024"}

C_SOURCE = """
__attribute__((weak)) int hook(int); extern int common_data; int tentative[4];
static int table[] = {1, 2, 3}; const char *text = "text"; int *where = &table[1];
static void setup(void) { tentative[0] = table[2]; }
__attribute__((section(".init_array"), used)) static void (*const start)(void) = setup;
int work(int n) { switch (n) { case 1: return table[n]; case 2: return *where; case 3: return text[n]; case 4: return 7;
                  case 5: return common_data; case 6: return tentative[n & 3]; } return hook ? hook(n) : n / 3; }
"""
CPP_SOURCE = """
template <class T> struct Box { T v; virtual T get() const { return v; } virtual ~Box() {} static int made; };
template <class T> int Box<T>::made = 4;
inline int twice(int n) { static int calls; return n * 2 + ++calls; }
void NAME(int);
int NAME(Box<int> *b, Box<long> *c) { return twice(b->get()) + (int)c->get() + Box<int>::made; }
Box<int> NAME_box;
"""
ASM_SOURCE = """
    .syntax unified
    .thumb
    .global _start, common_data, __aeabi_unwind_cpp_pr0, __aeabi_idiv, _ZdlPvj
    .section .text.start, "ax"
    .thumb_func
_start: bl work
    movw r0, #:lower16:common_data
    movt r0, #:upper16:common_data
    beq.w _start
    b .Lone
    .thumb_func
_ZdlPvj:
    .thumb_func
__aeabi_unwind_cpp_pr0:
    .thumb_func
__aeabi_idiv: bx lr
    .section .text.one, "axG", %progbits, one, comdat
.Lone: bl twice
    .section .data.one, "awG", %progbits, one, comdat
    .word .Lone, twice - .
    .section .text.two, "ax"
    .arm
twice: b twice
    ldr r0, =common_data
    .section .strings, "aMS", %progbits, 1
    .asciz "one"
    .data
common_data: .word _start, common_data + 8, -1
    .section .linked, "ao", %progbits, .text.two
    .word twice
    .comm more, 24, 8
"""
COMMAND = """
--entry_point=_start
--retain=*(.init_array)
MEMORY
{
    FLASH (RX)  : origin = 0x1000, length = 64K, fill = 0xFFFFFFFF
    AUX         : origin = 0x80000, length = 0x400 vfill = 7
    RAM   (RWX) : o = 0x20000000, l = (32 * 1024) - 0x10
}
_limit = END(RAM) - 4;
SECTIONS
{
    .text : { *(.text.start) *(.text*) . = ALIGN(16); _etext = .; } palign(8), fill = 0xBEEF > FLASH
    GROUP : load > FLASH, run > RAM, LOAD_START(_group), SIZE(_sgroup)
    {
        .data   : align = 8 { mutated.o(.data) *(.data*) . += 4; }
        .linked : { *(.linked) } type = NOINIT
    }
    UNION : > RAM { .one : { *(.data.one) } load = FLASH  .two : { . += 0x20; } }
    .rodata : { *(.rodata* .strings) *(.init_array) } >> FLASH | AUX
    .bss    : { *(.bss*) *(COMMON) } > RAM (HIGH), RUN_END(_ebss), SIZE(_sbss)
}
_stop = _etext + SIZE(FLASH) / 2;
"""


# --- the links that are damaged

class Seed:
    """A link: its files, its arguments, and which files may be damaged and how."""

    def __init__(self, name, files, args, targets):
        self.name, self.files, self.args, self.targets = name, files, args, targets


def compile_to(work, name, text, *options):
    """The bytes of an object built from a text."""
    (work / name).write_text(text)
    out = work / (name + ".o")
    driver = TOOL + ("g++" if name.endswith(".cpp") else "gcc")
    examples.run([driver, "-c", "-O1", "-mcpu=cortex-a9", "-ffunction-sections", "-fdata-sections", *options,
                  work / name, "-o", out])
    return out.read_bytes()


def make_archive(work, name, members):
    for member, data in members.items():
        (work / member).write_bytes(data)
    (work / name).unlink(missing_ok=True)
    examples.run([TOOL + "ar", "rcD", name, *members], cwd=work)
    return (work / name).read_bytes()


def object_seeds(work):
    """Objects of C, C++ and the assembler, in both byte orders, linked for good and partially; the same as archives."""
    main = compile_to(work, "main.s", ASM_SOURCE)
    c = compile_to(work, "code.c", C_SOURCE, "-mthumb", "-gdwarf-4", "-fcommon")
    cpp = ["-mthumb", "-fno-rtti", "-fno-exceptions", "-fno-threadsafe-statics", "-fno-use-cxa-atexit", "-funwind-tables"]
    one = compile_to(work, "one.cpp", CPP_SOURCE.replace("NAME", "one"), *cpp)
    two = compile_to(work, "two.cpp", CPP_SOURCE.replace("NAME", "two"), *cpp, "-gdwarf-4")
    big_main = compile_to(work, "bigmain.s", ASM_SOURCE, "-mbig-endian")
    big = compile_to(work, "big.c", C_SOURCE, "-mbig-endian", "-marm", "-fcommon")
    library = make_archive(work, "lib.a", {"code.o": c, "a_member_with_a_long_name.o": one, "two.o": two})
    command = COMMAND.encode()
    args = ["mutated.o", "main.o", "link.cmd", f"--output_file={OUTPUT}"]
    mapped = [*args, "--map_file=out.map"]
    all_of = ["--unused_section_elimination=off"]

    def seed(name, mutated, arguments, main_object=main, **others):
        files = {"mutated.o": mutated, "main.o": main_object, "link.cmd": command, **others}
        return Seed(name, files, arguments, [("mutated.o", mutate_elf)])

    seeds = [
        seed("c", c, mapped),
        seed("c, everything kept", c, args + all_of),
        seed("assembler", main, args, c),
        seed("c++", one, mapped + ["two.o", "code.o"] + all_of, **{"two.o": two, "code.o": c}),
        seed("c++ with debug information", two, args + ["two.o", "code.o"] + all_of,
             **{"two.o": one, "code.o": c}),
        seed("c++, partial link", one, ["-r", "mutated.o", "two.o", f"-o={OUTPUT}"], **{"two.o": two}),
        seed("big-endian", big, args + all_of + ["--be8"], big_main),
        seed("big-endian assembler", big_main, mapped + all_of, big),
        seed("default layout", c, ["mutated.o", "main.o", f"--output_file={OUTPUT}", "--map_file=out.map"]),
    ]
    files = {"main.o": main, "lib.a": library, "link.cmd": command.replace(b"mutated.o(", b"lib.a<code.o>(")}
    archive_args = ["main.o", "lib.a", "link.cmd", f"--output_file={OUTPUT}", "--reread_libs"]
    seeds += [Seed("archive", files, archive_args, [("lib.a", mutate_archive)])] * 3
    files = {"mutated.o": c, "main.o": main, "link.cmd": command}
    seeds += [Seed("command file", files, mapped, [("link.cmd", mutate_command)])] * 2
    return seeds


def example_seeds(work):
    """The command files of the examples with their objects (newlib: with those of hello, in place of the library)."""
    seeds = []
    objects = {}
    for name in ("hello", "cpp", "regions"):
        paths = examples.compile_program(name, work)
        objects[name] = {path.name: path.read_bytes() for path in paths}
    for name in examples.PROGRAMS:
        own = objects.get(name, objects["hello"])
        command = (examples.HERE / name / "link.cmd").read_bytes()
        files = {**own, "link.cmd": command}
        args = [*own, "link.cmd", f"--output_file={OUTPUT}"]
        seeds.append(Seed(f"example {name}", files, args, [("link.cmd", mutate_command)]))
    return seeds


def is_undamaged(data, mutate):
    """False for what has no structure to work on; some link tests damage their inputs themselves."""
    try:
        return bool(mutate(random.Random(0), data))
    except (IndexError, ValueError):
        return False


def corpus_seeds(work, folder):
    """Link tests as seeds: those whose arguments name the output out.elf."""
    seeds = []
    for path in sorted(folder.rglob("*.t")):
        _, parts = linktest.parse(path)
        shared, cases = linktest.split_cases(parts)
        for number, (_, own) in enumerate(cases):
            where = work / "corpus" / path.stem / str(number)
            where.mkdir(parents=True, exist_ok=True)
            args = [part for part in shared + own if part[0][0] == "args"]
            try:
                for head, body, _ in shared + own:
                    if head[0] not in linktest.CHECKS:
                        linktest.make_input(head, body, where)
            except (linktest.Failure, OSError, ValueError):
                continue
            words = shlex.split(" ".join(args[-1][1])) if args else []
            if not any(OUTPUT in word for word in words):
                continue
            files = {str(p.relative_to(where)): p.read_bytes() for p in where.rglob("*")
                     if p.is_file() and p.suffix not in (".s", ".c", ".cpp", ".S") and p.name != OUTPUT}
            kinds = {".o": mutate_elf, ".a": mutate_archive, ".cmd": mutate_command}
            targets = [(f, kinds[Path(f).suffix]) for f in files if Path(f).suffix in kinds
                       and is_undamaged(files[f], kinds[Path(f).suffix])]
            if targets:
                seeds.append(Seed(f"{path.name} case {number}", files, words, targets))
    return seeds


# --- objects

EHDR = ("HHIIIIIHHHHHH", 16, "e_type e_machine e_version e_entry e_phoff e_shoff e_flags e_ehsize e_phentsize e_phnum "
        "e_shentsize e_shnum e_shstrndx")
SHDR = ("IIIIIIIIII", 0, "sh_name sh_type sh_flags sh_addr sh_offset sh_size sh_link sh_info sh_addralign sh_entsize")
SYM = ("IIIBBH", 0, "st_name st_value st_size st_info st_other st_shndx")
REL = ("II", 0, "r_offset r_info")
RELA = ("III", 0, "r_offset r_info r_addend")
WIDTH = {"B": 1, "H": 2, "I": 4}
PROGBITS, SYMTAB, STRTAB, TYPE_RELA, NOBITS, TYPE_REL, GROUP, ATTRIBUTES = 1, 2, 3, 4, 8, 9, 17, 0x70000003
SECTION_TYPES = [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 14, 17, 18, 0x6FFFFFF6, 0x6FFFFFFF, 0x70000001, 0x70000002,
                 0x70000003, 0x7F000001, 0xFFFFFFFF]


def fields(layout):
    """(name, offset, width) of a record's fields."""
    codes, at, names = layout
    for code, name in zip(codes, names.split()):
        yield name, at, WIDTH[code]
        at += WIDTH[code]


class ElfBytes:
    """The bytes of an object with its undamaged structure beside them."""

    def __init__(self, data):
        self.data, self.size = bytearray(data), len(data)
        self.order = "little" if data[5] == 1 else "big"
        self.shoff, self.shnum = self.get(32, 4), self.get(48, 2)
        self.heads = [{name: self.get(self.shoff + 40 * i + at, width) for name, at, width in fields(SHDR)}
                      for i in range(self.shnum)]

    def get(self, at, width):
        return int.from_bytes(self.data[at:at + width], self.order)

    def put(self, at, width, value):
        if at + width <= len(self.data):
            self.data[at:at + width] = (value % (1 << 8 * width)).to_bytes(width, self.order)

    def of_type(self, *types):
        return [i for i, h in enumerate(self.heads) if h["sh_type"] in types and h["sh_size"]]


def bad_number(rng, old, width, *near):
    """A value for a field: a limit, something close to what it was or to what matters here, or anything."""
    top = (1 << 8 * width) - 1
    limits = [0, 1, 2, 3, 4, 7, 8, 0xFF, 0xFFF1, 0xFFF2, 0xFF00, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0,
              0xFFFFFFFC, top, top - 1, top >> 1, (top >> 1) + 1]
    choices = [*limits, *(n + d for n in (old, *near) for d in (-4, -1, 0, 1, 4)), old * 2, old // 2, -old,
               old ^ 1 << rng.randrange(8 * width), rng.getrandbits(8 * width)]
    return rng.choice(choices) & top


def mutate_field(rng, elf, layout, at, what, *near):
    name, offset, width = rng.choice(list(fields(layout)))
    old = elf.get(at + offset, width)
    value = rng.choice(SECTION_TYPES) if name == "sh_type" else bad_number(rng, old, width, *near)
    if name == "r_info" and rng.random() < 0.5:  # the type alone, or the symbol alone
        value = old & ~0xFF | rng.randrange(256) if rng.random() < 0.5 else bad_number(rng, old >> 8, 3) << 8 | old & 0xFF
    if name == "st_info" and rng.random() < 0.5:
        value = rng.choice([0, 1, 2, 10, 13]) << 4 | rng.choice([0, 1, 2, 3, 4, 5, 6, 10, 13])
    if name == "sh_addralign" and rng.random() < 0.7:
        value = 1 << rng.randrange(32)
    if name == "sh_flags" and rng.random() < 0.7:
        value = old ^ 1 << rng.choice([0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11])
    elf.put(at + offset, width, value)
    return f"{what}: {name} {old:#x} -> {value:#x}"


def mutate_header(rng, elf):
    if rng.random() < 0.1:
        at, value = rng.randrange(16), rng.randrange(256)
        elf.put(at, 1, value)
        return f"e_ident[{at}] = {value}"
    return mutate_field(rng, elf, EHDR, 0, "ELF header", elf.size, elf.shnum)


def mutate_section_header(rng, elf):
    i = rng.randrange(elf.shnum)
    other = rng.choice(elf.heads)
    near = (elf.size, elf.shnum, i, rng.choice(list(other.values())))
    return mutate_field(rng, elf, SHDR, elf.shoff + 40 * i, f"section {i}", *near)


def mutate_section_pair(rng, elf):
    a, b = (elf.shoff + 40 * rng.randrange(elf.shnum) for _ in range(2))
    head = elf.data[a:a + 40]
    if rng.random() < 0.5:
        elf.data[a:a + 40] = elf.data[b:b + 40]
    elf.data[b:b + 40] = head
    return f"the section headers at {a:#x} and {b:#x} exchanged or repeated"


def mutate_entry(rng, elf, types, layouts, what):
    """A field of an entry in a table of a given type."""
    tables = elf.of_type(*types)
    if not tables:
        return mutate_section_header(rng, elf)
    i = rng.choice(tables)
    head, layout = elf.heads[i], layouts[types.index(elf.heads[i]["sh_type"])]
    size = sum(width for _, _, width in fields(layout))
    n = rng.randrange(head["sh_size"] // size)
    near = (elf.shnum, head["sh_size"] // size, rng.choice(elf.heads)["sh_size"])
    return mutate_field(rng, elf, layout, head["sh_offset"] + n * size, f"{what} {n} of section {i}", *near)


def mutate_symbol(rng, elf):
    return mutate_entry(rng, elf, [SYMTAB], [SYM], "symbol")


def mutate_reloc(rng, elf):
    return mutate_entry(rng, elf, [TYPE_REL, TYPE_RELA], [REL, RELA], "relocation")


def mutate_strings(rng, elf):
    i = rng.choice(elf.of_type(STRTAB))
    at, size = elf.heads[i]["sh_offset"], elf.heads[i]["sh_size"]
    start = rng.randrange(size)
    end = rng.choice([size, min(size, start + 1), min(size, start + rng.randrange(1, 64))])
    value = rng.choice([0, 0xFF, ord("%"), ord("n"), ord("\n"), rng.randrange(256)])
    elf.data[at + start:at + end] = bytes([value]) * (end - start)
    return f"string table {i}: bytes {start:#x} to {end:#x} are {value:#x}"


def mutate_group(rng, elf):
    groups = elf.of_type(GROUP)
    if not groups:
        return mutate_reloc(rng, elf)
    i = rng.choice(groups)
    word = rng.randrange(elf.heads[i]["sh_size"] // 4)
    at = elf.heads[i]["sh_offset"] + 4 * word
    value = rng.choice([i, 0, rng.randrange(elf.shnum), elf.shnum, bad_number(rng, elf.get(at, 4), 4)])
    elf.put(at, 4, value)
    return f"group section {i}: word {word} is {value:#x}"


def mutate_contents(rng, elf):
    """Bytes of any section: also of debug information, attributes and index tables."""
    held = [i for i, h in enumerate(elf.heads) if h["sh_size"] and h["sh_type"] != NOBITS]
    unloaded = [i for i in held if elf.heads[i]["sh_type"] in (PROGBITS, ATTRIBUTES) and not elf.heads[i]["sh_flags"] & 2]
    i = rng.choice(unloaded if unloaded and rng.random() < 0.6 else held)
    at, size = elf.heads[i]["sh_offset"], elf.heads[i]["sh_size"]
    start, count, value = rng.randrange(size), rng.choice([1, 1, 4, 16]), rng.choice([0, 0x7F, 0x80, 0xFF, rng.randrange(256)])
    for k in range(start, min(size, start + count)):
        elf.put(at + k, 1, value)
    return f"section {i}: {count} bytes at {start:#x} are {value:#x}"


def mutate_size(rng, elf):
    edges = [0, 16, 51, 52, elf.shoff, elf.shoff + 40, elf.shoff + 40 * elf.shnum]
    edges += [h["sh_offset"] + s for h in elf.heads for s in (0, h["sh_size"])]
    size = max(0, min(elf.size - 1, rng.choice([*edges, rng.randrange(elf.size)]) + rng.choice([-1, 0, 0, 1])))
    del elf.data[size:]
    return f"cut to {size:#x} of {elf.size:#x} bytes"


ELF_MUTATIONS = ([mutate_header] * 2 + [mutate_section_header] * 6 + [mutate_section_pair] + [mutate_symbol] * 5 +
                 [mutate_reloc] * 5 + [mutate_strings] * 2 + [mutate_group] * 2 + [mutate_contents] * 3 + [mutate_size])


def mutate_elf(rng, data):
    elf = ElfBytes(data)
    said = [rng.choice(ELF_MUTATIONS)(rng, elf) for _ in range(rng.choice([1, 1, 1, 2, 3]))]
    return bytes(elf.data), "; ".join(said)


# --- archives

AR_FIELDS = [("name", 0, 16), ("date", 16, 12), ("owner", 28, 6), ("group", 34, 6), ("mode", 40, 8), ("size", 48, 10),
             ("end mark", 58, 2)]
AR_TEXTS = [b"", b"-1", b"99999999999", b"/", b"//", b"/99999", b"/0", b"/1", b"#1/20", b"<filenames>/", b"abc", b"`\n",
            b"4294967295", b"0", b"1", b"/SYM64/", b"%s%s%s%n"]


def archive_members(data):
    """(header offset, size) of each member."""
    at, members = 8, []
    while at + 60 <= len(data):
        size = int(data[at + 48:at + 58])
        members.append((at, size))
        at += 60 + size + (size & 1)
    return members


def mutate_archive(rng, data):
    members = archive_members(data)
    damaged = bytearray(data)
    kind = rng.randrange(7)
    at, size = rng.choice(members)
    if kind < 2:
        name, offset, width = rng.choice(AR_FIELDS)
        text = rng.choice([*AR_TEXTS, str(size + rng.choice([-1, 1, 2, 60, 1000])).encode(), os.fsencode(chr(rng.randrange(1, 127))) * width])
        damaged[at + offset:at + offset + width] = text.ljust(width)[:width]
        said = f"member at {at:#x}: {name} {text[:width]!r}"
    elif kind == 2:  # the directory stands first: a count, offsets, names
        at, size = members[0]
        where = at + 60 + rng.choice([0, 4 * rng.randrange(size // 4), 4 * rng.randrange(min(8, size // 4))])
        value = bad_number(rng, int.from_bytes(data[where:where + 4], "big"), 4, len(data), *(m[0] for m in members))
        damaged[where:where + 4] = value.to_bytes(4, "big")
        said = f"directory: word at {where:#x} is {value:#x}"
    elif kind == 3:  # the table of long names stands second
        at, size = members[1]
        start = rng.randrange(size)
        count, value = rng.randrange(1, size + 1), rng.choice([0, 0xFF, ord("/"), ord("\n"), ord("x")])
        end = min(size, start + count)
        damaged[at + 60 + start:at + 60 + end] = bytes([value]) * (end - start)
        said = f"long names: bytes {start} to {end} are {value:#x}"
    elif kind == 4:
        cut = max(0, rng.choice([rng.randrange(len(data)), 7, 8, at, at + 59, at + 60, at + 60 + size]) + rng.choice([-1, 0, 1]))
        del damaged[cut:]
        said = f"cut to {cut:#x} of {len(data):#x} bytes"
    elif kind == 5:
        value = rng.randrange(256)
        where = rng.choice([rng.randrange(8), rng.randrange(len(data))])
        damaged[where] = value
        said = f"byte {where:#x} is {value:#x}"
    else:
        at, size = rng.choice(members[2:])
        inner, said = mutate_elf(rng, data[at + 60:at + 60 + size])
        damaged[at + 60:at + 60 + size] = inner.ljust(size, b"\0")[:size]
        said = f"member at {at:#x}: {said}"
    return bytes(damaged), said


# --- command files

TOKEN = re.compile(r"/\*.*?\*/|\s+|\"[^\"]*\"|-{1,2}\w+|0[xX]\w+|[\w.$*]+|<<=?|>>=?|[-+*/]=|&&|\|\||[=<>!]=|.", re.S)
WORDS = ["{", "}", "(", ")", ";", ",", ":", ">", ">>", "|", "=", "+=", ".", "*", "-", "/", "?", "!", "~", "%", "0", "1",
         "0xFFFFFFFF", "0xFFFFFFFFFFFFFFFF", "0x80000000", "99999999999999999999", "4K", "1M", "-1", "MEMORY", "SECTIONS",
         "GROUP", "UNION", "ALIGN", "PALIGN", "BLOCK", "LOAD", "RUN", "HIGH", "TYPE", "NOLOAD", "DSECT", "COPY", "NOINIT",
         "fill", "START", "END", "SIZE", "PAGE", "ORIGIN", "LENGTH", "FLASH", "RAM", ".text", ".data", ".bss", "COMMON",
         "LOAD_START", "RUN_SIZE", "table", "palign(0)", "align(3)", "align(0x80000000)", "block(0)", ". = 0;", ". -= 8;",
         ". += 0x7FFFFFFF;", "x = y; y = x;", "x = 1 / 0;", "x = 1 << 99;", "*(*)", "a.a<b.o>(.text)", "\"", "/*", "*/",
         "#", "#define A A", "@", "\\", "\0", "\x80", "--stack_size=0xFFFFFFFF", "--heap_size=-1", "--fill_value=0x",
         "-o", "-l", "-i", "--retain=", "--symbol_map=a=b", "--entry_point=", "-", "--", "link.cmd", "main.o", "lib.a",
         "(" * 3000, "-" * 3000, "{" * 3000, "GROUP : { " * 500, "x" * 9000, "1 + " * 3000]


def mutate_command(rng, data):
    tokens = TOKEN.findall(data.decode("latin-1"))
    solid = [i for i, token in enumerate(tokens) if token.strip() and not token.startswith("/*")]
    said = []
    for _ in range(rng.choice([1, 1, 2, 3])):
        i, j = rng.choice(solid), rng.choice(solid)
        kind = rng.randrange(9)
        if kind == 0:
            said.append(f"without token {i} {tokens[i]!r}")
            tokens[i] = " "
        elif kind == 1:
            said.append(f"token {i} {tokens[i]!r} twice")
            tokens[i] = f"{tokens[i]} {tokens[i]}"
        elif kind == 2:
            said.append(f"tokens {i} {tokens[i]!r} and {j} {tokens[j]!r} exchanged")
            tokens[i], tokens[j] = tokens[j], tokens[i]
        elif kind == 3:
            said.append(f"token {i} {tokens[i]!r} by {tokens[j]!r}")
            tokens[i] = tokens[j]
        elif kind == 4:
            said.append(f"tokens {min(i, j)} to {max(i, j)} twice")
            tokens[max(i, j)] += "".join(tokens[min(i, j):max(i, j) + 1])
        elif kind == 5 and rng.random() < 0.4:
            said.append(f"cut at token {i}")
            tokens[i:] = [" "] * (len(tokens) - i)
        else:
            word = rng.choice(WORDS)
            put_in = rng.random() < 0.5
            said.append(f"{'before' if put_in else 'for'} token {i} {tokens[i]!r}: {word[:40]!r}")
            tokens[i] = f"{word} {tokens[i]}" if put_in else word
    return "".join(tokens).encode("latin-1"), "; ".join(said)


# --- running them

def make_variant(seeds, opts, number):
    """The damaged link of a number: (seed, files, what was done)."""
    rng = random.Random(f"{opts.seed}:{number}")
    seed = rng.choice(seeds)
    name, mutate = rng.choice(seed.targets)
    damaged, said = mutate(rng, seed.files[name])
    return seed, {**seed.files, name: damaged}, f"{name}: {said}"


def verdict(done, work, files):
    """What is wrong with how a link ended, or None."""
    text = (done.stdout + done.stderr).decode("latin-1")
    if done.returncode not in (0, 1):
        return f"status {done.returncode}"
    if re.search(r"Sanitizer|runtime error:|internal (error|warning|fatal error) #|INTERNAL ERROR", text):
        return "an internal error or a report of a sanitizer"
    if done.returncode == 1 and "error" not in text:
        return "status 1 without an error message"
    if done.returncode == 1 and (work / OUTPUT).exists():
        return f"status 1, but there is {OUTPUT}"
    if list(work.glob(OUTPUT + ".*")):
        return "an unfinished output is left"
    return None


def run_variant(seeds, opts, number):
    """Links a variant; returns None, or the report of its failure."""
    seed, files, said = make_variant(seeds, opts, number)
    work = opts.work / "variants" / str(number)
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    for name, data in files.items():
        (work / name).parent.mkdir(parents=True, exist_ok=True)
        (work / name).write_bytes(data)
    command = [str(opts.qvlink), *seed.args]
    try:
        done = subprocess.run(command, cwd=work, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=TIME_LIMIT,
                              stdin=subprocess.DEVNULL, env={**os.environ, **SANITIZER})
        wrong, text = verdict(done, work, files), (done.stdout + done.stderr).decode("latin-1")
    except subprocess.TimeoutExpired:
        wrong, text = f"no end within {TIME_LIMIT} seconds", ""
    if opts.only is not None:
        print(f"variant {number} of \"{seed.name}\": {said}\nin {work}\nstatus {done.returncode if text else '-'}\n{text}")
    elif not wrong:
        shutil.rmtree(work)
    if not wrong:
        return None
    return (f"FAILED: {wrong}\n  seed {opts.seed}, variant {number}: \"{seed.name}\", {said}\n"
            f"  cd {work} && {shlex.join(command)}\n"
            + "".join(f"  | {line}\n" for line in text.splitlines()[:opts.lines]))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--count", type=int, default=1500, help="how many variants")
    parser.add_argument("--first", type=int, default=0, help="the number of the first one")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", type=int, help="one variant, told at length, its files kept")
    parser.add_argument("--corpus", type=Path, help="a folder of link tests, which become seeds too")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--lines", type=int, default=30, help="lines of output told of a failure")
    parser.add_argument("--most", type=int, default=20, help="failures after which it ends")
    opts = parser.parse_args()
    opts.qvlink, opts.work = opts.qvlink.resolve(), opts.work.resolve()
    shutil.rmtree(opts.work, ignore_errors=True)
    (opts.work / "seeds").mkdir(parents=True)
    seeds = object_seeds(opts.work / "seeds") + example_seeds(opts.work / "seeds")
    if opts.corpus:
        seeds += corpus_seeds(opts.work / "seeds", opts.corpus)
    numbers = [opts.only] if opts.only is not None else range(opts.first, opts.first + opts.count)
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(opts.jobs) as pool:
        pending = (pool.submit(run_variant, seeds, opts, number) for number in numbers)
        window = []
        for future in pending:  # never more than a few ahead, so that an early end is one
            window.append(future)
            while len(window) > 4 * opts.jobs:
                report = window.pop(0).result()
                if report:
                    failed += 1
                    print(report, flush=True)
            if failed >= opts.most:
                break
        for future in window:
            report = future.result()
            if report:
                failed += 1
                print(report, flush=True)
    print(f"{len(seeds)} seeds, {len(numbers)} variants, {failed} failures")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
