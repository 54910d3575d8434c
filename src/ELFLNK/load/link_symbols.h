// The resolution passes over all files.
#pragma once

/// Rebuilds the definitions from the output file and every static linking object, in link order.
void link_global_definitions();
/// Makes the entry symbols and points every undefined symbol at its definition.
void link_global_references();
