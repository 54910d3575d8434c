#include "ELFLNK/write/dependency_file.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/write/output_writer.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/savestr.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace {

const char* file_name = nullptr;

/// A name as make reads it. Backslashes stand for themselves unless what they precede is quoted.
std::string quoted(std::string_view name) {
    std::string text;
    size_t backslashes = 0;
    for (const char c : name) {
        if (c == ' ' || c == '\t' || c == '#') text.append(backslashes + 1, '\\');
        if (c == '$') text += '$';
        text += c;
        backslashes = c == '\\' ? backslashes + 1 : 0;
    }
    return text;
}

std::string dependency_rules(const char* output) {
    // A name with a line break in it can't be written down.
    std::vector<std::string> inputs;
    for (const std::string& name : FILE_HANDLE_MANAGER::FHM().inputs_read())
        if (name.find('\n') == name.npos) inputs.push_back(quoted(name));
    std::string text = quoted(output) + ":";
    for (const std::string& input : inputs) text += " \\\n  " + input;
    text += "\n";
    for (const std::string& input : inputs) text += "\n" + input + ":\n";
    return text;
}

} // namespace

void set_dependency_file(const char* name) {
    file_name = savestr(name);
}

void write_dependency_file(const char* output) {
    if (file_name == nullptr) return;
    const std::string text = dependency_rules(output);
    OUTPUT_WRITER writer(file_name);
    FHM_FILE* file = writer.open();
    FILE* to = file != nullptr ? file->fp() : nullptr;
    if (to == nullptr || fwrite(text.data(), 1, text.size(), to) != text.size() ||
        !writer.commit(false)) {
        writer.discard();
        DIAG_REPORT(elnk_open_outfile, file_name);
    }
}
