#!/usr/bin/env python3
"""Links every example of the chapters of docs/ and compares the outcome with what the chapter states.

A fenced block of the chapter belongs to the comment line in front of it:

    <!-- objects NAME... -->      no block: what the chapter's examples link
    <!-- file NAME -->            the block is a file; *.s are assembled
    <!-- archive NAME MEMBER... -->   no block: an archive of what was assembled
    <!-- example ARGS... -->      the block is app.cmd; it is linked behind the objects, board.cmd and the
                                  arguments. One with a MEMORY directive gets only the options of board.cmd

    <!-- map -->                  lines that the map file of the example before has, in that order
    <!-- source FILE -->          the block is part of that file of the repository

Behind an example, up to the next one, stand what must come out: tables (their first heading says of what: `section` with
`address`, `size`, `loaded at`, `bytes`, or `symbol` with `value`) and a block in ```text``` with the messages, exact but
for the wrapping. Without such a block there are no messages. A section or symbol that is told as `none` isn't there.
A block that nothing claims is an error, so that no example goes unchecked.
"""
import argparse
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests/support"))
from elf import Elf  # noqa: E402

PT_LOAD = 1
CHAPTERS = [ROOT / "docs/command-files.md", ROOT / "docs/load-data.md"]


class Example:
    def __init__(self, line, args, text):
        self.line, self.args, self.text = line, args, text
        self.tables, self.messages, self.map = [], "", []


def cells(line):
    return [c.strip().strip("`") for c in line.strip().strip("|").split("|")]


def read(path):
    """(objects, {file: text}, [(archive, members)], [Example])"""
    objects, files, archives, examples, tag, table = [], {}, [], [], None, None
    lines = iter(enumerate(path.read_text().splitlines(), 1))
    for number, line in lines:
        if found := re.fullmatch(r"<!-- (\w+) ?(.*) -->", line):
            tag = (found[1], found[2].split())
            if tag[0] == "objects":
                objects = tag[1]
            if tag[0] == "archive":
                archives.append((tag[1][0], tag[1][1:]))
                tag = None
        elif line.startswith("```"):
            block = []
            for _, inner in lines:
                if inner.startswith("```"):
                    break
                block.append(inner + "\n")
            text = "".join(block)
            if tag and tag[0] == "file":
                files[tag[1][0]] = text
            elif tag and tag[0] == "example":
                examples.append(Example(number, tag[1], text))
            elif tag and tag[0] == "map" and examples:
                examples[-1].map += block
            elif tag and tag[0] == "source":
                if text not in (ROOT / tag[1][0]).read_text():
                    sys.exit(f"{path}:{number}: {tag[1][0]} has no such lines")
            elif line == "```text" and examples and not examples[-1].messages:
                examples[-1].messages = text
            else:
                sys.exit(f"{path}:{number}: a block that belongs to no example")
            tag = None
        elif not line.startswith("|"):
            table = None
        elif table is None:
            table = (cells(line), [])
            if examples and table[0][0] in ("section", "symbol"):
                examples[-1].tables.append(table)
        elif not set(line) <= set("|-: "):
            table[1].append((number, cells(line)))
    return objects, files, archives, examples


def prepare(files, archives, work):
    for name, text in files.items():
        (work / name).write_text(text)
        if name.endswith(".s"):
            subprocess.run(["arm-none-eabi-as", "-mcpu=cortex-m3", name, "-o", name[:-2] + ".o"], cwd=work, check=True)
    for name, members in archives:
        (work / name).unlink(missing_ok=True)
        subprocess.run(["arm-none-eabi-ar", "rc", name, *members], cwd=work, check=True)
    (work / "options.cmd").write_text(files["board.cmd"].partition("MEMORY")[0])


def words(text):
    return " ".join(text.split())


def loaded_at(elf, section):
    for s in elf.segments:
        if s.type == PT_LOAD and s.offset <= section.offset < s.offset + s.filesz:
            return s.paddr + section.offset - s.offset
    return section.addr


def actual(elf, kind, name, column):
    """What the output says of a section or symbol, in the way of the column's other cells."""
    if kind == "symbol":
        symbol = elf.symbol(name)
        return None if symbol is None else symbol.value
    section = elf.section(name)
    if section is None:
        return None
    if column == "bytes":
        return section.data.hex()
    return {"address": section.addr, "size": section.size, "loaded at": loaded_at(elf, section)}[column]


def compare(elf, table):
    heading, rows = table
    for number, row in rows:
        for column, cell in zip(heading[1:], row[1:]):
            value = actual(elf, heading[0], row[0], column)
            if cell == "none":
                wanted = None
            elif column == "bytes":
                wanted = cell.replace(" ", "")
            else:
                wanted = int(cell, 0)
            if value != wanted:
                got = value if value is None or isinstance(value, str) else f"{value:#x}"
                yield f"line {number}: {row[0]}: {column} is {got}, not {cell}"


def missing_from_map(work, lines):
    """The lines that the map file doesn't have behind those before."""
    have = iter(words(line) for line in (work / "out.map").read_text(encoding="latin-1").splitlines())
    return [line for line in lines if not any(words(line) == other for other in have)]


def link(example, objects, qvlink, work):
    out = work / "out.elf"
    out.unlink(missing_ok=True)
    (work / "app.cmd").write_text(example.text)
    board = "options.cmd" if re.search(r"^MEMORY", example.text, re.M) else "board.cmd"
    done = subprocess.run([qvlink, *objects, board, *example.args, "app.cmd", "-o", "out.elf", "--map_file=out.map"], cwd=work, timeout=60,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    faults = []
    if words(done.stdout) != words(example.messages):
        faults.append("messages are\n" + done.stdout)
    failed = "error:" in example.messages
    if (done.returncode != 0) != failed or out.exists() == failed:
        faults.append(f"status {done.returncode}, output {'written' if out.exists() else 'not written'}")
    elif not failed:
        elf = Elf(out)
        for table in example.tables:
            faults += compare(elf, table)
        faults += [f"the map has no line\n{line}" for line in missing_from_map(work, example.map)]
    return faults


def check_chapter(chapter, qvlink, work):
    """The number of examples that came out otherwise than the chapter says."""
    objects, files, archives, examples = read(chapter)
    prepare(files, archives, work)
    bad = 0
    for example in examples:
        faults = link(example, objects, str(Path(qvlink).resolve()), work)
        bad += bool(faults)
        for fault in faults:
            print(f"{chapter}:{example.line}: {fault}")
    if not examples:
        sys.exit(f"{chapter} has no examples")
    print(f"{chapter.name}: {len(examples)} examples, {bad} wrong")
    return bad


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True)
    parser.add_argument("--work", required=True)
    parser.add_argument("chapters", nargs="*", type=Path, default=CHAPTERS)
    options = parser.parse_args()
    work = Path(options.work)
    work.mkdir(parents=True, exist_ok=True)
    sys.exit(sum(check_chapter(c, options.qvlink, work) for c in options.chapters) != 0)


if __name__ == "__main__":
    main()
