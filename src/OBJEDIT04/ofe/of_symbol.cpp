// What symbols of every format share: the name and the chain of symbols that stand for one another.
#include "OBJEDIT04/ofe/of_symbol.h"

#include <cassert>
#include <cstring>

#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/savestr.h"

namespace OFE {

OBJECT_FILE* OF_SYMBOL::ofile() const {
    return table_->ofile();
}

int OF_SYMBOL::set_name(const char* name) {
    if (table_->max_state(OF_STATE_OPEN) != 0) return -1;
    table_->mark_changed();
    name_ = name ? savestr(name) : "";
    return 0;
}

int OF_SYMBOL::set_name_view(const char* name) {
    if (table_->max_state(OF_STATE_OPEN) != 0) return -1;
    name_ = name ? name : "";
    return 0;
}

int OF_SYMBOL::set_near_common() {
    ofile()->set_error(OF_ERROR_INTERNAL, "symbol does not support setting near-common");
    return -1;
}

// Follows the chain with a second pointer at half the speed, which meets the first one when the
// chain loops.
OF_SYMBOL* OF_SYMBOL::resolved_by_final() {
    OF_SYMBOL* at = this;
    OF_SYMBOL* slow = this;
    for (bool odd = false; at->resolved_by(); odd = !odd) {
        at = at->resolved_by();
        if (odd) slow = slow->resolved_by();
        if (at == this || at == slow) return this;
    }
    return at;
}

void OF_SYMBOL::set_resolved_by(OF_SYMBOL* s) {
    assert(s != this);
    resolved_by_ = s;
}

bool OF_SYMBOL::less_than_symname(const OF_SYMBOL* a, const OF_SYMBOL* b) {
    return std::strcmp(a->name(), b->name()) < 0;
}

} // namespace OFE
