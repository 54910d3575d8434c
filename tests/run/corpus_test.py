#!/usr/bin/env python3
"""The firmware that the benchmark generates is linked in each of its layouts by qvlink, GNU ld and lld: the programs have as
much code and constants, and print the same in QEMU. A checksum that a program prints depends on every function and variable
that it uses, calls over stubs and constructors among them."""
import argparse
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "bench"))
import gen_corpus  # noqa: E402
import run_bench  # noqa: E402


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--size", default="S", choices=gen_corpus.SIZES)
    opts = parser.parse_args()
    folder, failures = opts.work.resolve() / opts.size, 0
    gen_corpus.make(opts.size, folder)
    for layout in gen_corpus.LAYOUTS:
        outputs = {name: folder / f"{layout}.{name.replace(' ', '_')}.elf" for name in ("qvlink", "lld", "GNU ld")}
        for name, out in outputs.items():
            argv = [a.format(qvlink=opts.qvlink.resolve(), layout=layout, out=out) for a in run_bench.LINKERS[name]]
            run_bench.link(argv, folder, out)
            said = out.with_suffix(".log").read_text()
            if name == "qvlink" and said:
                failures += 1
                print(f"FAILED: {layout}: qvlink says\n{said}")
        for text in run_bench.faults(outputs):
            failures += 1
            print(f"FAILED: {layout}: {text}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
