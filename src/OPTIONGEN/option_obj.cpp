// The state of the options: what is on, with which values, and the history of how they came.
#include "OPTIONGEN/option_obj.h"

#include "OPTIONGEN/option_table.h"
#include "UTIL/runcmd.h"
#include "UTIL/savestr.h"

#include <algorithm>
#include <strings.h>

const char* option_obj::executable_name = "<toolname>";
const char* (*option_obj::next_arg)() = nullptr;
void (*option_obj::action)(option_id, const option_arg*) = nullptr;
void (*option_obj::banner)(FILE*) = nullptr;
std::span<const extension_option> option_obj::extensions;

option_obj::option_obj(bool defaults) {
    if (!defaults) return;
    setopt(OPT_ecc, OPTV_onoff_off);
    setopt(OPT_embedded_constants, OPTV_onoff_on);
}

long option_obj::getnumarg(option_id id, unsigned n) const {
    const OPTION_STATE& option = options_[id];
    if (option.state == 0 || n >= option.args.size()) return 0;
    const option_arg& arg = option.args[n];
    const parse_option_type kind = option_def(id).kind;
    if (takes_number(kind) || takes_value(kind) || arg.text == nullptr) return arg.number;
    return strtol_by_radix(arg.text);
}

const char* option_obj::getstrarg(option_id id, unsigned n) const {
    const OPTION_STATE& option = options_[id];
    return option.state == 0 || n >= option.args.size() ? nullptr : option.args[n].text;
}

unsigned option_obj::getargcount(option_id id) const {
    return options_[id].state == 0 ? 0 : unsigned(options_[id].args.size());
}

bool option_obj::isclass(option_id id, class_id cls) {
    return option_def(id).cls == cls;
}

bool option_obj::testclass(class_id cls) const {
    for (unsigned id = 0; id < OPTION_COUNT; id++)
        if (isclass(option_id(id), cls) && isopt(option_id(id))) return true;
    return false;
}

bool option_obj::seenclass(class_id cls) const {
    for (unsigned id = 0; id < OPTION_COUNT; id++)
        if (isclass(option_id(id), cls) && seen(option_id(id)) > 0) return true;
    return false;
}

void option_obj::setopt(option_id id) {
    options_[id].state++;
    options_[id].seen++;
    if (check_conflicts) do_conflicts(id);
    if (option_def(id).kind == FLAG) add_to_history(id);
}

void option_obj::setopt(option_id id, long value) {
    setopt(id);
    setarg(id, value);
    add_to_history(id);
}

void option_obj::setopt(option_id id, const char* value) {
    setopt(id);
    setarg(id, value);
    add_to_history(id);
}

void option_obj::setarg(option_id id, long value) {
    const char* text = nullptr;
    for (const OPTION_ITEM& item : option_def(id).items)
        if (item.number == value) text = item.text;
    set_value(id, {text, value});
}

void option_obj::setarg(option_id id, const char* value) {
    option_arg arg{savestr(value), 0};
    if (takes_value(option_def(id).kind)) {
        for (const OPTION_ITEM& item : option_def(id).items)
            if (strcasecmp(item.text, value) == 0) arg = {item.text, item.number};
    } else {
        arg.number = strtol_by_radix(value);
    }
    set_value(id, arg);
}

void option_obj::set_value(option_id id, option_arg value) {
    std::vector<option_arg>& args = options_[id].args;
    if (!keeps_all(option_def(id).kind)) args.clear();
    args.push_back(value);
}

void option_obj::clearopt(option_id id) {
    if ((option_def(id).flags & OPTION_PERSISTENT) != 0) return;
    options_[id].state = 0;
    options_[id].seen++;
    options_[id].args.clear();
    clear_history(id);
}

void option_obj::setclassmembers(class_id cls) {
    for (unsigned id = 0; id < OPTION_COUNT; id++)
        if (isclass(option_id(id), cls)) setopt(option_id(id));
}

void option_obj::clearclassmembers(class_id cls) {
    for (unsigned id = 0; id < OPTION_COUNT; id++)
        if (isclass(option_id(id), cls)) clearopt(option_id(id));
}

void option_obj::add_to_history(option_id id) {
    if (!keeps_all(option_def(id).kind)) clear_history(id);
    const std::vector<option_arg>& args = options_[id].args;
    history_.push_back(
        {id, args.empty() ? 0 : args.back().number, args.empty() ? nullptr : args.back().text});
}

void option_obj::clear_history(option_id id) {
    std::erase_if(history_, [id](const option_history& entry) { return entry.id == id; });
}

const char* option_obj::internal_option_string(option_id id) {
    return savestr(option_spelling(id, 0));
}

const char* option_obj::format_of_option(option_id id) const {
    return savestr(option_spelling(id, options_[id].form));
}

/// The nth value as text that parses again; empty if there is none.
std::string option_obj::value_text(option_id id, unsigned n) const {
    const OPTION_STATE& option = options_[id];
    if (option.state == 0 || n >= option.args.size()) return {};
    const option_arg& arg = option.args[n];
    return arg.text != nullptr ? arg.text : std::to_string(arg.number);
}

std::string option_obj::export_option(option_id id, unsigned n) const {
    std::string text(option_spelling(id, 0));
    const std::string value = value_text(id, n);
    if (value.empty()) return text;
    return text + (text.ends_with(':') ? "" : "=") + value;
}

std::vector<option_id> option_obj::options_to_export() const {
    std::vector<option_id> ids;
    for (unsigned id = 0; id < OPTION_COUNT; id++)
        if (isopt(option_id(id))) ids.push_back(option_id(id));
    std::stable_sort(ids.begin(), ids.end(), [](option_id a, option_id b) {
        return option_def(a).sort < option_def(b).sort;
    });
    return ids;
}

std::vector<std::string> option_obj::export_option_list() const {
    std::vector<std::string> list;
    for (const option_id id : options_to_export())
        for (unsigned n = 0; n == 0 || n < getargcount(id); n++)
            list.push_back(export_option(id, n));
    return list;
}

std::vector<std::pair<std::string, std::string>>
option_obj::export_option_pairs(parse_option_type kind, class_id cls) const {
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const option_id id : options_to_export()) {
        if (option_def(id).kind != kind || !isclass(id, cls)) continue;
        for (unsigned n = 0; n == 0 || n < getargcount(id); n++)
            pairs.emplace_back(option_spelling(id, 0), value_text(id, n));
    }
    return pairs;
}

void option_obj::add_opts_for_tool(argv_list& tool) const {
    for (const std::string& option : export_option_list()) tool.add(option.c_str());
}

void option_obj::dump(FILE* to) const {
    for (const std::string& option : export_option_list()) fprintf(to, "%s\n", option.c_str());
}

void option_obj::dump_history(FILE* to) const {
    for (const option_history& entry : history_)
        fprintf(to, "%s %ld %s\n", internal_option_string(entry.id), entry.number,
                entry.text != nullptr ? entry.text : "");
}

void option_obj::print(FILE* to, option_id id) const {
    const OPTION_STATE& option = options_[id];
    fprintf(to, "%s: state %u, seen %u, parsed %u", internal_option_string(id), option.state,
            option.seen, option.parsed);
    for (unsigned n = 0; n < option.args.size(); n++)
        fprintf(to, "%s \"%s\"", n == 0 ? ", values" : ",", value_text(id, n).c_str());
    fputc('\n', to);
}

const char* option_obj::rot13(const char* text) {
    constexpr unsigned RESULTS = 5;
    static std::array<std::string, RESULTS> ring;
    static unsigned next = 0;
    std::string result; // the text may be the oldest of the ring
    for (; *text != '\0'; text++) {
        const char c = *text;
        const char first = c >= 'a' && c <= 'z' ? 'a' : c >= 'A' && c <= 'Z' ? 'A' : '\0';
        if (first != '\0')
            result += char(first + (c - first + 13) % 26);
        else
            result += c == '-' ? '%' : c == '%' ? '-' : c;
    }
    std::string& kept = ring[next];
    next = (next + 1) % RESULTS;
    kept = std::move(result);
    return kept.c_str();
}
