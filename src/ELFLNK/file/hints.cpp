#include "ELFLNK/file/hints.h"

#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/symbol/similar_names.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/filename.h"
#include "UTIL/strformat.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <sys/stat.h>

namespace {

/// Options and commands of other linkers, and what does the same here.
struct FOREIGN {
    std::string_view name;
    const char* here;
};
constexpr FOREIGN foreign_options[] = {
    {"gc_sections", "what nothing refers to is thrown away anyway"},
    {"no_gc_sections", "--unused_section_elimination=off keeps what nothing refers to"},
    {"script", "a command file is named without an option"},
    {"map", "--map_file=file writes the map"},
    {"library_path", "--search_path=dir adds a folder to the search path"},
    {"defsym", "a command file may define symbols: name = value;"},
    {"undefined", "--undef_sym=symbol wants a symbol"},
    {"strip_all", "--no_symtable leaves the symbol table out"},
    {"section_start", "a command file places sections: .name : > address"},
};

constexpr FOREIGN foreign_commands[] = {
    {"ENTRY", "--entry_point=symbol names the entry point"},
    {"INPUT", "files are named as they are"},
    {"KEEP", "--retain=*(.name) keeps sections"},
    {"OUTPUT_ARCH", "the inputs settle what the output is"},
    {"OUTPUT_FORMAT", "the inputs settle what the output is"},
    {"PROVIDE", "WEAK(name) = value; defines a symbol that no file defines"},
    {"SEARCH_DIR", "--search_path=dir adds a folder to the search path"},
};

constexpr size_t SHORTEST_BEGINNING = 3;

/// What the table says of a name, or an empty text.
std::string foreign_hint(std::span<const FOREIGN> table, std::string_view name) {
    for (const FOREIGN& row : table)
        if (row.name == name) return std::string("; ") + row.here;
    return "";
}

bool is_folder(const char* path) {
    struct stat info;
    return stat(path, &info) == 0 && S_ISDIR(info.st_mode);
}

/// The option's name alone, with underscores.
std::string name_of_option(std::string_view word) {
    word.remove_prefix(std::min(word.find_first_not_of('-'), word.size()));
    std::string name(word.substr(0, word.find('=')));
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

std::string_view option_that_begins_with(std::string_view name) {
    if (name.size() < SHORTEST_BEGINNING) return {};
    for (const std::string_view option : option_obj::long_names())
        if (option.starts_with(name)) return option;
    return {};
}

std::string_view similar_option(const std::string& name) {
    const std::vector<std::string_view> options = option_obj::long_names();
    std::vector<std::string> folded;
    for (const std::string_view option : options) folded.push_back(name_of_option(option));
    SIMILAR_NAMES similar({name.c_str()});
    for (const std::string& option : folded) similar.offer(option, nullptr);
    const auto found = std::find(folded.begin(), folded.end(), similar.best(0).name);
    return found == folded.end() ? option_that_begins_with(name)
                                 : options[size_t(found - folded.begin())];
}

std::string folders_searched() {
    std::string text;
    for (const std::string& dir : file_manager.search_dirs()) text += "\"" + dir + "\", ";
    if (text.empty()) return "; looked for in the current folder only, as no search path is given";
    text.erase(text.size() - 2);
    return "; looked for in " + text + " and the current folder";
}

} // namespace

std::string option_hint(const char* word) {
    const std::string name = name_of_option(word);
    if (const std::string here = foreign_hint(foreign_options, name); !here.empty()) return here;
    const std::string_view similar = similar_option(name);
    return similar.empty() ? "" : "; there is an option --" + std::string(similar);
}

std::string file_hint(const char* name, bool searched, bool in_command_file) {
    if (is_folder(name)) return "; it is a folder";
    if (in_command_file) {
        if (const std::string here = foreign_hint(foreign_commands, name); !here.empty())
            return here;
        SIMILAR_NAMES similar({name});
        for (const char* directive : {"MEMORY", "SECTIONS"}) similar.offer(directive, directive);
        if (const char* directive = similar.best(0).place)
            return strformat("; the directive is called %s", directive);
    }
    if (!searched) return "";
    const std::string library = strformat("lib%s.a", name);
    if (const char* path = file_manager.find_specific_file(library.c_str(), true, false))
        return strformat("; there is \"%s\": name the file as it is called", path);
    return fn_basename(name) == name ? folders_searched() : "";
}
