// Integer conversions that lose nothing.
//
// Addresses and sizes are 64 bits wide in the linker proper and 32 bits wide in the object file
// layer. Wherever a value steps down, narrow<T>() names the step and checks it: a value that cannot
// fit there is a fault of the program, since what comes from a file is tested with fits<T>()
// before.
#pragma once

#include <concepts>
#include <cstdint>
#include <utility>

/// Ends the process with an internal error: a checked conversion was given a value out of its
/// range.
[[noreturn]] void narrow_failed(unsigned long long value, unsigned bytes);

/// True if `value` can be stored in a T unchanged.
template <std::integral T, std::integral V>
constexpr bool fits(V value) {
    return std::in_range<T>(value);
}

/// `value` as a T; a value that does not fit ends the process.
template <std::integral T, std::integral V>
constexpr T narrow(V value) {
    if (!std::in_range<T>(value)) narrow_failed(static_cast<unsigned long long>(value), sizeof(T));
    return static_cast<T>(value);
}

/// `value` rounded up to a multiple of `align`, which is a power of two. Wraps only if the result
/// exceeds 64 bits.
constexpr uint64_t align_up(uint64_t value, uint64_t align) {
    return align < 2 ? value : (value + align - 1) & ~(align - 1);
}

/// True if `value` is a power of two.
constexpr bool is_power_of_two(uint64_t value) {
    return value != 0 && (value & (value - 1)) == 0;
}

/// True if the range of `size` bytes at `offset` lies within `total` bytes; cannot overflow.
constexpr bool in_bounds(uint64_t offset, uint64_t size, uint64_t total) {
    return offset <= total && size <= total - offset;
}
