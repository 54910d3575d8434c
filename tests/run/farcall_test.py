#!/usr/bin/env python3
"""Far calls made at random: every branch of the output leads to its callee, directly or through one stub.

A problem is a set of functions in ARM and Thumb state that call each other by all kinds of branches, and a command file
that spreads them over ranges near and far, in groups, unions, at the top of ranges and over holes. Problem number i
depends on --seed and i only. Checked are all calls of the output, decoded here: a direct one ends at its callee in the
callee's state; another one ends at a stub of the caller's output section that, executed, ends there, and is only taken
where the instruction does not reach or can't change the state. A stub without callers stands in front of another
output section, whose place was not known.

    farcall_test.py --qvlink build/debug/qvlink --work /tmp/far --count 2000
    farcall_test.py --qvlink build/debug/qvlink --work /tmp/far --only 17        one again, told at length
"""
import argparse
import random
import re
import shutil
import subprocess
import sys
from collections import Counter
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
from arm_branch import ARM, THUMB, Memory, Stub, branch  # noqa: E402
from elf import Elf  # noqa: E402

MB = 1 << 20
LARGE = -1  # the number of the problem that is larger than all others
# What a processor runs, and how far its branches reach: name, -mcpu, states, Thumb branches of 32 bits, reach of BL.
CPUS = [
    ("m3", "cortex-m3", [THUMB], ["bl", "b.w", "beq.w"], 16 * MB, True),
    ("m0", "cortex-m0", [THUMB], ["bl"], 16 * MB, True),
    ("a15", "cortex-a15", [ARM, THUMB], ["bl", "b.w", "beq.w"], 16 * MB, True),
    ("v5", "arm926ej-s", [ARM, THUMB], ["bl"], 4 * MB, False),
    ("v4", "arm7tdmi", [ARM, THUMB], ["bl"], 4 * MB, False),
]
ARM_BRANCHES = ["bl", "b", "bleq", "bne"]


class Problem:
    def __init__(self, rng):
        self.rng = rng
        self.cpu, self.mcpu, self.states, self.thumb_branches, self.thumb_reach, self.wide = rng.choice(CPUS)
        count = rng.randrange(4, 26)
        self.states = [rng.choice(self.states) for _ in range(count)]
        self.calls = [[self.make_call(i, count) for _ in range(rng.choice([0, 1, 2, 2, 5, 12]))] for i in range(count)]
        self.short = rng.choice([0, 0, 0, 1000, 6000, 100000])
        self.sizes = [rng.choice(self.sizes_of(i)) for i in range(count)]
        self.groups = [rng.randrange(rng.choice([1, 2, 4])) for _ in range(count)]
        self.options = [f"--debug:xcall={self.short}"] if self.short else []
        if rng.random() < 0.3 and self.cpu != "v4" and self.cpu != "v5" and self.cpu != "m0":
            self.options.append("--embedded_constants=off")
        if rng.random() < 0.2:
            self.options.append(f"--trampoline_min_spacing={rng.choice([0, 64, 0x100000])}")
        if rng.random() < 0.2:
            self.options.append("--disable_early_consolidation")
        if rng.random() < 0.15:
            self.options.append("--minimize_trampolines")

    def sizes_of(self, i):
        """Sizes of a function that leave room for stubs within reach of all its calls."""
        reach = self.short or (MB if any(kind == "beq.w" for kind, _ in self.calls[i]) else 4 * MB)
        return [n for n in (0, 0, 6, 40, 200, 1000, 0x4000, 0x80000, 0x100000, 0x380000) if n * 2 <= reach]

    def make_call(self, caller, count):
        kinds = ARM_BRANCHES if self.states[caller] == ARM else self.thumb_branches
        return self.rng.choice(kinds), self.rng.randrange(count)

    def assembly(self):
        out = ["    .syntax unified", f"    .cpu {self.mcpu}", "    .eabi_attribute 25, 1", "    .global _start",
               "    .set _start, f0"]
        for i, state in enumerate(self.states):
            binding = [] if i % 3 == 1 else [f"    .global f{i}"]
            out += [f"    .section .g{self.groups[i]}.f{i}, \"ax\"", f"    .{state}", "    .balign 4", *binding,
                    f"    .type f{i}, %function", f"f{i}:"]
            out += [f"    {kind} f{callee}" for kind, callee in self.calls[i]]
            out += ["    bx lr", *([f"    .space {self.sizes[i]}"] if self.sizes[i] else [])]
        return "\n".join(out) + "\n"

    def command_file(self):
        rng, ranges = self.rng, []
        at = rng.choice([0, 0x8000, 0x20000000])
        for i in range(rng.randrange(1, 4)):
            length = rng.choice([64, 100, 40]) * MB
            ranges.append((f"R{i}", at, length))
            at += length + rng.choice([0, 0, 3 * MB, 20 * MB, 0x30000000])
        text = "--entry_point=_start\n" + "".join(f"--retain=*(.g{g}.*)\n" for g in sorted(set(self.groups)))
        text += "MEMORY {\n" + "".join(f"  {n} (RWX) : origin = {o:#x}, length = {s:#x}\n" for n, o, s in ranges) + "}\n"
        text += "SECTIONS {\n"
        for group in sorted(set(self.groups)):
            where = rng.choice(ranges)[0]
            load = rng.choice(ranges)[0]
            kind = rng.choice(["plain", "plain", "plain", "high", "split", "load", "ordered", "group", "union", "address"])
            spec = f"*(.g{group}.*)"
            if kind == "ordered":
                first = rng.choice([i for i, g in enumerate(self.groups) if g == group])
                spec = f"*(.g{group}.f{first}) . += 0x{rng.choice([4, 0x500, 0x2000]):x}; {spec}"
            if kind == "address" and group == 0:
                text += f"  .o{group} : {{ {spec} }} > {ranges[0][1] + rng.choice([0, 0x1000, 30 * MB]):#x}\n"
            elif kind in ("group", "union"):
                inner = f".o{group} : {{ {spec} }} .x{group} : {{ *(.none) . += 16; }}"
                text += f"  {kind.upper()} : {{ {inner} }} > {where}\n"
            elif kind == "load":
                text += f"  .o{group} : {{ {spec} }} LOAD > {load}, RUN > {where}\n"
            elif kind == "split":
                text += f"  .o{group} : {{ {spec} }} >> {' | '.join(n for n, _, _ in ranges)}\n"
            else:
                text += f"  .o{group} : {{ {spec} }} > {where}{' (HIGH)' if kind == 'high' else ''}\n"
        return text + "}\n"


class LargeProblem(Problem):
    """One output section of more than any call reaches: stubs are reserved for all that is not placed yet, stand in the
    way, and most of them vanish again."""

    def __init__(self, rng):
        count = 1500
        self.rng = rng
        self.cpu, self.mcpu, _, self.thumb_branches, self.thumb_reach, self.wide = CPUS[0]
        self.states = [THUMB] * count
        self.calls = [[(rng.choice(["bl", "b.w"]), rng.randrange(count)) for _ in range(3)] for _ in range(count)]
        self.short, self.options = 0, []
        self.sizes = [rng.randrange(8000, 28000) & ~1 for _ in range(count)]
        self.groups = [0] * count

    def command_file(self):
        return ("--entry_point=_start --retain=*(.g0.*)\nMEMORY { R (RWX) : origin = 0, length = 0x4000000 }\n"
                "SECTIONS { .o0 : { *(.g0.*) } > R }\n")


def base_name(section):
    """The output section of the command file that a piece of a split one comes from."""
    return re.match(r"\.[a-z]+\d+", section).group()


class Checker:
    def __init__(self, problem, elf):
        self.problem, self.memory = problem, Memory(elf)
        by_name = {s.name: s for s in elf.symbols}
        self.functions = [by_name[f"f{i}"] for i in range(len(problem.states))]
        self.stubs = {}
        for s in elf.symbols:
            if s.name.startswith(("$Tramp$", "$Ven$")):
                self.stubs[s.value & ~1] = s
        self.used = Counter()

    def reach(self, kind, state, changes):
        """(backward, forward) of an instruction from its own address."""
        if state == ARM:
            return 32 * MB - 8, 32 * MB + 4
        size = {"bl": self.problem.thumb_reach, "b.w": 16 * MB, "beq.w": MB}[kind]
        return size - 4, size + 2

    def may_change_state(self, kind):
        return kind == "bl" and self.problem.cpu != "v4"

    def check_call(self, caller, number, kind, callee):
        p = self.problem
        state, wanted = p.states[caller], p.states[callee]
        at, to = (self.functions[caller].value & ~1) + 4 * number, self.functions[callee].value & ~1
        what = f"call {number} of f{caller} ({kind} at {at:#x}) to f{callee} at {to:#x}"
        target, entered, _ = branch(self.memory, at, state, p.wide or kind != "bl")
        if (target, entered) == (to, wanted):
            self.used["direct"] += 1
            return None
        stub = self.stubs.get(target)
        if stub is None or not stub.name.endswith(f"$$f{callee}"):
            return f"{what} goes to {target:#x}, {entered}"
        self.used[stub.name.split("$$")[0]] += 1
        if (THUMB if stub.value & 1 else ARM) != entered:
            return f"{what} enters {stub.name} in the wrong state"
        if base_name(stub.section) != base_name(self.functions[caller].section):
            return f"{what} goes to a stub in {stub.section}"
        end = Stub(self.memory, target, entered, stub.size).run()
        if end != (to, wanted):
            return f"{what} ends, by {stub.name}, at {end[0]:#x}, {end[1]}"
        back, ahead = self.reach(kind, state, state != wanted)
        within = at - back <= to <= at + ahead - 4  # the last word is a matter of rounding
        if within and not p.short and (state == wanted or self.may_change_state(kind)):
            return f"{what} goes by {stub.name} for nothing"
        return self.note_caller(stub)

    def note_caller(self, stub):
        self.used[stub.value] += 1

    def faults(self):
        found = []
        for caller, calls in enumerate(self.problem.calls):
            for number, (kind, callee) in enumerate(calls):
                try:
                    fault = self.check_call(caller, number, kind, callee)
                except ValueError as e:
                    fault = f"call {number} of f{caller}: {e}"
                found += [fault] if fault else []
        for stub in self.stubs.values():
            callee = self.functions[int(stub.name.split("$$f")[1])]
            if not self.used[stub.value] and callee.section == stub.section:
                found.append(f"{stub.name} at {stub.value:#x} has no callers")
        return found


def run_problem(number, opts, totals):
    """What is wrong with problem `number`: a list of texts."""
    work = opts.work / str(number)
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    kind = LargeProblem if number == LARGE else Problem
    problem = kind(random.Random(f"{opts.seed}/{number}"))
    (work / "a.s").write_text(problem.assembly())
    (work / "link.cmd").write_text(problem.command_file())
    subprocess.run(["arm-none-eabi-as", "a.s", "-o", "a.o"], cwd=work, check=True)
    command = [str(opts.qvlink), "a.o", "link.cmd", "-o", "out.elf", "--map_file=out.map", *problem.options]
    done = subprocess.run(command, cwd=work, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
    text = done.stdout.decode("latin-1")
    if opts.only is not None:
        print(" ".join(command), text, sep="\n")
    if done.returncode == 1 and re.search("program will not fit|cannot reserve trampoline", text):
        totals["no room"] += 1
        faults = []
    elif done.returncode:
        faults = [f"status {done.returncode}: {text}"]
    else:
        checker = Checker(problem, Elf(work / "out.elf"))
        faults = checker.faults()
        for key, n in checker.used.items():
            totals[key if isinstance(key, str) else "calls by a stub"] += n
    if not faults and opts.only is None:
        shutil.rmtree(work)
    return faults


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--first", type=int, default=0)
    parser.add_argument("--count", type=int, default=80)
    parser.add_argument("--only", type=int)
    opts = parser.parse_args()
    opts.qvlink = opts.qvlink.resolve()
    numbers = [opts.only] if opts.only is not None else [LARGE, *range(opts.first, opts.first + opts.count)]
    totals, bad = Counter(), 0
    for number in numbers:
        faults = run_problem(number, opts, totals)
        bad += bool(faults)
        for fault in faults[:5]:
            print(f"problem {number}: {fault}")
    print(f"{bad} of {len(numbers)} problems wrong;", ", ".join(f"{n} {key}" for key, n in sorted(totals.items())))
    if opts.only is None and totals["no room"] * 20 > len(numbers):
        print("too many problems had no solution: the test says little")
        bad += 1
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
