// A zone of memory that is filled from the front and given back as a whole.
//
// Memory comes zeroed. Objects with destructors are registered by make() and deleted on reset();
// plain bytes cost nothing. A request larger than the chunk size gets a chunk of its own size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

class MZONE {
  public:
    explicit MZONE(size_t min_size = 4096, const char* name = "", unsigned line = 0);
    ~MZONE();
    MZONE(const MZONE&) = delete;
    MZONE& operator=(const MZONE&) = delete;

    /// `size` zeroed bytes, aligned to 8.
    void* alloc(size_t size) {
        if (size > left_) add_chunk(size);
        std::byte* at = front_;
        const size_t step = size + (-size & 7);
        front_ += step < left_ ? step : left_;
        left_ = left_ < step + 8 ? 0 : left_ - step;
        count(size);
        return at;
    }

    /// A NUL-terminated copy of `text` in the zone.
    const char* copy(std::string_view text);

    /// A new T in the zone; its destructor, if it has one, runs on reset().
    template <class T, class... A>
    T* make(A&&... args) {
        static_assert(alignof(T) <= 8);
        T* object = new (alloc(sizeof(T))) T(std::forward<A>(args)...);
        if constexpr (!std::is_trivially_destructible_v<T>)
            deletes_.push_back({object, [](void* p) { static_cast<T*>(p)->~T(); }});
        return object;
    }

    /// Deletes the registered objects and starts again with one chunk.
    void reset();
    void set_min_alloc(size_t size) { min_size_ = size; }
    unsigned id() const { return id_; }
    size_t allocated() const { return allocated_; }
    size_t high_water() const { return high_water_; }
    /// Prints the zone's name, sizes and, with `chunks`, each chunk to standard output.
    void dump(bool chunks) const;

    static size_t cur_alloced() { return cur_alloced_m; }
    static size_t max_alloced() { return max_alloced_m; }

  private:
    struct CHUNK {
        std::byte* data;
        size_t size;
    };
    struct DELETE {
        void* object;
        void (*destroy)(void*);
    };
    void add_chunk(size_t size);
    void count(size_t size) {
        allocated_ += size;
        if (allocated_ > high_water_) high_water_ = allocated_;
    }
    void delete_objects();

    static unsigned next_id_m;
    static size_t cur_alloced_m;
    static size_t max_alloced_m;

    size_t min_size_;
    size_t left_ = 0;
    std::byte* front_ = nullptr;
    std::vector<CHUNK> chunks_;
    size_t allocated_ = 0;
    size_t high_water_ = 0;
    unsigned id_;
    const char* name_;
    unsigned line_;
    std::vector<DELETE> deletes_;
};
