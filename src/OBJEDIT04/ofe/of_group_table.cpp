// The members of a group by section id.
#include "OBJEDIT04/ofe/of_group_table.h"

#include <algorithm>

#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"

namespace OFE {

OF_SECTION* OF_GROUP_TABLE::member(unsigned i) {
    return i < members_.size() ? ofile()->section_table()->section(members_[i]) : nullptr;
}

unsigned OF_GROUP_TABLE::add_member(OF_SECTION* section) {
    if (max_state(OF_STATE_OPEN) != 0) return OF_DELETED;
    members_.push_back(section->id());
    section->set_group(this);
    return member_num() - 1;
}

unsigned OF_GROUP_TABLE::live_member_num() const {
    return member_num() - static_cast<unsigned>(std::count(deleted_.begin(), deleted_.end(), true));
}

// The section stays, on its own.
int OF_GROUP_TABLE::delete_member(unsigned i) {
    if (max_state(OF_STATE_OPEN) != 0 || i >= members_.size()) return -1;
    deleted_.resize(members_.size());
    deleted_[i] = true;
    OF_SECTION* section = member(i);
    if (section && section->group() == this) section->clear_group();
    return 0;
}

int OF_GROUP_TABLE::update_section_refs(const RECORD_MAP<unsigned>& map) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    std::vector<unsigned> kept;
    for (unsigned i = 0; i < members_.size(); ++i) {
        unsigned to = members_[i] < map.size() ? map[members_[i]] : OF_DELETED;
        if (to != OF_DELETED && !member_deleted(i)) kept.push_back(to);
    }
    members_ = std::move(kept);
    deleted_.clear();
    return 0;
}

} // namespace OFE
