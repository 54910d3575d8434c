// The string pool: offsets in an open-addressing table, texts compared in the pool itself.
#include "OBJEDIT04/ofe/of_string_table.h"

#include <cstring>

#include "UTIL/hash.h"

namespace OFE {

void OF_STRING_TABLE_MANAGER::set_pool(OF_BYTES bytes) {
    clear();
    view_ = bytes;
    owned_ = false;
}

unsigned OF_STRING_TABLE_MANAGER::size() const {
    return static_cast<unsigned>(owned_ ? own_.size() : view_.size);
}

const char* OF_STRING_TABLE_MANAGER::data() const {
    return owned_ ? own_.data() : reinterpret_cast<const char*>(view_.data);
}

const char* OF_STRING_TABLE_MANAGER::get_string(unsigned offset) {
    if (offset >= size()) return nullptr;
    const char* text = data() + offset;
    return std::memchr(text, 0, size() - offset) ? text : nullptr;
}

void OF_STRING_TABLE_MANAGER::unload() {
    slots_ = {};
    entries_ = 0;
    indexed_ = false;
}

void OF_STRING_TABLE_MANAGER::clear() {
    unload();
    view_ = {};
    own_.clear();
    owned_ = true;
}

std::string_view OF_STRING_TABLE_MANAGER::at(unsigned offset) const {
    const char* text = data() + offset;
    return {text, strnlen(text, size() - offset)};
}

unsigned* OF_STRING_TABLE_MANAGER::slot(std::string_view text, uint64_t hash) {
    for (size_t i = hash & (slots_.size() - 1);; i = (i + 1) & (slots_.size() - 1))
        if (slots_[i] == 0 || at(slots_[i] - 1) == text) return &slots_[i];
}

void OF_STRING_TABLE_MANAGER::grow() {
    if (slots_.size() > size_t{entries_} * 2) return;
    std::vector<unsigned> old = std::move(slots_);
    slots_.assign(old.empty() ? 64 : old.size() * 2, 0);
    for (unsigned s : old)
        if (s) *slot(at(s - 1), hash64(at(s - 1))) = s;
}

void OF_STRING_TABLE_MANAGER::own_pool() {
    if (owned_) return;
    own_.assign(data(), data() + view_.size);
    owned_ = true;
    if (!own_.empty() && own_.back() != 0) own_.push_back(0);
}

void OF_STRING_TABLE_MANAGER::index_pool() {
    for (unsigned offset = first_offset(); offset < size();) {
        std::string_view text = at(offset);
        grow();
        unsigned* s = slot(text, hash64(text));
        if (*s == 0) {
            *s = offset + 1;
            ++entries_;
        }
        offset += static_cast<unsigned>(text.size()) + 1;
    }
    indexed_ = true;
}

unsigned OF_STRING_TABLE_MANAGER::add_string(const char* text) {
    own_pool();
    if (!indexed_) index_pool();
    std::string_view t = text ? text : "";
    grow();
    unsigned* s = slot(t, hash64(t));
    if (*s) return *s - 1;
    if (own_.size() < first_offset()) own_.resize(first_offset());
    unsigned offset = static_cast<unsigned>(own_.size());
    own_.insert(own_.end(), t.begin(), t.end());
    own_.push_back(0);
    *s = offset + 1;
    ++entries_;
    return offset;
}

bool OF_STRING_TABLE_MANAGER::find_string(const char* text, unsigned& offset) {
    if (!indexed_ || slots_.empty()) return false;
    std::string_view t = text;
    unsigned* s = slot(t, hash64(t));
    if (*s == 0) return false;
    offset = *s - 1;
    return true;
}

} // namespace OFE
