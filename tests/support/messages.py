#!/usr/bin/env python3
"""Every row of the message tables is raised by some file of the sources, or src/DIAG/tables/unraised.txt lists it below
the feature that is to raise it. --update takes out of the list what is raised by now, or has no row any more."""
import re
import sys
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
TABLES = TOP / "src/DIAG/tables"
LIST = TABLES / "unraised.txt"
WIDTH = 115


def rows():
    found = [name for table in sorted(TABLES.glob("*.def"))
             for name in re.findall(r"^DIAG_MSGV?\(\s*\d+,\s*(\w+)", table.read_text(), re.M)]
    if len(found) < 300:
        sys.exit(f"{TABLES}: the rows are not where this script looks for them")
    return found


def raised(names):
    """The names that occur in code: comments do not raise anything."""
    words = set()
    for file in (TOP / "src").rglob("*"):
        if file.suffix in (".cpp", ".h", ".inc"):
            words.update(re.findall(r"\w+", re.sub(r"//.*", "", file.read_text())))
    return words & set(names)


def listed():
    """The list as (feature, names) pairs, with the comment at its head."""
    head, features = [], []
    for line in LIST.read_text().splitlines():
        if line.startswith("#"):
            head.append(line)
        elif line.startswith(" "):
            features[-1][1].extend(line.split())
        elif line:
            features.append((line, []))
    return head, features


def write(head, features, keep):
    text = "\n".join(head) + "\n"
    for feature, names in features:
        names = [name for name in names if name in keep]
        if not names:
            continue
        text += f"\n{feature}\n"
        line = "   "
        for name in names:
            if len(line) + len(name) >= WIDTH:
                text += line + "\n"
                line = "   "
            line += " " + name
        text += line + "\n"
    LIST.write_text(text)


def check():
    """What is wrong, a line each; (faults, entries of the list that are out of date)."""
    names = rows()
    silent = set(names) - raised(names)
    _, features = listed()
    entries = [name for _, found in features for name in found]
    faults = [f"{name}: nothing raises this message; raise it, list it in {LIST.name} below its feature, or remove its row"
              for name in names if name in silent and name not in entries]
    faults += [f"{LIST.name} lists {name} twice" for name in sorted({e for e in entries if entries.count(e) > 1})]
    return faults, [name for name in entries if name not in silent]


def main():
    faults, stale = check()
    if "--update" in sys.argv:
        head, features = listed()
        write(head, features, {e for _, found in features for e in found} - set(stale))
    elif stale:
        print(f"raised by now, to be taken out of {LIST.name} (--update): " + " ".join(stale))
    print("\n".join(faults) or "every row of the message tables is raised or listed")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
