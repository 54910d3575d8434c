#!/usr/bin/env python3
"""The lists of options without effect in docs/ARCHITECTURE.md are those of the sources: an option has an effect when some
file outside OPTIONGEN asks for its id. Those whose row says NO_EFFECT never get one, those that say PENDING have none yet.
--update writes the lists, and takes PENDING out of rows that have come to be asked for."""
import re
import sys
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
DOC = TOP / "docs/ARCHITECTURE.md"
END = "<!-- end -->"
TABLE = TOP / "src/OPTIONGEN/lnkopt.def"
ROW = r'^OPTION\(\s*(\w+)\s*,\s*"([^"]+)".*?,\s*([A-Z_0 |]+),\s*\d{3},'


def options_without_effect():
    """Marks of the document with the long names of the options that belong behind them."""
    names = re.findall(ROW, TABLE.read_text(), re.M)
    if len(names) < 100:
        sys.exit(f"{TABLE}: the rows are not where this script looks for them")
    files = [f for f in (TOP / "src").rglob("*") if f.suffix in (".cpp", ".h") and "OPTIONGEN" not in f.parts]
    used = set(re.findall(r"\bOPT_(\w+)", "\n".join(f.read_text() for f in files)))
    contradictions = [option for option, _, flags in names if "NO_EFFECT" in flags and option in used]
    if contradictions:
        sys.exit("these options say NO_EFFECT but have one: " + " ".join(contradictions))
    if "--update" in sys.argv:
        take_out_pending(used)
        names = re.findall(ROW, TABLE.read_text(), re.M)
    for option, name, flags in names:
        if ("PENDING" in flags) != (option not in used and "NO_EFFECT" not in flags):
            sys.exit(f"{TABLE}: {name} " + ("is asked for, but its row says PENDING: run this script with --update"
                                            if option in used else "has no effect, but its row doesn't say PENDING"))
    idle = [(f"`{name.split(chr(44))[0]}`", "NO_EFFECT" in flags) for option, name, flags in names if option not in used]
    return {"<!-- options without effect -->\n": [name for name, never in idle if not never],
            "<!-- options that never have an effect -->\n": [name for name, never in idle if never]}


def take_out_pending(used):
    def row(match):
        if match[1] not in used:
            return match[0]
        return match[0].replace(" | PENDING", "").replace(", PENDING,", ", 0,")
    TABLE.write_text(re.sub(ROW, row, TABLE.read_text(), flags=re.M))


def wrapped(names):
    lines, line = [], ""
    for name in names:
        if len(line) + len(name) > 115:
            lines.append(line)
            line = ""
        line += ("" if not line else " ") + name
    return "\n".join([*lines, line]) + "\n"


def main():
    text = DOC.read_text()
    status = 0
    for mark, names in options_without_effect().items():
        before, rest = text.split(mark)
        old, after = rest.split(END, 1)
        new = wrapped(names)
        if old != new and "--update" not in sys.argv:
            print(f"docs/ARCHITECTURE.md lists\n{old}\nbut the sources say\n{new}\nrun python3 {__file__} --update")
            status = 1
        text = before + mark + new + END + after
    if "--update" in sys.argv:
        DOC.write_text(text)
    return status


if __name__ == "__main__":
    sys.exit(main())
