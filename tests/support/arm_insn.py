"""Where ARM and Thumb instructions keep their immediates: writes a number into the field of an instruction.

An opinion of its own, from the architecture manual, for building test inputs. A 32-bit Thumb instruction is a number whose
upper half is its first halfword. Numbers are in bytes, whatever the scale of the field; a field keeps what it can hold.
"""


def split_sign(word, value, bit):
    return (word & ~(1 << bit) | (value >= 0) << bit), abs(value)


def branch(word, value):
    word = word & ~0xFFFFFF | value >> 2 & 0xFFFFFF
    return word & ~(1 << 24) | (value >> 1 & 1) << 24 if word >> 25 == 0x7D else word


def ldr(word, value):
    word, size = split_sign(word, value, 23)
    return word & ~0xFFF | size & 0xFFF


def ldrs(word, value):
    word, size = split_sign(word, value, 23)
    return word & ~0xF0F | (size & 0xF0) << 4 | size & 0xF


def ldc(word, value):
    word, size = split_sign(word, value, 23)
    return word & ~0xFF | size >> 2 & 0xFF


def alu(word, value):
    """ADD or SUB of 8 bits rotated right by an even count; the rotation that leaves the most in the 8 bits."""
    size, sign = abs(value), 0x400000 if value < 0 else 0x800000
    if size < 0x100:
        return word & ~0xC00FFF | sign | size
    fits = [(immediate, rotation) for rotation in range(1, 16)
            if (immediate := (size << 2 * rotation | size >> 32 - 2 * rotation) & 0xFFFFFFFF) < 0x100]
    if not fits:
        raise ValueError(f"{value:#x} is no immediate")
    immediate, rotation = max(fits)
    return word & ~0xC00FFF | sign | rotation << 8 | immediate


def movw(word, value):
    return word & ~0xF0FFF | (value & 0xF000) << 4 | value & 0xFFF


def thumb_branch24(pair, value):
    s, i1, i2 = value >> 24 & 1, value >> 23 & 1, value >> 22 & 1
    j1, j2 = i1 ^ s ^ 1, i2 ^ s ^ 1
    return pair & ~0x07FF2FFF | s << 26 | (value >> 12 & 0x3FF) << 16 | j1 << 13 | j2 << 11 | value >> 1 & 0x7FF


def thumb_short_call(pair, value):
    """BL before Thumb-2: two halves of 11 bits."""
    return pair & ~0x07FF07FF | (value >> 12 & 0x7FF) << 16 | value >> 1 & 0x7FF


def thumb_branch19(pair, value):
    return (pair & ~0x043F2FFF | (value >> 20 & 1) << 26 | (value >> 12 & 0x3F) << 16 | (value >> 18 & 1) << 13 |
            (value >> 19 & 1) << 11 | value >> 1 & 0x7FF)


def thumb_movw(pair, value):
    return (pair & ~0x040F70FF | (value >> 12 & 0xF) << 16 | (value >> 11 & 1) << 26 | (value >> 8 & 7) << 12 |
            value & 0xFF)


def thumb_adr(pair, value):
    size = abs(value)
    pair = pair & ~0x04A070FF | (0xA00000 if value < 0 else 0)
    return pair | (size >> 11 & 1) << 26 | (size >> 8 & 7) << 12 | size & 0xFF


def thumb_branch11(half, value):
    return half & ~0x7FF | value >> 1 & 0x7FF


def thumb_branch8(half, value):
    return half & ~0xFF | value >> 1 & 0xFF


def thumb_cbz(half, value):
    return half & ~0x2F8 | (value >> 6 & 1) << 9 | (value >> 1 & 0x1F) << 3


def thumb_pc8(half, value):
    return half & ~0xFF | value >> 2 & 0xFF


def thumb_abs5(half, value):
    return half & ~0x7C0 | (value >> 2 & 0x1F) << 6


def none(word, _):
    return word


def word(_, value):
    return value & 0xFFFFFFFF


def half(_, value):
    return value & 0xFFFF


def byte(_, value):
    return value & 0xFF


def word31(old, value):
    return old & 0x80000000 | value & 0x7FFFFFFF
