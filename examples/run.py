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
CORTEX_M3 = ["-mcpu=cortex-m3", "-mthumb"]
CORTEX_M4F = ["-mcpu=cortex-m4", "-mthumb", "-mfloat-abi=hard", "-mfpu=fpv4-sp-d16"]
ARMV7_A = ["-march=armv7-a", "-mthumb", "-mfloat-abi=soft"]
COMPILE = ["-O2", "-gdwarf-4", "-Wall", "-Wextra", "-ffunction-sections", "-fdata-sections",
           "-fno-tree-loop-distribute-patterns",  # a copy loop stays one: no call of a memcpy that is not there
           "-ffile-prefix-map={top}=."]
CXX = ["-std=c++20", "-fno-threadsafe-statics"]
NO_EXCEPTIONS = ["-fno-exceptions", "-fno-rtti"]
STARTUP = "common/startup.s"
# The start-up of programs whose variables are stored encoded, and the archive of what unpacks them.
BOOT = "runtime/boot.s"
RUNTIME = [f"runtime/{name}.c" for name in ("auto_init", "unpack", "unpack_copy", "unpack_zero", "unpack_rle", "unpack_lzss",
                                            "crc")]

# What a program is made of: its sources, the archives of the compiler's C library that it links with, and the machine that
# it is for, if that isn't MACHINE. One that has a run-time is started as it would be on a device: the flash holds its binary
# image, and the RAM holds POISON.
PROGRAMS = {
    "hello": {"sources": [STARTUP, "hello/main.c"]},
    "newlib": {"sources": [STARTUP, "newlib/main.c", "newlib/system.c"], "archives": ["libc.a", "libm.a", "libgcc.a"]},
    "cpp": {"sources": [STARTUP, "cpp/main.cpp", "cpp/shapes.cpp", "cpp/handler.cpp"]},
    "regions": {"sources": [STARTUP, "regions/main.c"]},
    "rom-model": {"sources": [BOOT, "rom-model/main.c", "rom-model/shapes.s"], "runtime": True},
    "overlays": {"sources": [BOOT, "overlays/main.c", "overlays/sums.c", "overlays/words.c", "overlays/squares.c"],
                 "runtime": True},
    "crc": {"sources": [BOOT, "crc/main.c", "crc/data.s"], "runtime": True},
    "farcall": {"sources": [STARTUP, "farcall/main.c"]},
    "farcall-a15": {"sources": ["farcall-a15/start.s", "farcall-a15/main.c"], "machine": ("virt", "cortex-a15", ARMV7_A)},
    "freestanding-be": {"sources": ["freestanding-be/start.s", "freestanding-be/main.c"],
                        "machine": ("virt", "cortex-a15", [*ARMV7_A, "-mbig-endian"]), "peer": ["-EB", "--be8"]},
    "exceptions": {"sources": [STARTUP, "exceptions/start.cpp", "exceptions/main.cpp", "exceptions/jobs.cpp",
                               "newlib/system.c"],
                   "archives": ["libstdc++.a", "libc.a", "libm.a", "libgcc.a"],
                   "machine": ("mps2-an386", "cortex-m4", CORTEX_M4F), "exceptions": True},
}
QEMU = ["qemu-system-arm", "-display", "none", "-serial", "null", "-monitor", "none",
        "-semihosting-config", "enable=on,target=native"]
RAM, POISON = 0x20000000, b"\xa5" * 0x40000
MACHINE = "mps2-an385", "cortex-m3", CORTEX_M3  # of QEMU, its processor, the compiler's options for it


class Failed(Exception):
    """A step of the build or of the run failed; the text says which."""


def run(command, show=False, **kw):
    """Runs a command; its output comes back as text, and a status other than 0 is Failed."""
    if show:
        print("$ " + " ".join(shlex.quote(str(c)) for c in command), flush=True)
    try:
        done = subprocess.run([str(c) for c in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              stdin=subprocess.DEVNULL, timeout=60, **kw)
    except subprocess.TimeoutExpired as e:
        raise Failed(f"{shlex.join(str(c) for c in command)}\ndoes not end: {(e.stdout or b'').decode('latin-1')}")
    text = done.stdout.decode("latin-1")
    if done.returncode:
        raise Failed(f"{shlex.join(str(c) for c in command)}\nstatus {done.returncode}\n{text}")
    return text


def machine_of(name):
    return PROGRAMS[name].get("machine", MACHINE)


def compile_program(name, work, show=False):
    """The objects of a program, in order."""
    return compile_sources(name, PROGRAMS[name]["sources"], work, show)


def compile_sources(name, sources, work, show=False):
    """Objects of sources, with the options of a program."""
    objects, cpu = [], machine_of(name)[2]
    cxx = CXX if PROGRAMS[name].get("exceptions") else CXX + NO_EXCEPTIONS
    for source in sources:
        out = work / (Path(source).stem + ".o")
        flags = cpu + [f.format(top=HERE) for f in COMPILE]
        if source.endswith(".s"):
            flags = cpu
        compiler = TOOL + ("g++" if source.endswith(".cpp") else "gcc")
        run([compiler, "-c", *flags, *(cxx if source.endswith(".cpp") else []), f"-I{HERE / 'common'}",
             f"-I{HERE / 'runtime'}", HERE / source, "-o", out], show)
        objects.append(out)
    return objects


def library_copies(name, work, show=False):
    """Copies of the compiler's archives without their debug information, which would be most of the program."""
    copies = []
    for archive in PROGRAMS[name].get("archives", []):
        found = run([TOOL + "gcc", *machine_of(name)[2], f"-print-file-name={archive}"]).strip()
        run([TOOL + "objcopy", "--strip-debug", found, work / archive], show)
        copies.append(work / archive)
    return copies


def runtime_archive(name, work, show=False):
    """The archive of the run-time."""
    objects = compile_sources(name, RUNTIME, work, show)
    archive = work / "runtime.a"
    archive.unlink(missing_ok=True)
    run([TOOL + "ar", "rcs", archive, *objects], show)
    return archive


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


def run_in_qemu(elf, machine=MACHINE):
    """What the program prints; Failed when it ends with a status other than 0, or not at all."""
    network = ["-nic", "none"] if machine[0] == "virt" else []
    return run(QEMU + network + ["-M", machine[0], "-cpu", machine[1], "-kernel", elf])


def image_of(elf):
    """The bytes of a program's flash."""
    image = elf.with_suffix(".bin")
    run([TOOL + "objcopy", "-O", "binary", elf, image])
    return image


def run_image_in_qemu(image):
    """What a program prints that starts from its image alone, with RAM that holds something else than it needs."""
    poison = image.with_name("poison.bin")
    poison.write_bytes(POISON)
    return run(QEMU + ["-M", MACHINE[0], "-cpu", MACHINE[1], "-kernel", image,
                       "-device", f"loader,file={poison},addr={RAM:#x},force-raw=on"])


def run_program(name, elf):
    """What a program prints, started in its way."""
    return run_image_in_qemu(image_of(elf)) if PROGRAMS[name].get("runtime") else run_in_qemu(elf, machine_of(name))


def memory_use(map_text):
    """The rows of the map file's memory configuration: name, origin, length, used, unused."""
    rows = re.findall(r"^ {2}(\w+)\s+([0-9a-f]{8})\s+([0-9a-f]{8})\s+([0-9a-f]{8})\s+([0-9a-f]{8})", map_text, re.M)
    return [(name, *(int(n, 16) for n in numbers)) for name, *numbers in rows]


def build(name, qvlink, work, show=False):
    """Compiles and links a program; returns its path."""
    work.mkdir(parents=True, exist_ok=True)
    objects = compile_program(name, work, show)
    archives = library_copies(name, work, show)
    if PROGRAMS[name].get("runtime"):
        archives.append(runtime_archive(name, work, show))
    return link(name, qvlink, objects, archives, work, show)


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
        lines = run_program(opts.program, elf)
    except Failed as e:
        sys.exit(f"{opts.program} failed: {e}")
    if opts.show:
        map_file = work / f"{opts.program}.map"
        print("\nMemory:")
        for name, origin, length, used, _ in memory_use(map_file.read_text(encoding="latin-1")):
            print(f"  {name:<8} {origin:#010x}  {used:>8} of {length:>8} bytes used ({100 * used / length:.1f} %)")
        print(f"The map of everything: {map_file}\n\n{opts.program}, running on {machine_of(opts.program)[0]} in QEMU, prints:\n")
    print(lines, end="")
    if lines != (HERE / opts.program / "expected.txt").read_text():
        sys.exit(f"{opts.program} printed something else than its expected.txt")


if __name__ == "__main__":
    main()
