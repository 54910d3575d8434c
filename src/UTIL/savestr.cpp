// The pool of lasting strings: text in big blocks, found again by an open-addressing table of
// hashes and pointers. The table doubles at three quarters. Nothing is given back: the pool lives
// as long as the process.
#include "UTIL/savestr.h"

#include "UTIL/hash.h"
#include "UTIL/mzone.h"
#include "UTIL/strformat.h"

#include <cstdarg>
#include <cstring>
#include <string>
#include <vector>

namespace {

class STRING_POOL {
  public:
    STRING_POOL() : zone_(64 * 1024, "savestr"), slots_(1024) {}

    const char* intern(std::string_view text) {
        const uint64_t hash = hash64(text);
        size_t at = find(hash, text);
        if (slots_[at].text != nullptr) return slots_[at].text;
        if ((count_ + 1) * 4 > slots_.size() * 3) {
            grow();
            at = find(hash, text);
        }
        count_++;
        slots_[at] = {zone_.copy(text), hash, text.size()};
        return slots_[at].text;
    }

  private:
    struct SLOT {
        const char* text = nullptr;
        uint64_t hash = 0;
        size_t length = 0;
    };

    /// The slot that holds the text, or the free one where it belongs.
    size_t find(uint64_t hash, std::string_view text) const {
        size_t at = hash & (slots_.size() - 1);
        for (;; at = (at + 1) & (slots_.size() - 1)) {
            const SLOT& slot = slots_[at];
            if (slot.text == nullptr) return at;
            if (slot.hash == hash && std::string_view(slot.text, slot.length) == text) return at;
        }
    }

    void grow() {
        std::vector<SLOT> old(slots_.size() * 2);
        old.swap(slots_);
        for (const SLOT& slot : old)
            if (slot.text != nullptr) slots_[find(slot.hash, {slot.text, slot.length})] = slot;
    }

    MZONE zone_;
    std::vector<SLOT> slots_;
    size_t count_ = 0;
};

// Made on first use, since other units' statics save strings too, and never destroyed.
STRING_POOL& pool() {
    static auto* const the_pool = new STRING_POOL;
    return *the_pool;
}

} // namespace

const char* savestr(std::string_view text) {
    return pool().intern(text);
}

const char* savestr(const char* text) {
    return text != nullptr ? pool().intern(std::string_view(text)) : nullptr;
}

const char* savestrf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const std::string text = vstrformat(format, args);
    va_end(args);
    return pool().intern(text);
}
