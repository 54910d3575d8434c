// A 64-bit hash of strings and integers, for the open-addressing tables of names.
//
// Names are hashed once, eight bytes at a step, and the hash is kept beside the name, so quality
// and speed on short strings count. The value is stable within a build of the program only; nothing
// that a user sees depends on it.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

/// Mixes two 64-bit words into one: the two halves of their 128-bit product, combined.
inline uint64_t hash_mix(uint64_t a, uint64_t b) {
    __extension__ using wide = unsigned __int128;
    const wide product = static_cast<wide>(a) * b;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

/// Hash of an integer.
inline uint64_t hash64(uint64_t value) {
    return hash_mix(value ^ 0x9E3779B97F4A7C15u, 0xD6E8FEB86659FD93u);
}

/// Hash of `size` bytes at `data`.
inline uint64_t hash64(const void* data, size_t size) {
    const auto* p = static_cast<const unsigned char*>(data);
    uint64_t h = 0x9E3779B97F4A7C15u ^ size;
    uint64_t word;
    for (; size >= 8; p += 8, size -= 8) {
        std::memcpy(&word, p, 8);
        h = hash_mix(h ^ word, 0xD6E8FEB86659FD93u);
    }
    if (size != 0) {
        word = 0;
        std::memcpy(&word, p, size);
        h = hash_mix(h ^ word, 0xA0761D6478BD642Fu);
    }
    return h ^ (h >> 32);
}

/// Hash of a string.
inline uint64_t hash64(std::string_view text) {
    return hash64(text.data(), text.size());
}
