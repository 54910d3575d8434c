#!/usr/bin/env python3
"""Links generated firmware with qvlink and with the other linkers that are installed, and prints what qvlink takes of theirs.

    run_bench.py --qvlink build/release/qvlink --work build/bench [S M L] [-n 5] [--layouts base,many,split,far]

Inputs that aren't there yet are made (gen_corpus.py). The linkers take turns, round by round, so that what else the machine
does falls on all of them; a figure is the median of n rounds after one that warms the caches. CPU is user and system time,
peak the largest resident set, which can't read below the 18 MB of this program. Ratios of one run say something; seconds
of two runs don't.

qvlink links with --no_sym_merge, as no other linker here merges debug information, and lld without threads, as qvlink has
none. mold takes no layout: it links to addresses of its own and drops what nothing reaches by its own rules. For all others
it is checked that the programs have as much code and constants, within 3 percent, and that they print the same when QEMU
runs them; the status is 1 if they don't.
"""
import argparse
import json
import math
import os
import resource
import shutil
import statistics
import subprocess
import sys
import time
from pathlib import Path

from gen_corpus import LAYOUTS, SIZES, make

# What mold has no script for, it is told to find at 0.
SYMBOLS = ["__stack_top", "__bss_start", "__bss_size", "__init_array_size",
           *(f"__{n}_{what}" for n in ("data", "ramcode") for what in ("load", "start", "size"))]
GNU = ["--gc-sections", "-T", "{layout}.ld", "@inputs.rsp", "-o", "{out}"]
MOLD = ["--no-fork", "-m", "armelf_linux_eabi", "-static", "--gc-sections", "-e", "Reset_Handler",
        *(f"--defsym={s}=0" for s in SYMBOLS), "@inputs.rsp", "-o", "{out}"]
LINKERS = {
    "qvlink": ["{qvlink}", "--no_sym_merge", "inputs.cmd", "{layout}.cmd", "--output_file={out}"],
    "qvlink with types merged": ["{qvlink}", "inputs.cmd", "{layout}.cmd", "--output_file={out}"],
    "lld": ["ld.lld", "--threads=1", *GNU],
    "GNU ld": ["arm-none-eabi-ld", *GNU],
    "mold": ["mold", "--no-threads", *MOLD],
    "lld with threads": ["ld.lld", *GNU],
    "mold with threads": ["mold", *MOLD],
}
DEFAULT = "qvlink,lld,GNU ld,mold"
QEMU = ["qemu-system-arm", "-M", "mps2-an385", "-display", "none", "-serial", "null", "-monitor", "none", "-semihosting-config",
        "enable=on,target=native", "-kernel"]
FAR_OFF = 0.03
LIMIT = 600  # seconds of CPU for one link


def link(argv, folder, out):
    """CPU seconds, elapsed seconds and peak in MB of a link."""
    out.unlink(missing_ok=True)
    begin = time.monotonic()
    with open(out.with_suffix(".log"), "w+b") as log:
        child = subprocess.Popen(argv, cwd=folder, stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        _, status, use = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
        elapsed = time.monotonic() - begin
        if child.returncode:
            log.seek(0)
            sys.exit(f"{' '.join(argv[:3])}... in {folder}: status {child.returncode}\n{log.read(2000).decode('latin-1')}")
    return use.ru_utime + use.ru_stime, elapsed, use.ru_maxrss / 1024


def amount(program):
    """Bytes of code and constants."""
    text = subprocess.run(["arm-none-eabi-size", program], capture_output=True, text=True, check=True).stdout
    return int(text.splitlines()[1].split()[0])


def printed(program):
    done = subprocess.run([*QEMU, program], capture_output=True, text=True, timeout=120)
    return done.stdout + done.stderr


def faults(outputs):
    """In what the programs of those linkers that follow the layout differ from that of the first."""
    programs = {name: out for name, out in outputs.items() if "mold" not in name}
    amounts = {name: amount(out) for name, out in programs.items()}
    first = next(iter(amounts))
    found = [f"{name} has {n} bytes of code and constants, {first} {amounts[first]}"
             for name, n in amounts.items() if abs(n / amounts[first] - 1) > FAR_OFF]
    if shutil.which(QEMU[0]):
        said = {name: printed(out) for name, out in programs.items()}
        if len(set(said.values())) > 1 or not said[first].strip():
            found.append(f"the programs print {said}")
    return found


def measure(linkers, folder, layout, opts):
    """{linker: (CPU, elapsed, peak)} and what is wrong with the outputs."""
    outputs = {name: opts.work / f"{name.replace(' ', '_')}.elf" for name in linkers}
    rows = {name: [] for name in linkers}
    for k in range(opts.n + 1):
        for name, argv in linkers.items():
            argv = [a.format(qvlink=opts.qvlink, layout=layout, out=outputs[name]) for a in argv]
            figures = link(argv, folder, outputs[name])
            if k:
                rows[name].append(figures)
    wrong = faults(outputs)
    for out in outputs.values():
        out.unlink()
        out.with_suffix(".log").unlink()
    return {name: tuple(map(statistics.median, zip(*r))) for name, r in rows.items()}, wrong


def table(head, rows):
    """In the form that documents take."""
    lines = [head, ["---", *["---:"] * (len(head) - 1)], *rows]
    print("\n" + "\n".join("| " + " | ".join(line) + " |" for line in lines), flush=True)


def report(figures, counts, layouts, names):
    """Ratios of the first linker to the others, what a layout costs, and how the time grows."""
    first, *others, sizes, rows = *names, list(counts), []
    for (size, layout), linkers in figures.items():
        cpu, _, peak = linkers[first]
        rows.append([size, layout, f"{cpu:.2f} s", *(f"{cpu / linkers[o][0]:.2f}" for o in others), f"{peak:.0f} MB",
                     *(f"{peak / linkers[o][2]:.2f}" for o in others)])
    table(["size", "layout", f"CPU of {first}", *(f"to {o}" for o in others), "peak", *(f"to {o}" for o in others)], rows)
    if "base" in layouts and len(layouts) > 1:
        table(["CPU to the base layout", *names],
              [[f"{size} {layout}", *(f"{figures[size, layout][n][0] / figures[size, 'base'][n][0]:.2f}" for n in names)]
               for size in sizes for layout in layouts if layout != "base"])
    if len(sizes) > 1:
        rows = []
        for layout in layouts:
            for a, b in zip(sizes, sizes[1:]):
                more = counts[b] / counts[a]
                rows.append([f"{a} to {b}, {layout}", *(
                    f"{math.log(figures[b, layout][n][0] / figures[a, layout][n][0]) / math.log(more):.2f}" for n in names)])
        table(["growth of CPU, as a power of the relocations'", *names], rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("-n", type=int, default=5, help="rounds")
    parser.add_argument("--layouts", default=",".join(LAYOUTS))
    parser.add_argument("--linkers", default=DEFAULT, help=f"of {', '.join(LINKERS)}; the first one is compared with the others")
    parser.add_argument("--json", type=Path, help="a file for all figures")
    parser.add_argument("sizes", nargs="*", default=["S", "M", "L"])
    opts = parser.parse_args()
    opts.work, opts.qvlink = opts.work.resolve(), opts.qvlink.resolve()
    sizes = [s for s in SIZES if s in opts.sizes] or parser.error(f"the sizes are {', '.join(SIZES)}")
    layouts = [v for v in LAYOUTS if v in opts.layouts.split(",")] or parser.error(f"the layouts are {', '.join(LAYOUTS)}")
    asked = opts.linkers.split(",")
    linkers = {n: LINKERS[n] for n in asked if n in LINKERS and (n.startswith("qvlink") or shutil.which(LINKERS[n][0]))}
    for name in set(asked) - set(linkers):
        print(f"{name}: not installed, left out")
    resource.setrlimit(resource.RLIMIT_CPU, (LIMIT, LIMIT))  # inherited by each link
    figures, counts, bad = {}, {}, False
    for size in sizes:
        folder = opts.work / "corpus" / size
        if not (folder / "corpus.json").exists():
            make(size, folder)
        info = json.loads((folder / "corpus.json").read_text())
        counts[size] = info["relocations"]
        for layout in layouts:
            figures[size, layout], wrong = measure(linkers, folder, layout, opts)
            print(f"{size} {layout}: " + ", ".join(f"{name} {cpu:.3f} s CPU, {wall:.3f} s, {peak:.0f} MB"
                                                   for name, (cpu, wall, peak) in figures[size, layout].items()), flush=True)
            for text in wrong:
                bad = True
                print(f"WRONG: {size} {layout}: {text}")
    report(figures, counts, layouts, list(linkers))
    if opts.json:
        rows = [{"size": size, "layout": layout, "linkers": row} for (size, layout), row in figures.items()]
        opts.json.write_text(json.dumps(rows, indent=1))
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
