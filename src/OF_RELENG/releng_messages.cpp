// The texts of the engine's messages. Nothing here runs unless a message is reported.
#include <cstdio>

#include "DIAG/releng_msgs.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OF_RELENG/machops.h"
#include "OF_RELENG/releng.h"

namespace OFE {

namespace {

// Bits that a value needs: as a number of the field's kind when that is signed, else as it is
// nearest to zero.
unsigned bits_needed(long value, uint32_t kind) {
    unsigned bits = 0;
    for (; value != 0 && value != -1; value >>= 1) ++bits;
    return value == -1 || kind == OFRO_SIGNED ? bits + 1 : bits;
}

} // namespace

std::string OF_RELENG::relinfo(const RELOC_SITE& site) const {
    char number[16], offset[16];
    snprintf(number, sizeof number, "%u", site.type->machine_type);
    snprintf(offset, sizeof offset, "0x%08x", site.offset / unit_bytes_);
    return std::string("(type = '") + site.type->name + "' (" + number + "), file = \"" +
           section_->ofile()->display_name() + "\", offset = " + offset + ", section = \"" +
           section_->name() + "\")";
}

bool OF_RELENG::source(const RELOC_SITE& site, RELOC_SOURCE& out) const {
    return hooks_m && section_->allocated() &&
           hooks_m->source(section_, site.offset / unit_bytes_, out);
}

std::string OF_RELENG::relref(const RELOC_SITE& site) const {
    static constexpr const char* FROM[] = {"from function ", "from assembly function ",
                                           "from assembly code range "};
    std::string text = " ";
    RELOC_SOURCE place;
    if (source(site, place) && !place.function.empty())
        text += FROM[place.function_kind] + ("\"" + place.function) + "\" ";
    if (site.symbol && site.symbol->input) {
        const char* name = site.symbol->input->name();
        text += "to symbol \"" + (hooks_m ? hooks_m->display_name(name) : name) + "\" ";
    }
    return text;
}

void OF_RELENG::report_diag(const RELOC_SITE& site, DIAGNOSTIC&& diag) {
    if (diag.severity() >= dc_WARNING) has_error_ = true;
    RELOC_SOURCE place;
    if (source(site, place) && !place.file.empty()) {
        DIAG_SRCINFO_DATA position(place.file.c_str(), place.line, place.column);
        diag.set_src(&position);
    }
    diag.report();
}

void OF_RELENG::overflow_error(const RELOC_SITE& site, long value, unsigned width) {
    uint32_t kind = machops_->rel_addend_kind(site);
    std::string kind_text = kind == OFRO_SIGNED     ? "signed "
                            : kind == OFRO_UNSIGNED ? "unsigned "
                                                    : "";
    if (site.rel->pcrel()) kind_text += "PC-Relative ";
    unsigned bits = bits_needed(value, kind);
    unsigned long shown = static_cast<unsigned long>(value);
    if (bits < 64) shown &= (1UL << ((bits + 3) & 60)) - 1;
    report_diag(site, DIAG::releng_reloc_overflow(__FILE__, __LINE__, relref(site), bits, shown,
                                                  width, kind_text, relinfo(site)));
    auto operand = [&](const char* name, long v) {
        report_diag(site, DIAG::releng_reloc_opnd(__FILE__, __LINE__, name, v));
    };
    operand("A", opnd_A(site));
    if (site.rel->takes_symbol() && site.symbol) operand("S", opnd_S(site));
    operand("P", opnd_P(site));
    if (site.rel->is(OFRT_SBREL)) operand("B", opnd_B(site));
}

} // namespace OFE
