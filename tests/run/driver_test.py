#!/usr/bin/env python3
"""Command lines and what they say: tables of links, each a few lines.

A table is a file tests/run/driver/*.cases. It begins with a sentence and the inputs, as link tests have them (see
tests/support/linktest.py); they are built once. Behind a line `=== name` stands one link:

    $ ARGUMENTS           of the linker, in the folder of the inputs; more such lines go on
    @ NAME=VALUE          a variable of its environment
    ? STATUS              0 if not given
    ! LINE                a line of standard error; these lines, in order, are all of it
    > LINE                a line that occurs in standard output, in that order (blanks count as one); none: it is empty
    : NAME...             all global symbols that out.elf defines and that are not the linker's own, in any order
    = NAME VALUE          a symbol of out.elf; VALUE may be -: there is no such symbol
    + FILE, - FILE        the link leaves this file, or doesn't
    ~ FILE LINE           a line that occurs in a file that the link writes

{work} in any of them is the folder of the inputs. A case without `:`, `=`, `+` and `-` lines expects out.elf exactly if the status is 0 and an output was asked for.
"""
import argparse
import os
import shlex
import shutil
import subprocess
import sys
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "tests/support"))
from elf import Elf  # noqa: E402
from linktest import Failure, in_order, make_input, parse_text  # noqa: E402


def read_table(path):
    """The parts that make inputs, and the cases as (name, [(mark, text)], line number)."""
    text = path.read_text()
    head, *blocks = text.split("\n=== ")
    number = head.count("\n") + 2
    cases = []
    for block in blocks:
        name, *lines = block.split("\n")
        entries = [(line[0], line[2:]) for line in lines if line.strip()]
        unknown = [mark for mark, _ in entries if mark not in "$@?!>:=+-~"]
        if unknown or not any(mark == "$" for mark, _ in entries):
            sys.exit(f"{path}:{number}: case {name!r}: no arguments, or unknown marks {unknown}")
        cases.append((name, entries, number))
        number += block.count("\n") + 1
    return parse_text(head)[1], cases


def global_definitions(elf):
    return {s.name for s in elf.symbols if s.bind != "LOCAL" and s.section != "UND" and
            not s.name.startswith("__") and s.name not in ("", "binit")}


def check(entries, work, done):
    of = {mark: [text for m, text in entries if m == mark] for mark in "$@?!>:=+-~"}
    out, err = done.stdout.decode("latin-1"), done.stderr.decode("latin-1")
    status = int(of["?"][0]) if of["?"] else 0
    expected = "".join(line + "\n" for line in of["!"])
    if done.returncode != status:
        raise Failure(f"exit status {done.returncode}, expected {status}")
    if err != expected:
        raise Failure(f"standard error, expected\n{expected}")
    in_order("standard output", of[">"], out.splitlines())
    if out and not of[">"]:
        raise Failure("standard output, expected nothing")
    for line in of["~"]:
        name, text = line.split(" ", 1)
        in_order(name, [text], (work / name).read_text(encoding="latin-1").splitlines())
    present, absent = list(of["+"]), list(of["-"])
    if not (present or absent) and "-o out.elf" in " ".join(of["$"]):
        (absent if status else present).append("out.elf")
    for name in present:
        if not (work / name).exists():
            raise Failure(f"the link left no {name}")
    for name in absent:
        if (work / name).exists():
            raise Failure(f"the link left {name}")
    if of[":"] or of["="]:
        check_symbols(Elf(work / "out.elf"), of)


def check_symbols(elf, of):
    for line in of["="]:
        name, value = line.split()
        symbol = elf.symbol(name)
        found = "-" if symbol is None else f"{symbol.value:#x}"
        if found != (value if value == "-" else f"{int(value, 0):#x}"):
            raise Failure(f"symbol {name}: {found}, expected {value}")
    if of[":"]:
        expected = {name for line in of[":"] for name in line.split()}
        if global_definitions(elf) != expected:
            raise Failure(f"global symbols {sorted(global_definitions(elf))}, expected {sorted(expected)}")


def run_case(entries, work, qvlink):
    entries = [(mark, text.replace("{work}", str(work))) for mark, text in entries]
    for leftover in work.glob("out*"):
        leftover.unlink()
    args = shlex.split(" ".join(text for mark, text in entries if mark == "$"))
    env = {k: v for k, v in os.environ.items() if not k.endswith(("C_DIR", "A_DIR"))}
    env.update(text.split("=", 1) for mark, text in entries if mark == "@")
    done = subprocess.run([qvlink, *args], cwd=work, env=env, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          stdin=subprocess.DEVNULL, timeout=120)
    try:
        check(entries, work, done)
    except Failure as failure:
        return (f"{failure}\n--- run again: cd {work} && {shlex.join([str(qvlink), *args])}\n--- standard error\n"
                f"{done.stderr.decode('latin-1')}--- standard output\n{done.stdout.decode('latin-1')[:2000]}")
    return None


def run_table(path, opts):
    parts, cases = read_table(path)
    work = opts.work / path.stem
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    for head, body, _ in parts:
        make_input(head, body, work)
    wrong = 0
    for name, entries, number in cases:
        if opts.only and opts.only not in name:
            continue
        if fault := run_case(entries, work, opts.qvlink):
            wrong += 1
            print(f"{path}:{number}: {name}: {fault}")
    print(f"{path.stem}: {len(cases)} cases, {wrong} wrong")
    return wrong


def check_depth(opts):
    """A chain of command files is followed as far as the stack surely bears; what lies deeper is an error, not a crash."""
    work = opts.work / "depth"
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    last = 300
    for i in range(last):
        (work / f"c{i}.cmd").write_text(f"c{i + 1}.cmd\n" if i + 1 < last else "--stack_size=1\n")
    for first, says in ((last - 200, "fatal error: no input files\n"), (last - 201, '"c299.cmd" is named through 200')):
        done = subprocess.run([opts.qvlink, f"c{first}.cmd"], cwd=work, capture_output=True, text=True, timeout=60)
        if done.returncode != 1 or says not in done.stderr:
            print(f"depth: c{first}.cmd: status {done.returncode}, expected 1 and {says!r} in\n{done.stderr[-500:]}")
            return 1
    return 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", type=Path, required=True)
    parser.add_argument("--work", type=Path, required=True)
    parser.add_argument("--only", help="cases whose name has this text")
    parser.add_argument("tables", type=Path, nargs="*", help="tables, all if none is named")
    opts = parser.parse_args()
    opts.qvlink, opts.work = opts.qvlink.resolve(), opts.work.resolve()
    tables = opts.tables or sorted((TOP / "tests/run/driver").glob("*.cases"))
    if not tables:
        sys.exit("no tables")
    wrong = sum(run_table(table, opts) for table in tables)
    if not opts.tables and not opts.only:
        wrong += check_depth(opts)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
