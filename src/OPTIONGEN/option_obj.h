// The options of the link: which are on, with which values, in which order they came.
//
// One option_obj, global_opts, holds what the command line and the command files said. Parsing,
// case folding, joined short flags, conflicts, dependencies and help are driven by the rows of
// lnkopt.def. What an option does at the moment when it is met is the business of the linker: it
// sets `action`, which is called once per occurrence.
#pragma once

#include "OPTIONGEN/option_id.h"

#include <array>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class argv_list;

/// One value of an option: its text and its number.
struct option_arg {
    const char* text = nullptr; ///< lasting copy; null if only a number was set
    long number = 0;
};

/// An entry of the history: an option as it was given.
struct option_history {
    option_id id;
    long number;
    const char* text; ///< null for an option without a value
};

/// The numbers that an option accepts, inclusive.
struct option_range {
    long min;
    long max;
};

/// An option beside the table: "--name", or "--name=value" and "--name value" if it takes a
/// parameter.
struct extension_option {
    const char* name;      ///< without dashes
    const char* parameter; ///< what the parameter is called, or null for none
    void (*action)(const char* value);
    const char* help; ///< shown where a text asked for is in no help of the table
};

class option_obj {
  public:
    /// Everything off; `defaults` sets the options that are on unless the user says otherwise.
    explicit option_obj(bool defaults = false);

    /// True if the option is on.
    bool isopt(option_id id) const { return options_[id].state > 0; }
    /// How many times the option is on.
    unsigned state(option_id id) const { return options_[id].state; }
    /// How often the option was ever set or cleared.
    unsigned seen(option_id id) const { return options_[id].seen; }
    /// How many times the option was given by the user.
    unsigned parsed_option(option_id id) const { return options_[id].parsed; }
    /// The number of the nth occurrence (of an enumerated value: its OPTV_ number; of a text: read
    /// by its radix). 0 if the option is off or has fewer occurrences.
    long getnumarg(option_id id, unsigned n = 0) const;
    /// The text of the nth occurrence (of an enumerated value: the value as the table spells it),
    /// or null.
    const char* getstrarg(option_id id, unsigned n = 0) const;
    unsigned getargcount(option_id id) const;
    /// True if the option is on and its first value has this number: isvalue(OPT_dynamic,
    /// OPTV_dynamic_lib).
    bool isvalue(option_id id, long value) const {
        return isopt(id) && getargcount(id) > 0 && getnumarg(id) == value;
    }
    /// True unless the option is on with the value off: the reading of an on/off option that is on
    /// by default.
    bool not_off(option_id id) const { return !isvalue(id, OPTV_onoff_off); }

    static bool isclass(option_id id, class_id cls);
    /// True if an option of the class is on, or was ever seen.
    bool testclass(class_id cls) const;
    bool seenclass(class_id cls) const;

    void setopt(option_id id);
    void setopt(option_id id, long value);
    void setopt(option_id id, const char* value);
    void setopt(class_id cls) { setclassmembers(cls); }
    void setarg(option_id id, long value);
    void setarg(option_id id, const char* value);
    /// Off, without values and history; a persistent option stays.
    void clearopt(option_id id);
    void clearopt(class_id cls) { clearclassmembers(cls); }
    void setclassmembers(class_id cls);
    void clearclassmembers(class_id cls);
    void add_to_history(option_id id);
    void clear_history(option_id id);
    const std::vector<option_history>& history() const { return history_; }

    /// Parses the option word `text`, which comes without its first dash. False if there is no such
    /// option; what was not understood then goes to `rest`.
    bool process_option(const char* text, const char** rest = nullptr);
    /// What has to be looked at once all options are known: defaults that hang on others, and
    /// dependencies. Ends the process with status 1 if an option cannot stand.
    void post_process_option_depends();

    /// The option as text that parses again, of its nth value.
    std::string export_option(option_id id, unsigned n) const;
    std::vector<std::string> export_option_list() const;
    /// The options of a class and a kind that are on, as pairs of long name and value, one for each
    /// value (an empty one for an option without), in the order of export_option_list().
    std::vector<std::pair<std::string, std::string>> export_option_pairs(parse_option_type kind,
                                                                         class_id cls) const;
    /// The option by its long name, "--output_file".
    static const char* internal_option_string(option_id id);
    /// The option by the spelling that the user wrote last.
    const char* format_of_option(option_id id) const;
    /// Adds all options that are on to another tool's command line, by their sort number.
    void add_opts_for_tool(argv_list& tool) const;
    void dump(FILE* to) const;
    void dump_history(FILE* to) const;
    /// One option: how often it is on, was touched and was given, and its values.
    void print(FILE* to, option_id id) const;

    /// The long names that the help shows, and those of extensions.
    static std::vector<std::string_view> long_names();
    /// Letters turned by 13 places within their case, '-' and '%' exchanged: how texts of options
    /// are kept from a plain search of the program. Its own inverse. The last five results stay
    /// valid.
    static const char* rot13(const char* text);

    /// All options by class, or those that have `text` in their help or begin with it. Goes to
    /// standard output.
    static void display_option_help(const char* text = nullptr);
    /// The description of all options in XML.
    static void print_xml(FILE* to);

    /// True while conflicts between options are looked at.
    bool check_conflicts = true;
    /// Print every step on standard output.
    bool debug = false;

    /// The name of the program in the help.
    static const char* executable_name;
    /// Fetches the next word of the command line or command file for a parameter that stands apart;
    /// null at the end.
    static const char* (*next_arg)();
    /// Called at each occurrence of an option, after it has been set.
    static void (*action)(option_id id, const option_arg* value);
    /// Options that are asked only where the table knows none.
    static std::span<const extension_option> extensions;
    /// Prints the name and version of the tool above the help.
    static void (*banner)(FILE* to);

  private:
    friend class OPTION_PARSER;
    struct OPTION_STATE {
        unsigned state = 0;
        unsigned seen = 0;
        unsigned parsed = 0;
        unsigned char form = 0;
        std::vector<option_arg> args;
    };
    void do_conflicts(option_id id);
    void set_value(option_id id, option_arg value);
    /// The options that are on, in the order in which they are exported.
    std::vector<option_id> options_to_export() const;
    std::string value_text(option_id id, unsigned n) const;

    std::array<OPTION_STATE, OPTION_COUNT> options_;
    std::vector<option_history> history_;
    unsigned error_count_ = 0;
};

/// The options of this link; made by main().
extern option_obj* global_opts;

/// The radix of a number as written: 16 for 0x10 and 10h, 8 for 010 and 10q, else 10. A suffix is
/// removed from `text`.
int get_radix(std::string& text);
/// The number in `text` by its radix, saturated.
long strtol_by_radix(const char* text);
unsigned long strtoul_by_radix(const char* text);
