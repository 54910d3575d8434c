// The command phase.
//
// The words of the command line are options and files. A file that turns out to be text is a
// command file and runs at once, and what it holds are again options and files, so that the order
// of everything is the order in which it was written. After this phase the options are final and
// every input is identified and in the file manager's lists.
#include "ELFLNK/command/command.h"

#include "DIAG/elnk_msgs.h"
#include "DIAG/user_msg_api.h"
#include "ELFLNK/command/option_actions.h"
#include "ELFLNK/file/command_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/hints.h"
#include "ELFLNK/main/main.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/write/dependency_file.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/savestr.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace {

register_option debug_globals("debug:globals");

/// Each level takes stack, of which there is an end.
constexpr size_t MAX_NESTED_FILES = 200;

/// Command files in progress, the innermost last.
std::vector<COMMAND_FILE*> command_files;

/// Macros of --define, by name.
std::map<std::string, std::string> definitions;

struct DEFINITION {
    std::string name;
    std::string value;
};

/// "name=value" or "name:value"; a name alone has an empty value.
DEFINITION split_definition(const std::string& text) {
    size_t at = text.find('=');
    if (at == text.npos) at = text.find(':');
    if (at == text.npos) return {text, ""};
    return {text.substr(0, at), text.substr(at + 1)};
}

void report_bad_option(const char* word) {
    DIAG::elnk_bad_option message(__FILE__, __LINE__, word);
    if (DIAGNOSTIC::verbose_m) message.set_hint(option_hint(word));
    message.report();
}

void process_command_line() {
    while (const char* word = next_argv_arg()) {
        if (word[0] != '-')
            file_manager.add_file(savestr(word), nullptr, false, false);
        else if (!global_opts->process_option(word + 1))
            report_bad_option(word);
    }
}

/// --describe_options_xml: to the named file, or to standard output.
[[noreturn]] void describe_options() {
    const char* name = global_opts->getstrarg(OPT_describe_options_xml);
    FILE* to = name == nullptr ? stdout : fopen(name, "w");
    if (to == nullptr) {
        perror("can't write to file");
        exit(2);
    }
    if (name != nullptr) printf("Writing XML to %s\n", name);
    option_obj::print_xml(to);
    if (name != nullptr) fclose(to);
    exit(0);
}

void dump_globals() {
    const char* output = global_opts->getstrarg(OPT_output_file);
    const char* entry = global_opts->getstrarg(OPT_entry_point);
    printf("OUTPUT FILE: %s\n", output != nullptr ? output : "a.out");
    printf("ENTRY POINT: %s\n", entry != nullptr ? entry : "");
    printf("\n\nFILE MANAGER:\n");
    file_manager.dump();
    printf("\n\nMEMORY MAP:\n");
    memory_map->dump();
    printf("\n\nROOT COLLECTION:\n");
    root_collection->dump();
}

/// What is read must not be written over: it is mapped, and the user would lose it.
void check_is_not_read(const char* name, const char* option) {
    if (name != nullptr && file_manager.is_read(name))
        USER_MSG::get_umsg_obj()->fatal("\"%s\" is read by this link; option %s cannot write it",
                                        name, option);
}

/// Two names of one file; devices take what they get.
bool name_one_file(const char* a, const char* b) {
    struct stat info_a, info_b;
    if (stat(a, &info_a) != 0 || stat(b, &info_b) != 0) return strcmp(a, b) == 0;
    return S_ISREG(info_a.st_mode) && info_a.st_dev == info_b.st_dev &&
           info_a.st_ino == info_b.st_ino;
}

void check_names_of_outputs() {
    std::vector<std::pair<const char*, const char*>> outputs; // name, option
    for (const option_id id :
         {OPT_output_file, OPT_map_file, OPT_xml_link_info, OPT_generate_dead_funcs_list}) {
        const char* name = global_opts->getstrarg(id);
        if (name == nullptr && id == OPT_output_file) name = "a.out";
        if (name != nullptr) outputs.emplace_back(name, global_opts->format_of_option(id));
    }
    if (dependency_file() != nullptr) outputs.emplace_back(dependency_file(), "--dependency_file");
    for (const option_id id : {OPT_emit_references_file, OPT_tempfile, OPT_ofd})
        check_is_not_read(global_opts->getstrarg(id), global_opts->format_of_option(id));
    for (auto output = outputs.begin(); output != outputs.end(); ++output) {
        check_is_not_read(output->first, output->second);
        for (auto other = outputs.begin(); other != output; ++other)
            if (name_one_file(output->first, other->first))
                USER_MSG::get_umsg_obj()->fatal("options %s and %s both write \"%s\"",
                                                other->second, output->second, output->first);
    }
}

/// A file that names itself, by whatever road, would never end.
bool is_in_progress(const COMMAND_FILE* file) {
    for (const COMMAND_FILE* outer : command_files)
        if (outer->is_same_file(file)) return true;
    return false;
}

} // namespace

void command() {
    install_option_actions();
    file_manager.init();
    process_command_line();
    if (global_opts->isopt(OPT_describe_options_xml)) describe_options();
    if (file_manager.is_parsing_archive_group()) DIAG_REPORT(elnk_end_options_no_end_group);
    global_opts->post_process_option_depends();
    Target->finalize_options();
    enter_exports_and_imports();
    check_names_of_outputs();
    if (debug_globals) dump_globals();
}

void cmdfile_command(COMMAND_FILE* file) {
    file->get_stat_info();
    if (is_in_progress(file)) {
        USER_MSG::get_umsg_obj()->error(file->position(), "command file \"%s\" names itself",
                                        file->name());
        return;
    }
    if (command_files.size() == MAX_NESTED_FILES) {
        USER_MSG::get_umsg_obj()->error(file->position(),
                                        "command file \"%s\" is named through %zu others, which is "
                                        "as deep as they may name each other",
                                        file->name(), MAX_NESTED_FILES);
        return;
    }
    command_files.push_back(file);
    LCF_PARSER* parser = file->parser();
    for (const std::string& macro : Target->predefined_macros()) {
        const DEFINITION definition = split_definition(macro);
        parser->define_ppsym(definition.name.c_str(), definition.value.c_str());
    }
    for (const auto& [name, value] : definitions) parser->define_ppsym(name.c_str(), value.c_str());
    parser->parse();
    file->close();
    command_files.pop_back();
}

const char* get_option_arg() {
    return command_files.empty() ? next_argv_arg()
                                 : command_files.back()->parser()->option_argument();
}

void option_define_ppsym(const char* text) {
    const DEFINITION definition = split_definition(text);
    definitions[definition.name] = definition.value;
    for (COMMAND_FILE* file : command_files)
        file->parser()->define_ppsym(definition.name.c_str(), definition.value.c_str());
}

void option_undefine_ppsym(const char* text) {
    definitions.erase(text);
    for (COMMAND_FILE* file : command_files) file->parser()->undefine_ppsym(text);
}
