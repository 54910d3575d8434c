// Records and tables: from a list of output sections to rows of bytes.
#include "ELFLNK/table/load_data_table.h"

#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "DIAG/gen_msgs.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/table/load_data_table_db.h"
#include "ELFLNK/target/internal_section.h"
#include "ELFLNK/xmlinfo/xml_info.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "UTIL/data_map.h"
#include "UTIL/narrow.h"
#include "UTIL/savestr.h"

// ---- records -------------------------------------------------------------------------------

LOAD_DATA_RECORD::LOAD_DATA_RECORD(COLLECTION* outsect, short kind, const SOURCE_POSITION* pos)
    : outsect_(outsect), position_(pos), kind_(kind) {
    if (outsect == nullptr) DIAG_REPORT(gen_null_pointer, "osect");
}

uint64_t LOAD_DATA_RECORD::size() const {
    return outsect_->size();
}

uint64_t LOAD_DATA_RECORD::load_size() const {
    return outsect_->size();
}

uint64_t LOAD_DATA_RECORD::source_addr() const {
    return outsect_->load_address();
}

int LOAD_DATA_RECORD::source_page() const {
    return outsect_->load_page();
}

void LOAD_DATA_RECORD::process_split_section(LOAD_DATA_RECORDS& pieces) {
    for (LINKER_OBJECT* member : outsect_->members()) {
        COLLECTION* piece = as_collection(member);
        if (piece == nullptr || !piece->is_output_section() || piece->members().empty()) continue;
        pieces.push_back(new_record(piece, kind_, position_));
        update_after_split(pieces.back().get());
    }
}

void LOAD_DATA_RECORD::check_placed() const {
    if (!outsect_->is_placed()) DIAG_REPORT(elnk_outsect_not_placed, outsect_->name());
}

// ---- tables --------------------------------------------------------------------------------

LOAD_DATA_TABLE::LOAD_DATA_TABLE(const LOAD_DATA_TABLE_DB& db, const char* user_name,
                                 unsigned alignment, const SOURCE_POSITION* pos)
    : SECTION(file_manager.internal_file(),
              new_internal_constant_section(savestr(db.linker_object_name(user_name)), alignment)),
      user_name_(savestr(user_name)) {
    if (pos != nullptr) set_source_position(*pos);
    set_name(original_section_name());
    set_attr(PA_HAS_DATA | PA_ALLOCATED | PA_P2_PLACEMENT);
    clear_attr(PA_WRITE | PA_EXEC);
}

uint64_t LOAD_DATA_TABLE::size() {
    if (record_count() == 0) return is_emptied_ ? header_size() : 0;
    return header_size() + uint64_t{record_size()} * record_count();
}

void LOAD_DATA_TABLE::assign_run_address(const char* symbol, int opcode) {
    auto* value = new EXPRESSION(static_cast<EXPR_OPCODE>(opcode), &source_position());
    add_linker_assignment(symbol, value, EXPR_BIND_STRONG);
}

void LOAD_DATA_TABLE::define_entry_symbol() {
    if (!LOAD_DATA_TABLE_DB::is_binit(user_name_))
        assign_run_address(user_name_, EXPR_OP_RUN_START);
    assign_run_address(linker_defined_table_name(), EXPR_OP_RUN_START);
}

void LOAD_DATA_TABLE::add_records(COLLECTION* collection, short kind, const SOURCE_POSITION* pos) {
    if (collection->kind() == COLLECTION_OUTSECT) return add_a_new_record(collection, kind, pos);
    for (LINKER_OBJECT* member : collection->members())
        if (COLLECTION* below = as_collection(member)) add_records(below, kind, pos);
}

std::unique_ptr<LOAD_DATA_RECORD> LOAD_DATA_TABLE::take_record(const COLLECTION* outsect) {
    const auto at = std::find_if(records_.begin(), records_.end(),
                                 [=](const auto& r) { return r->outsect() == outsect; });
    if (at == records_.end()) return nullptr;
    std::unique_ptr<LOAD_DATA_RECORD> record = std::move(*at);
    records_.erase(at);
    return record;
}

void LOAD_DATA_TABLE::process_split_sections() {
    LOAD_DATA_RECORDS now;
    for (auto& record : records_) {
        const bool is_split = record->outsect()->is_split_container();
        if (!is_split && record->is_needed()) {
            now.push_back(std::move(record));
            continue;
        }
        if (is_split) record->process_split_section(now);
        record->remove_associated_sections();
    }
    is_emptied_ = now.empty() && !records_.empty();
    records_ = std::move(now);
    split_processed_ = true;
}

void LOAD_DATA_TABLE::update_before_placement(PLACEMENT_PHASE phase) {
    if (phase != PLACEMENT_PHASE_2) {
        DIAG_REPORT(elnk_invalid_placement_attempt_p1, name());
        return;
    }
    placed_in_phase_2_ = true;
    if (!split_processed_) process_split_sections();
}

void LOAD_DATA_TABLE::write_header(DATA_MAP& data) {
    data.write16(static_cast<uint16_t>(record_size()));
    data.write16(record_count());
}

void LOAD_DATA_TABLE::finalize_internal(OFE::OF_SECTION*, uint32_t) {
    if (size() == 0) return;
    if (!placed_in_phase_2_) {
        DIAG_REPORT(elnk_tblop_not_placed, table_type_string());
        return;
    }
    OFE::OF_SECTION* section = OF_SECTION_api();
    section->set_size(narrow<unsigned>(size()));
    DATA_MAP& data = section->raw_data();
    data.set_zeros(section->size_in_bytes());
    write_header(data);
    std::stable_sort(records_.begin(), records_.end(), [](const auto& a, const auto& b) {
        return a->source_addr() < b->source_addr();
    });
    for (const auto& record : records_) record->write_record(data);
}

void LOAD_DATA_TABLE::generate_map_file() {
    mprintf("%s @ %08lx records: %d, size/record: %d, table size: %ld\n", user_name_,
            load_address(), record_count(), static_cast<int>(record_size()),
            static_cast<long>(size()));
    for (const auto& record : records_) record->generate_map_file();
}

void LOAD_DATA_TABLE::generate_xml_info() {
    write_xml_tag_begin(table_xml_tag());
    write_xml_string(table_name_xml_tag(), user_name_);
    for (const auto& record : records_) record->generate_xml_info();
    write_xml_tag_end(table_xml_tag());
}
