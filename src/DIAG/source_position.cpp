#include "DIAG/source_position.h"

#include "UTIL/savestr.h"

#include <cstring>

void DIAG_SRCINFO_DATA::set_file(const char* file) {
    file_ = file != nullptr && *file != '\0' ? savestr(file) : "";
}

bool DIAG_SRCINFO_DATA::is_equal(const DIAG_SRCINFO* other) const {
    return other != nullptr && line_ == other->line() && column_ == other->column() &&
           std::strcmp(file_, other->file()) == 0;
}
