#!/usr/bin/env python3
"""The reports of small programs, compared byte for byte with the files beside them.

golden/NAME.t is a program in the form of tests/support/linktest.py, with one link. Each golden/NAME.SUFFIX is what that
link writes to out.SUFFIX; the case itself fixes the time. --update writes the files anew, to be read before they are
committed.
"""
import argparse
import difflib
import shutil
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
import linktest  # noqa: E402

SUFFIXES = (".map", ".xml")


def reports_of(program, opts):
    """Links a program; {suffix: the report's text}."""
    shared, cases = linktest.split_cases(linktest.parse(program)[1])
    if len(cases) != 1:
        raise linktest.Failure("one program is one link")
    name, own = cases[0]
    work = opts.work / program.stem
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    for head, body, _ in shared + own:
        if head[0] not in linktest.CHECKS:
            linktest.make_input(head, body, work)
    linktest.Case(name, own, shared, opts, work).run()
    return {s: (work / f"out{s}").read_text(encoding="latin-1") for s in SUFFIXES if (work / f"out{s}").exists()}


def compare(program, reports, update):
    """What differs, as text."""
    differences = []
    for suffix in SUFFIXES:
        golden, text = program.with_suffix(suffix), reports.get(suffix, "")
        if update and text:
            golden.write_text(text, encoding="latin-1")
        expected = golden.read_text(encoding="latin-1") if golden.exists() else ""
        differences += difflib.unified_diff(expected.splitlines(True), text.splitlines(True), str(golden), "now")
    return "".join(differences)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--qvlink", required=True, type=lambda p: str(Path(p).resolve()))
    parser.add_argument("--work", required=True, type=lambda p: Path(p).resolve())
    parser.add_argument("--update", action="store_true")
    opts = parser.parse_args()
    opts.additive = False
    programs = sorted((HERE / "golden").glob("*.t"))
    failures = [] if programs else ["no programs"]
    for program in programs:
        try:
            reports = reports_of(program, opts)
            difference = compare(program, reports, opts.update)
            if difference or not reports:
                failures.append(f"{program.name}:\n{difference or 'no report'}")
        except (linktest.Failure, ValueError) as e:
            failures.append(f"{program.name}: {e}")
    for failure in failures:
        print(f"FAILED: {failure}")
    print(f"{len(programs)} programs, {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
