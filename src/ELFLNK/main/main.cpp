// The process: the phases of a link in their order, and what ends the process besides.
#include "ELFLNK/main/main.h"

#include "DIAG/diagnostic.h"
#include "ELFLNK/command/command.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/runcmd.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

register_option debug_fhm("debug:fhm");

int arg_count = 0;
char** arg_values = nullptr;
int arg_next = 1;

void make_options() {
    global_opts = new option_obj(true);
    if (arg_values[0] != nullptr) option_obj::executable_name = arg_values[0];
    option_obj::next_arg = get_option_arg;
    option_obj::banner = print_banner;
    OFE::OBJECT_FILE::tool_name_m = tool_name();
}

/// All phases. Errors are counted and the link goes on, so that one run reports as much as it can;
/// only a load that asks for another round stops it.
void run_phases() {
    command();
    // Options are final; inputs are known in their order; memory and output sections are as
    // written.
    if (!load()) return;
    // Every section that takes part exists, and its symbols are linked.
    originate();
    // What the linker makes itself exists too.
    collect();
    // Each input section is a member of an output section; nothing is thrown away any more.
    model_ABI();
    // Stack, heap and the symbols of the run-time convention are there.
    placement();
    // Every object has its address.
    build();
    // The output is complete in memory.
    write();
}

[[noreturn]] void internal_error(const char* reason) {
    fprintf(stderr, "\nINTERNAL ERROR: %s %s\n", program_name(), reason);
    fprintf(stderr, "\n");
    print_support_message();
    fflush(nullptr);
    exit(2);
}

} // namespace

const char* program_name() {
    // A handler runs in the middle of anything: a pointer this low is no text.
    constexpr uintptr_t LOWEST_TEXT = 100000;
    const char* name = arg_count > 0 ? arg_values[0] : nullptr;
    return reinterpret_cast<uintptr_t>(name) > LOWEST_TEXT ? name : "unknown";
}

const char* next_argv_arg() {
    return arg_next < arg_count ? arg_values[arg_next++] : nullptr;
}

int linker_main(int argc, char** argv) {
    install_common_handlers(signal_handler, nullptr);
    arg_count = argc;
    arg_values = argv;
    try {
        set_execution_path_to_search_path(argv[0]);
        make_options();
        if (argc < 2) {
            option_obj::display_option_help();
            exit(0);
        }
        run_phases();
        if (debug_fhm) fhm_stats(stdout);
    } catch (const std::bad_alloc&) {
        internal_error("failed to allocate memory");
    } catch (...) {
        internal_error("experienced an unhandled exception");
    }
    return DIAGNOSTIC::error_count_m > 0 ? 1 : 0;
}
