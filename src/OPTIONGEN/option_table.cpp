// The tables made from lnkopt.def, and the proof that they are in order: ids follow the alphabet,
// every enumerated option has a list, conflicts are written in both directions.
#include "OPTIONGEN/option_table.h"

#include <algorithm>
#include <cstdint>

namespace {

struct LISTED_ITEM {
    std::string_view list;
    OPTION_ITEM item;
};

constexpr LISTED_ITEM listed_items[] = {
#define OPTION_VALUE(list, name, text, mark, number) {#list, {text, mark, number}},
#include "OPTIONGEN/lnkopt.def"
};

// The texts and marks alone: the lists of options are pieces of this array.
constexpr auto items = [] {
    std::array<OPTION_ITEM, std::size(listed_items)> all{};
    for (size_t i = 0; i < all.size(); i++) all[i] = listed_items[i].item;
    return all;
}();

constexpr std::span<const OPTION_ITEM> item_list(std::string_view list) {
    size_t begin = 0;
    while (begin < std::size(listed_items) && listed_items[begin].list != list) begin++;
    size_t end = begin;
    while (end < std::size(listed_items) && listed_items[end].list == list) end++;
    return std::span<const OPTION_ITEM>(items).subspan(begin == std::size(listed_items) ? 0 : begin,
                                                       end - begin);
}

constexpr unsigned INTERNAL = OPTION_INTERNAL;
constexpr unsigned PERSISTENT = OPTION_PERSISTENT;
constexpr unsigned NO_EFFECT = OPTION_NO_EFFECT;
constexpr unsigned PENDING = OPTION_PENDING;

constexpr OPTION_DEF option_definitions[] = {
#define OPTION(id, spellings, parm, kind, list, deflt, cls, flags, sort, help, more)               \
    {spellings, parm, kind, item_list(#list), deflt, CLASS_##cls, flags, sort, help, more},
#include "OPTIONGEN/lnkopt.def"
};

constexpr std::string_view long_name(const OPTION_DEF& def) {
    const std::string_view spellings = def.spellings;
    return spellings.substr(0, spellings.find(','));
}

constexpr bool definitions_in_order() {
    for (size_t i = 1; i < OPTION_COUNT; i++)
        if (long_name(option_definitions[i - 1]) >= long_name(option_definitions[i])) return false;
    return true;
}

constexpr bool values_have_lists() {
    for (const OPTION_DEF& def : option_definitions) {
        const bool enumerated =
            def.kind == REQ_VALUE || def.kind == REQ_VALUES || def.kind == OPT_VALUE;
        if (enumerated == def.items.empty()) return false;
        if ((def.kind == FLAG) != (def.parameter[0] == '\0')) return false;
    }
    return true;
}

static_assert(OPTION_COUNT == 150 && std::size(option_definitions) == OPTION_COUNT);
static_assert(definitions_in_order(), "the rows of options are not in the order of their names");
static_assert(values_have_lists(), "an option and its kind of parameter do not agree");

struct CLASS_DEF {
    const char* title;
    bool hidden;
};

constexpr CLASS_DEF classes[] = {
    {"Basic options", false},
    {"Finding files and libraries", false},
    {"Preprocessing of command files", false},
    {"Messages", false},
    {"Output files and reports", false},
    {"Symbols", false},
    {"Run-time model", false},
    {"Placement and size", false},
    {"Dynamic linking", false},
    {"Link-time optimisation", false},
    {"Advice", false},
    {"Help", false},
    {"Directories of a recompilation", true},
    {"For build files of old", true},
    {"For developers of the linker", true},
};
static_assert(std::size(classes) == CLASS_COUNT);

} // namespace

const OPTION_DEF& option_def(option_id id) {
    return option_definitions[id];
}

option_range option_numbers(option_id id) {
    switch (id) {
#define OPTION_RANGE(id, min, max)                                                                 \
    case OPT_##id:                                                                                 \
        return {min, max};
#include "OPTIONGEN/lnkopt.def"
    default:
        break;
    }
    const parse_option_type kind = option_def(id).kind;
    return {0, kind == REQ_UNSIGNED || kind == OPT_UNSIGNED ? long(UINT32_MAX) : long(INT32_MAX)};
}

std::string_view option_spelling(option_id id, unsigned form) {
    std::string_view rest = option_def(id).spellings;
    for (; form > 0; form--) {
        const size_t comma = rest.find(',');
        if (comma == rest.npos) return {};
        rest.remove_prefix(comma + 1);
    }
    return rest.substr(0, rest.find(','));
}

const std::vector<OPTION_SPELLING>& option_spellings() {
    static const std::vector<OPTION_SPELLING> all = [] {
        std::vector<OPTION_SPELLING> list;
        for (unsigned id = 0; id < OPTION_COUNT; id++) {
            std::string_view text;
            for (unsigned char form = 0; !(text = option_spelling(option_id(id), form)).empty();
                 form++)
                list.push_back({text.substr(1), option_id(id), form});
        }
        std::stable_sort(list.begin(), list.end(),
                         [](const OPTION_SPELLING& a, const OPTION_SPELLING& b) {
                             return a.text.size() > b.text.size();
                         });
        return list;
    }();
    return all;
}

const char* option_class_title(class_id cls) {
    return classes[cls].title;
}

bool option_class_hidden(class_id cls) {
    return classes[cls].hidden;
}
