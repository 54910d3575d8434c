#!/usr/bin/env python3
"""Runs one link test: a text file that holds the inputs, the arguments and what must come out.

    A sentence that says the rule.
    --- a.s                        an input; options of the assembler or compiler may follow: --- a.c -mcpu=cortex-a15
                                   assembly gets the attribute that says it preserves alignment; `raw`: it doesn't
    --- link.cmd                   any other name is written as it stands
    --- script tool                the same, and the file can be run
    --- archive lib.a x.o y.o      an archive of objects built from inputs above; NAME=FILE: a member of another name
    --- hex junk.bin               a file of bytes in hexadecimal, blanks and # comments ignored
    --- truncate a.o 40            cuts a file that exists;  --- patch a.o 0x20 FFFF  overwrites bytes of it
    --- case NAME                  what follows, up to the next case, is one link; parts above are shared by all
    --- args                       the arguments of the linker
    --- env                        NAME=value lines for its environment
    --- exit                       the status, 0 if not given
    --- stdout, --- stderr         the text, exact; with `re` a regular expression for the whole, with `has` each line
                                   must occur, in that order; stderr must be empty if not given
    --- text FILE [has|re]         the same for a file that the link writes (a map, for example); `lacks`: no line occurs
    --- sym                        NAME VALUE [SECTION] a line, in out.elf; VALUE may be -: there is no such symbol
    --- section                    NAME ADDRESS SIZE a line; ADDRESS may be -: there is no such section
    --- segments                   TYPE VADDR PADDR FILESZ MEMSZ FLAGS a line, all program headers
    --- entry                      the entry point
    --- bytes SECTION              its content in hexadecimal
    --- dis SECTION                each line occurs in its disassembly, in that order (blanks count as one)
    --- readelf ARGS               each line occurs in the output of readelf, in that order (blanks count as one)
    --- elflint                    eu-elflint finds nothing
    --- file NAME, --- no-file NAME   the link leaves this file, or doesn't
    --- run MACHINE                the text that the program prints in QEMU, by semihosting

The output that sym, section and so on look at is out.elf. On failure the test prints what was expected, what came,
and the command that runs it again. -k keeps going to the next case. --additive links each case again with the options beside the table, to the same
result.
"""
import argparse
import difflib
import os
import re
import shlex
import shutil
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent))
from elf import Elf  # noqa: E402

TOOLS = "arm-none-eabi-"
CHECKS = {"args", "env", "exit", "stdout", "stderr", "text", "sym", "section", "segments", "entry", "bytes", "dis",
          "readelf", "elflint", "file", "no-file", "run"}
ONCE = {"args", "env", "exit", "stdout", "stderr", "segments", "entry"}
# What a compiler says of its code and hand-written assembly has to say itself: the stack stays aligned to 8 bytes.
PROMISE = ".eabi_attribute 25, 1\n"
QEMU = {"mps2-an385": "cortex-m3", "mps2-an386": "cortex-m4", "mps2-an505": "cortex-m33", "virt": "cortex-a15",
        "vexpress-a9": "cortex-a9"}


class Failure(Exception):
    pass


def parse(path):
    return parse_text(path.read_text())


def parse_text(text):
    """A test as (sentence, [(head words, body lines, line number)])."""
    sentence, parts = [], []
    for number, line in enumerate(text.splitlines(), 1):
        if line.startswith("--- "):
            parts.append(([*line[4:].split()] if line.startswith("--- case ") else shlex.split(line[4:]), [], number))
        elif parts:
            parts[-1][1].append(line)
        else:
            sentence.append(line)
    if not any(s.strip() for s in sentence):
        raise Failure("a test begins with a sentence that says the rule")
    return "\n".join(sentence), parts


def command(args, cwd, **kw):
    return subprocess.run(args, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL, **kw)


def must(args, cwd):
    done = command(args, cwd)
    if done.returncode:
        raise Failure(f"{shlex.join(args)}: {done.stderr.decode()}")


def body_text(body):
    while body and not body[-1].strip():
        body = body[:-1]
    return "".join(line + "\n" for line in body)


def hex_bytes(lines):
    return bytes.fromhex("".join(line.split("#")[0] for line in lines).replace(" ", ""))


def make_input(head, body, work):
    """Writes the input that a part holds, and builds an object where it is a source."""
    kind, rest = head[0], head[1:]
    if kind == "archive":
        must([TOOLS + "ar", "rc", *(member_file(r, work) for r in rest)], work)
    elif kind == "script":
        (work / rest[0]).write_text(body_text(body))
        (work / rest[0]).chmod(0o755)
    elif kind == "hex":
        (work / rest[0]).write_bytes(hex_bytes(body))
    elif kind == "truncate":
        os.truncate(work / rest[0], int(rest[1], 0))
    elif kind == "patch":
        with open(work / rest[0], "r+b") as f:
            f.seek(int(rest[1], 0))
            f.write(bytes.fromhex(rest[2]))
    else:
        path = work / kind
        path.parent.mkdir(parents=True, exist_ok=True)
        text = body_text(body)
        if path.suffix in (".s", ".S") and "raw" not in rest:
            text += PROMISE
        rest = [r for r in rest if r != "raw"]
        path.write_text(text)
        if path.suffix in (".s", ".S", ".c", ".cpp"):
            compile_source(kind, rest, work)


def member_file(argument, work):
    """The argument of the archiver; NAME=FILE is a copy of the file under that name."""
    name, mark, file = argument.partition("=")
    if not mark or argument.startswith("-"):
        return argument
    (work / "members").mkdir(exist_ok=True)
    shutil.copyfile(work / file, work / "members" / name)
    return "members/" + name


def compile_source(name, options, work):
    out = str(Path(name).with_suffix(".o"))
    if not any(o.startswith(("-mcpu", "-march")) for o in options):
        options = ["-mcpu=cortex-m3", "-mthumb", *options]
    if "clang" in options:
        options.remove("clang")
        must(["clang", "--target=arm-none-eabi", "-c", *options, "-o", out, name], work)
    else:
        tool = "g++" if name.endswith(".cpp") else "gcc"
        must([TOOLS + tool, "-c", "-O1", "-ffunction-sections", "-fdata-sections", "-fno-exceptions",
              "-fno-unwind-tables", "-fno-asynchronous-unwind-tables", *options, "-o", out, name], work)


def squeeze(line):
    return " ".join(line.split())


def compare_text(what, mode, expected, actual):
    if mode == "re":
        if not re.search(expected.rstrip("\n"), actual, re.S | re.M):
            raise Failure(f"{what}: no match of\n{expected}--- in ---\n{actual}")
    elif mode == "has":
        in_order(what, expected.splitlines(), actual.splitlines())
    elif mode == "lacks":
        for line in filter(str.strip, expected.splitlines()):
            if any(squeeze(line) in squeeze(a) for a in actual.splitlines()):
                raise Failure(f"{what}: this must not occur:\n{line}\n--- in ---\n{actual}")
    elif expected != actual:
        diff = difflib.unified_diff(expected.splitlines(True), actual.splitlines(True), "expected", "actual")
        raise Failure(f"{what}:\n{''.join(diff)}\n--- actual ---\n{actual}")


def in_order(what, expected, actual):
    """Each expected line occurs in the actual lines, one after the other."""
    rest = iter(actual)
    for line in filter(str.strip, expected):
        if not any(squeeze(line) in squeeze(a) for a in rest):
            raise Failure(f"{what}: missing, or not in this order:\n{line}\n--- in ---\n" + "\n".join(actual))


class Case:
    """One link and its checks."""

    def __init__(self, name, parts, shared, opts, work):
        self.name, self.parts, self.opts, self.work = name, parts, opts, work
        own = {self.kind(part) for part in parts}
        self.checks = {}
        for part in [p for p in shared if self.kind(p) not in own] + parts:
            if part[0][0] in CHECKS:
                self.checks.setdefault(part[0][0], []).append(part)
        self.elf_cache = None

    @staticmethod
    def kind(part):
        """What a case says itself replaces what all cases share: of a kind, or of a file."""
        head = part[0]
        return {"no-file": "file", "text": "text"}.get(head[0], head[0]), *head[1:2] * (head[0] not in ONCE)

    def one(self, name):
        found = self.checks.get(name)
        return found[-1] if found else None

    @property
    def elf(self):
        if self.elf_cache is None:
            path = self.work / "out.elf"
            if not path.exists():
                raise Failure("the link wrote no out.elf")
            self.elf_cache = Elf(path)
        return self.elf_cache

    def run(self):
        if not self.one("args"):
            raise Failure("no args")
        args = shlex.split(" ".join(self.one("args")[1]))
        env = dict(os.environ)
        if self.one("env"):
            env.update(line.split("=", 1) for line in self.one("env")[1] if line.strip())
        inputs = {p: p.read_bytes() for p in self.work.iterdir() if p.is_file()} if self.opts.additive else {}
        done = command([self.opts.qvlink, *args], self.work, env=env, timeout=60)
        out, err = done.stdout.decode("latin-1"), done.stderr.decode("latin-1")
        (self.work / "stdout.txt").write_text(out)
        (self.work / "stderr.txt").write_text(err)
        status = int(body_text(self.one("exit")[1])) if self.one("exit") else 0
        if done.returncode != status:
            raise Failure(f"exit status {done.returncode}, expected {status}\n--- stdout\n{out}--- stderr\n{err}")
        head, body, _ = self.one("stderr") or (["stderr"], [], 0)
        compare_text("stderr", (head + [""])[1], body_text(body), err)
        if self.one("stdout"):
            head, body, _ = self.one("stdout")
            compare_text("stdout", (head + [""])[1], body_text(body), out)
        for name, check in self.CHECK.items():
            for head, body, _ in self.checks.get(name, []):
                check(self, head, body)
        if self.opts.additive:
            self.link_again(args, env, done, inputs)

    def link_again(self, args, env, first, inputs):
        """Extensions that are asked for, but say what holds without them, change no byte of messages and files."""
        own = ("--target2", "--dependency_file", "--debug:internal_file")  # the last names a temporary file
        if not args or any(option in " ".join(args) for option in own):
            return

        def files():
            return {p.name: re.sub(rb">> Linked .*|<link_time>[^<]*", b"", p.read_bytes()) for p in self.work.iterdir()
                    if p.is_file() and p.name != "additive.d"}

        before = files()
        for path, data in inputs.items():  # a link may write onto what it reads
            if path.is_file() and path.read_bytes() != data:
                path.write_bytes(data)
        done = command([self.opts.qvlink, "--target2=abs", "--dependency_file=additive.d", *args], self.work, env=env,
                       timeout=60)
        after = files()
        if (done.returncode, done.stdout, done.stderr) != (first.returncode, first.stdout, first.stderr):
            raise Failure("with --target2 and --dependency_file the link says\n" + done.stderr.decode("latin-1"))
        if before != after:
            other = [n for n in before.keys() | after.keys() if before.get(n) != after.get(n)]
            raise Failure(f"with --target2 and --dependency_file the link writes others of {other}")

    def check_text(self, head, body):
        path = self.work / head[1]
        if not path.exists():
            raise Failure(f"the link wrote no {head[1]}")
        compare_text(head[1], (head + [""])[2], body_text(body), path.read_text(encoding="latin-1"))

    def check_sym(self, _, body):
        for name, value, *section in rows(body):
            symbol = self.elf.symbol(name)
            if value == "-":
                if symbol:
                    raise Failure(f"symbol {name} is there: {symbol}")
                continue
            if not symbol:
                raise Failure(f"no symbol {name}")
            if symbol.value != int(value, 0) or (section and symbol.section != section[0]):
                raise Failure(f"symbol {name}: {symbol.value:#x} in {symbol.section}, expected {value} {section}")

    def check_section(self, _, body):
        for name, addr, *size in rows(body):
            section = self.elf.section(name)
            if addr == "-":
                if section:
                    raise Failure(f"section {name} is there: {section.addr:#x} {section.size:#x}")
                continue
            if not section:
                raise Failure(f"no section {name}; there are {[s.name for s in self.elf.sections]}")
            if section.addr != int(addr, 0) or (size and section.size != int(size[0], 0)):
                raise Failure(f"section {name}: {section.addr:#x} {section.size:#x}, expected {addr} {size}")

    def check_segments(self, _, body):
        expected = [squeeze(line) for line in body if line.strip()]
        if expected != self.elf.segment_rows():
            raise Failure("segments: expected\n" + "\n".join(expected) + "\nactual\n" +
                          "\n".join(self.elf.segment_rows()))

    def check_entry(self, _, body):
        if self.elf.entry != int(body_text(body), 0):
            raise Failure(f"entry point {self.elf.entry:#x}, expected {body_text(body)}")

    def check_bytes(self, head, body):
        section = self.elf.section(head[1])
        if not section:
            raise Failure(f"no section {head[1]}")
        if section.data != hex_bytes(body):
            raise Failure(f"bytes of {head[1]}: expected\n{hex_bytes(body).hex(' ')}\nactual\n{section.data.hex(' ')}")

    def check_dis(self, head, body):
        done = command([TOOLS + "objdump", "-d", "-j", head[1], "out.elf"], self.work)
        in_order(f"disassembly of {head[1]}", body, done.stdout.decode().splitlines())

    def check_readelf(self, head, body):
        done = command([TOOLS + "readelf", "-W", *head[1:], "out.elf"], self.work)
        in_order("readelf", body, (done.stdout + done.stderr).decode("latin-1").splitlines())

    def check_elflint(self, *_):
        done = command(["eu-elflint", "--gnu-ld", "out.elf"], self.work)
        if done.stdout.decode().strip() != "No errors":
            raise Failure("eu-elflint: " + done.stdout.decode())

    def check_file(self, head, _):
        if not (self.work / head[1]).exists():
            raise Failure(f"the link left no {head[1]}")

    def check_no_file(self, head, _):
        if (self.work / head[1]).exists():
            raise Failure(f"the link left {head[1]}")

    def check_run(self, head, body):
        actual = qemu(head[1], self.work / "out.elf")
        compare_text("QEMU", "", body_text(body), actual)

    CHECK = {"text": check_text, "sym": check_sym, "section": check_section, "segments": check_segments,
             "entry": check_entry, "bytes": check_bytes, "dis": check_dis, "readelf": check_readelf,
             "elflint": check_elflint, "file": check_file, "no-file": check_no_file, "run": check_run}


def rows(body):
    return [line.split() for line in body if line.strip() and not line.lstrip().startswith("#")]


def qemu(machine, elf, timeout=60):
    """What the program prints by semihosting. It must end by itself, with status 0."""
    done = command(["qemu-system-arm", "-M", machine, "-cpu", QEMU[machine], "-display", "none", "-serial", "null",
                    "-monitor", "none", "-semihosting-config", "enable=on,target=native", "-kernel", str(elf)],
                   Path(elf).parent, timeout=timeout)
    text = (done.stdout + done.stderr).decode("latin-1")
    if done.returncode:
        raise Failure(f"QEMU ended with status {done.returncode}:\n{text}")
    return text


def split_cases(parts):
    shared, cases = [], []
    for part in parts:
        if part[0][0] == "case":
            cases.append((" ".join(part[0][1:]), []))
        elif cases:
            cases[-1][1].append(part)
        else:
            shared.append(part)
    return shared, cases or [("", [])]


def run_file(path, opts):
    sentence, parts = parse(path)
    shared, cases = split_cases(parts)
    base = Path(opts.work).resolve() / path.relative_to(path.parents[1]).with_suffix("")
    failed = 0
    for number, (name, own) in enumerate(cases):
        work = base / str(number) if len(cases) > 1 else base
        shutil.rmtree(work, ignore_errors=True)
        work.mkdir(parents=True)
        try:
            for head, body, _ in shared + own:
                if head[0] not in CHECKS:
                    make_input(head, body, work)
            Case(name, own, shared, opts, work).run()
        except (Failure, subprocess.TimeoutExpired, ValueError) as e:
            failed += 1
            print(f"FAILED: {path}{' case ' + name if name else ''}\n{sentence}\n{e}\n"
                  f"again: python3 {__file__} --qvlink {opts.qvlink} --work {opts.work} {path}\nin: {work}\n")
            if not opts.keep_going:
                break
    return failed


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True)
    parser.add_argument("--additive", action="store_true",
                        help="link again with extensions that must change nothing")
    parser.add_argument("--work", default="/tmp/linktest")
    parser.add_argument("-k", "--keep-going", action="store_true")
    parser.add_argument("tests", nargs="+")
    opts = parser.parse_args()
    opts.qvlink = str(Path(opts.qvlink).resolve())
    return 1 if sum(run_file(Path(t).resolve(), opts) for t in opts.tests) else 0


if __name__ == "__main__":
    sys.exit(main())
