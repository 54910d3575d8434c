"""Damage to the inputs of a link, by something that knows their structure: objects, attributes, archives, command files.

Each mutate_...(rng, bytes) picks a field, an entry or a token and gives it a value that is likely to hurt; it returns the
damaged bytes and what was done to them.
"""
import os
import re

# --- objects

EHDR = ("HHIIIIIHHHHHH", 16, "e_type e_machine e_version e_entry e_phoff e_shoff e_flags e_ehsize e_phentsize e_phnum "
        "e_shentsize e_shnum e_shstrndx")
SHDR = ("IIIIIIIIII", 0, "sh_name sh_type sh_flags sh_addr sh_offset sh_size sh_link sh_info sh_addralign sh_entsize")
SYM = ("IIIBBH", 0, "st_name st_value st_size st_info st_other st_shndx")
REL = ("II", 0, "r_offset r_info")
RELA = ("III", 0, "r_offset r_info r_addend")
WIDTH = {"B": 1, "H": 2, "I": 4}
PROGBITS, SYMTAB, STRTAB, TYPE_RELA, NOBITS, TYPE_REL, GROUP, ATTRIBUTES = 1, 2, 3, 4, 8, 9, 17, 0x70000003
SECTION_TYPES = [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 14, 17, 18, 0x6FFFFFF6, 0x6FFFFFFF, 0x70000001, 0x70000002,
                 0x70000003, 0x7F000001, 0xFFFFFFFF]


def fields(layout):
    """(name, offset, width) of a record's fields."""
    codes, at, names = layout
    for code, name in zip(codes, names.split()):
        yield name, at, WIDTH[code]
        at += WIDTH[code]


class ElfBytes:
    """The bytes of an object with its undamaged structure beside them."""

    def __init__(self, data):
        self.data, self.size = bytearray(data), len(data)
        self.order = "little" if data[5] == 1 else "big"
        self.shoff, self.shnum = self.get(32, 4), self.get(48, 2)
        self.heads = [{name: self.get(self.shoff + 40 * i + at, width) for name, at, width in fields(SHDR)}
                      for i in range(self.shnum)]

    def get(self, at, width):
        return int.from_bytes(self.data[at:at + width], self.order)

    def put(self, at, width, value):
        if at + width <= len(self.data):
            self.data[at:at + width] = (value % (1 << 8 * width)).to_bytes(width, self.order)

    def of_type(self, *types):
        return [i for i, h in enumerate(self.heads) if h["sh_type"] in types and h["sh_size"]]


def bad_number(rng, old, width, *near):
    """A value for a field: a limit, something close to what it was or to what matters here, or anything."""
    top = (1 << 8 * width) - 1
    limits = [0, 1, 2, 3, 4, 7, 8, 0xFF, 0xFFF1, 0xFFF2, 0xFF00, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0,
              0xFFFFFFFC, top, top - 1, top >> 1, (top >> 1) + 1]
    choices = [*limits, *(n + d for n in (old, *near) for d in (-4, -1, 0, 1, 4)), old * 2, old // 2, -old,
               old ^ 1 << rng.randrange(8 * width), rng.getrandbits(8 * width)]
    return rng.choice(choices) & top


def mutate_field(rng, elf, layout, at, what, *near):
    name, offset, width = rng.choice(list(fields(layout)))
    old = elf.get(at + offset, width)
    value = rng.choice(SECTION_TYPES) if name == "sh_type" else bad_number(rng, old, width, *near)
    if name == "r_info" and rng.random() < 0.5:  # the type alone, or the symbol alone
        value = old & ~0xFF | rng.randrange(256) if rng.random() < 0.5 else bad_number(rng, old >> 8, 3) << 8 | old & 0xFF
    if name == "st_info" and rng.random() < 0.5:
        value = rng.choice([0, 1, 2, 10, 13]) << 4 | rng.choice([0, 1, 2, 3, 4, 5, 6, 10, 13])
    if name == "sh_addralign" and rng.random() < 0.7:
        value = 1 << rng.randrange(32)
    if name == "sh_flags" and rng.random() < 0.7:
        value = old ^ 1 << rng.choice([0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11])
    elf.put(at + offset, width, value)
    return f"{what}: {name} {old:#x} -> {value:#x}"


def mutate_header(rng, elf):
    if rng.random() < 0.1:
        at, value = rng.randrange(16), rng.randrange(256)
        elf.put(at, 1, value)
        return f"e_ident[{at}] = {value}"
    return mutate_field(rng, elf, EHDR, 0, "ELF header", elf.size, elf.shnum)


def mutate_section_header(rng, elf):
    i = rng.randrange(elf.shnum)
    other = rng.choice(elf.heads)
    near = (elf.size, elf.shnum, i, rng.choice(list(other.values())))
    return mutate_field(rng, elf, SHDR, elf.shoff + 40 * i, f"section {i}", *near)


def mutate_section_pair(rng, elf):
    a, b = (elf.shoff + 40 * rng.randrange(elf.shnum) for _ in range(2))
    head = elf.data[a:a + 40]
    if rng.random() < 0.5:
        elf.data[a:a + 40] = elf.data[b:b + 40]
    elf.data[b:b + 40] = head
    return f"the section headers at {a:#x} and {b:#x} exchanged or repeated"


def mutate_entry(rng, elf, types, layouts, what):
    """A field of an entry in a table of a given type."""
    tables = elf.of_type(*types)
    if not tables:
        return mutate_section_header(rng, elf)
    i = rng.choice(tables)
    head, layout = elf.heads[i], layouts[types.index(elf.heads[i]["sh_type"])]
    size = sum(width for _, _, width in fields(layout))
    n = rng.randrange(head["sh_size"] // size)
    near = (elf.shnum, head["sh_size"] // size, rng.choice(elf.heads)["sh_size"])
    return mutate_field(rng, elf, layout, head["sh_offset"] + n * size, f"{what} {n} of section {i}", *near)


def mutate_symbol(rng, elf):
    return mutate_entry(rng, elf, [SYMTAB], [SYM], "symbol")


def mutate_reloc(rng, elf):
    return mutate_entry(rng, elf, [TYPE_REL, TYPE_RELA], [REL, RELA], "relocation")


def mutate_strings(rng, elf):
    i = rng.choice(elf.of_type(STRTAB))
    at, size = elf.heads[i]["sh_offset"], elf.heads[i]["sh_size"]
    start = rng.randrange(size)
    end = rng.choice([size, min(size, start + 1), min(size, start + rng.randrange(1, 64))])
    value = rng.choice([0, 0xFF, ord("%"), ord("n"), ord("\n"), rng.randrange(256)])
    elf.data[at + start:at + end] = bytes([value]) * (end - start)
    return f"string table {i}: bytes {start:#x} to {end:#x} are {value:#x}"


def mutate_group(rng, elf):
    groups = elf.of_type(GROUP)
    if not groups:
        return mutate_reloc(rng, elf)
    i = rng.choice(groups)
    word = rng.randrange(elf.heads[i]["sh_size"] // 4)
    at = elf.heads[i]["sh_offset"] + 4 * word
    value = rng.choice([i, 0, rng.randrange(elf.shnum), elf.shnum, bad_number(rng, elf.get(at, 4), 4)])
    elf.put(at, 4, value)
    return f"group section {i}: word {word} is {value:#x}"


def mutate_contents(rng, elf):
    """Bytes of any section: also of debug information, attributes and index tables."""
    held = [i for i, h in enumerate(elf.heads) if h["sh_size"] and h["sh_type"] != NOBITS]
    unloaded = [i for i in held if elf.heads[i]["sh_type"] in (PROGBITS, ATTRIBUTES) and not elf.heads[i]["sh_flags"] & 2]
    i = rng.choice(unloaded if unloaded and rng.random() < 0.6 else held)
    at, size = elf.heads[i]["sh_offset"], elf.heads[i]["sh_size"]
    start, count, value = rng.randrange(size), rng.choice([1, 1, 4, 16]), rng.choice([0, 0x7F, 0x80, 0xFF, rng.randrange(256)])
    for k in range(start, min(size, start + count)):
        elf.put(at + k, 1, value)
    return f"section {i}: {count} bytes at {start:#x} are {value:#x}"


def mutate_size(rng, elf):
    edges = [0, 16, 51, 52, elf.shoff, elf.shoff + 40, elf.shoff + 40 * elf.shnum]
    edges += [h["sh_offset"] + s for h in elf.heads for s in (0, h["sh_size"])]
    size = max(0, min(elf.size - 1, rng.choice([*edges, rng.randrange(elf.size)]) + rng.choice([-1, 0, 0, 1])))
    del elf.data[size:]
    return f"cut to {size:#x} of {elf.size:#x} bytes"


ELF_MUTATIONS = ([mutate_header] * 2 + [mutate_section_header] * 6 + [mutate_section_pair] + [mutate_symbol] * 5 +
                 [mutate_reloc] * 5 + [mutate_strings] * 2 + [mutate_group] * 2 + [mutate_contents] * 3 + [mutate_size])


def mutate_elf(rng, data):
    elf = ElfBytes(data)
    said = [rng.choice(ELF_MUTATIONS)(rng, elf) for _ in range(rng.choice([1, 1, 1, 2, 3]))]
    return bytes(elf.data), "; ".join(said)


def attribute_marks(data, order):
    """(offset, width) of what an attributes section is structured by: sizes, scopes, names, ids, tags, values."""
    marks, at = [(0, 1)], 1
    while at + 4 < len(data):
        end = min(len(data), at + max(5, int.from_bytes(data[at:at + 4], order)))
        marks.append((at, 4))
        name_end = data.find(0, at + 4, end)
        marks.append((at + 4, max(1, name_end - at - 4)))
        at = name_end + 1 if name_end >= 0 else end
        while at + 5 < end:
            marks += [(at, 1), (at + 1, 4)]
            list_end = min(end, at + max(6, int.from_bytes(data[at + 1:at + 5], order)))
            marks += [(k, 1) for k in range(at + 5, list_end)]
            at = list_end
        at = end
    return marks


def mutate_attributes(rng, data):
    elf = ElfBytes(data)
    head = elf.heads[elf.of_type(ATTRIBUTES)[0]]
    start, size = head["sh_offset"], head["sh_size"]
    marks = attribute_marks(data[start:start + size], elf.order)
    said = []
    for _ in range(rng.choice([1, 1, 2, 4])):
        at, width = rng.choice(marks if rng.random() < 0.6 else [m for m in marks if m[1] == 4])
        if width > 4:  # a vendor's name
            text = rng.choice([b"aeabi", b"QV", b"gnu", b"", b"%s%n", bytes([rng.randrange(256)]) * width]).ljust(width, b"\0")
            elf.data[start + at:start + at + width] = text[:width]
            said.append(f"name at {at:#x}: {text[:width]!r}")
        else:
            value = bad_number(rng, elf.get(start + at, width), width, size, size - at)
            elf.put(start + at, width, value)
            said.append(f"{width} bytes at {at:#x} are {value:#x}")
    return bytes(elf.data), "attributes: " + "; ".join(said)


# --- archives

AR_FIELDS = [("name", 0, 16), ("date", 16, 12), ("owner", 28, 6), ("group", 34, 6), ("mode", 40, 8), ("size", 48, 10),
             ("end mark", 58, 2)]
AR_TEXTS = [b"", b"-1", b"99999999999", b"/", b"//", b"/99999", b"/0", b"/1", b"#1/20", b"<filenames>/", b"abc", b"`\n",
            b"4294967295", b"0", b"1", b"/SYM64/", b"%s%s%s%n"]


def archive_members(data):
    """(header offset, size) of each member."""
    at, members = 8, []
    while at + 60 <= len(data):
        size = int(data[at + 48:at + 58])
        stored = data[:8] != THIN or data[at:at + 1] == b"/" and not data[at + 1:at + 2].isdigit()
        size = size if stored else 0
        members.append((at, size))
        at += 60 + size + (size & 1)
    return members


THIN = b"!<thin>\n"


def is_table(data, member):
    """Whether a member is a directory or a table of names, and holds enough to be damaged."""
    at, size = member
    return size >= 4 and (data[at:at + 1] == b"/" or data[at:at + 3] == b"#1/")


def mutate_archive(rng, data):
    members = archive_members(data)
    damaged = bytearray(data)
    kind = rng.randrange(7)
    at, size = rng.choice(members)
    if kind in (2, 3) and not is_table(data, members[kind - 2]) or kind == 6 and data[:8] == THIN:
        kind = 5
    if kind < 2:
        name, offset, width = rng.choice(AR_FIELDS)
        text = rng.choice([*AR_TEXTS, str(size + rng.choice([-1, 1, 2, 60, 1000])).encode(), os.fsencode(chr(rng.randrange(1, 127))) * width])
        damaged[at + offset:at + offset + width] = text.ljust(width)[:width]
        said = f"member at {at:#x}: {name} {text[:width]!r}"
    elif kind == 2:  # the directory stands first: a count, offsets, names
        at, size = members[0]
        where = at + 60 + rng.choice([0, 4 * rng.randrange(size // 4), 4 * rng.randrange(min(8, size // 4))])
        value = bad_number(rng, int.from_bytes(data[where:where + 4], "big"), 4, len(data), *(m[0] for m in members))
        damaged[where:where + 4] = value.to_bytes(4, "big")
        said = f"directory: word at {where:#x} is {value:#x}"
    elif kind == 3:  # the table of long names stands second
        at, size = members[1]
        start = rng.randrange(size)
        count, value = rng.randrange(1, size + 1), rng.choice([0, 0xFF, ord("/"), ord("\n"), ord("x")])
        end = min(size, start + count)
        damaged[at + 60 + start:at + 60 + end] = bytes([value]) * (end - start)
        said = f"long names: bytes {start} to {end} are {value:#x}"
    elif kind == 4:
        cut = max(0, rng.choice([rng.randrange(len(data)), 7, 8, at, at + 59, at + 60, at + 60 + size]) + rng.choice([-1, 0, 1]))
        del damaged[cut:]
        said = f"cut to {cut:#x} of {len(data):#x} bytes"
    elif kind == 5:
        value = rng.randrange(256)
        where = rng.choice([rng.randrange(8), rng.randrange(len(data))])
        damaged[where] = value
        said = f"byte {where:#x} is {value:#x}"
    else:
        at, size = rng.choice([m for m in members if b"\x7fELF" in data[m[0] + 60:m[0] + 124]])
        skip = data.index(b"\x7fELF", at + 60) - at - 60  # a name may stand before the object
        at, size = at + skip, size - skip
        inner, said = mutate_elf(rng, data[at + 60:at + 60 + size])
        damaged[at + 60:at + 60 + size] = inner.ljust(size, b"\0")[:size]
        said = f"member at {at:#x}: {said}"
    return bytes(damaged), said


# --- command files

TOKEN = re.compile(r"/\*.*?\*/|\s+|\"[^\"]*\"|-{1,2}\w+|0[xX]\w+|[\w.$*]+|<<=?|>>=?|[-+*/]=|&&|\|\||[=<>!]=|.", re.S)
WORDS = ["{", "}", "(", ")", ";", ",", ":", ">", ">>", "|", "=", "+=", ".", "*", "-", "/", "?", "!", "~", "%", "0", "1",
         "0xFFFFFFFF", "0xFFFFFFFFFFFFFFFF", "0x80000000", "99999999999999999999", "4K", "1M", "-1", "MEMORY", "SECTIONS",
         "GROUP", "UNION", "ALIGN", "PALIGN", "BLOCK", "LOAD", "RUN", "HIGH", "TYPE", "NOLOAD", "DSECT", "COPY", "NOINIT",
         "fill", "START", "END", "SIZE", "PAGE", "ORIGIN", "LENGTH", "FLASH", "RAM", ".text", ".data", ".bss", "COMMON",
         "LOAD_START", "RUN_SIZE", "table", "palign(0)", "align(3)", "align(0x80000000)", "block(0)", ". = 0;", ". -= 8;",
         ". += 0x7FFFFFFF;", "x = y; y = x;", "x = 1 / 0;", "x = 1 << 99;", "*(*)", "a.a<b.o>(.text)", "\"", "/*", "*/",
         "#", "#define A A", "@", "\\", "\0", "\x80", "--stack_size=0xFFFFFFFF", "--heap_size=-1", "--fill_value=0x",
         "-o", "-l", "-i", "--retain=", "--symbol_map=a=b", "--entry_point=", "-", "--", "link.cmd", "main.o", "lib.a",
         "(" * 3000, "-" * 3000, "{" * 3000, "GROUP : { " * 500, "x" * 9000, "1 + " * 3000]


def mutate_command(rng, data):
    tokens = TOKEN.findall(data.decode("latin-1"))
    solid = [i for i, token in enumerate(tokens) if token.strip() and not token.startswith("/*")]
    said = []
    for _ in range(rng.choice([1, 1, 2, 3])):
        i, j = rng.choice(solid), rng.choice(solid)
        kind = rng.randrange(9)
        if kind == 0:
            said.append(f"without token {i} {tokens[i]!r}")
            tokens[i] = " "
        elif kind == 1:
            said.append(f"token {i} {tokens[i]!r} twice")
            tokens[i] = f"{tokens[i]} {tokens[i]}"
        elif kind == 2:
            said.append(f"tokens {i} {tokens[i]!r} and {j} {tokens[j]!r} exchanged")
            tokens[i], tokens[j] = tokens[j], tokens[i]
        elif kind == 3:
            said.append(f"token {i} {tokens[i]!r} by {tokens[j]!r}")
            tokens[i] = tokens[j]
        elif kind == 4:
            said.append(f"tokens {min(i, j)} to {max(i, j)} twice")
            tokens[max(i, j)] += "".join(tokens[min(i, j):max(i, j) + 1])
        elif kind == 5 and rng.random() < 0.4:
            said.append(f"cut at token {i}")
            tokens[i:] = [" "] * (len(tokens) - i)
        else:
            word = rng.choice(WORDS)
            put_in = rng.random() < 0.5
            said.append(f"{'before' if put_in else 'for'} token {i} {tokens[i]!r}: {word[:40]!r}")
            tokens[i] = f"{word} {tokens[i]}" if put_in else word
    return "".join(tokens).encode("latin-1"), "; ".join(said)
