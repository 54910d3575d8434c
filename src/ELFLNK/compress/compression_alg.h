// Compression of load images: the streams that the target's start-up code unpacks.
//
// An algorithm turns bytes into a stream and back. The run-time has one routine per algorithm, so a
// stream's format is fixed to the bit, and so is the choice among the streams that would unpack to
// the same bytes: two links of the same input give the same image.
//
// Stream of COMPRESSION_RLE. Its first byte is the delimiter D, the rarest byte value of the data.
//   B                     the byte B, which is not D
//   D n           n 1-3   D, n times
//   D n V       n 4-255   V, n times
//   D 0 h l V   h not 0   V, (h << 8 | l) times
//   D 0 0 x h l V  x not 0   V, (x << 16 | h << 8 | l) times
//   D 0 0 0               the end
//
// Stream of COMPRESSION_LZSS. A flag byte and up to eight items, its bits from bit 0 upward: 1 for
// a byte as it is, 0 for a copy of what was unpacked before:
//   b0 b1 [e [f]]   from (b0 << 4 | b1 >> 4) + 1 bytes back; L = b1 & 15;
//                   L below 15: L + 3 bytes; else e below 128: e + 18 bytes;
//                   else (f << 7 | e & 127) + 18 bytes
// A copy from 4096 bytes back (FF F0) is the end.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

class DATA_MAP;

class COMPRESSION_ALG {
  public:
    virtual ~COMPRESSION_ALG() = default;

    /// Compresses a buffer, unpacks the result and compares: true if it is the buffer.
    virtual bool test_algorithm(DATA_MAP& map) const;
    /// Appends at `out`'s position the stream for `in`'s bytes from its position on; nothing for no
    /// bytes. `in`'s position moves to its end.
    virtual void compress(DATA_MAP& in, DATA_MAP& out) const = 0;
    /// The reverse. False if the stream is damaged; `out` then holds what came before the fault.
    virtual bool decompress(DATA_MAP& in, DATA_MAP& out) const = 0;
    /// The run-time routine that unpacks the stream.
    virtual const char* decompression_routine_name() const = 0;
    virtual const char* name() const = 0;
    virtual bool is_rle() const { return false; }
};

/// Runs of equal bytes.
class COMPRESSION_RLE : public COMPRESSION_ALG {
  public:
    void compress(DATA_MAP& in, DATA_MAP& out) const override;
    bool decompress(DATA_MAP& in, DATA_MAP& out) const override;
    const char* decompression_routine_name() const override { return "__QV_decompress_rle24"; }
    const char* name() const override { return "rle"; }
    bool is_rle() const override { return true; }
};

/// Copies of what came up to 4095 bytes before.
class COMPRESSION_LZSS : public COMPRESSION_ALG {
  public:
    void compress(DATA_MAP& in, DATA_MAP& out) const override;
    bool decompress(DATA_MAP& in, DATA_MAP& out) const override;
    const char* decompression_routine_name() const override { return "__QV_decompress_lzss"; }
    const char* name() const override { return "lzss"; }
};

class COMPRESSION_FACTORY {
  public:
    /// The algorithms for a target with data units of that size, in the order of their kinds; none
    /// for a size other than 8.
    static std::span<const std::unique_ptr<COMPRESSION_ALG>> compression_list(unsigned unit_bits);
};
