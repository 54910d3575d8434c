// Input sections: attributes from the file's section header, sizes and names on demand.
#include "ELFLNK/object/section.h"

#include <cctype>
#include <cstring>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"

namespace {

constexpr uint32_t SHT_NOBITS = 8;
constexpr uint32_t SHF_WRITE = 0x1;
constexpr uint32_t SHF_ALLOC = 0x2;
constexpr uint32_t SHF_EXECINSTR = 0x4;
constexpr uint32_t SHF_TLS = 0x400;
constexpr uint32_t QV_SHF_BOUND = 0x4;
constexpr uint32_t QV_FLAG_MASK = 0x1E; // bits 1 to 4 go into the output

bool is_debug_name(const char* name) {
    return std::strncmp(name, ".debug", 6) == 0;
}

} // namespace

SECTION::SECTION(OBJ_FILE* file, OFE::OF_SECTION* section)
    : LINKER_OBJECT(nullptr),
      debug_(is_debug_name(section->name())),
      file_(file),
      section_(section),
      original_name_(section->name()) {
    if (section->ofile()->format() == OFE::OF_FORMAT_ELF) set_elf_scn_attributes();
    if (Target->abi()->section_is_pmdata(section)) set_attr(PA_PMDATA | PA_P3_PLACEMENT);
}

SECTION::SECTION(const char* name, const SOURCE_POSITION* pos)
    : LINKER_OBJECT(name, pos), debug_(is_debug_name(name)), original_name_(name) {}

SECTION::~SECTION() = default;

const char* SECTION::orig_section_name(const char* name) {
    if (name[0] != '[') return name;
    const char* p = name + 1;
    while (std::isdigit(static_cast<unsigned char>(*p)) != 0) ++p;
    return p > name + 1 && *p == ']' ? p + 1 : name;
}

const char* SECTION::make_name() const {
    if (file_ == nullptr) return original_name_;
    const char* name = savestrf("%s:%s", original_name_, file_->object_file()->display_name());
    keep_name(name);
    return name;
}

OBJ_FILE* SECTION::orig_infile() const {
    return file_;
}

OFE::OF_SECTION* SECTION::OF_SECTION_api() {
    if (section_ == nullptr && file_ != nullptr && !is_jump_ent())
        section_ = file_->object_file()->section_table()->section_name(original_name_, 0);
    return section_;
}

bool SECTION::is_plain_input() const {
    return file_ != nullptr && file_ != file_manager.internal_file() && section_ != nullptr &&
           !has_attr(PA_PMDATA) && !is_jump_ent() && !is_exidx();
}

void SECTION::set_elf_scn_attributes() {
    OFE::OF_RAW_SECTION header;
    if (!section_->section_table()->raw_section(section_->id(), header)) return;
    auto choose = [this](uint32_t bits, bool on) { on ? set_attr(bits) : clear_attr(bits); };

    choose(PA_EXEC, (header.flags & SHF_EXECINSTR) != 0);
    choose(PA_NE_DATA, (header.flags & SHF_EXECINSTR) == 0);
    choose(PA_ALLOCATED, (header.flags & SHF_ALLOC) != 0);
    if ((header.flags & SHF_ALLOC) == 0) clear_attr(PA_NE_DATA | PA_EXEC);
    choose(PA_HAS_DATA, header.type != SHT_NOBITS);
    choose(PA_WRITE, (header.flags & SHF_WRITE) != 0);
    choose(PA_TLS, (header.flags & SHF_TLS) != 0);

    OFE::OF_MACHINE_DB* machine = section_->ofile()->machine_db();
    if (machine == nullptr) return;
    if (machine->is_noinit(section_)) {
        if (global_opts->isopt(OPT_ram_model))
            DIAG_REPORT(elnk_noinit_in_ram_model, name());
        else
            set_attr(PA_NOINIT);
    }
    if (machine->is_bound(section_) || (header.ext_flags & QV_SHF_BOUND) != 0) set_attr(PA_BOUND);
    choose(PA_READONLY, machine->is_readonly(section_));
    if (has_all_attrs(PA_READONLY | PA_BOUND)) set_attr(PA_NOLOAD);
}

bool SECTION::keeps_header() const {
    if (header_kept_ || !is_plain_input()) return header_kept_;
    kept_size_ = section_->size();
    kept_align_ = section_->align();
    kept_blocked_ = section_->is_blocked();
    return header_kept_ = true;
}

uint64_t SECTION::size() {
    if (keeps_header()) return kept_size_;
    OFE::OF_SECTION* section = OF_SECTION_api();
    return section != nullptr ? section->size() : 0;
}

uint32_t SECTION::alignment() const {
    if (keeps_header()) return kept_align_;
    OFE::OF_SECTION* section = const_cast<SECTION*>(this)->OF_SECTION_api();
    return section != nullptr ? section->align() : 0;
}

uint32_t SECTION::blocking() const {
    OFE::OF_SECTION* section = const_cast<SECTION*>(this)->OF_SECTION_api();
    const bool is_blocked =
        keeps_header() ? kept_blocked_ : section != nullptr && section->is_blocked();
    return is_blocked ? static_cast<uint32_t>(Target->abi()->default_block_size()) : 0;
}

uint32_t SECTION::qv_flags() {
    OFE::OF_SECTION* section = OF_SECTION_api();
    if (section == nullptr || section->ofile()->format() != OFE::OF_FORMAT_ELF) return 0;
    return section->ext_flags() & QV_FLAG_MASK;
}
