// A command file is parsed in place, from the mapped text.
#include "ELFLNK/file/command_file.h"

#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "UTIL/file_handle_manager.h"

COMMAND_FILE::COMMAND_FILE(const INPUT_FILE& input) : INPUT_FILE(input) {
    const std::span<const uint8_t> bytes = file()->contents();
    text_ = {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    parser_ = new_LCF_PARSER(this);
}

COMMAND_FILE::~COMMAND_FILE() {
    delete parser_;
}
