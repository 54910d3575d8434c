// The table of macros: open addressing, and a macro that is undefined keeps its slot.
#include "CPP/pp_macros.h"

#include <cstring>

#include "UTIL/hash.h"

bool MACDEF::same_body(const MACDEF& other) const {
    if (params != other.params || body.size() != other.body.size()) return false;
    for (size_t i = 0; i < body.size(); ++i) {
        const bool blank = i > 0 && body[i].gap != 0;
        const bool other_blank = i > 0 && other.body[i].gap != 0;
        if (body[i].kind != other.body[i].kind || body[i].str() != other.body[i].str() ||
            blank != other_blank)
            return false;
    }
    return true;
}

size_t PP_MACROS::slot(std::string_view name) const {
    const size_t mask = slots_.size() - 1;
    size_t at = hash64(name) & mask;
    while (slots_[at] != nullptr && slots_[at]->name != name) at = (at + 1) & mask;
    return at;
}

MACDEF* PP_MACROS::lookup(std::string_view name) const {
    MACDEF* macro = slots_[slot(name)];
    return macro != nullptr && macro->defined ? macro : nullptr;
}

MACDEF* PP_MACROS::define(const MACDEF& macro) {
    MACDEF*& entry = slots_[slot(macro.name)];
    MACDEF* stored = entry;
    if (stored == nullptr) {
        stored = entry = zone_.make<MACDEF>();
        stored->name = zone_.copy(macro.name);
        lengths_[static_cast<unsigned char>(macro.name[0])] |= length_bit(macro.name.size());
        if (++used_ * 2 > slots_.size()) grow();
    }
    stored->body = copy(macro.body);
    stored->params = macro.params;
    stored->builtin = macro.builtin;
    stored->standard = macro.standard;
    stored->defined = true;
    return stored;
}

void PP_MACROS::grow() {
    std::vector<MACDEF*> old(slots_.size() * 2);
    old.swap(slots_);
    for (MACDEF* macro : old)
        if (macro != nullptr) slots_[slot(macro->name)] = macro;
}

PP_TOKENS PP_MACROS::copy(PP_TOKENS tokens) {
    size_t length = 0;
    for (const PP_TOKEN& t : tokens) length += t.length;
    char* text = static_cast<char*>(zone_.alloc(length + 1));
    auto* copies = static_cast<PP_TOKEN*>(zone_.alloc(tokens.size() * sizeof(PP_TOKEN)));
    for (size_t i = 0; i < tokens.size(); ++i) {
        PP_TOKEN* t = new (copies + i) PP_TOKEN(tokens[i]);
        if (t->length != 0) std::memcpy(text, t->text, t->length);
        t->text = text;
        text += t->length;
        if (i == 0) t->gap = 0;
    }
    return {copies, tokens.size()};
}
