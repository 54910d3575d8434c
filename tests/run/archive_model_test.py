#!/usr/bin/env python3
"""Which members a link pulls, and in which order, against the plain rule.

Archives, groups and objects are made at random: names are defined in several places, members ask for each other, some
only weakly, some archives are named twice, some names are mapped to others, wanted by the command line or retained,
some links read all archives again or go by the priority of archives. The rule says that an archive is walked over its
directory until a walk loads nothing, a group until none of its archives loads anything. The linker looks only at names
that came to be needed; the local symbols of the output, which stand in the order of files, show whether it loaded the
same members in the same order. `--cases` and `--seed` say how many links and which.
"""
import argparse
import random
import struct
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from elf import Elf  # noqa: E402
from elf_write import ALLOC, GLOBAL, LOCAL, OBJECT, UND, WEAK, WRITE, ElfObject  # noqa: E402

R_ARM_ABS32 = 2
COMMANDS = """\
MEMORY { M : origin = 0x1000, length = 0x100000 }
SECTIONS { .data : { *(.data*) } > M }
"""


class Member:
    """Weak definitions do not collide; `id` marks the object in the output."""

    def __init__(self, number, defs, strong, weak):
        self.id, self.defs, self.strong, self.weak = f"id_{number}", defs, strong, weak

    def bytes(self):
        obj = ElfObject()
        names = self.strong + self.weak
        data = obj.section(".data.x", ALLOC | WRITE, bytes(32), align=4)
        obj.symbol(f"local_{self.id}", data, 0, OBJECT, LOCAL)
        obj.symbol(self.id, data, 0)
        for name in self.defs:
            obj.symbol(name, data, 0, bind=WEAK)
        for i, name in enumerate(names):
            obj.symbol(name, UND, 0, bind=GLOBAL if name in self.strong else WEAK)
            obj.reloc(data, 4 * i, R_ARM_ABS32, name)
        return obj.bytes()


def archive(members):
    """The bytes of an archive, and its directory as (name, place of the member)."""
    def header(name, size):
        return f"{name:<16}{0:<12}{0:<6}{0:<6}{644:<8}{size:<10}`\n".encode()

    directory = [(name, i) for i, m in enumerate(members) for name in [m.id, *m.defs]]
    names = b"".join(name.encode() + b"\0" for name, _ in directory)
    size = 4 + 4 * len(directory) + len(names)
    bodies = [m.bytes() for m in members]
    at, offsets = 8 + 60 + size + size % 2, []
    for body in bodies:
        offsets.append(at)
        at += 60 + len(body) + len(body) % 2
    out = b"!<arch>\n" + header("/", size) + struct.pack(">I", len(directory))
    out += b"".join(struct.pack(">I", offsets[i]) for _, i in directory) + names + bytes(size % 2)
    for i, body in enumerate(bodies):
        out += header(f"m{i}.o/", len(body)) + body + b"\n" * (len(body) % 2)
    return out, directory


class Options:
    """What the command line says beside the files: names that are mapped, wanted and retained, and the order."""

    def __init__(self, rng, names, archives):
        def some(most):
            return rng.sample(names, rng.choice([0, 0, rng.randrange(most + 1)]))
        self.maps = dict(zip(some(2), rng.sample(names, 2)))
        self.maps = {ref: name for ref, name in self.maps.items() if ref != name}
        self.wanted, self.retained = some(2), some(2)
        self.members = [(a, rng.randrange(len(archives[a][0]))) for a in range(len(archives)) if rng.random() < 0.15]
        self.order = rng.choice([None, None, "--reread_libs", "--priority"])

    def arguments(self):
        return ([f"--symbol_map={ref}={name}" for ref, name in self.maps.items()] +
                [f"--undef_sym={name}" for name in self.wanted] + [f"--retain={name}" for name in self.retained] +
                [f"--retain=lib{a}.a<m{i}.o>" for a, i in self.members] + ([self.order] if self.order else []))


class Model:
    """The rule, taken at its word."""

    def __init__(self, options, archives):
        self.options, self.archives = options, archives
        self.defined, self.loaded = set(), []
        self.undefined = dict.fromkeys(options.wanted, "name")  # a name, or by a weak or strong symbol

    def load(self, member):
        self.loaded.append(member.id)
        for name in [member.id, *member.defs]:
            if name in self.options.retained and name not in self.defined:
                self.undefined[name] = "weak"
            self.defined.add(name)
            for ref in [ref for ref in self.undefined if self.served_by(ref) == name]:
                del self.undefined[ref]
        for kind, names in (("strong", member.strong), ("weak", member.weak)):
            for name in names:
                if self.served_by(name) not in self.defined and (
                        name in self.options.retained or self.undefined.get(name, "name") != "strong"):
                    self.undefined[name] = kind

    def served_by(self, name):
        """The name that a reference to this one stands for, once an object has started the link."""
        return self.options.maps.get(name, name) if self.loaded else name

    def needs(self, name):
        return name not in self.defined and (name in self.options.retained or any(
            self.served_by(ref) == name for ref, kind in self.undefined.items() if kind != "weak"))

    def load_retained(self, members):
        loaded = False
        for a, i in sorted(self.options.members):
            member = self.archives[a][0][i]
            if self.archives[a][0] is members and member.id not in self.loaded:
                self.load(member)
                loaded = True
        return loaded

    def walk(self, members, directory):
        any_loaded = self.load_retained(members)
        while True:
            loaded = False
            for name, i in directory:
                if self.needs(name):
                    self.load(members[i])
                    loaded = True
            any_loaded |= loaded
            if not loaded:
                return any_loaded

    def by_priority(self, archives):
        """Each name is served by the first archive that has it, always the first needed name by name."""
        table = {}
        for members, directory in archives:
            for name, i in directory:
                table.setdefault(name, members[i])
        for members, _ in archives:
            self.load_retained(members)
        for name in sorted(table):
            if name in self.options.retained and name not in self.defined:
                self.load(table[name])
        while True:
            served = [name for ref in sorted(self.undefined)
                      if self.undefined[ref] != "weak" and (name := self.served_by(ref)) in table]
            if not served:
                return
            self.load(table[served[0]])

    def group(self, items):
        any_loaded = False
        while True:
            loaded = [self.item(item) for item in items]
            any_loaded |= any(loaded)
            if not any(loaded):
                return any_loaded

    def item(self, item):
        kind, what = item
        if kind == "archive":
            return self.walk(*what)
        return self.group(what) if kind == "group" else False

    def run(self, items):
        is_priority, archives = self.options.order == "--priority", []
        for item in items:
            if item[0] == "object":
                self.load(item[1])
            elif is_priority:
                archives += [a for _, a in item[1]] if item[0] == "group" else [item[1]]
            else:
                self.item(item)
        if is_priority:
            self.by_priority(archives)
        if self.options.order == "--reread_libs":
            self.group(items)
        # Objects are files of the link from when they are named.
        objects = [what.id for kind, what in items if kind == "object"]
        return objects + [member for member in self.loaded if member not in objects]


def make_case(rng):
    """Items of a command line: objects, archives and groups; the last object is there so that there is one."""
    names = [f"n{i}" for i in range(rng.randrange(3, 30))]
    counter = iter(range(10000))

    def member(defs):
        pick = rng.sample(names, min(len(names), rng.randrange(4)))
        pick = [n for n in pick if n not in defs]
        cut = rng.randrange(len(pick) + 1) if rng.random() < 0.3 else len(pick)
        return Member(next(counter), defs, pick[:cut], pick[cut:])

    archives = []
    for _ in range(rng.randrange(1, 5)):
        members = [member(rng.sample(names, min(len(names), rng.randrange(1, 4)))) for _ in range(rng.randrange(1, 8))]
        archives.append((members, archive(members)[1]))
    items = []
    for _ in range(rng.randrange(1, 7)):
        kind = rng.choice(["object", "archive", "archive", "group"])
        if kind == "object":
            items.append((kind, member([])))
        elif kind == "archive":
            items.append((kind, rng.choice(archives)))
        else:
            items.append((kind, [("archive", a) for a in rng.sample(archives, rng.randrange(1, len(archives) + 1))]))
    items.insert(rng.randrange(len(items) + 1), ("object", member([])))
    return items, archives, Options(rng, names, archives)


def write_case(items, archives, folder):
    paths = {}
    for i, (members, _) in enumerate(archives):
        paths[id(members)] = f"lib{i}.a"
        (folder / f"lib{i}.a").write_bytes(archive(members)[0])
    args = []
    for kind, what in items:
        if kind == "object":
            (folder / f"{what.id}.o").write_bytes(what.bytes())
            args.append(f"{what.id}.o")
        elif kind == "archive":
            args.append(paths[id(what[0])])
        else:
            args += ["--start-group", *(paths[id(a[0])] for _, a in what), "--end-group"]
    return args


def run_case(qvlink, number, seed, work):
    items, archives, options = make_case(random.Random(f"{seed}:{number}"))
    folder = work / str(number)
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "link.cmd").write_text(COMMANDS)
    args = write_case(items, archives, folder) + options.arguments()
    argv = [qvlink, *args, "link.cmd", "-o", "out.elf", "--unused_section_elimination=off", "--no_warnings",
            "--diag_warning=10239", "--no_entry_point"]
    done = subprocess.run(argv, cwd=folder, capture_output=True, text=True)
    expected = Model(options, archives).run(items)
    if done.returncode:
        return f"case {number}: {' '.join(argv)} in {folder}: status {done.returncode}\n{done.stderr}"
    found = [s.name[6:] for s in Elf(folder / "out.elf").symbols if s.name.startswith("local_")]
    if found != expected:
        return f"case {number}: {' '.join(argv)} in {folder}\nexpected {expected}\nloaded   {found}"
    return None


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--qvlink", required=True)
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--cases", type=int, default=150)
    parser.add_argument("--seed", default="1")
    args = parser.parse_args()
    qvlink = str(Path(args.qvlink).resolve())
    failures = [f for n in range(args.cases) if (f := run_case(qvlink, n, args.seed, args.work))]
    for failure in failures[:5]:
        print(failure)
    print(f"{args.cases - len(failures)} of {args.cases} links pull what the rule pulls, in its order")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
