// Numbers as users write them: 0x10 and 10h, 010 and 10q, 16.
#include "OPTIONGEN/option_obj.h"

#include <cctype>
#include <cstdlib>

int get_radix(std::string& text) {
    const size_t start = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    const std::string_view digits = std::string_view(text).substr(start);
    if (digits.size() >= 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) return 16;
    const size_t end = digits.find_first_not_of("0123456789abcdefABCDEF");
    if (end != digits.npos && end > 0 && end + 1 == digits.size()) {
        const char suffix = char(std::tolower(static_cast<unsigned char>(digits[end])));
        const bool octal = digits.find_first_not_of("01234567") == end;
        if (suffix == 'h' || (suffix == 'q' && octal)) {
            text.pop_back();
            return suffix == 'h' ? 16 : 8;
        }
    }
    return digits.size() >= 2 && digits[0] == '0' && digits[1] >= '0' && digits[1] < '8' ? 8 : 10;
}

long strtol_by_radix(const char* text) {
    std::string digits = text;
    const int radix = get_radix(digits);
    return std::strtol(digits.c_str(), nullptr, radix);
}

unsigned long strtoul_by_radix(const char* text) {
    std::string digits = text;
    const int radix = get_radix(digits);
    return std::strtoul(digits.c_str(), nullptr, radix);
}
