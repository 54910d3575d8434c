// From a placed trampoline to what stands in the output: its code, its symbols, and the calls that
// are led to it.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "DIAG/diagnostic.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/trampoline/call_info.h"
#include "ELFLNK/trampoline/call_site.h"
#include "ELFLNK/trampoline/callee.h"
#include "ELFLNK/trampoline/jump_ent.h"
#include "ELFLNK/trampoline/trampoline.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/narrow.h"
#include "UTIL/trace.h"

using namespace OFE;

void generate_trampolines() {
    if (!JUMP_ENT::any() || is_partial_link() || !Target->linker_generates_trampolines()) return;
    const std::vector<JUMP_ENT*> entries = JUMP_ENT::all_placed();
    for (JUMP_ENT* entry : entries) entry->generate();
    for (JUMP_ENT* entry : entries) {
        auto* trampoline = entry->is_trampoline() ? static_cast<TRAMPOLINE*>(entry) : nullptr;
        if (trampoline == nullptr || trampoline->is_patched()) continue;
        trampoline->set_patched();
        if (trampoline->first_caller() == nullptr)
            trace_tramps.printf("No calls: null trampoline\n");
        for (TRAMP_CALL_SITE* site = trampoline->first_caller(); site != nullptr;
             site = site->next_caller())
            if (site->need_trampoline()) site->set_patched();
    }
}

std::vector<RELOC_REDIRECT> call_redirects(SECTION* section) {
    std::vector<RELOC_REDIRECT> redirects;
    const CALL_INFO* info = section->call_info();
    if (info == nullptr) return redirects;
    for (const TRAMP_CALL_SITE* site : info->calls())
        if (site->is_patched())
            redirects.push_back({site->offset(), site->trampoline()->entry_symbol(),
                                 -Target->call_bias(*site->reloc_type()->rel_template)});
    std::sort(redirects.begin(), redirects.end(),
              [](const auto& a, const auto& b) { return a.offset < b.offset; });
    return redirects;
}

// ---- symbols -------------------------------------------------------------------------------

namespace {

OF_SYMBOL* new_local_symbol(const char* name, OF_SYM_TYPE type) {
    OF_SYMBOL* symbol = output_OF_FILE()->symbol_table()->new_symbol();
    symbol->set_name(name);
    symbol->set_type(type);
    symbol->set_binding(OF_SYM_BINDING_LOCAL);
    symbol->set_final(true);
    return symbol;
}

} // namespace

void create_jump_entry_symbols(bool final) {
    if (!JUMP_ENT::any()) return;
    std::vector<LINKER_OBJECT*> entries;
    root_collection->flatten(entries, &LINKER_OBJECT::is_jump_ent);
    for (LINKER_OBJECT* entry : entries)
        if (entry->is_placed()) static_cast<JUMP_ENT*>(entry)->mk_entry_symbol(final);
}

void JUMP_ENT::mk_entry_symbol(bool final) {
    OF_SECTION* output = output_OF_SECTION();
    if (output == nullptr || !generated_) return;
    const std::vector<MARK> all_marks = marks();
    if (entry_symbol_ == nullptr) {
        for (const MARK& mark : all_marks)
            mark_symbols_.push_back(new_local_symbol(mark.name, OF_SYM_TYPE_NONE));
        entry_symbol_ = new_local_symbol(entry_symbol_name(), OF_SYM_TYPE_FUNCTION);
        entry_symbol_->set_size(narrow<uint32_t>(size()));
    }
    const uint64_t address = run_address();
    for (size_t i = 0; i < all_marks.size(); ++i)
        store_symbol_value(mark_symbols_[i], output, address + all_marks[i].offset, final);
    store_symbol_value(entry_symbol_, output, address + (entry_is_odd() ? 1 : 0), final);
}

// ---- contents ------------------------------------------------------------------------------

void JUMP_ENT::finalize_internal(OF_SECTION* output, uint32_t offset) {
    if (output == nullptr || !generate_static_relocs()) return;
    OF_SYMBOL* symbol = callee()->symbol();
    OF_SYMBOL* target = symbol != nullptr ? output_symbol_of(symbol) : nullptr;
    if (target == nullptr) return;
    for (const FIXUP& fixup : fixups()) {
        OF_RELOC* reloc = output->new_reloc(false);
        reloc->set_type(output_OF_FILE()->reloc_type(fixup.template_id));
        reloc->set_symbol(target);
        reloc->set_scnrel_offset(offset + fixup.offset);
    }
}

void JUMP_ENT::write_data_internal(OF_SECTION* output, uint32_t offset) {
    if (!output->initialized() || !generated_) return;
    std::vector<uint8_t> code(size());
    generate_code(code.data(), run_address(), output->ofile()->machine_endian() == OF_ENDIAN_BIG);
    output->write_to_raw_data(code.data(), narrow<uint32_t>(code.size()), offset);
}

// ---- the check -----------------------------------------------------------------------------

void check_calls_reach() {
    if (DIAGNOSTIC::error_count_m != 0) return; // what found no room may be anywhere
    if (is_partial_link() || !Target->linker_generates_trampolines()) return;
    std::vector<SECTION*> sections;
    root_collection->list_sections(sections);
    for (SECTION* section : sections) {
        const CALL_INFO* info = section->call_info();
        if (info == nullptr || !section->is_placed()) continue;
        for (TRAMP_CALL_SITE* site : info->calls()) {
            if (!site->need_trampoline()) continue;
            if (site->address() > UINT32_MAX) continue; // no output can be made of that
            uint64_t lo = 0;
            uint64_t hi = 0;
            site->get_reachable_range(lo, hi);
            const TRAMPOLINE* stub = site->trampoline();
            const bool reaches = stub != nullptr && stub->is_placed() && site->is_patched() &&
                                 stub->run_address() >= lo && stub->run_address() <= hi;
            if (reaches) continue;
            fprintf(stderr, "call at %#lx in \"%s\" reaches neither \"%s\" nor a trampoline\n",
                    static_cast<unsigned long>(site->address()), section->name(),
                    site->callee()->name());
            std::abort();
        }
    }
}
