// Schemes and tables of an ECC algorithm.
#include "ELFLNK/ecc/ecc_algorithm.h"

const ECC_ALGORITHM::ADDRESS_BITS ECC_ALGORITHM::participating_address_bits = {
    0x0A7554EA, 0x1D68BAD1, 0x14DAA9B5, 0x13C6A78D, 0x0FC19F83, 0x1FC07F80, 0x003FFF80, 0x1FC0007F,
};

const ECC_ALGORITHM::DATA_BITS ECC_ALGORITHM::participating_data_bits = {
    0xB4D1B4D14B2E4B2E, 0x1557155715571557, 0xA699A699A699A699, 0x38E338E338E338E3,
    0xC0FCC0FCC0FCC0FC, 0xFF00FF00FF00FF00, 0xFF0000FFFF0000FF, 0x00FFFF00FF0000FF,
};

bool ECC_ALGORITHM::parse_mirror_scheme(std::string_view text) {
    constexpr size_t ALPHABET = 26;
    std::array<std::vector<uint32_t>, ALPHABET> places;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const size_t letter = c >= 'a' && c <= 'z'   ? static_cast<size_t>(c - 'a')
                              : c >= 'A' && c <= 'Z' ? static_cast<size_t>(c - 'A')
                                                     : ALPHABET;
        if (letter == ALPHABET) return false;
        places[letter].push_back(static_cast<uint32_t>(i));
    }
    size_t used = 0;
    while (used < ALPHABET && !places[used].empty()) ++used;
    for (size_t letter = used; letter < ALPHABET; ++letter)
        if (!places[letter].empty()) return false;
    if (used == 0) return false;
    mirrors_.assign(places.begin(), places.begin() + static_cast<std::ptrdiff_t>(used));
    block_size_ = static_cast<uint32_t>(text.size());
    return true;
}

void ECC_ALGORITHM::set_hamming_masks(const ADDRESS_BITS& address, const DATA_BITS& data) {
    address_bits_ = address;
    data_bits_ = data;
}
