// --no_symtable: removes the output's symbols, apart from those that the run-time looks up.
#pragma once

void strip_symbol_table();
