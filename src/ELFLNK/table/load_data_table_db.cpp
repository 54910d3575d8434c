// The rules of table operators that do not depend on what the table holds.
#include "ELFLNK/table/load_data_table_db.h"

#include <algorithm>
#include <cctype>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/xmlinfo/xml_info.h"

// ---- names ---------------------------------------------------------------------------------

bool LOAD_DATA_TABLE_DB::is_same_keyword(const char* name, const char* keyword) {
    const bool upper = std::isupper(static_cast<unsigned char>(*name)) != 0;
    for (; *name != '\0' && *keyword != '\0'; ++name, ++keyword) {
        const auto c = static_cast<unsigned char>(*keyword);
        if (*name != static_cast<char>(upper ? std::toupper(c) : std::tolower(c))) return false;
    }
    return *name == *keyword;
}

bool LOAD_DATA_TABLE_DB::is_binit(const char* name) {
    return is_same_keyword(name, Target->abi()->binit_symbol_name());
}

static const char* normalized_name(const char* name) {
    return LOAD_DATA_TABLE_DB::is_binit(name) ? Target->abi()->binit_symbol_name() : name;
}

std::string LOAD_DATA_TABLE_DB::linker_object_name(const char* name) const {
    const ABI* abi = Target->abi();
    if (is_binit(name)) return abi->binit_section_name();
    if (std::string_view(name) == abi->compressed_cinit_table_name()) return name;
    return prefix_ + std::string(name);
}

bool LOAD_DATA_TABLE_DB::table_name_reserved(const char* name) const {
    return std::string_view(name) == Target->abi()->compressed_cinit_table_name();
}

// ---- tables by name ------------------------------------------------------------------------

LOAD_DATA_TABLE* LOAD_DATA_TABLE_DB::find_table(const char* name) const {
    const auto found = tables_.find(normalized_name(name));
    return found == tables_.end() ? nullptr : found->second;
}

LOAD_DATA_TABLE* LOAD_DATA_TABLE_DB::new_table(const char* name, const SOURCE_POSITION* pos) {
    LOAD_DATA_TABLE* table = make_table(normalized_name(name), pos);
    enter_table(table);
    return table;
}

LOAD_DATA_TABLE* LOAD_DATA_TABLE_DB::get_table(const char* name, const SOURCE_POSITION* pos) {
    LOAD_DATA_TABLE* table = find_table(name);
    return table != nullptr ? table : new_table(name, pos);
}

void LOAD_DATA_TABLE_DB::drop_record(const char* name, const COLLECTION* outsect) {
    if (LOAD_DATA_TABLE* table = find_table(name)) table->remove_record(outsect);
}

// ---- origin --------------------------------------------------------------------------------

void LOAD_DATA_TABLE_DB::originate() {
    if (disable_table_support()) return;
    originate_records(root_collection);
    register_section();
}

void LOAD_DATA_TABLE_DB::originate_records(COLLECTION* collection) {
    if (LOAD_DATA_TABLE_SPECS* specs = table_specs(collection)) {
        if (!legal_collection_kind_for_table(collection->kind()))
            DIAG_REPORT(elnk_tblop_bad_collection_kind, table_type_string());
        for (const auto& [name, position] : specs->names) {
            if (table_name_reserved(name.c_str()))
                DIAG_REPORT_AT(&position, elnk_tblop_invalid_name, table_type_string(), name,
                               collection->name(), name);
            else
                get_table(name.c_str(), &position)
                    ->add_records(collection, normalized_alg(specs->kind), &position);
        }
    }
    for (LINKER_OBJECT* member : collection->members())
        if (COLLECTION* below = as_collection(member)) originate_records(below);
}

void LOAD_DATA_TABLE_DB::register_section() {
    for (const auto& [name, table] : tables_)
        if (table->record_count() != 0) root_collection->add_section(table);
}

void LOAD_DATA_TABLE_DB::replace_outsect(const COLLECTION* old, COLLECTION* now) {
    for (const auto& [name, table] : tables_)
        for (const auto& record : table->records())
            if (record->outsect() == old) record->set_outsect(now);
}

// ---- restrictions --------------------------------------------------------------------------

void LOAD_DATA_TABLE_DB::restrict_table_outsect() {
    if (disable_table_support() || tables_.empty()) return;
    check_for_illegal_table_specs(root_collection, {});
    no_or_all_table_sections(root_collection);
    for (const auto& [name, table] : tables_)
        if (table->record_count() != 0) table->define_entry_symbol();
}

void LOAD_DATA_TABLE_DB::check_for_illegal_table_specs(COLLECTION* collection, REQUESTS requests) {
    if (const LOAD_DATA_TABLE_SPECS* specs = table_specs(collection))
        for (const auto& [name, position] : specs->names)
            requests.push_back({name.c_str(), &position});
    if (!requests.empty()) {
        if (enforce_cinit_restrictions(collection)) {
            for (const REQUEST& request : requests) {
                DIAG_REPORT_AT(request.position, elnk_tblop_cinit_outsect, request.name,
                               collection->name());
                drop_record(request.name, collection);
            }
        } else if (!check_for_empty_collections(collection, requests) &&
                   collection->kind() == COLLECTION_OUTSECT) {
            check_for_illegal_table_specs_on_outsect(collection, requests);
        }
    }
    for (LINKER_OBJECT* member : collection->members())
        if (COLLECTION* below = as_collection(member))
            check_for_illegal_table_specs(below, requests);
}

bool LOAD_DATA_TABLE_DB::check_for_empty_collections(COLLECTION* collection,
                                                     const REQUESTS& requests) {
    if (!collection->members().empty()) return false;
    for (const REQUEST& request : requests) {
        if (!is_binit(request.name))
            DIAG_REPORT_AT(request.position, elnk_tblop_empty_outsect, table_type_string(),
                           request.name, collection->name(), table_type_string());
        drop_record(request.name, collection);
    }
    return true;
}

void LOAD_DATA_TABLE_DB::check_for_illegal_table_specs_on_outsect(COLLECTION* outsect,
                                                                  const REQUESTS& requests) {
    if (!collection_contains_illegal_load_data_table(outsect)) return;
    for (const REQUEST& request : requests) {
        DIAG_REPORT_AT(request.position, elnk_tblop_nested_tables, request.name, outsect->name(),
                       table_type_string(), request.name, outsect->name());
        drop_record(request.name, outsect);
    }
}

void LOAD_DATA_TABLE_DB::no_or_all_table_sections(COLLECTION* collection) {
    if (collection->kind() == COLLECTION_OUTSECT) {
        if (has_table_section(collection)) enforce_only_table_sections(collection, collection);
        return;
    }
    for (LINKER_OBJECT* member : collection->members())
        if (COLLECTION* below = as_collection(member)) no_or_all_table_sections(below);
}

// False after the report of the first section that is no table.
bool LOAD_DATA_TABLE_DB::enforce_only_table_sections(COLLECTION* collection,
                                                     COLLECTION* outermost) {
    for (LINKER_OBJECT* member : collection->members()) {
        if (COLLECTION* below = as_collection(member)) {
            if (!enforce_only_table_sections(below, outermost)) return false;
        } else if (member->is_section() && !contains_table(member)) {
            DIAG_REPORT(elnk_tblop_member_missing_table, outermost->name(), table_type_string(),
                        table_type_string(), member->name());
            return false;
        }
    }
    return true;
}

// ---- placement and report ------------------------------------------------------------------

void LOAD_DATA_TABLE_DB::split() {
    for (const auto& [name, table] : tables_)
        if (table->record_count() != 0) table->process_split_sections();
}

std::vector<LOAD_DATA_TABLE*> LOAD_DATA_TABLE_DB::shown_tables() const {
    std::vector<LOAD_DATA_TABLE*> shown;
    if (disable_table_support()) return shown;
    for (const auto& [name, table] : tables_)
        if (table->record_count() != 0) shown.push_back(table);
    std::stable_sort(shown.begin(), shown.end(), LINKER_OBJECT::less_than_load_address);
    return shown;
}

void LOAD_DATA_TABLE_DB::generate_map_file() {
    const std::vector<LOAD_DATA_TABLE*> shown = shown_tables();
    if (shown.empty()) return;
    mprintf("\n\nLINKER GENERATED %s TABLES\n\n", table_type_string_upper());
    for (LOAD_DATA_TABLE* table : shown) table->generate_map_file();
}

void LOAD_DATA_TABLE_DB::generate_xml_info() {
    const std::vector<LOAD_DATA_TABLE*> shown = shown_tables();
    if (shown.empty()) return;
    write_xml_tag_begin(table_xml_tag());
    for (LOAD_DATA_TABLE* table : shown) table->generate_xml_info();
    write_xml_tag_end(table_xml_tag());
}
