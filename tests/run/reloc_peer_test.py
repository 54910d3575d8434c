#!/usr/bin/env python3
"""Relocated bytes, compared with those of GNU ld: the same objects at the same addresses give the same code and data.

Each row of CASES is a piece of assembly that ends up in the section .src. The targets lie in sections of their own, at
addresses that both linkers are told. Every row is assembled by GNU as and by clang and linked with addends from ADDENDS in
turn, little-endian, big-endian (BE-32) and big-endian with little-endian code (BE-8). What no assembler writes is in
reloc_table_test.py.
"""
import argparse
import struct
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "support"))
from elf import Elf  # noqa: E402

# name: (options of the assembler, code). {a} is an addend with its sign; arm_f, thumb_f are functions, dat is data,
# small is an absolute symbol that fits a byte, weak is nowhere defined.
V7 = "-march=armv7-a"
CASES = {
    "ARM BL to ARM": (V7, ".arm\n bl arm_f{a}\n bleq arm_f{a}"),
    "ARM BL to Thumb becomes BLX": (V7, ".arm\n nop\n bl thumb_f\n bl thumb_f2"),
    "ARM BLX to ARM becomes BL": (V7, ".arm\n blx arm_f\n blx thumb_f"),
    "ARM B": (V7, ".arm\n b arm_f{a}\n bne arm_f{a}"),
    "ARM BL through PLT32": (V7, ".arm\n bl arm_f(PLT)\n b arm_f(PLT)"),
    "ARM PC24": (V7, ".arm\n .reloc ., R_ARM_PC24, arm_f\n bl .\n"),
    "ARM MOVW MOVT": (V7, ".arm\n movw r1, #:lower16:(dat{a})\n movt r1, #:upper16:(dat{a})"),
    "ARM MOVW MOVT relative": (V7, ".arm\n movw r1, #:lower16:(dat{a} - .)\n movt r1, #:upper16:(dat{a} - .)"),
    "ARM MOVW of a Thumb function": (V7, ".arm\n movw r1, #:lower16:thumb_f\n movt r1, #:upper16:thumb_f"),
    "Thumb BL to Thumb": (V7, ".thumb\n bl thumb_f\n nop\n bl thumb_f2"),
    "Thumb BL to ARM becomes BLX": (V7, ".thumb\n bl arm_f\n nop\n bl arm_f\n"),
    "Thumb B.W": (V7, ".thumb\n b.w thumb_f{a}\n nop\n b.w thumb_f2"),
    "Thumb conditional B.W": (V7, ".thumb\n beq.w thumb_f\n bhi.w thumb_f2"),
    "Thumb short branches": (V7, ".thumb\n .reloc ., R_ARM_THM_JUMP11, near\n b.n .\n .reloc ., R_ARM_THM_JUMP8, near\n beq.n .\n"),
    "Thumb MOVW MOVT": (V7, ".thumb\n movw r7, #:lower16:(dat{a})\n movt r7, #:upper16:(dat{a})"),
    "Thumb MOVW MOVT relative": (V7, ".thumb\n movw r7, #:lower16:(dat{a} - .)\n movt r7, #:upper16:(dat{a} - .)"),
    "Thumb MOVW of a Thumb function": (V7, ".thumb\n movw r7, #:lower16:thumb_f\n movt r7, #:upper16:thumb_f"),
    "words": (V7, ".arm\n .word dat{a}, arm_f{a}, thumb_f, thumb_f2{a}"),
    "relative words": (V7, ".arm\n .word dat{a} - ., arm_f - ., thumb_f - ."),
    "TARGET1 and TARGET2": (V7, ".arm\n .word thumb_f(target1), dat(target1), dat(target2)"),
    "PREL31": (V7, "".join(f" .reloc ., R_ARM_PREL31, {s}\n .word {v}\n" for s, v in
                                     (("arm_f", 0), ("dat", 0x80000000), ("thumb_f", 4)))),
    "halfwords and bytes": (V7, ".arm\n .hword small + 1, small\n .byte small + 1, small, 7, 9"),
    "V4BX": ("-march=armv4t --fix-v4bx", ".arm\n bx lr\n bxeq r3"),
    "NONE": (V7, ".arm\n .reloc ., R_ARM_NONE, dat\n .word 0x12345678"),
    "weak and undefined": (V7, ".arm\n .weak weak\n .word weak{a}\n movw r0, #:lower16:weak\n movt r0, #:upper16:weak"),
    "calls of what is weak and undefined": (V7, ".arm\n .weak weak\n bl weak\n b weak\n .thumb\n bl weak\n b.w weak"),
}
# The differences that are meant: what qvlink writes instead, in little-endian words and halfwords, and why.
INTENDED = {
    # A call of nothing becomes a move of r0 to itself in ARM state and two short NOPs in Thumb state, where GNU ld takes
    # the hint instructions that only the newer architectures have.
    "calls of what is weak and undefined": "<IIHHHH 0xe1a00000 0xe1a00000 0xbf00 0xbf00 0xbf00 0xbf00",
}
# Rows that only GNU as has an option for.
NOT_CLANG = {"V4BX"}
ADDENDS = ["", "+4", "-8", "+0x1234"]

SOURCE = """    .syntax unified
    .globl _start
    .section .src, "ax", %progbits
_start:
{code}
    .section .src.tail, "ax", %progbits @ data that lies behind code and, from clang, has no mapping symbol
    .word dat + 4
    .section .near, "ax", %progbits
    .thumb
    .globl near
    .thumb_func
near: bx lr
    .section .arm_t, "ax", %progbits
    .arm
    .globl arm_f
    .type arm_f, %function
arm_f: mov pc, lr
    .section .thumb_t, "ax", %progbits
    .thumb
    .globl thumb_f, thumb_f2
    .thumb_func
thumb_f: mov pc, lr
    .thumb_func
thumb_f2: mov pc, lr
    .section .dat, "aw", %progbits
    .globl dat
dat: .word 0
    .globl small
    .set small, 0x21
"""
PLACES = {".src": 0x8000, ".near": 0x80C0, ".arm_t": 0x9200, ".thumb_t": 0x8C00, ".dat": 0x12345678}
LCF = ("--entry_point=_start\n" + "".join(f"--retain=*({s})\n" for s in (*PLACES, ".src.tail")) +
       "MEMORY {{ M : origin = 0, length = 0x20000000 }}\nSECTIONS {{\n".format() +
       "".join(f"    {name} {address:#x} : {{ *({name}) }}\n" for name, address in PLACES.items()) + "}\n").replace("*(.src) }", "*(.src) *(.src.tail) }")
LDS = ("ENTRY(_start)\nSECTIONS {\n" +
       "".join(f"    {name} {address:#x} : {{ KEEP(*({name})) }}\n" for name, address in PLACES.items()) +
       "}\n").replace("KEEP(*(.src)) }", "KEEP(*(.src)) KEEP(*(.src.tail)) }")


def tool(*command):
    done = subprocess.run([str(c) for c in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
    return done.returncode, done.stdout.decode("latin-1")


def assemble(assembler, options, big, work):
    if assembler == "clang":
        return tool("clang", f"--target=arm{'eb' * big}-none-eabi", "-c", *options.split(), work / "a.s", "-o", work / "a.o")
    return tool("arm-none-eabi-as", *options.split(), "-EB" if big else "-EL", work / "a.s", "-o", work / "a.o")


# The byte orders: big data, options of GNU ld, of qvlink, big-endian code.
ORDERS = {
    "little": (False, [], [], False),
    "BE-32": (True, ["-EB"], ["--be32"], True),
    "BE-8": (True, ["-EB", "--be8"], [], False),
}


def check(name, options, code, order, opts):
    """Links the object of one row both ways; returns what is wrong with it, or None."""
    work = opts.work
    big, peer_options, own_options, big_code = ORDERS[order]
    if "armv4t" in options:
        own_options, peer_options, big_code = [], peer_options[:1], big  # BE-8 begins with version 6
    status, text = tool("arm-none-eabi-ld", *peer_options, "--target2=abs", "-T", work / "peer.ld", work / "a.o", "-o",
                        work / "peer.elf")
    if status:
        return f"GNU ld refuses it:\n{text}"
    status, text = tool(opts.qvlink, work / "a.o", work / "link.cmd", *own_options, "--trampolines=off",
                        "-o", work / "out.elf")
    if status or text:
        return f"status {status}\n{text}"
    ours, theirs = (Elf(work / f).section(".src").data for f in ("out.elf", "peer.elf"))
    if name in INTENDED:
        form, *values = INTENDED[name].split()
        meant = struct.pack(form.replace("<", ">") if big_code else form, *(int(v, 16) for v in values))
        theirs = meant + theirs[len(meant):]
    if ours != theirs:
        return f"qvlink {ours.hex(' ', 4)}\nexpect {theirs.hex(' ', 4)}"
    return None


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--only", default="", help="a part of the names of the rows to run")
    opts = parser.parse_args()
    opts.work.mkdir(parents=True, exist_ok=True)
    (opts.work / "link.cmd").write_text(LCF)
    (opts.work / "peer.ld").write_text(LDS)
    failures = links = 0
    rows = [(name, options, code, assembler, order, addend) for name, (options, code) in CASES.items() if opts.only in name
            for addend in (ADDENDS if "{a}" in code else [""]) for assembler in ("as", "clang") for order in ORDERS]
    for name, options, code, assembler, order, addend in rows:
        if assembler == "clang" and name in NOT_CLANG:
            continue
        (opts.work / "a.s").write_text(SOURCE.format(code=code.format(a=addend)))
        status, wrong = assemble(assembler, options, ORDERS[order][0], opts.work)
        if not status:
            links += 1
            wrong = check(name, options, code, order, opts)
        if wrong:
            failures += 1
            print(f"{name} {addend or '+0'} {order} by {assembler}: {wrong}")
    print(f"{links} links, {failures} failures")
    return 1 if failures or not links else 0


if __name__ == "__main__":
    sys.exit(main())
