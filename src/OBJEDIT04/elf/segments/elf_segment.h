// One segment, with the list of what it contains: the file header, sections, other segments.
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/of_state_machine.h"
#include <memory>
#include <string>
#include <vector>

class DATA_MAP;

namespace OFE {

class ELF_FILE;
class ELF_SECTION;
struct ELF_SEG_ATTR;
class ELF_SEGMENT_TABLE;

enum SEG_OBJECT_TYPE : int {
    SEG_OBJECT_FILE_HEADER = 1,
    SEG_OBJECT_SECTION = 2,
    SEG_OBJECT_SEGMENT = 3
};

struct SEG_OBJECT {
    SEG_OBJECT_TYPE type;
    unsigned id; // section or segment index
};

class ELF_SEGMENT final : public OF_STATE_MACHINE {
  public:
    ELF_SEGMENT(ELF_SEGMENT_TABLE* table, unsigned short id);
    ~ELF_SEGMENT() override;

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    ELF_SEGMENT_TABLE* segment_table() const { return table_; }
    ELF_FILE* elf_file() const;
    unsigned short id() const { return id_; }
    void set_id(unsigned short id) { id_ = id; }
    Elf32_Phdr& header() const;
    unsigned p_type() const { return header().p_type; }
    bool is_contained() const { return contained_; }

    int add_seg_object(SEG_OBJECT_TYPE type, unsigned id);
    int delete_seg_object(unsigned index);
    int purge_deleted_seg_objects();
    bool has_objects() const { return has_objects_; }
    const std::vector<SEG_OBJECT>& objects() const { return objects_; }
    bool contains_file_header() const;
    DATA_MAP* raw_data(); // of a segment without objects
    /// Attributes of the segment, in a file that has such: a new one, the first of a tag (null: it
    /// has none), and the page that it lies on (0 unless one says so).
    ELF_SEG_ATTR* new_seg_attr();
    ELF_SEG_ATTR* seg_attr_tag(unsigned tag);
    unsigned page();

    int calculate_size();                     // p_filesz and p_memsz from what it contains
    uint64_t format_segment(uint64_t offset); // its place in the file; the offset behind it
    int save();

    const char* p_type_name(unsigned type);
    const char* p_flag_name(unsigned flag);
    std::string p_flags_str();

  private:
    friend class ELF_SEGMENT_TABLE;
    void take_detected(SEG_OBJECT_TYPE type, unsigned id) { // found in a file that was read
        objects_.push_back({type, id});
        has_objects_ = true;
    }
    void add_section_size(ELF_SECTION* section, uint64_t& filesz, uint64_t& memsz);
    void add_segment_size(ELF_SEGMENT* member, uint64_t& filesz, uint64_t& memsz);

    ELF_SEGMENT_TABLE* table_;
    std::unique_ptr<DATA_MAP> raw_data_;
    std::vector<SEG_OBJECT> objects_;
    unsigned short id_;
    bool has_objects_ = false;
    bool contained_ = false;
};

} // namespace OFE
