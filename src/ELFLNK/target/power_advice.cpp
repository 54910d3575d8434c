// See the header.
#include "ELFLNK/target/power_advice.h"

#include <cctype>
#include <cstring>

#include "DIAG/diagnostic.h"
#include "DIAG/elnk_msgs.h"
#include "OPTIONGEN/option_obj.h"

void POWER_ADVICE::check_power_advice() {
    if (!global_opts->isopt(OPT_advice_power)) return;
    const char* rule = global_opts->getstrarg(OPT_advice_power);
    if (rule != nullptr && std::strcmp(rule, "none") == 0) return;
    const bool remarks = DIAGNOSTIC::remarks_m;
    DIAGNOSTIC::remarks_m = true;
    if (lpm_instruction_info() == 1) DIAG_REPORT(elnk_lpm_info);
    check_ports();
    target_check_power_advice();
    DIAGNOSTIC::remarks_m = remarks;
}

void POWER_ADVICE::check_ports() {
    const std::string info = ports_initialization_info();
    const size_t count = info.size() / 3;
    for (size_t i = 0; i < count && info[i] != '\0'; ++i) {
        if (info[count + i] != '1' || info[2 * count + i] != '0') continue;
        const bool is_letter = std::isalpha(static_cast<unsigned char>(info[i])) != 0;
        const std::string port = is_letter ? std::string(1, info[i]) : std::to_string(i);
        DIAG_REPORT(elnk_ports_init, port);
    }
}
