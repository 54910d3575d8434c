// The properties of output sections, GROUPs and UNIONs: where they go, of what type they are, which
// symbols mark them.
#include <vector>

#include "ELFLNK/expr/expression.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/parse_lcf/lcf_errors.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "ELFLNK/parse_lcf/placement_properties.h"
#include "ELFLNK/target/target.h"
#include "UTIL/savestr.h"

namespace {

struct TYPE_WORD {
    const char* word;
    uint32_t attr;
    bool needs_seg_attrs;
};

constexpr TYPE_WORD type_words[] = {
    {"COPY", PA_COPY, false},           {"DSECT", PA_DSECT, false},
    {"NOLOAD", PA_NOLOAD, false},       {"NOINIT", PA_NOINIT, false},
    {"VECT_INIT", PA_VECT_INIT, false}, {"BOUND", PA_BOUND, true},
    {"READONLY", PA_READONLY, true},
};

struct SYMBOL_WORD {
    const char* word;
    EXPR_OPCODE op;
};

constexpr SYMBOL_WORD symbol_words[] = {
    {"LOAD_START", EXPR_OP_LOAD_START}, {"START", EXPR_OP_LOAD_START},
    {"LOAD_END", EXPR_OP_LOAD_END},     {"END", EXPR_OP_LOAD_END},
    {"LOAD_SIZE", EXPR_OP_LOAD_SIZE},   {"SIZE", EXPR_OP_LOAD_SIZE},
    {"RUN_START", EXPR_OP_RUN_START},   {"RUN_END", EXPR_OP_RUN_END},
    {"RUN_SIZE", EXPR_OP_RUN_SIZE},
};

} // namespace

// A comma between properties may be left out, but behind a comma there must be one.
void LCF_PARSER::section_properties(COLLECTION* section, PLACEMENT_PROPERTIES& props) {
    bool comma = false;
    for (;;) {
        bool comma_taken = false;
        if (!section_property(section, props, comma_taken)) {
            if (comma) LCF_ERROR(elnk_syn_bad_scn_prop, text());
            return;
        }
        comma = comma_taken || lex_skip_optional(',');
    }
}

bool LCF_PARSER::section_property(COLLECTION* section, PLACEMENT_PROPERTIES& props,
                                  bool& comma_taken) {
    if (address_specifier(props, comma_taken) || address_property(&props.common, &props.common) ||
        section_type(section) || section_symbol(section) || table_symbol(section) ||
        crc_table_symbol(section))
        return true;
    if (section->kind() != COLLECTION_OUTSECT) return false;
    return unordered_property(props) || fill_property(section) || section_composition(section);
}

void LCF_PARSER::optional_address(PLACEMENT_PROPERTIES& props) {
    if (code() != TOK_INT) return;
    SOURCE_POSITION pos = token().position();
    props.common.add_specific(token().value, &pos);
    lex();
    lex_skip_optional(',');
}

bool LCF_PARSER::address_specifier(PLACEMENT_PROPERTIES& props, bool& comma_taken) {
    auto is_op = [this] { return code() == '=' || code() == '>' || code() == TOK_SHR; };
    LOCATOR* locator = keyword("RUN") ? &props.run : &props.load;
    if (keyword("LOAD") || keyword("RUN")) {
        lex();
        if (!is_op()) {
            LCF_ERROR(elnk_syn_bad_addr_spec, text());
            return true;
        }
    } else if (!is_op()) {
        return false;
    }
    if (code() == TOK_SHR) locator->set_flag(LF_SPLIT);
    lex();
    unsigned parens = 0;
    while (lex_skip_optional('(')) ++parens;
    address(locator);
    address_items(locator, &props.common, comma_taken);
    if (parens > 0) comma_taken = false;
    while (parens-- > 0)
        if (!lex_skip_required(')')) break;
    return true;
}

// Attribute letters, a constant address, or the names of ranges.
void LCF_PARSER::address(LOCATOR* locator) {
    SOURCE_POSITION pos = token().position();
    uint32_t attrs = 0;
    uint64_t value = 0;
    if (code() == TOK_NAME && MEMORY_RANGE::encode_attr(token().text.c_str(), &attrs)) {
        locator->add_attrs(attrs, &pos);
        lex();
    } else if (code() == TOK_NAME) {
        std::vector<const char*> names;
        do {
            if (code() != TOK_NAME) {
                LCF_ERROR(elnk_syn_bad_addr, text());
                break;
            }
            names.push_back(savestr(text()));
            lex();
        } while (lex_skip_optional('|'));
        locator->add_ranges(names, &pos);
    } else if (expr_const_starts()) {
        if (expr_const_expr(value)) locator->add_specific(value, &pos);
    } else {
        LCF_ERROR(elnk_syn_bad_addr, text());
    }
}

// PAGE, ALIGN, HIGH and their like behind an address. Leaves comma_taken set behind a comma that
// nothing followed.
void LCF_PARSER::address_items(LOCATOR* locator, LOCATOR* common, bool& comma_taken) {
    for (;;) {
        comma_taken = lex_skip_optional(',');
        if (comma_taken && code() == ',') {
            LCF_ERROR(elnk_syn_bad_scn_prop, text());
            while (lex_skip_optional(',')) {
            }
        }
        if (!address_property(locator, common) && !address_flag(locator)) return;
    }
}

bool LCF_PARSER::address_property(LOCATOR* own, LOCATOR* common) {
    enum PROPERTY { ALIGN, BLOCK, PAGE, PRIORITY, PALIGN };
    static constexpr struct {
        const char* word;
        PROPERTY property;
    } properties[] = {{"ALIGN", ALIGN},
                      {"BLOCK", BLOCK},
                      {"PAGE", PAGE},
                      {"PRIORITY", PRIORITY},
                      {"PALIGN", PALIGN}};
    SOURCE_POSITION pos = token().position();
    uint64_t value = 0;
    for (const auto& p : properties) {
        if (!keyword(p.word)) continue;
        if (p.property == PALIGN) {
            parse_palign(common);
        } else if (int_property_literal(value)) {
            switch (p.property) {
            case ALIGN:
                common->add_align(value, &pos);
                break;
            case BLOCK:
                common->add_block(value, &pos);
                break;
            case PAGE:
                own->add_page(static_cast<int>(value), &pos);
                break;
            default:
                own->add_priority(static_cast<uint32_t>(value), &pos);
                break;
            }
        }
        return true;
    }
    return false;
}

void LCF_PARSER::parse_palign(LOCATOR* common) {
    SOURCE_POSITION pos = token().position();
    lex();
    lex_skip_optional('=');
    unsigned parens = 0;
    while (lex_skip_optional('(')) ++parens;
    if (keyword("POWER2")) {
        common->add_p2align(&pos);
        lex();
    } else if (lex_required(TOK_INT)) {
        common->add_palign(token().value, &pos);
        lex();
    }
    while (parens-- > 0)
        if (!lex_skip_required(')')) break;
}

bool LCF_PARSER::address_flag(LOCATOR* locator) {
    bool paren = code() == '(' && lex_peek() == TOK_NAME;
    if (!paren && !keyword("HIGH")) return false;
    if (paren) lex();
    if (keyword("HIGH"))
        locator->set_flag(LF_HIGHEST);
    else
        LCF_ERROR(elnk_syn_bad_addr_flag, text());
    lex();
    if (paren) lex_skip_required(')');
    return true;
}

bool LCF_PARSER::section_type(COLLECTION* section) {
    bool paren = false;
    if (keyword("TYPE")) {
        if (section->kind() != COLLECTION_OUTSECT)
            LCF_ERROR(elnk_no_type_on_GROUP_or_UNION, section->name());
        lex();
        lex_skip_optional('=');
        paren = lex_skip_optional('(');
    } else if (code() == '(') {
        if (section->kind() != COLLECTION_OUTSECT)
            LCF_ERROR(elnk_no_type_on_GROUP_or_UNION, section->name());
        lex();
        paren = true;
    } else {
        return false;
    }
    section_type_word(section);
    if (paren) lex_skip_required(')');
    return true;
}

void LCF_PARSER::section_type_word(COLLECTION* section) {
    const TYPE_WORD* found = nullptr;
    for (const TYPE_WORD& t : type_words)
        if (keyword_cs(t.word) && (!t.needs_seg_attrs || Target->is_seg_attrs_allowed()))
            found = &t;
    if (found != nullptr)
        section->set_attr(found->attr);
    else if (keyword_cs("PASS"))
        LCF_ERROR(elnk_syn_obsolete_scn_attr, text());
    else
        LCF_ERROR(elnk_syn_bad_scn_type, text());
    if (!at_end(')') && code() != '{' && code() != '}') lex();
}

bool LCF_PARSER::section_symbol(LINKER_OBJECT* object) {
    const SYMBOL_WORD* found = nullptr;
    for (const SYMBOL_WORD& s : symbol_words)
        if (keyword(s.word)) found = &s;
    if (found == nullptr) return false;
    lex();
    if (!lex_skip_required('(')) return true;
    bool weak = keyword("WEAK") && lex_peek() == '(';
    if (weak) {
        lex();
        lex();
    }
    SOURCE_POSITION pos = token().position();
    if (lex_required(TOK_NAME)) {
        add_assignment_to_object(object, savestr(text()), found->op, weak, pos);
        lex();
        if (weak) lex_skip_required(')');
        lex_skip_required(')');
    }
    return true;
}

// table(name [, compression = word]).
bool LCF_PARSER::table_symbol(COLLECTION* section) {
    return keyword("TABLE") && lex_peek() == '(' &&
           table_request("COMPRESSION", section, &COLLECTION::add_copy_table_spec);
}

// crc_table(name [, algorithm = word]).
bool LCF_PARSER::crc_table_symbol(COLLECTION* section) {
    return keyword("CRC_TABLE") && lex_peek() == '(' &&
           table_request("ALGORITHM", section, &COLLECTION::add_crc_table_spec);
}

bool LCF_PARSER::table_request(const char* parameter, COLLECTION* section, TABLE_OPERATOR apply) {
    const SOURCE_POSITION pos = token().position();
    lex();
    lex();
    if (!lex_required(TOK_NAME)) return true;
    const char* name = savestr(text());
    lex();
    const char* word = nullptr;
    if (lex_skip_optional(',')) {
        if (keyword(parameter)) {
            lex();
            if (lex_skip_required('=') && lex_required(TOK_NAME)) {
                word = savestr(text());
                lex();
            }
        } else {
            LCF_ERROR(elnk_syn_bad_scn_prop, text());
            if (!at_end(')')) lex();
        }
    }
    lex_skip_required(')');
    (section->*apply)(name, word, &pos);
    return true;
}

bool LCF_PARSER::unordered_property(PLACEMENT_PROPERTIES& props) {
    if (!keyword("UNORDERED")) return false;
    lex();
    if (lex_skip_required('(')) lex_skip_required(')');
    props.common.set_flag(LF_UNORDERED);
    return true;
}

bool LCF_PARSER::fill_property(COLLECTION* section) {
    if (!keyword("FILL")) return false;
    SOURCE_POSITION pos = token().position();
    uint64_t value = 0;
    unsigned radix = 0;
    unsigned digits = 0;
    if (int_property_literal(value, radix, digits))
        section->add_fill(new FILL_SPEC(value, radix, digits), &pos);
    return true;
}

void LCF_PARSER::optional_fill(LINKER_OBJECT* object) {
    if (code() != '=') return;
    SOURCE_POSITION pos = token().position();
    lex();
    if (!lex_required(TOK_INT)) return;
    const LCF_TOKEN& t = token();
    object->add_fill(new FILL_SPEC(t.value, t.radix, t.digits), &pos);
    lex();
}
