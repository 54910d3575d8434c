// A LOAD_SEGMENT stands for a loadable program header: output sections that follow each other
// in memory with equal distance between run and load address.
#pragma once

#include "ELFLNK/object/collection.h"

namespace OFE {
class ELF_SEGMENT;
} // namespace OFE

class LOAD_SEGMENT : public COLLECTION {
  public:
    explicit LOAD_SEGMENT(const char* name, const SOURCE_POSITION* pos = nullptr);

    uint64_t run_address() const override { return run_address_; }
    uint64_t load_address() const override { return load_address_; }
    int run_page() const override { return run_page_; }
    int load_page() const override { return load_page_; }
    bool is_load_segment() const override { return true; }
    void update_upon_placement() override;
    void dump_header(PPRINT* out) override;
    void dump_properties(PPRINT* out) override;
    void merge_placement_attributes(uint32_t bits) override;

    bool can_combine(LINKER_OBJECT* obj);
    /// Extends the segment's addresses and size over the object.
    void add_member(LINKER_OBJECT* obj);
    /// PF_X, PF_W, PF_R bits of the program header.
    uint32_t flags() const;
    bool match_flags(const LINKER_OBJECT* obj) const;
    bool match_seg_attrs(const LINKER_OBJECT* obj) const;
    /// Size of the part with data.
    uint64_t init_size() const { return init_size_; }
    /// Program header of the output file; set by the output builder.
    OFE::ELF_SEGMENT* elf_segment() const { return elf_segment_; }
    void set_elf_segment(OFE::ELF_SEGMENT* segment) { elf_segment_ = segment; }
    /// A segment that holds back what phase 2 places.
    bool holds_back_p2() const { return holds_back_p2_; }
    void set_holds_back_p2(bool on) { holds_back_p2_ = on; }

  private:
    void take_addresses(LINKER_OBJECT* obj);
    bool keeps_distance(LINKER_OBJECT* obj);
    LINKER_OBJECT* last_member() const { return members().empty() ? nullptr : members().back(); }

    OFE::ELF_SEGMENT* elf_segment_ = nullptr;
    uint64_t load_address_ = 0;
    uint64_t run_address_ = 0;
    uint64_t init_size_ = 0;
    int load_page_ = 0;
    int run_page_ = 0;
    bool holds_back_p2_ = false;
};

class TLS_SEGMENT : public LOAD_SEGMENT {
  public:
    using LOAD_SEGMENT::LOAD_SEGMENT;
    bool is_tls_segment() const override { return true; }
};
