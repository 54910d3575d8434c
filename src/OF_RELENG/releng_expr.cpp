// Relocation expressions: a run of relocations that push values on the engine's stack, combine
// them, and store the result in a field. Values are wide, so that no step on the way loses a bit.
#include "DIAG/releng_msgs.h"
#include "OF_RELENG/machops.h"
#include "OF_RELENG/releng.h"

namespace OFE {

namespace {

__extension__ using XI_UINT = unsigned __int128;
constexpr unsigned XI_BITS = 128;

// A shift by as many bits as there are, or more, leaves nothing (or the sign).
XI_INT shift(uint32_t id, XI_INT value, XI_INT count) {
    const bool all = count < 0 || count >= XI_INT{XI_BITS};
    const unsigned n = all ? 0 : static_cast<unsigned>(count);
    switch (id) {
    case OFRE_SR:
        return all ? 0 : static_cast<XI_INT>(static_cast<XI_UINT>(value) >> n);
    case OFRE_ASR:
        return value >> (all ? XI_BITS - 1 : n);
    default:
        return all ? 0 : static_cast<XI_INT>(static_cast<XI_UINT>(value) << n);
    }
}

// Unsigned where a sum could leave the range. There is no quotient by nothing: it counts as 0.
XI_INT combine(uint32_t id, XI_INT left, XI_INT right) {
    const XI_UINT a = static_cast<XI_UINT>(left), b = static_cast<XI_UINT>(right);
    switch (id) {
    case OFRE_ADD:
        return static_cast<XI_INT>(a + b);
    case OFRE_SUB:
        return static_cast<XI_INT>(a - b);
    case OFRE_MPY:
        return static_cast<XI_INT>(a * b);
    case OFRE_DIV:
        return right == 0 ? 0 : right == -1 ? static_cast<XI_INT>(XI_UINT{0} - a) : left / right;
    case OFRE_MOD:
        return right == 0 || right == -1 ? 0 : left % right;
    case OFRE_AND:
        return left & right;
    case OFRE_OR:
        return left | right;
    case OFRE_XOR:
        return left ^ right;
    default:
        return shift(id, left, right);
    }
}

} // namespace

// Takes the topmost values, the deepest first; false, with a message, when there are fewer.
bool OF_RELENG::pop(const RELOC_SITE& site, unsigned count, XI_INT* values) {
    if (stack_.size() < count) {
        report_diag(
            site, DIAG::releng_missing_rexpr_ops(__FILE__, __LINE__, std::string(site.rel->name)));
        return false;
    }
    for (unsigned i = 0; i < count; ++i) values[i] = stack_[stack_.size() - count + i];
    stack_.resize(stack_.size() - count);
    return true;
}

void OF_RELENG::process_reloc_expr(const RELOC_SITE& site, long& value) {
    value = 0;
    XI_INT operands[2];
    switch (site.rel->id) {
    case OFRE_NEG:
        if (pop(site, 1, operands))
            stack_.push_back(static_cast<XI_INT>(XI_UINT{0} - static_cast<XI_UINT>(operands[0])));
        break;
    case OFRE_NOTB:
        if (pop(site, 1, operands)) stack_.push_back(~operands[0]);
        break;
    case OFRE_ULDFLD:
    case OFRE_SLDFLD:
        stack_.push_back(opnd_A(site));
        break;
    case OFRE_USTFLD:
    case OFRE_SSTFLD:
    case OFRE_XSTFLD:
        if (pop(site, 1, operands)) value = static_cast<long>(operands[0]);
        break;
    case OFRE_PUSH:
        stack_.push_back(opnd_S(site));
        break;
    case OFRE_PUSHSK:
        stack_.push_back(site.addend);
        break;
    case OFRE_PUSHUK:
        stack_.push_back(static_cast<uint32_t>(site.addend));
        break;
    case OFRE_PUSHPC:
        stack_.push_back(opnd_P(site));
        break;
    case OFRE_DUP:
        if (pop(site, 1, operands)) stack_.insert(stack_.end(), 2, operands[0]);
        break;
    default:
        if (pop(site, 2, operands))
            stack_.push_back(combine(site.rel->id, operands[0], operands[1]));
        break;
    }
}

// The field of an operation is the relocation's own, so that the checks and the packing work on a
// template made for it.
void OF_RELENG::expression(const RELOC_SITE& site) {
    OF_RELOC_TEMPLATE own = *site.rel;
    RELOC_SITE here = site;
    if (own.is(OFRT_FIELD_OP)) {
        own.field_size = site.field_size;
        own.field_offset = site.field_offset;
        own.container_size = site.container_size;
        here.rel = &own;
        const bool sound = own.field_size != 0 && own.container_size <= 64 &&
                           own.field_size <= own.container_size &&
                           own.field_offset <= own.container_size - own.field_size;
        if (!sound || !fits(here)) {
            report_diag(site, DIAG::releng_bad_offset(__FILE__, __LINE__, relinfo(site)));
            return;
        }
    }
    long value;
    process_reloc_expr(here, value);
    if (own.is(OFRT_STORE_FIELD)) rel_encode_and_pack(value, here);
}

} // namespace OFE
