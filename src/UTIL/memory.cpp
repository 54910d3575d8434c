// Allocation that does not fail: out of memory is a message and the end of the process.
#include "UTIL/mzone.h"
#include "UTIL/oalloc.h"

#include <cstdlib>
#include <cstring>
#include <cxxabi.h>

void* ralloc(size_t size) {
    void* memory = std::calloc(1, size != 0 ? size : 1);
    if (memory == nullptr) {
        std::fputs("OUT OF MEMORY - APPLICATION ABORTED\n", stderr);
        std::exit(1);
    }
    return memory;
}

namespace {

void* checked(void* memory) {
    if (memory == nullptr) {
        std::fputs("ERROR: out of memory\n", stderr);
        std::exit(1);
    }
    return memory;
}

} // namespace

void* safemalloc(size_t size) {
    return checked(std::malloc(size != 0 ? size : 1));
}

void* safecalloc(size_t count, size_t size) {
    return checked(count != 0 && size != 0 ? std::calloc(count, size) : std::calloc(1, 1));
}

void* saferealloc(void* old, size_t size) {
    return checked(std::realloc(old, size != 0 ? size : 1));
}

std::string demangled_type_name(const char* mangled) {
    int status = 0;
    char* text = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
    std::string name = status == 0 && text != nullptr ? text : mangled;
    std::free(text);
    return name;
}

unsigned MZONE::next_id_m = 0;
size_t MZONE::cur_alloced_m = 0;
size_t MZONE::max_alloced_m = 0;

MZONE::MZONE(size_t min_size, const char* name, unsigned line)
    : min_size_(min_size), id_(next_id_m++), name_(name), line_(line) {}

MZONE::~MZONE() {
    delete_objects();
    for (const CHUNK& chunk : chunks_) {
        cur_alloced_m -= chunk.size;
        std::free(chunk.data);
    }
}

void MZONE::add_chunk(size_t size) {
    const size_t bytes = size > min_size_ ? size : min_size_;
    chunks_.push_back({static_cast<std::byte*>(ralloc(bytes)), bytes});
    front_ = chunks_.back().data;
    left_ = bytes;
    cur_alloced_m += bytes;
    if (cur_alloced_m > max_alloced_m) max_alloced_m = cur_alloced_m;
}

const char* MZONE::copy(std::string_view text) {
    char* to = static_cast<char*>(alloc(text.size() + 1));
    if (!text.empty())
        std::memcpy(to, text.data(), text.size()); // an empty view may have no address
    to[text.size()] = '\0';
    return to;
}

void MZONE::delete_objects() {
    while (!deletes_.empty()) {
        const DELETE last = deletes_.back();
        deletes_.pop_back();
        last.destroy(last.object);
    }
}

void MZONE::reset() {
    delete_objects();
    allocated_ = 0;
    if (chunks_.empty()) return;
    for (size_t i = 1; i < chunks_.size(); i++) {
        cur_alloced_m -= chunks_[i].size;
        std::free(chunks_[i].data);
    }
    chunks_.resize(1);
    front_ = chunks_[0].data;
    left_ = chunks_[0].size;
    std::memset(front_, 0, left_);
}

void MZONE::dump(bool chunks) const {
    std::printf("zone %u (%s:%u): %zu bytes now, %zu at most, %zu chunks\n", id_, name_, line_,
                allocated_, high_water_, chunks_.size());
    if (chunks)
        for (const CHUNK& chunk : chunks_)
            std::printf("    %p: %zu bytes\n", static_cast<void*>(chunk.data), chunk.size);
}
