// The grammar of --retain, and the questions that loading and reachability ask. The forms: a symbol
// name; a file with section names in "()"; an archive with member names in "<>", and section names
// behind them.
#include "ELFLNK/retain/retain_spec.h"

#include <string_view>
#include <unordered_set>

#include "DIAG/gen_msgs.h"
#include "ELFLNK/archive/ar_file.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "UTIL/filename.h"
#include "UTIL/savestr.h"
#include "UTIL/str_parser.h"
#include "UTIL/trace.h"

RETAIN_SPEC_MANAGER retain_manager;

// ---- one specification

RETAIN_SPEC::RETAIN_SPEC(const char* text) : SECTION_SPEC("retain"), text_(text) {}

bool RETAIN_SPEC::invalid() const {
    DIAG_REPORT(gen_opt_param_invalid, text_, "--retain");
    return false;
}

void RETAIN_SPEC::add_symbol_name(const char* name) {
    FILTER* filter = new FILTER(savestr(name));
    symbol_filter_ = symbol_filter_ ? new FILTER(FILTER::OR, symbol_filter_, filter) : filter;
}

bool RETAIN_SPEC::all_symbols() const {
    return symbol_filter_ && symbol_filter_->is_match_all();
}

bool RETAIN_SPEC::all_libraries() const {
    return file_filter() && file_filter()->is_match_all() && member_filter() &&
           member_filter()->is_match_all() && section_filter() && section_filter()->is_match_all();
}

// Words up to the closing delimiter, each handed to `add`; commas between them may be left out.
template <class ADD>
static bool parse_list(STR_PARSER& parser, char close, ADD add) {
    for (;;) {
        const STR_PARSER::TOKEN token = parser.next();
        if (token.is(close)) return true;
        if (token.kind == STR_PARSER::WORD)
            add(savestr(token.text.c_str()));
        else if (!token.is(','))
            return false;
    }
}

// The word in front of a list: a pattern, a library by the search path, or a file. One that isn't
// found adds no filter.
bool RETAIN_SPEC::add_file_word(const std::string& word, bool members_follow) {
    const bool is_library = word.starts_with("-l") || word.starts_with("-L");
    if (FILTER::has_wildcards(word.c_str())) {
        if (is_library) return false;
        add_file_name(savestr(word.c_str()));
        return true;
    }
    if (is_library && !members_follow) return false;
    const char* path = is_library ? file_manager.find_specific_file(word.c_str() + 2, true, false)
                                  : file_manager.find_specific_file(word.c_str(), false, false);
    if (path) add_file_name(path);
    return true;
}

bool RETAIN_SPEC::add_spec() {
    STR_PARSER parser(text_, "()<>,");
    const STR_PARSER::TOKEN word = parser.next();
    STR_PARSER::TOKEN mark = parser.next();
    if (word.kind != STR_PARSER::WORD) return invalid();
    if (mark.kind == STR_PARSER::END) {
        add_symbol_name(word.text.c_str());
        return !all_symbols() || invalid();
    }
    if (!mark.is('<') && !mark.is('(')) return invalid();
    if (!add_file_word(word.text, mark.is('<'))) return invalid();
    if (mark.is('<')) {
        if (!parse_list(parser, '>', [this](const char* name) { add_ar_member_name(name); }))
            return invalid();
        mark = parser.next();
    }
    if (mark.is('(') &&
        !parse_list(parser, ')', [this](const char* name) { add_section_name(name); }))
        return invalid();
    return !all_libraries() || invalid();
}

// ---- all specifications

void RETAIN_SPEC_MANAGER::add_retain_specifier(const char* text) {
    if (!text || *text == '\0') return;
    specs_.emplace_back(savestr(text));
    const RETAIN_SPEC& spec = specs_.back();
    if (!specs_.back().add_spec()) {
        specs_.pop_back();
        return;
    }
    has_symbol_specs_ |= spec.symbol_filter() != nullptr;
    has_section_specs_ |= spec.section_filter() != nullptr;
}

bool RETAIN_SPEC_MANAGER::match_symbol(const char* name) const {
    for (const RETAIN_SPEC& spec : specs_)
        if (spec.symbol_filter() && spec.symbol_filter()->match(name)) return true;
    return false;
}

bool RETAIN_SPEC_MANAGER::match_section(const char* name, OBJ_FILE* file) const {
    for (const RETAIN_SPEC& spec : specs_)
        if (spec.section_filter() && spec.SECTION_SPEC::match_section(name, file)) return true;
    return false;
}

bool RETAIN_SPEC_MANAGER::match_section(const OFE::OF_SECTION* section, OBJ_FILE* file) const {
    return match_section(section->name(), file);
}

bool RETAIN_SPEC_MANAGER::user_retains_symbol(const char* name) const {
    if (!has_symbol_specs_ || !name || *name == '\0' || is_partial_link()) return false;
    if (!match_symbol(name) || global_symbols.lookup_def(name)) return false;
    trace_load.printf("retain symbol \"%s\" as required by --retain option\n", name);
    return true;
}

bool RETAIN_SPEC_MANAGER::user_retains_section(const char* name, OBJ_FILE* file) const {
    if (!has_section_specs_ || *name == '\0' || is_partial_link() || !match_section(name, file))
        return false;
    trace_load.printf("retain section %s(%s) as required by --retain option\n", name, file->name());
    return true;
}

// Loads what one specification wants of one archive.
static bool load_members(const RETAIN_SPEC& spec, ARCHIVE_FILE* archive) {
    trace_load.printf("processing matching retain spec for %s: [ %s ]\n", archive->name(),
                      spec.text());
    // Of several members of one name the first is the one that the name stands for.
    std::unordered_set<std::string_view> known;
    for (const OBJ_FILE* object : archive->loaded_members()) known.insert(object->member_name());
    bool loaded = false;
    for (const AR_MEMBER& member : archive->members()) {
        const char* name = savestr(member.name);
        if (!spec.member_filter()->match(name) || !known.insert(name).second) continue;
        OBJ_FILE* object = archive->load_member(&member);
        if (!object) continue;
        trace_load.printf("loading %s as required by --retain option", name);
        file_manager.register_object_file(object, false);
        scan_static_linking_file(object);
        loaded = true;
    }
    return loaded;
}

bool RETAIN_SPEC_MANAGER::scan_user_retain_ar_members(ARCHIVE_FILE* archive) const {
    bool loaded = false;
    for (const RETAIN_SPEC& spec : specs_) {
        const FILTER* file = spec.file_filter();
        if (!file || !spec.member_filter() || is_partial_link()) continue;
        if (file->match(archive->name()) || file->match(fn_basename(archive->name())))
            loaded |= load_members(spec, archive);
    }
    return loaded;
}
