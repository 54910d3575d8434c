#!/usr/bin/env python3
"""A link that cannot end leaves nothing that could be taken for its output.

The disk is full, the size of a file is limited, or a signal comes at any moment: under the output's name there is
either nothing, or what stood there before, or the whole file, and where the linker can still act, nothing else is left either. The program that is
linked is large, so that much of the link is writing.
"""
import argparse
import os
import resource
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

TOOL = "arm-none-eabi-"
SOURCE = """
    .section .text.start, "ax"
    .global _start
_start: .word data
    .section .data, "aw"
data:
    .rept {words}
    .word 0x12345678, 0x9abcdef0
    .endr
    .word _start
"""
SIZE = 0x800000
MOMENTS = 24  # per signal
# A signal, and whether the linker gets to tidy up.
SIGNALS = {signal.SIGTERM: True, signal.SIGINT: True, signal.SIGHUP: True, signal.SIGQUIT: True, signal.SIGKILL: False}
# The two ways in which a file is written: laid out first, or complete in memory.
MODES = {"in place": [], "from memory": ["--no_symtable"]}


class Failed(Exception):
    pass


class Linker:
    def __init__(self, opts, name, mode):
        self.folder = opts.work / name.replace(" ", "_")
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        self.command = [str(opts.qvlink), str(opts.work / "big.o"), "-o", "out.elf", "--entry_point=_start",
                        "--unused_section_elimination=off", *MODES[mode]]

    def start(self, **kw):
        return subprocess.Popen(self.command, cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE, **kw)

    def left(self):
        return sorted(path.name for path in self.folder.iterdir())


def check_limit(opts, mode):
    """The limit of a file's size ends the process by a signal."""
    linker = Linker(opts, "limit", mode)
    limit = SIZE // 2
    process = linker.start(preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
    _, text = process.communicate(timeout=120)
    if process.returncode != 2 or b"exceeded the file size limit" not in text:
        raise Failed(f"limited size, {mode}: status {process.returncode}\n{text.decode()}")
    if linker.left():
        raise Failed(f"limited size, {mode}: the link left {linker.left()}")


def check_full_disk(opts, mode):
    """A file system with room for half of the file; left out where nobody may mount one."""
    linker = Linker(opts, "full", mode)
    script = f"mount -t tmpfs -o size={SIZE // 2} none . 2>/dev/null || exit 77; cd \"$PWD\"; \"$@\"; s=$?; ls; exit $s"
    done = subprocess.run(["unshare", "--user", "--map-root-user", "--mount", "sh", "-c", script, "sh", *linker.command],
                          cwd=linker.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120)
    if done.returncode == 77 or b"unshare" in done.stderr:
        print("full disk: not tried, no file system can be mounted here")
        return
    if done.returncode != 1 or b"No space left on device" not in done.stderr.replace(b"\n  ", b""):
        raise Failed(f"full disk, {mode}: status {done.returncode}\n{done.stderr.decode()}")
    if done.stdout:
        raise Failed(f"full disk, {mode}: the link left {done.stdout.decode()}")


def check_signal(opts, mode, sig, delay, whole, old):
    """Returns whether the signal came in time. `old`: what stands under the output's name, if anything."""
    linker = Linker(opts, "signal", mode)
    if old:
        (linker.folder / "out.elf").write_bytes(old)
    process = linker.start()
    time.sleep(delay)
    process.send_signal(sig)
    process.communicate(timeout=120)
    what = f"{signal.Signals(sig).name} after {delay * 1000:.1f} ms, {mode}"
    left = linker.left()
    if "out.elf" in left and (linker.folder / "out.elf").read_bytes() not in (whole, old or whole):
        raise Failed(f"{what}: out.elf is neither the whole file nor the old one")
    others = [name for name in left if name != "out.elf"]
    if others and SIGNALS[sig]:
        raise Failed(f"{what}: the link left {others}")
    if process.returncode == 0 and "out.elf" not in left:
        raise Failed(f"{what}: status 0 without an output file")
    return process.returncode != 0


def check_signals(opts, mode):
    linker = Linker(opts, "whole", mode)
    begin = time.monotonic()
    process = linker.start()
    _, text = process.communicate(timeout=120)
    duration = time.monotonic() - begin
    if process.returncode != 0:
        raise Failed(f"the undisturbed link ends with status {process.returncode}\n{text.decode()}")
    whole = (linker.folder / "out.elf").read_bytes()
    if len(whole) < SIZE:
        raise Failed(f"the undisturbed link wrote {len(whole)} bytes")
    for sig in SIGNALS:
        in_time = sum(check_signal(opts, mode, sig, duration * (i + 0.5) / opts.moments, whole, b"old" * (i % 2))
                      for i in range(opts.moments))
        if in_time == 0:
            raise Failed(f"{signal.Signals(sig).name}, {mode}: no signal came before the link had ended")
        print(f"{signal.Signals(sig).name}, {mode}: {in_time} of {opts.moments} in time")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--moments", type=int, default=MOMENTS, help="how often each signal is sent")
    opts = parser.parse_args()
    opts.qvlink, opts.work = opts.qvlink.resolve(), opts.work.resolve()
    opts.work.mkdir(parents=True, exist_ok=True)
    (opts.work / "big.s").write_text(SOURCE.format(words=SIZE // 8))
    subprocess.run([TOOL + "as", "big.s", "-o", "big.o"], cwd=opts.work, check=True)
    failures = 0
    for mode in MODES:
        for check in (check_limit, check_full_disk, check_signals):
            try:
                check(opts, mode)
            except Failed as e:
                failures += 1
                print(f"FAILED: {e}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
