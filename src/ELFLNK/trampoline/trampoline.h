// Far calls. Before placement the call graph finds the calls that may not reach; while placement
// fixes addresses, trampolines are reserved for them, shared, dropped again and moved together
// (the operations of LOCATOR in reserve.cpp); when a list of objects has been placed, the code of
// the trampolines is settled and the calls are led to them.
#pragma once

#include <cstdint>
#include <vector>

#include "OF_RELENG/releng.h"

class SECTION;

/// Finds the calls that may need a trampoline. Nothing in a partial link.
void build_tramp_call_graph();

/// Settles the code of all placed trampolines and marks the calls that go through them.
void generate_trampolines();

/// Makes the symbols of all generated entries in the output; `final`: addresses won't change.
void create_jump_entry_symbols(bool final);

/// The calls of the section that go to a trampoline, by ascending offset, with its symbol.
std::vector<OFE::RELOC_REDIRECT> call_redirects(SECTION* section);

/// Debug builds: each call reaches its callee or its trampoline; a failure ends the process.
void check_calls_reach();
