"""Writes relocatable ELF32 ARM objects for the tests: any relocation type, any addend, REL or RELA, either byte order.

What an assembler does not offer can be had here: the test says sections, symbols and relocation records, and gets a file
that the linker and its peers read alike.
"""
import struct

ABS, UND = 0xFFF1, 0
NOTYPE, OBJECT, FUNC = 0, 1, 2
LOCAL, GLOBAL, WEAK = 0, 1, 2
ALLOC, WRITE, EXEC = 2, 1, 4
V4T, V5TE, V7, V6_M = 2, 4, 10, 11


class ElfObject:
    def __init__(self, big=False, arch=V7):
        self.end = ">" if big else "<"
        self.sections = [("", 0, 0, b"", 0, 0, 0, 0)]  # name type flags data link info align entsize
        self.symbols = [("", 0, 0, 0, 0)]              # name value type bind section
        self.relocs = {}
        tags = bytes([6, arch, 8, 1, 9, 2])
        body = b"aeabi\0" + bytes([1]) + self.pack("I", 5 + len(tags)) + tags
        self.attributes = b"A" + self.pack("I", 4 + len(body)) + body

    def pack(self, form, *values):
        return struct.pack(self.end + form, *values)

    def section(self, name, flags, data, align=8):
        self.sections.append((name, 1, flags, bytes(data), 0, 0, align, 0))
        return len(self.sections) - 1

    def nobits(self, name, flags, size, align=8):
        """A section of that size without contents in the file."""
        self.sections.append((name, 8, flags, range(size), 0, 0, align, 0))
        return len(self.sections) - 1

    def set_data(self, section, data):
        row = self.sections[section]
        self.sections[section] = row[:3] + (bytes(data),) + row[4:]

    def symbol(self, name, section, value, kind=NOTYPE, bind=GLOBAL):
        self.symbols.append((name, value & 0xFFFFFFFF, kind, bind, section))

    def reloc(self, section, offset, number, symbol, addend=None):
        """The symbol by its name; an addend for the record makes it a RELA record."""
        self.relocs.setdefault((section, addend is not None), []).append((offset, number, symbol, addend))

    def bytes(self):
        ordered = sorted(self.symbols, key=lambda s: s[3] != LOCAL)
        number = {s[0]: i for i, s in enumerate(ordered)}
        strings = bytearray(b"\0")

        def text(s):
            if not s:
                return 0
            at = len(strings)
            strings.extend(s.encode() + b"\0")
            return at

        symtab = b"".join(self.pack("IIIBBH", text(n), v, 0, b << 4 | k, 0, s) for n, v, k, b, s in ordered)
        sections = list(self.sections)
        sections.append((".ARM.attributes", 0x70000003, 0, self.attributes, 0, 0, 1, 0))
        symtab_index = len(sections) + len(self.relocs)
        for (section, rela), rows in self.relocs.items():
            data = b"".join(self.pack("II", o, number[s] << 8 | n) + (self.pack("i", a) if rela else b"")
                            for o, n, s, a in rows)
            name = (".rela" if rela else ".rel") + self.sections[section][0]
            sections.append((name, 4 if rela else 9, 0x40, data, symtab_index, section, 4, 12 if rela else 8))
        locals_ = sum(s[3] == LOCAL for s in ordered)
        sections.append((".symtab", 2, 0, symtab, symtab_index + 1, locals_, 4, 16))
        sections.append((".strtab", 3, 0, b"", 0, 0, 1, 0))
        names = [text(s[0]) for s in sections]
        sections[-1] = (".strtab", 3, 0, bytes(strings), 0, 0, 1, 0)
        out, heads = bytearray(52), []
        for name, (_, kind, flags, data, link, info, align, entsize) in zip(names, sections):
            out.extend(bytes(-len(out) % max(align, 1)))
            heads.append(self.pack("10I", name, kind, flags, 0, len(out), len(data), link, info, align, entsize))
            out.extend(data if kind != 8 else b"")
        out.extend(bytes(-len(out) % 4))
        out[:52] = b"\x7fELF" + bytes([1, 2 if self.end == ">" else 1, 1]) + bytes(9) + self.pack(
            "HHIIIIIHHHHHH", 1, 40, 1, 0, 0, len(out), 0x05000000, 52, 0, 0, 40, len(sections), len(sections) - 1)
        return bytes(out) + b"".join(heads)
