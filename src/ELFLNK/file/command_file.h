// COMMAND_FILE: a linker command file and its parser.
#pragma once

#include "ELFLNK/file/input_file.h"

#include <string_view>

class COMMAND_PARSER;
class LCF_PARSER;

class COMMAND_FILE : public INPUT_FILE {
  public:
    /// Takes over what `file` holds and makes the parser.
    explicit COMMAND_FILE(const INPUT_FILE& file);
    ~COMMAND_FILE() override;

    bool is_command_file() const override { return true; }
    /// The whole text; valid to the end of the process.
    std::string_view text() const { return text_; }
    LCF_PARSER* parser() const { return parser_; }

  private:
    std::string_view text_;
    LCF_PARSER* parser_;
};
