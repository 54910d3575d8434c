// The MEMORY directive: ranges, their properties, and ALIAS pairs.
#include <vector>

#include "ELFLNK/expr/expression.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/parse_lcf/lcf_errors.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "ELFLNK/target/target.h"
#include "UTIL/savestr.h"

namespace {

enum SPECIFIER {
    SPEC_ORIGIN,
    SPEC_LENGTH,
    SPEC_FILL,
    SPEC_VFILL,
    SPEC_ATTR,
    SPEC_ECC,
    SPEC_CREGISTER
};

// The long form is a keyword, the short ones are small letters only.
struct SPECIFIER_NAME {
    const char* word;
    const char* short_form;
    const char* shorter_form;
    SPECIFIER specifier;
};

constexpr SPECIFIER_NAME specifiers[] = {
    {"ORIGIN", "org", "o", SPEC_ORIGIN},
    {"LENGTH", "len", "l", SPEC_LENGTH},
    {"FILL", "f", "f", SPEC_FILL},
    {"VFILL", "vf", "vf", SPEC_VFILL},
    {"ATTR", nullptr, nullptr, SPEC_ATTR},
    {"ECC", nullptr, nullptr, SPEC_ECC},
    {"CREGISTER", nullptr, nullptr, SPEC_CREGISTER},
};

bool is_short_form(const SPECIFIER_NAME& s, const std::string& text) {
    return s.short_form != nullptr && (text == s.short_form || text == s.shorter_form);
}

} // namespace

void LCF_PARSER::memory_directive() {
    latch_ = false;
    set_mode(MODE_MEMORY);
    lex();
    int page = 0;
    if (lex_skip_required('{'))
        while (!at_end('}')) memory_item(page);
    clear_mode(MODE_MEMORY);
    lex_skip_required('}');
    latch_ = false;
}

void LCF_PARSER::memory_item(int& page) {
    if (keyword("PAGE")) return memory_page(page);
    if (keyword("ALIAS")) return memory_alias(page);
    if (code() == TOK_NAME) {
        memory_map->add(memory_range(page));
        return;
    }
    LCF_ERROR(elnk_syn_bad_memdir, text());
    lex();
}

void LCF_PARSER::memory_page(int& page) {
    lex();
    if (!lex_required(TOK_INT)) return;
    page = static_cast<int>(token().value);
    lex();
    lex_skip_required(':');
}

// The ranges of the block are one memory seen at two addresses; their common length stands behind
// it.
void LCF_PARSER::memory_alias(int page) {
    std::vector<MEMORY_RANGE*> members;
    lex();
    if (!lex_skip_required('{')) return;
    while (!at_end('}')) {
        if (code() != TOK_NAME) {
            LCF_ERROR(elnk_syn_bad_memdir, text());
            lex();
            continue;
        }
        SOURCE_POSITION pos = token().position();
        MEMORY_RANGE* range = memory_range(page);
        if (members.size() == 2) {
            DIAG::elnk_memrng_alias_count diag(__FILE__, __LINE__);
            syntax_error(diag, pos);
            continue;
        }
        members.push_back(range);
        range->add_alias(members.front(), &pos);
    }
    lex_skip_required('}');
    SOURCE_POSITION pos = token().position();
    uint64_t length = 0;
    bool has_length = false;
    if (keyword("LENGTH") || keyword_cs("len") || keyword_cs("l")) {
        lex();
        lex_skip_optional('=');
        has_length = expr_const_expr(length);
    } else {
        LCF_ERROR(elnk_syn_bad_mrng_spec, text());
    }
    lex_skip_optional(',');
    for (MEMORY_RANGE* range : members) {
        if (has_length) range->add_length(length, &pos);
        memory_map->add(range);
    }
}

MEMORY_RANGE* LCF_PARSER::memory_range(int page) {
    SOURCE_POSITION pos = token().position();
    auto* range = new MEMORY_RANGE(savestr(text()), &pos);
    range->add_page(page, &pos);
    lex();
    if (code() == '(') memory_attr(range);
    lex_skip_optional(':');
    while (!at_end('}')) {
        if (lex_skip_optional(',')) continue;
        if (code() == TOK_NAME) {
            if (!memory_specifier(range)) break;
        } else {
            LCF_ERROR(elnk_syn_bad_mrng_spec, text());
            lex();
        }
    }
    return range;
}

// False if the name begins no specifier: it is the next range.
bool LCF_PARSER::memory_specifier(MEMORY_RANGE* range) {
    const SPECIFIER_NAME* found = nullptr;
    for (const SPECIFIER_NAME& s : specifiers)
        if (keyword(s.word) || is_short_form(s, token().text)) found = &s;
    if (found == nullptr) return false;
    if (found->specifier == SPEC_CREGISTER && !Target->is_cregister_allowed()) return false;
    SOURCE_POSITION pos = token().position();
    uint64_t value = 0;
    switch (found->specifier) {
    case SPEC_FILL:
    case SPEC_VFILL:
        memory_fill(range, found->specifier == SPEC_VFILL, pos);
        return true;
    case SPEC_CREGISTER:
        if (int_property_literal(value)) range->set_cregister(static_cast<int>(value));
        return true;
    default:
        break;
    }
    lex();
    lex_skip_optional('=');
    if (found->specifier == SPEC_ATTR)
        memory_attr(range);
    else if (found->specifier == SPEC_ECC)
        ecc_spec(range);
    else if (expr_const_expr(value))
        found->specifier == SPEC_ORIGIN ? range->add_origin(value, &pos)
                                        : range->add_length(value, &pos);
    return true;
}

void LCF_PARSER::memory_fill(MEMORY_RANGE* range, bool vfill, const SOURCE_POSITION& pos) {
    uint64_t value = 0;
    unsigned radix = 0;
    unsigned digits = 0;
    if (int_property_literal(value, radix, digits))
        range->add_fill(new FILL_SPEC(value, radix, digits), &pos, vfill);
}

void LCF_PARSER::memory_attr(MEMORY_RANGE* range) {
    if (!lex_skip_required('(')) return;
    SOURCE_POSITION pos = token().position();
    uint32_t attrs = 0;
    if (code() == TOK_NAME && MEMORY_RANGE::encode_attr(token().text.c_str(), &attrs))
        range->add_attrs(attrs, &pos);
    else
        LCF_ERROR(elnk_syn_bad_mattr_spec, text());
    if (code() != ')') lex();
    lex_skip_required(')');
}
