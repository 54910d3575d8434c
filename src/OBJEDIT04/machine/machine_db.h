// The one place where the object file layer asks what depends on the processor: magic numbers,
// names of flags, special sections, relocation types. Each OBJECT_FILE owns one instance, made by
// machine_db(). A `_name` operation returns true and sets its last argument when it knows the
// value; false and null when it does not, so that the caller can fall back on the standard name.
// The base answers "no" and does nothing.
#pragma once

#include <memory>

#include "OBJEDIT04/ofe/of_types.h"

class DATA_MAP;

namespace OFE {

class OBJECT_FILE;
class OF_SECTION;
class OF_SECTION_TABLE;
class OF_SYMBOL;
class OF_SYMBOL_TABLE;
class OF_MACHINE_RELTYPES;
class OFBA_TAG_MAP;
struct OFBA_ATTR;
struct OFBA_AVAL;
struct OFBA_TAG;
enum OFBA_AVAL_TYPE : int;
class ELF_FILE;
class ELF_SECTION;
class ELF_SECTION_TABLE;
class ELF_SEGMENT;
class ELF_SYMBOL;
class ELF_SYMBOL_TABLE;
struct PHATTR_TAG;

class OF_MACHINE_DB {
  public:
    explicit OF_MACHINE_DB(OBJECT_FILE* file) : file_(file) {}
    OF_MACHINE_DB(const OF_MACHINE_DB&) = delete;
    OF_MACHINE_DB& operator=(const OF_MACHINE_DB&) = delete;
    virtual ~OF_MACHINE_DB() = default;

    // The database for a file of this machine. A machine without one of its own gets the base,
    // which knows nothing.
    static std::unique_ptr<OF_MACHINE_DB> machine_db(OBJECT_FILE* file, OF_MACHINE machine);

    OBJECT_FILE* ofile() const { return file_; }

    virtual OF_MACHINE machine() const { return OF_MACHINE_NONE; }
    virtual unsigned qvcoff_magic() const { return 0; }
    virtual unsigned elf_magic() const { return 0; }
    virtual unsigned unit_size() const { return 8; } // bits of an addressable unit
    virtual unsigned rts_vendor() const; // the vendor of the run-time library; 0 unknown

    virtual OF_ENDIAN of_section_endian(OF_SECTION* section);
    virtual unsigned seg_attr_p_type() const { return 0; }
    virtual bool is_bound(OF_SECTION* section);
    virtual bool is_readonly(OF_SECTION* section);
    virtual bool is_noinit(OF_SECTION* section);
    virtual void set_noinit(OF_SECTION* section, bool noinit);
    virtual bool is_blocked(OF_SECTION*) { return false; }
    virtual void set_blocked(OF_SECTION*) {}
    virtual unsigned elf_near_common_shndx() const { return 0xFFF2; }

    // The file's sections or symbols have been renumbered, and its tables translate.
    virtual void of_update_section_refs(OF_SECTION_TABLE*) {}
    virtual void of_update_symbol_refs(OF_SYMBOL_TABLE*) {}
    virtual void of_process_new_symbol(OF_SYMBOL*) {}
    virtual void of_process_new_ofile() {}

    virtual bool of_supports_build_attributes(OBJECT_FILE* file, bool& supported);
    virtual const char* ofba_abi_scn_name() const { return nullptr; }
    // The tags that the processor defines for a vendor, and what follows one of them.
    virtual void of_build_tag_hash(OFBA_TAG_MAP*) {}
    virtual bool ofba_arg_types(const OFBA_TAG*, OFBA_AVAL_TYPE&) { return false; }
    // True: the value has been read or written.
    virtual bool ofba_attr_load(OFBA_ATTR&, DATA_MAP&) { return false; }
    virtual bool ofba_attr_save(const OFBA_ATTR&, DATA_MAP&) { return false; }
    // A value in words. The base knows texts, and tags that no table knows; false for the rest.
    virtual bool of_tag_value(const OFBA_TAG* tag, OFBA_AVAL value, const char*& text);
    // An attribute of the file has changed.
    virtual void of_battr_changed() {}

    virtual bool elf_ei_osabi_name(ELF_FILE*, unsigned char osabi, bool brief, const char*& name);
    virtual bool elf_special_section_name(ELF_SECTION_TABLE*, const char* name,
                                          const char*& special);
    virtual bool elf_gnu_symver(ELF_FILE*, bool& gnu);
    virtual bool elf_set_gnu_symver(ELF_FILE*, bool gnu);
    virtual bool elf_e_flag_name(ELF_FILE*, unsigned flag, bool brief, const char*& name);
    virtual bool elf_p_type_name(ELF_SEGMENT*, unsigned type, const char*& name);
    virtual bool elf_p_flag_name(ELF_SEGMENT*, unsigned flag, const char*& name);
    virtual void elf_lock_section_table(ELF_SECTION_TABLE*) {}
    virtual void elf_lock_symbol_table(ELF_SYMBOL_TABLE*) {}
    virtual bool elf_sh_type_name(ELF_SECTION*, unsigned type, const char*& name);
    virtual bool elf_sh_flag_name(ELF_SECTION*, unsigned flag, const char*& name);
    virtual bool elf_qv_sh_flag_name(ELF_SECTION*, unsigned flag, const char*& name);
    virtual bool elf_sym_kind(ELF_SYMBOL*, OF_SYM_KIND&) { return false; }
    virtual bool elf_sym_kind_name(ELF_SYMBOL*, const char*& name);
    // The attributes that segments of the machine may have; the base enters the general ones.
    virtual void elf_build_phattrtag_db(std::vector<PHATTR_TAG>& tags);
    virtual void elf_build_special_section_hash(ELF_SECTION_TABLE*) {}

    // Extended section attributes: kind 0 the flags word, 1 the page word. A type of 1 means "by
    // name".
    virtual bool elf_supports_qv_sh_attr(int) const { return false; }
    virtual bool elf_match_qv_sh_attr_type(int) const { return false; }
    virtual unsigned elf_qv_sh_attr_type(int) const { return 0; }
    virtual const char* elf_qv_sh_attr_name(int kind) const;
    virtual bool elf_match_symalias_type() const { return false; }
    virtual unsigned elf_symalias_type() const { return 0; }

    virtual void rel_build_type_table(OF_MACHINE_RELTYPES&, OF_FORMAT) {}
    virtual unsigned dwarf_address(OF_SECTION*, unsigned address) { return address; }

    // Finds the symbols that mark code of several kinds and data within a section.
    virtual void find_mapping_syms() {}
    /// Local symbols of this name say what the bytes are from there on.
    virtual bool is_mapping_sym_name(const char*) const { return false; }

  protected:
    OBJECT_FILE* file_;
};

} // namespace OFE
