// Version definitions:
//
//     NAME { GLOBAL: pattern; ... LOCAL: pattern; ... } PREDECESSOR;
//
// in a VERSION block of a command file, or as a script of their own. A colon is always punctuation
// here, so that "GLOBAL:name" needs no blank.
#include "ELFLNK/parse_lcf/lcf_errors.h"
#include "ELFLNK/parse_lcf/version_parser.h"
#include "ELFLNK/symver/symver_table.h"
#include "UTIL/savestr.h"

void LCF_PARSER::version_directive() {
    latch_ = false;
    set_mode(MODE_VERSION);
    lex();
    if (lex_skip_required('{'))
        while (!at_end('}')) version_definition();
    clear_mode(MODE_VERSION);
    lex_skip_required('}');
    latch_ = false;
}

void LCF_PARSER::version_definition() {
    if (code() != TOK_NAME) {
        LCF_ERROR(elnk_syn_bad_vername, text());
        return skip_definition();
    }
    latch_ = false;
    const SOURCE_POSITION pos = token().position();
    VER_DEF* verdef = symver_table.new_verdef(text().c_str(), &pos);
    lex();
    if (!lex_skip_required('{')) return;
    bool empty = true;
    while (is_version_clause()) {
        empty = false;
        const bool is_global = keyword("GLOBAL");
        const SOURCE_POSITION clause = token().position();
        lex();
        lex();
        version_symbols(is_global ? verdef : symver_table.local_verdef(&clause));
    }
    if (empty && code() == '}') {
        DIAG::elnk_syn_empty_verdef diag(__FILE__, __LINE__);
        syntax_error(diag, pos);
    }
    if (!lex_skip_required('}')) {
        while (!at_end('}')) lex();
        lex_skip_optional('}');
    }
    if (code() == TOK_NAME && lex_peek() == ';') {
        const SOURCE_POSITION at = token().position();
        verdef->add_predecessor(text().c_str(), &at);
        lex();
    }
    lex_skip_required(';');
}

// A definition without a name: its braces, and the ";" behind them.
void LCF_PARSER::skip_definition() {
    if (code() == '{')
        while (!at_end('}')) lex();
    lex();
    lex_skip_optional(';');
}

bool LCF_PARSER::is_version_clause() {
    return (keyword("GLOBAL") || keyword("LOCAL")) && lex_peek() == ':';
}

void LCF_PARSER::version_symbols(VER_DEF* verdef) {
    while (code() == TOK_NAME && !is_version_clause()) {
        const SOURCE_POSITION pos = token().position();
        if (token().text.empty())
            LCF_ERROR(elnk_syn_bad_vername, text());
        else
            verdef->add_symbol_name(text().c_str(), &pos);
        lex();
        if (!lex_skip_required(';')) return;
    }
}

void VERSION_PARSER::parse() {
    lex();
    if (keyword_cs("VERSION")) return version_directive();
    set_mode(MODE_VERSION);
    while (code() != TOK_EOF) version_definition();
    clear_mode(MODE_VERSION);
}
