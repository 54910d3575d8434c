// The encodings, the requests for them, the images, and the calls of the phases.
#include "ELFLNK/compress/compress_db.h"

#include <algorithm>
#include <set>
#include <strings.h>

#include "DIAG/diagnostic.h"
#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/collect/collect.h"
#include "ELFLNK/compress/compressed_section.h"
#include "ELFLNK/compress/compression_alg.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"

// ---- encodings -----------------------------------------------------------------------------

void COMPRESS_DB::make_table() {
    const auto add = [this](const char* name, const COMPRESSION_ALG* algorithm, bool selectable) {
        const auto kind = static_cast<short>(table_.size());
        auto encoder = kind == CMPRS_UNKNOWN ? nullptr : LOAD_DATA_ENCODER::make(kind, algorithm);
        const char* routine = encoder != nullptr ? encoder->decoder_name() : nullptr;
        table_.push_back({kind, name, std::move(encoder), routine, selectable});
    };
    add("unknown", nullptr, false);
    add("off", nullptr, true);
    add("copy", nullptr, false);
    add("zero_init", nullptr, false);
    for (const auto& algorithm :
         COMPRESSION_FACTORY::compression_list(Target->data_unit_bit_size()))
        add(algorithm->name(), algorithm.get(), true);
}

COMPRESSION_INFO* COMPRESS_DB::info(short kind) {
    if (table_.empty()) make_table();
    return kind >= 0 && static_cast<size_t>(kind) < table_.size() ? &table_[kind] : nullptr;
}

short COMPRESS_DB::compression_kind(const char* name) {
    info(CMPRS_UNKNOWN);
    for (const COMPRESSION_INFO& row : table_)
        if (strcasecmp(row.name, name) == 0) return row.kind;
    return CMPRS_NONE;
}

const char* COMPRESS_DB::compression_name(short kind) {
    const COMPRESSION_INFO* row = info(kind);
    return row != nullptr ? row->name : "error";
}

// The kind that an option names.
static short option_kind(COMPRESS_DB& db, option_id option) {
    const char* name = global_opts->getstrarg(option);
    return db.compression_kind(name != nullptr ? name : "lzss");
}

short COMPRESS_DB::normalized_kind(short kind) {
    if (kind != CMPRS_UNKNOWN) return kind;
    return global_opts->isopt(OPT_copy_compression) ? option_kind(*this, OPT_copy_compression)
                                                    : short{CMPRS_OFF};
}

short COMPRESS_DB::cinit_compression_kind() {
    if (!global_opts->isopt(OPT_cinit_compression)) return compression_kind("lzss");
    const short kind = option_kind(*this, OPT_cinit_compression);
    return kind == CMPRS_OFF ? short{CMPRS_COPY} : kind;
}

bool COMPRESS_DB::disable_copy_table_compression() const {
    return !Target->is_copy_compression_supported();
}

bool COMPRESS_DB::is_supported() const {
    return !global_copy_table_db->disable_table_support() &&
           Target->is_copy_compression_supported();
}

bool COMPRESS_DB::is_compressed_cinit_needed() const {
    return global_copy_table_db->is_table_supported() && Target->abi()->need_compressed_cinit();
}

// ---- requests ------------------------------------------------------------------------------

void COMPRESS_DB::add_request(short kind) {
    if (COMPRESSION_INFO* row = info(kind)) ++row->requests;
}

void COMPRESS_DB::give_back_request(short kind) {
    COMPRESSION_INFO* row = info(kind);
    if (row != nullptr && row->requests != 0) --row->requests;
}

bool COMPRESS_DB::any_compression_requested() {
    info(CMPRS_UNKNOWN);
    return std::any_of(table_.begin() + CMPRS_COPY, table_.end(),
                       [](const COMPRESSION_INFO& row) { return row.requests != 0; });
}

void COMPRESS_DB::add_linker_compression_requests() {
    if (!linker_requests_.empty() || !is_compressed_cinit_needed()) return;
    linker_requests_.push_back(cinit_compression_kind());
    if (linker_requests_.front() != CMPRS_COPY) linker_requests_.push_back(CMPRS_COPY);
    if (global_opts->not_off(OPT_zero_init)) linker_requests_.push_back(CMPRS_ZERO_INIT);
    for (const short kind : linker_requests_) add_request(kind);
}

void COMPRESS_DB::remove_linker_compression_requests() {
    for (const short kind : linker_requests_) give_back_request(kind);
    linker_requests_.clear();
}

void COMPRESS_DB::add_decompression_routine_names() {
    if (!is_supported()) return;
    add_linker_compression_requests();
    if (const uint32_t unsaid = info(CMPRS_UNKNOWN)->requests; unsaid != 0) {
        table_[CMPRS_UNKNOWN].requests = 0;
        if (COMPRESSION_INFO* row = info(normalized_kind(CMPRS_UNKNOWN))) row->requests += unsaid;
    }
    if (!any_compression_requested()) return;
    for (const COMPRESSION_INFO& row : table_) {
        if (row.routine == nullptr || row.requests == 0) continue;
        global_symbols.add_entry_name(row.routine);
        root_collection->expect_root_removal(row.routine);
    }
}

// ---- images --------------------------------------------------------------------------------

void add_to_named_outsect(const char* name, LINKER_OBJECT* object) {
    LINKER_OBJECT* found = root_collection->find_outsect(name);
    if (found == nullptr) found = create_default_collection(name);
    COLLECTION* outsect = as_collection(found);
    if (outsect == nullptr) {
        DIAG_REPORT(elnk_lobj_not_collection, name);
        return;
    }
    outsect->add_member(object);
}

COLLECTION* COMPRESS_DB::compressed_sections() {
    if (compressed_sections_ == nullptr) {
        compressed_sections_ = new COLLECTION(".compressed_sections", COLLECTION_LOGICAL);
        compressed_sections_->set_attr(PA_P2_PLACEMENT);
        root_collection->add_member(compressed_sections_);
    }
    return compressed_sections_;
}

// Assignments of load addresses go where the load data is; those of run addresses stay.
static bool is_load_assignment(const EXPRESSION* expr) {
    const EXPRESSION* value = expr->right();
    return value != nullptr &&
           (value->opcode() == EXPR_OP_LOAD_START || value->opcode() == EXPR_OP_LOAD_END ||
            value->opcode() == EXPR_OP_LOAD_SIZE);
}

void COMPRESS_DB::move_load_placement(COLLECTION* run, COMPRESSED_SECTION* image) {
    LOCATOR* load = run->load_locator();
    LOCATOR* locator = run->run_locator();
    if (load == nullptr || locator == nullptr || load == locator || locator->is_both()) {
        DIAG_REPORT(elnk_cmprs_invalid_locator, image->name());
        return;
    }
    run->take_load_locator();
    load->set_object(image);
    load->set_kind(LOCATOR_KIND::BOTH);
    image->add_locator(load);
    const std::vector<EXPRESSION*> assignments(run->assignments().begin(),
                                               run->assignments().end());
    for (EXPRESSION* expr : assignments)
        if (is_load_assignment(expr)) run->move_assignment(expr, image);
    run->set_attr(PA_RUN_IMAGE);
}

static void place_as(COMPRESSED_SECTION* image, const LOCATOR* locator) {
    auto* copy = new LOCATOR(*locator);
    copy->set_object(image);
    image->add_locator(copy);
}

void COMPRESS_DB::enter_image(COLLECTION* run, COMPRESSED_SECTION* image) {
    images_[run] = image;
    root_collection->add_section(image);
}

COMPRESSED_SECTION* COMPRESS_DB::compressed_section(COLLECTION* run, short kind,
                                                    const LOCATOR* locator) {
    if (const auto found = images_.find(run); found != images_.end()) {
        found->second->add_reference();
        return found->second;
    }
    COMPRESSED_SECTION* image =
        Target->new_COMPRESSED_SECTION(savestrf("%s.load", run->name()), run, kind);
    enter_image(run, image);
    if (locator != nullptr)
        place_as(image, locator);
    else
        move_load_placement(run, image);
    compressed_sections()->add_member(image);
    root_collection->add_outsect(image);
    return image;
}

COMPRESSED_SECTION* COMPRESS_DB::compressed_cinit_section(COLLECTION* run, short kind,
                                                          const LOCATOR* locator,
                                                          const char* outsect) {
    if (const auto found = images_.find(run); found != images_.end()) {
        found->second->add_reference();
        return found->second;
    }
    COMPRESSED_SECTION* image =
        Target->new_COMPRESSED_SECTION(savestrf("%s.%s.load", outsect, run->name()), run, kind);
    enter_image(run, image);
    if (locator != nullptr) place_as(image, locator);
    if (kind == CMPRS_OFF || kind == CMPRS_COPY) image->choose(info(kind));
    add_to_named_outsect(outsect, image);
    return image;
}

void COMPRESS_DB::remove_compressed_section(COMPRESSED_SECTION* image) {
    if (image->release_reference()) return;
    images_.erase(image->run_collection());
    root_collection->unregister_object(image);
}

// ---- the end of collection -----------------------------------------------------------------

void COMPRESS_DB::update_after_collection() {
    if (!is_supported() || !any_compression_requested()) return;
    originate_handler_table();
    global_copy_table_db->attach_compressed_cinit_table();
    global_copy_table_db->attach_compression_objects();
    register_compressions();
    remove_unused_decompression_sections();
    check_decompression_locators();
    handler_table_->define_table();
}

void COMPRESS_DB::originate_handler_table() {
    handler_table_ = Target->new_HANDLER_TABLE(static_cast<unsigned>(table_.size()));
    root_collection->add_section(handler_table_);
    add_to_named_outsect(Target->abi()->cinit_section_name(), handler_table_);
}

void COMPRESS_DB::register_kind(short kind) {
    COMPRESSION_INFO* row = info(kind);
    if (row != nullptr && row->routine != nullptr &&
        row->handler_index == COMPRESSION_INFO::NO_INDEX)
        row->handler_index = handler_table_->next_handler_index(row);
}

void COMPRESS_DB::register_compressions() {
    for (const COPY_RECORD* record : global_copy_table_db->cmprs_cprec_list()) {
        register_kind(record->kind());
        register_kind(record->fallback_kind());
    }
}

void COMPRESS_DB::specialize_compressions() {
    const std::vector<COPY_RECORD*> records = global_copy_table_db->cmprs_cprec_list();
    const auto uses_rle = [this](const COPY_RECORD* record) {
        const COMPRESSION_INFO* row = info(record->kind());
        return row != nullptr && row->encoder != nullptr && row->encoder->is_rle();
    };
    const auto rle = std::find_if(records.begin(), records.end(), uses_rle);
    if (rle == records.end()) return;
    for (COPY_RECORD* record : records)
        if (record->kind() == CMPRS_ZERO_INIT) record->set_kind((*rle)->kind());
}

void COMPRESS_DB::remove_unused_decompression_sections() {
    for (const COMPRESSION_INFO& row : table_)
        if (row.routine != nullptr && row.handler_index == COMPRESSION_INFO::NO_INDEX) {
            global_symbols.remove_entry_name(row.routine);
            root_collection->remove_symbol_reference_from_root_section(row.routine);
        }
}

// ---- routines that start-up code runs before it copies anything ----------------------------

namespace {

/// The sections that a routine's code reaches, itself first.
class REACHED_SECTIONS {
  public:
    explicit REACHED_SECTIONS(SECTION* start) {
        add(start);
        for (size_t i = 0; i < sections_.size(); ++i) add_targets(sections_[i]);
    }
    const std::vector<SECTION*>& list() const { return sections_; }

  private:
    void add(SECTION* section) {
        if (section != nullptr && seen_.insert(section).second) sections_.push_back(section);
    }
    void add_targets(SECTION* section);

    std::vector<SECTION*> sections_;
    std::set<SECTION*> seen_;
};

void REACHED_SECTIONS::add_targets(SECTION* section) {
    const OFE::OF_SECTION* input = section->OF_SECTION_api();
    OFE::OBJECT_FILE* file = input != nullptr ? input->ofile() : nullptr;
    if (file == nullptr || !file->is_input()) return;
    OFE::OF_SECTION_TABLE* table = input->section_table();
    OFE::OF_RAW_SYMBOL local;
    for (unsigned t = 0; t < table->raw_reloc_table_num(input->id()); ++t) {
        const OFE::OF_RAW_RELOCS relocs = table->raw_relocs(input->id(), t);
        OFE::OF_SYMBOL_TABLE* symbols = relocs.symbols();
        for (unsigned i = 0; symbols != nullptr && i < relocs.size(); ++i) {
            const unsigned id = relocs[i].sym_id;
            if (id >= symbols->first_global()) {
                const OFE::OF_SYMBOL* symbol = resolve_symbol(file, id);
                if (symbol != nullptr) add(root_collection->lookup_OF_SECTION(symbol->section()));
            } else if (symbols->raw_symbol(id, local)) {
                add(root_collection->lookup_section(file->file_id(), local.section_id));
            }
        }
    }
}

/// The section is at its run address only after somebody has copied it there.
bool is_copied_before_use(const SECTION* section, const COMPRESS_DB& db) {
    for (const LINKER_OBJECT* object = section; object != nullptr; object = object->parent()) {
        const LOCATOR* load = object->load_locator();
        if (load != nullptr && load->is_load() && load->placement_specified()) return true;
        const COLLECTION* collection = as_collection(object);
        if (collection != nullptr && db.compressed_section_exists(collection)) return true;
    }
    return false;
}

} // namespace

void COMPRESS_DB::check_decompression_locators() {
    for (const COMPRESSION_INFO& row : table_) {
        if (row.routine == nullptr || row.handler_index == COMPRESSION_INFO::NO_INDEX) continue;
        const OFE::OF_SYMBOL* routine = global_symbols.lookup_def(row.routine);
        SECTION* start =
            routine != nullptr ? root_collection->lookup_OF_SECTION(routine->section()) : nullptr;
        if (start == nullptr) continue;
        const REACHED_SECTIONS reached(start);
        for (const SECTION* section : reached.list())
            if (is_copied_before_use(section, *this))
                DIAG_REPORT(elnk_decompress_user_copy_implied, section->name());
    }
}

// ---- between the phases of placement -------------------------------------------------------

void COMPRESS_DB::process_compressed_sections() {
    // After an error nothing is written, and what did not fit may be of any size.
    if (processed_ || DIAGNOSTIC::error_count_m > 0) return;
    if (!is_supported() || !any_compression_requested()) return;
    processed_ = true;
    const std::vector<COPY_RECORD*> records = global_copy_table_db->cmprs_cprec_list();
    if (records.empty()) return;
    install_releng_hooks();
    create_outfile_components(true);
    for (COPY_RECORD* record : records)
        if (COMPRESSED_SECTION* image = record->compressed_section())
            if (image->is_compressible()) image->copy_uncompressed_data();
    for (COPY_RECORD* record : records)
        if (COMPRESSED_SECTION* image = record->compressed_section())
            image->finalize_compression(record->fallback_kind());
    for (COPY_RECORD* record : records)
        if (COMPRESSED_SECTION* image = record->compressed_section()) image->encode();
}

void COMPRESS_DB::generate_map_file() {
    if (!global_copy_table_db->disable_table_support() && handler_table_ != nullptr)
        handler_table_->generate_map_file();
}

void COMPRESS_DB::generate_xml_info() {
    if (!global_copy_table_db->disable_table_support() && handler_table_ != nullptr)
        handler_table_->generate_xml_info();
}
