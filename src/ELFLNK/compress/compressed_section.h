// The load image of an output section whose data is stored encoded.
//
// The output section itself, the run image, is placed first and keeps its addresses but no data.
// Its data, relocated to those addresses, goes into the image, is encoded there, and the image is
// placed in the second phase, when its size is known.
#pragma once

#include <cstdint>
#include <memory>

#include "ELFLNK/object/section.h"

class COLLECTION;
class DATA_MAP;
struct COMPRESSION_INFO;

class COMPRESSED_SECTION : public SECTION {
  public:
    /// `kind` is the encoding that is wanted for the data of `run`.
    COMPRESSED_SECTION(const char* name, COLLECTION* run, short kind);
    ~COMPRESSED_SECTION() override;

    bool is_compressed_scn() const override { return true; }
    uint64_t size() override;
    void update_before_placement(PLACEMENT_PHASE phase) override;
    void finalize_internal(OFE::OF_SECTION* output, uint32_t offset) override;

    virtual short compression_kind() const { return kind_; }
    virtual void define_load_section_symbols() {}

    COLLECTION* run_collection() const { return run_; }
    /// The chosen encoding; null until it is.
    COMPRESSION_INFO* info() const { return info_; }
    bool encoded() const { return encoded_; }
    /// The chosen encoding has a routine that unpacks it.
    bool has_decoder() const;
    /// An encoding that makes the data smaller is chosen.
    bool is_compressed() const;
    /// The chosen encoding's name, or "none".
    const char* compression_name() const;
    void add_reference() { ++references_; }
    /// False: nobody refers to the image any more.
    bool release_reference() { return --references_ != 0; }

    /// The run image is placed, and so is everything that its data refers to. If not, the first
    /// call says why.
    bool is_compressible();
    /// Moves the run image's data, relocated, into the image; once. False if it is not final yet.
    bool copy_uncompressed_data();
    /// Tries the wanted encoding and chooses it if it is smaller than the fallback, else that.
    void finalize_compression(short fallback);
    void choose(COMPRESSION_INFO* info);
    /// Applies the chosen encoding, if the data could be copied. False if it could not.
    bool encode();

  private:
    bool syms_in_collection_have_final_values();
    bool section_has_final_values(SECTION* section);
    void report_not_performed();
    void fill_gaps();
    void copy_data();
    void mark_run_image_uninitialized();
    DATA_MAP& data_to_encode();
    void encode_to(DATA_MAP& image);

    COLLECTION* run_;
    COMPRESSION_INFO* info_ = nullptr;
    std::unique_ptr<DATA_MAP> image_; // made when its size was measured
    short kind_;
    uint32_t references_ = 1;
    bool encoded_ = false;
    bool data_copied_ = false;
    bool relocs_checked_ = false;
    bool relocs_final_ = false;
    bool reported_ = false;
    bool run_image_marked_ = false;
};
