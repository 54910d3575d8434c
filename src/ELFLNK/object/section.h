// An input section that takes part in the link.
//
// There may be hundreds of thousands: the object is small, its name "section:file" is only made
// when somebody asks for it, and call information hangs on it on demand.
#pragma once

#include "ELFLNK/object/linker_object.h"
#include "UTIL/oalloc.h"

namespace OFE {
class OF_SECTION;
} // namespace OFE
class OBJ_FILE;

class SECTION : public LINKER_OBJECT, public OALLOC<SECTION> {
  public:
    static constexpr uint32_t NO_FILE_ID = ~0U;

    /// An input section. Who makes it enters it in the root's section map.
    SECTION(OBJ_FILE* file, OFE::OF_SECTION* section);
    /// A section that the linker generates; it has a name and data later, or none.
    explicit SECTION(const char* name, const SOURCE_POSITION* pos = nullptr);
    ~SECTION() override;

    bool is_section() const override { return true; }
    uint64_t size() override;
    uint32_t alignment() const override;
    uint32_t blocking() const override;
    CALL_INFO* call_info() override { return call_info_; }
    uint32_t qv_flags() override;
    void finalize_internal(OFE::OF_SECTION* output, uint32_t offset) override;
    void write_data_internal(OFE::OF_SECTION* output, uint32_t offset) override;
    void dump_header(PPRINT* out) override;
    virtual bool is_compressed_scn() const { return false; }

    /// The file that holds the section; null for a generated one.
    OBJ_FILE* object_file() const { return file_; }
    /// The file that the section came from: for embedded code the file it was made for.
    OBJ_FILE* orig_infile() const;
    /// Section of the object file layer, looked up by name on first use; null for a generated one.
    OFE::OF_SECTION* OF_SECTION_api();
    const OFE::OF_SECTION* OF_SECTION_api() const {
        return const_cast<SECTION*>(this)->OF_SECTION_api();
    }
    void set_OF_SECTION(OFE::OF_SECTION* section) { section_ = section; }
    /// Section name as in the input, without a file tag.
    const char* original_section_name() const { return original_name_; }
    /// That name starts with ".debug".
    bool is_debug() const { return debug_; }
    /// What reports call the section: that name, or the whole name of a generated section.
    const char* input_name() const { return file_ != nullptr ? original_name_ : name(); }
    /// The name without a tag "[n]" in front.
    static const char* orig_section_name(const char* name);
    uint32_t embedded_file_id() const { return embedded_file_id_; }
    /// It goes into the program as it is in an input file: its size will not change.
    bool is_plain_input() const;

    void set_call_info(CALL_INFO* info) { call_info_ = info; }
    uint32_t preferred_priority() const { return preferred_priority_; }
    void set_preferred_priority(uint32_t n) { preferred_priority_ = n; }

    bool relocated() const { return relocated_; }
    void set_relocated(bool on) { relocated_ = on; }
    /// Apply the section's relocations to its data, once.
    void relocate_data(OFE::OF_SECTION* output);

  protected:
    const char* make_name() const override;
    /// The input file that a generated section is shown with.
    void set_object_file(OBJ_FILE* file) { file_ = file; }

  private:
    void set_elf_scn_attributes();
    /// What will not change is read from the file once.
    bool keeps_header() const;

    bool relocated_ = false;
    bool debug_ = false;
    mutable bool header_kept_ = false;
    mutable bool kept_blocked_ = false;
    mutable uint32_t kept_size_ = 0;
    mutable uint32_t kept_align_ = 0;
    uint32_t preferred_priority_ = 0;
    OBJ_FILE* file_ = nullptr;
    OFE::OF_SECTION* section_ = nullptr;
    CALL_INFO* call_info_ = nullptr;
    const char* original_name_ = "";
    uint32_t embedded_file_id_ = NO_FILE_ID;
};

inline SECTION* as_section(LINKER_OBJECT* obj) {
    return obj != nullptr && obj->is_section() ? static_cast<SECTION*>(obj) : nullptr;
}
