// The load data tables of ARM: sizes of records, alignment, and their words.
#pragma once

#include "ELFLNK/compress/compressed_section.h"
#include "ELFLNK/crc/crc_table.h"
#include "ELFLNK/table/copy_table.h"

class ARM_COPY_TABLE final : public COPY_TABLE {
  public:
    ARM_COPY_TABLE(const char* name, const SOURCE_POSITION* pos);
    unsigned record_size() const override { return 12; }
    std::unique_ptr<COPY_RECORD> new_COPY_RECORD(COLLECTION* outsect, short kind,
                                                 const SOURCE_POSITION* pos) const override;
};

class ARM_CINIT_TABLE final : public CINIT_TABLE {
  public:
    ARM_CINIT_TABLE();
    unsigned record_size() const override { return 8; }
    std::unique_ptr<COPY_RECORD> new_COPY_RECORD(COLLECTION* outsect, short kind,
                                                 const SOURCE_POSITION* pos) const override;
};

class ARM_HANDLER_TABLE final : public HANDLER_TABLE {
  public:
    explicit ARM_HANDLER_TABLE(unsigned capacity);
    void generate_table_entry(COMPRESSION_INFO* info) override;
    unsigned record_size() const override { return 4; }
};

class ARM_CRC_TABLE final : public CRC_TABLE {
  public:
    ARM_CRC_TABLE(const char* name, const SOURCE_POSITION* pos);
    unsigned header_size() const override { return 8; }
    void write_header(DATA_MAP& data) override;
    unsigned record_size() const override { return 24; }
    std::unique_ptr<CRC_RECORD> new_CRC_RECORD(COLLECTION* outsect, short kind,
                                               const SOURCE_POSITION* pos) const override;
};

class ARM_COMPRESSED_SECTION final : public COMPRESSED_SECTION {
  public:
    using COMPRESSED_SECTION::COMPRESSED_SECTION;
    /// A mapping symbol says that the image is data.
    void define_load_section_symbols() override;

  private:
    bool mapped_ = false;
};
