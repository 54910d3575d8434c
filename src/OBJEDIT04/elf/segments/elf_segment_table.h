// The program headers of an ELF file: ordered at lock, sized and placed in the file at format,
// written at save. For a file that was read, what a segment contains is found by inspection.
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/of_state_machine.h"
#include <memory>
#include <vector>

class FHM_FILE;
class TEXT_TABLE;

namespace OFE {

class ELF_FILE;
class ELF_SEG_ATTR_TABLE;
class ELF_SEGMENT;
class OF_SECTION;

/// In translations of segment indices: the segment is gone.
inline constexpr unsigned short ELF_SEGMENT_DELETED = 0xFFFF;

class ELF_SEGMENT_TABLE final : public OF_STATE_MACHINE {
  public:
    explicit ELF_SEGMENT_TABLE(ELF_FILE* file);
    ~ELF_SEGMENT_TABLE() override;

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    ELF_FILE* elf_file() const;
    ELF_SEGMENT* segment(unsigned short id);                        // null at or above segnum()
    ELF_SEGMENT* segment_addr(unsigned addr, unsigned short start); // first PT_LOAD that holds addr
    ELF_SEGMENT* segment_type(unsigned type, unsigned short start);
    ELF_SEGMENT* segment_offset_type(unsigned offset, unsigned type, unsigned short start);
    ELF_SEGMENT* segment_section(OF_SECTION* section); // the PT_LOAD that contains the section
    Elf32_Phdr* segment_header(unsigned short id);
    ELF_SEGMENT* new_segment();
    int delete_empty_load_segments();
    int delete_segment(unsigned short id);
    bool is_deleted(unsigned short id) const { return id < deleted_.size() && deleted_[id]; }
    int purge_deleted_segments();
    int purge_deleted_seg_objects();
    unsigned short segnum() const { return static_cast<unsigned short>(headers_.size()); }
    void freeze_segnum() { frozen_ = true; }
    unsigned program_header_size() const { return entsize_; }
    unsigned table_size() const { return segnum() * entsize_; } // bytes
    int load(unsigned offset, unsigned entsize, unsigned short count);
    int load_all_segments_into_mem();
    int save();
    int clear();
    int update_translations(const RECORD_MAP<unsigned short>& map);
    int update_section_refs(const RECORD_MAP<unsigned>& map);
    int patch_segment_refs();

    void save_text(FHM_FILE* to);
    void generate_text_info(TEXT_TABLE& table); // a heading and a row per segment

    unsigned min_load_align() const { return min_load_align_; }
    void set_min_load_align(unsigned align) { min_load_align_ = align; }
    unsigned file_offset() const { return file_offset_; }
    void set_file_offset(unsigned offset) { file_offset_ = offset; }
    bool phdr_in_load_segment() const { return phdr_in_load_; }
    void set_phdr_in_load_segment(bool on) { phdr_in_load_ = on; }

    uint64_t format_segments(uint64_t offset); // bytes in the file; the next free offset

  private:
    friend class ELF_SEGMENT;
    int lock_segment_table();
    int lock_segment_ordering();
    int calculate_segment_sizes();
    ELF_SEG_ATTR_TABLE* attribute_table(); // null: the file has none
    void make_segments();
    void detect_segments();
    void detect_sections();
    void map_sections();

    std::vector<std::unique_ptr<ELF_SEGMENT>> segments_; // made all at once; see made_
    std::vector<std::unique_ptr<Elf32_Phdr>> headers_;
    RECORD_MAP<unsigned short> translations_;
    std::vector<bool> deleted_;
    std::vector<ELF_SEGMENT*> segment_of_section_; // by section id; filled on demand
    bool section_map_valid_ = false;
    unsigned entsize_ = ELF_PHENTSIZE;
    unsigned file_offset_ = 0;
    unsigned min_load_align_ = 0;
    bool phdr_in_load_ = false;
    bool has_deleted_ = false;
    bool frozen_ = false;
    bool made_ = true; // false: read from a file, and nobody has asked for a segment yet
};

} // namespace OFE
