// How a load image is framed. The first byte of an encoded image is the index of its unpacking
// routine in the handler table; what follows is the routine's business:
//   off         the data, no index and no routine
//   copy        index, three 0 bytes, 32-bit size, the data
//   zero_init   index, three 0 bytes, 32-bit size
//   rle, lzss   index, stream
#pragma once

#include <cstdint>
#include <memory>
#include <span>

class COMPRESSION_ALG;
class DATA_MAP;

/// Encodings; the numbers are those of the table of COMPRESS_DB.
enum CMPRS_KIND : short {
    CMPRS_UNKNOWN = 0, ///< nothing was asked for
    CMPRS_OFF = 1,
    CMPRS_COPY = 2,
    CMPRS_ZERO_INIT = 3,
    CMPRS_ALG = 4, ///< the first of the compression algorithms
    CMPRS_NONE = -1,
};

class LOAD_DATA_ENCODER {
  public:
    virtual ~LOAD_DATA_ENCODER() = default;

    virtual const char* name() const = 0;
    /// Size of the image of `size` bytes; for a compressed image a first estimate.
    virtual uint64_t encoded_data_size(uint64_t size) const = 0;
    /// Writes the image of `size` bytes to the empty map `image`, whose byte order holds. The bytes
    /// themselves are only looked at if needs_data(); they are the map's from its position on.
    virtual void encode_data(DATA_MAP& data, uint64_t size, uint8_t index,
                             DATA_MAP& image) const = 0;
    virtual bool needs_data() const { return true; }
    /// The unpacking routine, or null.
    virtual const char* decoder_name() const { return nullptr; }
    virtual bool is_rle() const { return false; }

    /// The encoder of a kind, with its algorithm from CMPRS_ALG on; null for a kind without one.
    static std::unique_ptr<LOAD_DATA_ENCODER> make(short kind, const COMPRESSION_ALG* algorithm);
};
