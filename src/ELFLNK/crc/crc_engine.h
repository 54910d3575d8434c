// The CRC engine: a register of up to 64 bits that takes bytes through tables.
//
// A cyclic redundancy check is described by the usual parameters (width, polynomial, initial value,
// reflection of input and output, final XOR). From them come tables of 256 entries, made once per
// algorithm and process. The first table moves the register by one byte; seven more, each the one
// before moved by a further zero byte, let eight bytes be taken in one step.
//
// A register that is not reflected is kept at the top of 64 bits, whatever its width, so that one
// loop serves all widths; a reflected one is kept at the bottom.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <span>
#include <string_view>

class CRC {
  public:
    /// The parameters of an algorithm; also the key of its tables.
    struct algorithm_t {
        std::string_view name; ///< of static storage
        uint32_t order;        ///< width in bits: 8 to 64, a multiple of 8
        uint64_t polynomial;   ///< without the top bit
        uint32_t direct;       ///< 1: crcinit is the register's first value as it stands
        uint64_t crcinit;
        uint32_t refin;  ///< 1: bytes enter with their lowest bit first
        uint32_t refout; ///< 1: the result is reflected
        uint64_t crcxor; ///< XORed to the result
        uint32_t fast;   ///< 0: bytes enter at the low end, without `order` zero bits at the end

        auto operator<=>(const algorithm_t&) const = default;
    };

    /// What follows from the parameters.
    struct imputed_values_t {
        uint64_t topbit;
        uint64_t mask;        ///< `order` ones
        uint64_t direct_init; ///< the register's first value, at the bottom, not reflected
        /// table[0] moves the register by one byte, table[k] by k bytes more.
        std::array<std::array<uint64_t, 256>, 8> table;
    };

    /// The register is set to its first value.
    explicit CRC(const algorithm_t& algorithm);

    /// Takes bytes, in their order; may be called any number of times.
    void read_data(std::span<const uint8_t> data);
    /// The check value of what was read so far.
    uint64_t finalize() const;

    /// The low `bits` bits of `value` in reverse order; higher bits are dropped.
    static uint64_t reflect(uint64_t value, unsigned bits);

  private:
    static const imputed_values_t& imputed_values(const algorithm_t& algorithm);
    static imputed_values_t compute_imputed_values(const algorithm_t& algorithm);

    algorithm_t algorithm_;
    const imputed_values_t& values_;
    unsigned shift_;    ///< bits below the register: 64 - order, or 0 if reflected
    uint64_t register_; ///< the working value
};
