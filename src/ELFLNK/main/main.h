// The spine of the linker: one run is one link.
#pragma once

#include <cstdio>

/// The phases of the link, in their order. Each is defined by the folder that it is named after.
void command();
bool load();
void originate();
void collect();
void model_ABI();
void placement();
void build();
void write();

/// Runs the link; the exit status of the process.
int linker_main(int argc, char** argv);

/// Installs `handler` for the signals that end a program; `callback` is called with the number of a
/// crash signal.
void install_common_handlers(void (*handler)(int), void (*callback)(int));
/// Reports the signal and ends the process with status 2.
[[noreturn]] void signal_handler(int sig);
/// Says on standard error what to do about a defect of the linker.
void print_support_message();
/// argv[0] if it can be trusted, else "unknown".
const char* program_name();
/// The next word of the command line, or null.
const char* next_argv_arg();

// Names and version of this build.
const char* tool_name();         ///< "Linker"
const char* isa_name();          ///< "QV ARM"
const char* isa_and_tool_name(); ///< "QV ARM Linker"
int version_major();
int version_minor();
int version_patch();
bool version_has_fourth_digit();
const char* version_qual();   ///< what the full version has behind the number
const char* version_number(); ///< "1.2.3", or "1.2.3.4"
const char* version_short();  ///< "v1.2.3"
const char* version_full();   ///< version_short() with its qualifier
const char* isa_tool_and_version_short();
const char* isa_tool_and_version_full();
const char* copyright_full(); ///< the notice
void print_tool_and_version(FILE* to);
void print_banner(FILE* to);
