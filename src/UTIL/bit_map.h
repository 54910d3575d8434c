// A growable set of small indices, one bit each. A bit beyond the end reads as clear.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

class BIT_MAP {
  public:
    static constexpr size_t NONE = static_cast<size_t>(-1);

    BIT_MAP() = default;
    explicit BIT_MAP(size_t bits) : words_((bits + 63) / 64) {}

    bool test(size_t bit) const {
        return bit / 64 < words_.size() && (words_[bit / 64] >> (bit % 64) & 1) != 0;
    }

    /// Sets `bit`; returns true if it was clear before.
    bool set(size_t bit) {
        if (bit / 64 >= words_.size()) words_.resize(bit / 64 + 1);
        uint64_t& word = words_[bit / 64];
        const uint64_t mask = uint64_t{1} << (bit % 64);
        const bool changed = (word & mask) == 0;
        word |= mask;
        return changed;
    }

    void clear(size_t bit) {
        if (bit / 64 < words_.size()) words_[bit / 64] &= ~(uint64_t{1} << (bit % 64));
    }

    /// Clears all bits and gives the memory back.
    void reset() { words_ = {}; }

    /// Makes room for `bits` bits; those that exist keep their value.
    void reserve(size_t bits) {
        if ((bits + 63) / 64 > words_.size()) words_.resize((bits + 63) / 64);
    }

    /// The lowest set bit at or behind `from`, or NONE.
    size_t find_next(size_t from) const {
        size_t index = from / 64;
        if (index >= words_.size()) return NONE;
        uint64_t word = words_[index] & (~uint64_t{0} << (from % 64));
        while (word == 0) {
            if (++index == words_.size()) return NONE;
            word = words_[index];
        }
        return index * 64 + static_cast<size_t>(std::countr_zero(word));
    }

    bool any() const { return find_next(0) != NONE; }

    size_t count() const {
        size_t n = 0;
        for (uint64_t word : words_) n += static_cast<size_t>(std::popcount(word));
        return n;
    }

    /// This set becomes the union with `other`; returns true if a bit was added.
    bool unite(const BIT_MAP& other) {
        if (other.words_.size() > words_.size()) words_.resize(other.words_.size());
        uint64_t added = 0;
        for (size_t i = 0; i < other.words_.size(); i++) {
            added |= other.words_[i] & ~words_[i];
            words_[i] |= other.words_[i];
        }
        return added != 0;
    }

    /// True if the two sets share a bit.
    bool intersects(const BIT_MAP& other) const {
        const size_t n = words_.size() < other.words_.size() ? words_.size() : other.words_.size();
        for (size_t i = 0; i < n; i++)
            if ((words_[i] & other.words_[i]) != 0) return true;
        return false;
    }

  private:
    std::vector<uint64_t> words_;
};
