// A string table section: offset 0 is the empty string.
#pragma once

#include "OBJEDIT04/ofe/of_string_table.h"

namespace OFE {

class ELF_SECTION;

class ELF_STRING_TABLE final : public OF_STRING_TABLE {
  public:
    explicit ELF_STRING_TABLE(ELF_SECTION* section);

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;
    const char* pool_name() const override;
    unsigned first_offset() const override { return 1; }
    unsigned add_string(const char* text) override;

  private:
    ELF_SECTION* section_;
};

} // namespace OFE
