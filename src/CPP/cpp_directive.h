// The directives of the preprocessor, one row each.
#pragma once

#include "CPP/cpp.h"

enum CPP::DIRECTIVE : int {
    DIR_NONE,
    DIR_EMPTY, // a lone "#"
    DIR_IF,
    DIR_IFDEF,
    DIR_IFNDEF,
    DIR_ELIF,
    DIR_ELSE,
    DIR_ENDIF,
    DIR_INCLUDE,
    DIR_DEFINE,
    DIR_UNDEF,
    DIR_LINE,
    DIR_ERROR,
    DIR_WARN,
    DIR_PRAGMA,
    DIR_UNKNOWN,
};
