// Reporting of syntax errors inside LCF_PARSER.
#pragma once

#include "DIAG/elnk_msgs.h"

/// Reports the message `id` with its arguments as a syntax error at the current token.
#define LCF_ERROR(id, ...)                                                                         \
    do {                                                                                           \
        DIAG::id lcf_error_diag(__FILE__, __LINE__ __VA_OPT__(, ) __VA_ARGS__);                    \
        syntax_error(lcf_error_diag);                                                              \
    } while (false)
