// The table is made here: which piece belongs to which code, and what code without a piece gets.
#include "ELFLNK/exidx/exidx.h"

#include <cstring>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "DIAG/elnk_msgs.h"
#include "DIAG/user_msg_api.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/crc/crc_table.h"
#include "ELFLNK/exidx/exidx_section.h"
#include "ELFLNK/exidx/exidx_table.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/data_map.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

using namespace OFE;

namespace EXIDX {

namespace {

constexpr unsigned R_ARM_PREL31 = 42;

OBJECT_FILE* internal_file() {
    return file_manager.internal_file()->object_file();
}

} // namespace

bool is_exidx(OF_SECTION* section) {
    if (strncmp(section->name(), TABLE_NAME, strlen(TABLE_NAME)) != 0) return false;
    OF_RAW_SECTION header;
    return section->ofile()->format() == OF_FORMAT_ELF && Target->abi()->requires_tdeh() &&
           section->section_table()->raw_section(section->id(), header) &&
           header.type == SHT_ARM_EXIDX;
}

// ---- what the linker makes itself --------------------------------------------------------------

OF_SYMBOL* create_local_symbol(const char* name, int opcode, LINKER_OBJECT* object) {
    auto* value = new EXPRESSION(static_cast<EXPR_OPCODE>(opcode), &object->source_position());
    object->add_linker_assignment(name, value, EXPR_BIND_LOCAL);
    OF_SYMBOL* symbol = internal_file()->symbol_table()->new_symbol();
    symbol->set_name_view(name);
    symbol->set_kind(OF_SYM_KIND_UNDEFINED);
    symbol->set_binding(OF_SYM_BINDING_LOCAL);
    symbol->set_type(OF_SYM_TYPE_FUNCTION);
    symbol->set_resolved_by(global_symbols.lookup_def(name));
    return symbol;
}

void add_entry_address(EXIDX_SECTION* piece, OF_SYMBOL* symbol) {
    OF_RELOC* reloc = piece->OF_SECTION_api()->new_reloc(false);
    reloc->set_type(internal_file()->machine_reloc_type(R_ARM_PREL31));
    reloc->set_symbol(symbol);
    reloc->set_scnrel_offset(0);
}

EXIDX_SECTION* new_default_piece(const char* name, OF_SYMBOL* symbol) {
    OBJECT_FILE* file = internal_file();
    OF_SECTION* section = file->section_table()->new_section(name);
    elf_api(section)->set_sh_type(SHT_ARM_EXIDX);
    elf_api(section)->set_sh_flags(SHF_ALLOC | SHF_LINK_ORDER);
    section->set_align(4);
    uint8_t words[8] = {};
    DATA_MAP::store(words + 4, CANTUNWIND, 4,
                    static_cast<DATA_MAP::ENDIAN>(file->machine_endian()));
    section->write_to_raw_data(words, sizeof words, 0);
    auto* piece = new EXIDX_SECTION(file_manager.internal_file(), section);
    if (symbol != nullptr) add_entry_address(piece, symbol);
    root_collection->add_section(piece);
    return piece;
}

EXIDX_SECTION* create_default_exidx_section(SECTION* code) {
    static int count = 0;
    const char* symbol_name = savestrf("__QV_exidx_linkto_scn_start_%d", count++);
    return new_default_piece(savestrf("%s%s", TABLE_NAME, code->original_section_name()),
                             create_local_symbol(symbol_name, EXPR_OP_RUN_START, code));
}

// ---- the builder -------------------------------------------------------------------------------

namespace {

class EXIDX_TABLE_BUILDER {
  public:
    void build();

  private:
    void build_section_exidx_map();
    EXIDX_TABLE* build_exidx_table_for_collection(const COLLECTION* collection, const char* name);
    void build_tables_of_partial_link();
    void build_table_of_final_link();
    void drop_unused_pieces();

    std::vector<EXIDX_SECTION*> all_pieces_;
    std::unordered_map<const OF_SECTION*, EXIDX_SECTION*> pieces_; // by the code's section
    std::unordered_set<const OF_SECTION*> told_; // code of which the user knows that it has several
};

/// A piece with part of an entry would put every entry behind it out of place.
bool is_made_of_entries(EXIDX_SECTION* piece) {
    if (piece->size() % ENTRY_SIZE == 0) return piece->size() != 0;
    USER_MSG::get_umsg_obj()->warning(
        0U,
        "the size of the EXIDX section \"%s\", %#lx, is no multiple of the size of an entry; its "
        "code is entered as code that cannot be unwound",
        piece->name(), static_cast<unsigned long>(piece->size()));
    return false;
}

// In the root's order: the first piece of a section wins.
void EXIDX_TABLE_BUILDER::build_section_exidx_map() {
    std::vector<SECTION*> sections;
    root_collection->list_sections(sections);
    for (SECTION* section : sections) {
        if (!section->is_exidx()) continue;
        auto* piece = static_cast<EXIDX_SECTION*>(section);
        all_pieces_.push_back(piece);
        if (!is_made_of_entries(piece)) continue;
        OF_SECTION* code = piece->link_to_OF_section();
        if (code == nullptr) {
            DIAG_REPORT(elnk_exidx_scn_missing_link, piece->name());
        } else if (root_collection->lookup_OF_SECTION(code) == nullptr) {
            trace_collect.printf("EXIDX section %s is ignored as its link is not in the link",
                                 piece->original_section_name());
        } else if (const auto [at, is_first] = pieces_.emplace(code, piece); !is_first) {
            if (told_.insert(code).second)
                DIAG_REPORT(elnk_multiple_exidx_sections_map_to_same_section, code->name(),
                            at->second->name());
        }
    }
}

EXIDX_TABLE* EXIDX_TABLE_BUILDER::build_exidx_table_for_collection(const COLLECTION* collection,
                                                                   const char* name) {
    std::vector<LINKER_OBJECT*> sections;
    collection->flatten(sections, [](const LINKER_OBJECT* object) {
        return object->has_attr(PA_EXEC) && object->is_section() && !object->is_exidx();
    });
    EXIDX_TABLE* table = nullptr;
    for (LINKER_OBJECT* object : sections) {
        auto* code = static_cast<SECTION*>(object);
        const auto at = pieces_.find(code->OF_SECTION_api());
        if (table == nullptr) table = new EXIDX_TABLE(name);
        table->add_code(code, at != pieces_.end() ? at->second : nullptr);
    }
    if (table != nullptr) table->complete();
    return table;
}

void EXIDX_TABLE_BUILDER::build_tables_of_partial_link() {
    std::vector<LINKER_OBJECT*> outsects;
    root_collection->flatten(outsects, &LINKER_OBJECT::is_output_section);
    auto* group = new COLLECTION(TABLE_NAME, COLLECTION_GROUP);
    int count = 0;
    for (LINKER_OBJECT* outsect : outsects) {
        const COLLECTION* collection = as_collection(outsect);
        if (collection == nullptr) continue;
        EXIDX_TABLE* table =
            build_exidx_table_for_collection(collection, savestrf("%s_%d", TABLE_NAME, count));
        if (table == nullptr) continue;
        count++;
        group->add_member(table);
        root_collection->add_outsect(table);
    }
    if (count == 0) {
        delete group;
        return;
    }
    group->replace_user_outsect();
    if (group->parent() == nullptr) root_collection->add_member(group);
}

void EXIDX_TABLE_BUILDER::build_table_of_final_link() {
    EXIDX_TABLE* table = build_exidx_table_for_collection(root_collection, TABLE_NAME);
    if (table == nullptr) return;
    COLLECTION* user = as_collection(root_collection->find_other_outsect(TABLE_NAME, table));
    if (table->replace_user_outsect())
        for (LOAD_DATA_TABLE_DB* tables : {static_cast<LOAD_DATA_TABLE_DB*>(global_copy_table_db),
                                           static_cast<LOAD_DATA_TABLE_DB*>(global_crc_table_db)})
            tables->replace_outsect(user, table);
    table->add_table_terminator(new_default_piece(TABLE_NAME, nullptr));
    table->define_exidx_symbols();
    if (table->parent() == nullptr) root_collection->add_member(table);
    root_collection->add_outsect(table);
}

/// What no table has taken describes nothing that is in the link.
void EXIDX_TABLE_BUILDER::drop_unused_pieces() {
    for (EXIDX_SECTION* piece : all_pieces_)
        if (piece->parent() == nullptr) root_collection->remove_section(piece);
}

void EXIDX_TABLE_BUILDER::build() {
    if (!Target->abi()->requires_tdeh()) return;
    build_section_exidx_map();
    if (!pieces_.empty()) {
        if (is_partial_link())
            build_tables_of_partial_link();
        else
            build_table_of_final_link();
    }
    drop_unused_pieces();
}

} // namespace

void add_exception_tables() {
    EXIDX_TABLE_BUILDER().build();
}

void settle_tables() {
    for (LINKER_OBJECT* outsect : root_collection->outsects())
        if (outsect->is_exidx() && outsect->is_collection())
            static_cast<EXIDX_TABLE*>(outsect)->settle_order();
}

void update_sh_links() {
    if (!is_elf_partial_link() || !Target->abi()->requires_tdeh()) return;
    for (LINKER_OBJECT* outsect : root_collection->outsects()) {
        COLLECTION* table = outsect->is_exidx() ? as_collection(outsect) : nullptr;
        if (table == nullptr) continue;
        auto* first =
            static_cast<EXIDX_SECTION*>(table->find_first_member(&LINKER_OBJECT::is_section));
        if (first == nullptr || first->code() == nullptr) continue;
        OF_SECTION* output = outsect->output_OF_SECTION();
        const OF_SECTION* code = first->code()->output_OF_SECTION();
        if (output == nullptr || code == nullptr) continue;
        elf_api(output)->set_sh_flags(elf_api(output)->sh_flags() | SHF_LINK_ORDER);
        elf_api(output)->set_sh_link(code->id());
    }
}

} // namespace EXIDX
