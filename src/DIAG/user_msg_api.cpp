#include "DIAG/user_msg_api.h"

#include "DIAG/misc_msgs.h"
#include "UTIL/strformat.h"

namespace {

// The text of the format and the arguments behind the last named one.
#define FORMATTED(text)                                                                            \
    va_list args;                                                                                  \
    va_start(args, format);                                                                        \
    const std::string text = vstrformat(format, args);                                             \
    va_end(args)

} // namespace

USER_MSG* USER_MSG::get_umsg_obj() {
    static auto* const object = new USER_MSG;
    return object;
}

unsigned USER_MSG::get_error_count() const {
    return DIAGNOSTIC::error_count_m;
}

void USER_MSG::debug(const char* format, ...) {
    FORMATTED(text);
    DIAG_REPORT(gdebug, "(" + text + ")");
}

void USER_MSG::remark(const char* format, ...) {
    FORMATTED(text);
    DIAG_REPORT(gremark, text);
}

void USER_MSG::advice(const char* format, ...) {
    FORMATTED(text);
    DIAG_REPORT(gadvice, text);
}

void USER_MSG::advice(const DIAG_SRCINFO* position, const char* format, ...) {
    FORMATTED(text);
    DIAG_REPORT_AT(position, gadvice, text);
}

void USER_MSG::warning(unsigned, const char* format, ...) {
    FORMATTED(text);
    if (warnings_as_errors_)
        DIAG_REPORT(gerror, text);
    else
        DIAG_REPORT(gwarning, text);
}

void USER_MSG::warning(const DIAG_SRCINFO* position, unsigned, const char* format, ...) {
    FORMATTED(text);
    if (warnings_as_errors_)
        DIAG_REPORT_AT(position, gerror, text);
    else
        DIAG_REPORT_AT(position, gwarning, text);
}

void USER_MSG::error(const char* format, ...) {
    FORMATTED(text);
    DIAG_REPORT(gerror, text);
}

void USER_MSG::error(const DIAG_SRCINFO* position, const char* format, ...) {
    FORMATTED(text);
    DIAG_REPORT_AT(position, gerror, text);
}

void USER_MSG::apperror(const char* format, ...) {
    FORMATTED(text);
    DIAG_REPORT(gapperror, "(" + text + ")");
}

void USER_MSG::fatal(const char* format, ...) {
    FORMATTED(text);
    DIAG_REPORT(gfatal, text);
}

void USER_MSG::fatal(const DIAG_SRCINFO* position, const char* format, ...) {
    FORMATTED(text);
    DIAG_REPORT_AT(position, gfatal, text);
}

void USER_MSG::die(const char* where, const char* format, ...) {
    FORMATTED(text);
    DIAG_REPORT(gdie, strformat("(%s: %s)", where, text.c_str()));
}
