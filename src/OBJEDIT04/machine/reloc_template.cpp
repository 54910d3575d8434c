// The template rows, made from relocations.def, and the lookup by id. Ids of each kind are dense,
// so that an id is an index; the compiler checks that and that each field fits its container.
#include "OBJEDIT04/machine/reloc_template.h"

namespace OFE {

namespace {

constexpr uint32_t FIRST_COMMON = 0x100;
constexpr uint32_t FIRST_ARM = 0x300;

constexpr OF_RELOC_TEMPLATE COMMON[] = {
#define RELOC_COMMON(id, name, flags, overflow, size, offset, container, value)                    \
    {id,     #name,     flags, 0xFFFFFFFF,   OFRO_##overflow, size,                                \
     offset, container, 0,     OFRV_##value, OFRC_GENERIC},
#include "OBJEDIT04/machine/relocations.def"
};

constexpr OF_RELOC_TEMPLATE ARM[] = {
#define RELOC_ARM(id, name, elf, number, flags, overflow, size, offset, container, scale, mask,    \
                  value, encoding)                                                                 \
    {id,     "OFR_ARM_" #name, flags, mask,         OFRO_##overflow, size,                         \
     offset, container,        scale, OFRV_##value, OFRC_##encoding},
#include "OBJEDIT04/machine/relocations.def"
};

template <size_t N>
constexpr bool dense(const OF_RELOC_TEMPLATE (&rows)[N], uint32_t first) {
    for (size_t i = 0; i < N; ++i)
        if (rows[i].id != first + i) return false;
    return true;
}

template <size_t N>
constexpr bool fields_fit(const OF_RELOC_TEMPLATE (&rows)[N]) {
    for (const OF_RELOC_TEMPLATE& row : rows)
        if (row.encoding == OFRC_GENERIC && row.field_offset + row.field_size > row.container_size)
            return false;
    return true;
}

static_assert(dense(COMMON, FIRST_COMMON) && dense(ARM, FIRST_ARM), "ids ascend without gaps");
static_assert(fields_fit(COMMON) && fields_fit(ARM), "a generic field lies within its container");

} // namespace

std::span<const OF_RELOC_TEMPLATE> common_reloc_templates() {
    return COMMON;
}
std::span<const OF_RELOC_TEMPLATE> arm_reloc_templates() {
    return ARM;
}

const OF_RELOC_TEMPLATE* reloc_template(uint32_t id) {
    if (id >= FIRST_COMMON && id - FIRST_COMMON < std::size(COMMON))
        return &COMMON[id - FIRST_COMMON];
    if (id >= FIRST_ARM && id - FIRST_ARM < std::size(ARM)) return &ARM[id - FIRST_ARM];
    return nullptr;
}

} // namespace OFE
