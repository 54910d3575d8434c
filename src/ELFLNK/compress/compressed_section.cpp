// What happens to a load image: its data arrives, is encoded, and the run image gives its data up.
#include "ELFLNK/compress/compressed_section.h"

#include "DIAG/diagnostic.h"
#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/compress/compress_db.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/object/fill_data.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/internal_section.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/data_map.h"
#include "UTIL/narrow.h"

static unsigned image_alignment() {
    return Target->abi()->max_data_bit_align() / Target->data_unit_bit_size();
}

COMPRESSED_SECTION::COMPRESSED_SECTION(const char* name, COLLECTION* run, short kind)
    : SECTION(file_manager.internal_file(), new_internal_constant_section(name, image_alignment())),
      run_(run),
      kind_(kind) {
    set_name(original_section_name());
    set_attr(PA_HAS_DATA | PA_ALLOCATED | PA_READ | PA_P2_PLACEMENT);
    clear_attr(PA_WRITE | PA_EXEC);
}

COMPRESSED_SECTION::~COMPRESSED_SECTION() = default;

uint64_t COMPRESSED_SECTION::size() {
    if (encoded_) return SECTION::size();
    return info_ == nullptr ? run_->size() : info_->encoder->encoded_data_size(run_->size());
}

bool COMPRESSED_SECTION::has_decoder() const {
    return info_ != nullptr && info_->routine != nullptr;
}

bool COMPRESSED_SECTION::is_compressed() const {
    return info_ != nullptr && info_->kind != CMPRS_OFF && info_->kind != CMPRS_COPY;
}

const char* COMPRESSED_SECTION::compression_name() const {
    return info_ != nullptr ? info_->name : "none";
}

// ---- may it be compressed? -----------------------------------------------------------------

// A message is worth it only about a compression that the user can choose.
static bool is_users_choice(short kind) {
    const COMPRESSION_INFO* info = global_compress_db->info(kind);
    return info != nullptr && kind != CMPRS_OFF && info->user_selectable;
}

void COMPRESSED_SECTION::report_not_performed() {
    if (reported_ || !is_users_choice(kind_) || run_->parent() == root_collection) return;
    reported_ = true;
    const COLLECTION* both = root_collection->find_enclosing_collection(run_, this);
    const LINKER_OBJECT* holder = containing_outsect();
    DIAG_REPORT(elnk_cmprs_not_performed, both->name(), run_->name(),
                holder != nullptr ? holder->name() : name(),
                global_compress_db->compression_name(kind_), run_->name());
}

bool COMPRESSED_SECTION::is_compressible() {
    if (!run_->is_placed()) {
        report_not_performed();
        return false;
    }
    if (data_copied_ || !run_->has_attr(PA_HAS_DATA)) return true;
    if (!relocs_checked_) {
        relocs_checked_ = true;
        relocs_final_ = syms_in_collection_have_final_values();
    }
    return relocs_final_;
}

bool COMPRESSED_SECTION::syms_in_collection_have_final_values() {
    std::vector<LINKER_OBJECT*> sections;
    run_->flatten(sections, &LINKER_OBJECT::is_section);
    for (LINKER_OBJECT* section : sections)
        if (!section_has_final_values(static_cast<SECTION*>(section))) return false;
    return true;
}

// What a relocation refers to has its address; what is undefined and weak stays 0.
static bool has_final_value(OFE::OF_SYMBOL* symbol) {
    if (symbol == nullptr) return true;
    if (symbol->kind() == OFE::OF_SYM_KIND_UNDEFINED) global_symbols.link_undef(symbol);
    const OFE::OF_SYMBOL* final = symbol->resolved_by_final();
    return final->final_value() || (final->kind() == OFE::OF_SYM_KIND_UNDEFINED &&
                                    final->binding() == OFE::OF_SYM_BINDING_WEAK);
}

bool COMPRESSED_SECTION::section_has_final_values(SECTION* section) {
    OFE::OF_SECTION* input = section->OF_SECTION_api();
    if (input == nullptr) return true;
    const auto not_final = [this](const char* symbol) {
        if (is_users_choice(kind_))
            DIAG_REPORT(elnk_data_not_compressible, run_->name(), symbol,
                        global_compress_db->compression_name(kind_));
        return false;
    };
    OFE::OBJECT_FILE* file = input->ofile();
    if (!file->is_input()) {
        for (OFE::OF_RELOC* reloc : input->all_relocs())
            if (reloc->takes_symbol() && !has_final_value(reloc->symbol()))
                return not_final(reloc->symbol()->name());
        return true;
    }
    OFE::OF_SECTION_TABLE* table = input->section_table();
    for (unsigned t = 0; t < table->raw_reloc_table_num(input->id()); ++t) {
        const OFE::OF_RAW_RELOCS relocs = table->raw_relocs(input->id(), t);
        OFE::OF_SYMBOL_TABLE* symbols = relocs.symbols();
        for (unsigned i = 0; symbols != nullptr && i < relocs.size(); ++i) {
            const OFE::OF_RAW_RELOC reloc = relocs[i];
            if (!file->machine_reloc_type(reloc.type)->has_symbol()) continue;
            OFE::OF_SYMBOL* symbol = reloc.sym_id < symbols->first_global()
                                         ? output_of_local(file, reloc.sym_id)
                                         : resolve_symbol(file, reloc.sym_id);
            if (!has_final_value(symbol)) return not_final(symbol->name());
        }
    }
    return true;
}

// ---- data ----------------------------------------------------------------------------------

void COMPRESSED_SECTION::mark_run_image_uninitialized() {
    if (run_image_marked_) return;
    run_image_marked_ = true;
    OFE::OF_SECTION* output = run_->output_OF_SECTION();
    if (output->ofile()->format() == OFE::OF_FORMAT_ELF)
        OFE::elf_api(output)->set_sh_type(OFE::SHT_NOBITS);
    else
        output->set_bss();
    run_->clear_attr(PA_HAS_DATA);
}

static void copy_leaf(LINKER_OBJECT* leaf, OFE::OF_SECTION* to, uint32_t offset) {
    leaf->write_data_internal(to, offset);
    leaf->set_data_written(true);
    SECTION* section = as_section(leaf);
    OFE::OF_SECTION* input = section != nullptr ? section->OF_SECTION_api() : nullptr;
    if (input == nullptr) return;
    const auto size = static_cast<uint32_t>(input->bytes().size);
    if (uint8_t* bytes = to->writable_bytes(offset, size))
        Target->finalize_copied_data(input, bytes, size);
}

// What is unpacked has a fill in its gaps like what is stored as it is. The run image has no load
// placement any more, for which gaps would have become members; the fill of the range where it was
// to be stored means the memory around the image.
void COMPRESSED_SECTION::fill_gaps() {
    OFE::OF_SECTION* to = OF_SECTION_api();
    to->set_run_addr(static_cast<uint32_t>(run_->run_address())); // what patterns are anchored to
    const LOCATOR* only = run_->has_attr(PA_RUN_IMAGE) ? nullptr : run_->run_locator();
    FILL_SPEC* fill = FILL_SPEC::of_gaps(run_, only != nullptr ? only->range() : nullptr);
    if (fill->value() != 0) fill_data(to, 0, narrow<uint32_t>(run_->size()), fill);
}

void COMPRESSED_SECTION::copy_data() {
    OFE::OF_SECTION* to = OF_SECTION_api();
    std::vector<LINKER_OBJECT*> leaves;
    run_->flatten(leaves, [](const LINKER_OBJECT* o) { return o->is_leaf(); });
    for (LINKER_OBJECT* leaf : leaves) {
        const bool has_bytes = leaf->is_space() ? leaf->fill() != nullptr : leaf->has_load_data();
        if (!has_bytes || leaf->size() == 0) continue;
        if (!leaf->is_placed()) {
            DIAG_REPORT(elnk_cmprs_member_not_placed, leaf->name());
            return;
        }
        const auto offset = narrow<uint32_t>(leaf->run_address() - run_->run_address());
        if (!leaf->finalized()) leaf->finalize_internal(to, offset);
        leaf->set_finalized(true);
        if (!leaf->data_written()) copy_leaf(leaf, to, offset);
    }
}

bool COMPRESSED_SECTION::copy_uncompressed_data() {
    if (data_copied_) return true;
    if (run_->has_attr(PA_HAS_DATA)) {
        define_load_section_symbols();
        if (!is_compressible()) return false;
        OF_SECTION_api()->set_size(narrow<uint32_t>(run_->size()));
        fill_gaps();
        copy_data();
        mark_run_image_uninitialized();
    }
    data_copied_ = true;
    return true;
}

// ---- encoding ------------------------------------------------------------------------------

DATA_MAP& COMPRESSED_SECTION::data_to_encode() {
    DATA_MAP& data = OF_SECTION_api()->raw_data();
    data.resize(narrow<uint32_t>(run_->size()) * Target->data_unit_bit_size() / 8);
    data.set_pos(0);
    return data;
}

void COMPRESSED_SECTION::encode_to(DATA_MAP& image) {
    const uint64_t bytes = run_->size() * Target->data_unit_bit_size() / 8;
    const LOAD_DATA_ENCODER& encoder = *info_->encoder;
    DATA_MAP none;
    const bool indexed = encoder.decoder_name() != nullptr;
    if (indexed && info_->handler_index == COMPRESSION_INFO::NO_INDEX)
        DIAG_REPORT(elnk_tblop_illegal_index, info_->name);
    image.set_endian(OF_SECTION_api()->raw_data().endian());
    encoder.encode_data(encoder.needs_data() ? data_to_encode() : none, bytes,
                        static_cast<uint8_t>(indexed ? info_->handler_index : 0), image);
}

void COMPRESSED_SECTION::choose(COMPRESSION_INFO* info) {
    if (info == nullptr || info->encoder == nullptr)
        DIAG_REPORT(elnk_cmprs_no_encoder, info != nullptr ? info->name : "error");
    info_ = info;
    if (info->kind >= CMPRS_ALG) OF_SECTION_api()->set_align(1);
}

void COMPRESSED_SECTION::finalize_compression(short fallback) {
    if (info_ != nullptr) return;
    COMPRESSION_INFO* second = global_compress_db->info(fallback);
    if (kind_ == fallback || !is_compressible()) return choose(second);
    info_ = global_compress_db->info(kind_);
    image_ = std::make_unique<DATA_MAP>();
    encode_to(*image_);
    const uint64_t bytes = run_->size() * Target->data_unit_bit_size() / 8;
    if (image_->size() < second->encoder->encoded_data_size(bytes)) return choose(info_);
    image_.reset();
    choose(second);
}

bool COMPRESSED_SECTION::encode() {
    if (encoded_) return true;
    if (DIAGNOSTIC::error_count_m > 0 || info_ == nullptr || !copy_uncompressed_data())
        return false;
    if (image_ == nullptr) {
        image_ = std::make_unique<DATA_MAP>();
        encode_to(*image_);
    }
    OFE::OF_SECTION* section = OF_SECTION_api();
    section->raw_data().set_copy(image_->bytes());
    section->set_size(narrow<uint32_t>(image_->size() * 8 / Target->data_unit_bit_size()));
    image_.reset();
    encoded_ = true;
    if (parent() != nullptr) parent()->flush_size();
    return true;
}

// ---- the phases ----------------------------------------------------------------------------

void COMPRESSED_SECTION::update_before_placement(PLACEMENT_PHASE phase) {
    if (phase != PLACEMENT_PHASE_2) {
        DIAG_REPORT(elnk_invalid_placement_attempt_p1, name());
        return;
    }
    if (!run_->is_placed()) {
        const COLLECTION* both = root_collection->find_enclosing_collection(run_, this);
        if (both != root_collection)
            DIAG_REPORT(elnk_invalid_phase_placement_attempt, name(), run_->name(), both->name());
        else
            DIAG_REPORT(elnk_cmprs_scn_placed_before_outsect, name(), run_->name());
        return;
    }
    encode();
}

void COMPRESSED_SECTION::finalize_internal(OFE::OF_SECTION* output, uint32_t offset) {
    if (!encoded_ && DIAGNOSTIC::error_count_m == 0) {
        relocs_checked_ = false;
        if (!encode()) DIAG_REPORT(elnk_cmprs_data_not_valid, name());
    }
    SECTION::finalize_internal(output, offset);
}
