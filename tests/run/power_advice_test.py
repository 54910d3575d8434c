#!/usr/bin/env python3
"""--advice:power tells what the build attributes say of low-power instructions and of ports."""
import argparse
import struct
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from elf_write import ALLOC, EXEC, ElfObject  # noqa: E402

LPM = "(ULP 1.1) Detected no uses of low power mode state changing instructions"
PORT = ("(ULP 4.1) Detected uninitialized Port %s in this project. Recommend initializing all unused ports to eliminate wasted "
        "current consumption on unused pins.")

# Attribute 326, attribute 327, options; what is told, with the severity
CASES = [
    (1, "", ["--advice:power"], [("remark", LPM)]),
    (2, "", ["--advice:power"], []),
    (0, "AbJ111010", ["--advice:power"], [("remark", PORT % "A"), ("remark", PORT % "J")]),
    (1, "A.7011110", ["--advice:power"], [("remark", LPM), ("remark", PORT % "2")]),
    (1, "A10", ["--advice:power=all", "--advice:power_severity=warning"], [("warning", LPM), ("warning", PORT % "A")]),
    (1, "A10", ["--advice:power", "--advice:power_severity=suppress"], []),
    (1, "A10", ["--advice:power=none"], []),
    (1, "A10", [], []),
    (None, None, ["--advice:power"], []),
]


def uleb(n):
    return bytes([n]) if n < 0x80 else bytes([n & 0x7F | 0x80]) + uleb(n >> 7)


def write_object(path, low_power, ports):
    elf = ElfObject()
    elf.symbol("_start", elf.section(".text", ALLOC | EXEC, bytes(4)), 0)
    if low_power is not None:
        tags = uleb(326) + uleb(low_power) + uleb(327) + ports.encode() + b"\0"
        body = b"QV\0" + bytes([1]) + struct.pack("<I", 5 + len(tags)) + tags
        elf.attributes += struct.pack("<I", 4 + len(body)) + body
    path.write_bytes(elf.bytes())


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    opts = parser.parse_args()
    opts.work.mkdir(parents=True, exist_ok=True)
    failures = 0
    for low_power, ports, options, told in CASES:
        write_object(opts.work / "a.o", low_power, ports)
        command = [opts.qvlink.resolve(), "a.o", "-e", "_start", "-o", "out.elf", "--diag_wrap=off", *options]
        done = subprocess.run(command, cwd=opts.work, capture_output=True, text=True)
        advice = [line for line in (done.stdout + done.stderr).splitlines() if "(ULP" in line]
        if done.returncode != 0 or advice != [f"{severity}: {text}" for severity, text in told]:
            failures += 1
            print(f"{low_power} {ports} {options}: status {done.returncode}\n{done.stdout}{done.stderr}")
    print(f"{len(CASES)} cases, {failures} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
