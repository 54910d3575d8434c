"""A reader of the map file for the tests: what the report says, as numbers and names.

It knows the report's form and nothing else, and fails loudly (ValueError) on a line that it does not understand.
"""
import re
from collections import namedtuple

Range = namedtuple("Range", "page name origin length used unused attrs fill")
Segment = namedtuple("Segment", "run load size init flags members")
SegmentMember = namedtuple("SegmentMember", "run load size init flags name")
OutputSection = namedtuple("OutputSection", "name page origin length note run members")
Member = namedtuple("Member", "address size library file section note")  # section "" is a hole
Module = namedtuple("Module", "group name code ro rw")
Table = namedtuple("Table", "name address records record_size size rows")
Stub = namedtuple("Stub", "callee name callee_address address calls")
Call = namedtuple("Call", "address library file section")

HEX = "([0-9a-f]{8})"
HEADINGS = {
    "MEMORY CONFIGURATION": "memory", "SEGMENT ALLOCATION MAP": "segments", "SECTION ALLOCATION MAP": "sections",
    "MODULE SUMMARY": "modules", "LINKER GENERATED COPY TABLES": "copy_tables", "VENEERS": "veneers",
    "LINKER GENERATED HANDLER TABLE": "handlers", "LINKER GENERATED CRC TABLES": "crc_tables",
    "FAR CALL TRAMPOLINES": "far_calls", "GLOBAL SYMBOLS: SORTED ALPHABETICALLY BY Name": "by_name",
    "GLOBAL SYMBOLS: SORTED BY Symbol Address": "by_address", "HIDDEN SYMBOLS:": "hidden",
    "LOCALIZED SYMBOLS:": "localized", "COMDAT SYMBOLS NOT HIDDEN OR LOCALIZED:": "comdat",
    "SYMBOL DEFINITIONS BY INPUT FILE": "definitions",
}


def numbers(*texts):
    return [int(t, 16) for t in texts]


class Map:
    def __init__(self, path):
        lines = path.read_text(encoding="latin-1").splitlines()
        self.parts = {"banner": []}
        part = self.parts["banner"]
        for line in lines:
            if line.rstrip() in HEADINGS:
                part = self.parts[HEADINGS[line.rstrip()]] = []
            elif line.strip():
                part.append(line.rstrip())
        self.output = re.search(r"^OUTPUT FILE NAME:   <(.*)>$", "\n".join(lines), re.M)[1]
        found = re.search(rf'^ENTRY POINT SYMBOL: "(.*)"  address: {HEX}$', "\n".join(lines), re.M)
        self.entry = (found[1], int(found[2], 16)) if found else None
        self.memory = list(self.read_memory(self.parts.get("memory", [])))
        self.segments = self.read_segments(self.parts.get("segments", []))
        self.sections = self.read_sections(self.parts.get("sections", []))
        self.modules, self.totals, self.grand_total = self.read_modules(self.parts.get("modules", []))
        self.copy_tables = self.read_tables(self.parts.get("copy_tables", []))
        self.handlers = self.read_tables(self.parts.get("handlers", []))
        self.crc_tables = self.read_tables(self.parts.get("crc_tables", []))
        self.veneers = self.read_stubs(self.parts.get("veneers", []))
        self.far_calls = self.read_stubs(self.parts.get("far_calls", []))
        self.by_name, _ = self.read_symbols(self.parts.get("by_name", []))
        self.by_address, self.symbol_count = self.read_symbols(self.parts.get("by_address", []))

    @staticmethod
    def match(pattern, line):
        found = re.fullmatch(pattern, line)
        if not found:
            raise ValueError(f"the map has the line {line!r}, which isn't {pattern!r}")
        return found

    def read_memory(self, lines):
        page = 0
        for line in lines[2:]:
            if line.startswith("PAGE"):
                page = int(line[5:-1])
                continue
            m = self.match(rf"  (.{{21}}) {HEX}   {HEX}  {HEX}  {HEX}(?:  (.{{0,4}}))?(.*)", line)
            yield Range(page, m[1].rstrip(), *numbers(m[2], m[3], m[4], m[5]), (m[6] or "").replace(" ", ""),
                        m[7].strip())

    def read_segments(self, lines):
        found = []
        for line in lines[2:]:
            m = self.match(rf"(  )?{HEX}    {HEX}    {HEX}   {HEX}    ([r-][w-][x-])(?: (.*))?", line)
            values = *numbers(m[2], m[3], m[4], m[5]), m[6]
            if m[1]:
                found[-1].members.append(SegmentMember(*values, m[7]))
            else:
                found.append(Segment(*values, []))
        return found

    def read_sections(self, lines):
        found, name = [], None
        for line in lines[3:]:
            m = re.fullmatch(rf"                  {HEX}    {HEX}     (.*)", line)
            if m:
                found[-1].members.append(self.member(m, found[-1].members))
                continue
            m = re.fullmatch(rf"(.{{8,}}?) +(\d+) +{HEX}    {HEX} *(.*)", line)
            if not m:
                name = line
                continue
            if m[1].rstrip() != "*":
                name = m[1].rstrip()
            run = re.search(rf"RUN ADDR = {HEX}$", m[5])
            note = m[5][:run.start()] if run else m[5]
            found.append(OutputSection(name, int(m[2]), *numbers(m[3], m[4]), note, int(run[1], 16) if run else None, []))
        return found

    @staticmethod
    def origin(text, library):
        """The library, the file and the rest of `[library] : file rest`, where blanks stand for the library before."""
        m = re.match(r"(\S*| +) : (\S+) (?=\()", text)
        if m:
            return m[1].strip() or library, m[2], text[m.end():]
        m = re.match(r"([^(]\S*) (?=\()", text)
        return (None, m[1], text[m.end():]) if m else (None, None, text)

    def member(self, m, before):
        address, size = numbers(m[1], m[2])
        if m[3].startswith("--HOLE--"):
            return Member(address, size, None, None, "", m[3][8:].strip())
        named = [b.library for b in before if b.library]
        library, file, rest = self.origin(m[3], named[-1] if named else None)
        part = self.match(r"\((.*?)\)((?: \[.*\])*)", rest)
        return Member(address, size, library, file, part[1], part[2].strip())

    def read_modules(self, lines):
        modules, totals, group = [], {}, None
        for line in lines[2:]:
            if re.fullmatch(r" {4}\S.*", line) and not line.startswith("    +"):
                group = line.strip()
            elif not line.startswith("    +"):
                m = self.match(r" {7}(\S.*?) +(\d+) +(\d+) +(\d+)", line)
                values = int(m[2]), int(m[3]), int(m[4])
                if m[1] == "Total:":
                    totals[group], group = values, None
                else:
                    modules.append(Module(group, m[1], *values))
        grand = modules.pop() if modules else None
        return modules, totals, grand and grand[2:]

    def read_tables(self, lines):
        tables = []
        for line in lines:
            if not line.startswith("\t"):
                m = self.match(rf"(\S+) @ {HEX} records: (\d+), size/record: (\d+), table size: (\d+)", line)
                tables.append(Table(m[1], int(m[2], 16), int(m[3]), int(m[4]), int(m[5]), []))
                continue
            name, _, fields = line.strip().rpartition(": ") if line.startswith("\tindex") else line.strip().partition(": ")
            if line.startswith("\tindex"):
                tables[-1].rows.append(fields)
                continue
            row = dict(field.split("=") for field in fields.split(", "))
            tables[-1].rows.append({"name": name, **{key: value if key in ("compression", "algorithm") else
                                                     int(value.removesuffix(" bytes"), 16) for key, value in row.items()}})
        return tables

    def read_stubs(self, lines):
        stubs, library = [], None
        for line in lines[3:]:
            m = re.fullmatch(rf" +(?:{HEX}     {HEX}     )?{HEX}   (.*)", line)
            if m:
                library, file, rest = self.origin(m[4], library)
                call = Call(int(m[3], 16), library, file, self.match(r"\((.*)\)", rest)[1])
                if m[1]:
                    stubs.append(Stub(*named, *numbers(m[1], m[2]), []))
                stubs[-1].calls.append(call)
            elif line.startswith("["):
                break
            else:
                named = line.split()
        counts = [int(line.split()[0][1:]) for line in lines if line.startswith("[")]
        if lines and counts != [len(stubs), sum(len(s.calls) for s in stubs)]:
            raise ValueError(f"the map counts {counts} stubs and calls and lists others: {stubs}")
        return stubs

    def read_symbols(self, lines):
        """[(address or None, name)] and the number that stands below."""
        rows = [self.match(r"(UNDEFED|[0-9a-f]{8}) +(\S.*?)(?: +[0-9a-f]{8})?", line)
                for line in lines[2:] if not line.startswith("[")]
        count = [int(line.split()[0][1:]) for line in lines if line.startswith("[")]
        return [(None if m[1] == "UNDEFED" else int(m[1], 16), m[2]) for m in rows], count[0] if count else None
