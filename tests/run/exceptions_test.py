#!/usr/bin/env python3
"""Unwinding: the index of examples/exceptions says of every function what the one of GNU ld's link says, its symbols can be
had in each way, and it may be long or lie at the top of the RAM."""
import argparse
import bisect
import struct
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parents[1] / "examples"), str(HERE), str(HERE.parent / "support")]
import run  # noqa: E402
from elf import Elf  # noqa: E402
from examples_test import peer_link  # noqa: E402

NAME = "exceptions"
BY_OPERATORS = ".ARM.exidx  : {} > FLASH, RUN_START(__exidx_start), RUN_END(__exidx_end)"
CANTUNWIND = 1
# The index is made for what the program reaches. What only the index itself reaches stays without an entry of its own: the
# personality, which unwinding calls and never goes through.
BY_INDEX_ONLY = {"__gxx_personality_v0", "_ZL17parse_lsda_headerP15_Unwind_ContextPKhP16lsda_header_info",
                 "_ZL28read_encoded_value_with_basehjPKhPj", "_ZL21base_of_encoded_valuehP15_Unwind_Context"}


class Index:
    """The table of a program: sorted starts, and what each entry says."""

    def __init__(self, path):
        self.elf = Elf(path)
        table = self.elf.section(".ARM.exidx")
        words = struct.unpack(f"<{len(table.data) // 4}I", table.data)
        self.starts = [self.prel31(words[i], table.addr + 4 * i) for i in range(0, len(words), 2)]
        self.says = words[1::2]
        if self.starts != sorted(set(self.starts)):
            raise run.Failed(f"{path}: the index does not ascend")

    @staticmethod
    def prel31(word, place):
        return (place + ((word & 0x7FFFFFFF) ^ 0x40000000) - 0x40000000) & 0xFFFFFFFF

    def functions(self):
        """What is said of each function whose name only one has."""
        said = {}
        for s in self.elf.symbols:
            if s.type == "FUNC" and s.section == ".text":
                at = bisect.bisect_right(self.starts, s.value & ~1) - 1
                word = self.says[at] if at >= 0 else None
                kind = word if word == CANTUNWIND or word is None or word >> 31 else "table"
                said[s.name] = kind if s.name not in said else None
        return {name: kind for name, kind in said.items() if kind is not None}


def compare(ours, theirs):
    mine, peer = ours.functions(), theirs.functions()
    both = (mine.keys() & peer.keys()) - BY_INDEX_ONLY
    if len(both) < 100:
        raise run.Failed(f"only {len(both)} functions to compare")
    wrong = {name: (mine[name], peer[name]) for name in both if mine[name] != peer[name]}
    if wrong:
        raise run.Failed(f"the index says something else than that of GNU ld (here, there): {wrong}")
    text = ours.elf.section(".text")
    if ours.starts[0] > text.addr or ours.starts[-1] > text.addr + text.size:
        raise run.Failed("the index does not span the code")


def link(opts, name, command_file):
    """Links the example with another command file; what it prints."""
    path, out = opts.work / f"{name}.cmd", opts.work / f"{name}.elf"
    path.write_text(command_file)
    objects = [opts.work / (Path(s).stem + ".o") for s in run.PROGRAMS[NAME]["sources"]]
    archives = [opts.work / a for a in run.PROGRAMS[NAME]["archives"]]
    said = run.run([opts.qvlink, *objects, "--start-group", *archives, "--end-group", path, "-o", out])
    if said:
        raise run.Failed(f"{name}: {said}")
    return run.run_in_qemu(out, run.machine_of(NAME))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=Path)
    parser.add_argument("--work", required=True, type=Path)
    opts = parser.parse_args()
    elf = run.build(NAME, opts.qvlink, opts.work)
    compare(Index(elf), Index(peer_link(NAME, opts.work)))
    expected = (run.HERE / NAME / "expected.txt").read_text()
    command_file = (run.HERE / NAME / "link.cmd").read_text()
    if BY_OPERATORS not in command_file:
        raise run.Failed("link.cmd has changed")
    by_symbols = command_file.replace(BY_OPERATORS, ".ARM.exidx : {} > FLASH").replace(
        "SECTIONS\n", "__exidx_start = __QV_UNWIND_TABLE_START;\n__exidx_end = __QV_UNWIND_TABLE_END;\nSECTIONS\n", 1)
    cases = {"by_symbols": by_symbols,
             "long": command_file + "--disable:exidx_opt\n",
             "in_ram": command_file.replace(BY_OPERATORS, BY_OPERATORS.replace("> FLASH", "> RAM (HIGH)"))}
    for name, text in cases.items():
        printed = link(opts, name, text)
        if printed != expected:
            raise run.Failed(f"{name}: printed\n{printed}")


if __name__ == "__main__":
    try:
        main()
    except run.Failed as e:
        sys.exit(f"FAILED: {e}")
