// Declarations of symbol versions. Command files are read before the run-time convention is known,
// so whether it has versions is asked later.
#include "ELFLNK/symver/symver_table.h"

#include <cstring>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/command_file.h"
#include "ELFLNK/parse_lcf/version_parser.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "UTIL/savestr.h"

void VER_DEF::add_symbol_name(const char* pattern, const SOURCE_POSITION*) {
    patterns_.push_back(std::make_unique<FILTER>(savestr(pattern)));
}

void VER_DEF::add_predecessor(const char* name, const SOURCE_POSITION* pos) {
    predecessor_ = symver_table.find_verdef(name);
    if (predecessor_ == nullptr) DIAG_REPORT_AT(pos, elnk_vndep_not_found, name);
}

bool VER_DEF::match(const char* name) const {
    for (const auto& pattern : patterns_)
        if (pattern->match(name)) return true;
    return false;
}

VER_DEF* SYMVER_TABLE::new_verdef(const char* name, const SOURCE_POSITION* pos) {
    if (VER_DEF* earlier = find_verdef(name)) {
        DIAG_REPORT_AT(pos, elnk_dup_ver_tag, name);
        return earlier;
    }
    verdefs_.push_back(std::make_unique<VER_DEF>(savestr(name), pos));
    return verdefs_.back().get();
}

VER_DEF* SYMVER_TABLE::local_verdef(const SOURCE_POSITION* pos) {
    if (local_ == nullptr) local_ = std::make_unique<VER_DEF>("<local>", pos);
    return local_.get();
}

VER_DEF* SYMVER_TABLE::find_verdef(const char* name) const {
    for (const auto& verdef : verdefs_)
        if (std::strcmp(verdef->name(), name) == 0) return verdef.get();
    return nullptr;
}

VER_DEF* SYMVER_TABLE::match_verdef(const char* name) const {
    for (const auto& verdef : verdefs_)
        if (verdef->match(name)) return verdef.get();
    return local_ != nullptr && local_->match(name) ? local_.get() : nullptr;
}

void SYMVER_TABLE::process_script_file(const char* path) {
    INPUT_FILE unknown(path, nullptr);
    INPUT_FILE* file = unknown.identify();
    COMMAND_FILE* script = file != nullptr ? file->as_command_file() : nullptr;
    if (script == nullptr) {
        if (file != nullptr) DIAG_REPORT(elnk_unrecognized_file, path);
        return;
    }
    new_VERSION_PARSER(script)->parse();
    script->close();
}

void SYMVER_TABLE::check_support() const {
    if (empty() || Target->abi()->need_symver_support()) return;
    for (const auto& verdef : verdefs_)
        DIAG_REPORT_AT(&verdef->position(), elnk_no_symver_opt, "--no_symver");
}
