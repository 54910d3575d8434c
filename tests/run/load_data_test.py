#!/usr/bin/env python3
"""Copy tables, C initialisation and CRC tables of random programs, read the way that a program's start-up reads them.

Streams, tables and check values are computed here from their description alone. Each link holds many output sections of
random contents, sizes and encodings; what comes out of the tables must be the sections' bytes again, the size of an image
must be what the format gives, an encoding that doesn't pay must not be used, and check values must agree.
"""
import argparse
import itertools
import random
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "support"))
from elf import Elf  # noqa: E402
from elf_write import ABS, ALLOC, EXEC, FUNC, LOCAL, WRITE, ElfObject  # noqa: E402, F401

RAM, FLASH, LENGTH = 0x20000000, 0x08000000, 0x04000000
ROUTINES = {"copy": "__QV_decompress_none", "zero": "__QV_zero_init", "rle": "__QV_decompress_rle24",
            "lzss": "__QV_decompress_lzss"}
# Sizes and distances around the limits of the formats.
RUNS = (1, 2, 3, 4, 5, 17, 18, 145, 146, 255, 256, 4094, 4095, 4096, 32785, 32786, 65535, 65536, 70000)
DISTANCES = (4094, 4095, 4096)

# name: order, polynomial, initial value, reflected, final XOR, data at the low end, pairs of words; by number.
CRCS = [("CRC32_PRIME", 32, 0x04C11DB7, 0, 0, 0, 0, 0), ("CRC16_802_15_4", 16, 0x1021, 0, 0, 0, 0, 0),
        ("CRC16_ALT", 16, 0x8005, 0, 0, 0, 0, 0), ("CRC8_PRIME", 8, 0x07, 0, 0, 0, 0, 0),
        ("CRC16_CCITT", 16, 0x1021, 0xFFFF, 0, 0, 0, 0), ("XMODEM", 16, 0x8408, 0, 1, 0, 0, 0),
        ("ARC", 16, 0x8005, 0, 1, 0, 0, 0), ("CRC16_IAR", 16, 0x1021, 0, 0, 0, 1, 0),
        ("CRC32_IAR", 32, 0x04C11DB7, 0, 0, 0, 1, 0), ("CRC32", 32, 0x04C11DB7, 0xFFFFFFFF, 1, 0xFFFFFFFF, 0, 0),
        ("TRINITY_CRC64_ISO", 64, 0x1B, 0, 0, 0, 0, 1), ("CRC32_C", 32, 0x1EDC6F41, 0, 0, 0, 0, 0),
        ("CRC24_FLEXRAY", 24, 0x5D6DCB, 0, 0, 0, 0, 0)]


class Wrong(Exception):
    pass


def require(ok, text):
    if not ok:
        raise Wrong(text)


# --- the formats

def rle_stream(data):
    if not data:
        return b""
    mark = min(range(256), key=lambda v: (data.count(v), v))
    out = bytearray([mark])
    for value, run in itertools.groupby(data):
        n = len(list(run))
        while n > 3:
            m = min(n, 0xFFFFFF)
            out.append(mark)
            if m > 255:
                out += b"\0" + (b"\0" + bytes([m >> 16]) if m > 65535 else b"") + bytes([m >> 8 & 255])
            out += bytes([m & 255, value])
            n -= m
        if n:
            out += bytes([mark, n]) if value == mark else bytes([value]) * n
    return bytes(out) + bytes([mark, 0, 0, 0])


def lzss_stream(data):
    """Only for small inputs: every place is tried."""
    items, at = [], 0
    while at < len(data):
        best, back = 0, 0
        for start in range(max(0, at - 4095), at):
            n = 0
            while n < 32785 and at + n < len(data) and data[start + n] == data[at + n]:
                n += 1
            if n > best:
                best, back = n, at - start
        if best < 3:
            items.append((1, data[at:at + 1]))
            at += 1
            continue
        pair = bytes([back - 1 >> 4, (back - 1 & 15) << 4 | min(best - 3, 15)])
        if best >= 18:
            pair += bytes([best - 18]) if best < 146 else bytes([best - 18 & 127 | 128, best - 18 >> 7])
        items.append((0, pair))
        at += best
    if data:
        items.append((0, b"\xff\xf0"))
    out = bytearray()
    for i in range(0, len(items), 8):
        group = items[i:i + 8]
        out.append(sum(flag << bit for bit, (flag, _) in enumerate(group)))
        out += b"".join(b for _, b in group)
    return bytes(out)


def unpack_rle(image, at):
    mark, out = image[at], bytearray()
    at += 1
    while True:
        value, n = image[at], 1
        at += 1
        if value == mark:
            n = image[at]
            at += 1
            if n == 0:
                n, at = image[at], at + 1
                if n == 0:
                    n, at = image[at], at + 1
                    if n == 0:
                        return bytes(out), at
                    n, at = n << 8 | image[at], at + 1
                n, at = n << 8 | image[at], at + 1
            if n > 3:
                value, at = image[at], at + 1
        out += bytes([value]) * n


def unpack_lzss(image, at):
    out = bytearray()
    while True:
        flags, at = image[at], at + 1
        for bit in range(8):
            if flags >> bit & 1:
                out.append(image[at])
                at += 1
                continue
            back, n, at = (image[at] << 4 | image[at + 1] >> 4) + 1, (image[at + 1] & 15) + 3, at + 2
            if back == 4096:
                return bytes(out), at
            if n == 18:
                low, at = image[at], at + 1
                n += low & 127
                if low > 127:
                    n, at = n + (image[at] << 7), at + 1
            for _ in range(n):
                out.append(out[-back])


CRC_TABLES = {}


def crc(number, data, big):
    """One byte at a time over a table of the algorithm; the bit arithmetic is in the table."""
    _, order, poly, value, reflected, last, low_end, pairs = CRCS[number]
    mask, top = (1 << order) - 1, 1 << order - 1
    if number not in CRC_TABLES:
        table = []
        for i in range(256):
            r = i << order - 8
            for _ in range(8):
                r = (r << 1 ^ (poly if r & top else 0)) & mask
            table.append(r)
        CRC_TABLES[number] = table
    table = CRC_TABLES[number]
    if pairs:
        data += bytes(-len(data) % 8)
        data = b"".join(data[i + 4:i + 8] + data[i:i + 4] if big else data[i:i + 8][::-1] for i in range(0, len(data), 8))
    if reflected:
        data = bytes(int(f"{b:08b}"[::-1], 2) for b in data)
    for byte in data:
        out = value >> order - 8
        value = ((value << 8 | byte) & mask) ^ table[out] if low_end else (value << 8 & mask) ^ table[out ^ byte]
    if reflected:
        value = int(f"{value:0{order}b}"[::-1], 2)
    value ^= last
    return (value << 32 | value >> 32) & mask if pairs else value


# --- random programs

def random_data(rnd):
    """Contents as firmware has them: runs, text, counters, noise; repeats at the limits of distance."""
    kind = rnd.randrange(8)
    if kind == 0:
        return bytes([rnd.randrange(256)]) * rnd.choice(RUNS[:rnd.choice((13, 19))]) + bytes(rnd.randrange(3))
    if kind == 1 and rnd.random() < 0.15:
        block = rnd.randbytes(rnd.choice((3, 17, 18, 145, 146)))
        return block + rnd.randbytes(rnd.choice(DISTANCES) - len(block)) + block
    size = rnd.randrange(rnd.choices((40, 400, 3000, 70001), (60, 32, 7, 0.3))[0])
    out = bytearray()
    while len(out) < size:
        n = rnd.randrange(1, 60)
        out += rnd.choice((bytes(n), b"the quick brown fox "[:n], bytes(range(n)), rnd.randbytes(n // 3 + 1),
                           bytes([rnd.randrange(256)]) * n, bytes(out[-rnd.randrange(1, 5000):][:n])))
    return bytes(out[:size])


def routines(big):
    obj = ElfObject(big)
    text = obj.section(".text", ALLOC | EXEC, bytes(64))
    for i, name in enumerate(ROUTINES.values()):
        obj.symbol(name, text, 8 * i + 1, FUNC)
    return obj.bytes()


def write_program(work, rnd, items, rom_model):
    """An object with a section per item, and the command file; the items gain their names and what is asked for."""
    big = rnd.random() < 0.3
    obj, lines = ElfObject(big), []
    for i, item in enumerate(items):
        data = item["data"]
        if rom_model:
            name, flags, where = f".d{i}", ALLOC | WRITE, "> RAM"
        elif rnd.random() < 0.4:
            item["crc"] = rnd.randrange(len(CRCS))
            name, flags = f".c{i}", ALLOC
            where = f"> FLASH, crc_table(k{i}, algorithm={CRCS[item['crc']][0]})"
        else:
            item["encoding"] = rnd.choice((None, "off", "rle", "lzss"))
            word = f", compression={item['encoding']}" if item["encoding"] else ""
            name, flags, where = f".s{i}", ALLOC | WRITE, f"LOAD > FLASH, RUN > RAM, table(t{i}{word})"
        item["name"] = name
        if rom_model and not any(data):
            obj.nobits(name, flags, len(data), 1)
        else:
            obj.section(name, flags, data, rnd.choice((1, 2, 4, 8)))
        lines.append(f"    {name} : {where}\n")
    (work / "in.o").write_bytes(obj.bytes())
    (work / "routines.o").write_bytes(routines(big))
    (work / "link.cmd").write_text(
        f"MEMORY {{ FLASH (RX) : origin = {FLASH:#x}, length = {LENGTH:#x}  RAM : origin = {RAM:#x}, length = {LENGTH:#x} }}\n"
        "SECTIONS {\n    .text : > FLASH\n    .cinit : > FLASH\n    .ovly : > FLASH\n    .QV.crctab : > FLASH\n"
        + "".join(lines) + "}\n")
    return big


class Image:
    """What stands in the memories when the program is loaded, and where its symbols are."""

    def __init__(self, elf, big):
        self.elf, self.order = elf, "big" if big else "little"
        self.pieces = [(s.paddr, elf.bytes[s.offset:s.offset + s.filesz]) for s in elf.segments if s.type == 1]
        self.names = {s.value: s.name for s in elf.symbols}

    def from_address(self, address):
        for start, data in self.pieces:
            if start <= address < start + len(data):
                return data[address - start:]
        raise Wrong(f"nothing is loaded at {address:#x}")

    def number(self, address, size=4):
        data = self.from_address(address)[:size]
        require(len(data) == size, f"{size} bytes at {address:#x} are cut off")
        return int.from_bytes(data, self.order)

    def symbol(self, name):
        return self.elf.symbol(name).value


def unpacked(image, address):
    """The bytes of an encoded load image, the name of its encoding and the image's size."""
    data = image.from_address(address)
    handler = image.number(image.symbol("__QV_Handler_Table_Base") + 4 * data[0])
    name = {r: k for k, r in ROUTINES.items()}[image.names[handler]]
    if name == "rle":
        return (*unpack_rle(data, 1), name)
    if name == "lzss":
        return (*unpack_lzss(data, 1), name)
    require(data[1:4] == bytes(3), f"padding at {address:#x}")
    require(address % 4 == 0, f"the size at {address:#x} is not aligned")
    size = image.number(address + 4)
    return (bytes(size), 8, name) if name == "zero" else (data[8:8 + size], 8 + size, name)


def check_encoding(wanted, data, encoding, size, fallback):
    """The encoding is the wanted one exactly when that is smaller than the fallback."""
    plain = len(data) + (8 if fallback == "copy" else 0)
    stream = {"rle": rle_stream, "lzss": lzss_stream if len(data) <= 64 else None}.get(wanted)
    if stream is not None:
        right = wanted if len(stream(data)) + 1 < plain else fallback
        require(encoding == right, f"{encoding} where {right} is smaller ({len(data)} bytes)")
        require(encoding != wanted or size == len(stream(data)) + 1, f"{size} bytes of {wanted} for {len(data)} bytes")
    require(encoding in (wanted, fallback), f"{encoding} where {wanted} is asked for")
    require(encoding == fallback or size < plain, f"{size} bytes of {encoding} for {len(data)} bytes")


def check_copy_item(image, i, item):
    data, table = item["data"], image.symbol(f"t{i}")
    require(image.number(table, 2) == 12 and image.number(table + 2, 2) == 1, f"header of t{i}")
    require(image.symbol(f"__QV_table_t{i}") == table, f"second name of t{i}")
    load, run, size = (image.number(table + 4 + 4 * k) for k in range(3))
    require(run == image.elf.section(item["name"]).addr, f"run address of t{i}")
    wanted = item["encoding"] or "off"
    if size:
        require(size == len(data) and image.from_address(load)[:size] == data, f"bytes of t{i}")
        check_encoding(wanted, data, "off", size, "off")
    else:
        bytes_, used, encoding = unpacked(image, load)
        require(bytes_ == data, f"unpacked bytes of t{i}")
        check_encoding(wanted, data, encoding, used, "off")


def check_crc_item(image, i, item, big):
    table = image.symbol(f"k{i}")
    require(table % 8 == 0 and image.number(table) == 24 and image.number(table + 4) == 1, f"header of k{i}")
    require(image.symbol(f"__QV_CRC_k{i}") == table, f"second name of k{i}")
    address, size = image.number(table + 20), image.number(table + 24)
    require((image.number(table + 16), size, image.number(table + 28)) == (item["crc"], len(item["data"]), 0), f"fields of k{i}")
    require(image.from_address(address)[:size] == item["data"], f"address of k{i}")
    require(image.number(table + 8, 8) == crc(item["crc"], item["data"], big), f"{CRCS[item['crc']][0]} of {size} bytes")


def check_rom_model(image, items, wanted):
    base, limit = image.symbol("__QV_CINIT_Base"), image.symbol("__QV_CINIT_Limit")
    by_address, loads = {image.elf.section(item["name"]).addr: item for item in items}, []
    require(limit - base == 8 * len(items), f"{limit - base} bytes of table for {len(items)} sections")
    for record in range(base, limit, 8):
        load, item = image.number(record), by_address.pop(image.number(record + 4))
        bytes_, used, encoding = unpacked(image, load)
        loads.append(load)
        require(bytes_ == item["data"], f"unpacked bytes of {item['name']}")
        if any(item["data"]):
            check_encoding(wanted, item["data"], encoding, used, "copy")
        else:
            require(encoding == ("rle" if wanted == "rle" else "zero"), f"{encoding} for zeros")
    require(loads == sorted(loads), "the order of records")


def check_program(opts, seed, count):
    """One link; returns the number of inputs that it checked."""
    rnd, work = random.Random(seed), opts.work
    rom_model = seed % 4 == 0
    items = [{"data": d} for d in (random_data(rnd) for _ in range(count)) if d]
    big = write_program(work, rnd, items, rom_model)
    args = [opts.qvlink, "in.o", "routines.o", "link.cmd", "-o", "out.elf", "--unused_section_elimination=off"]
    wanted = rnd.choice(("lzss", "rle", "off"))
    if rom_model:
        args += ["--rom_model", f"--cinit_compression={wanted}"]
    args += ["--entry_point=" + ROUTINES["copy"], *(["--be32"] if big else [])]
    done = subprocess.run([str(a) for a in args], cwd=work, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=100)
    require(done.returncode == 0, f"status {done.returncode}\n{done.stdout.decode()}")
    image = Image(Elf(work / "out.elf"), big)
    if rom_model:
        check_rom_model(image, items, "copy" if wanted == "off" else wanted)
    else:
        for i, item in enumerate(items):
            if "crc" in item:
                check_crc_item(image, i, item, big)
            else:
                check_copy_item(image, i, item)
    return len(items)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--qvlink", required=True, type=lambda p: Path(p).resolve())
    parser.add_argument("--work", required=True, type=Path)
    parser.add_argument("--inputs", type=int, default=5000)
    parser.add_argument("--seed", type=int, default=1)
    opts = parser.parse_args()
    opts.work.mkdir(parents=True, exist_ok=True)
    checked, seed = 0, opts.seed
    require(crc(9, b"123456789", False) == 0xCBF43926 and crc(6, b"123456789", False) == 0xBB3D, "the model itself")
    while checked < opts.inputs:
        try:
            checked += check_program(opts, seed, min(150, opts.inputs - checked))
        except Wrong as e:
            print(f"seed {seed}: {e}\nagain: {sys.argv[0]} --qvlink {opts.qvlink} --work {opts.work} --inputs 1 --seed {seed}")
            return 1
        seed += 1
    print(f"{checked} inputs in {seed - opts.seed} links: all right")
    return 0


if __name__ == "__main__":
    sys.exit(main())
