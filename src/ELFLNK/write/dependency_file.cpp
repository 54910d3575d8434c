#include "ELFLNK/write/dependency_file.h"

#include "ELFLNK/write/output_writer.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/savestr.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace {

const char* file_name = nullptr;

/// A name as make and ninja read it. Backslashes stand for themselves unless what they precede is
/// quoted.
std::string quoted(std::string_view name) {
    std::string text;
    size_t backslashes = 0;
    for (const char c : name) {
        if (std::string_view(" \t#:").find(c) != std::string_view::npos)
            text.append(backslashes + 1, '\\');
        if (c == '$') text += '$';
        text += c;
        backslashes = c == '\\' ? backslashes + 1 : 0;
    }
    return text;
}

/// Some names can't be written down in any way, and would spoil the rule that they stand in.
bool is_writable(std::string_view name) {
    return name.find_first_of("\n;|") == name.npos && name.find_last_of("\\ :") != name.size() - 1;
}

/// Where make reads a line from its beginning, '=' makes an assignment of it and '%' a pattern:
/// names with these come last, and have no rule of their own.
bool can_begin_line(std::string_view name) {
    return name.find_first_of("=%") == name.npos;
}

std::string dependency_rules(const char* output) {
    std::vector<std::string> inputs = FILE_HANDLE_MANAGER::FHM().inputs_read();
    std::erase_if(inputs, [](const std::string& name) { return !is_writable(name); });
    const auto last = std::stable_partition(inputs.begin(), inputs.end(), can_begin_line);
    for (std::string& input : inputs) input = quoted(input);
    std::string text = quoted(output) + ":";
    for (const std::string& input : inputs) text += " \\\n  " + input;
    text += "\n";
    for (auto input = inputs.begin(); input != last; ++input) text += "\n" + *input + ":\n";
    return text;
}

} // namespace

void set_dependency_file(const char* name) {
    file_name = savestr(name);
}

const char* dependency_file() {
    return file_name;
}

bool write_dependency_file(const char* output) {
    if (file_name == nullptr) return true;
    const std::string text = dependency_rules(output);
    OUTPUT_WRITER writer(file_name);
    FHM_FILE* file = writer.open();
    FILE* to = file != nullptr ? file->fp() : nullptr;
    if (to != nullptr && fwrite(text.data(), 1, text.size(), to) == text.size() &&
        writer.commit(false))
        return true;
    writer.discard();
    return false;
}
