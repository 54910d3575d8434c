#!/usr/bin/env python3
"""Every code sequence of trampolines and veneers, disassembled out of a linked program, is what its row says.

Sequences, rows and the choice among them are read from the linker's table; each row of the choice is linked for on a
processor for which it is meant, with the callee near or far, and the sequence's size is that of its rows.
"""
import argparse
import re
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
TOP = HERE.parents[1]
sys.path.insert(0, str(HERE.parent / "support"))
from arm_branch import ARM, THUMB, Memory, Stub  # noqa: E402
from elf import Elf  # noqa: E402

TABLE = TOP / "src/ELFLNK/target/arm/stub_code.def"
SIZES = {"ARM": 4, "THUMB": 2, "THUMB32": 4, "WORD": 4}
# The processors that a link is made for, by whether they have Thumb-2.
CPUS = {"YES": ["cortex-a15", "cortex-m3"], "NO": ["arm926ej-s", "arm7tdmi", "cortex-m0"]}
THUMB_ONLY = {"cortex-m3", "cortex-m0"}


def rows(macro):
    """The arguments of each row of the macro, in order."""
    found = []
    for line in TABLE.read_text().splitlines():
        if line.startswith(macro + "("):
            inside = line[len(macro) + 1:line.rindex(")")]
            found.append([a.strip().strip('"') for a in re.findall(r'\s*("[^"]*"|[^",]+)', inside)])
    return found


def call_for(kind, state, cpu):
    """The caller's state and instruction that lead to a stub of this kind."""
    if kind == "FARCALL":
        return state, "bl"
    if state == "THUMB":
        return "ARM", "b"
    return "THUMB", "b.w" if cpu in CPUS["YES"] else "bl"


def source(kind, state, cpu):
    caller, instruction = call_for(kind, state, cpu)
    return "\n".join([
        "    .syntax unified", f"    .cpu {cpu}", "    .eabi_attribute 25, 1",
        '    .section .near, "ax"', f"    .{caller.lower()}", "    .balign 4", "    .global _start", "    .type _start, %function",
        "_start:", f"    {instruction} callee", "    .balign 4",
        '    .section .far, "ax"', f"    .{state.lower()}", "    .balign 4", "    .global callee",
        "    .type callee, %function", "callee:", "    bx lr", "    .balign 4", ""])


def command_file(near):
    """The stub stands behind its caller; the callee within reach of a branch from there, or not. With the reach of all
    calls cut down, the caller itself is out of reach either way."""
    far = "0x8300" if near else "0x40000000"
    return ("--entry_point=_start\nMEMORY { A (RX) : origin = 0x8000, length = 0x200\n"
            f"B (RX) : origin = {far}, length = 0x100 }}\n"
            "SECTIONS { .near : { *(.near) } > A  .far : { *(.far) } > B }\n")


def disassembly(elf, start, end):
    text = subprocess.run(["arm-none-eabi-objdump", "-d", "-z", f"--start-address={start}", f"--stop-address={end}", elf],
                          stdout=subprocess.PIPE, check=True).stdout.decode()
    lines = re.findall(r"^ *[0-9a-f]+:\t[0-9a-f ]+\t(.*)$", text, re.M)
    return [re.sub(r"\s+", " ", re.sub(r"\s*[@;].*", "", line)).strip() for line in lines]


def expected(text, callee, thumb):
    literal = callee | thumb
    text = text.replace("LO16", str(literal & 0xFFFF)).replace("HI16", str(literal >> 16))
    if text == ".word CALLEE":
        return f".word 0x{literal:08x}"
    return text.replace("CALLEE", f"{callee:x} <callee>")


class Test:
    def __init__(self, opts):
        self.opts = opts
        self.states = {name: (state, long_form == "true") for name, state, long_form in rows("STUB_SEQUENCE")}
        self.units = rows("STUB_UNIT")
        self.seen = set()

    def link(self, kind, state, cpu, near, embedded):
        work = self.opts.work
        (work / "a.s").write_text(source(kind, state, cpu))
        (work / "link.cmd").write_text(command_file(near))
        subprocess.run(["arm-none-eabi-as", "a.s", "-o", "a.o"], cwd=work, check=True)
        options = [] if embedded else ["--embedded_constants=off"]
        if kind == "FARCALL":
            options.append("--debug:xtramps")
        command = [str(self.opts.qvlink), "a.o", "link.cmd", "-o", "out.elf", *options]
        done = subprocess.run(command, cwd=work, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if done.returncode or done.stdout:
            raise ValueError(f"{' '.join(command)}: status {done.returncode}, {done.stdout.decode()}")
        return Elf(work / "out.elf")

    def check(self, kind, state, thumb2, near, embedded, sequence, cpu):
        elf = self.link(kind, state, cpu, near == "YES", embedded == "YES")
        stub = next((s for s in elf.symbols if s.name.startswith(("$Tramp$", "$Ven$"))), None)
        if stub is None:
            raise ValueError("there is no stub")
        units = [u for u in self.units if u[0] == sequence]
        size = sum(SIZES[u[1]] for u in units)
        own_state, long_form = self.states[sequence]
        letters = {"ARM": "A", "THUMB": "T"}
        first = letters[state] if kind == "FARCALL" else letters["ARM" if state == "THUMB" else "THUMB"]
        name = (f"${'Tramp' if kind == 'FARCALL' else 'Ven'}${first}{letters[state]}{'$L$PI' if long_form else '$S'}$$callee")
        callee = elf.symbol("callee").value & ~1
        entry = stub.value & ~1
        got = disassembly(self.opts.work / "out.elf", entry, entry + size)
        want = [expected(u[4], callee, state == "THUMB") for u in units]
        facts = [("name", stub.name, name), ("size", stub.size, size), ("code", got, want),
                 ("state", stub.value & 1, int(own_state == "THUMB")),
                 ("end", Stub(Memory(elf), entry, THUMB if stub.value & 1 else ARM, size).run(),
                  (callee, THUMB if state == "THUMB" else ARM))]
        for what, is_, should in facts:
            if is_ != should:
                raise ValueError(f"{what} is {is_}, not {should}")
        self.seen.add(sequence)

    def run(self):
        bad = count = 0
        for kind, state, thumb2, near, embedded, sequence in rows("STUB_CHOICE"):
            for has_thumb2 in ("YES", "NO") if thumb2 == "ANY" else (thumb2,):
                for is_near in ("YES", "NO") if near == "ANY" else (near,):
                    for may_embed in ("YES", "NO") if embedded == "ANY" else (embedded,):
                        for cpu in CPUS[has_thumb2]:
                            if cpu in THUMB_ONLY and (kind == "VENEER" or state == "ARM"):
                                continue
                            if kind == "VENEER" and state == "ARM" and cpu == "arm926ej-s":
                                continue  # its BL becomes BLX, and it has no other branch that reaches a veneer
                            count += 1
                            try:
                                self.check(kind, state, has_thumb2, is_near, may_embed, sequence, cpu)
                            except ValueError as e:
                                bad += 1
                                print(f"{sequence} ({kind} to {state}, {cpu}, near {is_near}, embedded {may_embed}): {e}")
        for name in self.states.keys() - self.seen:
            bad += 1
            print(f"{name} was never seen as its rows say")
        print(f"{count} stubs of {len(self.states)} sequences, {bad} faults")
        return 1 if bad else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    opts = parser.parse_args()
    opts.qvlink = opts.qvlink.resolve()
    opts.work.mkdir(parents=True, exist_ok=True)
    return Test(opts).run()


if __name__ == "__main__":
    sys.exit(main())
