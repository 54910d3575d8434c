// Expansion of macros.
//
// Tokens are read from a stack of frames: the line at the bottom, above it the bodies of macros
// being expanded. A macro isn't expanded again inside of itself; its name, once met there, is
// marked and stays as it is. An argument is expanded alone, behind a fence, before it goes into the
// body; next to "#" or "##" it goes there as it stands.
#include <cstring>

#include "CPP/cpp.h"
#include "CPP/cpp_directive.h"
#include "DIAG/cpp_msgs.h"

namespace {

// Tokens that the expansion of one line, and of all lines, may read: the bounds of texts that
// double with each line. No file that people write comes near them.
constexpr size_t MAX_LINE_WORK = size_t{1} << 18;
constexpr size_t MAX_WORK = size_t{1} << 27;

} // namespace

// The tokens of the line from `offset` on become those to read.
void CPP::start_tokens(const PP_LINE& line, size_t offset) {
    while (!frames_.empty()) drop_frame();
    tokens_.clear();
    pp_tokenize(line, offset, tokens_, *this);
    token_count_ = tokens_.size();
    line_work_ = 0;
    owed_gap_ = 0;
    if (token_count_ > MAX_TOKENS) {
        cpp_fatal(DIAG::cpp_too_many_tokens_in_this_macro_expansion(__FILE__, __LINE__));
        tokens_.clear();
    }
    frames_.push_back({nullptr, tokens_.data(), tokens_.data() + tokens_.size(), false});
}

std::string_view CPP::keep(std::string_view text) {
    char* copy = static_cast<char*>(memory_.allocate(text.size() + 1, 1));
    if (!text.empty()) std::memcpy(copy, text.data(), text.size());
    return {copy, text.size()};
}

void CPP::drop_frame() {
    if (frames_.back().macro != nullptr) frames_.back().macro->active = false;
    frames_.pop_back();
}

// The next token as it stands; false at the end of the line, or of an argument.
bool CPP::next_raw(PP_TOKEN& token) {
    for (;;) {
        FRAME& top = frames_.back();
        if (top.at != top.end) {
            token = *top.at++;
            ++work_;
            if (++line_work_ > MAX_LINE_WORK || work_ > MAX_WORK)
                cpp_fatal(DIAG::cpp_too_many_tokens_in_this_macro_expansion(__FILE__, __LINE__));
            return !ended_;
        }
        if (frames_.size() == 1 || top.fence) return false;
        drop_frame();
    }
}

// Is the next token of that kind? Takes nothing.
bool CPP::is_next(uint16_t kind) const {
    for (size_t i = frames_.size(); i-- > 0;) {
        if (frames_[i].at != frames_[i].end) return frames_[i].at->kind == kind;
        if (frames_[i].fence) return false;
    }
    return false;
}

// The tokens of the next line go behind those of this one.
bool CPP::more_tokens() {
    if (in_directive_) return false;
    while (source_.read(more_, &memory_)) {
        std::string_view name;
        size_t rest = 0;
        if (pp_isdir(more_, name, rest) != DIR_NONE) {
            cpp_error(DIAG::cpp_dir_in_mac(__FILE__, __LINE__));
            continue;
        }
        tokens_.clear(); // all taken
        pp_tokenize(more_, 0, tokens_, *this);
        if (!tokens_.empty() && tokens_[0].gap == 0) tokens_[0].gap = 1;
        token_count_ += tokens_.size();
        if (token_count_ > MAX_TOKENS) {
            cpp_fatal(DIAG::cpp_too_many_tokens_in_this_macro_expansion(__FILE__, __LINE__));
            return false;
        }
        frames_[0].at = tokens_.data();
        frames_[0].end = tokens_.data() + tokens_.size();
        if (!tokens_.empty()) return true;
    }
    return false;
}

// The next token of the expanded text.
bool CPP::pp_token(PP_TOKEN& token) {
    while (next_raw(token)) {
        if (token.gap == 0) token.gap = owed_gap_;
        owed_gap_ = 0;
        if (!expand_ || token.kind != PP_NAME || token.no_expand) return true;
        MACDEF* macro = macros_.find(token.str());
        if (macro == nullptr) return true;
        if (macro->active) {
            token.no_expand = true;
            return true;
        }
        if (!pp_invoke(macro, token)) return !ended_;
    }
    return false;
}

bool CPP::push_frame(MACDEF* macro, PP_TOKENS tokens, bool fence) {
    if (frames_.size() >= MAX_FRAMES) {
        cpp_fatal(DIAG::cpp_max_mac_nest(__FILE__, __LINE__));
        return false;
    }
    if (macro != nullptr) macro->active = true;
    frames_.push_back({macro, tokens.data(), tokens.data() + tokens.size(), fence});
    return true;
}

// The macro's expansion becomes what is read next; false if its name stands for itself.
bool CPP::pp_invoke(MACDEF* macro, const PP_TOKEN& name) {
    if (macro->builtin != PP_BUILTIN::NONE)
        return push_frame(nullptr, builtin_body(macro->builtin, name), false);
    ARGUMENTS args(&memory_);
    if (macro->params != MACDEF::NO_PARENTHESIS) {
        if (!is_next(PP_LPAREN)) return false;
        if (!pp_findargs(macro, args)) return !ended_;
        check_arguments(macro, args);
    }
    auto* list = new (memory_.allocate(sizeof(TOKEN_LIST), alignof(TOKEN_LIST)))
        TOKEN_LIST(substitute(macro, args, name));
    if (list->size() > MAX_TOKENS)
        cpp_fatal(DIAG::cpp_too_many_tokens_in_this_macro_expansion(__FILE__, __LINE__));
    if (list->empty()) owed_gap_ = name.gap;
    return !ended_ && push_frame(macro, *list, false);
}

PP_TOKENS CPP::builtin_body(PP_BUILTIN builtin, const PP_TOKEN& name) {
    std::string text;
    if (builtin == PP_BUILTIN::LINE_NUMBER) {
        text = std::to_string(source_.line());
    } else {
        text = '"';
        for (const char* c = source_.file(); *c != '\0'; ++c) {
            if (*c == '\\') text += '\\';
            text += *c;
        }
        text += '"';
    }
    const std::string_view kept = keep(text);
    auto* token = new (memory_.allocate(sizeof(PP_TOKEN), alignof(PP_TOKEN))) PP_TOKEN(name);
    token->text = kept.data();
    token->length = static_cast<uint32_t>(kept.size());
    token->kind = builtin == PP_BUILTIN::LINE_NUMBER ? PP_NUMBER : PP_STRING;
    return {token, 1};
}

// Collects the arguments up to the closing parenthesis, over lines if need be.
bool CPP::pp_findargs(const MACDEF* macro, ARGUMENTS& args) {
    PP_TOKEN t;
    next_raw(t);
    auto add_argument = [&] {
        args.push_back({TOKEN_LIST(&memory_), TOKEN_LIST(&memory_), false});
    };
    add_argument();
    bool too_many = false;
    for (unsigned depth = 1;;) {
        if (!next_raw(t)) {
            if (!ended_ && frames_.size() == 1 && more_tokens()) continue;
            if (!ended_) cpp_error(DIAG::cpp_open_mac(__FILE__, __LINE__, macro->name));
            return false;
        }
        if (t.kind == PP_LPAREN) ++depth;
        if (t.kind == PP_RPAREN && --depth == 0) break;
        if (t.kind != PP_COMMA || depth != 1) {
            if (!too_many) args.back().tokens.push_back(t);
        } else if (args.size() < MAX_ARGS) {
            add_argument();
        } else {
            too_many = true;
        }
    }
    if (too_many) cpp_error(DIAG::cpp_bad_mac_arg(__FILE__, __LINE__, macro->name));
    return !too_many;
}

// As many arguments as parameters; missing ones are empty.
void CPP::check_arguments(const MACDEF* macro, ARGUMENTS& args) {
    const size_t wanted = static_cast<size_t>(macro->params);
    const bool none = args.size() == 1 && args[0].tokens.empty();
    if (wanted != args.size() && !(wanted == 0 && none))
        cpp_error(DIAG::cpp_arg_mismatch(__FILE__, __LINE__, macro->name));
    while (args.size() < wanted)
        args.push_back({TOKEN_LIST(&memory_), TOKEN_LIST(&memory_), false});
}

const CPP::TOKEN_LIST& CPP::expanded(ARGUMENT& arg) {
    if (arg.is_expanded) return arg.expanded;
    arg.is_expanded = true;
    if (!push_frame(nullptr, arg.tokens, true)) return arg.expanded;
    const size_t depth = frames_.size();
    PP_TOKEN t;
    while (pp_token(t)) arg.expanded.push_back(t);
    while (frames_.size() >= depth) drop_frame();
    return arg.expanded;
}

// The body with arguments in place of parameters. What comes from the body stands where the macro
// was used; arguments keep their places.
CPP::TOKEN_LIST CPP::substitute(const MACDEF* macro, ARGUMENTS& args, const PP_TOKEN& name) {
    TOKEN_LIST out(&memory_);
    const PP_TOKENS body = macro->body;
    auto place = [&](PP_TOKEN t) {
        t.line = name.line;
        t.column = name.column;
        return t;
    };
    uint32_t owed_gap = 0; // of a parameter whose argument is empty
    size_t operand = 0;    // where the left operand of a ## begins
    for (size_t i = 0; i < body.size() && !ended_; ++i) {
        const bool pastes = body[i].kind == PP_PASTE;
        if (pastes) ++i;
        const PP_TOKEN& t = body[i];
        const bool pasted = pastes || (i + 1 < body.size() && body[i + 1].kind == PP_PASTE);
        PP_TOKEN single;
        PP_TOKENS items(&single, 1);
        if (t.kind == PP_PARAM) {
            ARGUMENT& arg = args[t.param];
            items = pasted ? PP_TOKENS(arg.tokens) : PP_TOKENS(expanded(arg));
        } else if (t.kind == PP_STRINGIZE) {
            single = place(pp_string(args[body[++i].param], t));
        } else {
            single = place(t);
        }
        if (pastes && out.size() > operand && !items.empty()) {
            pp_cat(out, items);
            continue;
        }
        if (!pastes) operand = out.size();
        const uint32_t gap = t.gap != 0 ? t.gap : owed_gap;
        owed_gap = items.empty() ? gap : 0;
        for (size_t n = 0; n < items.size(); ++n) {
            out.push_back(items[n]);
            if (n == 0) out.back().gap = gap;
        }
        if (out.size() > MAX_TOKENS) break;
    }
    if (!out.empty()) out.front().gap = name.gap;
    return out;
}

// Joins the last token with the first one of the right side.
void CPP::pp_cat(TOKEN_LIST& out, PP_TOKENS right) {
    const PP_TOKEN left = out.back();
    std::string text(left.str());
    text += right[0].str();
    if (text.size() > PP_SOURCE::MAX_LINE) {
        cpp_fatal(DIAG::cpp_line_too_long(__FILE__, __LINE__));
        return;
    }
    std::vector<PP_TOKEN> joined;
    pp_tokenize(keep(text), joined, *this);
    out.pop_back();
    for (size_t i = 0; i < joined.size(); ++i) {
        joined[i].line = left.line;
        joined[i].column = left.column;
        if (i == 0) joined[i].gap = left.gap;
        out.push_back(joined[i]);
    }
    out.insert(out.end(), right.begin() + 1, right.end());
}

// An argument's text as a string.
PP_TOKEN CPP::pp_string(const ARGUMENT& arg, const PP_TOKEN& op) {
    std::string text = "\"";
    bool first = true;
    for (const PP_TOKEN& t : arg.tokens) {
        if (t.gap != 0 && !first) text += ' ';
        first = false;
        for (char c : t.str()) {
            if (c == '"' || c == '\\') text += '\\';
            text += c;
        }
    }
    text += '"';
    if (text.size() > PP_SOURCE::MAX_LINE) cpp_fatal(DIAG::cpp_line_too_long(__FILE__, __LINE__));
    const std::string_view kept = keep(text);
    PP_TOKEN string = op;
    string.text = kept.data();
    string.length = static_cast<uint32_t>(kept.size());
    string.kind = PP_STRING;
    return string;
}
