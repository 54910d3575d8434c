// See the header. Names are compared eight bytes at a time, behind what all of one size have in
// common; the objects are only asked where names of sections are the same.
#include "ELFLNK/placement/order/member_order.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <span>

#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/object/section.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OPTIONGEN/option_obj.h"

namespace {

/// What decides nearly always, close together in memory.
struct MEMBER {
    uint64_t size;
    uint64_t chunk; // eight bytes of the name, the first one highest
    const char* name;
    LOCATOR* locator;
};
using MEMBERS = std::span<MEMBER>;
constexpr size_t CHUNK = sizeof(uint64_t);

/// False if one of the list doesn't differ from the others in size and name only.
bool list_members(const LOCATOR_LIST& list, std::vector<MEMBER>& members) {
    const SECTION* first = list.empty() ? nullptr : as_section(list.front()->object());
    if (first == nullptr || first->parent() == nullptr) return false;
    members.reserve(list.size());
    for (LOCATOR* locator : list) {
        constexpr uint32_t OTHERS = LF_PLACEMENT_MASK | LF_PRIORITY | LF_VIRTUAL | LF_LAST;
        SECTION* section = as_section(locator->object());
        if (section == nullptr || !section->is_plain_input() || locator->is_load() ||
            locator->has_flag(OTHERS) || section->parent() != first->parent() ||
            section->preferred_priority() != first->preferred_priority())
            return false;
        members.push_back({section->size(), 0, section->original_section_name(), locator});
    }
    return true;
}

/// The whole name of an input section has a colon and the file behind that of the section. What
/// follows the first colon isn't compared by chunks.
bool ends_comparison(char c) {
    return c == '\0' || c == ':';
}

size_t common_length(const char* a, const char* b, size_t limit) {
    size_t n = 0;
    while (n < limit && a[n] == b[n] && !ends_comparison(a[n])) ++n;
    return n;
}

uint64_t chunk_of(const char* name) {
    uint64_t chunk = 0;
    for (size_t n = 0; n < CHUNK; ++n) {
        const bool is_end = ends_comparison(name[n]);
        const auto byte = static_cast<unsigned char>(is_end ? ':' : name[n]);
        chunk |= uint64_t{byte} << 8 * (CHUNK - 1 - n);
        if (is_end) break;
    }
    return chunk;
}

bool is_last(uint64_t chunk) {
    return ends_comparison(static_cast<char>(chunk & 0xFF));
}

/// Whole names aren't made where the files decide.
int compare_whole_names(const SECTION* a, const SECTION* b) {
    if (a == b) return 0;
    if (strcmp(a->original_section_name(), b->original_section_name()) != 0)
        return strcmp(a->name(), b->name());
    return strcmp(a->object_file()->object_file()->display_name(),
                  b->object_file()->object_file()->display_name());
}

bool goes_first_by_whole_name(const MEMBER& a, const MEMBER& b) {
    const SECTION* first = as_section(a.locator->object());
    const SECTION* second = as_section(b.locator->object());
    if (const int order = compare_whole_names(first, second)) return order < 0;
    const bool run_first = a.locator->is_run_or_both();
    if (run_first != b.locator->is_run_or_both()) return run_first;
    return LINKER_OBJECT::less_than_obj_id(first, second);
}

/// Members whose names are the same up to `offset`. Names that have very much in common aren't
/// followed for ever.
void sort_by_name(MEMBERS members, size_t offset, unsigned levels) {
    if (members.size() < 2) return;
    if (levels == 0) {
        std::ranges::stable_sort(members, goes_first_by_whole_name);
        return;
    }
    const char* first = members.front().name + offset;
    size_t common = strlen(first);
    for (const MEMBER& member : members)
        common = common_length(first, member.name + offset, common);
    offset += common;
    for (MEMBER& member : members) member.chunk = chunk_of(member.name + offset);
    std::ranges::sort(members, {}, &MEMBER::chunk);
    for (size_t from = 0, to; from < members.size(); from = to) {
        const uint64_t chunk = members[from].chunk;
        for (to = from + 1; to < members.size() && members[to].chunk == chunk;) ++to;
        sort_by_name(members.subspan(from, to - from), offset + CHUNK,
                     is_last(chunk) ? 0 : levels - 1);
    }
}

} // namespace

bool sort_by_size_and_name(LOCATOR_LIST& list) {
    constexpr unsigned LEVELS = 16;
    if (global_opts->isopt(OPT_alphabetical_ordering) ||
        global_opts->isopt(OPT_minimize_trampolines))
        return false;
    std::vector<MEMBER> members;
    if (!list_members(list, members)) return false;
    std::ranges::sort(members, std::greater(), &MEMBER::size);
    for (size_t from = 0, to; from < members.size(); from = to) {
        for (to = from + 1; to < members.size() && members[to].size == members[from].size;) ++to;
        sort_by_name(MEMBERS(members).subspan(from, to - from), 0, LEVELS);
    }
    std::ranges::transform(members, list.begin(), &MEMBER::locator);
    return true;
}
