// The rows of lnkopt.def as tables, for the files of this folder.
#pragma once

#include "OPTIONGEN/option_obj.h"

#include <span>
#include <string_view>
#include <vector>

/// One value of an enumerated parameter.
struct OPTION_ITEM {
    const char* text;
    char mark; ///< '+' listed, '-' accepted but not shown, '*' deprecated
    long number;
};

/// Option flags.
constexpr unsigned OPTION_INTERNAL = 1;
constexpr unsigned OPTION_PERSISTENT = 2;
constexpr unsigned OPTION_NO_EFFECT = 4;
constexpr unsigned OPTION_PENDING = 8;

/// One option.
struct OPTION_DEF {
    const char* spellings; ///< separated by commas, the long name first
    const char* parameter;
    parse_option_type kind;
    std::span<const OPTION_ITEM> items;
    const char* default_text;
    class_id cls;
    unsigned flags;
    int sort;
    const char* help;
    const char* more;
};

/// One spelling of an option, without its first dash.
struct OPTION_SPELLING {
    std::string_view text;
    option_id id;
    unsigned char form; ///< its place among the option's spellings
};

const OPTION_DEF& option_def(option_id id);
option_range option_numbers(option_id id);
/// All spellings, longest first.
const std::vector<OPTION_SPELLING>& option_spellings();
/// The nth spelling of an option, with its dashes.
std::string_view option_spelling(option_id id, unsigned form);
/// The title of a class, for the help.
const char* option_class_title(class_id cls);
/// True for a class that the help leaves out.
bool option_class_hidden(class_id cls);

inline bool takes_parameter(parse_option_type kind) {
    return kind != FLAG;
}
inline bool parameter_optional(parse_option_type kind) {
    return kind >= OPT_NUM && kind <= OPT_VALUE;
}
inline bool keeps_all(parse_option_type kind) {
    return kind == REQ_STRINGS || kind == REQ_VALUES || kind == OPT_STRINGS;
}
inline bool takes_value(parse_option_type kind) {
    return kind == REQ_VALUE || kind == REQ_VALUES || kind == OPT_VALUE;
}
inline bool takes_number(parse_option_type kind) {
    return kind == REQ_NUM || kind == REQ_UNSIGNED || kind == OPT_NUM || kind == OPT_UNSIGNED;
}
