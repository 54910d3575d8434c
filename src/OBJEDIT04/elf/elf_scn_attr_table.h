// A section of extended section attributes: one value per section of the file (the flag word or the
// page word).
#pragma once

#include "OBJEDIT04/ofe/of_state_machine.h"

namespace OFE {

class ELF_SECTION;

class ELF_SCN_ATTR_TABLE final : public OF_STATE_MACHINE {
  public:
    ELF_SCN_ATTR_TABLE(ELF_SECTION* section, int kind);

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;
    int kind() const { return kind_; }

    // Checks the header once; then values are read by section id. -1: the section is malformed.
    int load();
    unsigned value(unsigned section_id) const; // 0 where the file says nothing
    bool has_values() const { return count_ != 0; }
    int save();

  private:
    ELF_SECTION* section_;
    int kind_;
    bool loaded_ = false;
    unsigned count_ = 0;
    unsigned entsize_ = 0;
    const uint8_t* values_ = nullptr;
    bool big_ = false;
};

} // namespace OFE
