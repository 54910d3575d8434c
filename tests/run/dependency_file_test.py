#!/usr/bin/env python3
"""make and ninja build a program with --dependency_file, do nothing when nothing has changed, and link again when an input
has, whatever its name, or when one is gone."""
import argparse
import os
import subprocess
import sys
import time
from pathlib import Path

NAMES = ["plain.o", "opt=3.o", "co:lon.o", "with blank.o", "with#hash.o", "with$dollar.o", "back\\slash.o", "one\\ two.o"]
MAKEFILE = """out.elf:
\t./link.sh
-include out.d
"""
NINJA = """rule link
  command = ./link.sh
  depfile = out.d
build out.elf: link
"""


def run(command, work):
    done = subprocess.run(command, cwd=work, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
    if done.returncode:
        sys.exit(f"FAILED: {command}: {done.stdout.decode()}")
    return done.stdout.decode()


def check(tool, names, opts):
    work = opts.work / tool
    work.mkdir(parents=True, exist_ok=True)
    for old in work.iterdir():
        old.unlink()
    source = "".join(f"    .section .text.{i}, \"ax\"\n    .word {i}\n" for i in range(2))
    (work / "a.s").write_text("    .eabi_attribute 25, 1\n" + source)
    run(["arm-none-eabi-as", "a.s", "-o", "a.out"], work)
    for name in names:
        (work / name).write_bytes((work / "a.out").read_bytes())
    (work / "link.cmd").write_text("MEMORY { ROM : origin = 0x100, length = 0x1000 }\n")
    quoted = " ".join("'" + n + "'" for n in names)
    (work / "link.sh").write_text(f"#!/bin/sh\n'{opts.qvlink}' {quoted} link.cmd --unused_section_elimination=off "
                                  "--no_entry_point -o out.elf --dependency_file=out.d && echo linked >> log\n")
    (work / "link.sh").chmod(0o755)
    (work / "Makefile").write_text(MAKEFILE)
    (work / "build.ninja").write_text(NINJA)
    expected = 0

    def build(links, why):
        nonlocal expected
        expected += links
        said = run([tool, "out.elf"], work)
        count = (work / "log").read_text().count("linked")
        if count != expected:
            sys.exit(f"FAILED: {tool}: {count} links instead of {expected} {why}:\n{said}{(work / 'out.d').read_text()}")

    build(1, "at first")
    build(0, "without a change")
    for name in [*names, "link.cmd"]:
        later = time.time() + 5 * (1 + [*names, "link.cmd"].index(name))
        os.utime(work / name, (later, later))
        build(1, f"after a change of {name}")
        os.utime(work / "out.elf", (later, later))
    (work / names[0]).rename(work / "gone")
    (work / "link.sh").write_text((work / "link.sh").read_text().replace(f"'{names[0]}' ", "", 1))
    build(1, "when an input is gone")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    opts = parser.parse_args()
    opts.qvlink = opts.qvlink.resolve()
    for tool in "make", "ninja":
        check(tool, NAMES, opts)
        print(f"{tool}: ok")


if __name__ == "__main__":
    main()
