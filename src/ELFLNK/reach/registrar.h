// Reachability: from a set of roots, along relocations, every input section that is reached becomes
// a SECTION of the root collection; what is not reached never becomes an object, and so is not
// linked. The walk is mark and sweep over the raw relocation records of the mapped files: a list of
// sections in the order of their registration grows while it is walked, and no relocation object is
// made.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

class ABI;
class LINKER_OBJECT;
class OBJ_FILE;
class SECTION;
namespace OFE {
class OBJECT_FILE;
class OF_SECTION;
class OF_SECTION_TABLE;
class OF_SYMBOL;
struct OF_RAW_RELOC;
struct OF_RAW_SECTION;
} // namespace OFE

class REGISTRAR {
  public:
    REGISTRAR();
    ~REGISTRAR();
    REGISTRAR(const REGISTRAR&) = delete;
    REGISTRAR& operator=(const REGISTRAR&) = delete;

    /// The whole pass.
    void register_objects();

  private:
    struct FILE_STATE;
    struct REF;  // a relocation, with the symbol it leads to
    struct WORK; // a registered section that is to be walked

    void find_implicit_deps();
    void register_required_symbols();
    void register_required_sections();
    void register_referenced_objects();
    void register_sh_link_dependences();

    FILE_STATE& state_of(OFE::OBJECT_FILE* object);
    bool section_is_required(FILE_STATE& file, const OFE::OF_RAW_SECTION& section);
    bool coff_section_is_required(FILE_STATE& file, const OFE::OF_RAW_SECTION& section);
    bool progdata_section_immune_to_retain(FILE_STATE& file, const OFE::OF_RAW_SECTION& section);
    bool metadata_retains_section(FILE_STATE& file, const OFE::OF_RAW_SECTION& section);
    void add_debug_deps(FILE_STATE& file, const OFE::OF_RAW_SECTION& section);
    void add_metadata_deps(FILE_STATE& file, const OFE::OF_RAW_SECTION& section);
    void add_cinit_deps(FILE_STATE& file, const OFE::OF_RAW_SECTION& section);
    static bool need_implicit_reverse_ref_for_debug(const char* holder, const char* target);

    void register_section(LINKER_OBJECT* from, FILE_STATE& file, unsigned section_id);
    void register_any_section(LINKER_OBJECT* from, FILE_STATE& file, unsigned section_id);
    void register_symbol(LINKER_OBJECT* from, OFE::OF_SYMBOL* sym);
    void register_symbol_object(LINKER_OBJECT* from, OFE::OF_SYMBOL* sym);
    void register_a_reference(const WORK& from, const REF& ref);
    void register_import_reference(OFE::OF_SYMBOL* sym);

    struct IMPL;
    std::unique_ptr<IMPL> impl_;
};
