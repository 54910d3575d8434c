// The help and the XML description, both made from the table.
#include "OPTIONGEN/option_table.h"
#include "UTIL/strformat.h"

#include <cstdarg>
#include <cstring>
#include <strings.h>

namespace {

/// The option as the help shows it: the long name with its parameter, then the other spellings.
std::string option_form(option_id id) {
    const OPTION_DEF& def = option_def(id);
    std::string form(option_spelling(id, 0));
    if (takes_parameter(def.kind)) {
        const char* equals = form.ends_with(':') ? "" : "=";
        form += parameter_optional(def.kind) ? std::string("[") + equals + def.parameter + "]"
                                             : std::string(equals) + def.parameter;
    }
    std::string_view other;
    for (unsigned n = 1; !(other = option_spelling(id, n)).empty(); n++)
        form += ", " + std::string(other);
    return form;
}

/// What an enumerated option accepts, unless its parameter says so already.
std::string values_of(const OPTION_DEF& def) {
    std::string values;
    for (const OPTION_ITEM& item : def.items)
        if (item.mark == '+') values += (values.empty() ? "" : ",") + std::string(item.text);
    return values == def.parameter ? "" : values;
}

constexpr int NAME_WIDTH = 20;

void print_entry(const std::string& form, const char* help, const char* remark) {
    printf("  %-*s ", NAME_WIDTH, form.c_str());
    if (form.size() > size_t(NAME_WIDTH)) printf("\n%*s", NAME_WIDTH + 3, "");
    printf("%s%s\n", help, remark);
}

void print_option(option_id id) {
    const OPTION_DEF& def = option_def(id);
    const char* remark = (def.flags & OPTION_NO_EFFECT) != 0 ? " (accepted, but without effect)"
                         : (def.flags & OPTION_PENDING) != 0 ? " (accepted; not built yet)"
                                                             : "";
    print_entry(option_form(id), def.help, remark);
    if (def.more[0] != '\0') printf("%*s%s\n", NAME_WIDTH + 3, "", def.more);
    const std::string values = values_of(def);
    if (!values.empty()) printf("%*sOne of: %s\n", NAME_WIDTH + 3, "", values.c_str());
}

bool is_hidden(option_id id) {
    const OPTION_DEF& def = option_def(id);
    return (def.flags & OPTION_INTERNAL) != 0 || option_class_hidden(def.cls);
}

bool matches(option_id id, const char* text) {
    const OPTION_DEF& def = option_def(id);
    if (strcasestr(def.help, text) != nullptr || strcasestr(def.more, text) != nullptr) return true;
    std::string_view spelling;
    for (unsigned n = 0; !(spelling = option_spelling(id, n)).empty(); n++) {
        const std::string_view name = spelling.substr(spelling.find_first_not_of('-'));
        const size_t size = strlen(text);
        if (size <= spelling.size() && strncasecmp(spelling.data(), text, size) == 0) return true;
        if (size <= name.size() && strncasecmp(name.data(), text, size) == 0) return true;
    }
    return false;
}

/// The options beside the table that have the text; false if there is none.
bool print_extensions(const char* text) {
    bool any = false;
    for (const extension_option& option : option_obj::extensions) {
        const std::string name = std::string("--") + option.name;
        if (strcasestr(name.c_str(), text) == nullptr && strcasestr(option.help, text) == nullptr)
            continue;
        print_entry(option.parameter == nullptr ? name : name + "=" + option.parameter, option.help,
                    "");
        any = true;
    }
    return any;
}

void print_all_options() {
    printf("Usage: %s [-options] filename\n\n", option_obj::executable_name);
    printf("Options have a name of two dashes; a comma parts it from other spellings of the\n"
           "same option. What stands in brackets may be left out. -h is an option of its own;\n"
           "--help=text shows the options that have to do with a text.\n");
    for (unsigned cls = 0; cls < CLASS_COUNT; cls++) {
        if (option_class_hidden(class_id(cls))) continue;
        printf("\n%s:\n", option_class_title(class_id(cls)));
        for (unsigned id = 0; id < OPTION_COUNT; id++)
            if (option_def(option_id(id)).cls == cls && !is_hidden(option_id(id)))
                print_option(option_id(id));
    }
}

std::string xml_escape(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '<')
            escaped += "&lt;";
        else if (c == '>')
            escaped += "&gt;";
        else if (c == '&')
            escaped += "&amp;";
        else if (c == '"')
            escaped += "&quot;";
        else
            escaped += c;
    }
    return escaped;
}

/// One line of the description, indented by its depth in the tree.
[[gnu::format(printf, 3, 4)]] void xml_line(FILE* to, int depth, const char* format, ...) {
    constexpr int INDENT = 4;
    va_list args;
    va_start(args, format);
    fprintf(to, "%*s%s\n", INDENT * depth, "", vstrformat(format, args).c_str());
    va_end(args);
}

const char* yes_no(bool yes) {
    return yes ? "yes" : "no";
}

void print_xml_option(FILE* to, option_id id) {
    const OPTION_DEF& def = option_def(id);
    xml_line(to, 1, "<OPTION NAME=\"%s\" CLASS=\"%s\" HIDDEN=\"%s\" EFFECT=\"%s\">",
             xml_escape(option_spelling(id, 0)).c_str(), option_class_title(def.cls),
             yes_no(is_hidden(id)), yes_no((def.flags & (OPTION_NO_EFFECT | OPTION_PENDING)) == 0));
    std::string_view spelling;
    for (unsigned form = 0; !(spelling = option_spelling(id, form)).empty(); form++)
        xml_line(to, 2, "<SPELLING>%s</SPELLING>", xml_escape(spelling).c_str());
    if (takes_parameter(def.kind))
        xml_line(to, 2, "<PARAMETER OPTIONAL=\"%s\" REPEATED=\"%s\" DEFAULT=\"%s\">%s</PARAMETER>",
                 yes_no(parameter_optional(def.kind)), yes_no(keeps_all(def.kind)),
                 xml_escape(def.default_text).c_str(), xml_escape(def.parameter).c_str());
    for (const OPTION_ITEM& item : def.items)
        xml_line(to, 2, "<VALUE>%s</VALUE>", xml_escape(item.text).c_str());
    for (const char* text : {def.help, def.more})
        if (text[0] != '\0') xml_line(to, 2, "<HELP>%s</HELP>", xml_escape(text).c_str());
    xml_line(to, 1, "</OPTION>");
}

} // namespace

void option_obj::display_option_help(const char* text) {
    if (text == nullptr) {
        if (banner != nullptr) banner(stdout);
        print_all_options();
        return;
    }
    bool any = false;
    for (unsigned id = 0; id < OPTION_COUNT; id++) {
        if (is_hidden(option_id(id)) || !matches(option_id(id), text)) continue;
        print_option(option_id(id));
        any = true;
    }
    if (!any) any = print_extensions(text);
    if (!any) printf(">> Help: No options match the string '%s'\n", text);
}

std::vector<std::string_view> option_obj::long_names() {
    std::vector<std::string_view> names;
    for (unsigned id = 0; id < OPTION_COUNT; id++) {
        if (is_hidden(option_id(id))) continue;
        std::string_view spelling;
        for (unsigned form = 0; !(spelling = option_spelling(option_id(id), form)).empty(); form++)
            if (spelling.starts_with("--")) names.push_back(spelling.substr(2));
    }
    for (const extension_option& extension : extensions) names.push_back(extension.name);
    return names;
}

void option_obj::print_xml(FILE* to) {
    fprintf(to, "<?xml version=\"1.0\" ?>\n<TOOLSET>\n");
    for (unsigned id = 0; id < OPTION_COUNT; id++) print_xml_option(to, option_id(id));
    fprintf(to, "</TOOLSET>\n");
}
