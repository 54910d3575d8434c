// The top level of a command file, and how errors are reported and recovered from.
#include "ELFLNK/parse_lcf/lcf_parser.h"

#include <utility>

#include "ELFLNK/expr/expression.h"
#include "ELFLNK/file/command_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/hints.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/parse_lcf/lcf_cpp_source.h"
#include "ELFLNK/parse_lcf/lcf_errors.h"
#include "ELFLNK/parse_lcf/version_parser.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"

namespace {

// Deeper than any file that people write, and shallow enough for the stack.
constexpr unsigned max_nesting = 200;

// The text of an input file, mapped when the parse begins.
class LCF_FILE_SOURCE : public LCF_SOURCE {
  public:
    explicit LCF_FILE_SOURCE(COMMAND_FILE* file) : file_(file) {}
    std::string_view next_line() override {
        if (!lines_) lines_ = std::make_unique<LCF_TEXT_SOURCE>(file_->text());
        return lines_->next_line();
    }

  private:
    COMMAND_FILE* file_;
    std::unique_ptr<LCF_TEXT_SOURCE> lines_;
};

// A parser of the file's text, with the preprocessor in front of it.
template <class PARSER>
PARSER* new_parser(COMMAND_FILE* file) {
    if (global_opts->isopt(OPT_disable_pp))
        return new PARSER(std::make_unique<LCF_FILE_SOURCE>(file), file->name());
    auto source = std::make_unique<LCF_CPP_SOURCE>(file->name(), file->text());
    LCF_CPP_SOURCE* cpp = source.get();
    auto* parser = new PARSER(std::move(source), file->name());
    cpp->set_parser(parser);
    return parser;
}

} // namespace

uint32_t LCF_PARSER::next_seq_id_m = 1;
bool LCF_PARSER::sections_seen_m = false;

LCF_PARSER* new_LCF_PARSER(COMMAND_FILE* file) {
    return new_parser<LCF_PARSER>(file);
}

VERSION_PARSER* new_VERSION_PARSER(COMMAND_FILE* file) {
    return new_parser<VERSION_PARSER>(file);
}

LCF_PARSER::LCF_PARSER(std::unique_ptr<LCF_SOURCE> source, const char* file)
    : LCF_LEXER(std::move(source), file) {}

void LCF_PARSER::parse() {
    lex();
    while (code() != TOK_EOF) {
        clear_modes();
        top_level_item();
    }
}

void LCF_PARSER::top_level_item() {
    static constexpr struct {
        std::string_view word;
        void (LCF_PARSER::*parse)();
    } directives[] = {
        {"MEMORY", &LCF_PARSER::memory_directive},
        {"SECTIONS", &LCF_PARSER::sections_directive},
        {"ECC", &LCF_PARSER::ecc_directive},
        {"VERSION", &LCF_PARSER::version_directive},
    };
    if (code() == '-') return option();
    if (code() == TOK_NAME) {
        for (const auto& directive : directives)
            if (keyword_cs(directive.word)) return (this->*directive.parse)();
        return filename_or_assign();
    }
    LCF_ERROR(elnk_syn_bad_dir, text());
    if (code() == '}' || code() == ';') latch_ = false;
    lex();
}

void LCF_PARSER::option() {
    latch_ = false;
    lex_option();
    const char* word = savestr(text());
    if (!process_option(word)) {
        DIAG::elnk_syn_bad_option_lcf message(__FILE__, __LINE__, word);
        if (DIAGNOSTIC::verbose_m) message.set_hint(option_hint(word));
        syntax_error(message);
    }
    lex();
}

void LCF_PARSER::filename_or_assign() {
    int next = lex_peek();
    if (next == '=' || (next == '(' && keyword("WEAK"))) {
        latch_ = false;
        SOURCE_POSITION pos = token().position();
        EXPRESSION* expr = expr_assignment();
        if (expr != nullptr && expr->has_dot()) {
            DIAG_REPORT_AT(&pos, elnk_bad_expr); // dot is a place in an output section
        } else if (expr != nullptr) {
            expr->set_seq_id(next_seq_id());
            root_collection->add_user_assignment(expr);
        }
        return;
    }
    if (!latch_) add_input_file(savestr(text()), token().position());
    lex();
}

bool LCF_PARSER::process_option(const char* text) {
    return global_opts->process_option(text, nullptr);
}

void LCF_PARSER::add_input_file(const char* name, const SOURCE_POSITION& pos) {
    file_manager.add_file(name, &pos, false, false);
}

const char* LCF_PARSER::option_argument() {
    std::string word;
    if (next_word(word) && !word.empty()) return savestr(word);
    LCF_ERROR(elnk_syn_missing_option_lcf);
    return nullptr;
}

void LCF_PARSER::define_ppsym(const char* name, const char* value) {
    source().define_ppsym(name, value);
}

void LCF_PARSER::undefine_ppsym(const char* name) {
    source().undefine_ppsym(name);
}

void LCF_PARSER::set_srcloc(const char* file, unsigned line) {
    set_location(file, line);
    latch_ = false;
}

void LCF_PARSER::lexical_error(DIAGNOSTIC& diag, const SOURCE_POSITION& pos) {
    syntax_error(diag, pos);
}

void LCF_PARSER::syntax_error(DIAGNOSTIC& diag, const SOURCE_POSITION& pos) {
    if (latch_) return;
    diag.set_src(&pos);
    bool is_error = diag.severity() >= dc_ERROR;
    show_error(diag);
    latch_ = is_error;
}

void LCF_PARSER::show_error(DIAGNOSTIC& diag) {
    diag.report();
}

void LCF_PARSER::unexpected_eof() {
    LCF_ERROR(elnk_syn_unexpected_eof);
}

// A single stray token in front of the required one costs one message, and the parse goes on.
bool LCF_PARSER::lex_required(int wanted) {
    if (code() == wanted) return true;
    if (code() == TOK_EOF) {
        unexpected_eof();
        return false;
    }
    LCF_ERROR(elnk_syn_bad_token, LCF_TOKEN::name(wanted), text());
    if (lex_peek() != wanted) return false;
    lex();
    latch_ = false;
    return true;
}

bool LCF_PARSER::lex_skip_required(int wanted) {
    if (!lex_required(wanted)) return false;
    lex();
    return true;
}

bool LCF_PARSER::lex_skip_optional(int wanted) {
    if (code() != wanted) return false;
    lex();
    return true;
}

// Keywords match in all capitals or all small letters: the first letter of the text decides.
bool LCF_PARSER::keyword_compare(std::string_view text, std::string_view word, bool prefix) {
    if (text.empty() || text.size() > word.size()) return false;
    if (!prefix && text.size() != word.size()) return false;
    bool small = text[0] >= 'a' && text[0] <= 'z';
    for (size_t i = 0; i < text.size(); ++i) {
        char c = word[i];
        if (small && c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
        if (!small && c >= 'a' && c <= 'z') c = static_cast<char>(c - ('a' - 'A'));
        if (text[i] != c) return false;
    }
    return true;
}

bool LCF_PARSER::keyword(std::string_view word) const {
    return code() == TOK_NAME && keyword_compare(token().text, word, false);
}

bool LCF_PARSER::keyword_prefix(std::string_view word) const {
    return code() == TOK_NAME && keyword_compare(token().text, word, true);
}

bool LCF_PARSER::keyword_cs(std::string_view word) const {
    return code() == TOK_NAME && token().text == word;
}

bool LCF_PARSER::enter_nesting() {
    if (nesting_ >= max_nesting) return false;
    ++nesting_;
    return true;
}
