// What the rest of the linker sees of the parser of a command file.
#pragma once

class COMMAND_FILE;
class LCF_PARSER;

class COMMAND_PARSER {
  public:
    virtual ~COMMAND_PARSER() = default;
    /// Reads the whole file.
    virtual void parse() = 0;
    /// The next word of the line as an option's argument, or null (after a message). The text lives
    /// to the end.
    virtual const char* option_argument() = 0;
    virtual void define_ppsym(const char* name, const char* value) = 0;
    virtual void undefine_ppsym(const char* name) = 0;
};

/// The parser of a linker command file. The caller owns it.
LCF_PARSER* new_LCF_PARSER(COMMAND_FILE* file);
