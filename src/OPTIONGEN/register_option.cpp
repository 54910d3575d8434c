// The map of switches behind --debug:key and --disable:key.
#include "OPTIONGEN/register_option.h"

#include <cstdlib>
#include <string>
#include <string_view>

namespace {

struct SWITCH {
    std::string_view key;
    register_option* option;
};

std::vector<SWITCH>& switches() {
    static std::vector<SWITCH> all;
    return all;
}

} // namespace

register_option::register_option(const char* key) {
    switches().push_back({key, this});
}

register_option* register_option::get_option(const char* key) {
    for (const SWITCH& entry : switches())
        if (entry.key == key) return entry.option;
    return nullptr;
}

std::vector<int> register_option::get_state() {
    std::vector<int> state;
    for (const SWITCH& entry : switches()) state.push_back(*entry.option);
    return state;
}

void register_option::set_state(const std::vector<int>& state) {
    const std::vector<SWITCH>& all = switches();
    for (size_t i = 0; i < all.size() && i < state.size(); i++) *all[i].option = state[i];
}

void register_option::reset_state() {
    for (const SWITCH& entry : switches()) *entry.option = 0;
}

void process_debug_option(const char* prefix, const char* text) {
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view item = rest.substr(0, rest.find(','));
        rest.remove_prefix(item.size() == rest.size() ? item.size() : item.size() + 1);
        const size_t equals = item.find('=');
        const std::string key = std::string(prefix) + ":" + std::string(item.substr(0, equals));
        const int value =
            equals == item.npos
                ? 1
                : int(strtol(std::string(item.substr(equals + 1)).c_str(), nullptr, 0));
        for (const SWITCH& entry : switches())
            if (entry.key == key) *entry.option = value;
    }
}
