// See the header. The walk keeps a stack of its own: call chains may be as long as the program.
#include "ELFLNK/placement/order/callgraph_order.h"

#include <unordered_map>

#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/trampoline/call_info.h"
#include "ELFLNK/trampoline/call_site.h"
#include "ELFLNK/trampoline/callee.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"

namespace {

constexpr uint32_t IN_PROGRESS = ~0U;

CALL_INFO* called_by(const TRAMP_CALL_SITE* site) {
    SECTION* section = site->callee() != nullptr ? site->callee()->section() : nullptr;
    return section != nullptr ? section->call_info() : nullptr;
}

bool is_unvisited_caller(const SECTION* section) {
    CALL_INFO* info = const_cast<SECTION*>(section)->call_info();
    return info != nullptr && info->postorder() == 0 && !info->calls().empty();
}

} // namespace

void DFS_VISITOR::dfs_walk(CALL_INFO* info) {
    if (info->postorder() != 0) return;
    auto enter = [this](CALL_INFO* node) {
        node->set_postorder(IN_PROGRESS);
        stack_.push_back({node, 0});
    };
    enter(info);
    while (!stack_.empty()) {
        VISIT& top = stack_.back();
        if (top.next_call == top.info->calls().size()) {
            top.info->set_postorder(next_number_++);
            stack_.pop_back();
            continue;
        }
        CALL_INFO* callee = called_by(top.info->calls()[top.next_call++]);
        if (callee != nullptr && callee->postorder() == 0) enter(callee);
    }
}

void DFS_VISITOR::callgraph_traversal() {
    for (OFE::OF_SYMBOL* entry : global_symbols.entry_symbols()) {
        const OFE::OF_SYMBOL* symbol = SYMBOL_TABLE::resolution(entry);
        if (symbol == nullptr || symbol->kind() != OFE::OF_SYM_KIND_DEFINED) continue;
        SECTION* section = root_collection->lookup_OF_SECTION(symbol->section());
        if (section != nullptr && section->call_info() != nullptr) dfs_walk(section->call_info());
    }
    std::vector<SECTION*> sections;
    root_collection->list_sections(sections);
    std::unordered_map<const CALL_INFO*, unsigned> callers;
    for (SECTION* section : sections)
        if (is_unvisited_caller(section))
            for (const TRAMP_CALL_SITE* site : section->call_info()->calls())
                ++callers[called_by(site)];
    for (SECTION* section : sections)
        if (CALL_INFO* info = section->call_info();
            info != nullptr && info->postorder() == 0 && !callers.contains(info))
            dfs_walk(info);
}
