// Reads a version script: a VERSION block, or a list of definitions alone.
#pragma once

#include "ELFLNK/parse_lcf/lcf_parser.h"

class VERSION_PARSER : public LCF_PARSER {
  public:
    using LCF_PARSER::LCF_PARSER;
    void parse() override;
};

/// The caller owns it.
VERSION_PARSER* new_VERSION_PARSER(COMMAND_FILE* file);
