// Option words to options.
//
// A word may hold several flags of one letter ("-ar"), or one option with its parameter: behind it
// ("-oa", "-o=a",
// "--output_file=a") or in the next word. Names are matched in any case, with a warning, and are
// never shortened. Where several spellings fit, the longest that can stand here wins, so that
// "-abs" is one option and "-ab" two.
#include "OPTIONGEN/option_parser.h"

#include "DIAG/optgen_msgs.h"
#include "UTIL/savestr.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace {

/// May an option with this spelling be followed by `rest`?
bool may_follow(const OPTION_SPELLING& spelling, const char* rest) {
    const parse_option_type kind = option_def(spelling.id).kind;
    const bool is_long = spelling.text[0] == '-';
    if (*rest == '\0') return true;
    if (!takes_parameter(kind)) return !is_long && spelling.text.size() == 1;
    if (*rest == '=' && !spelling.text.ends_with(':')) return true;
    if (spelling.text.ends_with(':')) return true;
    return !is_long && (!parameter_optional(kind) || (*rest >= '0' && *rest <= '9'));
}

const OPTION_SPELLING* find_option(const char* text) {
    const size_t length = strlen(text);
    for (const OPTION_SPELLING& spelling : option_spellings()) {
        const size_t size = spelling.text.size();
        if (size <= length && strncasecmp(spelling.text.data(), text, size) == 0 &&
            may_follow(spelling, text + size))
            return &spelling;
    }
    return nullptr;
}

/// Warns of a name that is not in the table's letters.
void deprecated_case(std::string_view text, std::string_view correct) {
    if (text == correct) return;
    const std::string written = "-" + std::string(text);
    const std::string wanted = "-" + std::string(correct);
    DIAG::optgen_case_insensitivity_deprecated message(__FILE__, __LINE__, written, wanted);
    if (DIAGNOSTIC::verbose_m && written == "-T")
        message.set_hint("; a command file is named without an option");
    message.report();
}

[[noreturn]] void bad_value(const OPTION_DEF& def, const char* option) {
    std::string listed;
    for (const OPTION_ITEM& item : def.items)
        if (item.mark == '+') listed += (listed.empty() ? "" : ",") + std::string(item.text);
    DIAG_REPORT(optgen_bad_argument, option, listed);
    exit(1);
}

} // namespace

bool option_obj::process_option(const char* text, const char** rest) {
    OPTION_PARSER parser(*this);
    const char* at = text;
    do {
        if (*at == '\0' || !parser.take(at)) {
            if (rest != nullptr) *rest = at;
            return false;
        }
    } while (*at != '\0');
    return true;
}

bool OPTION_PARSER::take(const char*& text) {
    const OPTION_SPELLING* found = find_option(text);
    if (found == nullptr) return take_extension(text);
    deprecated_case(std::string_view(text, found->text.size()), found->text);
    const char* rest = text + found->text.size();
    if (!takes_parameter(option_def(found->id).kind)) {
        apply(found->id, found->form, nullptr);
        text = rest;
        return true;
    }
    option_arg value;
    const bool given = parse_parameter(*found, rest, value);
    apply(found->id, found->form, given ? &value : nullptr);
    text += strlen(text);
    return true;
}

bool OPTION_PARSER::take_extension(const char*& text) {
    if (*text != '-') return false;
    for (const extension_option& option : option_obj::extensions) {
        const size_t size = strlen(option.name);
        if (strncmp(text + 1, option.name, size) != 0) continue;
        const char* rest = text + 1 + size;
        if (*rest != '\0' && (*rest != '=' || option.parameter == nullptr)) continue;
        const char* name = savestrf("--%s", option.name);
        option.action(option.parameter == nullptr
                          ? nullptr
                          : parameter_text(name, option.parameter, false, rest));
        text += strlen(text);
        return true;
    }
    return false;
}

/// The text of a parameter, which starts at `rest` or is the next word; null for an optional one
/// that is left out.
const char* OPTION_PARSER::parameter_text(const char* option, const char* parameter, bool optional,
                                          const char* rest) {
    if (optional && *rest == '\0') return nullptr;
    if (*rest == '=') rest++;
    if (*rest == '\0' && !optional && option_obj::next_arg != nullptr)
        rest = option_obj::next_arg();
    if (rest == nullptr || *rest == '\0') {
        DIAG_REPORT(optgen_missing_parameter, option, parameter);
        exit(1);
    }
    return rest;
}

/// False if the option stands without a value.
bool OPTION_PARSER::parse_parameter(const OPTION_SPELLING& found, const char* rest,
                                    option_arg& value) {
    const OPTION_DEF& def = option_def(found.id);
    const char* option = savestr(option_spelling(found.id, found.form));
    const char* text = parameter_text(option, def.parameter, parameter_optional(def.kind), rest);
    if (text == nullptr) {
        if (def.default_text[0] == '\0') return false;
        text = def.default_text;
    }
    if (takes_value(def.kind))
        value = parse_oneof(found.id, option, text);
    else if (takes_number(def.kind))
        value = check_numerical_arg(found.id, option, text);
    else
        value = {savestr(text), strtol_by_radix(text)};
    return true;
}

option_arg OPTION_PARSER::parse_oneof(option_id id, const char* option, const char* text) {
    for (const OPTION_ITEM& item : option_def(id).items) {
        if (strcasecmp(item.text, text) != 0) continue;
        if (item.mark == '*')
            fprintf(stderr,
                    "WARNING: argument '%s' to option '%s' is deprecated and will be removed in a "
                    "future release\n",
                    text, option);
        return {item.text, item.number};
    }
    bad_value(option_def(id), option);
}

option_arg OPTION_PARSER::check_numerical_arg(option_id id, const char* option, const char* text) {
    const option_range range = option_numbers(id);
    std::string digits = text;
    const int radix = get_radix(digits);
    char* end = nullptr;
    errno = 0;
    const long number = strtol(digits.c_str(), &end, radix);
    const bool is_number = end != digits.c_str() && *end == '\0' && errno == 0;
    if (is_number && number >= range.min && number <= range.max) return {savestr(text), number};
    const option_range whole =
        option_def(id).kind == REQ_UNSIGNED || option_def(id).kind == OPT_UNSIGNED
            ? option_range{0, long(UINT32_MAX)}
            : option_range{0, long(INT32_MAX)};
    if (range.min != whole.min || range.max != whole.max)
        DIAG_REPORT(optgen_arg_out_of_range2, option, text, unsigned(range.min),
                    unsigned(range.max));
    else if (strchr(text, '-') != nullptr)
        DIAG_REPORT(optgen_arg_out_of_range_non_neg, option, text);
    else
        DIAG_REPORT(optgen_arg_out_of_range, option, text);
    exit(1);
}

/// One occurrence of an option takes effect.
void OPTION_PARSER::apply(option_id id, unsigned char form, const option_arg* value) {
    option_obj::OPTION_STATE& option = options_.options_[id];
    option.form = form;
    option.parsed++;
    option.state++;
    option.seen++;
    if (options_.check_conflicts) options_.do_conflicts(id);
    if (value != nullptr)
        options_.set_value(id, *value);
    else if (!keeps_all(option_def(id).kind))
        option.args.clear();
    options_.add_to_history(id);
    if (options_.debug) {
        printf("elnk option debug: ");
        options_.print(stdout, id);
    }
    if (option_obj::action != nullptr) option_obj::action(id, value);
}
