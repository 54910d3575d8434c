// The functions of the run-time library that come in variants, and what tells which one serves:
// start-up code, exit, auto-initialisation and zero initialisation.
#include <cstring>

#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/symbol_object.h"
#include "ELFLNK/retain/specialization.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

using OFE::OF_SYMBOL;

namespace {

/// Something but the library's own default defines the name.
bool is_defined_otherwise(const char* name, bool (OFE::OBJECT_FILE::*is_default)()) {
    OF_SYMBOL* def = global_symbols.lookup_def(name);
    return def && !(def->ofile()->*is_default)();
}

bool has_content(const char* outsect_name) {
    LINKER_OBJECT* outsect = root_collection->find_outsect(outsect_name);
    return outsect && outsect->size() != 0;
}

bool has_members(const char* outsect_name) {
    COLLECTION* outsect = as_collection(root_collection->find_outsect(outsect_name));
    return outsect && !outsect->members().empty();
}

/// Start-up code: arguments for main(), auto-initialisation, memory protection.
class BOOT_SPECIALIZATION final : public SPECIALIZATION {
    static constexpr uint32_t ARGS = 1, AUTOINIT = 2, MPU = 4;

  public:
    void init() override {
        const char* name = Target->cstart_name();
        set_name(name);
        add_routine(savestrf("%s_noinit_noargs", name), 0);
        add_routine(savestrf("%s_noargs", name), AUTOINIT);
        add_routine(savestrf("%s_noinit", name), ARGS);
        add_routine(name, ARGS | AUTOINIT);
        expand_routine_list("mpu", MPU);
    }
    bool can_specialize() override { return defining_file_has("__QV_default_c_int00"); }
    uint32_t update_flags_before_compressed_sections_formed() override {
        flags_ = AUTOINIT | (args_required() ? ARGS : 0) | (mpu_required() ? MPU : 0);
        return AUTOINIT;
    }
    void update_flags_after_compressed_sections_formed() override {
        if (!autoinit_required()) flags_ &= ~AUTOINIT;
    }

  private:
    static bool args_required();
    static bool mpu_required();
    static bool autoinit_required();
};

bool BOOT_SPECIALIZATION::args_required() {
    OF_SYMBOL* args_main = global_symbols.lookup_def(Target->abi()->hll_to_link_name("_args_main"));
    if (!args_main || !args_main->ofile()->contains_default_rts_args_main()) {
        trace_specialization.printf(
            "Argument processing is required because __QV_default_args_main is not defined\n");
        return true;
    }
    const long size = global_opts->isopt(OPT_arg_size) ? global_opts->getnumarg(OPT_arg_size) : 0;
    if (size != 0)
        trace_specialization.printf(
            "Argument processing is required because --arg_size is set to %ld\n", size);
    else
        trace_specialization.printf("Argument processing is not required\n");
    return size != 0;
}

bool BOOT_SPECIALIZATION::mpu_required() {
    return global_symbols.lookup_def("__mpu_enable") ||
           (global_symbols.lookup_def("__mpuseg") && global_symbols.lookup_def("__mpusam"));
}

bool BOOT_SPECIALIZATION::autoinit_required() {
    const ABI* abi = Target->abi();
    if (is_defined_otherwise(global_symbols.mapped_to(abi->auto_init_symbol_name()),
                             &OFE::OBJECT_FILE::contains_default_rts_auto_init)) {
        trace_specialization.printf(
            "Autoinit is required because __QV_default_auto_init is not defined\n");
        return true;
    }
    for (const char* name :
         {abi->cinit_section_name(), abi->pinit_section_name(), abi->binit_section_name()}) {
        if (!has_content(name)) continue;
        trace_specialization.printf("Autoinit is required because %s has content\n", name);
        return true;
    }
    if (is_defined_otherwise("_system_post_cinit",
                             &OFE::OBJECT_FILE::contains_default_rts_system_post_cinit)) {
        trace_specialization.printf(
            "Autoinit is required because __QV_default_system_post_cinit is not defined\n");
        return true;
    }
    trace_specialization.printf("Autoinit is not required\n");
    return false;
}

/// exit() without anything to clean up is abort().
class EXIT_SPECIALIZATION final : public SPECIALIZATION {
  public:
    void init() override {
        set_name("exit");
        add_routine("abort", 0);
        add_routine("exit", 1);
    }
    bool can_specialize() override { return defining_file_has("__QV_default_exit"); }
    uint32_t update_flags_before_compressed_sections_formed() override {
        flags_ = cleanup_required();
        return 0;
    }
    void update_flags_after_compressed_sections_formed() override {}

  private:
    static bool cleanup_required();
    static bool is_used_outside(const char* pointer, const OFE::OBJECT_FILE* exit_file);
};

// Something but exit() itself, and but the initial value, refers to the variable.
bool EXIT_SPECIALIZATION::is_used_outside(const char* pointer, const OFE::OBJECT_FILE* exit_file) {
    constexpr std::string_view CINIT = ".cinit";
    OF_SYMBOL* def = global_symbols.lookup_def(pointer);
    if (!def) return false;
    LINKER_OBJECT* object = root_collection->lookup_symbol_object(def);
    if (def->section()) object = root_collection->lookup_OF_SECTION(def->section());
    for (LINKER_OBJECT* referrer : root_collection->references_to_object(object)) {
        SECTION* section = as_section(referrer);
        if (!section || !section->OF_SECTION_api()) continue;
        if (std::string_view(section->original_section_name()).starts_with(CINIT)) continue;
        if (section->OF_SECTION_api()->ofile() == exit_file) continue;
        trace_specialization.printf("Cleanup required because %s is referenced from %s\n", pointer,
                                    section->name());
        return true;
    }
    return false;
}

bool EXIT_SPECIALIZATION::cleanup_required() {
    OF_SYMBOL* def = global_symbols.lookup_def(Target->abi()->hll_to_link_name("exit"));
    if (!def || !def->ofile()->contains_default_rts_exit()) {
        trace_specialization.printf("Cleanup required because __QV_default_exit is not defined\n");
        return true;
    }
    for (const char* pointer : {"__QV_dtors_ptr", "__QV_cleanup_ptr"})
        if (is_used_outside(pointer, def->ofile())) return true;
    if (global_symbols.lookup(Target->abi()->ppoutfunc_symbol_name())) {
        trace_specialization.printf("Cleanup required because of path profiling\n");
        return true;
    }
    trace_specialization.printf("Cleanup not required\n");
    return false;
}

/// Auto-initialisation: the tables it walks, and the watchdog.
class INIT_SPECIALIZATION final : public SPECIALIZATION {
    static constexpr uint32_t BINIT = 1, PINIT = 2, HOLD_WDT = 4;

  public:
    void init() override {
        set_name(Target->abi()->auto_init_symbol_name());
        add_routine("__QV_auto_init_nobinit_nopinit", 0);
        add_routine("__QV_auto_init_nobinit", PINIT);
        add_routine("__QV_auto_init_nopinit", BINIT);
        add_routine("__QV_auto_init", BINIT | PINIT);
        expand_routine_list("hold_wdt", HOLD_WDT);
    }
    bool can_specialize() override { return defining_file_has("__QV_default_auto_init"); }
    uint32_t update_flags_before_compressed_sections_formed() override {
        const ABI* abi = Target->abi();
        const bool pinit = has_members(abi->pinit_section_name());
        trace_specialization.printf(pinit ? "pinit is required\n" : "pinit is not required\n");
        const bool binit = has_content(abi->binit_section_name());
        trace_specialization.printf(binit ? "binit is required\n" : "binit is not required\n");
        const bool hold_wdt =
            global_opts->isopt(OPT_cinit_hold_wdt) && global_opts->not_off(OPT_cinit_hold_wdt);
        if (!hold_wdt) trace_specialization.printf("holding wdt is not required\n");
        flags_ = (pinit ? PINIT : 0) | (binit ? BINIT : 0) | (hold_wdt ? HOLD_WDT : 0);
        return 0;
    }
    void update_flags_after_compressed_sections_formed() override {}
};

/// Zero initialisation: a little of it needs no memset().
class ZERO_INIT_SPECIALIZATION final : public SPECIALIZATION {
    static constexpr uint32_t MEMSET = 1;
    static constexpr uint64_t WORTH_A_MEMSET = 1000; // units

  public:
    void init() override {
        set_name("__QV_zero_init");
        add_routine("__QV_zero_init_nomemset", 0);
        add_routine("__QV_zero_init", MEMSET);
    }
    bool can_specialize() override { return true; }
    uint32_t update_flags_before_compressed_sections_formed() override {
        flags_ = MEMSET;
        return MEMSET;
    }
    void update_flags_after_compressed_sections_formed() override {
        const uint64_t size = zero_init_size();
        trace_specialization.printf("Zero initialization size is %zu\n", size);
        if (size < WORTH_A_MEMSET) flags_ = 0;
        trace_specialization.printf(flags_ ? "Zero init with memset is required\n"
                                           : "Zero init with memset is not required\n");
    }

  private:
    static uint64_t zero_init_size();
};

uint64_t ZERO_INIT_SPECIALIZATION::zero_init_size() {
    uint64_t size = 0;
    for (const auto& [name, table] : global_copy_table_db->tables())
        for (const auto& record : table->records()) {
            COLLECTION* outsect = record->outsect();
            if (outsect->has_attr(PA_ALLOCATED) && !outsect->has_attr(PA_HAS_DATA))
                size += outsect->size();
        }
    return size;
}

BOOT_SPECIALIZATION boot;
EXIT_SPECIALIZATION at_exit;
INIT_SPECIALIZATION auto_init;
ZERO_INIT_SPECIALIZATION zero_init;

} // namespace
