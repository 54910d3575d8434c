#!/usr/bin/env python3
"""Which output section each input section joins: random specifications against the rules told plainly.

Objects and an archive with sections of many names and common blocks are linked with command files made at random. Every
section has a symbol of its own, so that the output says where it went; where it must go, and which specification is told to
have matched nothing, is what the model below says, which tries every specification in turn.

    --measure    links 20,000 sections against 300 specifications instead, and prints what matching costs
"""
import argparse
import random
import re
import resource
import subprocess
import sys
from collections import namedtuple
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "support"))
from elf import Elf  # noqa: E402

Section = namedtuple("Section", "symbol name file archive")  # file: object or member; a common block has the name of its kind
COMMON = ".bss:.common"
HEAD = "--unused_section_elimination=off\nMEMORY { ALL : origin = 0x1000, length = 0x10000000 }\n"

NAMES = [".text", ".text:a", ".text:a:b", ".text.hot", ".text.hot:x", ".text.cold", ".textual", ".data", ".data:a", ".data.x",
         ".const", ".con", ".bss", "plain", "plain:sub", ".t", ".text.hotter"]
OTHERS = [n for n in NAMES if n not in (".text", ".data", ".bss")]  # these three every assembled file has
PATTERNS = NAMES + ["*", ".*", ".text*", ".text.*", ".text:*", ".text.h*", ".t?xt", "*.hot", "*hot*", ".data*", ".c*n*",
                    "*:a", "?", "*?", ".??n", "plain*", ".bss*", ".bss:.common:c_1", ".bss:.common"]
OBJECTS, MEMBERS = ["a.o", "bb.o", "c_driver.o"], ["m1.o", "m2.o", "other.o"]
FILES = ["*"] * 6 + ["a.o", "bb.o", "a*.o", "*driver*", "?.o", "lib.a", "lib.a<m1.o>", "lib.a<m*.o>", "lib.a<m2.o, other.o>",
                     "l*<m?.o>", "*<other.o>"]


# ---- the model

def glob(pattern, text):
    rule = "".join(".*" if c == "*" else "." if c == "?" else re.escape(c) for c in pattern)
    return bool(pattern and text) and re.fullmatch(rule, text) is not None


def wild(pattern):
    return "*" in pattern or "?" in pattern


def covers(wide, narrow):
    """Every text that `narrow` matches is matched by `wide`; a star is only taken by a star."""
    if set(narrow) == {"*"} and wide[0] == "*" and set(wide) == {"*", "?"} and wide.count("?") == 1:
        return True
    reach = {0}
    for c in narrow + "\0":
        for j, w in enumerate(wide):
            if j in reach and w == "*":
                reach.add(j + 1)
        if c == "\0":
            return len(wide) in reach
        reach = {j for j in reach if j < len(wide) and wide[j] == "*"} | \
                {j + 1 for j in reach if j < len(wide) and wide[j] != "*" and c != "*" and wide[j] in ("?", c)}
    return False


def takes_name(pattern, name):
    if wild(pattern):
        return glob(pattern, name)
    return name == pattern or name.startswith(pattern + ":")


def wider(pattern, other):
    if wild(pattern) or wild(other):
        return pattern != other and covers(pattern, other) and not covers(other, pattern)
    return len(pattern) <= len(other) and takes_name(pattern, other) and not takes_name(other, pattern)


class Spec:
    def __init__(self, line, outsect, file, names, default=False):
        self.line, self.outsect, self.names, self.default, self.members = line, outsect, names, default, []
        self.file, _, members = file.partition("<")
        self.member_patterns = [m.strip() for m in members.rstrip(">").split(",")] if members else []

    def takes_file(self, section):
        container = section.archive or section.file
        if not glob(self.file, container):
            return False
        return not self.member_patterns or (bool(section.archive) and
                                            any(glob(m, section.file) for m in self.member_patterns))

    def takes(self, section):
        name = f"{COMMON}:{section.symbol}" if section.name == COMMON else section.name
        if self.names and not any(takes_name(p, name) for p in self.names):
            return False
        # A pattern of files alone takes no sections; common blocks it does take.
        return self.takes_file(section) and (bool(self.names) or not wild(self.file) or section.name == COMMON)

    def is_wider(self, other):
        return len(other.names) == 1 and all(wider(p, other.names[0]) for p in self.names)


def by_restrictiveness(specs):
    slots, result, i = list(specs), [], 0
    while i < len(slots):
        if slots[i] is None:
            i += 1
            continue
        best = i
        for j in range(i + 1, len(slots)):
            if slots[j] is None or not slots[j].names:
                continue
            if slots[j].default != slots[best].default:
                break
            if not slots[best].names or slots[best].is_wider(slots[j]):
                best = j
        result.append(slots[best])
        slots[best] = None
        i += best == i
    return result


def base_name(name):
    return name.split(":")[0]


def model(written, outsects, sections, first_wins):
    """({symbol: output section}, [(line, line of the taker or None)])"""
    specs = written + [Spec(0, o, "*", [o], True) for o in outsects]
    if not first_wins:
        specs = by_restrictiveness(specs)
    places, defaults = {}, {}
    for section in sorted(sections, key=lambda s: s.name == COMMON):
        taker = next((s for s in specs if s.takes(section)), None)
        key = COMMON if section.name == COMMON else base_name(section.name)
        if taker is None:
            taker = defaults.setdefault(key, Spec(0, key, "*", [], True))
        taker.members.append(section)
        places[section.symbol] = taker.outsect
    messages = []
    for spec in specs:
        if spec.default or spec.members:
            continue
        taker = next((t for t in specs if t is not spec and not t.default and
                      any(s.name != COMMON and spec.takes(s) for s in t.members)), None)
        messages.append((spec.line, taker.line if taker else None))
    return places, messages


# ---- the links

def run(args, cwd):
    return subprocess.run(args, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, timeout=300)


def must(args, cwd):
    done = run(args, cwd)
    if done.returncode:
        sys.exit(f"{' '.join(map(str, args))}\n{done.stderr}")


def assemble(file, rows, work):
    lines = []
    for symbol, name in rows:
        if name == COMMON:
            lines.append(f'.comm {symbol}, 8, 4\n.section .refers, "aw"\n.word {symbol}')
        else:
            flags = "ax" if name.startswith(".text") else "aw"
            kind = ", %nobits" if name == ".bss" else ""
            lines.append(f'.section "{name}", "{flags}"{kind}\n.global {symbol}\n{symbol}: .space 4')
    (work / f"{file}.s").write_text("\n".join(lines) + "\n")
    must(["arm-none-eabi-as", f"{file}.s", "-o", file], work)


def make_objects(rng, work):
    sections, number = [], 0
    for file in OBJECTS + MEMBERS:
        archive = "lib.a" if file in MEMBERS else None
        rows = []
        for name in [".text", ".data", ".bss", *rng.sample(OTHERS, 9), ".refers", COMMON]:
            number += 1
            rows.append((f"c_{number}" if name == COMMON else f"s_{number}", name))
        assemble(file, rows, work)
        sections += [Section(symbol, name, file, archive) for symbol, name in rows]
    must(["arm-none-eabi-ar", "rcs", "lib.a", *MEMBERS], work)
    # All members are wanted: one symbol of each.
    wanted = {s.file: s.symbol for s in sections if s.archive and s.name != COMMON}
    return sections, [f"--entry_point={sections[0].symbol}"] + [f"--undef_sym={symbol}" for symbol in wanted.values()]


def make_command_file(rng):
    """(text, [Spec], [output section]); each specification stands on a line of its own."""
    outsects = rng.sample(["first", "second", "third", ".text", ".data", ".bss", "plain", ".con"], rng.randint(1, 5))
    lines, specs = HEAD.splitlines() + ["SECTIONS {"], []
    for outsect in outsects:
        lines.append(f"{outsect} : {{")
        for _ in range(rng.randint(0, 5)):
            file = rng.choice(FILES)
            names = rng.sample(PATTERNS, rng.choice([0, 1, 1, 1, 1, 1, 2, 3]))
            lines.append(f"  {file}" + (f"({', '.join(names)})" if names else ""))
            specs.append(Spec(len(lines), outsect, file, names))
        lines.append("} > ALL")
    return "\n".join(lines + ["}", ""]), specs, outsects


def told(text):
    """The warnings of unmatched specifications, as [(line, line of the taker or None)]."""
    flat = " ".join(text.split())
    one = re.compile(r'"link.cmd", line (\d+): warning: (no matching section|section specifier matches no sections; potential '
                     r'matches are consumed by section specifier at "link.cmd", line (\d+))')
    rest = one.sub("", flat).strip()
    if rest:
        sys.exit(f"unexpected messages: {rest}")
    return [(int(m[1]), int(m[3]) if m[3] else None) for m in one.finditer(flat)]


def check_round(rng, qvlink, work, sections, wanted):
    text, specs, outsects = make_command_file(rng)
    (work / "link.cmd").write_text(text)
    first_wins = rng.random() < 0.2
    args = [qvlink, *OBJECTS, "lib.a", *wanted, "link.cmd", "-o", "out.elf"]
    args += ["--match_first_section_spec=on"] * first_wins
    done = run(args, work)
    places, messages = model(specs, outsects, sections, first_wins)
    if done.returncode:
        return f"status {done.returncode}: {done.stderr}"
    actual = {s.name: s.section for s in Elf(work / "out.elf").symbols if s.bind == "GLOBAL"}
    wrong = [f"{s.symbol} ({s.name} of {s.file}) is in {actual.get(s.symbol)}, not {places[s.symbol]}" for s in sections
             if actual.get(s.symbol) != places[s.symbol]]
    if told(done.stdout + done.stderr) != messages:
        wrong.append(f"told {told(done.stdout + done.stderr)}, not {messages}")
    return "\n".join(wrong)


# ---- what it costs

def cpu(args, work):
    best = None
    for _ in range(5):
        before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
        must(args, work)
        spent = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before
        best = spent if best is None else min(best, spent)
    return best


def measure(qvlink, work):
    files, per_file, specs = 20, 1000, 300
    for f in range(files):
        assemble(f"big{f}.o", [(f"f_{f}_{i}", f".text.group{i % 300}.function_{f}_{i}") for i in range(per_file)], work)
    objects = [f"big{f}.o" for f in range(files)]
    kinds = {
        "one specification": ["*(.text*)"],
        "literal names": [f"*(.text.group{i}.function_0_{i})" for i in range(specs)] + ["*(.text*)"],
        "prefixes": [f"*(.text.group{i}.*)" for i in range(specs)] + ["*(.text*)"],
        "wildcards in front": [f"*(*_x{i})" for i in range(specs)] + ["*(.text*)"],
        "wildcards within": [f"*(.text*.function_*_x{i}*)" for i in range(specs)] + ["*(.text*)"],
        "names of files": [f"big{i % files}.o(.text.group{i}.*)" for i in range(specs)] + ["*(.text*)"],
    }
    base = None
    for kind, bodies in kinds.items():
        lines = "".join(f" {b}\n" for b in bodies)
        (work / "link.cmd").write_text(f"{HEAD}SECTIONS {{ all : {{\n{lines} unordered_end = 1; }} > ALL }}\n")
        spent = cpu([qvlink, *objects, "link.cmd", "-o", "out.elf", "--diag_suppress=10068,10300"], work)
        base = spent if base is None else base
        pair = (spent - base) / (files * per_file * specs) * 1e9
        print(f"{kind:20} {spent:6.3f} s  {pair:6.1f} ns a section and specification")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True)
    parser.add_argument("--work", required=True)
    parser.add_argument("--rounds", type=int, default=60)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--measure", action="store_true")
    options = parser.parse_args()
    work = Path(options.work)
    work.mkdir(parents=True, exist_ok=True)
    qvlink = str(Path(options.qvlink).resolve())
    if options.measure:
        return measure(qvlink, work)
    sections, wanted = make_objects(random.Random(1), work)
    bad = 0
    for number in range(options.seed, options.seed + options.rounds):
        fault = check_round(random.Random(number), qvlink, work, sections, wanted)
        if fault:
            bad += 1
            print(f"again with --seed {number} --rounds 1:\n{fault}")
            break
    print(f"{options.rounds} command files, {bad} wrong")
    sys.exit(bad != 0)


if __name__ == "__main__":
    main()
