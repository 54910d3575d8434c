#!/usr/bin/env python3
"""Every relocation type, compared with GNU ld and lld: the same fields at the same addresses get the same bytes.

The object files are made here, without an assembler: each case is one field in a slot of its own, with a type, an addend
and a symbol of its own, whose value makes the relocated value a chosen one, the limits of the range among them. All cases
are linked at once, as REL and as RELA records, in each byte order. What must be in the field is what the peer writes; where
that differs and is meant to, INTENDED says what must be there instead, and why.
"""
import argparse
import struct
import subprocess
import sys
from collections import namedtuple
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "support"))
import arm_insn as f  # noqa: E402
import elf_write as w  # noqa: E402
from elf import Elf  # noqa: E402

LOW, SRC = 0x1000, 0x4000000  # symbols count from LOW, which is also the static base; the fields lie at SRC
SLOT = 8

# One relocation type. Form: A an ARM instruction, T2 and T1 Thumb ones of 32 and 16 bits, D4, D2, D1 data. Then the bits
# that stay, the field, what the value of the symbol plus the addend is less ("abs" nothing, "pc" the place, "pc4" the place
# rounded down to a word, "sb" the static base), addends, relocated values, and the targets: d an object, x an absolute
# symbol, n a label in ARM code without a type, a and t functions in ARM and Thumb code.
Type = namedtuple("Type", "name number form bits field formula addends results targets")
SIZES = {"A": 4, "T2": 4, "T1": 2, "D4": 4, "D2": 2, "D1": 1}

WORD = 0x20001234, 0xFFFFFFF0, 0x7FFFFFFE
WORD_A = 0, 4, -8, 0x7FFFFFFF
HALF_A = 0, 4, -8, 0x7FFF, -0x8000
ARM_FAR = 0x1FFFFFC, -0x2000000, 0x1000, -8
ARM_A = -8, 0, 4, -0x2000000, 0x1FFFFFC
BLX_FAR = 0x1FFFFFE, -0x2000000, 0x1002, 0x1000
THM_FAR = 0xFFFFFE, -0x1000000, 0x3FFFFE, -0x400000, 0x2468, -4
THM_A = -4, 0, 2, 0xFFFFFE, -0x1000000
THM_TO_ARM = 0xFFFFFC, -0x1000000, 0x2468
SMALL_A = 0, 4, -8
OFF12 = 0, 4095, -4095, 100, -1
OFF8 = 0, 255, -255, 17, -16
COND_A, COND_FAR = (-4, 0, 2, 0xFFFFE, -0x100000), (0xFFFFE, -0x100000, 0x2468, -4)
OFF10 = 0, 1020, -1020, 16, -4
ROTATED = WORD + (0x12344, 0)
GROUP1, GROUP2 = (0x12345, -0x12345, 0xFF123, 5), (0x123456, -0x123456, 0x7F8123, 0)

TYPES = [
    Type("NONE", 0, "D4", 0, f.word, "abs", (0,), (0x2000,), "d"),
    Type("V4BX", 40, "A", 0xE12FFF1E, f.none, "abs", (0,), (0,), "x"),
    Type("ABS32", 2, "D4", 0, f.word, "abs", WORD_A, WORD, "dnat"),
    Type("REL32", 3, "D4", 0, f.word, "pc", WORD_A, WORD, "dnat"),
    Type("SBREL32", 9, "D4", 0, f.word, "sb", WORD_A, WORD, "dat"),
    Type("TARGET1", 38, "D4", 0, f.word, "abs", WORD_A, WORD, "dat"),
    Type("TARGET2", 41, "D4", 0, f.word, "abs", WORD_A, WORD, "dat"),
    Type("ABS32_NOI", 55, "D4", 0, f.word, "abs", WORD_A, WORD, "dat"),
    Type("REL32_NOI", 56, "D4", 0, f.word, "pc", WORD_A, WORD, "dat"),
    Type("PLT32_ABS", 94, "D4", 0, f.word, "abs", WORD_A, WORD, "dat"),
    Type("ABS16", 5, "D2", 0, f.half, "abs", HALF_A, (0, 0x7FFF, 0xFFFF, -0x8000, -1), "x"),
    Type("ABS8", 8, "D1", 0, f.byte, "abs", (0, 4, -8, 127, -128), (0, 0x7F, 0xFF, -0x80, -1), "x"),
    Type("PREL31", 42, "D4", 0x80000000, f.word31, "pc", (0, 4, -8, 0x1000000), (0x3FFFFFFF, -0x3FFF000, 0x1234), "dat"),
    Type("SBREL31", 39, "D4", 0x80000000, f.word31, "sb", SMALL_A, (0x3FFFFFFF, -4, 0x1234), "dat"),

    Type("PC24", 1, "A", 0xEB000000, f.branch, "pc", ARM_A, ARM_FAR, "nat"),
    Type("CALL", 28, "A", 0xEB000000, f.branch, "pc", ARM_A, ARM_FAR, "na"),
    Type("CALL", 28, "A", 0xEB000000, f.branch, "pc", ARM_A, BLX_FAR, "t"),
    Type("CALL of BLX", 28, "A", 0xFA000000, f.branch, "pc", ARM_A, (0x1FFFFFC, -0x2000000, 0x1000), "at"),
    Type("JUMP24", 29, "A", 0xEA000000, f.branch, "pc", ARM_A, ARM_FAR, "na"),
    Type("JUMP24 conditional", 29, "A", 0x1B000000, f.branch, "pc", ARM_A, ARM_FAR, "a"),
    Type("PLT32", 27, "A", 0xEB000000, f.branch, "pc", ARM_A, ARM_FAR, "at"),
    Type("PLT32 conditional", 27, "A", 0x1A000000, f.branch, "pc", ARM_A, ARM_FAR, "a"),
    Type("THM_CALL", 10, "T2", 0xF000D000, f.thumb_branch24, "pc", THM_A, THM_FAR, "t"),
    Type("THM_CALL", 10, "T2", 0xF000D000, f.thumb_branch24, "pc", (-4, 0, 4), THM_TO_ARM, "an"),
    Type("THM_CALL of BLX", 10, "T2", 0xF000C000, f.thumb_branch24, "pc", (-4, 0, 4), THM_TO_ARM, "at"),
    Type("THM_JUMP24", 30, "T2", 0xF0009000, f.thumb_branch24, "pc", THM_A, THM_FAR, "nt"),
    Type("THM_JUMP19", 51, "T2", 0xF0408000, f.thumb_branch19, "pc", COND_A, COND_FAR, "nt"),
    Type("THM_JUMP11", 102, "T1", 0xE000, f.thumb_branch11, "pc", (-4, 0, 2, 0x3FE), (0x7FE, -0x800, 0, -4), "nt"),
    Type("THM_JUMP8", 103, "T1", 0xD100, f.thumb_branch8, "pc", (-4, 0, 2, 0x7E), (0xFE, -0x100, 0, -4), "nt"),
    Type("THM_JUMP6", 52, "T1", 0xB100, f.thumb_cbz, "pc", (-4, 0, 2), (0, 2, 0x3E, 0x40, 0x7E), "nt"),

    Type("THM_ABS5", 7, "T1", 0x6808, f.thumb_abs5, "abs", (0, 4, 0x7C), (0, 0x7C, 0x24), "x"),
    Type("THM_PC8", 11, "T1", 0x4800, f.thumb_pc8, "pc4", (-4, 0, 4), (0, 0x3FC, 0x24), "d"),
    Type("THM_PC12", 54, "T2", 0xF85F3000, f.ldr, "pc4", (-4, 0, 8, 4095, -4095), OFF12, "d"),
    Type("THM_ALU_PREL_11_0", 53, "T2", 0xF20F0000, f.thumb_adr, "pc4", (-4, 0, 8, 4095, -4095), OFF12, "dt"),
    Type("ABS12", 6, "A", 0xE5910000, f.ldr, "abs", OFF12, OFF12, "x"),
    Type("LDR_SBREL_11_0_NC", 35, "A", 0xE5910000, f.ldr, "sb", SMALL_A, (0xFFF, 0x123, 0), "d"),
    Type("ALU_SBREL_19_12_NC", 36, "A", 0xE2811000, f.alu, "sb", SMALL_A, (0xFF000, 0x34567), "d"),
    Type("ALU_SBREL_27_20_CK", 37, "A", 0xE2811000, f.alu, "sb", SMALL_A, (0xFF00000, 0x1234567), "d"),
]
TYPES += [Type(thumb + name, number + 4 * bool(thumb), form, bits, field, formula, HALF_A, WORD, "dat")
          for thumb, form, field, low, high in (("", "A", f.movw, 0xE3001000, 0xE3401000),
                                                ("THM_", "T2", f.thumb_movw, 0xF2400100, 0xF2C00100))
          for name, number, bits, formula in (("MOVW_ABS_NC", 43, low, "abs"), ("MOVT_ABS", 44, high, "abs"),
                                              ("MOVW_PREL_NC", 45, low, "pc"), ("MOVT_PREL", 46, high, "pc"))]
TYPES += [Type(thumb + name, number + 3 * bool(thumb), form, bits, field, "sb", HALF_A, results, "dat")
          for thumb, form, field, low, high in (("", "A", f.movw, 0xE3001000, 0xE3401000),
                                                ("THM_", "T2", f.thumb_movw, 0xF2400100, 0xF2C00100))
          for name, number, bits, results in (("MOVW_BREL_NC", 84, low, WORD), ("MOVT_BREL", 85, high, WORD),
                                              ("MOVW_BREL", 86, low, (0x1234, 0xFFF0)))]
# The groups: (number of G0, G1, G2) relative to the place and to the static base.
TYPES += [Type(f"{stem}_{'PC' if formula == 'pc' else 'SB'}_G{g}", number, "A", bits, field, formula, SMALL_A, results[g], "d")
          for stem, bits, field, numbers, results in (
              ("LDR", 0xE5910000, f.ldr, ((4, 62, 63), (75, 76, 77)), (OFF12, GROUP1, GROUP2 + (-0x12345,))),
              ("LDRS", 0xE1D100B0, f.ldrs, ((64, 65, 66), (78, 79, 80)), (OFF8, (0x1234, -0x1234, 0xFF12, 5), GROUP2)),
              ("LDC", 0xED910A00, f.ldc, ((67, 68, 69), (81, 82, 83)),
               (OFF10, (0x1234, -0x1234, 0xFF10, 8), (0x1234564, -0x1234564, 0x7F8120, 0))))
          for formula, three in zip(("pc", "sb"), numbers) for g, number in enumerate(three)]
TYPES += [Type(f"ALU_{'PC' if formula == 'pc' else 'SB'}_{name}", first + step, "A", 0xE2811000, f.alu, formula, SMALL_A,
               results, targets)
          for formula, first in (("pc", 57), ("sb", 70))
          for step, (name, results, targets) in enumerate((
              ("G0_NC", ROTATED, "dt"), ("G0", (0xFF0, -0xFF0, 0), "d"), ("G1_NC", ROTATED, "dt"),
              ("G1", (0x1234, -0x1234, 0xFF12, 6), "dt"), ("G2", (0x123456, -0x123456, 0x7F8120, 0), "dt")))]

# What calls are like where the two halves of a Thumb BL have 11 bits each.
SHORT_CALLS = [t for t in TYPES if t.name in ("ABS32", "CALL", "JUMP24")]
SHORT_CALLS += [Type("THM_CALL", 10, "T2", 0xF000F800, f.thumb_short_call, "pc", (-4, 0, 2), (0x3FFFFA, -0x3FFFF0, 6), "t"),
                Type("THM_CALL", 10, "T2", 0xF000F800, f.thumb_short_call, "pc", (-4, 0, 4), (0x3FFFF8, -0x3FFFF0, 8), "a")]

Case = namedtuple("Case", "type place addend target symbol result")

# What differs from the peer and is meant to: for a type, or a type and a target, and perhaps only for some addends, how the
# field is worked out here, and why.
THUMB_BIT = 1


def stored(case, result=None):
    """The field holds the relocated value itself; with the Thumb bit for a function of Thumb code where the type has it."""
    value = case.result if result is None else result
    if case.target == "t" and case.type.number in (9, 39, 84, 86, 87, 89):
        value |= THUMB_BIT
    if case.type.name.endswith("MOVT_BREL"):
        value >>= 16
    return case.type.field(case.type.bits, value)


def blx(case):
    return f.branch(0xFA000000, case.result)


def thumb_blx(case):
    return f.thumb_branch24(0xF000C000, case.result + (case.result & 2))


def chunk_without_thumb_bit(case):
    rest, number = abs(case.result), 1 if "G1" in case.type.name else 0
    for _ in range(number + 1):
        shift = max(0, (rest.bit_length() - 7) // 2 * 2) if rest > 0xFF else 0
        chunk = rest & 0xFF << shift
        rest -= chunk
    return f.alu(case.type.bits, -chunk if case.result < 0 else chunk)


GNU_LACKS = "GNU ld and lld refuse the type"
INTENDED = {
    "SBREL32": (stored, "GNU ld refuses the type, lld has no static base"),
    "SBREL31": (stored, GNU_LACKS),
    "PLT32_ABS": (stored, GNU_LACKS),
    "THM_ABS5": (stored, GNU_LACKS),
    "LDR_SBREL_11_0_NC": (lambda c: stored(c, c.result & 0xFFF), GNU_LACKS),
    "ALU_SBREL_19_12_NC": (lambda c: stored(c, c.result & 0xFF000), GNU_LACKS),
    "ALU_SBREL_27_20_CK": (lambda c: stored(c, c.result & ~0xFFFFF), GNU_LACKS),
    "MOVW_BREL_NC": (stored, "GNU ld takes the static base as 0 for these six types, though not for the groups"),
    "MOVT_BREL": (stored, "as MOVW_BREL_NC"),
    "MOVW_BREL": (stored, "as MOVW_BREL_NC"),
    "THM_MOVW_BREL_NC": (stored, "as MOVW_BREL_NC"),
    "THM_MOVT_BREL": (stored, "as MOVW_BREL_NC"),
    "THM_MOVW_BREL": (stored, "as MOVW_BREL_NC"),
    "ABS16": (stored, "GNU ld takes the addend in the field as unsigned and finds negative ones too large"),
    "ABS8": (stored, "as ABS16"),
    "ABS12": (stored, "GNU ld takes no notice of the sign of the addend"),
    "THM_PC12": (stored, "GNU ld finds an offset below 0 too large"),
    "THM_JUMP6": (stored, "GNU ld takes the addend in the field as unsigned, which makes -4 a 124"),
    ("PC24", "t"): (blx, "GNU ld calls through a veneer; a BL of this type may become a BLX"),
    ("PLT32", "t"): (blx, "as PC24"),
    ("THM_CALL", "n"): (thumb_blx, "GNU ld changes the mode for functions only; a label is what its mapping symbol says"),
    ("ALU_PC_G0_NC", "t"): (chunk_without_thumb_bit, "GNU ld sets the Thumb bit in each piece of an address, here the last has it"),
    ("ALU_PC_G1_NC", "t"): (chunk_without_thumb_bit, "as ALU_PC_G0_NC"),
    ("ALU_SB_G0_NC", "t"): (chunk_without_thumb_bit, "as ALU_PC_G0_NC"),
    ("ALU_SB_G1_NC", "t"): (chunk_without_thumb_bit, "as ALU_PC_G0_NC"),
}
# Types whose fields are reported although the peer takes them: the bits of CBZ count as signed.
REPORTED = {"THM_JUMP6": lambda case: case.result >= 0x40}

REACH = {f.branch: (-0x2000000 + 8, 0x1FFFFFC + 8), f.thumb_branch24: (-0x1000000 + 4, 0xFFFFFE + 2),
         f.thumb_branch19: (-0x100000 + 4, 0xFFFFE + 2)}


def is_sound(t, target, symbol, place):
    """GNU ld decides on veneers by the distance of the symbol, whatever the addend; a symbol is a number of 32 bits."""
    low, high = REACH.get(t.field, (-1 << 40, 1 << 40))
    start = 0 if target == "x" else LOW
    return low <= symbol - SRC - place <= high and start <= symbol < 1 << 32 and not (target in "at" and symbol & 1)


def make_cases(types, wanted=lambda case: True):
    cases = []
    for t in types:
        for target in t.targets:
            for addend in t.addends:
                for result in t.results:
                    for half in (0, 2) if t.form in ("T1", "T2") else (0,):
                        place = SLOT * len(cases) + half
                        base = {"abs": 0, "pc": SRC + place, "pc4": SRC + place & ~3, "sb": LOW}[t.formula]
                        case = Case(t, place, addend, target, result + base - addend, result)
                        if is_sound(t, target, case.symbol, place) and wanted(case):
                            cases.append(case)
    return cases


def stored_bytes(form, end, value):
    if form == "T2":
        return struct.pack(end + "HH", value >> 16, value & 0xFFFF)
    return struct.pack(end + {4: "I", 2: "H", 1: "B"}[SIZES[form]], value & 0xFFFFFFFF)


def make_object(cases, big, arch, rela):
    o = w.ElfObject(big, arch)
    low = o.section(".low", w.ALLOC | w.EXEC, o.pack("I", 0xE1A0F00E))
    o.symbol("$a", low, 0, bind=w.LOCAL)
    o.symbol("_start", low, 0, w.FUNC)
    data = bytearray(SLOT * len(cases))
    src = o.section(".src", w.ALLOC | w.EXEC, data)
    mode = None
    for i, c in enumerate(cases):
        t, name = c.type, f"s{i}"
        if c.target == "x":
            o.symbol(name, w.ABS, c.symbol)
        else:
            kind = {"d": w.OBJECT, "a": w.FUNC, "t": w.FUNC}.get(c.target, w.NOTYPE)
            o.symbol(name, low, c.symbol - LOW | (c.target == "t"), kind)
        if mode != t.form[0]:
            mode = t.form[0]
            o.symbol({"A": "$a", "T": "$t", "D": "$d"}[mode], src, SLOT * i, bind=w.LOCAL)
        code = t.field(t.bits, 0 if rela else c.addend)
        data[c.place:c.place + SIZES[t.form]] = stored_bytes(t.form, o.end, code)
        o.reloc(src, c.place, t.number, name, c.addend if rela else None)
    o.set_data(src, data)
    return o.bytes()


SECTIONS = f"SECTIONS {{ .low {LOW:#x} : {{ *(.low) }}  .src {SRC:#x} : {{ *(.src) }} }}\n"
LCF = f"--entry_point=_start\n--retain=*(.src)\nMEMORY {{ M : origin = 0, length = 0x20000000 }}\n{SECTIONS}"
LDS = f"ENTRY(_start)\n{SECTIONS}"


def tool(*command):
    done = subprocess.run([str(c) for c in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
    return done.returncode, done.stdout.decode("latin-1")


def expected(case, end, peer, swapped):
    """The bytes of the field, as they lie in the section; swapped: code is little-endian in a big-endian file."""
    rule = INTENDED.get((case.type.name, case.target)) or INTENDED.get(case.type.name)
    if not rule:
        return peer[case.place:case.place + SIZES[case.type.form]]
    end = "<" if swapped and case.type.form[0] in "AT" else end
    return stored_bytes(case.type.form, end, rule[0](case))


def check(opts, name, types, big=False, arch=w.V7, peer_options=(), options=()):
    """Links all cases with the peer and, as REL and as RELA, with qvlink. Returns the number of faults."""
    work, cases, faults = opts.work, make_cases(types), 0
    for rela in (False, True):
        (work / f"{name}{'-rela' * rela}.o").write_bytes(make_object(cases, big, arch, rela))
    peer_file = work / f"{name}-peer.elf"
    status, text = tool("arm-none-eabi-ld", *(["-EB"] if big else []), *peer_options, "--noinhibit-exec", "--target2=abs",
                        "-T", work / "peer.ld", work / f"{name}.o", "-o", peer_file)
    if status:
        print(f"{name}: GNU ld fails:\n{text}")
        return 1
    peer, end = Elf(peer_file).section(".src").data, ">" if big else "<"
    for rela in (False, True):
        stem = f"{name}{'-rela' * rela}"
        status, text = tool(opts.qvlink, work / f"{stem}.o", work / "link.cmd", *options, "--trampolines=off",
                            "-o", work / f"{stem}.elf")
        reports = sum(REPORTED.get(c.type.name, lambda _: False)(c) for c in cases)
        flat = " ".join(text.split())
        found = flat.count("overflowed; the")
        others = flat.count("warning: ") - flat.count("warning: relocation ") - flat.count("cannot be loaded and run")
        if status or found != reports or others:
            faults += 1
            print(f"{stem}: status {status}, {reports} reports expected:\n{text[:3000]}")
        if status:
            continue
        ours = Elf(work / f"{stem}.elf").section(".src").data
        for c in cases:
            want = expected(c, end, peer, "--be8" in peer_options)
            have = ours[c.place:c.place + len(want)]
            if have != want:
                faults += 1
                print(f"{stem}: {c.type.name} to {c.target} {c.symbol:#x} at {SRC + c.place:#x} addend {c.addend:#x} "
                      f"result {c.result:#x}: {have.hex()}, expected {want.hex()}")
    print(f"{name}: {len(cases)} cases twice, {faults} faults")
    return faults


# What lld takes too, so that these fields have been looked at by two.
LLD_TYPES = {2, 3, 38, 42, *range(43, 51), 11, 53, 54, 4, 62, 63, 64, 65, 66, 57, 58, 59, 60, 61}


def lld_differs(case):
    """Its Thumb bit is added before an odd addend, it leaves the sign of an offset as it was in the field, and it shares the
    intended differences but that of THM_PC12."""
    t = case.type
    if t.name == "THM_PC12":
        return (case.result < 0) != (case.addend < 0)
    return t.number in (53, 57, 58, 59, 60, 61) and case.target == "t" or (t.name, case.target) in INTENDED


def check_with_lld(opts):
    work = opts.work
    cases = make_cases([t for t in TYPES if t.number in LLD_TYPES], lambda case: not lld_differs(case))
    (work / "lld.o").write_bytes(make_object(cases, False, w.V7, False))
    status, text = tool("ld.lld", "--target2=abs", "-T", work / "peer.ld", work / "lld.o", "-o", work / "lld-peer.elf")
    if status:
        print(f"lld fails:\n{text[:3000]}")
        return 1
    status, text = tool(opts.qvlink, work / "lld.o", work / "link.cmd", "--trampolines=off", "-o", work / "lld.elf")
    ours, theirs = (Elf(work / n).section(".src").data for n in ("lld.elf", "lld-peer.elf"))
    wrong = [c for c in cases if ours[c.place & -SLOT:][:SLOT] != theirs[c.place & -SLOT:][:SLOT]]
    for c in wrong:
        print(f"lld: {c.type.name} to {c.target} addend {c.addend:#x} result {c.result:#x}: "
              f"{ours[c.place & -SLOT:][:SLOT].hex()}, expected {theirs[c.place & -SLOT:][:SLOT].hex()}")
    print(f"lld: {len(cases)} cases, {len(wrong)} faults")
    return len(wrong) + bool(status or text)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    opts = parser.parse_args()
    opts.work.mkdir(parents=True, exist_ok=True)
    (opts.work / "link.cmd").write_text(LCF)
    (opts.work / "peer.ld").write_text(LDS)
    faults = check(opts, "little", TYPES)
    faults += check(opts, "be32", TYPES, True, options=["--be32"])
    faults += check(opts, "be8", TYPES, True, peer_options=["--be8"])
    faults += check(opts, "before-thumb2", SHORT_CALLS, arch=w.V5TE, peer_options=["--use-blx"])
    faults += check_with_lld(opts)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
