// The bytes of an input section on their way to the output: copied once, from the mapped input to
// their place in the output, and relocated there.
#include <cstring>

#include "ELFLNK/build/build.h"
#include "ELFLNK/build/section_output.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/object/fill_data.h"
#include "ELFLNK/object/section.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OF_RELENG/releng.h"
#include "UTIL/trace.h"

using namespace OFE;

namespace {

// Where `size` bytes at `offset` of the output section are; null when the section cannot hold them.
uint8_t* place_in_output(OF_SECTION* output, uint32_t offset, uint32_t size) {
    return output->is_direct_write() ? output->direct_bytes(offset, size)
                                     : output->writable_bytes(offset, size);
}

} // namespace

void SECTION::write_data_internal(OF_SECTION* output, uint32_t offset) {
    OF_SECTION* input = OF_SECTION_api();
    if (!input || !output->initialized()) return;
    if (!input->initialized()) {
        // Without contents of its own among others that have some; the output begins as zeros.
        if (fill() && fill()->value() != 0)
            fill_data(output, offset, static_cast<uint32_t>(SECTION::size()), fill());
        return;
    }
    OF_BYTES bytes = input->bytes();
    auto size = static_cast<uint32_t>(bytes.size);
    if (size == 0) return;
    uint8_t* to = place_in_output(output, offset, size);
    if (!to) {
        relocate_data(output);
        bytes = input->bytes();
        output->write_to_raw_data(bytes.data, size, offset);
        return;
    }
    memcpy(to, bytes.data, size);
    if (!section_wants_relocation(this, output)) return;
    trace_build.printf("%s: relocate to 0x%lx\n", original_section_name(), run_address());
    OF_RELENG engine(input);
    engine.set_output_section(output);
    engine.set_bytes(to, size);
    engine.relocate(static_cast<uint32_t>(run_address()));
    set_relocated(true);
    if (engine.has_error()) output->ofile()->set_unsafe_to_execute();
}
