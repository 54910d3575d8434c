// A group: sections that are kept or dropped as a whole, under a signature symbol. With the COMDAT
// flag only the first group of a signature takes part in a link.
#pragma once

#include "OBJEDIT04/ofe/of_state_machine.h"
#include <vector>

class TEXT_TABLE;

namespace OFE {

class OF_SECTION;
class OF_SYMBOL;

class OF_GROUP_TABLE : public OF_STATE_MACHINE {
  public:
    explicit OF_GROUP_TABLE(OBJECT_FILE* file) : OF_STATE_MACHINE(file) {}

    virtual const char* name() = 0;
    virtual int set_name(const char* name) = 0;
    virtual OF_SYMBOL* symbol() = 0; // the signature, or null
    virtual int set_symbol(OF_SYMBOL* symbol) = 0;
    virtual const char* signature_name() = 0; // without making the symbol; "" when there is none
    virtual bool comdat_flag() const = 0;
    virtual int set_comdat_flag() = 0;
    virtual OF_SECTION* section_api() = 0; // the section that describes the group
    virtual unsigned section_id() const = 0;
    virtual const char* comdat_flag_name() const = 0;
    virtual int lock_group_table() = 0;

    unsigned member_num() const { return static_cast<unsigned>(members_.size()); }
    unsigned member_id(unsigned i) const {
        return members_[i];
    } // a section id; deleted members included
    bool member_deleted(unsigned i) const { return i < deleted_.size() && deleted_[i]; }
    unsigned live_member_num() const;
    OF_SECTION* member(unsigned i);
    unsigned add_member(OF_SECTION* section); // the index, or OF_DELETED when not open
    int delete_member(unsigned i);
    int update_section_refs(const RECORD_MAP<unsigned>& map);
    void generate_text_info(TEXT_TABLE& table); // a row per member

  protected:
    std::vector<unsigned> members_;
    std::vector<bool> deleted_;
};

} // namespace OFE
