// From the placed tree to the output object in memory: originate() makes linker-generated objects
// before collection; build() makes one output section per output collection, one output symbol per
// surviving symbol, all relocations still wanted and the program headers, and relocates the data.
// The bytes are written by write().
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ELFLNK/build/link_kind.h"
#include "OBJEDIT04/ofe/of_types.h"

class LINKER_OBJECT;
class OBJ_FILE;
class SECTION;
class SOURCE_POSITION;

namespace OFE {
class OBJECT_FILE;
class OF_SECTION;
class OF_SYMBOL;
} // namespace OFE

// The phases.
void originate();
void build();

// Output sections and symbols; may run any number of times before the one final call.
void create_outfile_components(bool prebuild);

// The output object; null before the first object file has been scanned.
OFE::OBJECT_FILE* output_OF_FILE();

// All leaf objects of the link in the order in which their data is read and written. Known after
// build().
const std::vector<LINKER_OBJECT*>& leaf_objects();

// A ".debug" section of the output belongs to a group. Known after build().
bool debug_section_in_group();

// The section has a group with the COMDAT flag.
bool scn_in_comdat_group(OFE::OF_SECTION* section);

// Groups of a file for a further link are known by this symbol's name. Known after build().
bool is_group_signature(OFE::OF_SYMBOL* symbol);

// Symbols. lookup: the input symbol that an output symbol was made from, or null.
OFE::OF_SYMBOL* lookup_input_symbol_from_output(OFE::OF_SYMBOL* output);
bool symbol_needs_final_value(OFE::OF_SYMBOL* symbol);
// A new undefined symbol in another file with the fields of the given one; it replaces the given
// one in the tables.
OFE::OF_SYMBOL* create_ref_symbol(OFE::OF_SYMBOL* symbol, OFE::OBJECT_FILE* file);
// A copy of the definition under another name in its own file, without references.
OFE::OF_SYMBOL* create_dup_symbol(const char* name, OFE::OF_SYMBOL* symbol);
// A hidden absolute symbol of the output that the linker or a command file defines. Its value comes
// later.
OFE::OF_SYMBOL* create_linker_symbol(const char* name, const SOURCE_POSITION& position,
                                     uint64_t value, OFE::OF_SYM_BINDING binding);
// Gives a linker symbol its section (null: absolute) and value; `final`: the value will not change
// again.
void update_linker_symbol(OFE::OF_SYMBOL* symbol, OFE::OF_SECTION* section, uint64_t value,
                          bool final, OFE::OF_SYM_BINDING binding);
void copy_symbol_fields(OFE::OF_SYMBOL* from, OFE::OF_SYMBOL* to);

// Relocations that stay in the output.
void copy_reloc_entries(SECTION* section, OFE::OF_SECTION* output, uint32_t offset);
void add_section_dependencies(OFE::OF_SECTION* input, OFE::OF_SECTION* output);
// Collects references of a read-only section that its rules do not allow; build() reports them.
void enforce_readonly_relocs(OFE::OF_SECTION* section);

// What the output takes over from a file that joins the link: the highest architecture, the
// conventions all share.
void merge_file_attributes(OBJ_FILE* file);

// Seconds since the epoch at which the output counts as built.
long build_time();
// The same as a line, "Thu Jan  1 00:00:00 1970\n": local time, or UTC where SOURCE_DATE_EPOCH
// fixes it, so that two places write the same.
std::string build_time_text();
