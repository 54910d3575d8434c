// The encoders of load images; load_data_encoder.h has the formats.
#include "ELFLNK/compress/load_data_encoder.h"

#include "ELFLNK/compress/compression_alg.h"
#include "UTIL/data_map.h"

namespace {

constexpr uint64_t header_size = 8; // index, three bytes of 0, size

class COMPRESS_OFF_ENCODER final : public LOAD_DATA_ENCODER {
  public:
    const char* name() const override { return "off"; }
    uint64_t encoded_data_size(uint64_t size) const override { return size; }
    void encode_data(DATA_MAP& data, uint64_t size, uint8_t, DATA_MAP& image) const override {
        image.write(data.read_bytes(size));
    }
};

void write_header(DATA_MAP& image, uint8_t index, uint64_t size) {
    image.write8(index);
    image.write_fill(0, 3);
    image.write32(static_cast<uint32_t>(size));
}

class COMPRESS_COPY_ENCODER final : public LOAD_DATA_ENCODER {
  public:
    const char* name() const override { return "copy"; }
    uint64_t encoded_data_size(uint64_t size) const override { return size + header_size; }
    void encode_data(DATA_MAP& data, uint64_t size, uint8_t index, DATA_MAP& image) const override {
        write_header(image, index, size);
        image.write(data.read_bytes(size));
    }
    const char* decoder_name() const override { return "__QV_decompress_none"; }
};

class COMPRESS_ZI_ENCODER final : public LOAD_DATA_ENCODER {
  public:
    const char* name() const override { return "zero_init"; }
    uint64_t encoded_data_size(uint64_t) const override { return header_size; }
    void encode_data(DATA_MAP&, uint64_t size, uint8_t index, DATA_MAP& image) const override {
        write_header(image, index, size);
    }
    bool needs_data() const override { return false; }
    const char* decoder_name() const override { return "__QV_zero_init"; }
};

class COMPRESS_ALG_ENCODER final : public LOAD_DATA_ENCODER {
  public:
    explicit COMPRESS_ALG_ENCODER(const COMPRESSION_ALG& algorithm) : algorithm_(algorithm) {}
    const char* name() const override { return algorithm_.name(); }
    uint64_t encoded_data_size(uint64_t size) const override { return size + 1; }
    void encode_data(DATA_MAP& data, uint64_t, uint8_t index, DATA_MAP& image) const override {
        image.write8(index);
        algorithm_.compress(data, image);
    }
    const char* decoder_name() const override { return algorithm_.decompression_routine_name(); }
    bool is_rle() const override { return algorithm_.is_rle(); }

  private:
    const COMPRESSION_ALG& algorithm_;
};

} // namespace

std::unique_ptr<LOAD_DATA_ENCODER> LOAD_DATA_ENCODER::make(short kind,
                                                           const COMPRESSION_ALG* algorithm) {
    switch (kind) {
    case CMPRS_OFF:
        return std::make_unique<COMPRESS_OFF_ENCODER>();
    case CMPRS_COPY:
        return std::make_unique<COMPRESS_COPY_ENCODER>();
    case CMPRS_ZERO_INIT:
        return std::make_unique<COMPRESS_ZI_ENCODER>();
    default:
        if (algorithm == nullptr) return nullptr;
        return std::make_unique<COMPRESS_ALG_ENCODER>(*algorithm);
    }
}
