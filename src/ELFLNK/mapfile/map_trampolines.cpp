// The lists of veneers and of far-call trampolines: each with its callee and its callers.
#include <vector>

#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/mapfile/map_origin.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/trampoline/call_site.h"
#include "ELFLNK/trampoline/callee.h"
#include "ELFLNK/trampoline/jump_ent.h"
#include "OBJEDIT04/ofe/of_symbol.h"

namespace {

class LIST {
  public:
    /// `word` is what an entry is called, `column` the same as the heading of a column.
    void print(const std::vector<JUMP_ENT*>& list, const char* word, const char* column) {
        mprintf("callee name               %s name\n", word);
        mprintf("   callee addr  %s  call addr  call info\n", column);
        mputs("--------------  -----------  ---------  ----------------\n");
        size_t calls = 0;
        for (const JUMP_ENT* entry : list) calls += print_entry(entry);
        mprintf("\n[%zd trampolines]\n", list.size());
        mprintf("[%zd trampoline calls]\n", calls);
    }

  private:
    size_t print_entry(const JUMP_ENT* entry) {
        const OFE::OF_SYMBOL* symbol = entry->entry_symbol();
        mprintf("%-24s  %s\n", entry->callee()->name(), symbol != nullptr ? symbol->name() : "");
        mprintf("   %08lx     %08lx     ", entry->callee_address(),
                static_cast<unsigned long>(entry->run_address()));
        size_t calls = 0;
        for (const TRAMP_CALL_SITE* site = entry->first_caller(); site != nullptr;
             site = site->next_caller()) {
            if (calls++ != 0) mprintf("\n   %-26s", "");
            print_call(site);
        }
        mputs("\n");
        return calls;
    }

    void print_call(const TRAMP_CALL_SITE* site) {
        mprintf("%08lx   ", static_cast<unsigned long>(site->address()));
        const SECTION* section = site->section();
        origin_.print(section->orig_infile());
        mprintf("(%s)", section->original_section_name());
    }

    MAP_ORIGIN origin_;
};

} // namespace

void map_veneers() {
    const std::vector<JUMP_ENT*> list = JUMP_ENT::all_of_kind(JUMP_ENT::VENEER);
    if (list.empty()) return;
    mputs("\nVENEERS\n\n");
    LIST().print(list, "veneer", "veneer addr");
}

void map_far_calls() {
    const std::vector<JUMP_ENT*> list = JUMP_ENT::all_of_kind(JUMP_ENT::FARCALL);
    if (list.empty()) return;
    mputs("\n\nFAR CALL TRAMPOLINES\n\n");
    LIST().print(list, "trampoline", "tramp addr ");
}
