"""Relocatable ARM objects as a compiler would have made them, put together record by record: sections, symbols, relocations
and groups of one file, and DWARF 4 for its functions. Written for speed: a corpus has hundreds of thousands of functions.
"""
import struct

R_NONE, R_ABS32, R_CALL, R_JUMP, R_TARGET1, R_PREL31, R_MOVW, R_MOVT = 0, 2, 10, 30, 38, 42, 47, 48
WRITE, ALLOC, EXEC, MERGE, STRINGS, LINK_ORDER, GROUP = 1, 2, 4, 0x10, 0x20, 0x80, 0x200
PROGBITS, NOBITS, INIT_ARRAY, SHT_GROUP, EXIDX = 1, 8, 14, 17, 0x70000001
NOTYPE, OBJECT, FUNC, SECTION, FILE = 0, 1, 2, 3, 4
LOCAL, GLOBAL, WEAK = 0, 1, 2
ABS, COMMON, UND = 0xFFF1, 0xFFF2, 0
VERBS = "open close read write start stop reset poll push pull pack scan find hash sort merge split trim wait send".split()


class Object:
    """One relocatable file. A place in the symbol table is known at once for local symbols; a global one is -1 - its place
    among the global ones until the file is made."""

    def __init__(self, attributes):
        self.attributes = attributes
        self.sections = []                # (name, type, flags, data or size, align, link, info, entsize)
        self.section_symbols, self.locals, self.globals, self.wanted = {}, [], [], {}
        self.relocs = {}                  # section: [(offset, type, symbol)]
        self.groups = []                  # (section of the group, its symbol)

    def section(self, name, kind, flags, data, align=4, link=0, entsize=0):
        self.sections.append([name, kind, flags, data, align, link, 0, entsize])
        return len(self.sections)

    def local(self, name, kind, value, size, section):
        self.locals.append((name, value, size, kind, section))
        return len(self.locals)

    def of_section(self, section):
        if section not in self.section_symbols:
            self.section_symbols[section] = self.local("", SECTION, 0, 0, section)
        return self.section_symbols[section]

    def define(self, name, kind, value, size, section, bind=GLOBAL):
        if name in self.wanted:
            self.globals[-1 - self.wanted[name]] = name, value, size, bind << 4 | kind, section
            return self.wanted[name]
        self.globals.append((name, value, size, bind << 4 | kind, section))
        self.wanted[name] = -len(self.globals)
        return self.wanted[name]

    def want(self, name, bind=GLOBAL):
        return self.wanted.get(name) or self.define(name, NOTYPE, 0, 0, UND, bind)

    def bytes(self):
        first_global = len(self.locals) + 1
        count = len(self.sections)
        symtab = count + 1 + len(self.relocs) + 1          # behind the attributes
        sections = [*self.sections, [".ARM.attributes", 0x70000003, 0, self.attributes, 1, 0, 0, 0]]
        for section, rows in self.relocs.items():
            name, flags = self.sections[section - 1][0], self.sections[section - 1][2]
            words = [w for at, kind, s in rows for w in (at, (s if s >= 0 else first_global - 1 - s) << 8 | kind)]
            data = struct.pack(f"<{len(words)}I", *words)
            sections.append([".rel" + name, 9, 0x40 | flags & GROUP, data, 4, symtab, section, 8])
        for section, symbol in self.groups:
            self.sections[section - 1][5:7] = symtab, first_global - 1 - symbol
        strings, at, records = [b""], 1, [bytes(16)]
        for name, value, size, info, section in (*self.locals, *self.globals):
            records.append(struct.pack("<IIIBBH", at if name else 0, value, size, info, 0, section))
            if name:
                strings.append(name.encode())
                at += len(strings[-1]) + 1
        sections.append([".symtab", 2, 0, b"".join(records), 4, symtab + 1, first_global, 16])
        sections.append([".strtab", 3, 0, b"\0".join(strings) + b"\0", 1, 0, 0, 0])
        sections.append([".shstrtab", 3, 0, b"", 1, 0, 0, 0])
        names, at = bytearray(b"\0"), {}
        for s in sections:
            if s[0] not in at:
                at[s[0]] = len(names)
                names += s[0].encode() + b"\0"
        sections[-1][3] = bytes(names)
        parts, offset, heads = [], 52, [bytes(40)]
        for name, kind, flags, data, align, link, info, entsize in sections:
            pad = -offset % align
            parts.append(bytes(pad))
            offset += pad
            size = data if kind == NOBITS else len(data)
            heads.append(struct.pack("<10I", at[name], kind, flags, 0, offset, size, link, info, align, entsize))
            if kind != NOBITS:
                parts.append(data)
                offset += size
        pad = -offset % 4
        head = b"\x7fELF\1\1\1" + bytes(9) + struct.pack("<HHIIIIIHHHHHH", 1, 40, 1, 0, 0, offset + pad, 0x05000000, 52, 0, 0, 40,
                                                        len(heads), len(heads) - 1)
        return b"".join([head, *parts, bytes(pad), *heads])


def uleb(value):
    out = bytearray()
    while value > 127:
        out.append(value & 127 | 128)
        value >>= 7
    return bytes(out) + bytes([value])


def sleb(value):
    """Of a number that isn't negative: the last byte's bit 6 is clear."""
    out = bytearray(uleb(value))
    if out[-1] & 0x40:
        out[-1] |= 0x80
        out.append(0)
    return bytes(out)


class Dwarf:
    """DWARF 4 of an object: types that all objects share, its functions with their lines and frames."""

    # number: (tag, has children, (attribute, form)...)
    ABBREVIATIONS = {1: (0x11, 1, (0x25, 0xE), (0x13, 0xB), (3, 0xE), (0x1B, 0xE), (0x55, 0x17), (0x11, 1), (0x10, 0x17)),
                     2: (0x24, 0, (0xB, 0xB), (0x3E, 0xB), (3, 0xE)),
                     3: (0x13, 1, (3, 0xE), (0xB, 0xB), (0x3A, 0xB), (0x3B, 0xB)),
                     4: (0x0D, 0, (3, 0xE), (0x3A, 0xB), (0x3B, 0xB), (0x49, 0x13), (0x38, 0xB)),
                     5: (0x0F, 0, (0xB, 0xB), (0x49, 0x13)),
                     6: (0x2E, 1, (0x3F, 0xC), (3, 0xE), (0x3A, 0xB), (0x3B, 5), (0x27, 0x19), (0x49, 0x13), (0x11, 1), (0x12, 6),
                         (0x40, 0x18)),
                     7: (5, 0, (3, 0xE), (0x3A, 0xB), (0x3B, 5), (0x49, 0x13))}
    STRUCTURES, MEMBERS = 16, 5

    def __init__(self, unit):
        self.unit, self.strings, self.at, self.info, self.info_relocs = unit, bytearray(), {}, bytearray(11), []

    def string(self, text):
        """A string's place goes into the entry; the record for it names the section of strings."""
        if text not in self.at:
            self.at[text] = len(self.strings)
            self.strings += text.encode() + b"\0"
        self.info_relocs.append((len(self.info), "str"))
        self.info += struct.pack("<I", self.at[text])

    def word(self, value, what=None):
        if what is not None:
            self.info_relocs.append((len(self.info), what))
        self.info += struct.pack("<I", value)

    def make(self):
        unit, functions = self.unit, self.unit.functions
        self.info.append(1)
        self.string("a generator of firmware")
        self.info.append(0x1A if unit.cxx else 0x0C)
        self.string(f"u{unit.number:05d}.{'cpp' if unit.cxx else 'c'}")
        self.string("/build")
        self.word(0, "ranges")
        self.word(0)
        self.word(0, "line")
        self.types()
        for k, (name, section, size, is_global) in enumerate(functions):
            self.info += bytes([6, is_global])
            self.string(name)
            self.info += struct.pack("<BHI", 1, 10 + 7 * k, self.base[0])
            self.word(0, section)
            self.word(size)
            self.info += b"\1\x9c"
            for parameter, kind in ("value", self.base[0]), ("node", self.pointers[k % len(self.pointers)]):
                self.info.append(7)
                self.string(parameter)
                self.info += struct.pack("<BHI", 1, 10 + 7 * k, kind)
            self.info.append(0)
        self.info.append(0)
        self.info[:11] = struct.pack("<IHIB", len(self.info) - 4, 4, 0, 4)
        self.info_relocs.insert(0, (6, "abbrev"))
        self.sections(functions)

    def types(self):
        self.base, self.pointers = [], []
        for name, size, encoding in ("unsigned int", 4, 7), ("int", 4, 5), ("unsigned short", 2, 7), ("unsigned char", 1, 8):
            self.base.append(len(self.info))
            self.info += bytes([2, size, encoding])
            self.string(name)
        for k in range(self.STRUCTURES):
            at, known = len(self.info), self.base + self.pointers
            self.info.append(3)
            self.string(f"structure_{k}")
            self.info += bytes([4 * self.MEMBERS, 1, k + 1])
            for m in range(self.MEMBERS):
                self.info.append(4)
                self.string(f"{VERBS[(k + m) % len(VERBS)]}_member")
                self.info += struct.pack("<BBIB", 1, k + 2 + m, known[(3 * k + m) % len(known)], 4 * m)
            self.info.append(0)
            self.pointers.append(len(self.info))
            self.info += struct.pack("<BBI", 5, 4, at)

    def sections(self, functions):
        abbrev = b"".join(uleb(n) + uleb(tag) + bytes([children]) + b"".join(uleb(v) for pair in pairs for v in pair) + b"\0\0"
                          for n, (tag, children, *pairs) in self.ABBREVIATIONS.items()) + b"\0"
        obj = self.unit.object
        index = {"abbrev": obj.section(".debug_abbrev", PROGBITS, 0, abbrev, 1),
                 "str": obj.section(".debug_str", PROGBITS, MERGE | STRINGS, bytes(self.strings), 1, 0, 1)}
        for name, (data, align) in {"line": (self.lines(functions), 1), "ranges": (self.ranges(functions), 1),
                                    "frame": (self.frames(functions), 4), "aranges": (self.addresses(functions), 1)}.items():
            (data, relocs), section = data, obj.section(".debug_" + name, PROGBITS, 0, b"", align)
            index[name] = section
            obj.sections[section - 1][3] = bytes(data)
            obj.relocs[section] = relocs
        index["info"] = obj.section(".debug_info", PROGBITS, 0, bytes(self.info), 1)
        obj.relocs[index["info"]] = self.info_relocs
        for section in (index[n] for n in ("info", "line", "ranges", "frame", "aranges")):
            rows = obj.relocs[section]
            obj.relocs[section] = [(at, R_ABS32, obj.of_section(index.get(what, what))) for at, what in rows]

    def lines(self, functions):
        tail = (bytes([2, 1, 1, 0xFB, 14, 13, 0, 1, 1, 1, 1, 0, 0, 0, 1, 0, 0, 1, 0]) +
                f"u{self.unit.number:05d}.{'cpp' if self.unit.cxx else 'c'}".encode() + b"\0\0\0\0\0")
        data, relocs = bytearray(struct.pack("<IHI", 0, 4, len(tail)) + tail), []
        for k, (_, section, size, _) in enumerate(functions):
            data += b"\0\5\2"
            relocs.append((len(data), section))
            data += bytes(4) + b"\3" + sleb(9 + 7 * k) + b"\1"
            steps = min(6, size // 4)
            data += bytes([13 + 14 * 2 + 6] * (steps - 1))                  # a line further, four bytes further
            data += b"\2" + uleb((size - 4 * (steps - 1)) // 2) + b"\0\1\1"
        data[:4] = struct.pack("<I", len(data) - 4)
        return data, relocs

    @staticmethod
    def ranges(functions):
        relocs = [(8 * k + 4 * end, section) for k, (_, section, _, _) in enumerate(functions) for end in (0, 1)]
        return b"".join(struct.pack("<II", 0, size) for _, _, size, _ in functions) + bytes(8), relocs

    @staticmethod
    def addresses(functions):
        data = struct.pack("<IHIBBI", 8 + 4 + 8 * len(functions) + 8, 2, 0, 4, 0, 0)
        relocs = [(6, "info")] + [(16 + 8 * k, section) for k, (_, section, _, _) in enumerate(functions)]
        return data + b"".join(struct.pack("<II", 0, size) for _, _, size, _ in functions) + bytes(8), relocs

    @staticmethod
    def frames(functions):
        data, relocs = bytearray(struct.pack("<II", 12, 0xFFFFFFFF) + b"\1\0\2\x7c\x0e\x0c\x0d\0"), []
        for _, section, size, _ in functions:
            relocs += [(len(data) + 4, "frame"), (len(data) + 8, section)]
            data += struct.pack("<IIII", 20, 0, 0, size) + b"\x41\x0e\x08\x84\x02\x8e\x01\0"
        return data, relocs
