#!/usr/bin/env python3
"""Command files made at random by the rules of the language all link; damaged ones end in a message.

File number i depends on --seed and i only (support/random_commands.py). Of a valid one holds: it links, and the output
is there. Of one with tokens removed, doubled, exchanged or put in: the status is 0 or 1, within the time limit; no
message calls itself internal, no sanitizer speaks, and a link that fails leaves no output.

    random_commands_test.py --qvlink build/asan/qvlink --work /tmp/commands --count 5000 --damaged 20000
    random_commands_test.py --qvlink build/asan/qvlink --work /tmp/commands --only 17 [--damaged-only 1234]
"""
import argparse
import concurrent.futures
import os
import random
import re
import shutil
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "support")]
import random_commands  # noqa: E402
from mutation_test import SANITIZER, TIME_LIMIT, mutate_command  # noqa: E402

TOOL = "arm-none-eabi-"
ARGS = ["link.cmd", *random_commands.OBJECTS, random_commands.ARCHIVE[0], "-o", "out.elf"]


def assemble(folder):
    folder.mkdir(parents=True)
    for name, text in random_commands.SOURCES.items():
        subprocess.run([TOOL + "as", "-mcpu=cortex-m3", "-mthumb", "-o", name.replace(".s", ".o"), "-"], cwd=folder, check=True,
                       input="    .syntax unified\n    .eabi_attribute 25, 1\n" + text, text=True)
    archive, members = random_commands.ARCHIVE
    subprocess.run([TOOL + "ar", "rcs", archive, *members], cwd=folder, check=True)


def make(opts, number, damaged):
    """{file: bytes}, and what was done to them."""
    rng = random.Random(opts.seed * 1000003 + (number // 4 if damaged else number))
    files = {name: text.encode() for name, text in random_commands.command_file(rng).items()}
    said = ""
    if damaged:
        rng = random.Random(f"{opts.seed} damaged {number}")
        name = rng.choice(sorted(files))
        files[name], said = mutate_command(rng, files[name])
        said = f"{name}: {said}"
    return files, said


def verdict(opts, work, damaged):
    """(what is wrong or None, what the linker said)"""
    try:
        done = subprocess.run([str(opts.qvlink), *ARGS], cwd=work, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              timeout=TIME_LIMIT, stdin=subprocess.DEVNULL, env={**os.environ, **SANITIZER})
    except subprocess.TimeoutExpired:
        return f"no end within {TIME_LIMIT} seconds", ""
    status, text = done.returncode, done.stdout.decode("latin-1")
    written = (work / "out.elf").exists()
    if status not in (0, 1) or (status and not damaged):
        return f"status {status}", text
    if re.search(r"Sanitizer|runtime error:|internal (error|warning|fatal error) #|INTERNAL ERROR", text):
        return "an internal error or a report of a sanitizer", text
    if status == 1 and "error" not in text:
        return "status 1 without an error message", text
    if status == 1 and written or not damaged and not written:
        return f"status {status}, and {'an' if written else 'no'} output", text
    return None, text


def run(opts, number, damaged):
    """None, or the report of what went wrong."""
    files, said = make(opts, number, damaged)
    work = opts.work / ("damaged" if damaged else "valid") / str(number)
    work.mkdir(parents=True)
    for name in [*random_commands.OBJECTS, random_commands.ARCHIVE[0]]:
        os.link(opts.work / "objects" / name, work / name)
    for name, data in files.items():
        (work / name).write_bytes(data)
    wrong, text = verdict(opts, work, damaged)
    if not wrong and opts.only is None:
        shutil.rmtree(work)
        return None
    lines = text.splitlines()
    told = [line for line in lines if "error" in line] or lines
    return (f"{'FAILED: ' + wrong if wrong else 'fine'}\n  {'damaged' if damaged else 'valid'} file {number}, seed {opts.seed} {said}\n"
            f"  cd {work} && {opts.qvlink} {' '.join(ARGS)}\n" + "".join(f"  | {line}\n" for line in told[:20]))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--count", type=int, default=500, help="valid files")
    parser.add_argument("--damaged", type=int, default=2000, help="damaged files")
    parser.add_argument("--first", type=int, default=0, help="the number of the first one")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", type=int, help="one valid file, kept")
    parser.add_argument("--damaged-only", type=int, help="one damaged file, kept")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--most", type=int, default=10, help="failures after which it ends")
    opts = parser.parse_args()
    opts.qvlink, opts.work = opts.qvlink.resolve(), opts.work.resolve()
    shutil.rmtree(opts.work, ignore_errors=True)
    assemble(opts.work / "objects")
    numbers = [(n, False) for n in range(opts.first, opts.first + opts.count)]
    numbers += [(n, True) for n in range(opts.first, opts.first + opts.damaged)]
    if opts.only is not None or opts.damaged_only is not None:
        numbers = [(n, d) for n, d in ((opts.only, False), (opts.damaged_only, True)) if n is not None]
        opts.only = -1
    failed, at = 0, 0
    with concurrent.futures.ThreadPoolExecutor(opts.jobs) as pool:
        while at < len(numbers) and failed < opts.most:
            batch = numbers[at:at + 16 * opts.jobs]
            at += len(batch)
            for report in pool.map(lambda item: run(opts, *item), batch):
                if report:
                    failed += report.startswith("FAILED")
                    print(report, flush=True)
    print(f"{opts.count} valid files, {opts.damaged} damaged ones, {failed} failures")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
