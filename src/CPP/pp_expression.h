// The value of an #if condition: integers of 64 bits, signed or unsigned, with C's operators.
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "CPP/pp_token.h"

struct PP_VALUE {
    int64_t value = 0;
    bool is_unsigned = false;
    std::set<std::string> undefined; // names that the value rests on and that are no macros
};

/// Evaluates all of the tokens, macros already expanded; false, after a message, if they are no
/// expression.
bool pp_evaluate(PP_TOKENS tokens, PP_VALUE& result, PP_ERRORS& errors);

/// The value of an integer constant with its suffixes; false if the text is none.
bool pp_integer(std::string_view text, PP_VALUE& result);

/// Resolves an escape behind a backslash at text[at - 1]; moves `at` behind it.
unsigned char pp_escape(std::string_view text, size_t& at);
