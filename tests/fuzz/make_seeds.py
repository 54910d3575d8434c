#!/usr/bin/env python3
"""Makes the seeds of the fuzz targets, tests/fuzz/corpus/<target>/seed_*, from the sources below.

The seeds are committed, so that a build needs no tool chain to replay them; run this again after a change of the
sources. Inputs that once broke something are called bug_*, and are not made here.
"""
import shutil
import struct
import subprocess
import tempfile
from pathlib import Path

CORPUS = Path(__file__).resolve().parent / "corpus"
TOOL = "arm-none-eabi-"

CODE = """
    .syntax unified
    .thumb
    .section .text.f, "axG", %progbits, f, comdat
    .weak f
    .type f, %function
    .thumb_func
f:  ldr r0, =data
    bl ext
    bx lr
    .arm
    .section .text.g, "ax"
    .global g
g:  b f
    .word g - .
    .data
data: .word f, ext + 4
    .comm shared, 16, 4
    .bss
    .space 12
"""
ATTRIBUTES = """
    .cpu cortex-m4
    .fpu fpv4-sp-d16
    .thumb
    .eabi_attribute 20, 1
    .eabi_attribute 21, 1
    .eabi_attribute 23, 3
    .eabi_attribute 24, 1
    .eabi_attribute 25, 1
    .eabi_attribute 32, 1, "gnu"
    .eabi_attribute 38, 1
    .eabi_attribute 64, 1
    .eabi_attribute 67, "2.09"
    nop
"""
# What the assembler does not make: extended section attributes and symbol aliases, by the names of their sections.
EXTRA = """
    .section .QV.section.flags, "", %progbits
    .byte 1, 0, 0, 0
    .space 16
    .long 3
    .short 1
    .byte 0, 2, 2
    .section .QV.symbol.alias, "", %progbits
    .byte 1, 0, 0, 0
    .short 1
    .asciz "QV"
    .long 1, 2
"""
ASSEMBLER = {
    "thumb": (CODE, ["-march=armv7-r"]),
    "big": (CODE, ["-march=armv7-r", "-EB"]),
    "extra": (CODE + EXTRA, ["-march=armv7-r"]),
    "attributes": (ATTRIBUTES, []),
    "tiny": ("    .byte 1\n", []),
}
LINKED = "ENTRY(g) PHDRS { text PT_LOAD; data PT_LOAD; } SECTIONS { . = 0x100; .text : { *(.text*) } :text " \
         ".data 0x20000000 : { *(.data) *(.bss) } :data }"

COMMAND_FILES = {
    "memory": """--retain=*(.isr_vector)
MEMORY
{
    FLASH (RX)  : origin = 0x00000000, length = 256K, fill = 0xFFFF
    RAM   (RWX) : org = 0x20000000 len = (64 * 1024) - 0x10
    ALIAS { A : o = 0x100 B : o = 0x1000 } LENGTH = 0x100,
    PAGE 1 : EXT : o = START(RAM) + SIZE(FLASH, 0) l = 0x10 vfill = 7 ATTR = (RW)
}
""",
    "sections": """/* one of everything */
SECTIONS
{
    .isr : { *(.isr_vector) } > 0x0
    .text : { main.o(.text .text:a, .rodata*) -lc.a<exit.o>(.text) *(.text*) = 0xAA { START(s), SIZE(WEAK(t)) } }
            LOAD > FLASH, RUN > RAM | EXT (HIGH), PAGE 1, LOAD_START(a), RUN_END(b), table(tbl, compression = lzss)
    .data : load = FLASH, run = RAM, ALIGN(8), PALIGN(POWER2), BLOCK(0x100), priority(3), fill = 0x1234, type = NOINIT
    .bss (NOLOAD) 0x20001000 : { . = ALIGN(8); heap = .; . += 0x400; WEAK(end) = . + 4; }
    GROUP(g) : { .a : { *(.a) } .b : crc_table(crc, algorithm = CRC32) UNION { .c .d : unordered() } } >> RAM | EXT
}
x = -(1 << 4) + ~y * 3 / (2 % z) && !w || a >= b != c <= d == PHY(e) & 0x0FF | 017 ^ 10h;
""",
    "words": """a.o "b c.o" --map_file="x y.map" -o out.elf
ECC { f : { a = 1 } } VERSION { V1 { *; }; }
MEMORY { } SECTIONS { } = ; } "open
/* open
""",
    "directives": r"""#define KB(n) ((n) * 1024)
#define S(x) #x
#define C(a, b) a ## b
#define SELF SELF x
#if defined(KB) && C(1, 2) == 12 || 'a' < 0x62 ? 1 : 0
MEMORY { M : o = KB(16), l = KB(KB(2)) } // c
#elif UNDEFINED
#else
/* x
 y */ z
#endif
S("a\b" C(__LINE__, __FILE__)) \
 SELF C(x, KB)(3)
#line 7 "other"
#undef KB
KB(
""",
    "empty_pattern": 'SECTIONS { .a : { *<"">("\0x", "") ""(.b) } }\n',
}


def run(*command, cwd=None):
    subprocess.run([str(part) for part in command], check=True, cwd=cwd)


def assemble(directory, name):
    source, options = ASSEMBLER[name]
    path = directory / (name + ".o")
    (directory / "source.s").write_text(source)
    run(TOOL + "as", *options, directory / "source.s", "-o", path)
    return path


def section(path, wanted):
    """The bytes of a section of a little-endian ELF file."""
    data = path.read_bytes()
    shoff, (shentsize, shnum, shstrndx) = struct.unpack_from("<I", data, 32)[0], struct.unpack_from("<HHH", data, 46)
    headers = [struct.unpack_from("<10I", data, shoff + i * shentsize) for i in range(shnum)]
    names = headers[shstrndx][4]
    for header in headers:
        start = names + header[0]
        if data[start:data.index(b"\0", start)].decode() == wanted:
            return data[header[4]:header[4] + header[5]]
    raise KeyError(wanted)


def sparse_headers(data):
    """The same object with its section headers moved to the end and each 48 bytes long."""
    shoff, count = struct.unpack_from("<I", data, 32)[0], struct.unpack_from("<H", data, 48)[0]
    headers = b"".join(data[shoff + i * 40:shoff + (i + 1) * 40] + bytes(8) for i in range(count))
    data = bytearray(data + headers)
    struct.pack_into("<I", data, 32, len(data) - len(headers))
    struct.pack_into("<H", data, 46, 48)
    return bytes(data)


def main():
    for old in CORPUS.glob("*/seed_*"):
        old.unlink()

    def seed(target, name, data):
        path = CORPUS / target / ("seed_" + name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)

    directory = Path(tempfile.mkdtemp())
    objects = {name: assemble(directory, name) for name in ASSEMBLER}
    for name, path in objects.items():
        seed("elf", name, path.read_bytes())
    edited = bytearray(objects["thumb"].read_bytes())
    edited[9:14] = bytes([15, 3, 2, 4, 1])
    seed("elf", "edited", edited)
    seed("elf", "sparse_headers", sparse_headers(objects["thumb"].read_bytes()))
    (directory / "link.ld").write_text(LINKED)
    run(TOOL + "ld", objects["thumb"], "--defsym=ext=0x100", "-T", directory / "link.ld", "-o", directory / "linked")
    seed("elf", "linked", (directory / "linked").read_bytes())
    run(TOOL + "ld", "-r", objects["thumb"], objects["tiny"], "-o", directory / "partial")
    seed("elf", "partial", (directory / "partial").read_bytes())

    long_name = directory / "a_member_with_a_long_name.o"
    shutil.copy(objects["tiny"], long_name)
    for name, options, members in (("plain", "rcS", [objects["tiny"]]), ("index", "rc", [objects["thumb"], long_name]),
                                   ("thin", "rcT", [objects["tiny"]])):
        archive = directory / (name + ".a")
        run(TOOL + "ar", options + "D", archive.name, *(member.name for member in members), cwd=directory)
        seed("archive", name, archive.read_bytes())
    seed("archive", "empty", b"!<arch>\n")
    # The other kind of long-name table: the start of the name in the header, its offset as the owner.
    entry = "{:<16}{:<12}{:<6}{:<6}{:<8}{:<10}`\n"
    names = b"a_member_with_a_long_name.o/\nanother_long_member_name.o/\n"
    seed("archive", "filenames", b"!<arch>\n" + entry.format("<filenames>/", 0, 0, 0, 0, len(names)).encode() + names +
         b"\n" * (len(names) & 1) + entry.format("another_long_me/", 0, 29, 0, 644, 3).encode() + b"abc\n")

    for name, path in objects.items():
        if name in ("attributes", "thumb"):
            seed("attributes", name, section(path, ".ARM.attributes"))

    for name, text in COMMAND_FILES.items():
        seed("command_file", name, text.encode())
        seed("preprocessor", name, text.encode())
    shutil.rmtree(directory)


if __name__ == "__main__":
    main()
