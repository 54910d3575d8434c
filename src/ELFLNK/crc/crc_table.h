// CRC tables: the check values of output sections, computed over the bytes that the program will
// find, and stored where the program can compare them with what it finds.
#pragma once

#include "ELFLNK/table/load_data_table_db.h"

class CRC_RECORD : public LOAD_DATA_RECORD {
  public:
    using LOAD_DATA_RECORD::LOAD_DATA_RECORD;

    bool is_crc_record() const override { return true; }
    void write_record(DATA_MAP& data) override;
    std::unique_ptr<LOAD_DATA_RECORD> new_record(COLLECTION* outsect, short kind,
                                                 const SOURCE_POSITION* pos) const override {
        return new_CRC_RECORD(outsect, kind, pos);
    }
    void generate_xml_info() override;
    virtual void compute_crc();
    virtual void write_crc_record(DATA_MAP& data) = 0;
    virtual std::unique_ptr<CRC_RECORD> new_CRC_RECORD(COLLECTION* outsect, short kind,
                                                       const SOURCE_POSITION* pos) const = 0;

    /// The check value; 0 until computed.
    uint64_t crc() const { return crc_; }
    /// The algorithm's name; null until computed.
    const char* algorithm_name() const { return algorithm_name_; }

  private:
    void finalize_data_for_crc(COLLECTION* collection, uint64_t base);

    uint64_t crc_ = 0;
    const char* algorithm_name_ = nullptr;
};

class CRC_TABLE : public LOAD_DATA_TABLE {
  public:
    using LOAD_DATA_TABLE::LOAD_DATA_TABLE;

    bool is_crc_table() const override { return true; }
    const char* linker_defined_table_name() const override;
    void add_a_new_record(COLLECTION* outsect, short kind, const SOURCE_POSITION* pos) override;
    void remove_record(const COLLECTION* outsect) override { take_record(outsect); }
    const char* table_type_string() const override { return "CRC"; }
    XML_TAG_ID table_xml_tag() const override;
    XML_TAG_ID table_name_xml_tag() const override;
    virtual std::unique_ptr<CRC_RECORD> new_CRC_RECORD(COLLECTION* outsect, short kind,
                                                       const SOURCE_POSITION* pos) const = 0;
};

class CRC_TABLE_DB : public LOAD_DATA_TABLE_DB {
  public:
    CRC_TABLE_DB() : LOAD_DATA_TABLE_DB(".QV.crctab:") {}

    bool legal_collection_kind_for_table(COLLECTION_KIND kind) const override;
    bool collection_contains_illegal_load_data_table(const COLLECTION* c) const override;
    bool table_name_reserved(const char* name) const override;
    bool is_table_supported() const override;
    bool disable_table_support() const override;
    const char* table_type_string() const override { return "CRC"; }
    const char* table_type_string_upper() const override { return "CRC"; }
    XML_TAG_ID table_xml_tag() const override;
    bool has_table_section(const COLLECTION* collection) const override;
    bool contains_table(const LINKER_OBJECT* object) const override;
    LOAD_DATA_TABLE_SPECS* table_specs(const COLLECTION* collection) const override;

  protected:
    LOAD_DATA_TABLE* make_table(const char* name, const SOURCE_POSITION* pos) const override;
};

extern CRC_TABLE_DB* global_crc_table_db;
