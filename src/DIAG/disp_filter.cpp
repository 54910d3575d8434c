#include "DIAG/disp_filter.h"

#include <algorithm>
#include <cstdio>

bool STRFLAGS::is_on(std::string_view name) const {
    const auto found = flags_.find(name);
    return found != flags_.end() && found->second.on;
}

bool STRFLAGS::set(std::string_view name, bool on) {
    const auto found = flags_.find(name);
    if (found == flags_.end()) return false;
    found->second.on = on;
    return true;
}

void STRFLAGS::set_all(bool on) {
    for (auto& entry : flags_) entry.second.on = on;
}

bool DISP_FILTER::process_option_arguments(std::string_view value) {
    if (value.empty()) {
        disp_help();
        return true;
    }
    if (value == "listflags") {
        list_flags();
        return true;
    }
    return parse_display_settings(value);
}

void DISP_FILTER::list_flags() const {
    const char* separator = "";
    for (const auto& [name, flag] : flags_.flags()) {
        std::printf("%s%s", separator, name.c_str());
        separator = ",";
    }
    std::printf("\n");
}

bool DISP_FILTER::parse_display_settings(std::string_view list) {
    const size_t bad_before = bad_attrs_.size();
    while (true) {
        const size_t comma = list.find(',');
        parse_disp_attr(list.substr(0, comma));
        if (comma == list.npos) break;
        list.remove_prefix(comma + 1);
    }
    return bad_attrs_.size() == bad_before;
}

void DISP_FILTER::parse_disp_attr(std::string_view attribute) {
    if (attribute == "all" || attribute == "none") {
        flags_.set_all(attribute == "all");
        return;
    }
    const bool off = attribute.starts_with("no");
    const std::string_view name = off ? attribute.substr(2) : attribute;
    if (!flags_.set(name, !off)) bad_attrs_.emplace_back(name);
}

void DISP_FILTER::disp_help() const {
    constexpr int INDENT = 3;
    int name_width = 4; // of "none"
    int text_width = static_cast<int>(std::string_view("disables all attributes").size());
    std::vector<const char*> examples;
    for (const auto& [name, flag] : flags_.flags()) {
        if (flag.hidden) continue;
        name_width = std::max(name_width, static_cast<int>(name.size()));
        text_width = std::max(text_width, static_cast<int>(flag.description.size()));
        examples.push_back(name.c_str());
    }
    std::printf("\nThe %s option controls display filter settings by specifying a \n"
                "comma-delimited list of display attributes.  When prefixed with the word \"no\",\n"
                "an attribute is disabled instead of enabled.\n\n",
                option_name_.c_str());
    std::printf("The following attributes are available:\n\n");
    for (const auto& [name, flag] : flags_.flags())
        if (!flag.hidden)
            std::printf("%*s%*s: %-*s (default: %s)\n", INDENT, "", name_width, name.c_str(),
                        text_width, flag.description.c_str(), flag.on ? "on" : "off");
    std::printf("%*s%*s: %s\n", INDENT, "", name_width, "all", "enables all attributes");
    std::printf("%*s%*s: %s\n", INDENT, "", name_width, "none", "disables all attributes");
    if (examples.size() < 2) return;
    std::printf("\n   Examples:  %s=%s,no%s\n", option_name_.c_str(), examples[0], examples[1]);
    std::printf("              %s=all,no%s\n", option_name_.c_str(), examples[0]);
    std::printf("              %s=none,%s\n", option_name_.c_str(), examples[0]);
}
