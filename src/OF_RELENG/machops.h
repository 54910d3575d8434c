// What the relocation engine asks per processor: how a value is computed, how instruction fields
// are packed, and what code a reference leads to. Base behaviour: the generic field, nothing known
// about modes.
#pragma once

#include <cstdint>

#include "OBJEDIT04/ofe/of_types.h"

namespace OFE {

class ARM_RELENG_MACHOPS;
class OF_RELENG;
struct RELOC_SITE;

class OF_RELENG_MACHOPS {
  public:
    virtual ~OF_RELENG_MACHOPS() = default;

    // Applies a relocation of one of the commonest types where nothing needs a decision or a
    // message, to the same effect as the steps below; false: take those.
    virtual bool rel_apply_plain(OF_RELENG&, const RELOC_SITE&) { return false; }
    // True for a relocation that changes nothing.
    virtual bool rel_skip(const RELOC_SITE& site) const;
    // The value to encode; false: the type is not supported.
    virtual bool rel_calculate_relocated_value(OF_RELENG& engine, const RELOC_SITE& site,
                                               long& value) = 0;
    // The field as it is stored, or a value (already scaled) into the field; false: use the generic
    // field.
    virtual bool rel_unpack(OF_RELENG&, const RELOC_SITE&, long&) { return false; }
    virtual bool rel_pack(OF_RELENG&, const RELOC_SITE&, long) { return false; }
    // OFRO_ of the template; 0 without one.
    virtual uint32_t rel_addend_kind(const RELOC_SITE& site) const;
    // An addend that the scale and the sign rules leave alone: MOVW and MOVT fields of REL entries.
    virtual bool rel_addend_is_plain(const RELOC_SITE&) const { return false; }
    virtual bool skip_check_for_overflow(const RELOC_SITE&) const { return false; }
    // Where the reference leads: an address, for a PC-relative type with the bias of the
    // instruction.
    virtual long rel_refd_dest_addr(OF_RELENG& engine, const RELOC_SITE& site,
                                    const long* value) = 0;

    // The operations of a machine; null when it has none here.
    static OF_RELENG_MACHOPS* of(OF_MACHINE machine);
    static ARM_RELENG_MACHOPS* ARM_api();
};

} // namespace OFE
