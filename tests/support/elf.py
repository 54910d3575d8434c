"""A small reader of ELF32 files for the tests: an opinion of its own, which shares no code with the linker.

It reads the section headers, program headers and symbols of one file, in either byte order, and fails loudly
(ValueError) on a file that it can't make sense of.
"""
import struct
from collections import namedtuple

Section = namedtuple("Section", "name type flags addr offset size link info align entsize index data")
Segment = namedtuple("Segment", "type offset vaddr paddr filesz memsz flags align")
Symbol = namedtuple("Symbol", "name value size bind type other shndx section")

SHT_NOBITS = 8
SHN_ABS, SHN_COMMON, SHN_XINDEX = 0xFFF1, 0xFFF2, 0xFFFF
BINDS = {0: "LOCAL", 1: "GLOBAL", 2: "WEAK"}
TYPES = {0: "NOTYPE", 1: "OBJECT", 2: "FUNC", 3: "SECTION", 4: "FILE", 5: "COMMON", 6: "TLS"}
SEGMENT_TYPES = {0: "NULL", 1: "LOAD", 2: "DYNAMIC", 6: "PHDR", 7: "TLS", 0x70000001: "EXIDX"}


def text(table, offset):
    end = table.index(b"\0", offset)
    return table[offset:end].decode("latin-1")


class Elf:
    def __init__(self, path):
        with open(path, "rb") as f:
            self.bytes = f.read()
        b = self.bytes
        if b[:4] != b"\x7fELF" or b[4] != 1:
            raise ValueError(f"{path}: no ELF32 file")
        self.end = "<" if b[5] == 1 else ">"
        (self.type, self.machine, _, self.entry, self.phoff, self.shoff, self.flags, _, phentsize, phnum,
         shentsize, shnum, shstrndx) = self.unpack("HHIIIIIHHHHHH", 16)
        self.segments = [Segment(*self.unpack("IIIIIIII", self.phoff + i * phentsize)) for i in range(phnum)]
        heads = []
        if self.shoff:
            first = self.unpack("IIIIIIIIII", self.shoff)
            shnum = shnum or first[5]
            shstrndx = first[6] if shstrndx == SHN_XINDEX else shstrndx
            heads = [self.unpack("IIIIIIIIII", self.shoff + i * shentsize) for i in range(shnum)]
        names = b[heads[shstrndx][4]:heads[shstrndx][4] + heads[shstrndx][5]] if heads else b""
        self.sections = []
        for i, h in enumerate(heads):
            data = b"" if h[1] == SHT_NOBITS else b[h[4]:h[4] + h[5]]
            self.sections.append(Section(text(names, h[0]), *h[1:], i, data))
        self.symbols = self.read_symbols()

    def unpack(self, fmt, offset):
        return struct.unpack_from(self.end + fmt, self.bytes, offset)

    def read_symbols(self):
        tables = [s for s in self.sections if s.type == 2]
        if not tables:
            return []
        table, strings = tables[0], self.sections[tables[0].link].data
        extended = [s for s in self.sections if s.type == 18 and s.link == table.index]
        result = []
        for i in range(len(table.data) // 16):
            name, value, size, info, other, shndx = struct.unpack_from(self.end + "IIIBBH", table.data, i * 16)
            if shndx == SHN_XINDEX and extended:
                shndx, = struct.unpack_from(self.end + "I", extended[0].data, i * 4)
            where = {0: "UND", SHN_ABS: "ABS", SHN_COMMON: "COM"}.get(shndx)
            if where is None:
                where = self.sections[shndx].name
            result.append(Symbol(text(strings, name), value, size, BINDS.get(info >> 4, str(info >> 4)),
                                 TYPES.get(info & 15, str(info & 15)), other, shndx, where))
        return result

    def section(self, name):
        return next((s for s in self.sections if s.name == name), None)

    def symbol(self, name):
        """The symbol of that name, a global one before a local one, or None."""
        found = [s for s in self.symbols if s.name == name]
        return next((s for s in found if s.bind != "LOCAL"), found[0] if found else None)

    def segment_rows(self):
        """Each program header as one line: type, addresses, sizes, flags."""
        rows = []
        for s in self.segments:
            flags = "".join(c for bit, c in ((4, "R"), (2, "W"), (1, "X")) if s.flags & bit)
            rows.append(f"{SEGMENT_TYPES.get(s.type, hex(s.type))} {s.vaddr:#x} {s.paddr:#x} {s.filesz:#x} "
                        f"{s.memsz:#x} {flags}")
        return rows

    def image(self):
        """The bytes to load, as {physical address: bytes}, from the program headers."""
        return {s.paddr: self.bytes[s.offset:s.offset + s.filesz] for s in self.segments if s.type == 1 and s.filesz}
