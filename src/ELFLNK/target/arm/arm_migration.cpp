// Objects of this vendor's older compilers: what they call by another name today, and which of them
// do not fit the run-time library.
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/arm/arm_target.h"
#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/savestr.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace {

// Conversions between 64-bit integers and floating point, of which there are two sets: with
// arguments in integer registers, and in those of the coprocessor.
constexpr std::string_view CONVERSIONS[] = {"__aeabi_l2f",  "__aeabi_l2d",  "__aeabi_ul2f",
                                            "__aeabi_ul2d", "__aeabi_f2lz", "__aeabi_f2ulz",
                                            "__aeabi_d2lz", "__aeabi_d2ulz"};
constexpr std::string_view CONVERSION_PREFIX = "__aeabi_";
constexpr std::array FIRST_THAT_KNOWS = {4u, 5u, 3u}; // version of the compiler

// Functions that the run-time library has if it is the one that older C objects don't fit.
constexpr const char* DINKUM_NAMES[] = {"_FFpcomp", "_Fpcomp", "_LFpcomp", "_FDclass", "_Dclass",
                                        "_LDclass", "_LFsign", "_FDsign",  "_Dsign"};

constexpr unsigned TAG_FP_ARCH = 10;

} // namespace

bool ARM_TARGET::wants_update_symbol(const char* name) const {
    return std::strncmp(name, CONVERSION_PREFIX.data(), CONVERSION_PREFIX.size()) == 0 &&
           std::find(std::begin(CONVERSIONS), std::end(CONVERSIONS), name) != std::end(CONVERSIONS);
}

// Objects with floating point hardware that the compiler made before it knew of the two sets mean
// the one with coprocessor registers.
void ARM_TARGET::update_symbol(OFE::OF_SYMBOL* symbol) {
    OFE::OBJECT_FILE* file = symbol->ofile();
    if (!wants_update_symbol(symbol->name()) || file->abi_battr_uval(TAG_FP_ARCH) == 0 ||
        std::strcmp(file->producer_name(), OFE::OFBA_VENDOR_QV) != 0)
        return;
    std::array version = {0u, 0u, 0u};
    file->producer_major_version(version[0]);
    file->producer_minor_version(version[1]);
    file->producer_patch_version(version[2]);
    if (version < FIRST_THAT_KNOWS) symbol->set_name_view(savestrf("%s_QV_VFP", symbol->name()));
}

bool ARM_TARGET::dinkum_exported_symbols() const {
    return std::any_of(std::begin(DINKUM_NAMES), std::end(DINKUM_NAMES),
                       [](const char* name) { return global_symbols.lookup(name) != nullptr; });
}
