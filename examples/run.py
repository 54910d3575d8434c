#!/usr/bin/env python3
"""Builds an example, links it with qvlink, runs it in QEMU and compares what it prints with its expected.txt.

    python3 examples/run.py --qvlink build/release/qvlink --work build/demo [--show] hello

With --show it prints the commands, the use of the memories and the program's lines. The tests use the functions here.
"""
import argparse
import re
import shlex
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
TOOL = "arm-none-eabi-"
CPU = ["-mcpu=cortex-m3", "-mthumb"]
COMPILE = [*CPU, "-O2", "-gdwarf-4", "-Wall", "-Wextra", "-ffunction-sections", "-fdata-sections",
           "-fno-tree-loop-distribute-patterns",  # a copy loop stays one: no call of a memcpy that is not there
           "-ffile-prefix-map={top}=."]
CXX = ["-std=c++20", "-fno-exceptions", "-fno-rtti", "-fno-threadsafe-statics"]
STARTUP = "common/startup.s"

# What a program is made of: its sources, and the archives of the compiler's C library that it links with.
PROGRAMS = {
    "hello": {"sources": [STARTUP, "hello/main.c"]},
    "newlib": {"sources": [STARTUP, "newlib/main.c", "newlib/system.c"], "archives": ["libc.a", "libm.a", "libgcc.a"]},
    "cpp": {"sources": [STARTUP, "cpp/main.cpp", "cpp/shapes.cpp", "cpp/handler.cpp"]},
    "regions": {"sources": [STARTUP, "regions/main.c"]},
}
MACHINE, QEMU_CPU = "mps2-an385", "cortex-m3"


class Failed(Exception):
    """A step of the build or of the run failed; the text says which."""


def run(command, show=False, **kw):
    """Runs a command; its output comes back as text, and a status other than 0 is Failed."""
    if show:
        print("$ " + " ".join(shlex.quote(str(c)) for c in command), flush=True)
    done = subprocess.run([str(c) for c in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          stdin=subprocess.DEVNULL, timeout=120, **kw)
    text = done.stdout.decode("latin-1")
    if done.returncode:
        raise Failed(f"{shlex.join(str(c) for c in command)}\nstatus {done.returncode}\n{text}")
    return text


def compile_program(name, work, show=False):
    """The objects of a program, in order."""
    objects = []
    for source in PROGRAMS[name]["sources"]:
        out = work / (Path(source).stem + ".o")
        flags = [f.format(top=HERE) for f in COMPILE]
        if source.endswith(".s"):
            flags = CPU
        compiler = TOOL + ("g++" if source.endswith(".cpp") else "gcc")
        run([compiler, "-c", *flags, *(CXX if source.endswith(".cpp") else []), f"-I{HERE / 'common'}",
             HERE / source, "-o", out], show)
        objects.append(out)
    return objects


def library_copies(name, work, show=False):
    """Copies of the compiler's archives without their debug information, which is of a version that qvlink refuses."""
    copies = []
    for archive in PROGRAMS[name].get("archives", []):
        found = run([TOOL + "gcc", *CPU, f"-print-file-name={archive}"]).strip()
        run([TOOL + "objcopy", "--strip-debug", found, work / archive], show)
        copies.append(work / archive)
    return copies


def link(name, qvlink, objects, archives, work, show=False):
    """Links with the example's command file; returns the path of the program."""
    out, groups = work / f"{name}.elf", []
    if archives:
        groups = ["--start-group", *archives, "--end-group"]
    command = [qvlink, *objects, *groups, HERE / name / "link.cmd", f"--map_file={work / name}.map",
               f"--output_file={out}"]
    text = run(command, show)
    if text:
        print(text, end="")
    return out


def run_in_qemu(elf):
    """What the program prints; Failed when it ends with a status other than 0, or not at all."""
    return run(["qemu-system-arm", "-M", MACHINE, "-cpu", QEMU_CPU, "-display", "none", "-serial", "null", "-monitor",
                "none", "-semihosting-config", "enable=on,target=native", "-kernel", elf])


def memory_use(map_text):
    """The rows of the map file's memory configuration: name, origin, length, used, unused."""
    rows = re.findall(r"^ {2}(\w+)\s+([0-9a-f]{8})\s+([0-9a-f]{8})\s+([0-9a-f]{8})\s+([0-9a-f]{8})", map_text, re.M)
    return [(name, *(int(n, 16) for n in numbers)) for name, *numbers in rows]


def build(name, qvlink, work, show=False):
    """Compiles and links a program; returns its path."""
    work.mkdir(parents=True, exist_ok=True)
    objects = compile_program(name, work, show)
    return link(name, qvlink, objects, library_copies(name, work, show), work, show)


def main():
    parser = argparse.ArgumentParser(description="build, link and run an example")
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--show", action="store_true", help="print the commands and the use of the memories")
    parser.add_argument("program", choices=PROGRAMS)
    opts = parser.parse_args()
    work = opts.work / opts.program
    try:
        elf = build(opts.program, opts.qvlink, work, opts.show)
        lines = run_in_qemu(elf)
    except Failed as e:
        sys.exit(f"{opts.program} failed: {e}")
    if opts.show:
        map_file = work / f"{opts.program}.map"
        print("\nMemory:")
        for name, origin, length, used, _ in memory_use(map_file.read_text(encoding="latin-1")):
            print(f"  {name:<8} {origin:#010x}  {used:>8} of {length:>8} bytes used ({100 * used / length:.1f} %)")
        print(f"The map of everything: {map_file}\n\n{opts.program}, running on {MACHINE} in QEMU, prints:\n")
    print(lines, end="")
    if lines != (HERE / opts.program / "expected.txt").read_text():
        sys.exit(f"{opts.program} printed something else than its expected.txt")


if __name__ == "__main__":
    main()
