// Choosing the build: see libspec_file.h. Every failure is a warning and leaves an empty archive,
// so that the load phase needs no special case.
#include "ELFLNK/autolib/libspec_file.h"

#include <memory>
#include <string>
#include <string_view>

#include "DIAG/diagnostic.h"
#include "DIAG/elnk_msgs.h"
#include "ELFLNK/autolib/libless.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/target/target.h"
#include "FCOMPAT/fcompat.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/filename.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

static register_option debug_alib("debug:autolib");

namespace {

constexpr std::string_view RTS_LIBRARY = "libc.a";
constexpr std::string_view LIBINFO = ".libinfo";
constexpr int REPORT_INDENT = 9;

const char* message_prefix(std::string_view index) {
    return index == RTS_LIBRARY ? "automatic RTS selection:  " : "";
}

// May the library that this object describes join the link? The output stays as it is.
bool is_compatible(OBJ_FILE* candidate) {
    FCOMPAT* check = Target->fcompat(file_manager.output_file(), candidate);
    if (!check) return true;
    const bool fits = check->check_compatibility(false);
    if (!fits && debug_alib >= 2) {
        DIAGNOSTIC::push_debug_mode(true);
        DIAGNOSTIC::push_indent(REPORT_INDENT);
        check->error_report();
        DIAGNOSTIC::pop_indent();
        DIAGNOSTIC::pop_debug_mode();
    }
    check->error_clear();
    return fits;
}

} // namespace

LIBSPEC_FILE::LIBSPEC_FILE(const INPUT_FILE& file, std::unique_ptr<AR_FILE> index)
    : ARCHIVE_FILE(file, std::move(index)) {}

LIBSPEC_FILE::~LIBSPEC_FILE() = default;

// ---- what everybody asks, forwarded

ARCHIVE_FILE* LIBSPEC_FILE::resolved() {
    if (!tried_) resolve_ar();
    return resolved_;
}

AR_FILE* LIBSPEC_FILE::AR_FILE_api() {
    if (!resolved()) make_dummy_ar();
    return resolved_->AR_FILE_api();
}

const std::vector<OBJ_FILE*>& LIBSPEC_FILE::loaded_members() {
    static const std::vector<OBJ_FILE*> none;
    return resolved() ? resolved_->loaded_members() : none;
}

OBJ_FILE* LIBSPEC_FILE::load_member(unsigned header_offset) {
    return resolved() ? resolved_->load_member(header_offset) : nullptr;
}

OBJ_FILE* LIBSPEC_FILE::load_member(const AR_MEMBER* member) {
    return resolved() ? resolved_->load_member(member) : nullptr;
}

const AR_MEMBER* LIBSPEC_FILE::member(unsigned header_offset) {
    return resolved() ? resolved_->member(header_offset) : nullptr;
}

const std::vector<AR_MEMBER>& LIBSPEC_FILE::members() {
    return AR_FILE_api()->members();
}

OBJ_FILE* LIBSPEC_FILE::loaded_member(unsigned header_offset) {
    return resolved() ? resolved_->loaded_member(header_offset) : nullptr;
}

void LIBSPEC_FILE::make_dummy_ar() {
    static ARCHIVE_FILE empty(
        INPUT_FILE("<empty archive>", nullptr),
        std::make_unique<AR_FILE>("<empty archive>", std::span<const uint8_t>(), ar_error_handler));
    resolved_ = &empty;
}

// ---- the choice

const char* LIBSPEC_FILE::index_name() const {
    return fn_basename(name());
}

const char* LIBSPEC_FILE::libinfo_lib(const char* name) {
    if (!name) return nullptr;
    std::string_view text = name;
    if (text.ends_with(LIBINFO)) text.remove_suffix(LIBINFO.size());
    return savestr(text);
}

const char* LIBSPEC_FILE::best_library(bool& examined_any) {
    AR_FILE* index = ARCHIVE_FILE::AR_FILE_api();
    std::vector<std::unique_ptr<OBJ_FILE>> examined;
    LIBLESS::CANDIDATES candidates;
    for (const AR_MEMBER& member : index->members()) {
        if (member.size == 0) continue;
        OFE::OF_FILE_HANDLE handle = index->open_member(member);
        handle.name = savestr(member.name);
        OFE::OBJECT_FILE* object = OFE::new_OBJECT_FILE(handle, ofile_error_handler);
        if (!object) continue;
        examined.push_back(
            std::make_unique<OBJ_FILE>(INPUT_FILE(name(), file(), position()), object));
        if (is_compatible(examined.back().get())) candidates.push_back(object);
    }
    examined_any = !examined.empty();
    return libinfo_lib(choose_lib(candidates));
}

// Beside the index library, then in the search path, then where it can be built.
const char* LIBSPEC_FILE::find_library(const char* library) const {
    std::string dir;
    std::string base;
    fn_split(name(), dir, base);
    const std::string path = fn_build(dir, library);
    if (const char* found = file_manager.find_specific_file(path.c_str(), false, false))
        return found;
    if (const char* found = file_manager.find_specific_file(library, true, false)) return found;
    return file_manager.find_specific_file(path.c_str(), false, true);
}

// An index library that chooses itself, at once or through others, would never come to an archive.
bool LIBSPEC_FILE::leads_back_to(const INPUT_FILE* file) const {
    for (const LIBSPEC_FILE* spec = this; spec; spec = spec->asked_by_)
        if (spec->is_same_file(file)) return true;
    return false;
}

ARCHIVE_FILE* LIBSPEC_FILE::open_library(const char* path) {
    get_stat_info();
    INPUT_FILE library(path, position());
    library.get_stat_info();
    if (leads_back_to(&library)) return nullptr;
    INPUT_FILE* identified = library.identify();
    ARCHIVE_FILE* archive = identified ? identified->as_archive_file() : nullptr;
    if (!archive) {
        delete identified;
        return nullptr;
    }
    if (archive->is_libspec()) static_cast<LIBSPEC_FILE*>(archive)->asked_by_ = this;
    return archive;
}

bool LIBSPEC_FILE::resolve_ar() {
    const char* index = index_name();
    const char* prefix = message_prefix(index);
    trace_alib.printf("\nAUTOMATIC LIBRARY SELECTION: RESOLVING (%s):\n", name());
    tried_ = true;
    if (!default_abi_is_known()) {
        DIAG_REPORT(elnk_resolve_ar_fail_noinput, name());
        return false;
    }
    bool examined_any = false;
    const char* best = best_library(examined_any);
    trace_alib.printf("BEST MATCH\n");
    if (!best) {
        trace_alib.printf("--> No suitable library was found\n\n");
        if (examined_any) DIAG_REPORT(elnk_cannot_resolve_libinfo, prefix, index);
        return false;
    }
    trace_alib.printf("--> %s\n\n", best);
    trace_alib.printf("VERIFYING %s\n", best);
    const char* path = find_library(best);
    if (!path) {
        trace_alib.printf("--> not found and could not build, done.\n");
        DIAG_REPORT(elnk_missing_libinfo_member, prefix, index, best, best);
        return false;
    }
    resolved_ = open_library(path);
    if (!resolved_) {
        trace_alib.printf("--> Not a valid archive file, done.\n");
        DIAG_REPORT(elnk_invalid_libinfo_member, prefix, index, best, best);
        return false;
    }
    trace_alib.printf("--> Valid library found.\n");
    DIAG_REPORT(elnk_report_resolved_libinfo, prefix, fn_basename(path), index);
    if (file()) {
        file()->set_persistent(false);
        file()->evict();
    }
    trace_alib.printf("\nSelecting %s, done.\n", best);
    return true;
}
