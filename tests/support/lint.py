#!/usr/bin/env python3
"""What ./dev lint checks: format, the direction of includes, the message tables, clang-tidy.

clang-tidy takes minutes; without arguments it looks at the files that differ from HEAD, with --all at every file. It
reads build/debug/compile_commands.json.
"""
import argparse
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
import messages  # noqa: E402

TOP = Path(__file__).resolve().parents[2]


def out(*command):
    return subprocess.run(command, cwd=TOP, stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout.decode()


def tracked(*patterns):
    return [TOP / name for name in out("git", "ls-files", *patterns).splitlines() if (TOP / name).exists()]


def check_format():
    files = [str(f) for f in tracked("src/*.h", "src/*.cpp", "tests/*.h", "tests/*.cpp")]
    text = out("clang-format", "--dry-run", "-Werror", "--ferror-limit=1", *files)
    return sorted({line.split(":")[0] + ": run ./dev format" for line in text.splitlines() if "error:" in line})


def check_layers():
    done = subprocess.run([sys.executable, TOP / "tests/support/layers.py"], stdout=subprocess.PIPE)
    return done.stdout.decode().splitlines() if done.returncode else []


def check_messages():
    """A row of the message tables is raised somewhere, or listed with the feature that is to raise it."""
    faults, stale = messages.check()
    return faults + [f"{name}: raised by now; run tests/support/messages.py --update" for name in stale]


def check_tidy(everything):
    files = tracked("src/*.cpp") if everything else [TOP / f for f in out("git", "diff", "--name-only", "HEAD").split()
                                                     if f.endswith(".cpp") and f.startswith("src/")]
    return [line for f in files for line in out("clang-tidy", "-quiet", "-p", "build/debug", str(f)).splitlines()
            if "error:" in line or "warning:" in line and "warnings generated" not in line]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--all", action="store_true", help="clang-tidy looks at every file")
    opts = parser.parse_args()
    errors = check_format() + check_layers() + check_messages() + check_tidy(opts.all)
    print("\n".join(errors) or "nothing to say")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
