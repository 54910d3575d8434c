#include "ELFLNK/target/init_order.h"

#include <limits>

std::optional<uint64_t> init_priority(std::string_view name) {
    constexpr uint64_t MAX = std::numeric_limits<uint64_t>::max();
    for (size_t at = 0; at < name.size(); at++) {
        if (name[at] != '.' && name[at] != ':') continue;
        uint64_t number = 0;
        size_t end = at + 1;
        for (; end < name.size() && name[end] >= '0' && name[end] <= '9'; end++) {
            const auto digit = static_cast<uint64_t>(name[end] - '0');
            number = number > (MAX - digit) / 10 ? MAX : number * 10 + digit;
        }
        if (end != at + 1 && end < name.size() &&
            (name[end] == '.' || name[end] == ':' || name[end] == '$'))
            return number;
    }
    return std::nullopt;
}

bool init_precedes(std::string_view a, std::string_view b) {
    const std::optional<uint64_t> first = init_priority(a);
    if (!first) return false;
    const std::optional<uint64_t> second = init_priority(b);
    return !second || *first < *second;
}
