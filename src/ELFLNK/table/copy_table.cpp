// Copy records, copy tables and the handler table; the formats are in copy_table.h.
#include "ELFLNK/table/copy_table.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/compress/compress_db.h"
#include "ELFLNK/compress/compressed_section.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/placement/placement.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/internal_section.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/xmlinfo/xml_info.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "UTIL/savestr.h"

// ---- records -------------------------------------------------------------------------------

uint64_t COPY_RECORD::source_addr() const {
    return compressed_ != nullptr ? compressed_->run_address() : LOAD_DATA_RECORD::source_addr();
}

int COPY_RECORD::source_page() const {
    return compressed_ != nullptr ? compressed_->run_page() : LOAD_DATA_RECORD::source_page();
}

uint64_t COPY_RECORD::size() const {
    if (compressed_ == nullptr) return outsect()->size();
    return compressed_->has_decoder() ? 0 : compressed_->size();
}

uint64_t COPY_RECORD::load_size() const {
    return compressed_ != nullptr && compressed_->encoded() ? compressed_->size()
                                                            : outsect()->size();
}

const char* COPY_RECORD::compression_name() const {
    return compressed_ != nullptr ? compressed_->compression_name() : "none";
}

short COPY_RECORD::fallback_kind() const {
    return CMPRS_OFF;
}

short CINIT_RECORD::fallback_kind() const {
    return kind() == CMPRS_ZERO_INIT ? CMPRS_ZERO_INIT : CMPRS_COPY;
}

// A size of 0 would say that the data is encoded.
bool COPY_RECORD::is_needed() const {
    return outsect()->size() != 0;
}

void COPY_RECORD::remove_associated_sections() {
    if (compressed_ == nullptr) return;
    global_compress_db->remove_compressed_section(compressed_);
    compressed_ = nullptr;
}

void COPY_RECORD::copy_uncompressed() {
    global_compress_db->give_back_request(kind());
    set_kind(CMPRS_OFF);
}

void COPY_RECORD::attach_compression_object(const LOCATOR* locator) {
    if (kind() == CMPRS_OFF) return;
    if (file_manager.output_file()->object_file()->format() == OFE::OF_FORMAT_QVCOFF) {
        DIAG_REPORT_AT(position(), elnk_tblop_cmprs_not_supported);
        return copy_uncompressed();
    }
    const LOCATOR* load = outsect()->load_locator();
    const bool shared = global_compress_db->compressed_section_exists(outsect());
    if (locator == nullptr && !shared) {
        const char* compression = global_compress_db->compression_name(kind());
        if (load == nullptr || !load->placement_specified()) {
            DIAG_REPORT_AT(position(), elnk_tblop_cmprs_missing_load_p, compression,
                           outsect()->name());
            return copy_uncompressed();
        }
        if (load->is_split()) {
            DIAG_REPORT_AT(position(), elnk_tblop_cmprs_no_split, compression, outsect()->name());
            return copy_uncompressed();
        }
    }
    compressed_ = global_compress_db->compressed_section(outsect(), kind(), locator);
}

void CINIT_RECORD::attach_compression_object(const LOCATOR* locator) {
    set_compressed_section(global_compress_db->compressed_cinit_section(
        outsect(), kind(), locator, Target->abi()->cinit_section_name()));
}

void COPY_RECORD::update_after_split(LOAD_DATA_RECORD* piece) {
    if (!piece->is_copy_record() || compressed_ == nullptr) return;
    auto* copy = static_cast<COPY_RECORD*>(piece);
    copy->attach_compression_object(compressed_->run_locator());
    // After errors there may be no place to wish for.
    COMPRESSED_SECTION* section = copy->compressed_;
    if (section != nullptr && section->run_locator() != nullptr)
        enter_worklist(section->run_locator());
}

void COPY_RECORD::generate_xml_info() {
    write_xml_tag_begin(XML_cprec);
    write_xml_string(XML_cprec_name, outsect()->name());
    write_xml_int(XML_load_address, source_addr());
    write_xml_int(XML_cprec_load_size, load_size());
    write_xml_int(XML_run_address, outsect()->run_address());
    write_xml_int(XML_run_size, outsect()->size());
    write_xml_string(XML_compression, compression_name());
    write_xml_tag_end(XML_cprec);
}

// ---- tables --------------------------------------------------------------------------------

XML_TAG_ID COPY_TABLE::table_xml_tag() const {
    return XML_cptbl;
}

XML_TAG_ID COPY_TABLE::table_name_xml_tag() const {
    return XML_cptbl_name;
}

const char* COPY_TABLE::linker_defined_table_name() const {
    return savestrf("__QV_table_%s", user_name());
}

void COPY_TABLE::add_a_new_record(COLLECTION* outsect, short kind, const SOURCE_POSITION* pos) {
    append_record(new_COPY_RECORD(outsect, kind, pos));
}

void COPY_TABLE::remove_record(const COLLECTION* outsect) {
    if (const auto record = take_record(outsect)) {
        global_compress_db->give_back_request(record->kind());
        record->remove_associated_sections();
    }
}

void COPY_TABLE::attach_compression_objects() {
    for (const auto& record : records())
        static_cast<COPY_RECORD*>(record.get())->attach_compression_object(nullptr);
}

CINIT_TABLE::CINIT_TABLE(const LOAD_DATA_TABLE_DB& db, const char* name, unsigned alignment)
    : COPY_TABLE(db, name, alignment, nullptr) {
    assign_run_address(Target->abi()->compressed_cinit_base_name(), EXPR_OP_RUN_START);
    assign_run_address(Target->abi()->compressed_cinit_limit_name(), EXPR_OP_RUN_END);
}

// ---- the handler table ---------------------------------------------------------------------

HANDLER_TABLE::HANDLER_TABLE(unsigned capacity, unsigned alignment)
    : SECTION(file_manager.internal_file(),
              new_internal_constant_section(Target->abi()->handler_section_name(), alignment)),
      capacity_(capacity) {
    set_name(original_section_name());
    set_attr(PA_HAS_DATA | PA_ALLOCATED | PA_P2_PLACEMENT);
    clear_attr(PA_WRITE | PA_EXEC);
}

uint16_t HANDLER_TABLE::next_handler_index(COMPRESSION_INFO* info) {
    constexpr size_t most = 256; // an index is one byte of a load image
    if (handlers_.size() >= most || handlers_.size() >= capacity_)
        DIAG_REPORT(elnk_tblop_illegal_index, "compress DB");
    handlers_.push_back(info);
    return static_cast<uint16_t>(handlers_.size() - 1);
}

void HANDLER_TABLE::define_table_symbols() {
    const ABI* abi = Target->abi();
    for (auto [symbol, opcode] : {std::pair{abi->handler_table_base_name(), EXPR_OP_RUN_START},
                                  std::pair{abi->handler_table_limit_name(), EXPR_OP_RUN_END}})
        add_linker_assignment(symbol, new EXPRESSION(opcode, &source_position()), EXPR_BIND_STRONG);
}

void HANDLER_TABLE::define_table() {
    if (handlers_.empty()) return root_collection->unregister_object(this);
    define_table_symbols();
    for (COMPRESSION_INFO* info : handlers_) generate_table_entry(info);
    if (parent() != nullptr) parent()->flush_size();
}

void HANDLER_TABLE::generate_map_file() {
    if (handlers_.empty()) return;
    mprintf("\n\nLINKER GENERATED HANDLER TABLE\n\n");
    mprintf("%s @ %08lx records: %d, size/record: %ld, table size: %ld\n", name(), load_address(),
            static_cast<int>(handlers_.size()), static_cast<long>(record_size()),
            static_cast<long>(size()));
    for (size_t i = 0; i < handlers_.size(); ++i)
        mprintf("\tindex: %d, handler: %s\n", static_cast<int>(i), handlers_[i]->routine);
}

void HANDLER_TABLE::generate_xml_info() {
    if (handlers_.empty()) return;
    write_xml_tag_begin(XML_handler_table);
    write_xml_string(XML_handler_table_name, name());
    for (size_t i = 0; i < handlers_.size(); ++i) {
        write_xml_tag_begin(XML_handler);
        write_xml_int(XML_handler_index, i);
        write_xml_string(XML_handler_name, handlers_[i]->routine);
        write_xml_tag_end(XML_handler);
    }
    write_xml_tag_end(XML_handler_table);
}
