// What options mean for each other: conflicts as each one is met, dependencies once all are known.
#include "DIAG/optgen_msgs.h"
#include "OPTIONGEN/option_table.h"

#include <cstdlib>
#include <cstring>

namespace {

enum CONFLICT_RESULT { QUIET = 1, OVERRIDE = 2, FORBIDDEN = 3 };

struct CONFLICT_ROW {
    option_id newer;
    option_id older;
    CONFLICT_RESULT result;
};

constexpr CONFLICT_ROW conflicts[] = {
#define OPTION_CONFLICT(newer, older, result) {OPT_##newer, OPT_##older, result},
#include "OPTIONGEN/lnkopt.def"
};

enum DEPENDS_RESULT { WARN, ERR };
constexpr long ANY = -1;

// The conditions that dependencies name: true if the option cannot stand.
using CONDITION = bool (*)(const option_obj&);

bool no_sysv(const option_obj& o) {
    return !o.isopt(OPT_sysv);
}
bool relocatable(const option_obj& o) {
    return o.isopt(OPT_relocatable);
}
// The option has a value from the start; what counts is whether the user gave it.
bool no_ecc(const option_obj& o) {
    return o.parsed_option(OPT_ecc) == 0;
}
bool no_references_file(const option_obj& o) {
    return !o.isopt(OPT_emit_references_file);
}
bool not_dynamic(const option_obj& o) {
    return !o.isopt(OPT_dynamic) && !o.isopt(OPT_sysv) && !o.isopt(OPT_rom);
}
bool no_platform(const option_obj& o) {
    return !o.isopt(OPT_platform);
}
bool not_dynamic_platform(const option_obj& o) {
    return not_dynamic(o) && no_platform(o);
}

struct DEPENDS_ROW {
    option_id id;
    long value;
    CONDITION cannot_stand;
    const char* word;
    const char* text;
    DEPENDS_RESULT result;
};

constexpr DEPENDS_ROW depends[] = {
#define OPTION_DEPENDS(id, value, condition, word, text, result)                                   \
    {OPT_##id, value, condition, word, text, result},
#include "OPTIONGEN/lnkopt.def"
};

bool looks_like_optimization_level(const char* text) {
    for (const char* level : {"off", "0", "1", "2", "3", "4"})
        if (strcmp(text, level) == 0) return true;
    return false;
}

} // namespace

void option_obj::do_conflicts(option_id id) {
    for (const CONFLICT_ROW& row : conflicts) {
        if (row.newer != id || !isopt(row.older)) continue;
        const char* newer = format_of_option(id);
        const char* older = format_of_option(row.older);
        if (row.result == FORBIDDEN) DIAG_REPORT(optgen_conflict_option, newer, older);
        if (row.result == OVERRIDE) DIAG_REPORT(optgen_conflict_override_option, newer, older);
        if (row.result == QUIET && debug) DIAG_REPORT(optgen_conflict_quiet_option, newer, older);
        clearopt(row.older);
        if (row.result == FORBIDDEN) exit(1);
    }
}

void option_obj::post_process_option_depends() {
    if (isopt(OPT_emit_references_file) && parsed_option(OPT_emit_references_format) == 0)
        setopt(OPT_emit_references_format, "TEXT");
    const char* output = getstrarg(OPT_output_file);
    if (output != nullptr && options_[OPT_output_file].form != 0 &&
        looks_like_optimization_level(output))
        DIAG_REPORT(optgen_lnk_outfile_looks_like_opt_level, output,
                    format_of_option(OPT_output_file));
    for (const DEPENDS_ROW& row : depends) {
        const bool on = row.value == ANY ? isopt(row.id) : isvalue(row.id, row.value);
        if (!on || !row.cannot_stand(*this)) continue;
        if (row.result == WARN) {
            DIAG_REPORT(optgen_depends_on_warn, format_of_option(row.id), row.word, row.text);
            clearopt(row.id);
        } else {
            DIAG_REPORT(optgen_depends_on_error, format_of_option(row.id), row.word, row.text);
            error_count_++;
        }
    }
    if (error_count_ > 0) exit(1);
}
