"""Where ARM and Thumb branches lead, and what the short stubs between calls and callees do: decoded and executed.

An opinion of its own, from the architecture manual. Words and halfwords are little-endian.
"""
ARM, THUMB = "arm", "thumb"


def signed(value, bits):
    return value - (1 << bits) if value >> (bits - 1) & 1 else value


class Memory:
    """The bytes of a program by their run addresses."""

    def __init__(self, elf):
        self.blocks = [(s.addr, s.data) for s in elf.sections if s.flags & 2 and s.data]

    def read(self, address, size):
        for start, data in self.blocks:
            if start <= address and address + size <= start + len(data):
                return int.from_bytes(data[address - start:address - start + size], "little")
        raise ValueError(f"nothing at {address:#x}")

    def thumb32(self, address):
        return self.read(address, 2) << 16 | self.read(address + 2, 2)


def arm_branch(word, pc):
    """(target, state, name) of a branch, or None."""
    offset = signed(word & 0xFFFFFF, 24) * 4
    if word >> 25 == 0x7D:
        return pc + 8 + offset + (word >> 23 & 2), THUMB, "blx"
    if word >> 25 & 7 == 5:
        return pc + 8 + offset, ARM, "bl" if word >> 24 & 1 else "b"
    return None


def thumb_branch(pair, pc, wide):
    """The same for a Thumb instruction of two halfwords; `wide`: J1 and J2 are in use in calls."""
    if pair >> 27 != 0x1E or not pair >> 15 & 1:
        return None
    s, j1, j2 = pair >> 26 & 1, pair >> 13 & 1, pair >> 11 & 1
    if not pair >> 12 & 1 and not pair >> 14 & 1:
        imm = s << 20 | j2 << 19 | j1 << 18 | (pair >> 16 & 0x3F) << 12 | (pair & 0x7FF) << 1
        return pc + 4 + signed(imm, 21), THUMB, "bcond"
    i1, i2 = (1 ^ j1 ^ s, 1 ^ j2 ^ s) if wide or not pair >> 14 & 1 else (s, s)
    imm = s << 24 | i1 << 23 | i2 << 22 | (pair >> 16 & 0x3FF) << 12 | (pair & 0x7FF) << 1
    offset = signed(imm, 25)
    if not pair >> 14 & 1:
        return pc + 4 + offset, THUMB, "b"
    if pair >> 12 & 1:
        return pc + 4 + offset, THUMB, "bl"
    return (pc + 4 & ~3) + offset, ARM, "blx"


def branch(memory, pc, state, wide=True):
    """(target, state, name) of the branch at pc."""
    if state == ARM:
        found = arm_branch(memory.read(pc, 4), pc)
    else:
        found = thumb_branch(memory.thumb32(pc), pc, wide)
    if found is None:
        raise ValueError(f"no branch at {pc:#x}")
    return (found[0] & 0xFFFFFFFF, *found[1:])


class Stub:
    """Runs a stub from its entry until it leaves; only ip may have changed then."""

    def __init__(self, memory, entry, state, size):
        self.memory, self.pc, self.state = memory, entry, state
        self.range = range(entry, entry + size)
        self.r = {"r4": 0x44444444, "ip": 0xCCCCCCCC, "sp": 0x10000}
        self.before = dict(self.r)
        self.stack = {}

    def run(self):
        for _ in range(10):
            if self.pc not in self.range:
                break
            self.step()
        else:
            raise ValueError(f"the stub at {self.range.start:#x} does not end")
        for name in ("r4", "sp"):
            if self.r[name] != self.before[name]:
                raise ValueError(f"the stub at {self.range.start:#x} changes {name}")
        return self.pc, self.state

    def leave(self, address):
        """A jump that takes its state from bit 0."""
        self.state = THUMB if address & 1 else ARM
        self.pc = address & ~1

    def step(self):
        if self.state == ARM:
            self.step_arm(self.memory.read(self.pc, 4))
        else:
            self.step_thumb(self.memory.read(self.pc, 2))

    def move16(self, name, value, top):
        self.r[name] = (self.r[name] & 0xFFFF | value << 16) if top else value

    def step_arm(self, word):
        pc, self.pc = self.pc, self.pc + 4
        if word == 0xE59FC000:
            self.r["ip"] = self.memory.read(pc + 8, 4)
        elif word == 0xE51FF004:
            self.leave(self.memory.read(pc + 4, 4))
        elif word == 0xE12FFF1C:
            self.leave(self.r["ip"])
        elif word & 0xFFB0F000 == 0xE300C000:
            self.move16("ip", (word >> 4 & 0xF000) | word & 0xFFF, word & 0x400000)
        elif word >> 24 == 0xEA:
            self.pc, self.state, _ = branch(self.memory, pc, ARM)
        else:
            raise ValueError(f"{word:#x} at {pc:#x} is no part of a stub")

    def step_thumb(self, half):
        pc, self.pc = self.pc, self.pc + 2
        if half >> 11 == 0x1C:
            self.pc = pc + 4 + signed(half & 0x7FF, 11) * 2
        elif half >> 11 >= 0x1D:
            self.step_thumb32(pc, self.memory.thumb32(pc))
        elif half == 0xB410:
            self.push()
        elif half == 0xBC10:
            self.r["r4"] = self.pop()
        elif half == 0xBD10:
            self.r["r4"] = self.pop()
            self.leave(self.pop())
        elif half >> 8 == 0x4C:
            self.r["r4"] = self.memory.read((pc + 4 & ~3) + (half & 0xFF) * 4, 4)
        elif half == 0x46A4:
            self.r["ip"] = self.r["r4"]
        elif half == 0x4760:
            self.leave(self.r["ip"])
        elif half == 0xB082:
            self.r["sp"] -= 8
        elif half >> 8 == 0x94:
            self.stack[self.r["sp"] + (half & 0xFF) * 4] = self.r["r4"]
        elif half not in (0x46C0, 0xBF00):
            raise ValueError(f"{half:#x} at {pc:#x} is no part of a stub")

    def step_thumb32(self, pc, pair):
        self.pc = pc + 4
        if pair == 0xF8DFF000:
            self.leave(self.memory.read(pc + 4 & ~3, 4))
        elif pair & 0xFB708F00 == 0xF2400C00:
            value = (pair >> 16 & 0xF) << 12 | (pair >> 26 & 1) << 11 | (pair >> 12 & 7) << 8 | pair & 0xFF
            self.move16("ip", value, pair & 0x800000)
        else:
            self.pc, self.state, _ = branch(self.memory, pc, THUMB)

    def push(self):
        self.r["sp"] -= 4
        self.stack[self.r["sp"]] = self.r["r4"]

    def pop(self):
        value = self.stack[self.r["sp"]]
        self.r["sp"] += 4
        return value
