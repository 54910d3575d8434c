#!/usr/bin/env python3
"""Checks every include of src against docs/layers.txt: a header looks into its own folder or to lower floors, a .cpp also
to its neighbours on its floor, and upwards only along the edges that the file lists with their reasons; an edge that
nothing uses is an error too."""
import re
import sys
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def read_layers():
    floors, edges = {}, {}
    for number, line in enumerate((TOP / "docs/layers.txt").read_text().splitlines(), 1):
        line = line.split("#")[0].strip()
        if not line:
            continue
        if "->" in line:
            match = re.fullmatch(r"(\S+)\s*->\s*(\S+)\s*:\s*(\S.*)", line)
            if not match:
                sys.exit(f"docs/layers.txt:{number}: an edge is FROM -> TO : reason")
            edges[match[1], match[2]] = number
        else:
            folder, floor = line.split()
            floors[folder] = int(floor)
    return floors, edges


def folder_of(path, floors):
    """The longest folder of the table that the path lies in."""
    found = [f for f in floors if path == f or path.startswith(f + "/")]
    return max(found, key=len) if found else None


def main():
    floors, edges = read_layers()
    errors, used = [], set()
    for source in sorted((TOP / "src").rglob("*")):
        if source.suffix not in (".h", ".cpp", ".inc", ".def"):
            continue
        name = source.relative_to(TOP / "src").as_posix()
        own = folder_of(name, floors)
        if own is None:
            errors.append(f"{name}: its folder is not in docs/layers.txt")
            continue
        for included in INCLUDE.findall(source.read_text()):
            other = folder_of(included, floors)
            if other is None:
                errors.append(f"{name}: includes {included}, which is no path below src that docs/layers.txt knows")
            elif other == own or floors[other] < floors[own]:
                continue
            elif source.suffix == ".cpp" and floors[other] == floors[own]:
                continue
            elif source.suffix == ".cpp" and (own, other) in edges:
                used.add((own, other))
            else:
                errors.append(f"{name}: {own} (floor {floors[own]}) includes {included} (floor {floors[other]})")
    errors += [f"docs/layers.txt:{line}: no .cpp of {a} includes {b} any more"
               for (a, b), line in edges.items() if (a, b) not in used]
    print("\n".join(errors) or "the floors hold")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
