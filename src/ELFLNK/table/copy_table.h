// Copy tables: what start-up code or the program copies from a load address to a run address.
//
// A table that table() names has a header of two 16-bit words (record size, record count) and
// records of load address, run address and size; a size of 0 says that the load address is that of
// an encoded load image. The table of C initialisation has no header and records of two words; its
// images are always encoded. The handler table holds the addresses of the unpacking routines; the
// first byte of an encoded image is the index.
#pragma once

#include "ELFLNK/table/load_data_table.h"

class COMPRESSED_SECTION;
class LOCATOR;
struct COMPRESSION_INFO;

class COPY_RECORD : public LOAD_DATA_RECORD {
  public:
    using LOAD_DATA_RECORD::LOAD_DATA_RECORD;

    bool is_copy_record() const override { return true; }
    uint64_t size() const override;
    uint64_t load_size() const override;
    uint64_t source_addr() const override;
    int source_page() const override;
    bool is_needed() const override;
    void remove_associated_sections() override;
    void update_after_split(LOAD_DATA_RECORD* piece) override;
    void write_record(DATA_MAP& data) override { write_copy_record(data); }
    std::unique_ptr<LOAD_DATA_RECORD> new_record(COLLECTION* outsect, short kind,
                                                 const SOURCE_POSITION* pos) const override {
        return new_COPY_RECORD(outsect, kind, pos);
    }

    /// The encoding for data that the wanted one does not make smaller.
    virtual short fallback_kind() const;
    /// Makes the load image that an encoded section needs, placed by a copy of `locator` if given.
    virtual void attach_compression_object(const LOCATOR* locator);
    virtual void write_copy_record(DATA_MAP& data) = 0;
    virtual std::unique_ptr<COPY_RECORD> new_COPY_RECORD(COLLECTION* outsect, short kind,
                                                         const SOURCE_POSITION* pos) const = 0;
    void generate_xml_info() override;

    /// The encoded load image, or null where data is copied as it is.
    COMPRESSED_SECTION* compressed_section() const { return compressed_; }
    const char* compression_name() const;

  protected:
    void set_compressed_section(COMPRESSED_SECTION* section) { compressed_ = section; }

  private:
    /// Gives the wanted compression up: the section is stored and copied as it is.
    void copy_uncompressed();

    COMPRESSED_SECTION* compressed_ = nullptr;
};

/// A record of C initialisation.
class CINIT_RECORD : public COPY_RECORD {
  public:
    using COPY_RECORD::COPY_RECORD;
    bool is_cinit_record() const override { return true; }
    bool is_needed() const override { return true; }
    short fallback_kind() const override;
    void attach_compression_object(const LOCATOR* locator) override;
};

class COPY_TABLE : public LOAD_DATA_TABLE {
  public:
    using LOAD_DATA_TABLE::LOAD_DATA_TABLE;

    bool is_copy_table() const override { return true; }
    const char* linker_defined_table_name() const override;
    void add_a_new_record(COLLECTION* outsect, short kind, const SOURCE_POSITION* pos) override;
    void remove_record(const COLLECTION* outsect) override;
    const char* table_type_string() const override { return "copy"; }
    XML_TAG_ID table_xml_tag() const override;
    XML_TAG_ID table_name_xml_tag() const override;

    virtual void attach_compression_objects();
    virtual std::unique_ptr<COPY_RECORD> new_COPY_RECORD(COLLECTION* outsect, short kind,
                                                         const SOURCE_POSITION* pos) const = 0;
};

/// The table of C initialisation, which start-up code finds between two symbols.
class CINIT_TABLE : public COPY_TABLE {
  public:
    CINIT_TABLE(const LOAD_DATA_TABLE_DB& db, const char* name, unsigned alignment);

    void define_entry_symbol() override {}
    unsigned header_size() const override { return 0; }
    void write_header(DATA_MAP&) override {}
};

/// The addresses of the routines that unpack load images.
class HANDLER_TABLE : public SECTION {
  public:
    /// For at most `capacity` routines, aligned to `alignment` units.
    HANDLER_TABLE(unsigned capacity, unsigned alignment);

    virtual void generate_table_entry(COMPRESSION_INFO* info) = 0;
    virtual unsigned record_size() const = 0;

    /// Gives the next routine its index.
    uint16_t next_handler_index(COMPRESSION_INFO* info);
    /// Fills the table, or takes it out of the link if no routine is used.
    void define_table();
    const std::vector<COMPRESSION_INFO*>& handlers() const { return handlers_; }
    void generate_map_file();
    void generate_xml_info();

  private:
    void define_table_symbols();

    unsigned capacity_;
    std::vector<COMPRESSION_INFO*> handlers_; // by index
};
