// The bodies of output sections: specifications of input sections, and assignments between them.

#include "ELFLNK/expr/expr_mgr.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/input_file.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/object/space.h"
#include "ELFLNK/parse_lcf/lcf_errors.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "UTIL/savestr.h"

bool LCF_PARSER::section_composition(COLLECTION* section) {
    if (code() == ':' && lex_peek() == '{') lex();
    if (code() != '{') return false;
    latch_ = false;
    lex();
    unsigned spec_number = 0;
    while (!at_end('}'))
        if (!lex_skip_optional(',')) section_item(section, spec_number);
    lex_skip_required('}');
    return true;
}

void LCF_PARSER::section_item(COLLECTION* section, unsigned& spec_number) {
    if (code() == '.') return assignment_spec(section);
    if (code() == TOK_NAME) {
        int next = lex_peek();
        if (next == '=' || (next == '(' && keyword("WEAK"))) return assignment_spec(section);
    }
    if (code() == TOK_NAME || code() == '*' || code() == '-')
        return input_section_spec(section, spec_number);
    LCF_ERROR(elnk_syn_bad_scn_comp, text());
    lex();
}

// With dot in it an assignment has a place in the layout, without it only an object that it belongs
// to.
void LCF_PARSER::assignment_spec(COLLECTION* section) {
    SOURCE_POSITION pos = token().position();
    EXPRESSION* expr = expr_assignment();
    if (expr == nullptr) return;
    expr->set_seq_id(next_seq_id());
    if (expr->has_dot())
        add_dot_expr_to_collection(section, expr, pos);
    else
        section->add_user_assignment(expr);
}

void LCF_PARSER::add_dot_expr_to_collection(COLLECTION* section, EXPRESSION* expr,
                                            const SOURCE_POSITION& pos) {
    auto* place = new DOT_EXPRESSION(expr, &pos);
    section->add_member(place, true);
    if (expr->is_assign_to_dot())
        get_expr_mgr()->add_refs(expr);
    else
        place->add_user_assignment(expr); // the symbol's value is that of its place
}

void LCF_PARSER::add_assignment_to_object(LINKER_OBJECT* object, const char* symbol, int op,
                                          bool weak, const SOURCE_POSITION& pos) {
    auto* left =
        new EXPRESSION(EXPR_OP_SYMBOL, symbol, weak ? EXPR_BIND_WEAK : EXPR_BIND_STRONG, &pos);
    auto* right = new EXPRESSION(static_cast<EXPR_OPCODE>(op), &pos);
    auto* expr = new EXPRESSION(EXPR_OP_ASSIGN, left, right, &pos);
    expr->set_seq_id(next_seq_id());
    object->add_user_assignment(expr);
}

void LCF_PARSER::input_section_spec(COLLECTION* section, unsigned& spec_number) {
    SOURCE_POSITION pos = token().position();
    auto* spec = new SECTION_SPEC(savestrf("%s.%d", section->name(), ++spec_number), &pos);
    spec->set_order_number(next_seq_id());
    input_section_filespec(spec);
    input_section_lib_members(spec);
    input_section_list(spec);
    optional_fill(spec);
    input_section_symbols(spec);
    section->add_member(spec, true);
}

// A name, a pattern, or a library in one of the forms of -l.
void LCF_PARSER::input_section_filespec(SECTION_SPEC* spec) {
    SOURCE_POSITION pos = token().position();
    std::string name;
    bool searched = false;
    if (code() == '-') {
        if (!input_section_library(name)) return;
        searched = true;
    } else if (code() == TOK_NAME || code() == '*') {
        name = text();
        lex();
        searched = code() == '<';
    } else {
        LCF_ERROR(elnk_syn_bad_filespec, text());
        lex();
        return;
    }
    if (name.empty()) return;
    const char* saved = savestr(name);
    if (FILTER::has_wildcards(saved))
        spec->add_file_name(saved);
    else
        attach_file(spec, saved, searched, pos);
}

// -l name, -lname, -l=name, --library=name, --library name; leaves the token behind the name.
bool LCF_PARSER::input_section_library(std::string& name) {
    lex();
    if (code() == '-') {
        lex();
        if (keyword_prefix("library")) {
            lex();
            lex_skip_optional('=');
            name = text();
        } else {
            name.clear();
        }
    } else if (code() == TOK_NAME && token().text == "l") {
        lex();
        lex_skip_optional('=');
        name = text();
    } else if (code() == TOK_NAME && token().text[0] == 'l') {
        name = token().text.substr(1);
    }
    if (code() != TOK_NAME || name.empty()) {
        LCF_ERROR(elnk_syn_bad_dashl_arg);
        if (!at_end('}')) lex();
        return false;
    }
    lex();
    return true;
}

void LCF_PARSER::attach_file(SECTION_SPEC* spec, const char* name, bool searched,
                             const SOURCE_POSITION& pos) {
    const char* path = file_manager.find_specific_file(name, searched, false);
    INPUT_FILE* file = nullptr;
    if (path == nullptr) {
        file = file_manager.lookup_file_by_basename(name);
        if (file == nullptr) DIAG_REPORT_AT(&pos, elnk_nofile, name);
    } else {
        file = file_manager.lookup_file_by_name(path);
        if (file == nullptr) {
            INPUT_FILE unknown(path, &pos);
            file = unknown.identify();
            if (file != nullptr && !file->is_object_file() && !file->is_archive_file()) {
                DIAG::elnk_syn_bad_filetype diag(__FILE__, __LINE__, name);
                syntax_error(diag, pos);
                file = nullptr;
            }
            if (file != nullptr) file = file_manager.process_file(file, false);
        }
    }
    if (file != nullptr)
        spec->add_objfile(file);
    else
        spec->add_file_name(name);
}

void LCF_PARSER::input_section_lib_members(SECTION_SPEC* spec) {
    if (!lex_skip_optional('<')) return;
    while (!at_end('>')) {
        if (lex_skip_optional(',')) continue;
        if (code() == '}') break;
        if (code() == TOK_NAME)
            spec->add_ar_member_name(savestr(text()));
        else
            LCF_ERROR(elnk_syn_bad_lmember, text());
        lex();
    }
    lex_skip_required('>');
}

void LCF_PARSER::input_section_list(SECTION_SPEC* spec) {
    if (!lex_skip_optional('(')) return;
    while (!at_end(')')) {
        if (lex_skip_optional(',')) continue;
        if (code() == '}') break;
        if (code() == TOK_NAME && !token().text.empty())
            spec->add_section_name(savestr(text()));
        else
            LCF_ERROR(elnk_syn_bad_iscn, text());
        lex();
    }
    lex_skip_required(')');
}

void LCF_PARSER::input_section_symbols(SECTION_SPEC* spec) {
    if (!lex_skip_optional('{')) return;
    while (!at_end('}')) {
        if (lex_skip_optional(',') || section_symbol(spec)) continue;
        LCF_ERROR(elnk_syn_bad_iscn_sym, text());
        lex();
    }
    lex_skip_required('}');
}
