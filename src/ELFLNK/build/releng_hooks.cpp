// What the relocation engine asks the linker: which output symbol stands for an input symbol that
// has no object, whether a symbol's section was dropped, and, when a message is shown, where in the
// user's source a place is.
#include <memory>
#include <unordered_map>

#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/trampoline/trampoline.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OF_RELENG/releng.h"
#include "dwarf_editor/dw_source.h"

using namespace OFE;

namespace {

class LINKER_HOOKS final : public RELENG_HOOKS {
  public:
    OF_SYMBOL* stand_in(OF_SYMBOL_TABLE* table, unsigned id) override {
        if (id < table->first_global()) return output_of_local(table->ofile(), id);
        return resolve_symbol(table->ofile(), id);
    }
    std::vector<RELOC_REDIRECT> redirects(OF_SECTION* section) override {
        SECTION* object = root_collection->lookup_OF_SECTION(section);
        return object ? call_redirects(object) : std::vector<RELOC_REDIRECT>();
    }
    bool is_gone(OF_SYMBOL* symbol) override {
        return !symbol->final() && symbol->ofile() != output_OF_FILE() &&
               !root_collection->lookup_section(symbol->ofile()->file_id(), symbol->section_id());
    }
    bool source(OF_SECTION* section, uint32_t offset, RELOC_SOURCE& out) override {
        const DWE::DW_SOURCE_MAP& map = source_map(section->ofile());
        if (const DWE::DW_LINE* row = map.line_at(section->id(), offset)) {
            out.file = map.file_name(*row);
            out.line = row->line;
            out.column = row->column;
        }
        if (const DWE::DW_FUNCTION* function = map.function_at(section->id(), offset)) {
            out.function = function->name;
            if (function->assembly) out.function_kind = RELOC_SOURCE::ASSEMBLY_FUNCTION;
        }
        return !out.file.empty() || !out.function.empty();
    }
    std::string display_name(const char* link_name) override {
        return global_symbols.diag_sym_name(link_name);
    }

  private:
    // Only files that a message is about have one.
    const DWE::DW_SOURCE_MAP& source_map(OBJECT_FILE* file) {
        std::unique_ptr<DWE::DW_SOURCE_MAP>& map = source_maps_[file];
        if (!map) map = std::make_unique<DWE::DW_SOURCE_MAP>(file);
        return *map;
    }

    std::unordered_map<OBJECT_FILE*, std::unique_ptr<DWE::DW_SOURCE_MAP>> source_maps_;
};

} // namespace

void install_releng_hooks() {
    static LINKER_HOOKS hooks;
    OF_RELENG::set_hooks(&hooks);
}
