// The value that stands for unwritten memory: of a range, an output section, a pad, or the link.
#pragma once

#include <cstdint>

class COLLECTION;
class MEMORY_RANGE;
class SOURCE_POSITION;

class FILL_SPEC {
  public:
    /// A value as written: its radix (8, 10, 16...) and number of digits give the width in bits.
    FILL_SPEC(uint64_t value, uint32_t radix, uint32_t digits)
        : value_(value), radix_(radix), width_(bits_in_value(value, radix, digits)) {}
    FILL_SPEC(const FILL_SPEC&) = delete;
    FILL_SPEC& operator=(const FILL_SPEC&) = delete;

    uint64_t value() const { return value_; }
    uint32_t radix() const { return radix_; }
    uint32_t width() const { return width_; }

    /// Bits that a literal of that many digits stands for.
    static uint32_t bits_in_value(uint64_t value, uint32_t radix, uint32_t digits);
    /// Digits for the width at the radix; 0 means the own radix.
    uint32_t digits(uint32_t radix) const;
    /// The value as text, in its own radix.
    const char* str();
    /// Bytes of the pattern, at least 1.
    uint32_t pattern_bytes() const;

    /// Raise to the target's smallest unit, cut to its largest, with a warning.
    void check_fill_width(const SOURCE_POSITION* pos);

    /// Fill of the link where nothing else is said.
    static FILL_SPEC* default_fill();
    static FILL_SPEC* zero_fill();
    static void set_default_fill(uint64_t value, uint32_t radix, uint32_t digits);

    /// No-operation fill where the ABI fills, or pads, code with it; else null.
    static FILL_SPEC* get_required_fill(const COLLECTION* collection);
    static FILL_SPEC* get_required_pad_fill(const COLLECTION* collection);
    /// Fill of the gaps of a collection in a range, which may be null: the first that somebody
    /// gave.
    static FILL_SPEC* of_gaps(const COLLECTION* collection, MEMORY_RANGE* range);

  private:
    uint64_t value_;
    uint32_t radix_;
    uint32_t width_;
    const char* text_ = nullptr;

    static FILL_SPEC* default_m;
    static FILL_SPEC* zero_m;
};
