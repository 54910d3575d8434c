#!/usr/bin/env python3
"""The examples linked in two steps, first with --relocatable, then the result with the command file, do what they do when
they are linked in one."""
import argparse
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1] / "examples"), str(HERE.parent / "support")]
import run  # noqa: E402

PROGRAMS = "hello", "newlib", "cpp", "regions", "exceptions"


def check(name, opts):
    work = opts.work / name
    work.mkdir(parents=True, exist_ok=True)
    objects = run.compile_program(name, work)
    archives = run.library_copies(name, work)
    # Start-up by itself, everything else together; once more, so that a result is input of a partial link, too.
    first, second = work / "first.o", work / "second.o"
    for inputs, out in ((objects[1:], first), ([first], second)):
        said = run.run([opts.qvlink, "--relocatable", *inputs, "-o", out])
        if said:
            raise run.Failed(said)
        run.run(["arm-none-eabi-readelf", "-a", "-u", "-W", out])
    expected = (run.HERE / name / "expected.txt").read_text()
    for middle in first, second:
        elf = run.link(name, opts.qvlink, [objects[0], middle], archives, work)
        printed = run.run_program(name, elf)
        if printed != expected:
            raise run.Failed(f"from {middle} the program prints\n{printed}--- expected\n{expected}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("programs", nargs="*")
    opts = parser.parse_args()
    failures = 0
    for name in opts.programs or PROGRAMS:
        try:
            check(name, opts)
            print(f"{name}: ok")
        except run.Failed as e:
            failures += 1
            print(f"{name}: FAILED: {e}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
