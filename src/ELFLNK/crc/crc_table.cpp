// CRC records: which operator asks for them, when their value is computed.
#include "ELFLNK/crc/crc_table.h"

#include "DIAG/diagnostic.h"
#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/crc/crcgen.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/xmlinfo/xml_info.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/data_map.h"
#include "UTIL/narrow.h"
#include "UTIL/savestr.h"

static register_option disable_crc_table("disable:crc_table");

// ---- the operator --------------------------------------------------------------------------

void COLLECTION::add_crc_table_spec(const char* table, const char* algorithm,
                                    const SOURCE_POSITION* pos) {
    if (global_crc_table_db->disable_table_support()) {
        DIAG_REPORT_AT(pos, elnk_crctblop_outfile_not_exec, table);
        return;
    }
    if (is_load_segment() || !global_crc_table_db->legal_collection_kind_for_table(kind())) {
        DIAG_REPORT_AT(pos, elnk_crctblop_invalid_arg, table, name());
        return;
    }
    const LOAD_DATA_TABLE_SPECS* before = crc_table_specs_;
    auto id =
        static_cast<short>(before != nullptr ? before->kind : Target->default_crc_algorithm());
    const char* recorded = CRCGEN::find_crc_name(id);
    if (algorithm != nullptr) {
        const int named = CRCGEN::find_crc_config(algorithm);
        if (named < 0) {
            DIAG_REPORT_AT(pos, elnk_crctblop_invalid_algorithm, table, name(), algorithm);
            return;
        }
        if (before == nullptr)
            id = static_cast<short>(named);
        else if (named != id)
            DIAG_REPORT_AT(pos, elnk_crctblop_algorithm_mismatch, table, algorithm, recorded,
                           name(), recorded);
    } else if (before != nullptr) {
        DIAG_REPORT_AT(pos, elnk_crctblop_use_recorded_algorithm, table, recorded, name());
    }
    if (crc_table_specs_ == nullptr) crc_table_specs_ = new LOAD_DATA_TABLE_SPECS;
    crc_table_specs_->kind = id;
    crc_table_specs_->names.emplace(table, SOURCE_POSITION(pos));
}

// ---- records -------------------------------------------------------------------------------

// The data of the members goes to the output section now, instead of with all the rest.
void CRC_RECORD::finalize_data_for_crc(COLLECTION* collection, uint64_t base) {
    for (LINKER_OBJECT* member : collection->members()) {
        if (COLLECTION* below = as_collection(member)) {
            finalize_data_for_crc(below, base);
            continue;
        }
        if (!member->has_all_attrs(PA_HAS_DATA | PA_ALLOCATED)) continue;
        if (!member->is_placed()) {
            DIAG_REPORT(elnk_crc_member_not_placed, member->name());
            return;
        }
        OFE::OF_SECTION* output = outsect()->output_OF_SECTION();
        const auto offset = narrow<uint32_t>(member->load_address() - base);
        if (!member->finalized()) member->finalize_internal(output, offset);
        member->set_finalized(true);
        if (!member->data_written()) member->write_data_internal(output, offset);
        member->set_data_written(true);
    }
}

void CRC_RECORD::compute_crc() {
    OFE::OF_SECTION* section = outsect()->output_OF_SECTION();
    if (section == nullptr) {
        DIAG_REPORT(elnk_no_outfile_section, outsect()->name());
        return;
    }
    if (!outsect()->output_updated()) {
        DIAG_REPORT(elnk_outsect_not_finalized, outsect()->name());
        return;
    }
    CRCGEN generator;
    generator.set_config(static_cast<unsigned>(kind()));
    if (section->initialized()) {
        Target->finalize_section_data(section);
        const OFE::OF_BYTES bytes = section->bytes();
        DATA_MAP data({bytes.data, bytes.size}, section->raw_data().endian());
        if (!data.empty()) crc_ = data_map_crc(data, generator);
    }
    algorithm_name_ = CRCGEN::find_crc_name(static_cast<unsigned>(kind()));
}

// After an error nothing is written, and what did not fit may be of any size.
void CRC_RECORD::write_record(DATA_MAP& data) {
    if (DIAGNOSTIC::error_count_m > 0) return;
    finalize_data_for_crc(outsect(), outsect()->load_address());
    compute_crc();
    write_crc_record(data);
}

void CRC_RECORD::generate_xml_info() {
    write_xml_tag_begin(XML_crc_rec);
    write_xml_string(XML_crc_rec_name, outsect()->name());
    write_xml_string(XML_alg_name, CRCGEN::find_crc_name(static_cast<unsigned>(kind())));
    write_xml_int(XML_alg_id, static_cast<uint64_t>(kind()));
    write_xml_int(XML_load_address, source_addr());
    write_xml_int(XML_crc_rec_load_size, load_size());
    write_xml_int(XML_crc_value, crc());
    write_xml_tag_end(XML_crc_rec);
}

// ---- tables --------------------------------------------------------------------------------

XML_TAG_ID CRC_TABLE::table_xml_tag() const {
    return XML_crc_table;
}

XML_TAG_ID CRC_TABLE::table_name_xml_tag() const {
    return XML_crc_table_name;
}

XML_TAG_ID CRC_TABLE_DB::table_xml_tag() const {
    return XML_crc_table_list;
}

const char* CRC_TABLE::linker_defined_table_name() const {
    return savestrf("__QV_CRC_%s", user_name());
}

void CRC_TABLE::add_a_new_record(COLLECTION* outsect, short kind, const SOURCE_POSITION* pos) {
    append_record(new_CRC_RECORD(outsect, kind, pos));
}

bool CRC_TABLE_DB::legal_collection_kind_for_table(COLLECTION_KIND kind) const {
    return kind == COLLECTION_OUTSECT || kind == COLLECTION_GROUP || kind == COLLECTION_UNION;
}

bool CRC_TABLE_DB::collection_contains_illegal_load_data_table(const COLLECTION* c) const {
    return c->has_crc_section();
}

bool CRC_TABLE_DB::table_name_reserved(const char* name) const {
    return is_binit(name) || LOAD_DATA_TABLE_DB::table_name_reserved(name);
}

bool CRC_TABLE_DB::is_table_supported() const {
    return !is_partial_link() && Target->is_crc_table_supported();
}

bool CRC_TABLE_DB::disable_table_support() const {
    return disable_crc_table != 0 || !is_table_supported();
}

bool CRC_TABLE_DB::has_table_section(const COLLECTION* collection) const {
    return collection->has_crc_section();
}

bool CRC_TABLE_DB::contains_table(const LINKER_OBJECT* object) const {
    return object->is_crc_table();
}

LOAD_DATA_TABLE_SPECS* CRC_TABLE_DB::table_specs(const COLLECTION* collection) const {
    return collection->crc_table_specs();
}

LOAD_DATA_TABLE* CRC_TABLE_DB::make_table(const char* name, const SOURCE_POSITION* pos) const {
    return Target->new_CRC_TABLE(name, pos);
}
