// A load data table: a read-only table in the output with one record per output section, which the
// program's start-up code or the program itself walks. Copy tables say what to copy from where to
// where; CRC tables say what the check value of a section is. A command file asks for them by
// table() and crc_table() on an output section or GROUP.
//
// A table is made before sections are collected, when nobody knows what they will hold: records can
// be dropped up to the end of collection, are replaced by one per piece where placement splits an
// output section, and are written in the build phase, when all addresses are final.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ELFLNK/object/section.h"

class COLLECTION;
class DATA_MAP;
class LOAD_DATA_TABLE_DB;
enum XML_TAG_ID : unsigned;

/// What a command file asks of one collection by all its operators of one table kind.
struct LOAD_DATA_TABLE_SPECS {
    short kind = 0;                               ///< compression kind or CRC algorithm
    std::map<std::string, SOURCE_POSITION> names; ///< of tables, with the place of the operator
};

/// One row of a table, in memory.
class LOAD_DATA_RECORD {
  public:
    /// `outsect` is the output section that the record is about.
    LOAD_DATA_RECORD(COLLECTION* outsect, short kind, const SOURCE_POSITION* pos);
    virtual ~LOAD_DATA_RECORD() = default;
    LOAD_DATA_RECORD(const LOAD_DATA_RECORD&) = delete;
    LOAD_DATA_RECORD& operator=(const LOAD_DATA_RECORD&) = delete;

    virtual bool is_copy_record() const { return false; }
    virtual bool is_cinit_record() const { return false; }
    virtual bool is_crc_record() const { return false; }
    /// Sizes in addressable units.
    virtual uint64_t size() const;
    virtual uint64_t load_size() const;
    virtual uint64_t source_addr() const;
    virtual int source_page() const;
    /// False: there is nothing that the record would tell, now that sections have their sizes.
    virtual bool is_needed() const { return true; }
    /// The record goes: so does what was made for it.
    virtual void remove_associated_sections() {}
    virtual void generate_map_file() = 0;
    virtual void generate_xml_info() = 0;
    /// A record for each piece of a split output section.
    virtual void process_split_section(std::vector<std::unique_ptr<LOAD_DATA_RECORD>>& pieces);
    /// `piece` takes over what belongs to this record.
    virtual void update_after_split(LOAD_DATA_RECORD*) {}
    /// Appends the row at the map's position.
    virtual void write_record(DATA_MAP& data) = 0;
    virtual std::unique_ptr<LOAD_DATA_RECORD> new_record(COLLECTION* outsect, short kind,
                                                         const SOURCE_POSITION* pos) const = 0;

    COLLECTION* outsect() const { return outsect_; }
    void set_outsect(COLLECTION* outsect) { outsect_ = outsect; }
    short kind() const { return kind_; }
    void set_kind(short kind) { kind_ = kind; }
    const SOURCE_POSITION* position() const { return position_; }

  protected:
    /// The internal error of a record that is written too early.
    void check_placed() const;

  private:
    COLLECTION* outsect_;
    const SOURCE_POSITION* position_;
    short kind_;
};

using LOAD_DATA_RECORDS = std::vector<std::unique_ptr<LOAD_DATA_RECORD>>;

class LOAD_DATA_TABLE : public SECTION {
  public:
    /// `user_name` is the table's name in the command file, `alignment` in units.
    LOAD_DATA_TABLE(const LOAD_DATA_TABLE_DB& db, const char* user_name, unsigned alignment,
                    const SOURCE_POSITION* pos);

    uint64_t size() override;
    void update_before_placement(PLACEMENT_PHASE phase) override;
    void finalize_internal(OFE::OF_SECTION* output, uint32_t offset) override;

    /// Assigns the table's address to the symbols by which programs know it.
    virtual void define_entry_symbol();
    virtual unsigned record_size() const = 0;
    virtual const char* linker_defined_table_name() const = 0;
    virtual void add_a_new_record(COLLECTION* outsect, short kind, const SOURCE_POSITION* pos) = 0;
    /// Drops the first record of that output section.
    virtual void remove_record(const COLLECTION* outsect) = 0;
    virtual void generate_map_file();
    virtual const char* table_type_string() const = 0;
    virtual void generate_xml_info();
    /// The elements of the table and of its name.
    virtual XML_TAG_ID table_xml_tag() const = 0;
    virtual XML_TAG_ID table_name_xml_tag() const = 0;
    virtual unsigned header_size() const { return 4; }
    virtual void write_header(DATA_MAP& data);

    /// A record for an output section; on any other kind one for each output section below.
    void add_records(COLLECTION* collection, short kind, const SOURCE_POSITION* pos);
    /// When the output sections have their sizes, once: records of split ones become records of
    /// the pieces, and records that tell nothing go. A table that is left without records keeps
    /// its header.
    void process_split_sections();

    const char* user_name() const { return user_name_; }
    const LOAD_DATA_RECORDS& records() const { return records_; }
    /// As programs see it: 16 bits. A table with 65,536 records counts as empty.
    uint16_t record_count() const { return static_cast<uint16_t>(records_.size()); }

  protected:
    void append_record(std::unique_ptr<LOAD_DATA_RECORD> record) {
        records_.push_back(std::move(record));
    }
    /// Takes the first record of that output section out of the table; null if there is none.
    std::unique_ptr<LOAD_DATA_RECORD> take_record(const COLLECTION* outsect);
    void assign_run_address(const char* symbol, int opcode);

  private:
    LOAD_DATA_RECORDS records_;
    const char* user_name_;
    bool placed_in_phase_2_ = false;
    bool split_processed_ = false;
    bool is_emptied_ = false; ///< its records went when their sections had their sizes
};
