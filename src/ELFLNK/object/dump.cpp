// The tree as text, for debugging: a header line per object, its properties one step deeper, and
// members below it joined by lines.
#include <cstdio>
#include <string>

#include "ELFLNK/expr/expression.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/object/load_segment.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/object/space.h"
#include "ELFLNK/object/symbol_object.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/pprint.h"

void LINKER_OBJECT::dump(PPRINT* out) {
    PPRINT own;
    if (out == nullptr) out = &own;
    dump_header(out);
    out->push("   ");
    dump_properties(out);
    out->pop();
}

namespace {

void dump_output_section(PPRINT* out, OFE::OF_SECTION* section) {
    if (section == nullptr) {
        out->printf("outsect     : %s\n", "<not yet allocated>");
        return;
    }
    out->printf("outsect     : %s\n", section->name());
    out->printf("section id  : %u\n", section->id());
    OFE::OF_RAW_SECTION header;
    if (section->ofile()->format() == OFE::OF_FORMAT_ELF &&
        section->section_table()->raw_section(section->id(), header)) {
        out->printf("type        : 0x%x\n", header.type);
        out->printf("sh_link     : %d\n", static_cast<int>(header.link));
    }
}

std::string attribute_names(uint32_t attrs) {
    std::string text;
    for (uint32_t bit = 1; bit != 0; bit <<= 1) {
        if ((attrs & bit) == 0) continue;
        if (!text.empty()) text += ' ';
        text += attr_name(bit);
    }
    return text;
}

void dump_locator(PPRINT* out, const char* heading, const LOCATOR* locator) {
    if (locator == nullptr) return;
    out->printf("%s", heading);
    locator->dump(out);
    if (!locator->is_placed()) std::printf("\n");
}

} // namespace

void LINKER_OBJECT::dump_properties(PPRINT* out) {
    const SOURCE_POSITION& pos = source_position();
    if (pos.is_known())
        out->printf("srcloc      : %s, line %d\n", pos.file(), static_cast<int>(pos.line()));
    out->printf("size        : 0x%lx (min:0x%lx)\n", size(), est_size_min());
    if (const COLLECTION* outsect = containing_outsect())
        out->printf("in OUTSECT  : %s\n", outsect->name());
    if (parent_ != nullptr)
        out->printf("parent colln: %s (parent is a %s)\n", parent_->name(),
                    parent_->collection_kind_name());
    if (is_output_section_ || is_section())
        out->printf("is section  : %s\n", is_output_section_ ? "outsect" : "insect");
    if (is_output_section_) dump_output_section(out, own_output_section());
    if (const uint32_t flags = qv_flags(); flags != 0) out->printf("qv flags    : 0x%x\n", flags);
    out->printf("finalized   : %s\n", finalized_ ? "true" : "false");
    if (alignment() >= 2) out->printf("alignment   : 0x%x\n", alignment());
    if (blocking() != 0) out->printf("blocking    : 0x%x\n", blocking());
    out->printf("attributes  : %s\n", attribute_names(attrs_).c_str());
    out->printf("rwx string  : %s\n", rwx_string());
    dump_locator(out, "locator     : ", run_locator_);
    dump_locator(out, "load locator: ", load_locator_);
    dump_locator(out, "alternate run locator: ", alt_run_locator());
    if (fill_ != nullptr) out->printf("fill        : %s\n", fill_->str());
    if (assignments().empty()) return;
    out->printf("symdefs     :\n");
    out->push("   ");
    for (const EXPRESSION* expr : assignments()) expr->dump(out);
    out->pop();
}

void COLLECTION::dump_header(PPRINT* out) {
    out->printf("COLLECTION: %s (kind = %s)\n", name(), collection_kind_name());
}

void COLLECTION::dump_properties(PPRINT* out) {
    LINKER_OBJECT::dump_properties(out);
    for (LINKER_OBJECT* member : members_) {
        out->push("+--");
        member->dump_header(out);
        out->set(member == members_.back() ? "   " : "|  ");
        member->dump_properties(out);
        out->pop();
    }
}

namespace {

void dump_filter(PPRINT* out, const char* heading, const FILTER* filter) {
    if (filter == nullptr) return;
    out->printf("%s", heading);
    filter->dump(true);
}

} // namespace

void SECTION_SPEC::dump_header(PPRINT* out) {
    out->printf("SECTION SPEC: %s%s\n", name(), is_default_ ? " (default)" : "");
}

void SECTION_SPEC::dump_properties(PPRINT* out) {
    dump_filter(out, "file filter : ", file_filter_);
    dump_filter(out, "member filt.: ", member_filter_);
    dump_filter(out, "section flt.: ", section_filter_);
    COLLECTION::dump_properties(out);
}

void LOAD_SEGMENT::dump_header(PPRINT* out) {
    out->printf("LOAD SEGMENT: %s\n", name());
}

void LOAD_SEGMENT::dump_properties(PPRINT* out) {
    out->printf("init_size   : 0x%lx\n", init_size_);
    out->printf("run address : 0x%lx\n", run_address_);
    out->printf("load address: 0x%lx\n", load_address_);
    out->printf("run page    : %d\n", run_page_);
    out->printf("load page   : %d\n", load_page_);
    COLLECTION::dump_properties(out);
}

void SECTION::dump_header(PPRINT* out) {
    out->printf("SECTION: %s\n", name());
}

void SPACE::dump_header(PPRINT* out) {
    out->printf("SPACE: %s\n", name());
}

void DOT_EXPRESSION::dump_header(PPRINT* out) {
    out->printf("DOT EXPRESSION: %s\n", name());
}

void DOT_EXPRESSION::dump_properties(PPRINT* out) {
    SPACE::dump_properties(out);
    if (expr_ == nullptr) return;
    out->printf("expression  : %s\n", expr_->get_string().c_str());
}

void COMMON_BLOCK::dump_header(PPRINT* out) {
    out->printf("COMMON BLOCK: %s\n", name());
}

void ABSOLUTE_SYMBOL::dump_header(PPRINT* out) {
    out->printf("ABSOLUTE SYMBOL: %s\n", name());
}
