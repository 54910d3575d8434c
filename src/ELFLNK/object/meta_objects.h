// What describes the file rather than the program, and may yet lie in the program's memory: the
// file header, the table of program headers, and sections of tables with the segments that point to
// them. Each segment is a program header of the output.
#pragma once

#include "ELFLNK/object/collection.h"

namespace OFE {
class ELF_FILE;
class ELF_SEGMENT;
class ELF_SEGMENT_TABLE;
} // namespace OFE

class META_SEGMENT;

/// A section of the output that the linker fills with tables.
class META_SECTION : public LINKER_OBJECT {
  public:
    META_SECTION(const char* name, OFE::OF_SECTION* section);

    bool is_meta_section() const override { return true; }
    uint64_t size() override;
    uint32_t alignment() const override;
    void finalize_internal(OFE::OF_SECTION* output, uint32_t offset) override;
    void write_data_internal(OFE::OF_SECTION*, uint32_t) override {} // it is in its section
    void dump_header(PPRINT* out) override;

    /// The segment that points to it; null for none.
    META_SEGMENT* segment() const { return segment_; }

  private:
    friend class META_SEGMENT;
    META_SEGMENT* segment_ = nullptr;
};

/// A program header for one section.
class META_SEGMENT : public COLLECTION {
  public:
    META_SEGMENT(const char* name, unsigned type, unsigned flags);

    bool is_meta_segment() const override { return true; }
    uint64_t size() override;
    uint64_t est_size_min() override { return size(); }
    void finalize_internal(OFE::OF_SECTION* output, uint32_t offset) override;
    void dump_header(PPRINT* out) override;

    /// Either may be assigned once: what was assigned before is reported and stays.
    void assign_section(META_SECTION* section);
    OFE::ELF_SEGMENT* elf_segment() const { return elf_segment_; }

  private:
    META_SECTION* section() const;

    OFE::ELF_SEGMENT* elf_segment_;
};

/// The program header that points to the table of program headers.
class ELF_PHDR_SEGMENT : public LINKER_OBJECT {
  public:
    explicit ELF_PHDR_SEGMENT(OFE::ELF_SEGMENT_TABLE* table);

    bool is_elf_phdr_segment() const override { return true; }
    bool is_dynamic() const override { return true; }
    uint64_t size() override;
    /// No program header may be added once memory is looked for.
    void update_before_placement(PLACEMENT_PHASE phase) override;
    void finalize_internal(OFE::OF_SECTION* output, uint32_t offset) override;
    void write_data_internal(OFE::OF_SECTION*, uint32_t) override {} // the table writes itself
    void dump_header(PPRINT* out) override;

    OFE::ELF_SEGMENT* elf_segment() const { return elf_segment_; }

  private:
    OFE::ELF_SEGMENT_TABLE* table_;
    OFE::ELF_SEGMENT* elf_segment_;
};

class ELF_FILE_HEADER : public LINKER_OBJECT {
  public:
    explicit ELF_FILE_HEADER(OFE::ELF_FILE* file);

    bool is_elf_file_header() const override { return true; }
    bool is_dynamic() const override { return true; }
    uint64_t size() override;
    void finalize_internal(OFE::OF_SECTION* output, uint32_t offset) override;
    void write_data_internal(OFE::OF_SECTION*, uint32_t) override {} // the file writes itself
    void dump_header(PPRINT* out) override;
};
