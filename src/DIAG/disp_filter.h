// Comma-delimited lists of display attributes, as --mapfile_contents takes them.
//
// A STRFLAGS is the set of attributes with their help texts and states; a DISP_FILTER parses option
// values into it.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// A named set of switches.
class STRFLAGS {
  public:
    struct FLAG {
        std::string description;
        bool on = false;
        bool hidden = false; ///< not shown in the help
    };
    virtual ~STRFLAGS() = default;

    void add(const char* name, const char* description, bool on, bool hidden = false) {
        flags_[name] = {description, on, hidden};
    }
    bool has(std::string_view name) const { return flags_.find(name) != flags_.end(); }
    /// The state; off for a name that is not in the set.
    bool is_on(std::string_view name) const;
    /// Sets a state; false if the name is not in the set.
    bool set(std::string_view name, bool on);
    void set_all(bool on);
    bool empty() const { return flags_.empty(); }
    const std::map<std::string, FLAG, std::less<>>& flags() const { return flags_; }

  private:
    std::map<std::string, FLAG, std::less<>> flags_;
};

class DISP_FILTER {
  public:
    DISP_FILTER(const char* option_name, STRFLAGS& flags)
        : option_name_(option_name), flags_(flags) {}

    /// Acts on an option's value: help, a list of the names, or settings. True if no attribute was
    /// unknown.
    bool process_option_arguments(std::string_view value);
    /// True for a value that only asks for help.
    static bool help_requested(std::string_view value) {
        return value.empty() || value == "listflags";
    }
    void disp_help() const;
    void list_flags() const;
    /// Applies each attribute of the list; true if none was unknown.
    bool parse_display_settings(std::string_view list);
    void parse_disp_attr(std::string_view attribute);
    const std::vector<std::string>& bad_attrs() const { return bad_attrs_; }
    STRFLAGS& flags() { return flags_; }

  private:
    std::string option_name_;
    STRFLAGS& flags_;
    std::vector<std::string> bad_attrs_;
};
