// Parses one option word.
#pragma once

#include "OPTIONGEN/option_table.h"

class OPTION_PARSER {
  public:
    explicit OPTION_PARSER(option_obj& options) : options_(options) {}
    /// Takes the option at the start of `text` and moves behind it: to the end of the text, or to
    /// the next of several joined flags. False if there is no such option.
    bool take(const char*& text);

  private:
    bool take_extension(const char*& text);
    bool parse_parameter(const OPTION_SPELLING& found, const char* rest, option_arg& value);
    const char* parameter_text(const char* option, const char* parameter, bool optional,
                               const char* rest);
    option_arg parse_oneof(option_id id, const char* option, const char* text);
    option_arg check_numerical_arg(option_id id, const char* option, const char* text);
    void apply(option_id id, unsigned char form, const option_arg* value);

    option_obj& options_;
};
