// Include files in quotes are looked for beside the file that includes them first, then along the
// search path; those in angle brackets only there.
#include "ELFLNK/parse_lcf/lcf_cpp_source.h"

#include "DIAG/diagnostic.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"

const char* LCF_CPP_CLIENT::find_h_file(const char* name, const char* from, bool angle) {
    return file_manager.find_include_file(name, angle ? nullptr : from, true);
}

void LCF_CPP_CLIENT::set_srcloc(const char* file, unsigned line) {
    parser_->set_srcloc(file, line);
}

void LCF_CPP_CLIENT::process_diagnostic(DIAGNOSTIC& diag) {
    diag.report();
}
