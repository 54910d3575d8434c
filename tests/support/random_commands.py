"""Command files made at random that are valid: every one links with the objects of OBJECTS.

A file is built as tokens, rule by rule, and then written with white space, comments, macros, conditionals and an include
file put in where the language allows them. `command_file(rng)` gives {file name: text}, with link.cmd as the first.
"""

SOURCES = {
    "main.s": """
    .global _start
    .section .text.start, "ax"
    .thumb_func
_start: bl send
    bl far
    ldr r0, =table
    ldr r1, =mode
    ldr r2, =buffer
    .section .rodata.table, "a"
table: .word 1, 2, 3, 4
    .section .data.mode, "aw"
mode: .word 5, table
    .section .bss.buffer, "aw", %nobits
buffer: .space 64
""",
    "uart.s": """
    .global send
    .section .text.send, "ax"
    .thumb_func
send: ldr r0, =speed
    ldr r1, =ring
    ldr r2, =names
    bx lr
    .section .rodata.names, "a"
names: .asciz "uart names"
    .balign 4
    .section .data.speed, "aw"
speed: .word 9600
    .section .bss.ring, "aw", %nobits
ring: .space 32
""",
    "far.s": """
    .global far
    .section .text.far, "ax"
    .thumb_func
far: bx lr
""",
}
OBJECTS = ["main.o", "uart.o"]
ARCHIVE = ("lib.a", ["far.o"])

PATTERNS = {
    "code": [["*", "(", ".text*", ")"], ["main.o", "(", ".text*", ")"], ["u*.o", "(", ".text*", ")"],
             ["lib.a", "<", "far.o", ">", "(", ".text*", ")"], ["lib.a", "(", ".text.far", ")"], ["-l", "lib.a", "(", ".text*", ")"],
             ["--library=lib.a", "(", ".text.?ar", ")"], ["*.o", "(", ".text.s*", ".text.far", ")"], ["m*", "(", ".nothing", ")"]],
    "constants": [["*", "(", ".rodata*", ")"], ["main.o", "(", ".rodata.table", ")"], ["uart.o", "(", ".rodata.*", ",", ".nothing", ")"]],
    "data": [["*", "(", ".data*", ")"], ["main.o", "(", ".data.mode", ")"], ["uart.o", "(", ".data.*", ")"]],
    "bss": [["*", "(", ".bss*", ")"], ["main.o", "(", ".bss.buffer", ")"], ["uart.o", "(", ".bss.*", ")"]],
}


class Maker:
    def __init__(self, rng):
        self.rng = rng
        self.names = 0
        self.symbols = []
        self.ranges = []
        self.macros = []
        self.tables = 0
        self.in_sections = False

    def chance(self, p):
        return self.rng.random() < p

    def name(self, stem):
        self.names += 1
        return f"{stem}{self.names}"

    def case(self, word):
        return self.rng.choice([word.upper(), word.lower()])

    # Numbers and expressions. A number of this value in any of its forms.
    def number(self, value):
        forms = [str(value), hex(value), f"0x{value:X}", f"{value:#x}".replace("0x", "0X")]
        if value:
            forms += [f"0{value:o}", f"{value}"]
        digits = f"{value:x}"
        forms.append((digits if digits[0].isdigit() else "0" + digits) + self.rng.choice("hH"))
        for letter, factor in (("k", 1 << 10), ("m", 1 << 20), ("g", 1 << 30)):
            if value and value % factor == 0:
                forms.append(f"{value // factor}{self.rng.choice([letter, letter.upper()])}")
        if self.chance(0.1):
            self.macros.append((name := self.name("NUM_"), self.rng.choice(forms)))
            return name
        return self.rng.choice(forms)

    def constant(self, value, depth=0):
        """Tokens of a constant expression of this value."""
        kind = self.rng.randrange(8) if depth < 3 else 0
        if kind == 1:
            return ["("] + self.constant(value, depth + 1) + [")"]
        if kind == 2:
            part = self.rng.randrange(value + 1)
            return self.operand(value - part, depth) + ["+"] + self.operand(part, depth)
        if kind == 3:
            part = self.rng.randrange(1 << 12)
            return self.operand(value + part, depth) + ["-"] + self.operand(part, depth)
        if kind == 4 and value % 4 == 0:
            return self.operand(value // 4, depth) + [self.rng.choice(["*"]), "4"]
        if kind == 5 and value % 8 == 0:
            return self.operand(value // 8, depth) + ["<<", "3"]
        if kind == 6:
            return self.operand(value, depth) + [self.rng.choice(["|", "+", "-"]), "0"]
        return [self.number(value)]

    def operand(self, value, depth):
        tokens = self.constant(value, depth + 1)
        return tokens if len(tokens) == 1 else ["("] + tokens + [")"]

    def expression(self, depth=0):
        """Tokens of any expression of numbers, symbols defined so far, and operators of ranges."""
        kind = self.rng.randrange(10)
        if depth > 3 or kind < 3:
            return [self.number(self.rng.randrange(1 << 16))]
        if kind < 5 and self.symbols:
            return [self.rng.choice(self.symbols)]
        if kind == 5:
            return [self.rng.choice("-~!")] + self.unary(depth)
        if kind == 6:
            return [self.case(self.rng.choice(["START", "END", "SIZE"])), "(", self.rng.choice(self.ranges), ")"]
        if kind == 7:
            return ["("] + self.expression(depth + 1) + [")"]
        op = self.rng.choice(["+", "-", "*", "&", "|", "&&", "||", "==", "!=", "<", ">", "<=", ">=", "/", "%", "<<", ">>"])
        right = [self.number(self.rng.randrange(1, 9))] if op in "/%<<>>" else self.expression(depth + 1)
        return self.unary(depth) + [op] + right

    def unary(self, depth):
        return ["("] + self.expression(depth + 1) + [")"] if self.chance(0.5) else [self.number(self.rng.randrange(99))]

    def assignment(self, place=""):
        symbol = self.name("sym")
        target = ["WEAK", "(", symbol, ")"] if self.chance(0.2) else [symbol]
        tokens = target + ["="] + (self.expression() if not place or self.chance(0.5) else [place]) + [";"]
        if not place and not self.in_sections:
            self.symbols.append(symbol)  # one of an empty section may not come to be
        return tokens

    # MEMORY.
    def memory(self):
        tokens = ["MEMORY", "{"]
        if self.chance(0.2):
            tokens += ["PAGE", "0", ":"]
        for number in range(self.rng.randrange(3, 7)):
            name = self.rng.choice(["FLASH", "RAM", "ext", "Slow_RAM", "Z.a$"]) + str(number)
            self.ranges.append(name)
            specifiers = [
                [self.rng.choice(["origin", "ORIGIN", "org", "o"])] + self.equals() + self.constant(number << 16),
                [self.rng.choice(["length", "LENGTH", "len", "l"])] + self.equals() + self.constant(0x8000),
            ]
            if self.chance(0.3):
                specifiers.append([self.rng.choice(["fill", "FILL", "f"])] + self.equals() + self.literal())
            elif self.chance(0.2):
                specifiers.append([self.rng.choice(["vfill", "VFILL", "vf"])] + self.equals() + self.literal())
            self.rng.shuffle(specifiers)
            tokens.append(name)
            if self.chance(0.3):
                tokens += ["(", self.rng.choice(["RWX", "RWIX", "XWRI"]), ")"]
            if self.chance(0.8):
                tokens.append(":")
            for specifier in specifiers:
                tokens += specifier + ([","] if self.chance(0.6) else [])
        return tokens + ["}"]

    def equals(self):
        return ["="] if self.chance(0.8) else []

    def literal(self):
        value = self.number(self.rng.randrange(1, 1 << self.rng.choice([8, 16])))
        parens = self.rng.randrange(3)
        return ["("] * parens + [value] + [")"] * parens

    # SECTIONS.
    def sections(self):
        self.in_sections = True
        entries = []
        for kind in self.rng.sample(sorted(PATTERNS), len(PATTERNS)):
            for _ in range(self.rng.randrange(1, 3)):
                entries.append(self.output_section(kind))
        while self.chance(0.4):
            entries.append(self.group())
        self.rng.shuffle(entries)
        self.in_sections = False
        self.symbols = []
        tokens = ["SECTIONS", "{"]
        for entry in entries:
            tokens += entry
        return tokens + ["}"]

    def group(self):
        is_union = self.chance(0.3)
        members = []
        for _ in range(self.rng.randrange(1, 4)):
            if not is_union and self.chance(0.2):
                members += self.group_head(True) + ["{"] + self.member("bss") + self.member("bss") + ["}"]
            else:
                members += self.member("bss" if is_union else self.rng.choice(sorted(PATTERNS)))
        return (self.group_head(is_union) + ["{"] + members + ["}", ">"] + self.target()[1:]  # "=" would be the fill
                + (self.symbol_properties(2) if self.chance(0.4) else []))

    def group_head(self, is_union):
        tokens = ["UNION" if is_union else "GROUP"]
        if self.chance(0.4):
            tokens += ["(", self.name("group"), ")"]
        return tokens + ([":"] if self.chance(0.6) else [])

    def member(self, kind):
        return [self.name(".m"), ":"] + self.body(kind, False) + (self.symbol_properties(1) if self.chance(0.3) else [])

    def output_section(self, kind):
        splits = kind == "code" and self.chance(0.15)
        body = self.body(kind, not splits)
        tokens = [self.name(self.rng.choice([".out", "out", "$x."]))] + ([":"] if self.chance(0.8) else [])
        properties = [self.split_target() if splits else self.load_run() if kind == "data" and self.chance(0.5) else self.target()]
        if not splits and self.chance(0.3):
            properties.append(self.alignment())
        if self.chance(0.3):
            properties.append(self.symbol_properties(3))
        if kind != "bss" and self.chance(0.2):
            properties.append([self.case("fill")] + self.equals() + self.literal())
        if not splits and kind != "bss" and self.chance(0.15):
            self.tables += 1
            properties.append([self.case("crc_table"), "(", f"crc{self.tables}"]
                              + ([",", "algorithm", "=", self.rng.choice(["CRC32", "CRC16_ALT", "ARC"])] if self.chance(0.5) else [])
                              + [")"])
        if kind == "bss" and self.chance(0.3):
            properties.append(self.rng.choice([["TYPE", "(", "NOINIT", ")"], ["TYPE", "=", "NOINIT"], ["type", "NOLOAD"]]))
        self.rng.shuffle(properties)
        if kind == "bss" and self.chance(0.1):
            properties.insert(0, ["(", "NOINIT", ")"])  # behind an address it would be its flag
        before = self.chance(0.5)
        if before:
            tokens += body
        for number, properties_ in enumerate(properties):
            tokens += ([","] if (number or before) and self.chance(0.4) else []) + properties_
        return tokens + ([] if before else body)

    def body(self, kind, dots):
        tokens = ["{"]
        for pattern in self.rng.sample(PATTERNS[kind], self.rng.randrange(1, len(PATTERNS[kind]) + 1)):
            tokens += pattern
            if self.chance(0.2):
                tokens += ["{"] + self.symbol_properties(2) + ["}"]
            if self.chance(0.2):
                tokens.append(",")
            if dots and self.chance(0.2):
                tokens += self.rng.choice([[".", "+=", self.number(4 * self.rng.randrange(9)), ";"],
                                           [".", "=", "ALIGN", "(", self.number(1 << self.rng.randrange(2, 6)), ")", ";"],
                                           self.assignment("."), self.assignment()])
        return tokens + ["}"]

    def target(self):
        place = self.rng.choice(self.ranges)
        tokens = [self.rng.choice([">", ">", "="])]
        kind = self.rng.randrange(6)
        if kind == 0:
            return tokens + ["("] * 2 + [place] + [")"] * 2
        if kind == 1:
            return tokens + ["(", place, "|", self.rng.choice(self.ranges), ")"]
        if kind == 2:
            return tokens + [place, "|", self.rng.choice(self.ranges)]
        if kind == 3:
            return tokens + ["(", place, ",", "HIGH", ")"]
        if kind == 4:
            return tokens + [place, "(", "HIGH", ")"]
        return tokens + [place]

    def split_target(self):
        return [">>"] + "|".join(self.rng.sample(self.ranges, 2)).replace("|", " | ").split()

    def load_run(self):
        load, run = self.target(), self.target()
        return [self.case("load")] + load + ([","] if self.chance(0.5) else []) + [self.case("run")] + run

    def alignment(self):
        amount = self.number(1 << self.rng.randrange(2, 7))
        word = self.rng.choice(["ALIGN", "BLOCK", "PALIGN"])
        if word == "PALIGN" and self.chance(0.3):
            return [self.case(word), "(", self.case("POWER2"), ")"]
        return [self.case(word)] + self.rng.choice([["(", amount, ")"], ["=", amount], ["=", "(", amount, ")"]])

    def symbol_properties(self, most):
        tokens = []
        for _ in range(self.rng.randrange(1, most + 1)):
            word = self.rng.choice(["LOAD_START", "START", "LOAD_END", "END", "LOAD_SIZE", "SIZE", "RUN_START", "RUN_END", "RUN_SIZE"])
            symbol = self.name("mark")
            inner = ["WEAK", "(", symbol, ")"] if self.chance(0.2) else [symbol]
            tokens += [self.case(word), "("] + inner + [")"]
        return tokens

    def ecc(self):
        tokens = ["ECC", "{", self.name("algo"), ":"]
        parameters = [["PARITY_MASK", "=", self.number(self.rng.randrange(256))]]
        if self.chance(0.5):
            parameters.append(["address_mask"] + self.equals() + self.constant(0xFF00))
        if self.chance(0.5):
            parameters.append(["MIRRORING"] + self.equals() + [self.rng.choice(["ASPEN", "BIRCH", "abAB", "ABC"])])
        self.rng.shuffle(parameters)
        for parameter in parameters:
            tokens += parameter + ([","] if self.chance(0.5) else [])
        return tokens + ["}"]

    # The text.
    def text(self, tokens):
        """The tokens with anything between them that means nothing."""
        out, line = [], 0
        for token in tokens:
            gap = self.rng.choice([" ", " ", " ", "  ", "\t", "\n", "\n\n", " /* c */ ", "\n/* two\n lines { */\n", " // rest }\n",
                                   " \\\n"])
            if self.chance(0.02) and gap.endswith("\n") and "\\" not in gap:
                gap += self.rng.choice(["#if 0\n} % ( nonsense\n#endif\n", "#if 1 + 1 == 2 && !defined(NEVER)\n#else\n{ {\n#endif\n",
                                        "#define EMPTY\n", "#ifdef NEVER\n#error never\n#endif\n"])
            if self.chance(0.01):
                gap += "EMPTY_WORD "
            out.append(gap + token)
        return "".join(out)


def command_file(rng):
    maker = Maker(rng)
    pieces = [maker.memory()]
    if maker.chance(0.3):
        pieces.append(maker.ecc())
    for _ in range(rng.randrange(4)):
        pieces.append(maker.assignment())
    pieces.append(maker.sections())
    for _ in range(rng.randrange(4)):
        pieces.append(maker.assignment())
    texts = [maker.text(piece) for piece in pieces]
    files = {"link.cmd": "-e _start\n"}
    macros = "".join(f"#define {name} {value}\n" for name, value in maker.macros) + "#define EMPTY_WORD\n"
    files["link.cmd"] += macros
    included = rng.randrange(len(texts) * 2)
    for number, text in enumerate(texts):
        if number == included:
            files["part.inc"] = text + "\n"
            text = "\n#include \"part.inc\""
        files["link.cmd"] += text + "\n"
    return files
