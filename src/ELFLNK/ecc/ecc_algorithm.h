// How the ECC bytes of a memory are computed, as the ECC directive of a command file says it.
//
// Eight bytes of input are one unit, and give one ECC byte. Where the bytes of a memory's units lie
// is told by the mirroring scheme, a word: it is a block of ECC bytes, and each letter in it stands
// for the unit whose byte lies there. "ABABABAB" keeps the bytes of two units four times each.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

class ECC_ALGORITHM {
  public:
    static constexpr unsigned ECC_BITS = 8;
    using ADDRESS_BITS = std::array<uint32_t, ECC_BITS>;
    using DATA_BITS = std::array<uint64_t, ECC_BITS>;

    /// Which bits of the address and of the data take part in each ECC bit, if nothing else is
    /// said.
    static const ADDRESS_BITS participating_address_bits;
    static const DATA_BITS participating_data_bits;

    ECC_ALGORITHM() { parse_mirror_scheme("A"); }

    void set_address_mask(uint32_t mask) { address_mask_ = mask; }
    uint32_t address_mask() const { return address_mask_; }
    /// Eight bits.
    void set_parity_mask(uint32_t mask) { parity_mask_ = mask; }
    uint32_t parity_mask() const { return parity_mask_; }

    /// Takes a scheme of letters from A on, in either case, none without its predecessor; false if
    /// the text is no scheme, which changes nothing.
    bool parse_mirror_scheme(std::string_view text);
    /// ECC bytes of a block.
    uint32_t block_size() const { return block_size_; }
    /// Different letters: units of input for a block.
    uint32_t letters() const { return static_cast<uint32_t>(mirrors_.size()); }
    /// The places in a block of the ECC byte of its unit with this number, ascending.
    const std::vector<uint32_t>& mirrors(uint32_t letter) const { return mirrors_[letter]; }

    /// Tables of the command file, in place of both defaults.
    void set_hamming_masks(const ADDRESS_BITS& address, const DATA_BITS& data);
    const ADDRESS_BITS& address_bits() const {
        return address_bits_ ? *address_bits_ : participating_address_bits;
    }
    const DATA_BITS& data_bits() const {
        return data_bits_ ? *data_bits_ : participating_data_bits;
    }

  private:
    uint32_t address_mask_ = ~uint32_t{0};
    uint32_t parity_mask_ = 0;
    uint32_t block_size_ = 0;
    std::vector<std::vector<uint32_t>> mirrors_; // by letter
    std::optional<ADDRESS_BITS> address_bits_;
    std::optional<DATA_BITS> data_bits_;
};
