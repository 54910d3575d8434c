// Which sections may have a copy table, and which ones start-up code initialises without being
// asked.
#include "ELFLNK/table/copy_table_db.h"

#include <string_view>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/compress/compress_db.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/xmlinfo/xml_info.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"

static register_option disable_table("disable:table");

bool COPY_TABLE_DB::legal_collection_kind_for_table(COLLECTION_KIND kind) const {
    return kind == COLLECTION_OUTSECT || kind == COLLECTION_GROUP;
}

bool COPY_TABLE_DB::collection_contains_illegal_load_data_table(const COLLECTION* c) const {
    return c->has_copy_section() || c->has_crc_section();
}

bool COPY_TABLE_DB::is_table_supported() const {
    return !is_partial_link() && Target->is_copy_table_supported();
}

bool COPY_TABLE_DB::disable_table_support() const {
    return disable_table != 0 || !is_table_supported();
}

short COPY_TABLE_DB::normalized_alg(short kind) const {
    return global_compress_db->normalized_kind(kind);
}

XML_TAG_ID COPY_TABLE_DB::table_xml_tag() const {
    return XML_cptbl_list;
}

bool COPY_TABLE_DB::has_table_section(const COLLECTION* collection) const {
    return collection->has_copy_section();
}

bool COPY_TABLE_DB::contains_table(const LINKER_OBJECT* object) const {
    return object->is_copy_table();
}

bool COPY_TABLE_DB::enforce_cinit_restrictions(const COLLECTION* collection) const {
    return !disable_table_support() && Target->is_copy_compression_supported() &&
           collection->kind() == COLLECTION_OUTSECT &&
           std::string_view(collection->name()) == Target->abi()->cinit_section_name();
}

LOAD_DATA_TABLE_SPECS* COPY_TABLE_DB::table_specs(const COLLECTION* collection) const {
    return collection->copy_table_specs();
}

LOAD_DATA_TABLE* COPY_TABLE_DB::make_table(const char* name, const SOURCE_POSITION* pos) const {
    return Target->new_COPY_TABLE(name, pos);
}

// ---- the operator --------------------------------------------------------------------------

// The kind that a compression word names; 0, after an error, for one that means nothing. False if
// the operator is to be dropped.
static bool compression_of_word(const char* word, const char* table, const SOURCE_POSITION* pos,
                                short& kind) {
    kind = CMPRS_UNKNOWN;
    if (word == nullptr) return true;
    if (global_compress_db->disable_copy_table_compression()) {
        DIAG_REPORT_AT(pos, elnk_tblop_invalid_cmprs, word, table);
        return true;
    }
    kind = global_compress_db->compression_kind(word);
    if (kind != CMPRS_NONE) return true;
    DIAG_REPORT_AT(pos, elnk_tblop_invalid_cmprs, word, table);
    return false;
}

void COLLECTION::add_copy_table_spec(const char* table, const char* compression,
                                     const SOURCE_POSITION* pos) {
    if (global_copy_table_db->disable_table_support()) {
        DIAG_REPORT_AT(pos, elnk_tblop_outfile_not_exec, table);
        return;
    }
    if (kind() == COLLECTION_UNION) {
        DIAG_REPORT_AT(pos, elnk_tblop_on_union, table, name());
        return;
    }
    if (!global_copy_table_db->legal_collection_kind_for_table(kind())) {
        DIAG_REPORT_AT(pos, elnk_tblop_invalid_arg, table, name());
        return;
    }
    short wanted;
    if (!compression_of_word(compression, table, pos, wanted)) return;
    if (copy_table_specs_ == nullptr) copy_table_specs_ = new LOAD_DATA_TABLE_SPECS;
    LOAD_DATA_TABLE_SPECS& specs = *copy_table_specs_;
    if (specs.names.empty()) {
        specs.kind = wanted;
        global_compress_db->add_request(wanted);
    } else if (wanted != CMPRS_UNKNOWN && specs.kind == CMPRS_UNKNOWN) {
        specs.kind = wanted;
        global_compress_db->give_back_request(CMPRS_UNKNOWN);
        global_compress_db->add_request(wanted);
    } else if (wanted != CMPRS_UNKNOWN && wanted != specs.kind) {
        DIAG_REPORT_AT(pos, elnk_tblop_incompatible_cmprs, compression, table,
                       global_compress_db->compression_name(specs.kind));
        return;
    }
    specs.names.emplace(table, SOURCE_POSITION(pos));
}

// ---- GROUP and UNION -----------------------------------------------------------------------

void COPY_TABLE_DB::enforce_table_restrictions(COLLECTION* collection) {
    if (disable_table_support()) return;
    if (collection->is_union()) check_unique_tables(collection, collection, {});
    if (collection->kind() == COLLECTION_GROUP && collection->copy_table_specs() != nullptr)
        disallow_member_tables(collection, nullptr);
}

COPY_TABLE_DB::NAMES COPY_TABLE_DB::check_unique_tables(COLLECTION* collection,
                                                        const COLLECTION* in_union, NAMES names) {
    NAMES found;
    if (LOAD_DATA_TABLE_SPECS* specs = collection->copy_table_specs()) {
        for (auto at = specs->names.begin(); at != specs->names.end();) {
            if (names.insert(at->first).second) {
                found.insert(at->first);
                ++at;
                continue;
            }
            DIAG_REPORT_AT(&at->second, elnk_tblop_dup_tname, at->first, at->first,
                           in_union->name(), collection->name());
            at = specs->names.erase(at);
        }
        purge_copy_table_specs(collection);
    }
    for (LINKER_OBJECT* member : collection->members()) {
        COLLECTION* below = as_collection(member);
        if (below == nullptr) continue;
        const NAMES more =
            check_unique_tables(below, collection->is_union() ? collection : in_union, names);
        if (collection->is_union()) names.insert(more.begin(), more.end());
        found.insert(more.begin(), more.end());
    }
    return found;
}

void COPY_TABLE_DB::disallow_member_tables(COLLECTION* group, const COLLECTION* outermost) {
    if (outermost == nullptr) outermost = group;
    for (LINKER_OBJECT* member : group->members()) {
        COLLECTION* below = as_collection(member);
        if (below == nullptr) continue;
        if (below->is_union()) {
            DIAG_REPORT_AT(&below->source_position(), elnk_tblop_on_group_with_union, below->name(),
                           outermost->name());
            if (LOAD_DATA_TABLE_SPECS* specs = outermost->copy_table_specs()) specs->names.clear();
        }
        if (LOAD_DATA_TABLE_SPECS* specs = below->copy_table_specs()) {
            for (const auto& [name, position] : specs->names)
                DIAG_REPORT_AT(&position, elnk_tblop_group_has_tbl, name, name, outermost->name(),
                               below->name());
            specs->names.clear();
            purge_copy_table_specs(below);
        }
        if (below->kind() == COLLECTION_GROUP) disallow_member_tables(below, outermost);
    }
}

void COPY_TABLE_DB::purge_copy_table_specs(COLLECTION* collection) {
    const LOAD_DATA_TABLE_SPECS* specs = collection->copy_table_specs();
    if (specs == nullptr || !specs->names.empty()) return;
    global_compress_db->give_back_request(specs->kind);
    collection->drop_copy_table_specs();
}

// ---- C initialisation ----------------------------------------------------------------------

COPY_TABLE* COPY_TABLE_DB::compressed_cinit_table() {
    if (cinit_table_ != nullptr) return cinit_table_;
    cinit_table_ = Target->new_CINIT_TABLE();
    enter_table(cinit_table_);
    root_collection->add_section(cinit_table_);
    add_to_named_outsect(Target->abi()->cinit_section_name(), cinit_table_);
    return cinit_table_;
}

std::set<const LINKER_OBJECT*> COPY_TABLE_DB::create_cinit_exclude_set() const {
    std::set<const LINKER_OBJECT*> exclude;
    for (const auto& [name, table] : tables())
        for (const auto& record : table->records()) exclude.insert(record->outsect());
    return exclude;
}

// Memory without data that start-up code clears.
static bool qualify_for_auto_zero_init(const LINKER_OBJECT* object) {
    const std::string_view name = object->name();
    const ABI* abi = Target->abi();
    return !object->has_attr(PA_HAS_DATA) && name != abi->stack_section_name() &&
           name != abi->sysmem_section_name() && name != abi->args_section_name();
}

// Tables of functions that start-up calls stay where they are stored, although compilers mark them
// as writable.
static bool is_table_of_functions(const LINKER_OBJECT* object) {
    const std::string_view name = object->name();
    return name == Target->abi()->pinit_section_name() || name == ".preinit_array" ||
           name == ".fini_array";
}

bool COPY_TABLE_DB::qualifies_for_cinit(LINKER_OBJECT* object,
                                        const std::set<const LINKER_OBJECT*>& exclude) {
    const ABI* abi = Target->abi();
    COLLECTION* collection = as_collection(object);
    if (collection != nullptr && !collection->has_content()) return false;
    if (!object->has_attr(PA_ALLOCATED) || object->has_attr(PA_EXEC | PA_NOLOAD | PA_NOINIT))
        return false;
    if (abi->section_cannot_be_copied(object->name()) || is_table_of_functions(object))
        return false;
    if (!object->has_attr(PA_WRITE) && !abi->const_data_needs_cinit(object)) return false;
    if (exclude.contains(object)) return false;
    const LOCATOR* load = object->load_locator();
    if (load != nullptr && load->is_load() && load->placement_specified()) return false;
    if (object->has_attr(PA_HAS_DATA)) return true;
    return global_opts->not_off(OPT_zero_init) && qualify_for_auto_zero_init(object);
}

void COPY_TABLE_DB::attach_compressed_cinit_table() {
    if (!global_compress_db->is_compressed_cinit_needed()) return;
    const std::set<const LINKER_OBJECT*> exclude = create_cinit_exclude_set();
    const short kind = global_compress_db->cinit_compression_kind();
    bool any = false;
    const ROOT_COLLECTION::OUTSECT_SET outsects = root_collection->outsects();
    for (LINKER_OBJECT* object : outsects) {
        COLLECTION* outsect = as_collection(object);
        if (outsect == nullptr) continue;
        outsect->set_placement_attributes();
        if (!qualifies_for_cinit(outsect, exclude)) continue;
        compressed_cinit_table()->add_records(
            outsect, outsect->has_attr(PA_HAS_DATA) ? kind : short{CMPRS_ZERO_INIT}, nullptr);
        any = true;
    }
    if (!any) global_compress_db->remove_linker_compression_requests();
}

// ---- compression ---------------------------------------------------------------------------

void COPY_TABLE_DB::attach_compression_objects() {
    if (!global_compress_db->any_compression_requested()) return;
    global_compress_db->specialize_compressions();
    for (const auto& [name, table] : tables())
        static_cast<COPY_TABLE*>(table)->attach_compression_objects();
}

std::vector<COPY_RECORD*> COPY_TABLE_DB::cmprs_cprec_list() const {
    std::vector<COPY_RECORD*> list;
    for (const auto& [name, table] : tables())
        for (const auto& record : table->records())
            if (record->kind() != CMPRS_OFF)
                list.push_back(static_cast<COPY_RECORD*>(record.get()));
    return list;
}
