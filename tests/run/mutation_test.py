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
import subprocess
import sys
import threading
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1] / "examples"), str(HERE.parent / "support")]
import elf_write  # noqa: E402
import linktest  # noqa: E402
import run as examples  # noqa: E402
from mutators import (ATTRIBUTES, ElfBytes, mutate_archive, mutate_attributes, mutate_command,  # noqa: E402
                      mutate_elf)

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
    .eabi_attribute 25, 1
    .global _start, common_data, __aeabi_unwind_cpp_pr0, __aeabi_idiv, _ZdlPvj
    .global __aeabi_unwind_cpp_pr1, __gxx_personality_v0, _GLOBAL_OFFSET_TABLE_
    .set _GLOBAL_OFFSET_TABLE_, 0x20001000
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
__aeabi_unwind_cpp_pr1:
    .thumb_func
__gxx_personality_v0:
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
TLS_SOURCE = """
    .section .tdata, "awT", %progbits
    .global tv
    .type tv, %object
tv: .word 5
    .section .tbss, "awT", %nobits
tw: .space 8
    .section .text.tls, "ax"
    .word tv(tpoff), tw(tpoff), tv(gottpoff), tv(tlsgd)
"""
GROUP_SOURCE = """
    .section .text.g{0}, "axG", %progbits, g{0}, comdat
    .weak g{0}
g{0}: .word .Ld{0}
    .section .data.g{0}, "awG", %progbits, g{0}, comdat
.Ld{0}: .word g{0}
"""
FLAGS_SOURCE = """
    .section .QV.section.flags, "", %progbits
    .byte 1, 0, 0, 0
    .space 16
    .long 12
    .short 1
    .byte 0, 2, 4, 8, 16, 2, 0, 0, 2, 1, 31, 2
    .section .QV.symbol.alias, "", %progbits
    .byte 1, 0, 0, 0
    .short 3
    .asciz "QV"
    .long 1, 2, 12, 13, 14, 15
    .section .icode, "", %progbits
    .ascii "!<icode>"
"""
FLOAT_SOURCE = """
extern float scale(float a, double b);
__thread int per_thread = 3;
float sums[4] = {1.5f, 2.5f}; double last; _Complex float c;
float work(float x) { last += x; per_thread++; return scale(sums[1] * x, last) + sums[per_thread & 3]; }
float scale(float a, double b) { c *= a; return a * (float)b; }
"""
# Lists of attributes by vendor: scope, ids with their end, tags with their values.
ATTRIBUTE_LISTS = {
    b"aeabi": [(1, [], b"\x05cortex-a9\0\x06\x0a\x07A\x08\x01\x09\x02\x0a\x03\x12\x04\x18\x01\x19\x01\x1a\x02"
                       b"\x20\x01QV\0\x41\x06\x0a\x43" b"2.09\0\x80\x02\x07"),
               (2, [1, 2, 0], b"\x06\x04\x08\x01"), (3, [1, 3, 5, 0], b"\x09\x01")],
    b"QV": [(1, [], b"\x04\x01\x05QV\0\x08\x05\x0a\x06\x0c\x04\x80\x02\x03\xc0\x02\x01")],
    b"gnu": [(1, [], b"\x04\x01\x05text\0")],
}
SMALL_SOURCE = """
    .syntax unified
    .thumb
    .eabi_attribute 25, 1
    .global _start, common_data, __aeabi_idiv, __gnu_thumb1_case_uqi
    .section .text.start, "ax"
    .thumb_func
_start: bl work
    .thumb_func
__gnu_thumb1_case_uqi:
    .thumb_func
__aeabi_idiv: bx lr
    .data
common_data: .word _start
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
    """A link: its files, its arguments, which files may be damaged and how, and whether it works while they are not."""

    def __init__(self, name, files, args, targets, links=True):
        self.name, self.files, self.args, self.targets, self.links = name, files, args, targets, links


def compile_to(work, name, text, *options):
    """The bytes of an object built from a text."""
    (work / name).write_text(text)
    out = work / (name + ".o")
    driver = TOOL + ("g++" if name.endswith(".cpp") else "gcc")
    examples.run([driver, "-c", "-O1", "-mcpu=cortex-a9", "-ffunction-sections", "-fdata-sections", *options,
                  work / name, "-o", out])
    return out.read_bytes()


def compile_by_clang(work, name, text):
    (work / name).write_text(text)
    examples.run(["clang", "--target=arm-none-eabi", "-mcpu=cortex-a9", "-mthumb", "-c", "-O1", "-g", "-ffunction-sections",
                  work / name, "-o", work / (name + ".o")])
    return (work / (name + ".o")).read_bytes()


def make_archive(work, name, members, *archiver):
    for member, data in members.items():
        (work / member).write_bytes(data)
    (work / name).unlink(missing_ok=True)
    examples.run([*(archiver or (TOOL + "ar", "rcD")), name, *members], cwd=work)
    return (work / name).read_bytes()


def with_attributes(data, order, vendors):
    """An object whose attributes say something else: {vendor: [(scope, ids, bytes)]}."""
    def sized(head, body):
        return head + (len(head) + 4 + len(body)).to_bytes(4, order) + body

    section = b"A"
    for vendor, lists in vendors.items():
        body = vendor + b"\0" + b"".join(sized(bytes([scope]), bytes(ids) + tags) for scope, ids, tags in lists)
        section += sized(b"", body)
    elf = ElfBytes(data)
    i = elf.of_type(ATTRIBUTES)[0]
    elf.put(elf.shoff + 40 * i + 16, 4, len(elf.data))
    elf.put(elf.shoff + 40 * i + 20, 4, len(section))
    return bytes(elf.data) + section


def object_seeds(work, qvlink):
    """Objects of C, C++ and the assembler, in both byte orders, linked for good and partially."""
    main = compile_to(work, "main.s", ASM_SOURCE)
    c = compile_to(work, "code.c", C_SOURCE, "-mthumb", "-gdwarf-4", "-fcommon")
    cpp = ["-fno-rtti", "-fno-threadsafe-statics", "-fno-use-cxa-atexit", "-funwind-tables"]
    plain = ["-mthumb", "-fno-exceptions", *cpp]
    one = compile_to(work, "one.cpp", CPP_SOURCE.replace("NAME", "one"), *plain)
    two = compile_to(work, "two.cpp", CPP_SOURCE.replace("NAME", "two"), *plain, "-gdwarf-4")
    big_main = compile_to(work, "bigmain.s", ASM_SOURCE, "-mbig-endian")
    big = compile_to(work, "big.c", C_SOURCE, "-mbig-endian", "-marm", "-fcommon")
    library = make_archive(work, "lib.a", {"code.o": c, "a_member_with_a_long_name.o": one, "two.o": two})
    command = COMMAND.encode()
    args = ["mutated.o", "main.o", "link.cmd", f"--output_file={OUTPUT}"]
    mapped = [*args, "--map_file=out.map"]
    all_of = ["--unused_section_elimination=off"]

    def seed(name, mutated, arguments, main_object=main, links=True, **others):
        files = {"mutated.o": mutated, "main.o": main_object, "link.cmd": command, **others}
        return Seed(name, files, arguments, [("mutated.o", mutate_elf)], links)

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
    # What only some objects have: RELA records and every type of relocation, thread-local data, unwind tables, offsets
    # from a global table, older and newer processors, groups in plenty, debug information of the latest kind.
    every_type = elf_write.ElfObject()
    code = every_type.section(".text.start", elf_write.ALLOC | elf_write.EXEC, bytes(8 * 256))
    every_type.symbol("_start", code, 1, elf_write.FUNC)
    every_type.symbol("work", elf_write.UND, 0)
    every_type.attributes = b""
    for number in range(256):
        every_type.reloc(code, 8 * number, number, "work", 4 if number % 2 else None)
    tls = compile_to(work, "tls.s", ASM_SOURCE + TLS_SOURCE)
    unwind = compile_to(work, "unwind.cpp", CPP_SOURCE.replace("NAME", "unwind"), "-marm", "-fexceptions", *cpp)
    pic = compile_to(work, "pic.c", C_SOURCE, "-mthumb", "-fPIC", "-gdwarf-5")
    cortex_m0 = "-mthumb", "-mcpu=cortex-m0"
    small = compile_to(work, "small.c", C_SOURCE, *cortex_m0, "-fcommon")
    small_main = compile_to(work, "smallmain.s", SMALL_SOURCE, *cortex_m0)
    hard_main = compile_to(work, "hardmain.s", ASM_SOURCE + ".eabi_attribute 28, 1\n")
    hard = compile_to(work, "hard.c", FLOAT_SOURCE, "-mthumb", "-mcpu=cortex-a9", "-mfpu=neon", "-mfloat-abi=hard", "-g3")
    old = compile_to(work, "old.c", C_SOURCE, "-marm", "-mcpu=arm7tdmi", "-fcommon")
    llvm = compile_by_clang(work, "clang.c", C_SOURCE)
    grouped = compile_to(work, "grouped.s", ".eabi_attribute 25, 1\n" + "".join(map(GROUP_SOURCE.format, range(40))))
    flagged = compile_to(work, "flagged.s", ASM_SOURCE + FLAGS_SOURCE)
    (work / "partial.o").unlink(missing_ok=True)
    (work / "c_for_partial.o").write_bytes(c)
    examples.run([qvlink, "-r", "c_for_partial.o", "-o=partial.o"], cwd=work)
    partial = (work / "partial.o").read_bytes()
    seeds += [
        seed("every type of relocation", every_type.bytes(), args + all_of, c, links=False),
        seed("thread-local data", tls, args + all_of, c),
        seed("thread-local data, partial link", tls, ["-r", "mutated.o", f"-o={OUTPUT}"]),
        seed("unwind tables", unwind, args + ["two.o", "code.o"] + all_of, **{"two.o": two, "code.o": c}),
        seed("position-independent", pic, mapped),
        seed("the smallest processor", small, args, small_main),
        seed("hard floating point", hard, args + all_of, hard_main),
        seed("an old processor", old, args + all_of),
        seed("another compiler", llvm, mapped + all_of),
        seed("many groups", grouped, args + ["two.o", "code.o"] + all_of, **{"two.o": grouped, "code.o": c}),
        seed("flags and aliases", flagged, args, c),
        seed("made by a partial link", partial, args),
    ]
    # Attributes: what a compiler says, scopes of sections and symbols, several vendors, the other byte order.
    scoped = with_attributes(main, "little", ATTRIBUTE_LISTS)
    for name, mutated, arguments, other in [("of a compiler", hard, args, hard_main), ("of all scopes", scoped, args, c),
                                            ("of all scopes, partial link", scoped, ["-r", "mutated.o", "main.o", f"-o={OUTPUT}"], c),
                                            ("big-endian", with_attributes(big_main, "big", ATTRIBUTE_LISTS), args + all_of, big)]:
        files = {"mutated.o": mutated, "main.o": other, "link.cmd": command}
        seeds.append(Seed(f"attributes {name}", files, arguments, [("mutated.o", mutate_attributes)]))

    archive_args = ["main.o", "lib.a", "link.cmd", f"--output_file={OUTPUT}", "--reread_libs"]
    in_library = command.replace(b"mutated.o(", b"lib.a<code.o>(")
    members = {"code.o": c, "a_member_with_a_long_name.o": one, "two.o": two, "odd.o": c + b"\0"}
    bsd = make_archive(work, "bsd.a", members, "llvm-ar", "--format=bsd", "rcD")
    plain = make_archive(work, "plain.a", members, TOOL + "ar", "rcSD")
    thin = make_archive(work, "thin.a", members, TOOL + "ar", "rcDT")
    for name, archive, arguments, more in [("of GNU", library, archive_args, {}), ("of BSD", bsd, archive_args, {}),
                                           ("without index", plain, archive_args, {}), ("thin", thin, archive_args, members),
                                           ("of GNU, everything kept", library, archive_args + all_of, {})]:
        files = {"main.o": main, "lib.a": archive, "link.cmd": in_library, **more}
        links = name.startswith("of GNU")  # the others say why not
        seeds.append(Seed(f"archive {name}", files, arguments, [("lib.a", mutate_archive)], links))
    files = {"mutated.o": c, "main.o": main, "link.cmd": command}
    seeds.append(Seed("command file", files, mapped, [("link.cmd", mutate_command)]))
    return seeds


def example_seeds(work):
    """The command files of the examples with their objects; a program that needs the compiler's libraries is too large,
    and its command file stands over the objects of hello."""
    seeds, objects = [], {}
    for name, program in examples.PROGRAMS.items():
        if "archives" not in program:
            own = work / f"example-{name}"
            own.mkdir()
            paths = examples.compile_program(name, own)
            if program.get("runtime"):
                paths.append(examples.runtime_archive(name, own))
            objects[name] = {path.name: path.read_bytes() for path in paths}
    for name in examples.PROGRAMS:
        own = objects.get(name, objects["hello"])
        files = {**own, "link.cmd": (examples.HERE / name / "link.cmd").read_bytes()}
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


# --- running them

def make_variant(seeds, opts, number):
    """The damaged link of a number: (seed, files, what was done)."""
    rng = random.Random(f"{opts.seed}:{number}")
    seed = rng.choice(seeds)
    name, mutate = rng.choice(seed.targets)
    damaged, said = mutate(rng, seed.files[name])
    return seed, {**seed.files, name: damaged}, f"{name}: {said}"


def verdict(status, text, work):
    """What is wrong with how a link ended, or None."""
    if status not in (0, 1):
        return f"status {status}"
    if re.search(r"Sanitizer|runtime error:|internal (error|warning|fatal error) #|INTERNAL ERROR", text):
        return "an internal error or a report of a sanitizer"
    if status == 1 and "error" not in text:
        return "status 1 without an error message"
    if status == 1 and (work / OUTPUT).exists():
        return f"status 1, but there is {OUTPUT}"
    if list(work.glob(OUTPUT + ".*")):
        return "an unfinished output is left"
    return None


class Server:
    """Runs links by a link_server, one at a time."""

    def __init__(self, program):
        self.process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                        env={**os.environ, **SANITIZER})

    def run(self, work, out, args):
        """The status of a link; None: it took too long. Negative for a signal, as of subprocess."""
        self.process.stdin.write("\t".join([str(TIME_LIMIT), str(work), str(out), *args]) + "\n")
        self.process.stdin.flush()
        what, *number = self.process.stdout.readline().split()
        return None if what == "timeout" else int(number[0]) * (1 if what == "exit" else -1)

    def close(self):
        self.process.stdin.close()
        self.process.wait()


servers, all_servers = threading.local(), []


def link(opts, work, args):
    """(status, text) of a link, with status None if it took too long."""
    program = opts.qvlink.parent / "tests" / "link_server"
    if opts.only is None and program.exists():
        if not hasattr(servers, "own"):
            servers.own = Server(program)
            all_servers.append(servers.own)
        out = work.with_suffix(".out")
        status = servers.own.run(work, out, args)
        text = out.read_bytes()
        out.unlink()
        return status, text.decode("latin-1")
    try:
        done = subprocess.run([str(opts.qvlink), *args], cwd=work, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              timeout=TIME_LIMIT, stdin=subprocess.DEVNULL, env={**os.environ, **SANITIZER})
        return done.returncode, done.stdout.decode("latin-1")
    except subprocess.TimeoutExpired:
        return None, ""


def check_seed(seed, opts):
    """Damage to a link that does not work would show little; returns what is wrong, or None."""
    work = opts.work / "undamaged"
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir()
    for name, data in seed.files.items():
        (work / name).parent.mkdir(parents=True, exist_ok=True)
        (work / name).write_bytes(data)
    status, text = link(opts, work, seed.args)
    wrong = verdict(status, text, work) or (f"status {status}" if seed.links and status else None)
    return f"FAILED: {wrong}\n  \"{seed.name}\", undamaged\n{text}" if wrong else None


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
    status, text = link(opts, work, seed.args)
    wrong = f"no end within {TIME_LIMIT} seconds" if status is None else verdict(status, text, work)
    if opts.only is not None:
        print(f"variant {number} of \"{seed.name}\": {said}\nin {work}\nstatus {status}\n{text}")
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
    parser.add_argument("--count", type=int, default=4000, help="how many variants")
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
    seeds = object_seeds(opts.work / "seeds", opts.qvlink) + example_seeds(opts.work / "seeds")
    broken = [report for report in (check_seed(seed, opts) for seed in seeds) if report]
    if broken:
        print(*broken, sep="\n")
        return 1
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
    for server in all_servers:
        server.close()
    print(f"{len(seeds)} seeds, {len(numbers)} variants, {failed} failures")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
