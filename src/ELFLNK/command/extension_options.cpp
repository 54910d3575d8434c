#include "ELFLNK/command/extension_options.h"

#include "DIAG/gen_msgs.h"
#include "ELFLNK/main/main.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/write/dependency_file.h"
#include "OPTIONGEN/option_obj.h"

#include <cstdlib>
#include <string_view>

namespace {

/// What a relocation of type TARGET2 means is left to the platform: an address, or a distance.
void target2(const char* value) {
    const std::string_view text = value;
    if (text != "abs" && text != "rel")
        DIAG_REPORT(gen_opt_param_invalid, value, "--target2");
    else
        Target->set_target2_relative(text == "rel");
}

void version(const char*) {
    print_tool_and_version(stdout);
    std::exit(0);
}

constexpr extension_option EXTENSIONS[] = {
    {"target2", "abs|rel", target2,
     "What relocations of type TARGET2 hold: an address (abs), or a distance (rel, as GNU's C++ "
     "library expects)"},
    {"version", nullptr, version, "Show the version and stop"},
    {"dependency_file", "file", set_dependency_file,
     "Write the files that the link reads as a rule for make"},
};

} // namespace

std::span<const extension_option> extension_options() {
    return EXTENSIONS;
}
