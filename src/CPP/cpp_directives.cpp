// Directives: conditionals, includes, definitions and the rest.
#include <cstring>

#include "CPP/cpp.h"
#include "CPP/cpp_directive.h"
#include "CPP/pp_expression.h"
#include "DIAG/cpp_msgs.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/savestr.h"

struct CPP::DIRECTIVE_NAME {
    std::string_view name;
    DIRECTIVE code;
};

namespace {

// Nested includes each keep their place; far more than anybody nests end in a failed open.
constexpr size_t MAX_INCLUDES = 1000;
constexpr size_t MAX_SHOWN_NAME = 1000;

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && pp_is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && pp_is_blank(text.back())) text.remove_suffix(1);
    return text;
}

// The name in <name> or "name"; empty if the text is neither.
std::string_view include_name(std::string_view text) {
    if (text.size() < 3) return {};
    const char mate = text.front() == '<' ? '>' : '"';
    if ((text.front() != '<' && text.front() != '"') || text.back() != mate) return {};
    return text.substr(1, text.size() - 2);
}

// What a file is that can't be included, or null.
const char* binary_kind(std::string_view text) {
    if (text.substr(0, 4) == "\x7f"
                             "ELF")
        return "ELF";
    if (text.substr(0, 8) == "!<arch>\n") return "archive";
    if (text.size() < 2) return nullptr;
    const unsigned first = static_cast<unsigned char>(text[0]);
    const unsigned second = static_cast<unsigned char>(text[1]);
    auto is_magic = [](unsigned byte) { return byte >= 0xC0 && byte <= 0xC2; };
    const bool is_coff = (first == 0 && is_magic(second)) || (second == 0 && is_magic(first));
    return is_coff ? "COFF" : nullptr;
}

} // namespace

CPP::DIRECTIVE CPP::pp_isdir(const PP_LINE& line, std::string_view& name, size_t& rest) {
    static constexpr DIRECTIVE_NAME names[] = {
        {"if", DIR_IF},           {"ifdef", DIR_IFDEF},   {"ifndef", DIR_IFNDEF},
        {"elif", DIR_ELIF},       {"else", DIR_ELSE},     {"endif", DIR_ENDIF},
        {"include", DIR_INCLUDE}, {"define", DIR_DEFINE}, {"undef", DIR_UNDEF},
        {"line", DIR_LINE},       {"error", DIR_ERROR},   {"warn", DIR_WARN},
        {"pragma", DIR_PRAGMA},
    };
    const std::string_view text = line.text;
    size_t at = 0;
    auto skip_blanks = [&] {
        while (at < text.size() && pp_is_blank(text[at])) ++at;
    };
    skip_blanks();
    if (at >= text.size() || text[at] != '#' || text.substr(at, 2) == "##") return DIR_NONE;
    ++at;
    skip_blanks();
    if (at >= text.size()) return DIR_EMPTY;
    size_t end = at + 1;
    if (pp_is_word(text[at]))
        while (end < text.size() && pp_is_word(text[end])) ++end;
    name = text.substr(at, end - at);
    rest = end;
    for (const DIRECTIVE_NAME& directive : names)
        if (directive.name == name) return directive.code;
    return DIR_UNKNOWN;
}

void CPP::pp_directive(DIRECTIVE code, const PP_LINE& line, std::string_view name, size_t rest) {
    in_directive_ = true;
    expand_ = false;
    const std::string_view text = line.text.substr(rest);
    switch (code) {
    case DIR_NONE:
    case DIR_EMPTY:
        return;
    case DIR_UNKNOWN:
        return cpp_error(DIAG::cpp_bad_dir(__FILE__, __LINE__, name));
    case DIR_ERROR:
        return cpp_error(DIAG::cpp_error_dir(__FILE__, __LINE__, trimmed(text)));
    case DIR_WARN:
        return cpp_error(DIAG::cpp_warn_dir(__FILE__, __LINE__, trimmed(text)));
    case DIR_ENDIF:
        if (conditionals_.empty())
            cpp_error(DIAG::cpp_ifnest(__FILE__, __LINE__));
        else
            conditionals_.pop_back();
        return;
    case DIR_ELIF:
    case DIR_ELSE:
        return pp_elif_else(code);
    case DIR_INCLUDE:
        start_tokens(line, rest);
        return pp_include(trimmed(text));
    case DIR_PRAGMA:
        return write_line(line, true);
    default:
        break;
    }
    start_tokens(line, rest);
    if (ended_) return;
    switch (code) {
    case DIR_DEFINE:
        return pp_define();
    case DIR_UNDEF:
        return pp_undef();
    case DIR_LINE:
        return pp_line();
    default:
        return pp_if(code);
    }
}

// The name that a directive asks for, or null. The rest of the line is of no interest.
const PP_TOKEN* CPP::single_name() const {
    return !tokens_.empty() && tokens_[0].kind == PP_NAME ? &tokens_[0] : nullptr;
}

void CPP::pp_if(DIRECTIVE code) {
    const unsigned line = source_.line();
    bool live = false;
    if (code == DIR_IF) {
        live = pp_condition();
    } else if (const PP_TOKEN* name = single_name()) {
        live = (macros_.find(name->str()) != nullptr) == (code == DIR_IFDEF);
    } else {
        cpp_error(DIAG::cpp_bad_ifdef(__FILE__, __LINE__));
    }
    conditionals_.push_back({line, live, false});
    if (!live) pp_skip();
}

// The end of a live group.
void CPP::pp_elif_else(DIRECTIVE code) {
    if (conditionals_.empty() || conditionals_.back().else_seen)
        cpp_error(DIAG::cpp_ifnest(__FILE__, __LINE__));
    if (conditionals_.empty()) return;
    if (code == DIR_ELSE) conditionals_.back().else_seen = true;
    pp_skip();
}

// Skips lines up to the next group that is live, or behind the #endif. Only directives are looked
// at.
void CPP::pp_skip() {
    unsigned depth = 0;
    for (std::string_view line = source_.peek(); !line.empty(); line = source_.peek()) {
        size_t at = 0;
        while (at < line.size() && pp_is_blank(line[at])) ++at;
        if (at >= line.size() || line[at] != '#') {
            source_.skip();
            continue;
        }
        memory_.release();
        PP_LINE logical;
        source_.read(logical, &memory_);
        std::string_view name;
        size_t rest = 0;
        const DIRECTIVE code = pp_isdir(logical, name, rest);
        if (skip_directive(code, logical, rest, depth)) return;
    }
    if (ended_) return;
    cpp_error(DIAG::cpp_open_if(__FILE__, __LINE__, conditionals_.back().line));
    conditionals_.clear();
}

// True if the skipping ends here.
bool CPP::skip_directive(DIRECTIVE code, const PP_LINE& line, size_t rest, unsigned& depth) {
    if (code == DIR_IF || code == DIR_IFDEF || code == DIR_IFNDEF) {
        ++depth;
        return false;
    }
    if (code != DIR_ENDIF && code != DIR_ELSE && code != DIR_ELIF) return false;
    if (depth > 0) {
        if (code == DIR_ENDIF) --depth;
        return false;
    }
    if (code == DIR_ENDIF) {
        conditionals_.pop_back();
        return true;
    }
    CONDITIONAL& group = conditionals_.back();
    if (group.else_seen) {
        cpp_error(DIAG::cpp_ifnest(__FILE__, __LINE__));
        return false;
    }
    group.else_seen = code == DIR_ELSE;
    if (group.taken) return false;
    bool live = code == DIR_ELSE;
    if (code == DIR_ELIF) {
        start_tokens(line, rest);
        live = pp_condition();
        if (ended_) return true;
    }
    group.taken = live;
    return live;
}

bool CPP::pp_condition() {
    in_directive_ = true;
    const TOKEN_LIST tokens = expand_all();
    PP_VALUE value;
    if (ended_ || !pp_evaluate(tokens, value, *this)) return false;
    for (const std::string& name : value.undefined)
        cpp_error(DIAG::cpp_undef_sym(__FILE__, __LINE__, name.substr(0, MAX_SHOWN_NAME)));
    return value.value != 0;
}

// What is left of the line with macros expanded, and `defined` answered.
CPP::TOKEN_LIST CPP::expand_all() {
    TOKEN_LIST tokens(&memory_);
    PP_TOKEN t;
    expand_ = true;
    while (pp_token(t)) {
        if (t.kind == PP_NAME && t.str() == "defined") {
            PP_TOKEN name;
            const bool paren = is_next(PP_LPAREN);
            expand_ = false;
            if (paren) next_raw(name);
            const bool valid = next_raw(name) && name.kind == PP_NAME &&
                               (!paren || (is_next(PP_RPAREN) && next_raw(t)));
            expand_ = true;
            t.kind = valid ? PP_NUMBER : PP_OTHER;
            t.text = valid && macros_.find(name.str()) != nullptr ? "1" : "0";
            t.length = 1;
        }
        tokens.push_back(t);
    }
    expand_ = false;
    return tokens;
}

void CPP::pp_include(std::string_view text) {
    std::string_view name = include_name(text);
    if (name.empty()) {
        PP_TOKEN t;
        expand_ = true;
        std::string joined;
        while (pp_token(t)) joined += t.str();
        if (ended_) return;
        text = keep(joined);
        name = include_name(text);
    }
    if (name.empty())
        cpp_error(DIAG::cpp_bad_incl(__FILE__, __LINE__));
    else
        include_file(name, text.front() == '<');
}

void CPP::include_file(std::string_view name, bool angle) {
    const char* path = nullptr;
    if (name.find('\0') == name.npos && source_.depth() < MAX_INCLUDES)
        path = client_->find_h_file(savestr(name), source_.path(), angle);
    FHM_FILE* file = path != nullptr ? fhm_open_input(path) : nullptr;
    if (file == nullptr || !file->has_contents()) {
        if (file != nullptr) fhm_close(file);
        const std::string shown = (angle ? "<" : "\"") + std::string(name) + (angle ? ">" : "\"");
        cpp_error(DIAG::cpp_find_include(__FILE__, __LINE__, shown));
        return;
    }
    const auto bytes = file->contents();
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    fhm_close(file); // the mapping of an input stays
    if (const char* kind = binary_kind(text))
        cpp_error(DIAG::cpp_bad_include_file(__FILE__, __LINE__, kind, name));
    else
        source_.push(savestr(path), text);
}

void CPP::pp_define() {
    const PP_TOKEN* name = single_name();
    if (name == nullptr) return cpp_error(DIAG::cpp_mac_noname(__FILE__, __LINE__));
    if (name->str() == "defined")
        return cpp_error(DIAG::cpp_std_redef(__FILE__, __LINE__, name->str()));
    MACDEF macro;
    macro.name = name->str();
    std::vector<std::string_view> names;
    size_t at = 1;
    if (tokens_.size() > 1 && tokens_[1].kind == PP_LPAREN && tokens_[1].gap == 0) {
        if (!parameters(names, macro.name, at)) return;
        macro.params = static_cast<int>(names.size());
    }
    for (size_t i = at; i < tokens_.size(); ++i) {
        PP_TOKEN& t = tokens_[i];
        if (t.kind != PP_NAME) continue;
        for (size_t p = 0; p < names.size(); ++p) {
            if (names[p] != t.str()) continue;
            t.kind = PP_PARAM;
            t.param = static_cast<uint16_t>(p);
        }
    }
    macro.body = PP_TOKENS(tokens_).subspan(at);
    if (pp_check_ops(macro.body)) pp_redefine(macro);
}

// The list of parameters behind a macro's name; leaves `at` behind it.
bool CPP::parameters(std::vector<std::string_view>& names, std::string_view macro, size_t& at) {
    auto bad = [&] {
        cpp_error(DIAG::cpp_bad_parm(__FILE__, __LINE__, macro));
        return false;
    };
    auto kind = [&](size_t i) { return i < tokens_.size() ? tokens_[i].kind : uint16_t{0}; };
    ++at;
    if (kind(at) == PP_RPAREN) {
        ++at;
        return true;
    }
    for (;;) {
        if (kind(at) != PP_NAME) return bad();
        const std::string_view name = tokens_[at++].str();
        for (std::string_view other : names) {
            if (other != name) continue;
            cpp_error(DIAG::cpp_dup_parm(__FILE__, __LINE__, name));
            return false;
        }
        if (names.size() == MAX_PARAMS) {
            cpp_error(DIAG::cpp_max_parm(__FILE__, __LINE__, macro));
            return false;
        }
        names.push_back(name);
        const uint16_t next = kind(at++);
        if (next == PP_RPAREN) return true;
        if (next != PP_COMMA) return bad();
    }
}

bool CPP::pp_check_ops(PP_TOKENS body) {
    for (size_t i = 0; i < body.size(); ++i) {
        if (body[i].kind == PP_STRINGIZE &&
            (i + 1 == body.size() || body[i + 1].kind != PP_PARAM)) {
            cpp_error(DIAG::cpp_need_parm(__FILE__, __LINE__));
            return false;
        }
        if (body[i].kind == PP_PASTE &&
            (i == 0 || i + 1 == body.size() || body[i + 1].kind == PP_PASTE)) {
            cpp_error(DIAG::cpp_catsyntax(__FILE__, __LINE__));
            return false;
        }
    }
    return true;
}

// The new definition stands, but another body than before is worth a warning.
void CPP::pp_redefine(const MACDEF& macro) {
    if (const MACDEF* old = macros_.find(macro.name)) {
        if (old->standard)
            cpp_error(DIAG::cpp_std_redef(__FILE__, __LINE__, macro.name));
        else if (!old->same_body(macro))
            cpp_error(DIAG::cpp_redef(__FILE__, __LINE__, macro.name));
    }
    macros_.define(macro);
}

void CPP::pp_undef() {
    if (const PP_TOKEN* name = single_name())
        pp_remove_def(name->str());
    else
        cpp_error(DIAG::cpp_bad_undef(__FILE__, __LINE__));
}

void CPP::pp_line() {
    if (line_operands(tokens_)) return;
    const TOKEN_LIST tokens = expand_all();
    if (!ended_ && !line_operands(tokens)) cpp_error(DIAG::cpp_bad_line(__FILE__, __LINE__));
}

bool CPP::line_operands(PP_TOKENS tokens) {
    PP_VALUE number;
    if (tokens.empty() || tokens[0].kind != PP_NUMBER || !pp_integer(tokens[0].str(), number))
        return false;
    if (number.value < 0 || number.value > INT32_MAX) return false;
    if (tokens.size() > 1) {
        if (tokens[1].kind != PP_STRING) return false;
        const std::string_view quoted = tokens[1].str();
        std::string name;
        for (size_t i = 1; i + 1 < quoted.size(); ++i) {
            if (quoted[i] == '\\' && i + 2 < quoted.size()) ++i;
            name += quoted[i];
        }
        source_.set_file(savestr(name));
    }
    source_.set_next_line(static_cast<unsigned>(number.value));
    return true;
}
