// What the relocation engine asks the linker: which output symbol stands for an input symbol that
// has no object, and whether a symbol's section was dropped.
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/object/root_collection.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OF_RELENG/releng.h"

using namespace OFE;

namespace {

class LINKER_HOOKS final : public RELENG_HOOKS {
  public:
    OF_SYMBOL* stand_in(OF_SYMBOL_TABLE* table, unsigned id) override {
        if (id < table->first_global()) return output_of_local(table->ofile(), id);
        return resolve_symbol(table->ofile(), id);
    }
    bool is_gone(OF_SYMBOL* symbol) override {
        return !symbol->final() && symbol->ofile() != output_OF_FILE() &&
               !root_collection->lookup_section(symbol->ofile()->file_id(), symbol->section_id());
    }
};

} // namespace

void install_releng_hooks() {
    static LINKER_HOOKS hooks;
    OF_RELENG::set_hooks(&hooks);
}
