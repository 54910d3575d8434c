// What the convention puts into the link: default memory and output sections, stack, heap and
// arguments, the tables of initialisers, and the symbols that the run-time library finds them by.
#include "ELFLNK/target/abi.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/collect/collect.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/init_order.h"
#include "ELFLNK/target/internal_section.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/narrow.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

void ABI::assign_address(const char* name, int opcode, LINKER_OBJECT* object) {
    auto* value = new EXPRESSION(static_cast<EXPR_OPCODE>(opcode), &object->source_position());
    object->add_linker_assignment(name, value, EXPR_BIND_STRONG);
}

void ABI::bind_invalid(const char* name) {
    root_collection->add_linker_assignment(name, EXPRESSION::minusone(data_address_bit_size()),
                                           EXPR_BIND_STRONG);
}

// --- default memory and output sections

void ABI::default_allocation() {
    if (memory_map->empty())
        default_memory_range("DEFAULT", 0, 0, 0x100000000, MEMORY_RANGE::ATTR_ALL);
}

void ABI::default_memory_range(const char* name, int page, uint64_t origin, uint64_t length,
                               unsigned attrs) {
    memory_map->add(new MEMORY_RANGE(name, origin, length, attrs, page));
}

COLLECTION* ABI::default_group(const char* name, const char* range) {
    auto* group = new COLLECTION(name, COLLECTION_GROUP);
    auto* locator = new LOCATOR(LOCATOR_KIND::BOTH, group);
    locator->add_ranges({range});
    group->add_locator(locator);
    root_collection->add_member(group);
    return group;
}

namespace {

LOCATOR* copy_of_locator(const LOCATOR* from, LINKER_OBJECT* to) {
    auto* copy = new LOCATOR(from->kind(), to);
    copy->merge(from);
    copy->set_flag(from->flags() & LF_SPLIT);
    return copy;
}

} // namespace

COLLECTION* ABI::create_and_inherit_output_section(const char* name, const char* parent_name,
                                                   bool force) {
    const LINKER_OBJECT* parent = root_collection->find_outsect(parent_name);
    if (parent == nullptr || root_collection->find_outsect(name) != nullptr ||
        parent->parent() != root_collection)
        return nullptr;
    const LOCATOR* run = parent->run_locator();
    const LOCATOR* load = parent->load_locator();
    if (run == nullptr) return nullptr;
    const uint32_t unfit = force ? LF_SPECIFIC : LF_SPECIFIC | LF_SPLIT;
    if (run->has_flag(unfit) || (load != nullptr && load->has_flag(unfit))) return nullptr;
    auto* outsect = new COLLECTION(name, COLLECTION_OUTSECT);
    outsect->add_locator(copy_of_locator(run, outsect));
    if (load != nullptr && load != run) outsect->add_locator(copy_of_locator(load, outsect));
    root_collection->add_member(outsect);
    root_collection->add_outsect(outsect);
    return outsect;
}

// --- stack, heap, arguments

COLLECTION* ABI::expand_rts_section(const char* name, uint64_t size, unsigned alignment,
                                    bool create) {
    LINKER_OBJECT* object = root_collection->find_outsect(name);
    if (object == nullptr && create) object = create_default_collection(name);
    if (object == nullptr) return nullptr;
    COLLECTION* outsect = as_collection(object);
    if (outsect == nullptr) {
        DIAG_REPORT(elnk_lobj_not_collection, name);
        return nullptr;
    }
    if (!create && outsect->find_any_section() == nullptr) return nullptr;
    outsect->add_member(create_uninitialized_section(name, alignment));
    if (const uint64_t rounded = align_up(size, alignment); rounded != size) {
        DIAG_REPORT(elnk_rts_section_size_not_aligned, name, alignment, size, rounded);
        size = rounded;
    }
    outsect->set_fixed_min_size(size);
    return outsect;
}

COLLECTION* ABI::define_memory_section(const char* name, int option, uint64_t default_size,
                                       unsigned alignment, const char* option_text) {
    if (!is_final_executable_link()) return nullptr;
    const auto id = static_cast<option_id>(option);
    const bool is_default = !global_opts->isopt(id);
    const uint64_t size =
        is_default ? default_size : static_cast<uint64_t>(global_opts->getnumarg(id));
    COLLECTION* outsect = expand_rts_section(name, size, alignment, false);
    if (outsect != nullptr && is_default && global_opts->isopt(OPT_warn_sections))
        DIAG_REPORT(elnk_def_memscn, name, size, option_text);
    return outsect;
}

void ABI::define_linker_sections() {
    define_stack_section();
    define_heap_section();
    define_args_section();
}

void ABI::define_stack_section() {
    COLLECTION* stack = define_memory_section(stack_section_name(), OPT_stack_size,
                                              default_stack_size(), stack_alignment(), "-stack");
    if (stack == nullptr) return;
    assign_address(stack_size_symbol_name(), EXPR_OP_RUN_SIZE, stack);
    assign_address(stack_end_symbol_name(), EXPR_OP_RUN_END, stack);
    define_alternate_stack_symbols(stack);
}

void ABI::define_heap_section() {
    COLLECTION* heap = define_memory_section(sysmem_section_name(), OPT_heap_size,
                                             default_heap_size(), sysmem_alignment(), "-heap");
    if (heap == nullptr) return;
    assign_address(sysmem_size_symbol_name(), EXPR_OP_RUN_SIZE, heap);
    define_alternate_heap_symbols(heap);
}

void ABI::define_args_section() {
    if (!is_final_executable_link()) return;
    const char* name = args_section_name();
    auto size = static_cast<uint64_t>(global_opts->getnumarg(OPT_arg_size));
    if (size == 0) {
        if (!args_weak_symbol_ref()) bind_invalid(args_symbol_name());
        return;
    }
    if (size < args_min_size()) {
        size = args_min_size();
        DIAG_REPORT(elnk_min_memsz, name, size, "-args");
    }
    COLLECTION* args = expand_rts_section(name, size, args_alignment(), true);
    if (args == nullptr) return;
    if (args->fill() == nullptr) {
        args->add_fill(FILL_SPEC::zero_fill());
    } else if (args->fill()->value() != 0) {
        DIAG_REPORT(elnk_fill_zero_required, name, args->fill()->str());
        args->override_fill(FILL_SPEC::zero_fill());
    }
    assign_address(args_symbol_name(), EXPR_OP_RUN_START, args);
    define_alternate_args_symbols(args);
}

SECTION* ABI::create_constant_variable(const char* name) {
    const char* section_name =
        savestrf("%s.%u", linktime_const_section_name(), constant_counter_++);
    SECTION* section = create_read_only_section(section_name, 4, 4);
    assign_address(name, EXPR_OP_RUN_START, section);
    return section;
}

// --- tables of initialisers

void ABI::form_init_tables() {
    form_cinit_table();
    form_pinit_table();
    form_binit_table();
}

void ABI::form_pinit_table() {
    const char* name = pinit_section_name();
    LINKER_OBJECT* object = root_collection->find_outsect(name);
    if (object == nullptr) return;
    COLLECTION* table = as_collection(object);
    if (table == nullptr) {
        DIAG_REPORT(elnk_lobj_not_collection, name);
        return;
    }
    table->sort_members(
        [](LINKER_OBJECT* a, LINKER_OBJECT* b) { return init_precedes(a->name(), b->name()); });
    if (table->members().empty()) return;
    assign_address(init_array_base_name(), EXPR_OP_RUN_START, table);
    table->add_assign_from_dot(init_array_limit_name());
}

// --- symbols around output sections and the profile

void ABI::define_abi_symbols() {
    const OFE::OBJECT_FILE* output = output_OF_FILE();
    if (output == nullptr || output->format() != OFE::OF_FORMAT_QVCOFF) return;
    const struct {
        const char* section;
        const char* start[2];
        const char* end[2];
    } rows[] = {
        {text_section_name(),
         {text_symbol_name(), text_alt_symbol_name()},
         {etext_symbol_name(), etext_alt_symbol_name()}},
        {data_section_name(),
         {data_symbol_name(), data_alt_symbol_name()},
         {edata_symbol_name(), edata_alt_symbol_name()}},
        {bss_section_name(),
         {bss_symbol_name(), bss_alt_symbol_name()},
         {ebss_symbol_name(), ebss_alt_symbol_name()}},
    };
    for (const auto& row : rows) {
        LINKER_OBJECT* outsect = root_collection->find_outsect(row.section);
        if (outsect == nullptr) continue;
        for (const char* name : row.start) assign_address(name, EXPR_OP_RUN_START, outsect);
        for (const char* name : row.end) assign_address(name, EXPR_OP_RUN_END, outsect);
    }
}

void ABI::define_pprof_symbols() {
    if (!pprof_supported()) return;
    LINKER_OBJECT* outsect = root_collection->find_outsect(ppdata_section_name());
    // A function that nothing refers to is in no place.
    const OFE::OF_SYMBOL* writer = global_symbols.lookup_def(ppoutfunc_symbol_name());
    if (outsect != nullptr && root_collection->symbol_is_in_link(writer)) {
        auto* function =
            new EXPRESSION(EXPR_OP_SYMBOL, ppoutfunc_symbol_name(), EXPR_BIND_STRONG, nullptr);
        root_collection->add_linker_assignment(ppoutfptr_symbol_name(), function, EXPR_BIND_STRONG);
        COLLECTION* data = as_collection(outsect);
        if (data != nullptr && data->find_any_section() != nullptr) {
            assign_address(ppdstart_symbol_name(), EXPR_OP_RUN_START, data);
            assign_address(ppdsize_symbol_name(), EXPR_OP_RUN_SIZE, data);
            return;
        }
    } else {
        bind_invalid(ppoutfptr_symbol_name());
    }
    bind_invalid(ppdstart_symbol_name());
    bind_invalid(ppdsize_symbol_name());
}

void model_ABI() {
    trace_build.printf("\n\nMODEL ABI:\n\n");
    ABI* abi = Target->abi();
    abi->add_mapping_symbols_to_uninitialized_sections();
    if (is_partial_link_by_options()) return;
    // Every input section stands in its collection; below, the convention adds its own.
    abi->form_init_tables();
    abi->define_linker_sections();
    abi->define_abi_symbols();
    abi->define_pprof_symbols();
    abi->model_section_attributes();
    abi->check_abi_constraints();
}
