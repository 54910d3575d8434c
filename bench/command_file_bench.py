#!/usr/bin/env python3
"""How long the linker takes for a command file, as a ratio to `cpp -P` on the same file; in one run, the best of five.

The file has LINES lines as people write them: comments, macros and their use, conditionals, ranges, output sections
with bodies and properties, assignments. A link without objects ends behind the command files, so that what counts is
starting, preprocessing and parsing. A second file of twice the size shows how the time grows. Ends with status 1 if the
first takes more than three times as long as cpp, or if twice the lines take more than 2.6 times as long.

    command_file_bench.py --qvlink build/release/qvlink
"""
import argparse
import math
import os
import resource
import subprocess
import sys
import tempfile
from pathlib import Path

BLOCK = """\
/* The sections of unit {n}. They stay together, because the loader
   copies them at once. */
#define UNIT_{n}_SIZE 0x{size:x} // in bytes
#define UNIT_{n}(section) .unit{n}.section
#if UNIT_{n}_SIZE > LIMIT
#  define UNIT_{n}_RANGE M{range}
#else
#  define UNIT_{n}_RANGE M{other}
#endif
unit_{n}_size = UNIT_{n}_SIZE * KB(1) + 4;
SECTIONS
{{
    .unit{n} : ALIGN(8) START(unit_{n}_start)
    {{
        unit{n}_*.o(.text .text.unit{n}.*)      /* code */
        unit{n}_data*.o(.rodata*)
        . = ALIGN(16);
        *(.unit{n}_tables) = 0xFFFF
    }} > UNIT_{n}_RANGE, END(unit_{n}_end), fill = 0x{fill:x}

    .unit{n}.bss : {{ unit{n}_*.o(.bss*) }} > M{range} (HIGH)
}}
"""
MAX_RATIO = 3.0
MAX_GROWTH = 2.6


def command_file(lines):
    text = ["#define KB(n) ((n) * 1024)", "#define LIMIT KB(16)", "MEMORY", "{"]
    text += [f"    M{i} (RWX) : origin = 0x{i * 0x1000000:x}, length = KB(1024)" for i in range(32)] + ["}"]
    unit = 0
    while len(text) < lines:
        text += BLOCK.format(n=unit, size=unit * 97 % 65536, range=unit % 32, other=(unit + 7) % 32,
                             fill=unit % 65536).splitlines()
        unit += 1
    return "\n".join(text) + "\n"


def seconds(words):
    """CPU seconds of the command, the best of five."""
    best = math.inf
    for _ in range(5):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        subprocess.run(words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        best = min(best, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
    return best


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True)
    parser.add_argument("--lines", type=int, default=50000)
    args = parser.parse_args()
    qvlink = os.path.abspath(args.qvlink)
    with tempfile.TemporaryDirectory() as folder:
        times = []
        for factor in (1, 2):
            path = Path(folder) / f"{factor}.cmd"
            path.write_text(command_file(args.lines * factor))
            times.append((seconds([qvlink, str(path)]), seconds(["cpp", "-P", str(path)])))
    (own, cpp), (double, _) = times
    print(f"{args.lines} lines: {own:.3f} s, cpp -P {cpp:.3f} s, ratio {own / cpp:.2f}; twice the lines: "
          f"{double / own:.2f} times as long")
    return own > MAX_RATIO * cpp or double > MAX_GROWTH * own


if __name__ == "__main__":
    sys.exit(main())
