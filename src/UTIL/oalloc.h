// A pool per class for objects that come by the hundred thousand.
//
// A class derives from OALLOC<itself> and so gets operator new and delete over a free list of its
// own: no heap overhead per object. The pool grows by about doubling, from 32 objects up to chunks
// of 16 MiB; a chunk is touched as far as it is given out, and never given back.
#pragma once

#include <cstddef>
#include <cstdio>
#include <new>
#include <string>
#include <typeinfo>
#include <utility>

/// Zeroed memory for a pool; ends the process with a message if there is none.
void* ralloc(size_t size);
/// malloc, calloc and realloc that end the process with a message if there is no memory.
void* safemalloc(size_t size);
void* safecalloc(size_t count, size_t size);
void* saferealloc(void* old, size_t size);
/// The readable form of a type's name.
std::string demangled_type_name(const char* mangled);

template <class T>
class OALLOC {
  public:
    // Not inline: a compiler that sees into one of them takes the heap behind a size of another
    // class for a mismatch with the other.
    [[gnu::noinline]] static void* operator new(size_t size);
    [[gnu::noinline]] static void operator delete(void* object, size_t size);

    static const char* pool_name();
    static long live_count() { return curr_alloc_cnt_m; }
    static size_t pool_size() { return mempool_sz_m; }

  protected:
    OALLOC() = default;
    ~OALLOC() = default;
    OALLOC(const OALLOC&) = default;
    OALLOC& operator=(const OALLOC&) = default;

  private:
    struct FREE {
        FREE* next;
    };
    static constexpr size_t MIN_OBJECTS = 32;
    static constexpr size_t BIG_CHUNK = 0x1000000;

    static void add_chunk();

    static inline bool oa_disabled_m = false;
    static inline bool oa_stats_m = false;
    static inline FREE* oa_free_list_m = nullptr;  // deleted objects
    static inline std::byte* oa_fresh_m = nullptr; // the rest of the last chunk
    static inline std::byte* oa_fresh_end_m = nullptr;
    static inline long total_alloc_cnt_m = 0;
    static inline long curr_alloc_cnt_m = 0;
    static inline size_t mempool_sz_m = 0;
    static inline std::string oa_name_m;
};

template <class T>
const char* OALLOC<T>::pool_name() {
    if (oa_name_m.empty()) oa_name_m = demangled_type_name(typeid(T).name());
    return oa_name_m.c_str();
}

template <class T>
void OALLOC<T>::add_chunk() {
    static_assert(sizeof(T) >= sizeof(FREE) && alignof(T) <= alignof(std::max_align_t));
    size_t count = static_cast<size_t>(curr_alloc_cnt_m);
    if (mempool_sz_m >= BIG_CHUNK) count = BIG_CHUNK / sizeof(T);
    if (count < MIN_OBJECTS) count = MIN_OBJECTS;
    oa_fresh_m = static_cast<std::byte*>(ralloc(count * sizeof(T)));
    oa_fresh_end_m = oa_fresh_m + count * sizeof(T);
    mempool_sz_m += count * sizeof(T);
}

template <class T>
void* OALLOC<T>::operator new(size_t size) {
    if (size != sizeof(T) || oa_disabled_m) return ::operator new(size);
    total_alloc_cnt_m++;
    curr_alloc_cnt_m++;
    if (oa_stats_m)
        std::fprintf(stderr, "%s:%10ld:%10ld:%10ld\n", pool_name(), curr_alloc_cnt_m,
                     total_alloc_cnt_m, static_cast<long>(mempool_sz_m));
    if (FREE* object = oa_free_list_m) {
        oa_free_list_m = object->next;
        return object;
    }
    if (oa_fresh_m == oa_fresh_end_m) add_chunk();
    return std::exchange(oa_fresh_m, oa_fresh_m + sizeof(T));
}

template <class T>
void OALLOC<T>::operator delete(void* object, size_t size) {
    if (object == nullptr) return;
    if (size != sizeof(T) || oa_disabled_m) {
        ::operator delete(object);
        return;
    }
    curr_alloc_cnt_m--;
    oa_free_list_m = new (object) FREE{oa_free_list_m};
}
