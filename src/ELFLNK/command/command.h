// The command phase: from words to options, files and definitions.
#pragma once

#include "OBJEDIT04/ofe/of_types.h"
#include "OPTIONGEN/option_id.h"

class COMMAND_FILE;

/// The command phase: processes the command line and the command files that it names.
void command();
/// Runs one command file; its files and options take effect at once.
void cmdfile_command(COMMAND_FILE* file);
/// The next word of the innermost command file in progress, or of the command line; null at the
/// end.
const char* get_option_arg();
/// --define, --undefine: macros of the command files in progress and of those to come.
void option_define_ppsym(const char* text);
void option_undefine_ppsym(const char* text);
/// Notes that an option needs an output of a certain format.
void objfmt_conflict(option_id id, OFE::OF_FORMAT format);
/// Reports the options that do not go with the output's format, once it is known.
void report_objfmt_conflicts(OFE::OF_FORMAT format);
