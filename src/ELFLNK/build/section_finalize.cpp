// An input section at the end of the link: relocations that stay are copied to the output,
// references of read-only sections are looked at, and its data is relocated to its final address.
#include <cstring>

#include "DIAG/diagnostic.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/section_output.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/section.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OF_RELENG/releng.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/trace.h"

using namespace OFE;

namespace {

// The nearest owner that counts: an output section, else the outermost collection below the root.
const LINKER_OBJECT* owner_of(const SECTION* section) {
    if (const LINKER_OBJECT* outsect = section->outsect_object()) return outsect;
    return section->parent();
}

bool has_no_data_in_output(const SECTION* section) {
    const LINKER_OBJECT* owner = owner_of(section);
    return owner && owner->has_attr(PA_DSECT | PA_NOLOAD);
}

// Under --rom only what is read-only, and debug data, is relocated.
bool left_to_the_loader(const SECTION* section, OF_SECTION* output) {
    if (!global_opts->isopt(OPT_rom)) return false;
    const LINKER_OBJECT* owner = owner_of(section);
    return !(owner && owner->has_attr(PA_READONLY)) && strncmp(output->name(), ".debug", 6) != 0;
}

} // namespace

bool section_wants_relocation(SECTION* section, OF_SECTION* output) {
    if (section->relocated() || DIAGNOSTIC::error_count_m > 0 || section->size() == 0) return false;
    if (has_no_data_in_output(section)) return false;
    if (output->ofile()->format() == OF_FORMAT_ELF && is_plain_partial_link()) return false;
    return !left_to_the_loader(section, output);
}

void SECTION::relocate_data(OF_SECTION* output) {
    if (!section_wants_relocation(this, output)) return;
    OF_SECTION* input = OF_SECTION_api();
    if (!input) return;
    OF_RELENG engine(input);
    engine.set_output_section(output);
    trace_build.printf("%s: relocate to 0x%lx\n", original_section_name(), run_address());
    engine.relocate(static_cast<uint32_t>(run_address()));
    set_relocated(true);
    if (engine.has_error()) output->ofile()->set_unsafe_to_execute();
}

void SECTION::finalize_internal(OF_SECTION* output, uint32_t offset) {
    OF_SECTION* input = OF_SECTION_api();
    if (!input || !output || has_no_data_in_output(this)) return;
    const LINKER_OBJECT* owner = owner_of(this);
    bool readonly = owner && owner->has_attr(PA_READONLY);
    if (generate_static_relocs()) {
        if (output->ofile()->format() == OF_FORMAT_QVCOFF) relocate_data(output);
        if (readonly)
            add_section_dependencies(input, output);
        else
            copy_reloc_entries(this, output, offset);
    }
    if (readonly) enforce_readonly_relocs(input);
}
