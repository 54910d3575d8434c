// The ELF reader on any bytes: everything that can be asked of an object file is asked, as raw
// records and through objects; then the file is edited, locked, laid out, written to memory and
// read back.
//
// The last bytes of e_ident, which mean nothing in a file, say what is edited.
#include <cstring>
#include <memory>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_scn_attr_table.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/elf_symalias_table.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/file_handle_manager.h"
#include "fuzz.h"

using namespace OFE;

namespace {

using FILE_PTR = std::unique_ptr<OBJECT_FILE>;

// An output that is larger says nothing new: alignments leave gaps.
constexpr unsigned LARGEST_OUTPUT = 16 << 20;
// Edits of the last bytes of e_ident.
constexpr unsigned EDITS_AT = 9;
constexpr uint8_t EDIT_SWAP_CODE = 1, EDIT_ADD = 2, EDIT_DELETE_RELOCS = 4, EDIT_GROUP = 8;

unsigned faults;        // errors that make a linker give the file up
std::string last_fault; // the text of one

void on_error(OBJECT_FILE* file, OF_ERROR_CODE code, const char* text) {
    if (code != OF_ERROR_WARNING && code != OF_ERROR_TRUNCATED) {
        ++faults;
        last_fault = text;
    }
    file->clear_error();
}

FILE_PTR read(const uint8_t* data, size_t size) {
    return FILE_PTR(new_OBJECT_FILE(data, static_cast<unsigned>(size), nullptr, on_error));
}

void same(const OF_RAW_SYMBOL& a, const OF_RAW_SYMBOL& b) {
    REQUIRE(std::strcmp(a.name, b.name) == 0);
    REQUIRE(a.id == b.id && a.value == b.value && a.size == b.size);
    REQUIRE(a.section_id == b.section_id && a.kind == b.kind);
    REQUIRE(a.binding == b.binding && a.type == b.type && a.visibility == b.visibility);
}

void walk_symbols(OF_SYMBOL_TABLE* table) {
    if (!table) return;
    use(table->first_global());
    for (unsigned i = 0; i < table->symnum(); i = table->next_symbol_id(i)) {
        OF_RAW_SYMBOL raw, again;
        REQUIRE(table->raw_symbol(i, raw));
        OF_SYMBOL* s = table->symbol(i);
        REQUIRE(s && s->id() == i && table->raw_symbol(i, again));
        same(raw, again);
        if (OF_SECTION* section = s->section()) use(std::strlen(section->name()));
        use(s->resolved_by_final() == s);
    }
    if (table->symnum()) use(table->symbol_name("main", 0) != nullptr);
    REQUIRE(!table->symbol(table->symnum()));
}

void walk_relocs(OF_SECTION_TABLE* sections, unsigned id) {
    for (unsigned k = 0; k < sections->raw_reloc_table_num(id); ++k) {
        const OF_RAW_RELOCS raw = sections->raw_relocs(id, k);
        OF_RELOC_TABLE* table = sections->section(id)->reloc_table(k);
        REQUIRE(table && table->relnum() == raw.size());
        REQUIRE(raw.size() == 0 || table->is_rela() == raw.rela());
        for (unsigned r = 0; r < raw.size(); ++r) {
            OF_RAW_SYMBOL symbol;
            if (raw.symbols() && raw.symbols()->raw_symbol(raw[r].sym_id, symbol))
                use(symbol.value);
            OF_RELOC* reloc = table->reloc(r);
            REQUIRE(reloc && reloc->offset() == raw[r].offset && reloc->sym_id() == raw[r].sym_id);
            REQUIRE(!raw.rela() || reloc->addend() == raw[r].addend);
            use(reloc->scnrel_offset());
            if (OF_SYMBOL* s = reloc->symbol()) use(s->value());
        }
    }
}

void walk_section(OF_SECTION_TABLE* table, unsigned id) {
    OF_RAW_SECTION raw, again;
    REQUIRE(table->raw_section(id, raw));
    if (OF_GROUP_TABLE* group = table->raw_group(id)) {
        use(std::strlen(group->signature_name()));
        for (unsigned m = 0; m < group->member_num(); ++m) REQUIRE(group->member(m));
    }
    OF_SECTION* s = table->section(id);
    REQUIRE(s && table->raw_section(id, again));
    REQUIRE(std::strcmp(raw.name, again.name) == 0 && std::strcmp(raw.name, s->name()) == 0);
    REQUIRE(raw.type == again.type && raw.link == again.link && raw.info == again.info);
    REQUIRE(raw.size == again.size && raw.align == again.align && raw.addr == again.addr);
    REQUIRE(raw.ext_flags == again.ext_flags && raw.deleted == again.deleted);
    const OF_BYTES bytes = s->bytes();
    REQUIRE(!s->initialized() || bytes.size == s->size_in_bytes());
    for (size_t i = 0; i < bytes.size; ++i) use(bytes.data[i]);
    use(s->load_addr() + s->run_addr() + s->page() + s->align() + s->unit_size());
    use(s->is_noinit() + s->is_blocked() + s->bss() + s->data() + s->exec() + s->tls());
    if (OF_GROUP_TABLE* group = s->group_api()) {
        use(std::strlen(group->signature_name()));
        if (OF_SYMBOL* symbol = group->symbol()) use(symbol->value());
    }
    if (OF_SYMBOL* symbol = s->find_symbol()) use(symbol->id());
    walk_relocs(table, id);
    for (OF_RELOC* r : s->all_relocs()) use(r->offset());
    use(s->any_reloc_at_offset(4));
}

void walk_segments(ELF_FILE* file) {
    ELF_SEGMENT_TABLE* table = file->segment_table();
    REQUIRE(table->load_all_segments_into_mem() == 0);
    for (unsigned short i = 0; i < table->segnum(); ++i) {
        ELF_SEGMENT* s = table->segment(i);
        for (const SEG_OBJECT& o : s->objects()) use(o.id);
        use(table->segment_addr(s->header().p_vaddr, 0) != nullptr);
    }
    use(file->has_dynamic_linkage());
}

void walk_machine(ELF_FILE* file) {
    ARM_MACHINE_DB* arm = ARM_MACHINE_DB::of(file);
    if (!arm) return;
    arm->find_mapping_syms();
    use(arm->find_isa_version() + arm->find_isa_profile() + arm->eabi_version() + arm->be_enc());
    OF_SECTION_TABLE* sections = file->section_table();
    for (unsigned i = 0; i < sections->scnnum(); ++i) {
        OF_SECTION* s = sections->section(i);
        use(static_cast<unsigned>(arm->section_mode_addr(s, s->run_addr())));
        use(static_cast<unsigned>(arm->section_mode_addr(s, s->run_addr() + s->size() / 2)));
    }
}

void walk(ELF_FILE* file) {
    OF_SECTION_TABLE* sections = file->section_table();
    walk_symbols(file->symbol_table());
    walk_symbols(file->dynamic_symbol_table());
    for (unsigned i = 0; i < sections->scnnum(); ++i) walk_section(sections, i);
    REQUIRE(!sections->section(sections->scnnum()));
    walk_segments(file);
    walk_machine(file);
    for (int kind = 0; kind < QV_SH_ATTR_KINDS; ++kind)
        if (ELF_SCN_ATTR_TABLE* table = file->qv_sh_attr_api(kind, false)) use(table->value(1));
    if (ELF_SYMALIAS_TABLE* aliases = file->symalias_table(false))
        for (const auto& pair : aliases->alias_map()) use(pair.first + pair.second);
    unsigned code, data, uninit;
    file->get_summary_section_sizes(code, data, uninit);
    use(file->contains_default_rts_exit());
    REQUIRE(sections->load_all_sections_into_mem() == 0);
    if (OF_SYMBOL_TABLE* symbols = file->symbol_table())
        REQUIRE(symbols->load_all_symbols_into_mem() == 0);
}

void edit(ELF_FILE* file, const uint8_t* edits) {
    OF_SECTION_TABLE* sections = file->section_table();
    OF_SYMBOL_TABLE* symbols = file->symbol_table();
    const unsigned scnnum = sections->scnnum();
    if (scnnum < 2) return;
    OF_SECTION* picked = sections->section(1 + edits[1] % (scnnum - 1));
    if (edits[0] & EDIT_SWAP_CODE)
        if (ARM_MACHINE_DB* arm = ARM_MACHINE_DB::of(file)) arm->swap_be8_code(picked);
    if (edits[0] & EDIT_DELETE_RELOCS)
        for (unsigned k = 0; k < picked->reloc_table_num(); ++k) {
            OF_RELOC_TABLE* table = picked->reloc_table(k);
            for (unsigned r = edits[4] % 4; r < table->relnum(); r += 3) table->delete_reloc(r);
            table->purge_deleted_relocs();
        }
    if (edits[0] & EDIT_ADD && symbols) {
        OF_SYMBOL* s = symbols->new_symbol_at(1 + edits[2]);
        if (s) s->set_section(picked);
        if (OF_RELOC* r = picked->new_reloc(edits[4] & 1)) {
            r->set_type(file->machine_reloc_type(2));
            r->set_symbol(picked->symbol());
        }
        for (unsigned k = 0; k < picked->reloc_table_num(); ++k)
            if (OF_RELOC_TABLE* table = picked->reloc_table(k); table && table->relnum() != 0)
                REQUIRE(sections->raw_relocs(picked->id(), k).size() == table->relnum());
    }
    if (edits[0] & EDIT_GROUP)
        if (OF_GROUP_TABLE* group = sections->new_group("g")) {
            if (symbols && symbols->symnum() > 1) group->set_symbol(symbols->symbol(1));
            if (!picked->is_group() && !picked->group()) group->add_member(picked);
        }
    if (edits[2] && symbols && symbols->symnum() > 1) {
        symbols->delete_symbol(1 + edits[2] % (symbols->symnum() - 1));
        symbols->purge_deleted_symbols();
    }
    if (edits[3]) {
        sections->delete_section(1 + edits[3] % (scnnum - 1));
        sections->purge_deleted_sections();
    }
}

// Saves to a file in memory; empty when the file cannot be saved.
std::vector<uint8_t> write(OBJECT_FILE* file) {
    static const int fd = memfd_create("written", 0);
    static const std::string name = "/proc/self/fd/" + std::to_string(fd);
    if (file->set_state(OF_STATE_FORMATTED) != 0 || file->handle().size > LARGEST_OUTPUT) return {};
    FHM_FILE* out = fhm_open(name.c_str(), "wb+");
    REQUIRE(out);
    const int result = file->save_obj(out);
    fhm_close(out);
    const off_t size = lseek(fd, 0, SEEK_END);
    if (result != 0 || size <= 0 || size > LARGEST_OUTPUT) return {};
    std::vector<uint8_t> bytes(static_cast<size_t>(size));
    REQUIRE(pread(fd, bytes.data(), bytes.size(), 0) == size);
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    faults = 0;
    FILE_PTR file = read(data, size);
    if (!file) return 0;
    ELF_FILE* elf = elf_api(file.get());
    walk(elf);
    uint8_t edits[5] = {};
    if (size >= EDITS_AT + sizeof edits) std::memcpy(edits, data + EDITS_AT, sizeof edits);
    edit(elf, edits);
    const std::vector<uint8_t> written = write(elf);
    if (written.empty()) return 0;
    // Addresses place what lies in a segment: with bad ones, contents overlap.
    const bool sound = faults == 0 && elf->segment_table()->segnum() == 0;
    FILE_PTR again = read(written.data(), written.size());
    if (again) walk(elf_api(again.get()));
    if (sound && faults != 0) std::fprintf(stderr, "%s\n", last_fault.c_str());
    REQUIRE(!sound || (again && faults == 0));
    REQUIRE(!sound || again->section_table()->scnnum() == file->section_table()->scnnum());
    return 0;
}
