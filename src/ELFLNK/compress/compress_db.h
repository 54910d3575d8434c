// Which output sections are stored encoded, by which encoding, and the order of events around it:
// routines are asked for before archives are searched, images are made when collection is over,
// data is relocated and encoded between the two phases of placement.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ELFLNK/compress/load_data_encoder.h"

class COLLECTION;
class COMPRESSED_SECTION;
class COPY_RECORD;
class HANDLER_TABLE;
class LINKER_OBJECT;
class LOCATOR;

/// One encoding.
struct COMPRESSION_INFO {
    static constexpr uint16_t NO_INDEX = 65535;

    short kind;
    const char* name;
    std::unique_ptr<LOAD_DATA_ENCODER> encoder; ///< null for "unknown"
    const char* routine;                        ///< that unpacks it, or null
    bool user_selectable;                       ///< as an argument of an option or of table()
    uint32_t requests = 0;
    uint16_t handler_index = NO_INDEX;
};

class COMPRESS_DB {
  public:
    // ---- encodings
    /// The encoding of a kind; null for a kind that is not in the table.
    COMPRESSION_INFO* info(short kind);
    /// The kind of a name in any case; CMPRS_NONE if there is none.
    short compression_kind(const char* name);
    /// The name of a kind; "error" for one that is not in the table.
    const char* compression_name(short kind);
    /// The kind that stands for "nothing said": that of --copy_compression, else CMPRS_OFF.
    short normalized_kind(short kind);
    /// The kind for C initialisation: that of --cinit_compression.
    short cinit_compression_kind();
    bool disable_copy_table_compression() const;
    bool is_compressed_cinit_needed() const;

    // ---- requests
    void add_request(short kind);
    void give_back_request(short kind);
    bool any_compression_requested();
    void remove_linker_compression_requests();
    /// Before archives are searched: the routines that the image will need.
    void add_decompression_routine_names();

    // ---- images
    bool compressed_section_exists(const COLLECTION* run) const { return images_.contains(run); }
    /// The output section's data comes from an image.
    bool is_outsect_auto_init(const COLLECTION* run) const { return images_.contains(run); }
    /// The image of a copy table's record; made on first use.
    COMPRESSED_SECTION* compressed_section(COLLECTION* run, short kind, const LOCATOR* locator);
    /// The image of a record of C initialisation, in output section `outsect`.
    COMPRESSED_SECTION* compressed_cinit_section(COLLECTION* run, short kind,
                                                 const LOCATOR* locator, const char* outsect);
    void remove_compressed_section(COMPRESSED_SECTION* image);

    // ---- events
    /// At the end of collection.
    void update_after_collection();
    /// Between the phases of placement.
    void process_compressed_sections();
    /// All records of zero-initialised sections become runs where run-length encoding is in use.
    void specialize_compressions();
    void generate_map_file();
    void generate_xml_info();

  private:
    void make_table();
    bool is_supported() const;
    void add_linker_compression_requests();
    void originate_handler_table();
    void register_compressions();
    void register_kind(short kind);
    void remove_unused_decompression_sections();
    void check_decompression_locators();
    void move_load_placement(COLLECTION* run, COMPRESSED_SECTION* image);
    void enter_image(COLLECTION* run, COMPRESSED_SECTION* image);
    COLLECTION* compressed_sections();

    std::vector<COMPRESSION_INFO> table_; // by kind; made on first use
    std::map<const COLLECTION*, COMPRESSED_SECTION*> images_;
    std::vector<short> linker_requests_;
    HANDLER_TABLE* handler_table_ = nullptr;
    COLLECTION* compressed_sections_ = nullptr;
    bool processed_ = false;
};

/// Makes `object` a member of the output section of that name, which is made if there is none.
void add_to_named_outsect(const char* name, LINKER_OBJECT* object);

extern COMPRESS_DB* global_compress_db;
