#!/usr/bin/env python3
"""Random objects that define the same few names in every way, linked in random order: which definition stands for a
name, and which ones are reported, is what a plain walk over the files says."""
import argparse
import random
import re
import shutil
import subprocess
import sys
from collections import Counter, namedtuple
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from elf import Elf  # noqa: E402
from linktest import PROMISE, TOOLS  # noqa: E402

NAMES = ["alpha", "beta", "gamma", "_Z5deltai"]
SHOWN = {"_Z5deltai": "delta(int)"}
OBJECTS = 24
COMMAND_FILE = """--entry_point=_start --diag_wrap=off --diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x10000 }
SECTIONS { .text : { *(.text*) } > M   .data : > M   .bss : > M }
"""

# kind: data (in a section), comdat (in one of a group), absolute, common.
# number: the word it holds, its value, its size; only sizes come more than once.
Definition = namedtuple("Definition", "kind weak number")


def random_definitions(rng, numbers):
    found = {}
    for name in NAMES:
        kind = rng.choice(["data", "comdat", "absolute", "common", None, None])
        if kind == "common":
            found[name] = Definition(kind, False, rng.choice([4, 8, 12, 16]))
        elif kind:
            number = rng.choice([0x4000, next(numbers)]) if kind == "absolute" else next(numbers)
            found[name] = Definition(kind, rng.random() < 0.6, number)
    return found


def source(definitions):
    lines = []
    for name, d in definitions.items():
        if d.kind == "common":
            lines.append(f".comm {name}, {d.number}, 4")
            continue
        lines.append(f".{'weak' if d.weak else 'global'} {name}")
        flags = f'"awG", %progbits, {name}, comdat' if d.kind == "comdat" else '"aw"'
        lines.append(f"{name} = {d.number}" if d.kind == "absolute" else
                     f".section .data.{name}, {flags}\n{name}: .word {d.number}\n.size {name}, 4")
    return "\n".join(lines) + "\n" + PROMISE


def settle(held, new):
    """The definition that stays, and whether the two do not go together."""
    if held.weak or new.weak:
        return (new if held.weak and not new.weak else held), False
    if held.kind == new.kind == "common":
        return (new if new.number > held.number else held), False
    if {held.kind, new.kind} == {"data", "comdat"}:
        return (new if held.kind == "comdat" else held), False
    return held, not (held.kind == new.kind == "absolute" and held.number == new.number)


def expect(order, objects):
    """Winner by name, and the redefinitions to be reported."""
    winners, first_file, faults, groups = {}, {}, Counter(), set()
    for file in order:
        for name, new in objects[file].items():
            if new.kind == "comdat" and name in groups:
                continue  # of the groups of one name the first stays
            if new.kind == "comdat":
                groups.add(name)
            if name not in winners:
                winners[name], first_file[name] = new, file
                continue
            stays, fault = settle(winners[name], new)
            if fault:
                faults[(SHOWN.get(name, name), f"{first_file[name]}.o", f"{file}.o")] += 1
            if stays is not winners[name]:
                winners[name], first_file[name] = stays, file
    return winners, faults


def word_at(elf, address):
    section = next((s for s in elf.sections if s.flags & 2 and s.addr <= address < s.addr + s.size), None)
    return section and int.from_bytes(section.data[address - section.addr:][:4], "little")


def check(order, objects, done, work):
    winners, faults = expect(order, objects)
    err = done.stderr.decode()
    said = Counter(re.findall(r'error: symbol "(.*)" redefined: first defined in "(.*)"; redefined in "(.*)"', err))
    if said != faults or done.returncode != (1 if faults else 0):
        return f"expected {dict(faults)}, said {dict(said)}, status {done.returncode}"
    if faults:
        return None
    elf = Elf(work / "out.elf")
    for name, winner in winners.items():
        symbol = elf.symbol(name)
        found = symbol and (symbol.value if winner.kind == "absolute" else
                            symbol.size if winner.kind == "common" else word_at(elf, symbol.value))
        if found != winner.number or (symbol.section == "ABS") != (winner.kind == "absolute"):
            return f"{name}: {symbol}, {found} instead of {winner}"
    return None


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", type=Path, required=True)
    parser.add_argument("--work", type=Path, required=True)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=200)
    opts = parser.parse_args()
    rng, work, qvlink = random.Random(opts.seed), opts.work.resolve(), opts.qvlink.resolve()
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    numbers = iter(range(0x10001, 0x20000))
    objects = {f"f{n:02}": random_definitions(rng, numbers) for n in range(OBJECTS)}
    texts = {name: source(definitions) for name, definitions in objects.items()}
    texts["start"] = (".global _start\n.section .text._start, \"ax\"\n.thumb_func\n_start: bx lr\n.balign 4\n" +
                      "".join(f".weak {name}\n.word {name}\n" for name in NAMES) + PROMISE)
    for name, text in texts.items():
        (work / f"{name}.s").write_text(text)
        subprocess.run([TOOLS + "as", "-mcpu=cortex-m3", "-o", f"{name}.o", f"{name}.s"], cwd=work, check=True)
    (work / "link.cmd").write_text(COMMAND_FILE)
    good = 0
    for _ in range(opts.count):
        order = rng.sample(list(objects), rng.randint(1, 6))
        args = ["start.o", *(f"{file}.o" for file in order), "link.cmd", "-o", "out.elf"]
        (work / "out.elf").unlink(missing_ok=True)
        done = subprocess.run([qvlink, *args], cwd=work, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)
        if fault := check(order, objects, done, work):
            print(f"{fault}\n--- run again: cd {work} && {qvlink} {' '.join(args)}\n{done.stderr.decode()}")
            return 1
        good += done.returncode == 0
    print(f"{opts.count} links, {good} of them without a fault")
    return 0 if 0 < good < opts.count else 1


if __name__ == "__main__":
    sys.exit(main())
