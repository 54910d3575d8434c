// The string pool: offsets in an open-addressing table, texts compared in the pool itself.
#include "OBJEDIT04/ofe/of_string_table.h"

#include <cstring>

#include "UTIL/hash.h"

namespace OFE {

namespace {

uint32_t hash_of(std::string_view text) {
    return static_cast<uint32_t>(hash64(text));
}

} // namespace

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

bool OF_STRING_TABLE_MANAGER::is_at(unsigned offset, std::string_view text) const {
    return size() - offset > text.size() && data()[offset + text.size()] == 0 &&
           std::memcmp(data() + offset, text.data(), text.size()) == 0;
}

OF_STRING_TABLE_MANAGER::SLOT& OF_STRING_TABLE_MANAGER::slot(std::string_view text, uint32_t hash) {
    for (size_t i = hash & (slots_.size() - 1);; i = (i + 1) & (slots_.size() - 1)) {
        SLOT& s = slots_[i];
        if (s.offset == 0 || (s.hash == hash && is_at(s.offset - 1, text))) return s;
    }
}

// Keeps a third of the slots free.
void OF_STRING_TABLE_MANAGER::grow() {
    if (slots_.size() > size_t{entries_} * 3 / 2) return;
    std::vector<SLOT> old = std::move(slots_);
    slots_.assign(old.empty() ? 64 : old.size() * 2, SLOT());
    for (const SLOT& s : old) {
        if (s.offset == 0) continue;
        size_t i = s.hash & (slots_.size() - 1);
        while (slots_[i].offset != 0) i = (i + 1) & (slots_.size() - 1);
        slots_[i] = s;
    }
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
        const uint32_t hash = hash_of(text);
        SLOT& s = slot(text, hash);
        if (s.offset == 0) {
            s = {offset + 1, hash};
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
    const uint32_t hash = hash_of(t);
    SLOT& s = slot(t, hash);
    if (s.offset != 0) return s.offset - 1;
    if (own_.size() < first_offset()) own_.resize(first_offset());
    unsigned offset = static_cast<unsigned>(own_.size());
    own_.insert(own_.end(), t.begin(), t.end());
    own_.push_back(0);
    s = {offset + 1, hash};
    ++entries_;
    return offset;
}

bool OF_STRING_TABLE_MANAGER::find_string(const char* text, unsigned& offset) {
    if (!indexed_ || slots_.empty()) return false;
    std::string_view t = text;
    const SLOT& s = slot(t, hash_of(t));
    if (s.offset == 0) return false;
    offset = s.offset - 1;
    return true;
}

} // namespace OFE
