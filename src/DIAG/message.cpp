// Formatting of generated messages. The arguments are kept as text and 64-bit numbers, so each
// conversion is printed on its own: a number with its own width where it fits, in full where its
// type was wider than the conversion.
#include "DIAG/message.h"

#include "UTIL/strformat.h"

namespace DIAG {

namespace {

struct SPEC {
    std::string flags; ///< '%', flags, width and precision
    std::string size;  ///< the length modifier
    char kind = '\0';
};

SPEC parse_spec(std::string_view text) {
    size_t at = 1;
    while (at < text.size() &&
           std::string_view("-+ #0123456789.").find(text[at]) != std::string_view::npos)
        at++;
    SPEC spec;
    spec.flags = text.substr(0, at);
    while (at < text.size() && std::string_view("hlzjt").find(text[at]) != std::string_view::npos)
        spec.size += text[at++];
    spec.kind = text[at];
    return spec;
}

std::string format_number(const SPEC& spec, const ARGUMENT& argument) {
    char text[128];
    if (spec.kind == 'c') {
        const std::string format = spec.flags + "c";
        std::snprintf(text, sizeof text, format.c_str(), static_cast<int>(argument.number));
        return text;
    }
    const std::string format = spec.flags + "ll" + spec.kind;
    const bool wide = argument.wide || spec.size.find_first_of("lzjt") != std::string::npos;
    const bool is_signed = spec.kind == 'd' || spec.kind == 'i';
    if (is_signed)
        std::snprintf(text, sizeof text, format.c_str(),
                      wide ? static_cast<long long>(argument.number)
                           : static_cast<int>(argument.number));
    else
        std::snprintf(text, sizeof text, format.c_str(),
                      wide ? static_cast<unsigned long long>(argument.number)
                           : static_cast<unsigned>(argument.number));
    return text;
}

/// Appends one text; returns how many arguments it took.
size_t append_formatted(std::string& to, std::string_view text,
                        const std::vector<ARGUMENT>& arguments, size_t next) {
    const size_t first = next;
    while (!text.empty()) {
        const size_t percent = text.find('%');
        to += text.substr(0, percent);
        if (percent == text.npos) break;
        text.remove_prefix(percent);
        if (text.size() > 1 && text[1] == '%') {
            to += '%';
            text.remove_prefix(2);
            continue;
        }
        const SPEC spec = parse_spec(text);
        const ARGUMENT& argument = arguments.at(next++);
        to += spec.kind == 's' && spec.flags == "%" ? argument.text
              : spec.kind == 's' ? strformat((spec.flags + "s").c_str(), argument.text.c_str())
                                 : format_number(spec, argument);
        text.remove_prefix(spec.flags.size() + spec.size.size() + 1);
    }
    return next - first;
}

} // namespace

std::string format_message(const char* text, const std::vector<ARGUMENT>& arguments) {
    std::string result;
    append_formatted(result, text, arguments, 0);
    return result;
}

int MESSAGE_BASE::report() {
    int printed = print_header();
    std::string text;
    const size_t used = append_formatted(text, info()->std_msg, arguments_, 0);
    printed += print_text(text);
    if (info()->vrb_msg != nullptr && verbose_m) {
        text.clear();
        append_formatted(text, info()->vrb_msg, arguments_, used);
        printed += print_text(text);
    }
    if (verbose_m && !hint().empty()) printed += print_text(hint());
    flush();
    return printed;
}

} // namespace DIAG
