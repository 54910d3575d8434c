// The index of code for unwinding: one table, ascending by address, with an entry for every
// function. A throw searches it for the function that holds an address.
//
// Compilers emit it in pieces, a section per code section, tied to its code by the link field. The
// pieces become one table at the end of collect(), code without a piece gets one that says "cannot
// be unwound", and when the code has its addresses the table is sorted, shortened and ended.
#pragma once

namespace OFE {
class OF_SECTION;
}

namespace EXIDX {

/// The output section of the table, and the beginning of the names of its pieces.
inline constexpr const char* TABLE_NAME = ".ARM.exidx";

/// The section is a piece of the table, by type and name.
bool is_exidx(OFE::OF_SECTION* section);

/// Makes the table (in a partial link one table per output section) of all pieces in the link;
/// nothing if there is none.
void add_exception_tables();

/// After placement: all entries stand in the order of the code.
void settle_tables();

/// In a partial link, ties the output sections of the tables to those of the code.
void update_sh_links();

} // namespace EXIDX
