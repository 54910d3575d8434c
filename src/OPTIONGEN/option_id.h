// The ids of the options, their classes and the numbers of their enumerated values, made from
// lnkopt.def.
#pragma once

/// An option: OPT_<long name>. Dense, in the alphabetical order of the long names.
enum option_id : unsigned {
#define OPTION(id, ...) OPT_##id,
#include "OPTIONGEN/lnkopt.def"
    OPTION_COUNT
};

/// What an option is about: the chapters of the help.
enum class_id : unsigned {
    CLASS_BASIC,
    CLASS_FILE_SEARCH,
    CLASS_PREPROCESSING,
    CLASS_DIAGNOSTICS,
    CLASS_OUTPUT,
    CLASS_SYMBOLS,
    CLASS_RUNTIME_MODEL,
    CLASS_PLACEMENT,
    CLASS_DYNAMIC,
    CLASS_LINK_TIME,
    CLASS_ADVICE,
    CLASS_HELP,
    CLASS_DIRECTORIES,
    CLASS_OBSOLETE,
    CLASS_DEVELOPER,
    CLASS_COUNT
};

/// The numbers of enumerated values, OPTV_<list>_<value>: what option_obj::getnumarg() gives for
/// such an option.
enum option_value : long {
#define OPTION_VALUE(list, name, text, mark, number) OPTV_##list##_##name = number,
#include "OPTIONGEN/lnkopt.def"
};

/// How an option takes its parameter. The kinds with S keep every occurrence, the others the last.
enum parse_option_type : unsigned char {
    REQ_NUM = 1,
    REQ_UNSIGNED = 2,
    REQ_STRING = 3,
    REQ_STRINGS = 4,
    REQ_VALUE = 6,
    REQ_VALUES = 7,
    OPT_NUM = 9,
    OPT_UNSIGNED = 11,
    OPT_STRING = 12,
    OPT_STRINGS = 13,
    OPT_VALUE = 15,
    FLAG = 255 ///< no parameter
};
