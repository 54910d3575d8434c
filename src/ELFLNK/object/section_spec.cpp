// What a specification takes.
#include "ELFLNK/object/section_spec.h"

#include <string>

#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/filename.h"

SECTION_SPEC::SECTION_SPEC(const char* name, const SOURCE_POSITION* pos)
    : COLLECTION(name, COLLECTION_GROUP, pos) {}

SECTION_SPEC::~SECTION_SPEC() {
    delete file_filter_;
    delete member_filter_;
    delete section_filter_;
}

void SECTION_SPEC::add_file_name(const char* pattern) {
    delete file_filter_;
    file_filter_ = new FILENAME_FILTER(pattern);
}

/// One more alternative.
template <class KIND>
static void add_alternative(KIND*& filter, const char* pattern) {
    auto* added = new KIND(pattern);
    filter = filter == nullptr ? added : new KIND(FILTER::OR, added, filter);
}

void SECTION_SPEC::add_ar_member_name(const char* pattern) {
    add_alternative(member_filter_, pattern);
}

void SECTION_SPEC::add_section_name(const char* pattern) {
    add_alternative(section_filter_, pattern);
}

// ---- matching ------------------------------------------------------------------------------

bool SECTION_SPEC::match_file(OBJ_FILE* file) const {
    if (file_ == nullptr && file_filter_ == nullptr && member_filter_ == nullptr) return true;
    if (file == nullptr) return false;
    INPUT_FILE* container = file;
    if (file->archive() != nullptr) container = file->archive();
    if (file_ != nullptr && !file_->is_same_file(container)) return false;
    if (file_ == nullptr && file_filter_ != nullptr) {
        const char* full = container->name();
        if (!file_filter_->match(full) && !file_filter_->match(fn_basename(full))) return false;
    }
    if (member_filter_ == nullptr) return true;
    return file->archive() != nullptr && member_filter_->match(file->member_name());
}

bool SECTION_SPEC::accepts_without_section_filter() const {
    if (section_filter_ != nullptr || file_ != nullptr) return true;
    return file_filter_ == nullptr || !file_filter_->has_wildcards();
}

bool SECTION_SPEC::match_section(const char* name, OBJ_FILE* file) const {
    if (section_filter_ != nullptr && !section_filter_->match(name)) return false;
    return match_file(file) && accepts_without_section_filter();
}

bool SECTION_SPEC::match_section(SECTION* section) const {
    return match_section(section->original_section_name(), section->orig_infile());
}

bool SECTION_SPEC::match_common_symbol(OFE::OF_SYMBOL* symbol) const {
    if (symbol->kind() != OFE::OF_SYM_KIND_COMMON || symbol->refs_section()) return false;
    if (section_filter_ != nullptr) {
        std::string name = Target->abi()->common_block_section_name(symbol);
        name += ':';
        name += symbol->name();
        if (!section_filter_->match(name.c_str())) return false;
    }
    return match_file(symbol_obj_file(symbol));
}
