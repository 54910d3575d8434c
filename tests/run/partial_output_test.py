#!/usr/bin/env python3
"""A link that cannot end leaves nothing that could be taken for its output.

The disk is full, the size of a file is limited, or a signal comes at any moment: under the output's name there is either
nothing, or what stood there before, or the whole file, and where the linker can still act, nothing else is left either. A
symbolic link under that name leads to the new file, and a pipe gets the whole of it. The program that is linked is large,
so that much of the link is writing, and most of the moments lie there.

    partial_output_test.py --qvlink build/release/qvlink --work /tmp/partial --in build/bench/L inputs.cmd base.cmd

does the same with other inputs than its own: the rest of the command line, seen from that folder.
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
SIZE = 0x1000000
MOMENTS = {signal.SIGKILL: 260}  # how often a signal is sent, some of them too late, or:
OTHER_MOMENTS = 24
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
        self.inputs = opts.folder
        self.out = self.folder / "out.elf"
        self.command = [str(opts.qvlink), *opts.arguments, *MODES[mode], "-o", str(self.out)]

    def start(self, **kw):
        return subprocess.Popen(self.command, cwd=self.inputs, stdout=subprocess.PIPE, stderr=subprocess.PIPE, **kw)

    def left(self):
        return sorted(path.name for path in self.folder.iterdir())


def check_limit(opts, mode, whole):
    """The limit of a file's size ends the process by a signal."""
    linker = Linker(opts, "limit", mode)
    limit = len(whole) // 2
    process = linker.start(preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
    _, text = process.communicate(timeout=120)
    if process.returncode != 2 or b"exceeded the file size limit" not in text:
        raise Failed(f"limited size, {mode}: status {process.returncode}\n{text.decode()}")
    if linker.left():
        raise Failed(f"limited size, {mode}: the link left {linker.left()}")


def check_full_disk(opts, mode, whole):
    """A file system with room for half of the file; left out where nobody may mount one."""
    linker = Linker(opts, "full", mode)
    script = 'mount -t tmpfs -o size=$0 none "$1" 2>/dev/null || exit 77; f=$1; shift; "$@"; s=$?; ls "$f"; exit $s'
    done = subprocess.run(["unshare", "--user", "--map-root-user", "--mount", "sh", "-c", script, str(len(whole) // 2),
                           str(linker.folder), *linker.command], cwd=linker.inputs, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120)
    if done.returncode == 77 or b"unshare" in done.stderr:
        print("full disk: not tried, no file system can be mounted here")
        return
    if done.returncode != 1 or b"No space left on device" not in done.stderr.replace(b"\n  ", b""):
        raise Failed(f"full disk, {mode}: status {done.returncode}\n{done.stderr.decode()}")
    if done.stdout:
        raise Failed(f"full disk, {mode}: the link left {done.stdout.decode()}")


def check_signal(opts, mode, sig, delay, writes, whole, old):
    """Returns whether the signal came in time. The delay, in seconds, counts from the moment when the link begins to write
    its output, or else from its start; `old`: what stands under the output's name, if anything."""
    linker = Linker(opts, "signal", mode)
    if old:
        linker.out.write_bytes(old)
    process = linker.start()
    while writes and process.poll() is None and linker.left() in ([], ["out.elf"]):
        time.sleep(0.0005)
    time.sleep(delay)
    process.send_signal(sig)
    process.communicate(timeout=120)
    what = f"{signal.Signals(sig).name} {delay * 1000:.1f} ms after its {'output' if writes else 'link'} began, {mode}"
    left = linker.left()
    if "out.elf" in left and linker.out.read_bytes() not in (whole, old or whole):
        raise Failed(f"{what}: out.elf is neither the whole file nor the old one")
    others = [name for name in left if name != "out.elf"]
    if others and SIGNALS[sig]:
        raise Failed(f"{what}: the link left {others}")
    if process.returncode == 0 and "out.elf" not in left:
        raise Failed(f"{what}: status 0 without an output file")
    return process.returncode != 0


def check_link_and_pipe(opts, mode, whole):
    """A symbolic link stays, and the file behind it is the new one; a pipe carries the same bytes."""
    linker = Linker(opts, "names", mode)
    real = linker.folder / "real.elf"
    real.write_bytes(b"old")
    linker.out.symlink_to("real.elf")
    subprocess.run(linker.command, cwd=linker.inputs, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=120)
    if not linker.out.is_symlink() or real.read_bytes() != whole or linker.left() != ["out.elf", "real.elf"]:
        raise Failed(f"a link as output, {mode}: the link left {linker.left()}")
    linker.out.unlink()
    os.mkfifo(linker.out)
    process = subprocess.Popen(linker.command, cwd=linker.inputs, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    got = subprocess.run(["cat", str(linker.out)], stdout=subprocess.PIPE, timeout=120).stdout
    if process.wait(timeout=120) != 0 or got != whole:
        raise Failed(f"a pipe as output, {mode}: status {process.returncode}, {len(got)} of {len(whole)} bytes")


def undisturbed(opts, mode):
    """The file, and when the linker began to write it and had ended, in seconds from its start."""
    linker = Linker(opts, "whole", mode)
    begin = time.monotonic()
    process = linker.start()
    while process.poll() is None and not linker.left():
        time.sleep(0.0005)
    writing = time.monotonic() - begin
    _, text = process.communicate(timeout=120)
    duration = time.monotonic() - begin
    if process.returncode != 0:
        raise Failed(f"the undisturbed link ends with status {process.returncode}\n{text.decode()}")
    return linker.out.read_bytes(), writing, duration


def check_signals(opts, mode, whole, writing, duration):
    for sig in SIGNALS:
        moments = MOMENTS.get(sig, OTHER_MOMENTS)
        in_time, pace = 0, 1.0  # how fast links go now, to the undisturbed one: others may have used the machine then
        for i in range(moments):
            # One in four comes before there is anything to write.
            writes = i % 4 != 0
            at = (duration - writing if writes else writing) * (i + 0.5) / moments
            if check_signal(opts, mode, sig, at * pace, writes, whole, b"old" * (i % 2)):
                in_time += 1
                pace *= 1.03
            else:
                pace *= 0.9
        shutil.rmtree(opts.work / "signal")
        if in_time < moments // 4:
            raise Failed(f"{signal.Signals(sig).name}, {mode}: {in_time} of {moments} signals came before the link had ended")
        print(f"{signal.Signals(sig).name}, {mode}: {in_time} of {moments} in time")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--in", dest="folder", type=Path, help="where the arguments name files")
    parser.add_argument("arguments", nargs="*", help="the inputs, instead of a program of the test's own")
    opts = parser.parse_args()
    opts.qvlink, opts.work = opts.qvlink.resolve(), opts.work.resolve()
    opts.work.mkdir(parents=True, exist_ok=True)
    opts.folder = (opts.folder or opts.work).resolve()
    for sig in SIGNALS:  # whoever started the test may ignore some, which the linker would inherit
        if sig != signal.SIGKILL:
            signal.signal(sig, signal.SIG_DFL)
    if not opts.arguments:
        (opts.work / "big.s").write_text(SOURCE.format(words=SIZE // 8))
        subprocess.run([TOOL + "as", "big.s", "-o", "big.o"], cwd=opts.work, check=True)
        opts.arguments = ["big.o", "--entry_point=_start", "--unused_section_elimination=off"]
    failures = 0
    for mode in MODES:
        # Others may be at work on the machine: the quickest of some.
        whole, writing, duration = min((undisturbed(opts, mode) for _ in range(5)), key=lambda link: link[2])
        print(f"{mode}: {len(whole)} bytes, written from {writing:.3f} to {duration:.3f} s")
        for check, times in ((check_link_and_pipe, ()), (check_limit, ()), (check_full_disk, ()),
                             (check_signals, (writing, duration))):
            try:
                check(opts, mode, whole, *times)
            except Failed as e:
                failures += 1
                print(f"FAILED: {e}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
