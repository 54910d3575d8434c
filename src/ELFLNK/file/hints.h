// What a user may have meant by an option or a file that there is not: the text that verbose mode
// puts behind the message, or an empty one. Asked for only once a link has failed.
#pragma once

#include <string>

/// `word`: an option with its dashes.
std::string option_hint(const char* word);

/// `searched`: the name was looked for in the search path; `in_command_file`: it stands where a
/// command file may have a directive too.
std::string file_hint(const char* name, bool searched, bool in_command_file);
