#!/usr/bin/env python3
"""The list of options without effect in docs/ARCHITECTURE.md is that of the sources: an option has an effect when some
file outside OPTIONGEN asks for its id. --update writes the list."""
import re
import sys
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
DOC = TOP / "docs/ARCHITECTURE.md"
BEGIN, END = "<!-- options without effect -->\n", "<!-- end -->"


def options_without_effect():
    names = re.findall(r'^OPTION\(\s*(\w+)\s*,\s*"([^"]+)"', (TOP / "src/OPTIONGEN/lnkopt.def").read_text(), re.M)
    if len(names) < 100:
        sys.exit("src/OPTIONGEN/lnkopt.def: the rows are not where this script looks for them")
    files = [f for f in (TOP / "src").rglob("*") if f.suffix in (".cpp", ".h") and "OPTIONGEN" not in f.parts]
    used = set(re.findall(r"\bOPT_(\w+)", "\n".join(f.read_text() for f in files)))
    return [f"`{name.split(chr(44))[0]}`" for option, name in names if option not in used]


def main():
    text = DOC.read_text()
    before, rest = text.split(BEGIN)
    old, after = rest.split(END)
    lines, line = [], ""
    for name in options_without_effect():
        if len(line) + len(name) > 115:
            lines.append(line)
            line = ""
        line += ("" if not line else " ") + name
    new = "\n".join([*lines, line]) + "\n"
    if "--update" in sys.argv:
        DOC.write_text(before + BEGIN + new + END + after)
        return 0
    if old != new:
        print(f"docs/ARCHITECTURE.md lists\n{old}\nbut the sources say\n{new}\nrun python3 {__file__} --update")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
