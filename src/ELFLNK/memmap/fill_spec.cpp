// Fill values: their width, their text, and the two that everybody shares.
#include "ELFLNK/memmap/fill_spec.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>

#include "DIAG/elnk_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "UTIL/savestr.h"

FILL_SPEC* FILL_SPEC::default_m = nullptr;
FILL_SPEC* FILL_SPEC::zero_m = nullptr;

namespace {

constexpr double LOG2_OF_10 = 3.3219280948873626;

uint32_t bit_length(uint64_t value) {
    return static_cast<uint32_t>(std::bit_width(value));
}

uint32_t divide_up(uint32_t a, uint32_t b) {
    return (a + b - 1) / b;
}

} // namespace

uint32_t FILL_SPEC::bits_in_value(uint64_t value, uint32_t radix, uint32_t digits) {
    if (radix == 1) return 0;
    if (std::has_single_bit(radix)) return static_cast<uint32_t>(std::countr_zero(radix)) * digits;
    return bit_length(value);
}

uint32_t FILL_SPEC::digits(uint32_t radix) const {
    if (radix == 0) radix = radix_;
    switch (radix) {
    case 16:
        return divide_up(width_, 4);
    case 8:
        return divide_up(width_, 3);
    case 10:
        return static_cast<uint32_t>(bit_length(value_) / LOG2_OF_10);
    default:
        break;
    }
    if (radix < 2) return 0;
    if (std::has_single_bit(radix)) return divide_up(width_, bit_length(radix) - 1);
    return static_cast<uint32_t>(std::ceil(width_ / std::log2(radix)));
}

const char* FILL_SPEC::str() {
    if (text_ != nullptr) return text_;
    const int width = static_cast<int>(digits(0));
    if (radix_ == 8)
        text_ = savestrf("0%0*lo", width, value_);
    else if (radix_ == 16)
        text_ = savestrf("%0*lx", width, value_);
    else
        text_ = savestrf("%lu", value_);
    return text_;
}

uint32_t FILL_SPEC::pattern_bytes() const {
    return std::clamp<uint32_t>(width_ / 8, 1, 8);
}

void FILL_SPEC::check_fill_width(const SOURCE_POSITION* pos) {
    width_ = std::max(width_, Target->fill_min_width());
    width_ = divide_up(width_, 8) * 8;
    const uint32_t limit = std::min(Target->fill_max_width(), 64U);
    if (width_ <= limit) return;
    if (limit < 64) value_ &= (uint64_t{1} << limit) - 1;
    width_ = limit;
    text_ = nullptr;
    DIAG_REPORT_AT(pos, elnk_fill_val_trunc, limit / 8, str());
}

FILL_SPEC* FILL_SPEC::default_fill() {
    if (default_m == nullptr) default_m = new FILL_SPEC(0, 10, 0);
    return default_m;
}

FILL_SPEC* FILL_SPEC::zero_fill() {
    if (zero_m == nullptr) zero_m = new FILL_SPEC(0, 10, 0);
    return zero_m;
}

void FILL_SPEC::set_default_fill(uint64_t value, uint32_t radix, uint32_t digits) {
    delete default_m;
    default_m = new FILL_SPEC(value, radix, digits);
}

FILL_SPEC* FILL_SPEC::get_required_fill(const COLLECTION* collection) {
    ABI* abi = Target->abi();
    return abi->fills_code_with_nops() && collection->has_attr(PA_EXEC) ? abi->get_nop_fill()
                                                                        : nullptr;
}

FILL_SPEC* FILL_SPEC::get_required_pad_fill(const COLLECTION* collection) {
    ABI* abi = Target->abi();
    return abi->pads_code_with_nops() && collection->has_attr(PA_EXEC) ? abi->get_nop_fill()
                                                                       : nullptr;
}

FILL_SPEC* FILL_SPEC::of_gaps(const COLLECTION* collection, MEMORY_RANGE* range) {
    if (FILL_SPEC* nops = get_required_fill(collection)) return nops;
    if (collection->fill() != nullptr) return collection->fill();
    return range != nullptr && range->has_fill() ? range->fill() : default_fill();
}
