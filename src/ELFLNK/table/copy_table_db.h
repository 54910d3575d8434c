// The copy tables of the link, and what table() may not be applied to.
#pragma once

#include <set>

#include "ELFLNK/table/copy_table.h"
#include "ELFLNK/table/load_data_table_db.h"

class COPY_TABLE_DB : public LOAD_DATA_TABLE_DB {
  public:
    COPY_TABLE_DB() : LOAD_DATA_TABLE_DB(".ovly:") {}

    bool legal_collection_kind_for_table(COLLECTION_KIND kind) const override;
    bool collection_contains_illegal_load_data_table(const COLLECTION* c) const override;
    bool is_table_supported() const override;
    bool disable_table_support() const override;
    short normalized_alg(short kind) const override;
    const char* table_type_string() const override { return "copy"; }
    const char* table_type_string_upper() const override { return "COPY"; }
    XML_TAG_ID table_xml_tag() const override;
    bool has_table_section(const COLLECTION* collection) const override;
    bool contains_table(const LINKER_OBJECT* object) const override;
    bool enforce_cinit_restrictions(const COLLECTION* collection) const override;
    LOAD_DATA_TABLE_SPECS* table_specs(const COLLECTION* collection) const override;

    /// When the command file closes a GROUP or UNION: no table on sections that overlay each other,
    /// none below a GROUP that has one.
    void enforce_table_restrictions(COLLECTION* collection);

    /// The table of C initialisation, made on first use.
    COPY_TABLE* compressed_cinit_table();
    /// Records for all output sections that start-up code has to initialise.
    void attach_compressed_cinit_table();
    void attach_compression_objects();
    /// All records that want an encoding, in the order of table names.
    std::vector<COPY_RECORD*> cmprs_cprec_list() const;

  protected:
    LOAD_DATA_TABLE* make_table(const char* name, const SOURCE_POSITION* pos) const override;

  private:
    using NAMES = std::set<std::string>;

    NAMES check_unique_tables(COLLECTION* collection, const COLLECTION* in_union, NAMES names);
    void disallow_member_tables(COLLECTION* group, const COLLECTION* outermost);
    static void purge_copy_table_specs(COLLECTION* collection);
    bool qualifies_for_cinit(LINKER_OBJECT* object, const std::set<const LINKER_OBJECT*>& exclude);
    std::set<const LINKER_OBJECT*> create_cinit_exclude_set() const;

    COPY_TABLE* cinit_table_ = nullptr;
};

extern COPY_TABLE_DB* global_copy_table_db;
