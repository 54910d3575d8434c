// What all compression algorithms share, and their list.
#include "ELFLNK/compress/compression_alg.h"

#include "UTIL/data_map.h"

#include <algorithm>

bool COMPRESSION_ALG::test_algorithm(DATA_MAP& map) const {
    const auto before = map.bytes().last(map.left());
    DATA_MAP packed, unpacked;
    compress(map, packed);
    packed.set_pos(0);
    return decompress(packed, unpacked) && std::ranges::equal(unpacked.bytes(), before);
}

std::span<const std::unique_ptr<COMPRESSION_ALG>>
COMPRESSION_FACTORY::compression_list(unsigned unit_bits) {
    static const std::vector<std::unique_ptr<COMPRESSION_ALG>> list = [] {
        std::vector<std::unique_ptr<COMPRESSION_ALG>> made;
        made.push_back(std::make_unique<COMPRESSION_RLE>());
        made.push_back(std::make_unique<COMPRESSION_LZSS>());
        return made;
    }();
    if (unit_bits != 8) return {};
    return list;
}
