#!/usr/bin/env python3
"""Makes the inputs that bench/run_bench.py links: firmware of any size, the same bytes for the same size on any machine.

    gen_corpus.py build/bench/corpus S M L

No compiler takes part, but for a few lines of start-up: each object is put together here, record by record, as a compiler
would have made it with a section for each function. There are static, global, weak and common symbols, calls and tail calls
between objects, constants by MOVW/MOVT and from literal pools, tables of pointers, constructors, COMDAT groups that many
objects share, index pieces for unwinding, functions that run from RAM, DWARF 4 in every second object, and archives whose
members are pulled on demand, the last two from each other. What a program prints at the end of its run depends on which
functions were linked and called, and on nothing else.

A size's folder holds the objects below obj, the archives below lib, the list of both (inputs.cmd and inputs.rsp, which are
the same), the number of what is in it (corpus.json), and for each layout a command file and a linker script:
base   one output section a kind
many   two output sections a module, chosen by the names of files
split  the same, in four banks of memory that a section may be spread over
far    base, in a range that is longer than a call reaches
"""
import argparse
import concurrent.futures
import json
import random
import shutil
import struct
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests/support"))
from arm_object import (  # noqa: E402
    ABS, ALLOC, COMMON, EXEC, EXIDX, FILE, FUNC, GROUP, INIT_ARRAY, LINK_ORDER, MERGE, NOBITS, NOTYPE, OBJECT, PROGBITS, R_ABS32,
    R_CALL, R_JUMP, R_MOVT, R_MOVW, R_NONE, R_PREL31, R_TARGET1, SHT_GROUP, STRINGS, VERBS, WEAK, WRITE, Dwarf, Object)
from elf import Elf  # noqa: E402

# objects, functions in one of them on the average, archives
SIZES = {"XS": (20, 12, 2), "S": (110, 20, 4), "M": (1000, 32, 10), "L": (5000, 42, 20)}
OF_MODULE = 18     # objects whose names say that they belong together
CALLABLE = 8       # the first functions of an object are those that others may call
NEEDED = 0.6       # of an archive, the share that may be asked for
CPU = ["-mcpu=cortex-m3", "-mthumb"]

# (name, attributes, origin, length): what the board mps2-an385 has, so that a program can be run there.
MEMORY = [("VECT", "RX", 0, 0x400), ("TCM", "RX", 0x400, 0xFFC00), ("RAM", "RWX", 0x20000000, 0x3C0000),
          ("FLASH", "RX", 0x21000000, 0x1000000)]
STACK_TOP = 0x20400000
LAYOUTS = {"base": {}, "many": {"modules": True}, "split": {"modules": True, "banks": 4}, "far": {"stretch": 4}}

START = """
    .syntax unified
    .thumb
    .eabi_attribute 25, 1
    .section .vectors, "a"
    .word __stack_top, Reset_Handler
    .rept 14
    .word Reset_Handler
    .endr
    .text
    .global Reset_Handler
    .thumb_func
    .type Reset_Handler, %function
Reset_Handler:
    ldr r0, =__data_start
    ldr r1, =__data_load
    ldr r2, =__data_size
    bl copy
    ldr r0, =__ramcode_start
    ldr r1, =__ramcode_load
    ldr r2, =__ramcode_size
    bl copy
    ldr r0, =__bss_start
    ldr r2, =__bss_size
    movs r3, #0
1:  subs r2, #4
    bmi 2f
    str r3, [r0], #4
    b 1b
2:  ldr r4, =__init_array_start
    ldr r5, =__init_array_size
    add r5, r4
3:  cmp r4, r5
    bhs 4f
    movw r9, #200
    movs r0, #1
    ldr r1, [r4], #4
    blx r1
    b 3b
4:  ldr r4, =roots
    ldr r5, =roots_end
    movs r6, #1
5:  cmp r4, r5
    bhs 6f
    movw r9, #500               @ calls that a root may make
    mov r0, r6
    ldr r1, [r4], #4
    blx r1
    add r6, r0, r6, ror #27
    b 5b
6:  ldr r1, =text
    movs r2, #8
7:  lsrs r3, r6, #28
    lsls r6, r6, #4
    cmp r3, #10
    ite lo
    addlo r3, #48
    addhs r3, #87
    strb r3, [r1], #1
    subs r2, #1
    bne 7b
    ldr r1, =text
    movs r0, #4
    bkpt 0xab
    ldr r1, =leave
    movs r0, #0x20
    bkpt 0xab
    b .
copy:
    subs r2, #4
    bmi 8f
    ldr r3, [r1], #4
    str r3, [r0], #4
    b copy
8:  bx lr
    .section .text.unwind, "ax"
    .global __aeabi_unwind_cpp_pr0
    .thumb_func
    .type __aeabi_unwind_cpp_pr0, %function
__aeabi_unwind_cpp_pr0:
    bx lr
    .data
text:
    .asciz "00000000\\n"
    .align 2
    .section .rodata
leave: .word 0x20026, 0
roots:
"""


# A function that its callers can do without.
OPTION = """
    .section .text.{0}, "ax"
    .global {0}
    .thumb_func
    .type {0}, %function
{0}:
    adds r0, #3
    bx lr
"""


def function_name(number, k):
    """Every third object is one of C++. The lengths vary as they do in programs."""
    verb = f"{VERBS[(number + 7 * k) % len(VERBS)]}_{k}"
    if number % 3 == 2:
        return f"_ZN6u{number:05d}{len(verb)}{verb}Ejj"
    return f"u{number:05d}_{verb}"


class Code:
    """The body of a function: halfwords, and behind them the literals that it loads."""

    def __init__(self):
        self.words, self.relocs, self.literals = [0xB510, 0x4604, 0xF1B9, 0x0901, 0], [], []

    def add(self, *words):
        self.words += words

    def reloc(self, kind, symbol, *words):
        self.relocs.append((2 * len(self.words), kind, symbol))
        self.words += words

    def literal(self, symbol, register=3):
        self.literals.append((len(self.words), symbol))
        self.words.append(0x4800 | register << 8)

    def end(self):
        """The function ends at once where the number of calls in r9 is used up: it returns r4."""
        out = len(self.words)
        self.words += [0x4620, 0xBD10]
        self.words[4] = 0xD400 | (out - 6) & 0xFF
        if self.literals and len(self.words) % 2:
            self.words.append(0xBF00)
        pool = 2 * len(self.words)
        for k, (at, symbol) in enumerate(self.literals):
            self.words[at] |= (pool + 4 * k - (2 * at + 4 & ~3)) // 4
            self.relocs.append((pool + 4 * k, R_ABS32, symbol))
        return struct.pack(f"<{len(self.words)}H", *self.words) + bytes(4 * len(self.literals)), pool


class Unit:
    """One object file of the program: its variables, its functions and whom they call."""

    def __init__(self, number, size, attributes, libraries):
        _, mean, _ = SIZES[size]
        self.rng = random.Random(f"{size}/{number}")
        self.number, self.libraries = number, libraries
        self.count = max(CALLABLE + 2, int(mean * self.rng.choice((0.5, 0.75, 1, 1, 1.25, 1.5))))
        self.object = Object(attributes)
        self.cxx, self.debug, self.unwind = number % 3 == 2, number % 2 == 0, number % 3 == 2 or number % 5 == 0
        self.object.local(f"u{number:05d}.{'cpp' if self.cxx else 'c'}", FILE, 0, 0, ABS)
        self.functions = []               # (name, section, symbol of the section, size)

    def make(self):
        rng, obj, u = self.rng, self.object, f"u{self.number:05d}"
        # Kinds of functions: what others call, then static ones, each with a caller before it, and some that nobody calls.
        kinds = ["callable"] * CALLABLE + [rng.choice(("static", "static", "unused", "unused", "global"))
                                           for _ in range(self.count - CALLABLE)]
        self.symbols, sections = [], []
        for k, kind in enumerate(kinds):
            name = function_name(self.number, k)
            prefix = ".ramcode." if k == 5 and self.number % 9 == 4 else ".text."
            section = obj.section(prefix + name, PROGBITS, ALLOC | EXEC, b"", 4 if k % 3 else 2)
            sections.append(section)
            add = obj.local if kind == "static" else obj.define
            self.symbols.append(add(name, FUNC, 1, 0, section))
        self.variables(u)
        for k, section in enumerate(sections):
            self.body(k, section, kinds)
        if self.cxx and self.number % 4 == 1:
            table = obj.section(".init_array", INIT_ARRAY, ALLOC | WRITE, bytes(4))
            obj.relocs[table] = [(0, R_TARGET1, self.symbols[1])]
        obj.section(".comment", PROGBITS, MERGE | STRINGS, b"\0written record by record\0", 1, 0, 1)
        if self.debug:
            Dwarf(self).make()
        return obj.bytes()

    def variables(self, u):
        rng, obj = self.rng, self.object
        self.data = []
        for k in range(rng.randrange(3, 8)):
            section = obj.section(f".data.{u}_state_{k}", PROGBITS, ALLOC | WRITE, struct.pack("<I", rng.getrandbits(16)))
            self.data.append(obj.local(f"{u}_state_{k}", OBJECT, 0, 4, section))
        for k in range(rng.randrange(3, 8)):
            size = 4 * rng.randrange(1, 24)
            section = obj.section(f".bss.{u}_count_{k}", NOBITS, ALLOC | WRITE, size)
            self.data.append(obj.define(f"{u}_count_{k}", OBJECT, 0, size, section) if k % 2
                             else obj.local(f"{u}_count_{k}", OBJECT, 0, size, section))
        self.data.append(obj.define(f"shared_{self.number // OF_MODULE}_{rng.randrange(3)}", OBJECT, 4, 4 * rng.randrange(2, 9),
                                    COMMON))
        self.constants = []
        for k in range(rng.randrange(2, 5)):
            section = obj.section(f".rodata.{u}_values_{k}", PROGBITS, ALLOC, rng.randbytes(32))
            self.constants.append(obj.local(f"{u}_values_{k}", OBJECT, 0, 32, section))
        self.tables = []
        for k in range(rng.randrange(1, 4)):
            section = obj.section(f".rodata.{u}_table_{k}", PROGBITS, ALLOC, bytes(16))
            obj.relocs[section] = [(4 * i, R_ABS32, self.callee()) for i in range(4)]
            self.tables.append(obj.local(f"{u}_table_{k}", OBJECT, 0, 16, section))

    def callee(self, after=None, kinds=()):
        """Who is called: with `after`, perhaps a function of the same object behind that one."""
        rng, own = self.rng, [k for k in range((after or 0) + 1, self.count) if kinds and kinds[k] in ("static", "global")]
        if own and rng.random() < 0.45:
            return self.symbols[own[0] if rng.random() < 0.5 else rng.choice(own)]
        home = next((n for n, members in enumerate(self.libraries) if self.number in members), 0)
        if home < 1 or rng.random() < 0.3:
            among = self.libraries[home]
        elif self.number % 2:             # later archives, and the last two from each other
            among = self.libraries[rng.randrange(min(home, len(self.libraries) - 2), len(self.libraries))]
        else:
            among = self.libraries[home]
        if home == 0 and rng.random() < 0.35:
            among = self.libraries[rng.randrange(1, len(self.libraries))]
        # What is general is called most.
        number = among[int(len(among) * NEEDED * rng.random() ** 1.5)]
        return self.object.want(function_name(number, rng.randrange(CALLABLE)))

    def body(self, k, section, kinds):
        rng, obj, code = self.rng, self.object, Code()
        if kinds[k] == "callable" or rng.random() < 0.5:
            nxt = next((i for i in range(k + 1, self.count) if kinds[i] == "static"), None)
            if nxt is not None:
                code.add(0x4620)
                code.reloc(R_CALL, self.symbols[nxt], 0xF7FF, 0xFFFE)
                code.add(0x4404)
        for _ in range(rng.choice((1, 2, 2, 3, 3, 4, 6))):
            r = rng.random()
            if r < 0.3:
                code.add(0x4620)                                             # mov r0, r4; bl f; add r4, r0
                code.reloc(R_CALL, self.callee(k, kinds), 0xF7FF, 0xFFFE)
                code.add(0x4404)
            elif r < 0.5:
                for _ in range(rng.randrange(2, 9)):                         # adds r4, #n; eor r4, r4, r4, ror #n
                    code.add(0x3400 | rng.getrandbits(8), 0xEA84, 0x0434 | rng.randrange(4) << 6 | rng.randrange(8) << 12)
            elif r < 0.65:
                code.literal(rng.choice(self.data))                          # ldr r3, =v; ldr r0, [r3]; add r4, r0; str r4, [r3]
                code.add(0x6818, 0x4404, 0x601C)
            elif r < 0.78:
                symbol = rng.choice(self.constants)                          # movw, movt r3, v; ldr r0, [r3, #n]; add r4, r0
                code.reloc(R_MOVW, symbol, 0xF240, 0x0300)
                code.reloc(R_MOVT, symbol, 0xF2C0, 0x0300)
                code.add(0x6818 | rng.randrange(8) << 6, 0x4404)
            elif r < 0.86:
                code.literal(rng.choice(self.tables))                        # ldr r3, =t; ldr r3, [r3, #n]; mov r0, r4; blx r3
                code.add(0x681B | rng.randrange(4) << 6, 0x4620, 0x4798, 0x4404)
            elif r < 0.92:
                code.literal(obj.want(f"option_{self.number // OF_MODULE}_{rng.randrange(3)}", WEAK))
                code.add(0xB10B, 0x4620, 0x4798)                             # a function that there may not be: cbz r3, over it
            elif self.cxx:
                code.add(0x4620)
                code.reloc(R_CALL, self.shared_function(), 0xF7FF, 0xFFFE)
                code.add(0x4404)
            elif k + 1 < self.count and len(code.words) > 8:                 # beq over; mov r0, r4; pop {r4, lr}; b f; over:
                code.add(0x07E3, 0xD504, 0x4620, 0xE8BD, 0x4010)
                code.reloc(R_JUMP, self.callee(k, kinds), 0xF7FF, 0xBFFE)
        data, pool = code.end()
        self.put(k, section, data, pool, code.relocs)

    def put(self, k, section, data, pool, relocs):
        obj, row = self.object, self.object.sections[section - 1]
        row[3] = data
        if len(data) > pool:
            row[4] = 4
        if relocs:
            obj.relocs[section] = relocs
        obj.local("$t", NOTYPE, 0, 0, section)
        if len(data) > pool:
            obj.local("$d", NOTYPE, pool, 0, section)
        symbol = self.symbols[k]
        table, at = (obj.locals, symbol - 1) if symbol > 0 else (obj.globals, -1 - symbol)
        table[at] = (*table[at][:2], len(data), *table[at][3:])
        self.functions.append((function_name(self.number, k), section, len(data), symbol < 0))
        if self.unwind:
            self.unwinding(section, row[0], 0)

    def unwinding(self, section, name, flags):
        """An index piece that says how to leave the function: it saved r4 and lr."""
        obj = self.object
        piece = obj.section(".ARM.exidx" + name, EXIDX, ALLOC | LINK_ORDER | flags, struct.pack("<II", 0, 0x80A8B0B0), 4, section)
        obj.relocs[piece] = [(0, R_PREL31, obj.of_section(section)), (0, R_NONE, obj.want("__aeabi_unwind_cpp_pr0"))]
        return piece

    def shared_function(self):
        """A function in a group that other objects have, too."""
        k, obj = self.rng.randrange(40), self.object
        name = f"_ZN6common6FilterILi{k}EE3runEj"
        if name in obj.wanted:
            return obj.wanted[name]
        group = obj.section(".group", SHT_GROUP, 0, b"", 4, 0, 4)
        section = obj.section(".text." + name, PROGBITS, ALLOC | EXEC | GROUP, struct.pack("<3H", 0x3000 | k, 0x4240, 0x4770), 2)
        symbol = obj.define(name, FUNC, 1, 6, section, WEAK)
        obj.local("$t", NOTYPE, 0, 0, section)
        obj.sections[group - 1][3] = struct.pack("<II", 1, section)
        obj.groups.append((group, symbol))
        return symbol


def command_file(modules=(), banks=1, stretch=1):
    code = " | ".join(f"FLASH{k}" for k in range(banks)) if banks > 1 else "FLASH"
    into, last = (">>", f"FLASH{banks - 1}") if banks > 1 else (">", "FLASH")
    lines = ["--entry_point=Reset_Handler", "--retain=*(.vectors)", "MEMORY", "{"]
    for name, attributes, origin, length in MEMORY:
        length *= stretch if name == "FLASH" else 1
        parts = banks if name == "FLASH" else 1
        lines += [f"    {name}{k if parts > 1 else ''} ({attributes}) : origin = {origin + length // parts * k:#x}, "
                  f"length = {length // parts:#x}" for k in range(parts)]
    lines += ["}", f"__stack_top = {STACK_TOP:#x};", "SECTIONS", "{", "    .vectors : { *(.vectors) } > VECT"]
    for m in modules:
        lines += [f"    .{kind}_{m} : {{ *{m}_*.o(.{kind}*) }} {into} {code}" for kind in ("text", "rodata")]
    lines += [f"    .{kind} : {{ *(.{kind}*) }} {into} {code}" for kind in ("text", "rodata")]
    lines += [f"    .init_array : {{ *(.init_array*) }} > {last}, RUN_START(__init_array_start), RUN_SIZE(__init_array_size)",
              f"    .ARM.exidx : {{}} > {last}"]
    lines += [f"    .{name} : {{ *(.{name}*) }} LOAD = {last}, RUN = {run}, PALIGN(4), LOAD_START(__{name}_load), "
              f"RUN_START(__{name}_start), RUN_SIZE(__{name}_size)" for name, run in (("ramcode", "TCM"), ("data", "RAM"))]
    return "\n".join([*lines, "    .bss : { *(.bss*) } > RAM, PALIGN(4), RUN_START(__bss_start), RUN_SIZE(__bss_size)", "}", ""])


def linker_script(modules=(), banks=1, stretch=1):
    """What comes nearest in the peers' language, which knows nothing of sections that are spread over banks."""
    del banks
    lines = ["ENTRY(Reset_Handler)", "MEMORY", "{"]
    lines += [f"  {name} ({attributes.lower()}) : ORIGIN = {origin:#x}, LENGTH = {length * (stretch if name == 'FLASH' else 1):#x}"
              for name, attributes, origin, length in MEMORY]
    lines += ["}", f"__stack_top = {STACK_TOP:#x};", "SECTIONS", "{", "  .vectors : { KEEP(*(.vectors)) } > VECT"]
    for m in modules:
        lines += [f"  .{kind}_{m} : {{ *{m}_*.o(.{kind} .{kind}.*) }} > FLASH" for kind in ("text", "rodata")]
    lines += [f"  .{kind} : {{ *(.{kind} .{kind}.*) }} > FLASH" for kind in ("text", "rodata")]
    lines += ["  .init_array : { __init_array_start = .; KEEP(*(.init_array*)) __init_array_end = .; } > FLASH",
              "  __init_array_size = __init_array_end - __init_array_start;",
              "  .ARM.exidx : { *(.ARM.exidx*) } > FLASH"]
    for name, run in (("ramcode", "TCM"), ("data", "RAM")):
        lines += [f"  .{name} : {{ __{name}_start = .; *(.{name} .{name}.*) . = ALIGN(4); __{name}_end = .; }} > {run} AT> FLASH",
                  f"  __{name}_load = LOADADDR(.{name}); __{name}_size = __{name}_end - __{name}_start;"]
    return "\n".join([*lines, "  .bss (NOLOAD) : { __bss_start = .; *(.bss .bss.*) *(COMMON) . = ALIGN(4); __bss_end = .; } > RAM",
                      "  __bss_size = __bss_end - __bss_start;", "}", ""])


def assemble(text, path):
    path.with_suffix(".s").write_text(text)
    subprocess.run(["arm-none-eabi-gcc", *CPU, "-c", path.with_suffix(".s"), "-o", path], check=True)
    path.with_suffix(".s").unlink()


def write_unit(job):
    path, number, size, attributes, libraries = job
    unit = Unit(number, size, attributes, libraries)
    data = unit.make()
    path.write_bytes(data)
    obj = unit.object
    return (1, len(unit.functions), int.from_bytes(data[48:50], "little"), sum(map(len, obj.relocs.values())), len(data))


def make(size, folder):
    objects, _, archives = SIZES[size]
    shutil.rmtree(folder, ignore_errors=True)
    for name in "obj", "lib", "members":
        (folder / name).mkdir(parents=True)
    # libraries[0] is the program itself; the others are archives.
    own = objects * 11 // 20
    each = (objects - own) // archives
    libraries = [range(own)] + [range(own + k * each, own + (k + 1) * each) for k in range(archives)]
    rng = random.Random(size)
    roots = [function_name(rng.randrange(own), rng.randrange(3)) for _ in range(min(800, own))]
    assemble(START + "".join(f"    .word {name}\n" for name in roots) + "roots_end:\n", folder / "obj/start.o")
    options = [f"option_{m}_{k}" for m in range(0, own // OF_MODULE + 1, 2) for k in (0, 1)]
    assemble("    .syntax unified\n    .thumb\n" + "".join(OPTION.format(name) for name in options), folder / "obj/options.o")
    attributes = Elf(folder / "obj/start.o").section(".ARM.attributes").data
    modules = [f"m{m:04d}" for m in range(own // OF_MODULE + 1)]
    paths = {n: folder / f"obj/m{n // OF_MODULE:04d}_u{n:05d}.o" for n in libraries[0]}
    paths |= {n: folder / f"members/l{k:02d}_u{n:05d}.o" for k, members in enumerate(libraries[1:]) for n in members}
    with concurrent.futures.ProcessPoolExecutor() as pool:
        rows = list(pool.map(write_unit, ((p, n, size, attributes, libraries) for n, p in paths.items()), chunksize=16))
    names = [f"lib/libpart{k:02d}.a" for k in range(archives)]
    for name, members in zip(names, libraries[1:]):
        subprocess.run(["arm-none-eabi-ar", "rcD", folder / name, *(paths[n] for n in members)], check=True)
    shutil.rmtree(folder / "members")
    inputs = ["obj/start.o", "obj/options.o", *(f"obj/{paths[n].name}" for n in libraries[0]), *names[:-2],
              "--start-group", *names[-2:], "--end-group"]
    for file in "inputs.cmd", "inputs.rsp":
        (folder / file).write_text("\n".join(inputs) + "\n")
    for layout, options in LAYOUTS.items():
        given = {**options, "modules": modules if options.get("modules") else ()}
        (folder / f"{layout}.cmd").write_text(command_file(**given))
        (folder / f"{layout}.ld").write_text(linker_script(**given))
    counts = dict(zip(("objects", "functions", "sections", "relocations", "bytes"), map(sum, zip(*rows))))
    (folder / "corpus.json").write_text(json.dumps({**counts, "modules": len(modules)}, indent=1) + "\n")
    print(f"{size}: " + ", ".join(f"{v:,} {k}" for k, v in counts.items()), flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=Path)
    parser.add_argument("sizes", nargs="*", choices=[[], *SIZES], default=["S", "M", "L"])
    opts = parser.parse_args()
    for size in opts.sizes:
        make(size, opts.folder / size)


if __name__ == "__main__":
    main()
